"""What the inventory tools tell of this machine: lshw, hwinfo, facter. In the form that compare_tools.py tells of."""
import ipaddress
import re

from compare_tools import (facts, file_system, first, json_of, lower, lowered, maker, memory_module, named, number,
                           numbered, output_of, tool)


def as_list(value):
    return value if isinstance(value, list) else [] if value is None else [value]


def nodes_of(node):
    yield node
    for child in node.get("children", []):
        yield from nodes_of(child)


@tool("lshw")
def lshw():
    nodes = [node for top in as_list(json_of("lshw -quiet -json")) for node in nodes_of(top)]
    processors = [node for node in nodes if node["class"] == "processor" and not node.get("disabled")]
    yield "processor", "sockets", len(processors)
    for index, node in enumerate(nodes):
        yield from lshw_system(node) if index == 0 else ()
        for extract in (lshw_part_of_board, lshw_processor, lshw_pci, lshw_network, lshw_disk, lshw_memory):
            yield from extract(node)


def lshw_system(node):
    yield "system", "host name", node["id"]
    yield from named("system", node.get, {what: what for what in ("vendor", "product", "version", "serial")})
    yield from named("system", node.get("configuration", {}).get, {"uuid": lowered("uuid")})


def lshw_part_of_board(node):
    thing = {"core": "board", "firmware": "firmware"}.get(node["id"])
    if thing:
        for what in ("vendor", "product", "version", "serial", "date"):
            yield thing, what, node.get(what) if thing == "board" or what != "product" else None


def lshw_processor(node):
    if node["class"] != "processor":
        return
    names = {"x86-64": "lm"}
    flags = {names.get(flag, flag) for flag in node.get("capabilities", {})}
    yield from named("processor", node.get, {"model": "product", "version": "version", "width": "width"})
    yield "processor", "flags", frozenset(flags - {"fpu_exception", "wp", "cpufreq"})


def lshw_pci(node):
    slot = first(r"^pci@(\S+)", node.get("businfo", ""))
    if slot:
        yield from named(f"pci {slot}", node.get, {"class": "description", "vendor": "vendor",
                                                   "revision": numbered("version", 16)})
        yield from facts(f"pci {slot}", driver=node.get("configuration", {}).get("driver"),
                         device=node.get("product") if node.get("product") != node.get("vendor") else None)


def lshw_network(node):
    said = node.get("configuration", {})
    for name in as_list(node.get("logicalname")) if node["class"] == "network" else ():
        yield from facts(f"interface {name}", mac=lower(node.get("serial")), driver=said.get("driver"),
                         link=YES_OR_NO.get(said.get("link")))
        yield from named(f"interface {name}", said.get, {
            "firmware": "firmware", "driver version": "driverversion", "connector": "port",
            "autonegotiation": lambda ask: {"on": True, "off": False}.get(ask("autonegotiation"))})


def lshw_disk(node):
    said = node.get("configuration", {})
    names = as_list(node.get("logicalname"))
    for device in (name for name in names if name.startswith("/dev/")):
        if node["class"] == "disk":
            yield from named(f"disk {device[5:]}", node.get, {"size": "size", "serial": "serial", "model": "product",
                                                              "vendor": lambda ask: maker(ask("vendor"))})
            yield from named(f"disk {device[5:]}", said.get, {"logical block": numbered("logicalsectorsize")})
        for target in (name for name in names if not name.startswith("/dev/")):
            yield from facts(f"mount {target}", source=device, type=said.get("mount.fstype"),
                             options=frozenset(said.get("mount.options", "").split(",")) - {""} or None)
        if node["class"] == "volume":
            kind = said.get("filesystem")
            yield from file_system(device, kind, node.get("serial") if kind else None, said.get("label"))


def lshw_memory(node):
    if re.match(r"bank(:|$)", node["id"]) and node.get("size"):
        yield from memory_module(node.get("slot"), node["size"], node.get("vendor"), node.get("product"),
                                 node.get("serial"))


YES_OR_NO = {"yes": True, "no": False}
HWINFO = "hwinfo --bios --cpu --memory --disk --partition --netcard --network --pci"


def quoted(name):
    return lambda ask: first(r'"([^"]*)"', ask(name) or "")


@tool("hwinfo")
def hwinfo():
    processors = 0
    for block in output_of(HWINFO).split("\n\n"):
        said = dict(re.findall(r"^  ([^:\n]+): (.*)$", block, re.MULTILINE))
        kind = said.get("Hardware Class")
        processors += kind == "cpu"
        yield from HWINFO_KINDS.get(kind, lambda _: ())(said)
        if re.match(r"\s*\d+: PCI", block):
            yield from hwinfo_pci(said)
    yield "processor", "threads", processors or None


def hwinfo_processor(said):
    version, _, model = said.get("Model", "").partition(" ")
    yield "system", "architecture", said.get("Arch", "").lower().replace("x86-64", "x86_64")
    yield from named("processor", said.get, {"vendor": quoted("Vendor")})
    yield from facts("processor", version=version, model=model.strip('"'),
                     flags=frozenset(said.get("Features", "").split(",")),
                     bogomips=float(said["BogoMips"]) if "BogoMips" in said else None)


