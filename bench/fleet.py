#!/usr/bin/env python3
"""fleet.py [--seed N] [--day N] [--packages N] COUNT OUT BASE.xml...

Makes a fleet of COUNT saved machines in the folder OUT, from saved collections of a few: their names, identifiers,
serial numbers, firmware, kernels, packages, memory modules, disks and links vary with the seed. The same seed with
--day 2 gives the same machines a day later: some were upgraded, some lost a memory module, some cannot be read as well
as before, some do not answer. ODDITIES are what a fleet has besides: classes that were not read, clones, numbers of 64
bits, files of other versions. Day 1 also has files that are damaged, named broken-*. Prints the names of all files.
"""
import argparse
import datetime
import functools
import gzip
import hashlib
import multiprocessing
import os
import random
import re
import zlib

# How many of a hundred machines are made from which collection; those of other names get one each.
SHARES = {"server": 45, "virtual": 35, "nvme": 10, "laptop": 6}
# Of each CYCLE machines, these indices are odd. Clones copy an identifier of the machine before.
CYCLE = 100
ODDITIES = {3: "other time zone", 5: "module unreadable", 7: "disks refused", 9: "adapters without source",
            11: "modules timed out", 13: "packages not asked", 17: "same machine id", 19: "same uuid",
            21: "same but name", 23: "same name", 25: "extremes", 27: "newer schema", 29: "plain", 31: "no mark",
            33: "edited", 35: "firmware without numbers",
            37: "modules asked from day 2"}
CLONES = {"same machine id": ("MachineID",), "same uuid": ("UUID",), "same but name": ("MachineID", "UUID", "SerialNumber"),
          "same name": ("Name", "MachineID")}
STATES = {"disks refused": ("MOLTA_DiskDrive", 5, 51, "no permission: /sys/class/block"),
          "adapters without source": ("MOLTA_NetworkAdapter", 7, 47, "its source /sys/class/net is missing"),
          "modules timed out": ("MOLTA_PhysicalMemory", 4, 31, "no answer within 30 seconds"),
          "modules asked from day 2": ("MOLTA_PhysicalMemory", 6, 10, "not selected"),
          "packages not asked": ("MOLTA_Package", 6, 10, "not selected")}
FIRMWARE = ("1.9", "1.27", "2.2", "2.9", "2.10", "2.10.1", "10.0")
KERNELS = (("5.14.0-427.el9.x86_64", "#1 SMP PREEMPT_DYNAMIC Fri Mar  8 10:27:09 EST 2024"),
           ("6.1.0-18-amd64", "#1 SMP PREEMPT_DYNAMIC Debian 6.1.76-1 (2024-02-01)"),
           ("6.1.0-31-amd64", "#1 SMP PREEMPT_DYNAMIC Debian 6.1.128-1 (2025-02-07)"),
           ("6.8.0-31-generic", "#31-Ubuntu SMP PREEMPT_DYNAMIC Sat Apr 20 00:40:06 UTC 2024"),
           ("6.6.30-0-lts", "#1-Alpine SMP PREEMPT_DYNAMIC 2024-05-06 07:40:41"),
           ("6.12.1-own", "#7 SMP by hand"))
VERSIONS = ("1.2-1", "1.2-1+deb12u1", "1.10-2", "2:0.9-4")

INSTANCE = re.compile(r'<VALUE\.OBJECT><INSTANCE CLASSNAME="(\w+)">.*?</INSTANCE></VALUE\.OBJECT>\n', re.S)
MARK = re.compile(r"<!-- classes: (\d+), instances: (\d+), CRC-32 of all before: \w{8} -->\n\Z")
IDENTIFIER = re.compile(r'<PROPERTY NAME="(?:SerialNumber|WWN|\w*UUID|MachineID|AssetTag|PermanentAddress|CurrentAddress)" '
                        r'TYPE="string"><VALUE>([^<]{6,})</VALUE>')
HEXADECIMAL = re.compile(r"(?:0x)?[0-9a-f:-]{12,60}\Z")
KEY = '<KEYBINDING NAME="%s"><KEYVALUE>%s</KEYVALUE></KEYBINDING>'


def line_of(name):
    return re.compile(rf'<PROPERTY NAME="{name}" TYPE="(\w+)"><VALUE>([^<]*)</VALUE></PROPERTY>\n')


def value_of(text, name):
    found = line_of(name).search(text)
    return found and found.group(2)


def without(text, name):
    return line_of(name).sub("", text)


