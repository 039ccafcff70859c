"""The answers to the questions of queries/, found in the documents of "kyr show --json" alone.

Each question is a function of a Fleet and of its parameters that returns both answers: rows, and the rows for which they
are not the whole truth. A row is a tuple of values, as QUESTIONS names their columns; rows are in any order."""
import collections
import datetime
import re

ENTIRELY_UNCERTAIN = ("file changed", "instances lost", "interrupted")
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def utc(text):
    """Of "20261101020033.000000+060", in UTC as "2026-11-01T01:00:33"."""
    time = datetime.datetime.strptime(text[:14], "%Y%m%d%H%M%S") - datetime.timedelta(minutes=int(text[-4:]))
    return time.isoformat()


class Run:
    """What the questions need of a document."""

    def __init__(self, document):
        host = document["host"]
        self.name, self.machine_id, self.uuid, self.serial = (
            host[key] for key in ("name", "machineId", "uuid", "serialNumber"))
        self.time, self.superuser = utc(document["time"]), document["superuser"]
        self.state, self.reason, self.code = document["state"], document["reason"], document["reasonCode"]
        self.classes = {each["name"]: each for each in document["classes"]}

    def instances(self, cls):
        return [{name: each["value"] for name, each in instance["properties"].items()}
                for instance in self.classes.get(cls, {"instances": []})["instances"]]

    def only(self, cls):
        return (self.instances(cls) or [collections.defaultdict(lambda: None)])[0]

    def texts(self, cls):
        return [{name: each["text"] for name, each in instance["properties"].items()}
                for instance in self.classes.get(cls, {"instances": []})["instances"]]

    def is_compared(self, cls):
        return self.classes[cls]["state"] == "complete" and self.code not in ENTIRELY_UNCERTAIN

    def seen(self, cls):
        """The state of a class with its reason, and which things there are of it."""
        found = self.classes[cls]
        things = [[each["path"]] + [each["properties"].get(name, {}).get("value") or "" for name in ("SerialNumber", "WWN")]
                  for each in found["instances"]]
        return found["state"], found["reason"], sorted(things)


class Host:
    def __init__(self, run):
        self.name, self.key = run.name, run.machine_id or run.uuid or run.serial or run.name
        self.runs, self.machine_id, self.uuid, self.serial = [], None, None, None
        self.add(run)

    def takes(self, run):
        contradicted = any(mine and other and mine.lower() != other.lower()
                           for mine, other in ((self.uuid, run.uuid), (self.serial, run.serial)))
        key = run.machine_id or run.uuid or run.serial or run.name
        return self.name == run.name and self.key == key and not contradicted

    def add(self, run):
        self.runs.append(run)
        for name in ("machine_id", "uuid", "serial"):
            setattr(self, name, getattr(run, name) or getattr(self, name))

    @property
    def now(self):
        return self.runs[-1]

    @property
    def first_seen(self):
        return self.runs[0].time


class Fleet:
    """Hosts with their runs, the oldest first."""

    def __init__(self, documents):
        self.hosts, by_name = [], collections.defaultdict(list)
        for run in sorted(map(Run, documents), key=lambda each: each.time):
            host = next((each for each in by_name[run.name] if each.takes(run)), None)
            if host:
                host.add(run)
                continue
            self.hosts.append(Host(run))
            by_name[run.name].append(self.hosts[-1])

    def gaps(self, *classes):
        """Which machines an answer about the classes is not the whole truth for."""
        rows = []
        for host in self.hosts:
            for cls in classes:
                found = host.now.classes.get(cls)
                state = found["state"] if found else "not known to its plugins"
                if state == "complete" and host.now.code in ENTIRELY_UNCERTAIN:
                    state = host.now.state
                if state != "complete":
                    rows.append((host.name, cls, state, (found and found["reason"]) or host.now.reason))
        return rows


def incomplete_machines(fleet):
    known = {cls for host in fleet.hosts for cls in host.now.classes}
    machines, gaps = [], []
    for host in fleet.hosts:
        states = [(cls, host.now.classes.get(cls, {"state": "not known to its plugins", "reason": None})) for cls in known]
        missing = [(host.name, cls, each["state"], each["reason"]) for cls, each in states if each["state"] != "complete"]
        gaps += missing
        if missing or host.now.state != "complete":
            machines.append((host.name, host.now.time, host.now.superuser, host.now.state, host.now.reason, len(missing)))
    return machines, gaps


def numbers(version):
    if not re.fullmatch(r"[0-9.]*[0-9][0-9.]*", version or ""):
        return None
    found = [int(each or 0) for each in version.split(".")]
    while found and found[-1] == 0:
        found.pop()
    return found


