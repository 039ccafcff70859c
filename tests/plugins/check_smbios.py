#!/usr/bin/env python3
"""check_smbios.py MACHINES KYR [OPTION OF KYR COLLECT]...

Compares the memory and the other hardware that kyr tells of the machines in the folder with what dmidecode makes of
their firmware tables.
Exit status 77 if dmidecode is not installed.
"""
import re
import shutil
import struct
import sys
import tempfile

sys.dont_write_bytecode = True  # nothing is left beside the sources

from compare_tools import PATH, blocks_of, output_of
from kyr_collect import collect

NAMES = {"Size": "Capacity", "Locator": "DeviceLocator", "Bank Locator": "BankLocator", "Asset Tag": "AssetTag",
         "Manufacturer": "Manufacturer", "Serial Number": "SerialNumber", "Part Number": "PartNumber",
         "Speed": "Speed", "Configured Memory Speed": "ConfiguredSpeed", "Total Width": "TotalWidth",
         "Data Width": "DataWidth", "Number Of Devices": "Slots", "Maximum Capacity": "MaximumCapacity"}
# What kyr leaves out: nothing, and what the firmware's maker left there.
NOTHING = re.compile(r"|Unknown|Not Specified|<BAD INDEX>|No Module Installed|9876543210|.*_AssetTag|Unspecified|"
                     r"No Asset Information|Not Available|Default string|0000:(ff:1f\.7|00:00\.0)")
STATES = {"Boot-up State": "BootUpState", "Power Supply State": "PowerState", "Thermal State": "ThermalState"}
MADE = {"Manufacturer": "Manufacturer", "Serial Number": "SerialNumber", "Asset Tag": "AssetTag"}
# By type of structure: the class, and its properties by dmidecode's labels.
HARDWARE = {
    3: ("MOLTA_Chassis", {**MADE, **STATES, "Type": "ChassisType", "Version": "Version", "Height": "Height",
                          "Security Status": "SecurityState", "Number Of Power Cords": "PowerCords",
                          "SKU Number": "SKUNumber"}),
    4: ("MOLTA_ProcessorSocket", {**MADE, "Socket Designation": "SocketDesignation", "Type": "ProcessorType",
                                  "Version": "Model", "Voltage": "Voltage", "External Clock": "ExternalClock",
                                  "Max Speed": "MaxSpeed", "Current Speed": "BootSpeed", "Upgrade": "SocketType",
                                  "Part Number": "PartNumber", "Core Count": "Cores", "Core Enabled": "EnabledCores",
                                  "Thread Count": "Threads"}),
    7: ("MOLTA_CacheChip", {"Socket Designation": "CacheDesignation", "Operational Mode": "WritePolicy",
                            "Location": "Location", "Installed Size": "InstalledSize", "Maximum Size": "MaximumSize",
                            "Installed SRAM Type": "SRAMTypes", "Error Correction Type": "ErrorCorrection",
                            "System Type": "CacheType", "Associativity": "Associativity"}),
    8: ("MOLTA_PortConnector", {"Internal Reference Designator": "InternalDesignation",
                                "Internal Connector Type": "InternalConnectorType", "Port Type": "PortType",
                                "External Reference Designator": "ExternalDesignation",
                                "External Connector Type": "ExternalConnectorType"}),
    9: ("MOLTA_Slot", {"Designation": "SlotDesignation", "Type": "SlotType", "Current Usage": "SlotUsage",
                       "Length": "SlotLength", "Bus Address": "BusAddress"}),
    38: ("MOLTA_ManagementController", {"Interface Type": "InterfaceType", "I2C Slave Address": "TargetAddress",
                                        "Base Address": "BaseAddress"}),
    39: ("MOLTA_PowerSupplyUnit", {**MADE, "Location": "Location", "Name": "DeviceName", "Revision": "RevisionLevel",
                                   "Model Part Number": "PartNumber", "Max Power Capacity": "MaxPower",
                                   "Type": "SupplyType", "Input Voltage Range Switching": "InputVoltageSwitching",
                                   "Plugged": "PluggedIn", "Hot Replaceable": "HotReplaceable"}),
    41: ("MOLTA_OnboardDevice", {"Reference Designation": "ReferenceDesignation", "Type": "DeviceType",
                                 "Bus Address": "BusAddress"}),
    42: ("MOLTA_RedfishHostInterface", {"Service UUID": "ServiceUUID", "Host IP Assignment Type": "HostIPAssignment",
                                        "IPv4 Address": "HostAddress", "IPv4 Mask": "HostMask",
                                        "Redfish Service IP Discovery Type": "ServiceIPDiscovery",
                                        "IPv4 Redfish Service Address": "ServiceAddress",
                                        "IPv4 Redfish Service Mask": "ServiceMask",
                                        "Redfish Service Port": "ServicePort",
                                        "Redfish Service Hostname": "ServiceHostName"}),
}
UNITS = {"bytes": 1, "kB": 1 << 10, "MB": 1 << 20, "GB": 1 << 30, "TB": 1 << 40, "MT/s": 1, "bits": 1}


def read(path):
    with open(path, "rb") as file:
        return file.read()


def set_checksum(entry, start, place):
    entry[place] = 0
    entry[place] = -sum(entry[start:]) & 0xff


