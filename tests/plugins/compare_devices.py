"""What the tools for devices and firmware tell of this machine, in the form that compare_tools.py tells of."""
import re

from compare_tools import blocks_of, first, json_of, lines_of, lower, memory_module, number, output_of, tool


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
        yield f"pci {slot}", "revision", number(said.get("Rev"), 16)
        yield f"pci {slot}", "driver", said.get("Driver")
        yield f"pci {slot}", "numa node", number(said.get("NUMANode"))


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


# The block, its line, and how it is called here.
DMI = [("BIOS Information", "Vendor", "firmware", "vendor"), ("BIOS Information", "Version", "firmware", "version"),
       ("BIOS Information", "Release Date", "firmware", "date"),
       ("System Information", "Manufacturer", "system", "vendor"),
       ("System Information", "Product Name", "system", "product"),
       ("System Information", "Version", "system", "version"),
       ("System Information", "Serial Number", "system", "serial"),
       ("System Information", "SKU Number", "system", "sku"), ("System Information", "Family", "system", "family"),
       ("System Information", "UUID", "system", "uuid"),
       ("Base Board Information", "Manufacturer", "board", "vendor"),
       ("Base Board Information", "Product Name", "board", "product"),
       ("Base Board Information", "Version", "board", "version"),
       ("Base Board Information", "Serial Number", "board", "serial"),
       ("Chassis Information", "Asset Tag", "system", "asset tag")]


@tool("dmidecode")
def dmidecode():
    for block, said in blocks_of(output_of("dmidecode")):
        for title, label, thing, what in DMI:
            if title in block and label in said:
                yield thing, what, lower(said[label]) if what == "uuid" else said[label]
        if "\nMemory Device\n" in block and re.match(r"\d", said.get("Size", "")):
            yield from memory_device(said)


def memory_device(said):
    amount, unit = said["Size"].split()[:2]
    size = int(amount) << {"kB": 10, "MB": 20, "GB": 30, "TB": 40}[unit]
    yield from memory_module(said["Locator"], size, said.get("Manufacturer"), said.get("Part Number"),
                             said.get("Serial Number"))
