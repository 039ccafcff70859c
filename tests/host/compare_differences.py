#!/usr/bin/env python3
# tests/host/compare_differences.py COUNT MACHINE KYR
#
# Saves a collection of a machine of the fixtures, edits copies of it, and compares what "kyr diff --json" says of two
# copies with what is found here from their JSON documents alone: first in cases whose outcome is written down, then in
# COUNT pairs of copies with edits that depend on their number alone. By hand:
# tests/host/compare_differences.py 500 tests/fixtures/machines/server build/bin/kyr
import collections
import copy
import json
import os
import random
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

SCOPE_KEYS = ("SystemName", "CSName")
UNREADABLE = ("no permission", "read error")
PLACEHOLDER = "To be filled by O.E.M."
HOST_TOKEN = object()


def run(*arguments, root=None, **options):
    environment = dict(os.environ, TZ="UTC", **({"KYR_SYSTEM_ROOT": root} if root else {}))
    return subprocess.run(arguments, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)


# ---- What differs, from two documents ----


class Side:
    """A collection, from the documents that kyr show and kyr schema print."""

    def __init__(self, kyr, path):
        shown = json.loads(run(kyr, "show", path, "--json").stdout)
        self.classes = {each["name"]: each for each in shown["classes"]}
        self.schema = {each["name"]: each for each in json.loads(run(kyr, "schema", path, "--json").stdout)["classes"]}
        systems = self.instances("MOLTA_ComputerSystem")
        self.system = systems[0] if len(systems) == 1 else None
        self.host = self.value(self.system, "Name") if self.system else None

    def instances(self, name):
        return self.classes.get(name, {"instances": []})["instances"]

    @staticmethod
    def value(instance, name):
        return instance["properties"].get(name, {"value": None})["value"]

    def names(self, cls, qualifier, wanted=True):
        return [each["name"] for each in self.schema[cls]["properties"]
                if bool(each["qualifiers"].get(qualifier, {"value": False})["value"]) == wanted]

    def path(self, cls, instance):
        def key_value(key):
            value = self.value(instance, key)
            says_host = key in SCOPE_KEYS or (cls == "MOLTA_ComputerSystem" and key == "Name")
            return HOST_TOKEN if says_host and value == self.host else value

        return tuple((key, key_value(key)) for key in self.names(cls, "Key"))

    def identities(self, cls):
        """For each instance, the values that count, by property."""
        instances = self.instances(cls)
        result = [{} for _ in instances]
        for name in self.names(cls, "Identity"):
            values = [self.value(each, name) for each in instances]
            for found, value in zip(result, values):
                if isinstance(value, int) or (value and value != PLACEHOLDER and values.count(value) == 1):
                    found[name] = value
        return result

    def absence(self, cls, instance, name):
        for entry in self.value(instance, "UnavailableValues") or []:
            prop, _, reason = entry.partition(": ")
            if prop == name:
                return reason.partition(": ")[0]
        return self.classes[cls]["nullReasons"].get(name, {"reason": ""})["reason"].partition(": ")[0]


def plain(value):
    return sorted(value) if isinstance(value, list) and all(isinstance(each, str) for each in value) else value


