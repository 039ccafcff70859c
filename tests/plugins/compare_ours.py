"""What kyr tells of this machine, as (thing, what, value) in the form that compare_tools.py tells of."""
import collections
import json
import subprocess

from compare_tools import lower, named


def collect(command):
    collected = subprocess.run([*command[:1], "collect", "--json", *command[1:]], stdout=subprocess.PIPE, check=True)
    machine = TMachine(json.loads(collected.stdout))
    for extract in (system, processor, caches, memory, disks, partitions, file_systems, mounts, interfaces, addresses,
                    routes, software, pci, usb, temperatures):
        yield from extract(machine)


class TMachine:
    def __init__(self, collection):
        self.classes = {told["name"]: told["instances"] for told in collection["classes"]}

    def all(self, name):
        """The instances of a class, each as a function from a property's name to its value."""
        return [instance_of(told) for told in self.classes.get(name, [])]

    def first(self, name):
        return next(iter(self.all(name)), lambda _: None)

    def others(self, association, mine, other):
        """Paths of the other end by the path of this end."""
        return {tie(mine)["path"]: tie(other)["path"] for tie in self.all(association)}


def instance_of(told):
    def value(name):
        return told["path"] if name == "path" else told["properties"].get(name, {}).get("value")

    value.text = lambda name: told["properties"].get(name, {}).get("text")
    return value


def bios_date(moment):
    return f"{moment[4:6]}/{moment[6:8]}/{moment[:4]}" if moment else None


def system(machine):
    this, running = machine.first("MOLTA_ComputerSystem"), machine.first("MOLTA_OperatingSystem")
    firmware, board = machine.first("MOLTA_SystemBIOSElement"), machine.first("MOLTA_BaseBoard")
    yield from named("system", this, {"host name": "Name", "vendor": "Manufacturer", "product": "ProductName",
                                      "version": "ProductVersion", "serial": "SerialNumber", "sku": "SKUNumber",
                                      "family": "ProductFamily", "asset tag": "AssetTag"})
    yield "system", "uuid", lower(this("UUID"))
    yield "system", "hypervisor", lower(this("Hypervisor"))
    yield from named("system", running, {"kernel release": "KernelRelease", "kernel version": "KernelVersion",
                                         "architecture": "Architecture", "description": "Caption",
                                         "release": "Version", "distribution": "DistributionID"})
    yield from named("firmware", firmware, {"vendor": "Manufacturer", "version": "Version"})
    yield "firmware", "date", bios_date(firmware("ReleaseDate"))
    yield from named("board", board, {"vendor": "Manufacturer", "product": "Model", "version": "Version",
                                      "serial": "SerialNumber"})


def processor(machine):
    sockets = machine.all("MOLTA_Processor")
    first = machine.first("MOLTA_Processor")
    yield from named("processor", first, {"model": "ModelName", "vendor": "Manufacturer", "bogomips": "BogoMIPS",
                                          "width": "DataWidth"})
    yield "processor", "version", ".".join(first(part) or "" for part in ("FamilyNumber", "ModelNumber", "Stepping"))
    yield "processor", "flags", frozenset(first("Flags") or ())
    yield "processor", "sockets", len(sockets)
    yield "processor", "cores", len(machine.all("MOLTA_ProcessorCore"))
    yield "processor", "threads", len(machine.all("MOLTA_HardwareThread"))
    yield "numa", "nodes", len(machine.all("MOLTA_NUMANode"))


def caches(machine):
    """Of each level the one of the first processor, as the others have it, and all together."""
    totals = collections.Counter()
    for cache in reversed(machine.all("MOLTA_CacheMemory")):
        kind = {"Data": "d", "Instruction": "i"}.get(cache.text("CacheType"), "")
        thing = f"cache L{cache('Level')}{kind}"
        totals[thing] += cache("Size") or 0
        yield from named(thing, cache, {"size": "Size", "ways": "NumberOfWays", "line": "LineSize"})
    for thing, total in totals.items():
        yield thing, "total", total


def memory(machine):
    whole = machine.first("MOLTA_SystemMemory")
    for what, name in (("total", "TotalSize"), ("swap", "SwapTotalSize")):
        yield "memory", what, whole(name) * 1024 if whole(name) is not None else None
    for area in machine.all("MOLTA_SwapArea"):
        swap = f"swap {area('DeviceID')}"
        yield swap, "size", area("Size") * 1024
        yield swap, "kind", lower(area.text("Kind"))
        yield swap, "priority", area("Priority")
    for module in machine.all("MOLTA_PhysicalMemory"):
        yield from named(f"memory module {module('DeviceLocator')}", module,
                         {"size": "Capacity", "vendor": "Manufacturer", "part": "PartNumber",
                          "serial": "SerialNumber"})