def hwinfo_interface(said):
    return named(f"interface {said.get('Device File')}", said.get,
                 {"mac": lowered("HW Address"), "permanent mac": lowered("Permanent HW Address"),
                  "driver": quoted("Driver"), "link": lambda ask: YES_OR_NO.get(ask("Link detected"))})


def hwinfo_disk(said):
    disk = f"disk {said.get('Device File', '').split(' ')[0][5:]}"
    sectors, _, block = said.get("Size", "").partition(" sectors a ")
    size = number(first(r"(\d+)", block))
    yield disk, "size", int(sectors) * size if size else None
    yield from named(disk, said.get, {"serial": quoted("Serial ID"), "model": quoted("Device")})


HWINFO_KINDS = {"cpu": hwinfo_processor, "network interface": hwinfo_interface, "disk": hwinfo_disk}


def hwinfo_pci(said):
    pci = f"pci {said.get('SysFS BusID')}"
    for what, label in (("vendor", "Vendor"), ("device", "Device"), ("subsystem vendor", "SubVendor"),
                        ("subsystem", "SubDevice")):
        yield pci, f"{what} id", number(first(r"pci 0x(\w+)", said.get(label, "")), 16)
        yield pci, what, quoted(label)(said.get)
    yield from named(pci, said.get, {"revision": numbered("Revision", 0), "driver": quoted("Driver")})


@tool("facter")
def facter():
    said = json_of("facter --no-external-facts --no-custom-facts -j")
    for extract in (facter_system, facter_processor, facter_network, facter_storage, facter_firmware):
        yield from extract(said)


def asker(said):
    """A function from "os.distro.id" to what is said there, None for nothing."""
    def ask(path):
        found = said
        for name in path.split("."):
            found = (found or {}).get(name)
        return found
    return ask


def facter_system(said):
    ask = asker(said)
    yield from named("system", ask, {"host name": "networking.hostname", "kernel release": "kernelrelease",
                                    "architecture": "os.hardware", "description": "os.distro.description",
                                    "release": "os.release.major", "distribution": lowered("os.distro.id"),
                                    "codename": "os.distro.codename", "point release": "os.distro.release.full",
                                    "fips": "fips_enabled"})
    yield "system", "hypervisor", next(iter(said.get("hypervisors", {})), None)
    yield from named("memory", ask, {"total": "memory.system.total_bytes", "swap": "memory.swap.total_bytes"})


def facter_processor(said):
    processors = said.get("processors", {})
    sockets = processors.get("physicalcount")
    yield "processor", "model", next(iter(processors.get("models", [])), None)
    yield from named("processor", processors.get, {"sockets": "physicalcount", "threads": "count"})
    yield "processor", "cores", processors["cores"] * sockets if "cores" in processors and sockets else None


def facter_network(said):
    for name, at in said.get("networking", {}).get("interfaces", {}).items():
        if ":" in name:
            continue  # a label, which facter takes for an interface
        yield from named(f"interface {name}", at.get, {"mac": lowered("mac"), "mtu": "mtu"})
        found = at.get("bindings", []) + at.get("bindings6", [])
        yield f"address of {name}", "all", frozenset(map(facter_address, found)) or None


def facter_address(binding):
    mask = ipaddress.ip_address(binding["netmask"])
    return f"{binding['address']}/{bin(int(mask)).count('1')}"


def facter_storage(said):
    for name, at in said.get("disks", {}).items():
        yield from named(f"disk {name}", at.get, {"model": "model", "serial": "serial", "size": "size_bytes"})
        yield from facts(f"disk {name}", vendor=maker(at.get("vendor")),
                         rotational={"hdd": True, "ssd": False}.get(at.get("type")))
    for device, at in said.get("partitions", {}).items():
        if not device.startswith(("/dev/mapper/", "/dev/loop")):
            yield from named(f"partition {device[5:]}", at.get, {"size": "size_bytes", "name": "partlabel",
                                                                 "uuid": lowered("partuuid")})
        yield from file_system(device, at.get("filesystem"), at.get("uuid"), at.get("label"))
    for target, at in said.get("mountpoints", {}).items():
        yield from facts(f"mount {target}", source=at.get("device"), type=at.get("filesystem"),
                         size=at.get("size_bytes") or None, options=frozenset(at.get("options", [])) or None)


def facter_firmware(said):
    ask = asker(said.get("dmi", {}))
    yield from named("firmware", ask, {"vendor": "bios.vendor", "version": "bios.version", "date": "bios.release_date"})
    yield from named("board", ask, {"vendor": "board.manufacturer", "product": "board.product",
                                   "serial": "board.serial_number"})
    yield from named("system", ask, {"vendor": "manufacturer", "product": "product.name",
                                    "serial": "product.serial_number", "uuid": lowered("product.uuid")})
