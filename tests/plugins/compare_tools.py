"""What the other tools tell of this machine: for each a function that yields (thing, what, value).

One name and one form for a fact, whoever tells it: sizes in bytes, addresses and numbers of devices in lower case,
sets as frozenset. None is no value.
"""
import glob
import ipaddress
import json
import re
import shutil
import subprocess

EXTRACTORS = {}
PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"


def tool(name):
    def keep(extract):
        EXTRACTORS[name] = extract
        return extract
    return keep


def installed():
    return [(name, extract) for name, extract in EXTRACTORS.items() if shutil.which(name, path=PATH)]


def output_of(command):
    answer = subprocess.run(command.split(" ") if isinstance(command, str) else command, stdin=subprocess.DEVNULL,
                            capture_output=True, timeout=60, check=False, env={"LC_ALL": "C", "PATH": PATH})
    return answer.stdout.decode("utf-8", "replace")


def lines_of(command):
    return output_of(command).splitlines()


def json_of(command):
    try:
        return json.loads(output_of(command))
    except ValueError:
        return {}


def lower(text):
    return text.lower() if text else None


def maker(text):
    """A disk's maker: virtio has the number of its bus in that place, and SCSI the name of what it speaks to."""
    return None if not text or text.startswith("0x") or text.strip() == "ATA" else text


def number(text, base=10):
    try:
        return int(text, base)
    except (TypeError, ValueError):
        return None


def blocks_of(text):
    """Blocks of lines "name: value" between empty lines."""
    for block in re.split(r"\n\s*\n", text):
        pairs = (line.split(":", 1) for line in block.splitlines() if ":" in line)
        yield block, {name.strip(): value.strip() for name, value in pairs}


def facts(thing, **values):
    """What each value is called, and the value."""
    return ((thing, what, value) for what, value in values.items())


def named(thing, ask, names):
    """A fact for each name that one can ask by, or function of what one asks."""
    for what, name in names.items():
        yield thing, what, name(ask) if callable(name) else ask(name)


def lowered(name):
    return lambda ask: lower(ask(name))


def numbered(name, base=10):
    return lambda ask: number(ask(name), base)


@tool("uname")
def uname():
    yield from named("system", lambda option: output_of(f"uname {option}"),
                    {"host name": "-n", "kernel release": "-r", "kernel version": "-v", "architecture": "-m"})


@tool("lsb_release")
def lsb_release():
    for _, said in blocks_of(output_of("lsb_release -idr")):
        yield from named("system", said.get, {"distribution": lowered("Distributor ID"), "release": "Release",
                                              "description": "Description"})


@tool("systemd-detect-virt")
def systemd_detect_virt():
    for what, option in (("hypervisor", "-v"), ("container", "-c")):
        said = output_of(["systemd-detect-virt", option]).strip()
        yield "system", what, None if said == "none" else said


@tool("lsb_release")
def lsb_release():
    said = dict(line.split(":", 1) for line in lines_of("lsb_release -icr") if ":" in line)
    yield from named("system", lambda name: said.get(name, "").strip(),
                     {"distribution": lowered("Distributor ID"), "release": "Release", "codename": "Codename"})


@tool("lscpu")
def lscpu():
    said = {row["field"].rstrip(":"): row["data"] for row in json_of("lscpu -J").get("lscpu", [])}
    threads, per_core = number(said.get("CPU(s)")), number(said.get("Thread(s) per core"))
    yield from named("system", said.get, {"architecture": "Architecture", "hypervisor": lowered("Hypervisor vendor")})
    yield from named("processor", said.get, {"model": "Model name", "vendor": "Vendor ID",
                                             "sockets": numbered("Socket(s)"), "threads": numbered("CPU(s)")})
    version = [said.get(name) for name in ("CPU family", "Model", "Stepping")]
    yield "processor", "version", ".".join(version) if all(version) else None
    yield "processor", "cores", threads // per_core if threads and per_core else None
    yield "processor", "bogomips", float(said["BogoMIPS"]) if "BogoMIPS" in said else None
    yield "processor", "flags", frozenset(said.get("Flags", "").split()) or None
    yield "numa", "nodes", number(said.get("NUMA node(s)"))
    for cache in json_of("lscpu -C -J -B").get("caches", []):
        thing = f"cache {cache['name']}"
        yield from named(thing, lambda name: number(str(cache[name])),
                        {"size": "one-size", "total": "all-size", "ways": "ways", "line": "coherency-size"})


