"""What kyr tells of this machine, as (thing, what, value) in the form that compare_tools.py tells of."""
import collections
import re

from compare_tools import lowered, named
from kyr_collect import collect


def tell(command):
    machine = TMachine(collect(command, check=False))
    for class_name, thing, names in CLASSES:
        for instance in machine.all(class_name):
            yield from named(re.sub(r"{(.*?)}", lambda part: str(instance(part[1])), thing), instance, names)
    for extract in (processor, caches, mounts, addresses, adapters, resolver, temperatures):
        yield from extract(machine)


class TMachine:
    def __init__(self, collection):
        self.classes = {told["name"]: told["instances"] for told in collection["classes"]}

    def all(self, name):
        """The instances of a class, each as a function from a property's name to its value."""
        return [instance_of(told) for told in self.classes.get(name, [])]

    def others(self, association, mine, other):
        """Paths of the other end by the path of this end."""
        return {tie(mine)["path"]: tie(other)["path"] for tie in self.all(association)}


def instance_of(told):
    """From "Kind" to a property's value, from "Kind/text" to the text for it."""
    def value(name):
        name, _, form = name.partition("/")
        return told["path"] if name == "path" else told["properties"].get(name, {}).get(form or "value")
    return value


def bios_date(ask):
    moment = ask("ReleaseDate")
    return f"{moment[4:6]}/{moment[6:8]}/{moment[:4]}" if moment else None


CONTENT = {"type": "ContentType", "uuid": "ContentUUID", "label": "ContentLabel"}

# The class, the thing that an instance of it is, and what its properties tell of it.
CLASSES = [
    ("MOLTA_ComputerSystem", "system",
     {"host name": "Name", "vendor": "Manufacturer", "product": "ProductName", "version": "ProductVersion",
      "serial": "SerialNumber", "sku": "SKUNumber", "family": "ProductFamily", "asset tag": "AssetTag",
      "uuid": lowered("UUID"), "hypervisor": lowered("Hypervisor"), "container": "Container"}),
    ("MOLTA_OperatingSystem", "system",
     {"kernel release": "KernelRelease", "kernel version": "KernelVersion", "architecture": "Architecture",
      "description": "Caption", "release": "Version", "distribution": "DistributionID", "codename": "Codename",
      "point release": "PointRelease"}),
    ("MOLTA_SystemSecurity", "system", {"fips": "FIPSMode"}),
    ("MOLTA_SystemBIOSElement", "firmware", {"vendor": "Manufacturer", "version": "Version", "date": bios_date}),
    ("MOLTA_BaseBoard", "board",
     {"vendor": "Manufacturer", "product": "Model", "version": "Version", "serial": "SerialNumber"}),
    ("MOLTA_SystemMemory", "memory", {"total": "TotalSize", "swap": "SwapTotalSize"}),
    ("MOLTA_SwapArea", "swap {DeviceID}",
     {"size": "Size", "kind": lowered("Kind/text"), "priority": "Priority"}),
    ("MOLTA_PhysicalMemory", "memory module {DeviceLocator}",
     {"size": "Capacity", "vendor": "Manufacturer", "part": "PartNumber", "serial": "SerialNumber"}),
    ("MOLTA_DiskDrive", "disk {Name}",
     {"size": "Size", "model": "Model", "serial": "SerialNumber", "vendor": "Manufacturer", "wwn": "WWN",
      "rev": "FirmwareRevision", "rotational": "Rotational", "removable": "Removable", "read only": "ReadOnly",
      "logical block": "LogicalBlockSize", "physical block": "PhysicalBlockSize",
      "partition table": "PartitionTable", "partition table uuid": "PartitionTableUUID"}),
    ("MOLTA_DiskPartition", "partition {Name}",
     {"size": "Size", "start": "StartingOffset", "name": "PartitionName", "type": lowered("PartitionType"),
      "uuid": lowered("PartitionUUID")}),
    # By what stands on a device, be it mounted or not.
    ("MOLTA_DiskDrive", "file system {DeviceID}", CONTENT), ("MOLTA_DiskPartition", "file system {DeviceID}", CONTENT),
    ("MOLTA_StorageVolume", "file system {DeviceID}", CONTENT),
    ("MOLTA_NetworkAdapter", "interface {DeviceID}",
     {"mtu": "ActiveMaximumTransmissionUnit", "driver": "Driver", "enabled": "Enabled", "link": "Carrier",
      "kind": "Kind", "permanent mac": "PermanentAddress", "mac": lowered("CurrentAddress"),
      "state": lowered("LinkState/text"), "smallest mtu": "MinimumTransmissionUnit",
      "largest mtu": "SupportedMaximumTransmissionUnit", "transmit queues": "TransmitQueues",
      "receive queues": "ReceiveQueues", "alias": "ElementName",
      "other names": lambda ask: frozenset(ask("OtherNames") or ()) or None, "vlan": "VLANID",
      "vlan protocol": "VLANProtocol/text", "macvlan mode": "MACVLANMode/text", "vxlan": "VXLANID",
      "stp": "SpanningTree", "filtering": "VLANFiltering", "bridge state": "BridgePortState/text",
      "bond mode": "BondMode/text", "monitoring": "LinkMonitoringInterval", "active": "ActiveMember",
      "hash policy": "TransmitHashPolicy/text", "bond state": "BondMemberState/text",
      "bond link": "BondMemberLink/text", "driver version": "DriverVersion", "firmware": "FirmwareVersion",
      "bus info": "BusInfo", "autonegotiation": "AutoSense", "connector": "Connector/text"}),
    ("MOLTA_Package", "package {Name}:{SoftwareElementID}",
     {"version": "Version", "section": "Section", "status": "PackageStatus/text", "size": "InstalledSize"}),
    ("MOLTA_KernelModule", "module {Name}", {"size": "Size"}),
    ("MOLTA_PCIDevice", "pci {DeviceID}",
     {"class id": lambda ask: ask("ClassCode") << 8 | ask("SubclassCode"), "class": "ClassName",
      "vendor": "VendorName", "device": "DeviceName", "subsystem vendor": "SubsystemVendorName",
      "subsystem": "SubsystemName", "vendor id": "VendorID", "device id": "PCIDeviceID",
      "subsystem vendor id": "SubsystemVendorID", "subsystem id": "SubsystemID", "revision": "RevisionID",
      "driver": "Driver", "numa node": "NUMANode"}),
    ("MOLTA_USBDevice", "usb {BusNumber}/{DeviceNumber}",
     {"id": lambda ask: f"{ask('VendorID'):04x}:{ask('ProductID'):04x}"}),
    ("MOLTA_Account", "account {Name}",
     {"user": "UserID", "group": "GroupID", "comment": "FullName", "home": "HomeDirectory", "shell": "LoginShell"}),
    ("MOLTA_Account", "password {Name}",
     {"state": "PasswordState/text", "changed": lambda ask: (ask("PasswordLastChanged") or "")[:8]}),
    ("MOLTA_Group", "group {Name}",
     {"number": "GroupID", "members": lambda ask: tuple(ask("Members") or [""])}),
    ("MOLTA_Route", "route {DestinationAddress}/{PrefixLength} dev {InterfaceName} of table {Table/text}",
     {"gateway": "NextHop", "metric": "RouteMetric"}),
]