def disks(machine):
    for disk in machine.all("MOLTA_DiskDrive"):
        yield from named(f"disk {disk('Name')}", disk,
                         {"size": "Size", "model": "Model", "serial": "SerialNumber", "vendor": "Manufacturer",
                          "wwn": "WWN", "rev": "FirmwareRevision", "rotational": "Rotational",
                          "removable": "Removable", "read only": "ReadOnly", "logical block": "LogicalBlockSize",
                          "physical block": "PhysicalBlockSize", "partition table": "PartitionTable",
                          "partition table uuid": "PartitionTableUUID"})


def partitions(machine):
    for part in machine.all("MOLTA_DiskPartition"):
        thing = f"partition {part('Name')}"
        yield from named(thing, part, {"size": "Size", "start": "StartingOffset", "name": "PartitionName"})
        yield thing, "type", lower(part("PartitionType"))
        yield thing, "uuid", lower(part("PartitionUUID"))


def file_systems(machine):
    """By what stands on a device, be it mounted or not."""
    for name in ("MOLTA_DiskDrive", "MOLTA_DiskPartition", "MOLTA_StorageVolume"):
        for device in machine.all(name):
            yield from named(f"file system {device('DeviceID')}", device,
                             {"type": "ContentType", "uuid": "ContentUUID", "label": "ContentLabel"})


def mounts(machine):
    systems = {held("path"): held for held in machine.all("MOLTA_FileSystem")}
    mounted = machine.others("MOLTA_MountedFileSystem", "Dependent", "Antecedent")
    for mount in machine.all("MOLTA_Mount"):
        if mount("Covered"):
            continue
        thing = f"mount {mount('MountPoint')}"
        yield from named(thing, mount, {"source": "Source", "type": "FileSystemType"})
        yield thing, "options", frozenset((mount("Options") or "").split(","))
        held = systems.get(mounted.get(mount("path")))
        yield thing, "size", held("FileSystemSize") if held else None


def interfaces(machine):
    for adapter in machine.all("MOLTA_NetworkAdapter"):
        thing = f"interface {adapter('DeviceID')}"
        yield from named(thing, adapter, {"mtu": "ActiveMaximumTransmissionUnit", "driver": "Driver",
                                          "enabled": "Enabled", "link": "Carrier", "kind": "Kind",
                                          "permanent mac": "PermanentAddress"})
        yield thing, "mac", lower(adapter("CurrentAddress"))
        yield thing, "state", lower(adapter.text("LinkState"))


def addresses(machine):
    found = collections.defaultdict(set)
    for address in machine.all("MOLTA_IPAddress"):
        found[address("InterfaceName")].add(f"{address('Address')}/{address('PrefixLength')}")
    for name, held in found.items():
        yield f"address of {name}", "all", frozenset(held)


def routes(machine):
    for route in machine.all("MOLTA_Route"):
        if route.text("Table") == "main":
            thing = f"route {route('DestinationAddress')}/{route('PrefixLength')} dev {route('InterfaceName')}"
            yield from named(thing, route, {"gateway": "NextHop", "metric": "RouteMetric"})


def software(machine):
    for package in machine.all("MOLTA_Package"):
        thing = f"package {package('Name')}:{package('SoftwareElementID')}"
        yield from named(thing, package, {"version": "Version", "section": "Section"})
        yield thing, "status", package.text("PackageStatus")
        yield thing, "size", package("InstalledSize") * 1024 if package("InstalledSize") is not None else None
    for module in machine.all("MOLTA_KernelModule"):
        yield f"module {module('Name')}", "size", module("Size")


def pci(machine):
    for device in machine.all("MOLTA_PCIDevice"):
        thing = f"pci {device('DeviceID')}"
        yield thing, "class id", device("ClassCode") << 8 | device("SubclassCode")
        yield from named(thing, device, {"class": "ClassName", "vendor": "VendorName", "device": "DeviceName",
                                         "subsystem vendor": "SubsystemVendorName", "subsystem": "SubsystemName",
                                         "vendor id": "VendorID", "device id": "PCIDeviceID",
                                         "subsystem vendor id": "SubsystemVendorID", "subsystem id": "SubsystemID",
                                         "revision": "RevisionID", "driver": "Driver", "numa node": "NUMANode"})


def usb(machine):
    for device in machine.all("MOLTA_USBDevice"):
        yield (f"usb {device('BusNumber')}/{device('DeviceNumber')}", "id",
               f"{device('VendorID'):04x}:{device('ProductID'):04x}")


def temperatures(machine):
    for sensor in machine.all("MOLTA_TemperatureSensor"):
        yield f"temperature of {sensor('Driver')}", sensor("ElementName"), True
