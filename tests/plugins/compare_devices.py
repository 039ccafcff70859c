"""What the tools for devices and firmware tell of this machine, in the form that compare_tools.py tells of."""
import re

from compare_tools import (blocks_of, facts, first, json_of, lines_of, lowered, memory_module, named, number, numbered,
                           output_of, tool)


@tool("lspci")
def lspci():
    for block, said in blocks_of(output_of("lspci -D -vmm -k -nn")):
        slot = first(r"^Slot:\s*(\S+)", block)
        if not slot:
            continue
        for what, label in (("class", "Class"), ("vendor", "Vendor"), ("device", "Device"),
                            ("subsystem vendor", "SVendor"), ("subsystem", "SDevice")):
            name, _, digits = said.get(label, "").rpartition(" [")
            yield f"pci {slot}", f"{what} id", number(digits.rstrip("]"), 16)
            yield f"pci {slot}", what, name if not re.fullmatch(r"(Device|Class|Vendor|Subsystem)", name) else None
        yield from named(f"pci {slot}", said.get, {"revision": numbered("Rev", 16), "driver": "Driver",
                                                   "numa node": numbered("NUMANode")})


@tool("lsusb")
def lsusb():
    for line in lines_of("lsusb"):
        found = re.match(r"Bus (\d+) Device (\d+): ID (\w{4}):(\w{4})", line)
        if found:
            bus, device, vendor, product = found.groups()
            yield f"usb {int(bus)}/{int(device)}", "id", f"{vendor}:{product}"


@tool("sensors")
def sensors():
    for chip, said in json_of("sensors -j").items():
        for label, readings in said.items():
            if isinstance(readings, dict) and any(re.fullmatch(r"temp\d+_input", name) for name in readings):
                yield f"temperature of {chip.split('-')[0]}", label, True


@tool("getent")
def getent():
    for line in lines_of("getent -s files passwd"):
        name, _, user, group, comment, home, shell = line.split(":")
        yield from facts(f"account {name}", user=int(user), group=int(group), comment=comment.split(",")[0], home=home,
                         shell=shell)
    for line in lines_of("getent -s files group"):
        name, _, number_of_group, members = line.split(":")
        yield from facts(f"group {name}", number=int(number_of_group), members=tuple(members.split(",")))


@tool("passwd")
def passwd():
    states = {"P": "Usable", "L": "Locked", "NP": "No password needed"}
    for line in lines_of("passwd -S -a"):  # nothing, unless for a superuser
        name, state, changed, *_ = line.split()
        yield from facts(f"password {name}", state=states[state], changed=changed.replace("-", ""))


# The block, what it is called here, and its lines.
DMI = [("BIOS Information", "firmware", {"vendor": "Vendor", "version": "Version", "date": "Release Date"}),
       ("System Information", "system",
        {"vendor": "Manufacturer", "product": "Product Name", "version": "Version", "serial": "Serial Number",
         "sku": "SKU Number", "family": "Family", "uuid": lowered("UUID")}),
       ("Base Board Information", "board",
        {"vendor": "Manufacturer", "product": "Product Name", "version": "Version", "serial": "Serial Number"}),
       ("Chassis Information", "system", {"asset tag": "Asset Tag"})]


@tool("dmidecode")
def dmidecode():
    for block, said in blocks_of(output_of("dmidecode")):
        for title, thing, names in DMI:
            yield from named(thing, said.get, names) if title in block else ()
        if "\nMemory Device\n" in block and re.match(r"\d", said.get("Size", "")):
            yield from memory_device(said)


def memory_device(said):
    amount, unit = said["Size"].split()[:2]
    size = int(amount) << {"kB": 10, "MB": 20, "GB": 30, "TB": 40}[unit]
    yield from memory_module(said["Locator"], size, said.get("Manufacturer"), said.get("Part Number"),
                             said.get("Serial Number"))