class Oracle:
    def __init__(self, old, new):
        self.old, self.new = old, new
        self.changes, self.limited, self.differs = [], {}, False
        for cls in sorted(set(old.classes) & set(new.classes)):
            if not new.schema[cls]["association"]:
                self.compare_class(cls)

    def compare_class(self, cls):
        states = [(each["state"], each["reasonCode"]) for each in (self.old.classes[cls], self.new.classes[cls])]
        if states[0] != states[1]:
            self.differs = True
        if states != [("complete", None)] * 2:
            self.limited[cls] = all(state in ("complete", "partial") for state, _ in states)
            if not self.limited[cls]:
                return
        pairs, removed, added = self.pair(cls)
        if cls not in self.limited:
            self.changes += [("removed", cls, each["path"], None, None) for each in removed]
            self.changes += [("added", cls, each["path"], None, None) for each in added]
        for old, new, moved in pairs:
            self.compare_pair(cls, old, new, moved)

    def pair(self, cls):
        olds, news = self.old.instances(cls), self.new.instances(cls)
        old_ids, new_ids = self.old.identities(cls), self.new.identities(cls)

        def conflict(i, k):
            return any(old_ids[i][name] != new_ids[k][name] for name in old_ids[i].keys() & new_ids[k].keys())

        at = {self.new.path(cls, each): k for k, each in enumerate(news)}
        found = {}
        for i, each in enumerate(olds):
            k = at.get(self.old.path(cls, each))
            if k is not None and not conflict(i, k):
                found[i] = (k, False)
        used = {k for k, _ in found.values()}
        for i in range(len(olds)):
            for name in sorted(old_ids[i]) if i not in found else []:
                if isinstance(old_ids[i][name], int):
                    continue
                same = [k for k in range(len(news)) if new_ids[k].get(name) == old_ids[i][name]]
                if same and same[0] not in used and not conflict(i, same[0]):
                    found[i] = (same[0], True)
                    used.add(same[0])
                    break
        pairs = [(olds[i], news[k], moved) for i, (k, moved) in found.items()]
        removed = [each for i, each in enumerate(olds) if i not in found]
        added = [each for k, each in enumerate(news) if k not in used]
        return pairs, removed, added

    def compare_pair(self, cls, old, new, moved):
        skipped = {name for side in (self.old, self.new) for kind in ("Key", "Volatile", "Companion")
                   for name in side.names(cls, kind)}
        changed, unreadable = {}, {}
        for name in new["properties"].keys() - skipped:
            before, after = self.old.value(old, name), self.new.value(new, name)
            if plain(before) == plain(after) or (before == self.old.host and after == self.new.host):
                continue
            if before is None and self.old.absence(cls, old, name) in UNREADABLE:
                continue
            is_lost = after is None and self.new.absence(cls, new, name) in UNREADABLE
            (unreadable if is_lost else changed)[name] = (before, after)
        if old is self.old.system and new is self.new.system and self.old.host != self.new.host:
            changed["Name"] = (self.old.host, self.new.host)
        former = old["path"] if old["path"] != new["path"] else None
        if changed or moved:
            self.changes.append(("moved" if moved else "changed", cls, new["path"], former, changed))
        if unreadable:
            self.changes.append(("unreadable", cls, new["path"], former, unreadable))


def told(difference):
    for each in difference["changes"]:
        values = {name: (value["old"], value["new"]) for name, value in each["properties"].items()}
        is_one_sided = each["op"] in ("removed", "added")
        yield each["op"], each["class"], each["path"], each["formerPath"], None if is_one_sided else values


def sort_key(change):
    return json.dumps(change, sort_keys=True)


# ---- Edits of a saved collection ----


class Collection:
    def __init__(self, text):
        self.root = ET.fromstring(text)
        self.group = next(self.root.iter("DECLGROUP"))
        self.objects = collections.defaultdict(list)
        for each in self.group:
            instance = each.find("INSTANCE")
            if instance is not None:
                self.objects[instance.get("CLASSNAME")].append(each)

    def write(self, path):
        ET.ElementTree(self.root).write(path, encoding="utf-8", xml_declaration=True)

    def of(self, cls, name=None, value=None):
        return [each for each in self.objects[cls] if name is None or self.get(each, name) == value]

    @staticmethod
    def find(each, name):
        return next((prop for prop in each.find("INSTANCE") if prop.get("NAME") == name), None)

    def get(self, each, name):
        prop = self.find(each, name)
        return None if prop is None else prop.findtext("VALUE")

    def set(self, each, name, value):
        prop = self.find(each, name)
        if prop is None:
            prop = ET.SubElement(each.find("INSTANCE"), "PROPERTY", NAME=name, TYPE="string")
            ET.SubElement(prop, "VALUE")
        prop.find("VALUE").text = value

    def drop(self, each, name, reason=None):
        prop = self.find(each, name)
        each.find("INSTANCE").remove(prop)
        if reason is None:
            return
        notes = self.find(each, "UnavailableValues")
        if notes is None:
            notes = ET.SubElement(each.find("INSTANCE"), "PROPERTY.ARRAY", NAME="UnavailableValues", TYPE="string")
            ET.SubElement(notes, "VALUE.ARRAY")
        ET.SubElement(notes.find("VALUE.ARRAY"), "VALUE").text = f"{name}: {reason}: /somewhere"

    def state(self, cls):
        return self.of("MOLTA_CollectedClass", "Name", cls)[0]

    def count(self, cls, step):
        state = self.state(cls)
        self.set(state, "InstanceCount", str(int(self.get(state, "InstanceCount")) + step))

    def remove(self, each):
        cls = each.find("INSTANCE").get("CLASSNAME")
        self.group.remove(each)
        self.objects[cls].remove(each)
        self.count(cls, -1)

    def clone(self, each, key, value):
        cls = each.find("INSTANCE").get("CLASSNAME")
        twin = copy.deepcopy(each)
        self.set(twin, key, value)
        self.group.insert(list(self.group).index(each), twin)
        self.objects[cls].append(twin)
        self.count(cls, 1)
        return twin

    def swap(self, a, b, keys):
        """Everything but the keys, as if the two had changed places."""
        one, other = a.find("INSTANCE"), b.find("INSTANCE")
        ones = [prop for prop in one if prop.get("NAME") not in keys]
        others = [prop for prop in other if prop.get("NAME") not in keys]
        for instance, leaving, coming in ((one, ones, others), (other, others, ones)):
            for prop in leaving:
                instance.remove(prop)
            instance.extend(coming)

    def fail(self, cls, state, code):
        for name, value in (("State", state), ("ReasonCode", code)):
            prop = self.find(self.state(cls), name)
            if prop is None:
                prop = ET.SubElement(self.state(cls).find("INSTANCE"), "PROPERTY", NAME=name, TYPE="uint16")
                ET.SubElement(prop, "VALUE")
            prop.find("VALUE").text = str(value)
        if state != 2:
            for each in list(self.of(cls)):
                self.remove(each)

    def rename(self, name):
        old = self.get(self.of("MOLTA_ComputerSystem")[0], "Name")
        for value in self.root.iter("VALUE"):
            value.text = name if value.text == old else value.text
        for value in self.root.iter("KEYVALUE"):
            value.text = name if value.text == old else value.text