def processor(machine):
    sockets = machine.all("MOLTA_Processor")
    for first in sockets[:1]:
        yield from named("processor", first, {"model": "ModelName", "vendor": "Manufacturer", "bogomips": "BogoMIPS",
                                              "width": "DataWidth"})
        version = [first(part) or "" for part in ("FamilyNumber", "ModelNumber", "Stepping")]
        yield "processor", "version", ".".join(version)
        yield "processor", "flags", frozenset(first("Flags") or ())
    yield "processor", "sockets", len(sockets)
    for thing, what, name in (("processor", "cores", "MOLTA_ProcessorCore"), ("numa", "nodes", "MOLTA_NUMANode"),
                              ("processor", "threads", "MOLTA_HardwareThread")):
        yield thing, what, len(machine.all(name))


def caches(machine):
    """Of each level the one of the first processor, as the others have it, and all together."""
    totals = collections.Counter()
    for cache in reversed(machine.all("MOLTA_CacheMemory")):
        kind = {"Data": "d", "Instruction": "i"}.get(cache("CacheType/text"), "")
        thing = f"cache L{cache('Level')}{kind}"
        totals[thing] += cache("Size") or 0
        yield from named(thing, cache, {"size": "Size", "ways": "NumberOfWays", "line": "LineSize"})
    for thing, total in totals.items():
        yield thing, "total", total


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


def addresses(machine):
    found = collections.defaultdict(set)
    for address in machine.all("MOLTA_IPAddress"):
        found[address("InterfaceName")].add(f"{address('Address')}/{address('PrefixLength')}")
    for name, held in found.items():
        yield f"address of {name}", "all", frozenset(held)


def adapters(machine):
    for association, upper, part, what in (("MOLTA_NetworkAdapterMember", "GroupComponent", "PartComponent", "part of"),
                                           ("MOLTA_LowerNetworkAdapter", "Antecedent", "Dependent", "lower")):
        for tie in machine.all(association):
            names = [re.search(r'DeviceID="([^"]*)"', tie(end)["path"])[1] for end in (part, upper)]
            yield f"interface {names[0]}", what, names[1]


def resolver(machine):
    for settings in machine.all("MOLTA_DNSSettings"):
        if settings("InstanceID") == "/etc/resolv.conf":
            yield "resolver", "servers", " ".join(settings("DNSServerAddresses") or ())
            yield "resolver", "search", " ".join(settings("DNSSuffixesToAppend") or ())


def temperatures(machine):
    for sensor in machine.all("MOLTA_TemperatureSensor"):
        yield f"temperature of {sensor('Driver')}", sensor("ElementName"), True