def dump_of(folder):
    """In the form of dmidecode's own dumps: an entry point that says that the table stands behind it."""
    table, entry = read(f"{folder}/DMI"), bytearray(read(f"{folder}/smbios_entry_point"))
    if entry.startswith(b"_SM3_"):
        struct.pack_into("<IQ", entry, 0x0c, len(table), 32)
        set_checksum(entry, 0, 5)
    else:
        struct.pack_into("<I", entry, 0x18, 32)
        set_checksum(entry, 0x10, 0x15)
        set_checksum(entry, 0, 4)
    return bytes(entry).ljust(32, b"\0") + table


def decoded(text):
    """A value as dmidecode prints it: dots for what cannot be printed, words for nothing, a number with its unit."""
    text = re.sub("[^ -~]", ".", text).strip(". ")
    number = re.fullmatch(rf"(\d+) ({'|'.join(UNITS)})", text)
    return None if NOTHING.fullmatch(text) else int(number[1]) * UNITS[number[2]] if number else text


def theirs(folder):
    for said in dumped(folder, "16,17"):
        told = {NAMES[label]: decoded(value) for label, value in said.items() if label in NAMES}
        if "Slots" in told:
            yield {**told, "Slots": int(told["Slots"]), "MaximumCapacity": told["MaximumCapacity"] >> 30}
        elif said.get("Size", "No Module Installed") != "No Module Installed":
            yield told


def dumped(folder, types):
    with tempfile.NamedTemporaryFile() as dump:
        dump.write(dump_of(folder))
        dump.flush()
        return [said for _, said in blocks_of(output_of(f"dmidecode -t {types} --from-dump {dump.name}"))]


def is_same(other, mine):
    """Whether dmidecode's text says what a property of kyr has: its word, its flag or its number; or both say nothing."""
    value, words = mine["value"], mine["text"]
    words = " ".join(words) if isinstance(words, list) else words
    if value is None or other == "None":
        return decoded(other) is None or other == "None" and words in (None, "None")
    if isinstance(value, bool):
        return other == ("Yes" if value else "No")
    if isinstance(value, str):
        return plain(value) == decoded(other)
    if other == "<OUT OF SPEC>":  # newer than dmidecode
        return True
    # A slot has its width in front, an interface its full name behind.
    if re.fullmatch(rf"(x\d+ )?{re.escape(words)}( \(.*\))?", other):
        return True
    if other.startswith("0x"):
        return int(other.split()[0], 16) == value
    amount = re.fullmatch(r"([0-9.]+)(?: ?([A-Za-z]+))?", other)
    return bool(amount) and float(amount[1]) * UNITS.get(amount[2], 1) == value


def hardware_differences(machine, command):
    classes = {told["name"]: told["instances"] for told in collect(command, machine, check=False)["classes"]}
    for kind, (name, labels) in HARDWARE.items():
        said = [block for block in dumped(f"{machine}/sys/firmware/dmi/tables", kind) if block]
        told = [instance["properties"] for instance in classes[name]]
        told = [at for at in told if "SlotName" not in at or not at.get("Tag", at)["value"].startswith("pci-")]
        told.sort(key=lambda at: int(at["Tag"]["value"].split("-")[1]) if "Tag" in at else 0)
        if len(said) != len(told):
            yield f"{machine}: {len(told)} of {name}, and dmidecode tells of {len(said)}"
        for other, mine in zip(said, told):
            for label, property_name in labels.items():
                at = mine.get(property_name, {"value": None, "text": None})
                if label in other and not is_same(other[label], at):
                    yield f"{machine}: {property_name} of {name} is {at['text']!r}, and dmidecode tells {other[label]!r}"


def plain(value):
    """As dmidecode prints it, which knows bytes alone."""
    if not isinstance(value, str):
        return value
    return re.sub(rb"\\x[0-9A-F]{2}|[^ -~]", b".", value.encode()).decode().strip(". ") or None


def ours(machine, command):
    """Arrays first, each kind in the order of the table."""
    classes = {told["name"]: told["instances"] for told in collect(command, machine, check=False)["classes"]}
    for name in ("MOLTA_MemoryArray", "MOLTA_PhysicalMemory"):
        told = [{key: plain(at["value"]) for key, at in instance["properties"].items()} for instance in classes[name]]
        for instance in sorted(told, key=lambda at: int(at["Tag"].split("-")[1])):
            if "Slots" in instance:
                instance["MaximumCapacity"] >>= 30
            yield instance


def differences(machine, command):
    mine = list(ours(machine, command))
    others = sorted(theirs(f"{machine}/sys/firmware/dmi/tables"), key=lambda told: "Slots" not in told)
    if not others or len(mine) != len(others):
        yield f"{machine}: {len(mine)} arrays and modules, and dmidecode tells of {len(others)}"
    for instance, other in zip(mine, others):
        for key, value in other.items():
            if instance.get(key) != value:
                yield f"{machine}: {key} of {instance['Tag']} is {instance.get(key)!r}, and dmidecode tells {value!r}"


def main():
    if not shutil.which("dmidecode", path=PATH):
        return 77
    machines = [f"{sys.argv[1]}/{name}" for name in ("server", "laptop", "nvme", "hostile")]
    found = [line for machine in machines for line in differences(machine, sys.argv[2:])]
    found += [line for machine in machines[:-1] for line in hardware_differences(machine, sys.argv[2:])]
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