@tool("free")
def free():
    for line in lines_of("free -b"):
        if line.startswith(("Mem:", "Swap:")):
            yield "memory", "total" if line.startswith("Mem:") else "swap", number(line.split()[1])


@tool("swapon")
def swapon():
    for line in lines_of("swapon --show=NAME,TYPE,SIZE,PRIO --bytes --noheadings"):
        name, kind, size, priority = line.split()
        yield from facts(f"swap {name}", size=int(size), kind=kind, priority=int(priority))


@tool("lsblk")
def lsblk():
    devices = json_of("lsblk -J -b -O -l").get("blockdevices", [])
    for at in devices:
        if at["type"] == "part":
            yield from lsblk_partition(at)
        elif at["type"] in ("disk", "rom") and at["size"] and at.get("tran") != "loop":
            yield from lsblk_disk(at)
        if at["type"] in ("disk", "part"):
            yield from file_system(at["path"], at["fstype"], at["uuid"], at["label"])
        for target in filter(None, at["mountpoints"]):
            if target != "[SWAP]":
                yield f"mount {target}", "source", at["path"]


def lsblk_disk(at):
    disk = f"disk {at['name']}"
    yield disk, "vendor", maker(at["vendor"])
    yield from named(disk, at.get, {
        "size": "size", "model": "model", "serial": "serial", "wwn": "wwn", "rev": "rev", "rotational": "rota",
        "removable": "rm", "read only": "ro", "logical block": "log-sec", "physical block": "phy-sec",
        "partition table": "pttype", "partition table uuid": "ptuuid"})


def lsblk_partition(at):
    part = f"partition {at['name']}"
    yield part, "start", at["start"] * 512 if at["start"] is not None else None  # always in units of 512 bytes
    yield from named(part, at.get, {"size": "size", "name": "partlabel", "type": lowered("parttype"),
                                    "uuid": lowered("partuuid")})


def memory_module(locator, size, vendor, part, serial):
    yield from facts(f"memory module {locator}", size=size, vendor=vendor, part=part, serial=serial)


def file_system(device, kind, uuid, label):
    yield from facts(f"file system {device}", type=kind, uuid=uuid, label=label)


@tool("blkid")
def blkid():
    for block in output_of("blkid -o export").split("\n\n"):
        said = dict(line.split("=", 1) for line in block.splitlines() if "=" in line)
        if "DEVNAME" in said:
            yield from file_system(said["DEVNAME"], said.get("TYPE"), said.get("UUID"), said.get("LABEL"))
            yield f"partition {said['DEVNAME'][5:]}", "uuid", lower(said.get("PARTUUID"))


@tool("findmnt")
def findmnt():
    """Only what stands on top of each mount point."""
    columns = "TARGET,SOURCE,FSTYPE,OPTIONS,SIZE"
    for at in json_of(f"findmnt -J -b -l -U -v -o {columns}").get("filesystems", []):
        mount = f"mount {at['target']}"
        yield from named(mount, at.get, {"source": "source", "type": "fstype"})
        yield mount, "options", frozenset(at["options"].split(","))
        yield mount, "size", at["size"] or None


@tool("ip")
def ip():
    for link in json_of("ip -j -d addr"):
        name = link["ifname"]
        interface = f"interface {name}"
        yield from named(interface, link.get, {"permanent mac": lowered("permaddr"), "mtu": "mtu",
                                               "state": lowered("operstate")})
        up = "UP" in link["flags"]
        yield from facts(interface, mac=lower(link["address"]) if link["link_type"] == "ether" else None, enabled=up,
                         link="LOWER_UP" in link["flags"] if up else None,
                         kind=link.get("linkinfo", {}).get("info_kind"))
        found = frozenset(f"{at['local']}/{at['prefixlen']}" for at in link["addr_info"])
        yield f"address of {name}", "all", found or None
        yield from link_settings(interface, link)
    for family, default in (("-4", "0.0.0.0/0"), ("-6", "::/0")):
        for route in json_of(f"ip -j {family} route show table main"):
            destination = default if route["dst"] == "default" else str(ipaddress.ip_network(route["dst"]))
            yield from facts(f"route {destination} dev {route.get('dev')} of table main",
                             gateway=route.get("gateway"), metric=route.get("metric", 0))