def firmware_below(fleet, product, version):
    rows = []
    wanted = re.compile(product.replace("%", ".*"), re.IGNORECASE)
    for host in fleet.hosts:
        system = host.now.only("MOLTA_ComputerSystem")
        for firmware in host.now.instances("MOLTA_SystemBIOSElement"):
            own = next((each for each in map(numbers, (firmware["Version"], firmware["FirmwareRelease"])) if each is not None),
                       None)
            if system["ProductName"] is not None and not wanted.fullmatch(system["ProductName"]):
                continue
            asked = numbers(version)
            if own is None or asked is None or own < asked:
                rows.append((host.name, firmware["Version"], firmware["FirmwareRelease"],
                             "not known" if own is None or asked is None else "below"))
    return rows, fleet.gaps("MOLTA_SystemBIOSElement", "MOLTA_ComputerSystem")


def times_not_compared(host, cls):
    """When the class was told as not compared with the run before."""
    return [after.time for before, after in zip(host.runs, host.runs[1:])
            if not (before.is_compared(cls) and after.is_compared(cls)) and before.seen(cls) != after.seen(cls)]


def added_at(host, disk):
    """When the disk came to the machine, as far as its collections tell; none if it was there from the start."""
    def has(run):
        return any(each["SerialNumber"] == disk["SerialNumber"] and (disk["SerialNumber"] or each["DeviceID"] == disk["DeviceID"])
                   for each in run.instances("MOLTA_DiskDrive"))
    added = [after.time for before, after in zip(host.runs, host.runs[1:])
             if before.is_compared("MOLTA_DiskDrive") and has(after) and not has(before)]
    return added[-1] if added else None


def old_disks(fleet, day):
    rows = []
    for host in fleet.hosts:
        for disk in host.now.instances("MOLTA_DiskDrive"):
            added = added_at(host, disk)
            since = added or max([host.first_seen, *times_not_compared(host, "MOLTA_DiskDrive")])
            if added is None or since[:10] < day:
                rows.append((host.name, disk["DeviceID"], disk["SerialNumber"], disk["Size"], since,
                             "older" if since[:10] < day else "not known"))
    return rows, fleet.gaps("MOLTA_DiskDrive")


def find_serial(fleet, serial):
    classes = {"MOLTA_ComputerSystem": "ProductName", "MOLTA_BaseBoard": "Tag", "MOLTA_MemoryArray": "Tag",
               "MOLTA_PhysicalMemory": "DeviceLocator", "MOLTA_DiskDrive": "DeviceID", "MOLTA_USBDevice": "DeviceID",
               "MOLTA_Battery": "DeviceID"}
    wanted, rows = serial.strip().upper(), []
    for host in fleet.hosts:
        rows += [(host.name, "host", host.serial)] if (host.serial or "").upper() == wanted else []
        for cls in classes:
            for each in host.now.instances(cls):
                for name in ("SerialNumber", "WWN"):
                    if (each.get(name) or "").strip().upper() == wanted:
                        rows.append((host.name, cls, each[name]))
    return rows, fleet.gaps(*classes)


def memory_gone(fleet, since):
    rows, gaps = [], []
    for host in fleet.hosts:
        gaps += [(host.name, None, "first seen")] if host.first_seen[:10] >= since else []
        gaps += [(host.name, None, "last seen")] if host.now.time[:10] < since else []
        gaps += [(host.name, "MOLTA_PhysicalMemory", "not compared")
                 for time in times_not_compared(host, "MOLTA_PhysicalMemory") if time[:10] >= since]
        for before, after in zip(host.runs, host.runs[1:]):
            if after.time[:10] < since:
                continue
            if before.is_compared("MOLTA_PhysicalMemory") and after.is_compared("MOLTA_PhysicalMemory"):
                left = [(each["Tag"], each["SerialNumber"]) for each in after.instances("MOLTA_PhysicalMemory")]
                rows += [(host.name, "removed", after.time) for each in before.instances("MOLTA_PhysicalMemory")
                         if (each["Tag"], each["SerialNumber"]) not in left]
            for name in ("TotalSize", "InstalledSize"):
                old, new = before.only("MOLTA_SystemMemory")[name], after.only("MOLTA_SystemMemory")[name]
                if old is not None and new is not None and old != new:
                    rows.append((host.name, name, after.time))
    return rows, gaps + [row[:3] for row in fleet.gaps("MOLTA_PhysicalMemory", "MOLTA_SystemMemory")]


def package_versions(fleet, package):
    machines = collections.defaultdict(list)
    wanted = re.compile(package.replace("%", ".*"))
    for host in fleet.hosts:
        for each in host.now.texts("MOLTA_Package"):
            if wanted.fullmatch(each["Name"]):
                machines[each["Name"], each["Version"], each["SoftwareElementID"], each["PackageStatus"]].append(host.name)
    return [(*key, len(names), min(names), max(names)) for key, names in machines.items()], fleet.gaps("MOLTA_Package")