def with_value(text, name, value, kind="string"):
    """The instance with another value of a property, or with one where it had none."""
    line = f'<PROPERTY NAME="{name}" TYPE="{kind}"><VALUE>{value}</VALUE></PROPERTY>\n'
    text = re.sub(rf"<VALUE>{name}: [^<]*</VALUE>", "", without(text, name))
    return text.replace("</INSTANCE>", line + "</INSTANCE>")


def unavailable(text, name, reason):
    """The instance without the value, and with the reason why."""
    text, array = without(text, name), '<PROPERTY.ARRAY NAME="UnavailableValues" TYPE="string"><VALUE.ARRAY>'
    entry = f"<VALUE>{name}: {reason}</VALUE>"
    if array in text:
        return text.replace(array, array + entry)
    return text.replace("</INSTANCE>", f"{array}{entry}</VALUE.ARRAY></PROPERTY.ARRAY>\n</INSTANCE>")


class Base:
    """A saved collection: what is before its instances, the instances by class, and what is behind them."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        found = list(INSTANCE.finditer(text))
        self.head, self.tail = text[:found[0].start()], MARK.sub("", text[found[-1].end():])
        self.classes = int(MARK.search(text).group(1))
        self.instances = {}
        for each in found:
            self.instances.setdefault(each.group(1), []).append(each.group())
        self.name = value_of(self.instances["MOLTA_Collection"][0], "HostName")
        identifiers = sorted(set(IDENTIFIER.findall(text)), key=len, reverse=True)
        self.changing = re.compile(">(" + "|".join(map(re.escape, [self.name, *identifiers])) + ")<")


@functools.lru_cache(maxsize=None)
def base_of(path):
    return Base(path)


class Machine:
    def __init__(self, options, index):
        self.options, self.index = options, index
        self.random = random.Random(f"{options.seed} {index}")
        self.later = random.Random(f"{options.seed} {index} {options.day}") if options.day > 1 else None
        self.oddity = ODDITIES.get(index % CYCLE, "")
        self.base = base_of(self.choose_base())
        self.head = self.base.head
        self.instances = {name: list(texts) for name, texts in self.base.instances.items()}
        self.replaced = {}

    def choose_base(self):
        # Servers have all that oddities change, and all that clones copy.
        servers = [each for each in self.options.bases if os.path.basename(each).startswith("server")]
        if self.oddity or ODDITIES.get((self.index + 1) % CYCLE) in CLONES:
            return servers[0]
        weights = [SHARES.get(os.path.basename(each).partition(".")[0], 1) for each in self.options.bases]
        return self.random.choices(self.options.bases, weights)[0]

    def happens(self, share):
        """Whether something happened since day 1 that happens to this share of the machines."""
        return self.later is not None and self.later.random() < share

    def each(self, name, edit):
        self.instances[name] = [edit(text) for text in self.instances.get(name, [])]

    def remove(self, name, wanted):
        """Removes the instances, and the associations with them, of which `wanted` says so."""
        gone = [text for text in self.instances.get(name, []) if wanted(text)]
        keys = [KEY % (key, value_of(text, key)) for text in gone for key in ("Tag", "DeviceID") if value_of(text, key)]
        for cls, texts in self.instances.items():
            self.instances[cls] = [text for text in texts if text not in gone and not (
                f'<INSTANCENAME CLASSNAME="{name}">' in text and any(key in text for key in keys))]

    def set_state(self, cls, state, code, reason):
        def edit(text):
            if value_of(text, "Name") != cls:
                return text
            text = with_value(text, "State", state, "uint16")
            return with_value(with_value(text, "ReasonCode", code, "uint16"), "Reason", reason)
        self.each("MOLTA_CollectedClass", edit)
        if code == 10:
            return
        incomplete = {"State": 2, "ReasonCode": 2}
        for name, value in incomplete.items():
            self.each("MOLTA_Collection", lambda text: with_value(text, name, value, "uint16"))
        self.each("MOLTA_Collection", lambda text: with_value(text, "Reason", "1 of 9 plugins are not complete"))

    # ---- What varies ----

    def vary_system(self):
        if not value_of(self.instances["MOLTA_Collection"][0], "MachineID") and self.random.random() < 0.9:
            identifier = self.identifier("0000aaaa-0000-4000-8000-000000000000", self.index)
            for name in ("MOLTA_Collection", "MOLTA_ComputerSystem"):
                self.each(name, lambda text: with_value(text, "MachineID", identifier))
        collected = datetime.datetime(2026, 11, 1, 2) + datetime.timedelta(days=self.options.day - 1, seconds=self.index)
        zone = "+060" if self.oddity == "other time zone" else "+000"
        self.each("MOLTA_Collection", lambda text: with_value(
            text, "DateTimeOfCollection", f"{collected:%Y%m%d%H%M%S}.000000{zone}", "datetime"))

    def vary_firmware(self):
        version = self.random.choice(FIRMWARE)
        if self.happens(0.05):
            version = self.later.choice(FIRMWARE)
        text_version = version if self.random.random() < 0.5 else f"N3EET41W ({version} )"
        odd = self.oddity == "firmware without numbers"
        self.each("MOLTA_SystemBIOSElement", lambda text: with_value(
            without(text, "FirmwareRelease") if odd else with_value(text, "FirmwareRelease", version),
            "Version", "EXF7" if odd else text_version))

    def vary_kernel(self):
        release, version = self.random.choice(KERNELS)
        if self.happens(0.2):
            release, version = self.later.choice(KERNELS)
        self.each("MOLTA_OperatingSystem", lambda text: with_value(
            with_value(text, "KernelRelease", release), "KernelVersion", version))

    def vary_memory(self):
        modules = self.instances.get("MOLTA_PhysicalMemory", [])
        lost = self.random.choice((0, 0, 0, 1, 2)) + self.happens(0.1)
        for text in modules[:min(lost, len(modules) - 1)]:
            locator = f"{value_of(text, 'DeviceLocator')} ({value_of(text, 'BankLocator')})"
            self.remove("MOLTA_PhysicalMemory", lambda other, gone=text: other == gone)
            empty = '<PROPERTY.ARRAY NAME="EmptySlots" TYPE="string"><VALUE.ARRAY>'
            arrays = self.instances["MOLTA_MemoryArray"]
            at = next((n for n, array in enumerate(arrays) if empty in array and locator[:2] in array), None)
            if at is not None:
                arrays[at] = arrays[at].replace(empty, f"{empty}<VALUE>{locator}</VALUE>")

    def vary_disks(self):
        firmware = self.random.choice(("EXF7", "EXF9", "N0A3"))
        self.each("MOLTA_DiskDrive", lambda text: with_value(text, "FirmwareRevision", firmware)
                  if value_of(text, "FirmwareRevision") else text)
        if self.happens(0.05) and self.instances.get("MOLTA_DiskDrive"):
            first = self.instances["MOLTA_DiskDrive"][0]
            for name in ("SerialNumber", "WWN"):
                if value_of(first, name):
                    self.replaced[value_of(first, name)] = f"NEW{self.index}-{name}"

    def vary_links(self):
        def edit(text):
            chance = self.random.random()
            if value_of(text, "Virtual") != "false" or value_of(text, "Carrier") is None or chance > 0.25:
                return text
            if chance < 0.05:
                return unavailable(text, "Carrier", "read error: /sys/class/net/example/carrier")
            return with_value(with_value(without(text, "Speed"), "Carrier", "false", "boolean"), "LinkState", 2, "uint16")
        self.each("MOLTA_NetworkAdapter", edit)

    def vary_packages(self):
        packages, installed = self.instances.get("MOLTA_Package"), self.instances.get("MOLTA_InstalledPackage")
        if not packages or not installed or not self.options.packages:
            return
        package, association, name = packages[0], installed[0], value_of(packages[0], "Name")
        upgraded = self.happens(0.3)
        for number in range(self.options.packages):
            new = f"libexample{number}"
            version = self.random.choice(VERSIONS)
            if upgraded and number % 20 == 0:
                version = self.later.choice(VERSIONS)
            packages.append(with_value(package.replace(f">{name}<", f">{new}<"), "Version", version))
            installed.append(association.replace(f">{name}<", f">{new}<"))

    def add_oddity(self):
        if self.oddity == "module unreadable":
            self.each("MOLTA_PhysicalMemory",
                      lambda text: unavailable(text, "SerialNumber", "no permission: /sys/firmware/dmi/tables/DMI"))
            self.set_state("MOLTA_PhysicalMemory", 2, 42, "SerialNumber: no permission: /sys/firmware/dmi/tables/DMI")
        if self.oddity == "extremes":
            self.each("MOLTA_DiskDrive", lambda text: with_value(text, "Size", 2**64 - 1, "uint64"))
            self.each("MOLTA_NetworkAdapter", lambda text: with_value(text, "BytesReceived", 2**63, "uint64"))
        if self.oddity == "newer schema":
            declaration = ('<PROPERTY NAME="Endurance" TYPE="uint64"><QUALIFIER NAME="Units" TYPE="string"><VALUE>KiloBytes'
                           '</VALUE></QUALIFIER><QUALIFIER NAME="Description" TYPE="string"><VALUE>What can be written to '
                           'it.</VALUE></QUALIFIER></PROPERTY>\n')
            start = self.head.index('<CLASS NAME="MOLTA_DiskDrive"')
            end = self.head.index("</CLASS>", start)
            self.head = self.head[:end] + declaration + self.head[end:]
            self.each("MOLTA_DiskDrive", lambda text: with_value(text, "Endurance", 600 * 2**30, "uint64"))
        state = STATES.get(self.oddity) if self.oddity != "modules asked from day 2" or self.options.day == 1 else None
        if not state and self.happens(0.03):
            state = STATES["modules timed out"]
        if state:
            self.instances[state[0]] = []
            self.set_state(*state)

    # ---- The document ----

    def identifier(self, value, index):
        if not HEXADECIMAL.match(value):
            return f"{value}-{index}"
        digits = iter(hashlib.sha256(f"{self.options.seed} {index} {value}".encode()).hexdigest())
        return value[:3] + "".join(next(digits) if each in "0123456789abcdef" else each for each in value[3:])

    def new_texts(self):
        """What stands in place of each identifier of the base. Clones have some of the machine before."""
        collection = self.base.instances["MOLTA_Collection"][0]
        cloned = [value_of(collection, "HostName" if name == "Name" else name) for name in CLONES.get(self.oddity, ())]
        if self.oddity == "same but name":
            cloned = IDENTIFIER.findall("".join(map("".join, self.base.instances.values())))

        def new_text(old):
            index = self.index - 1 if old in cloned else self.index
            return f"host{index}.example.net" if old == self.base.name else self.replaced.get(old) or self.identifier(old, index)
        return functools.lru_cache(maxsize=None)(new_text)

    def document(self):
        for vary in (self.vary_system, self.vary_firmware, self.vary_kernel, self.vary_memory, self.vary_disks,
                     self.vary_links, self.vary_packages, self.add_oddity):
            vary()
        counted = {name: len(texts) for name, texts in self.instances.items()}
        self.each("MOLTA_CollectedClass", lambda text: with_value(
            text, "InstanceCount", counted.get(value_of(text, "Name"), 0), "uint32"))
        new_text = self.new_texts()
        body = self.base.changing.sub(lambda match: f">{new_text(match.group(1))}<",
                                      "".join("".join(texts) for texts in self.instances.values()))
        return self.marked(self.head + body + self.base.tail, sum(counted.values()))

    def marked(self, text, instances):
        if self.oddity == "no mark":
            return re.sub("<!--.*?-->", "", text, count=1).encode()
        text = (text + f"<!-- classes: {self.base.classes}, instances: {instances}, CRC-32 of all before: ").encode()
        text += b"%08x -->\n" % zlib.crc32(text)
        return text.replace(b"running", b"Running") if self.oddity == "edited" else text

    def write(self):
        """The name of the file; none if the machine does not answer that day."""
        if self.happens(0.03):
            return None
        path = f"{self.options.out}/host{self.index}.xml" + ("" if self.oddity == "plain" else ".gz")
        document = self.document()
        with open(path, "wb") as file:
            file.write(document if self.oddity == "plain" else gzip.compress(document, 6, mtime=0))
        return path


def write_machine(task):
    return Machine(*task).write()


def write_broken(options):
    with open(options.bases[0], "rb") as file:
        whole = file.read()
    kinds = {"cut.xml": whole[:len(whole) // 2], "cut.xml.gz": gzip.compress(whole)[:5000], "empty.xml": b"",
             "garbage.xml.gz": random.Random(options.seed).randbytes(5000), "text.xml": b"this is no XML\n",
             "other.xml": b"<?xml version=\"1.0\"?>\n<html><body/></html>\n"}
    for name, content in kinds.items():
        with open(f"{options.out}/broken-{name}", "wb") as file:
            file.write(content)
    return [f"{options.out}/broken-{name}" for name in kinds]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--day", type=int, default=1)
    parser.add_argument("--packages", type=int, default=300, help="so many more on each machine that has any")
    parser.add_argument("count", type=int)
    parser.add_argument("out")
    parser.add_argument("bases", nargs="+")
    options = parser.parse_args()
    os.makedirs(options.out, exist_ok=True)
    with multiprocessing.Pool() as pool:
        files = pool.map(write_machine, ((options, index) for index in range(options.count)), chunksize=8)
    broken = write_broken(options) if options.day == 1 else []
    print("\n".join([*filter(None, files), *broken]))


if __name__ == "__main__":
    main()
