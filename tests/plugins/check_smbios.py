#!/usr/bin/env python3
"""check_smbios.py MACHINES KYR [OPTION OF KYR COLLECT]...

Compares the memory that kyr tells of the machines in the folder with what dmidecode makes of their firmware tables.
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
NOTHING = re.compile(r"|Unknown|Not Specified|<BAD INDEX>|No Module Installed|9876543210|.*_AssetTag")
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
    with tempfile.NamedTemporaryFile() as dump:
        dump.write(dump_of(folder))
        dump.flush()
        for _, said in blocks_of(output_of(f"dmidecode -t 16,17 --from-dump {dump.name}")):
            told = {NAMES[label]: decoded(value) for label, value in said.items() if label in NAMES}
            if "Slots" in told:
                yield {**told, "Slots": int(told["Slots"]), "MaximumCapacity": told["MaximumCapacity"] >> 30}
            elif said.get("Size", "No Module Installed") != "No Module Installed":
                yield told


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
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