class Editor:
    def __init__(self, collection, side, rng):
        self.collection, self.side, self.rng = collection, side, rng
        self.made = 0

    def classes(self):
        return sorted(cls for cls, objects in self.collection.objects.items()
                      if objects and cls in self.side.classes and not self.side.schema[cls]["association"]
                      and cls != "MOLTA_ComputerSystem")

    def edit(self):
        identified = [cls for cls in self.classes() if self.side.names(cls, "Identity")]
        cls = self.rng.choice(identified if self.rng.random() < 0.4 else self.classes())
        each = self.rng.choice(self.collection.of(cls))
        self.made += 1
        self.rng.choice([self.remove, self.clone, self.move, self.change, self.change, self.swap, self.hide, self.blank,
                         self.fail, self.identify, self.shuffle])(cls, each)

    def keys(self, cls):
        return self.side.names(cls, "Key")

    def properties(self, cls, each):
        """Those with a single value, but the keys and what describes others."""
        left = set(self.keys(cls)) | set(self.side.names(cls, "Companion"))
        return sorted(prop.get("NAME") for prop in each.find("INSTANCE")
                      if prop.get("NAME") not in left and prop.tag == "PROPERTY")

    def remove(self, _, each):
        self.collection.remove(each)

    def own_key(self, cls):
        return [key for key in self.keys(cls) if key not in SCOPE_KEYS and not key.endswith("ClassName")][-1]

    def new_value(self):
        return f"made-{self.rng.randrange(10**6)}-{self.made}"

    def clone(self, cls, each):
        self.collection.clone(each, self.own_key(cls), self.new_value())

    def move(self, cls, each):
        self.collection.set(each, self.own_key(cls), self.new_value())

    def change(self, cls, each):
        for name in self.rng.sample(self.properties(cls, each), 1):
            prop = self.collection.find(each, name)
            value = prop.find("VALUE").text or ""
            if prop.get("TYPE") == "string":
                self.collection.set(each, name, value + "x")
            elif prop.get("TYPE").startswith("uint"):
                self.collection.set(each, name, str(int(value) ^ 1))

    def swap(self, cls, each):
        other = self.rng.choice(self.collection.of(cls))
        if other is not each:
            self.collection.swap(each, other, self.keys(cls))

    def hide(self, cls, each):
        for name in self.rng.sample(self.properties(cls, each), 1):
            self.collection.drop(each, name, self.rng.choice(["no permission", "read error", "not present"]))

    def blank(self, cls, each):
        for name in self.rng.sample(self.properties(cls, each), 1):
            self.collection.drop(each, name)

    def fail(self, cls, _):
        if self.rng.random() < 0.4:
            self.collection.fail(cls, *self.rng.choice([(2, 33), (2, 41), (3, 33), (4, 31), (7, 47)]))

    def identify(self, _, __):
        cls = self.rng.choice([cls for cls in self.classes() if self.side.names(cls, "Identity")])
        each = self.rng.choice(self.collection.of(cls))
        names = [name for name in self.side.names(cls, "Identity")
                 if (self.collection.find(each, name) is not None
                     and self.collection.find(each, name).get("TYPE") == "string")]
        others = [self.collection.get(other, name) for other in self.collection.of(cls) for name in names]
        values = ["NEW-4711", PLACEHOLDER] + [value for value in others if value]
        for name in names[:1]:
            self.collection.set(each, name, self.rng.choice(values))

    def shuffle(self, cls, each):
        left = self.side.names(cls, "Companion")
        for prop in each.find("INSTANCE").findall("PROPERTY.ARRAY"):
            values = prop.find("VALUE.ARRAY")
            if values is None or prop.get("NAME") in left:
                continue
            if prop.get("TYPE") == "string" and self.rng.random() < 0.5:
                ET.SubElement(values, "VALUE").text = "added"
            values[:] = self.rng.sample(list(values), len(values))