def adapters_without_link(fleet):
    rows = []
    for host in fleet.hosts:
        for each in host.now.instances("MOLTA_NetworkAdapter"):
            if each["Virtual"] is True or each["Carrier"] is True:
                continue
            answer = "no link" if each["Carrier"] is False else "switched off" if each["Enabled"] is False else "not known"
            rows.append((host.name, each["Name"], answer))
    return rows, fleet.gaps("MOLTA_NetworkAdapter")


def free_slots(fleet):
    rows = []
    for host in fleet.hosts:
        used = collections.Counter(each["GroupComponent"]["path"] for each in host.now.instances("MOLTA_MemoryArrayModule"))
        for instance in host.now.classes.get("MOLTA_MemoryArray", {"instances": []})["instances"]:
            array = {name: each["value"] for name, each in instance["properties"].items()}
            slots, modules = array["Slots"], used[instance["path"]]
            if slots is None or slots > modules or array["EmptySlots"] is not None:
                rows.append((host.name, array["Tag"], slots, modules, slots - modules if slots is not None else None,
                             array["EmptySlots"]))
    return rows, fleet.gaps("MOLTA_MemoryArray", "MOLTA_PhysicalMemory", "MOLTA_MemoryArrayModule")


def built_on(version):
    day = re.search(r"\((\d{4}-\d\d-\d\d)\)$", version) or re.search(r"(\d{4}-\d\d-\d\d) \d\d:\d\d:\d\d$", version)
    if day:
        return day.group(1)
    date = re.search(r"(\w{3}) ([ \d]\d) \d\d:\d\d:\d\d \w{3} (\d{4})$", version)
    return date and f"{date.group(3)}-{MONTHS.index(date.group(1)) + 1:02}-{int(date.group(2)):02}"


def kernels_by_age(fleet):
    systems = [(host, each) for host in fleet.hosts for each in host.now.instances("MOLTA_OperatingSystem")]
    count = collections.Counter(each["KernelRelease"] for _, each in systems)
    rows = [(built_on(each["KernelVersion"] or ""), each["KernelRelease"], count[each["KernelRelease"]], host.name)
            for host, each in systems]
    return rows, fleet.gaps("MOLTA_OperatingSystem")


def shared_identities(fleet):
    told = collections.defaultdict(list)
    for host in fleet.hosts:
        for what, value in (("machine ID", host.machine_id), ("UUID", host.uuid), ("serial number", host.serial),
                            ("name", host.name)):
            if value:
                told[what, value.lower()].append(host)
    rows = [(what, value, len(hosts), host.name) for (what, value), hosts in told.items() if len(hosts) > 1 for host in hosts]
    return rows, [(host.name, host.machine_id, host.uuid, host.serial) for host in fleet.hosts
                  if not host.machine_id or not host.uuid]


GAP_COLUMNS = ("machine", "class", "state", "reason")
# For each question: its function, the values of its parameters that are asked for, and the columns of both answers.
QUESTIONS = {
    "incomplete-machines": (incomplete_machines, ({},),
                            ("machine", "collected_at", "superuser", "state", "reason", "classes"), GAP_COLUMNS),
    "firmware-below": (firmware_below,
                       ({}, {"version": "2.2.0"}, {"version": "10"}, {"product": "es rack%", "version": "2.10.1"},
                        {"version": "EXF9"}),
                       ("machine", "version", "firmware_release", "answer"), GAP_COLUMNS),
    "old-disks": (old_disks, ({}, {"day": "2026-11-01"}, {"day": "2026-11-02"}, {"day": "2027-01-01"}),
                  ("machine", "device_id", "serial_number", "size_bytes", "known_since", "answer"), GAP_COLUMNS),
    "find-serial": (find_serial, ({}, {"serial": " zad0exm1-3"}, {"serial": "KQ12345-20"}, {"serial": "40a1b200-3"}),
                    ("machine", "class", "serial"), GAP_COLUMNS),
    "memory-gone": (memory_gone, ({}, {"since": "2026-11-02"}, {"since": "2026-11-03"}),
                    ("machine", "what", "changed_at"), GAP_COLUMNS[:3]),
    "package-versions": (package_versions, ({}, {"package": "libexample1%"}),
                         ("name", "version", "architecture", "package_status", "machines", "first_machine", "last_machine"),
                         GAP_COLUMNS),
    "adapters-without-link": (adapters_without_link, ({},), ("machine", "name", "answer"), GAP_COLUMNS),
    "free-slots": (free_slots, ({},), ("machine", "tag", "slots", "modules", "free_slots", "empty_slots"), GAP_COLUMNS),
    "kernels-by-age": (kernels_by_age, ({},), ("built_on", "kernel_release", "machines_with_it", "machine"), GAP_COLUMNS),
    "shared-identities": (shared_identities, ({},), ("what", "value", "hosts", "machine"),
                          ("machine", "machine_id", "uuid", "serial")),
}