def link_settings(interface, link):
    """What depends on the kind of the interface, and on what it is part of."""
    info = link.get("linkinfo", {})
    kind, said, part = info.get("info_kind"), info.get("info_data", {}), info.get("info_slave_data", {})
    yield from named(interface, link.get, {
        "smallest mtu": "min_mtu", "largest mtu": lambda ask: ask("max_mtu") or None,
        "transmit queues": "num_tx_queues", "receive queues": "num_rx_queues", "other names": lambda ask: frozenset(ask("altnames") or ()) or None,
        "part of": "master", "alias": "ifalias"})
    if kind == "vlan":
        yield from named(interface, said.get, {"vlan": "id", "vlan protocol": "protocol"})
    if kind in ("macvlan", "macvtap"):
        yield interface, "macvlan mode", said.get("mode")
    if kind == "vxlan":
        yield interface, "vxlan", said.get("id")
    if kind == "bridge":
        yield from facts(interface, stp=bool(said.get("stp_state")), filtering=bool(said.get("vlan_filtering")))
    if kind == "bond":
        yield from named(interface, said.get, {"bond mode": "mode", "monitoring": "miimon", "active": "active_slave",
                                               "hash policy": "xmit_hash_policy"})
    if info.get("info_slave_kind") == "bond":
        yield from named(interface, part.get, {"bond state": lowered("state"), "bond link": lowered("mii_status")})
    if info.get("info_slave_kind") == "bridge":
        yield interface, "bridge state", part.get("state")
    lower_name = said.get("link") if kind == "vxlan" else link.get("link")
    if kind != "veth" and "link_netnsid" not in link:
        yield interface, "lower", lower_name


@tool("ethtool")
def ethtool():
    """Of interfaces that have a device."""
    for path in glob.glob("/sys/class/net/*/device"):
        name = path.split("/")[4]
        said = dict(line.split(": ", 1) for line in lines_of(["ethtool", "-i", name]) if ": " in line)
        yield from named(f"interface {name}", said.get, {
            "driver": "driver", "driver version": "version", "firmware": "firmware-version", "bus info": "bus-info"})
        link = dict(line.strip().split(": ", 1) for line in lines_of(["ethtool", name]) if ": " in line)
        yield from named(f"interface {name}", link.get, {
            "autonegotiation": lambda ask: {"on": True, "off": False}.get(ask("Auto-negotiation")),
            "connector": lambda ask: CONNECTORS.get(ask("Port"), lower(ask("Port")))})


CONNECTORS = {"Direct Attach Copper": "direct attach copper", "Twisted Pair": "twisted pair"}


@tool("cat")
def resolver():
    """The file of the C library, without what it ignores."""
    words = [line.split() for line in lines_of("cat /etc/resolv.conf") if line[:1].isalpha()]
    searched = [rest for keyword, *rest in words if keyword in ("search", "domain")]
    yield from facts("resolver", servers=" ".join(rest[0] for keyword, *rest in words if keyword == "nameserver"),
                     search=" ".join(searched[-1]) if searched else None)


def first(pattern, text):
    found = re.search(pattern, text)
    return found.group(1) if found else None


@tool("dpkg-query")
def dpkg():
    form = "${Package}\\t${Architecture}\\t${Version}\\t${db:Status-Status}\\t${Section}\\t${Installed-Size}\\n"
    for line in lines_of(["dpkg-query", "-W", "-f", form]):
        name, architecture, version, status, section, size = line.split("\t")
        yield from facts(f"package {name}:{architecture}", version=version, status=status, section=section,
                         size=number(size) * 1024 if size else None)


@tool("lsmod")
def lsmod():
    for line in lines_of("lsmod")[1:]:
        yield f"module {line.split()[0]}", "size", int(line.split()[1])