# ---- Cases whose outcome is known ----


def take_out_module(new):
    new.remove(new.of("MOLTA_PhysicalMemory")[2])


def exchange_module(new):
    module = new.of("MOLTA_PhysicalMemory")[2]
    for name, value in (("Capacity", "16"), ("SerialNumber", "0BADCAFE"), ("PartNumber", "SMALLER-16G")):
        new.set(module, name, value)


def swap_disks(new):
    disks = new.of("MOLTA_DiskDrive")
    new.swap(*disks[:2], ("DeviceID", "SystemName", "CreationClassName", "SystemCreationClassName"))


def hang(new):
    for cls in ("MOLTA_DiskDrive", "MOLTA_DiskPartition", "MOLTA_StorageVolume", "MOLTA_FileSystem", "MOLTA_Mount"):
        new.fail(cls, 4, 31)


def hide_serials(new):
    for each in new.of("MOLTA_DiskDrive"):
        new.drop(each, "SerialNumber", "no permission")
    new.fail("MOLTA_DiskDrive", 2, 42)
    new.fail("MOLTA_PhysicalMemory", 7, 51)


# Each with how many changes of each kind come of it, and the exit status.
CASES = [
    (lambda new: None, {}, 0),
    (lambda new: new.rename("web01"), {"changed": 1}, 1),
    (swap_disks, {"moved": 2}, 1),
    (take_out_module, {"removed": 1}, 1),
    (exchange_module, {"removed": 1, "added": 1}, 1),
    (hang, {}, 1),
    (hide_serials, {"unreadable": 2}, 1),
]


class Check:
    def __init__(self, kyr, machine, folder):
        self.kyr, self.folder, self.faults = kyr, folder, 0
        saved = os.path.join(folder, "base.xml")
        run(kyr, "collect", "-o", saved, root=machine)
        with open(saved, encoding="utf-8") as file:
            self.text = file.read()
        self.base = Side(kyr, saved)

    def compare(self, label, old, new):
        """The kinds of changes that kyr told, and its status."""
        paths = [os.path.join(self.folder, name) for name in ("old.xml", "new.xml")]
        for collection, path in zip((old, new), paths):
            collection.write(path)
        done = run(self.kyr, "diff", *paths, "--json")
        difference = json.loads(done.stdout)
        oracle = Oracle(*(Side(self.kyr, path) for path in paths))
        self.expect_changes(label, oracle, difference)
        limited = {each["class"]: each["commonCompared"] for each in difference["notCompared"]}
        self.expect(label, "classes that were not compared", oracle.limited, limited)
        self.expect(label, "status", int(oracle.differs or bool(oracle.changes)), done.returncode)
        return collections.Counter(each["op"] for each in difference["changes"]), done.returncode

    def expect_changes(self, label, oracle, difference):
        expected, found = sorted(map(sort_key, oracle.changes)), sorted(map(sort_key, map(list, told(difference))))
        self.expect(label, "changes", [each for each in expected if each not in found],
                    [each for each in found if each not in expected])

    def expect(self, label, what, expected, found):
        if expected != found:
            self.faults += 1
            print(f"{label}: {what}: expected {expected}, found {found}")

    def check_case(self, edit, expected, status):
        new = Collection(self.text)
        edit(new)
        label = getattr(edit, "__name__", "case")
        self.expect(label, "outcome", (collections.Counter(expected), status),
                    self.compare(label, Collection(self.text), new))

    def check_random(self, number):
        rng = random.Random(number)
        sides = [Collection(self.text) for _ in range(2)]
        for side in sides:
            editor = Editor(side, self.base, rng)
            for _ in range(rng.randint(0, 6)):
                editor.edit()
        if rng.random() < 0.3:
            sides[1].rename("renamed.example.org")
        self.compare(f"random edits {number}", *sides)


def main(count, machine, kyr):
    with tempfile.TemporaryDirectory() as folder:
        check = Check(kyr, machine, folder)
        for case in CASES:
            check.check_case(*case)
        for number in range(int(count)):
            check.check_random(number)
        return 1 if check.faults else 0


sys.exit(main(*sys.argv[1:]))
