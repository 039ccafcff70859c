#!/usr/bin/env python3
"""check_edid.py KYR [OPTION OF KYR COLLECT]...

Compares what kyr tells of monitors with what edid-decode makes of their EDIDs: of made-up ones, and of the same with
damage. Exit status 77 if edid-decode is not installed.
"""
import os
import re
import shutil
import sys
import tempfile

sys.dont_write_bytecode = True  # nothing is left beside the sources

from compare_tools import PATH, output_of
from edids import random_edids
from kyr_collect import collect

COUNT = 300
INTERFACES = {"DVI": "DVI", "HDMIa": "HDMI type A", "HDMIb": "HDMI type B", "MDDI": "MDDI",
              "DisplayPort": "DisplayPort"}
# What edid-decode prints on a line, what it is here, and how it is compared.
LINES = [(r"    Manufacturer: ([A-Z]{3})$", "ManufacturerID", str), (r"    Model: (\d+)$", "ProductCode", int),
         (r"    Serial Number: (\d+)$", "IDSerialNumber", int), (r"    Made in: week (\d+) of", "ManufactureWeek", int),
         (r"    Made in: .*?(\d{4})$", "ManufactureYear", int), (r"    Model year: (\d+)$", "ModelYear", int),
         (r"    (Digital|Analog) display$", "InputType", str),
         (r"    Bits per primary color channel: (\d+)$", "BitsPerColor", int),
         (r"    (\S+) interface$", "DigitalInterface", INTERFACES.get), (r"    Gamma: ([\d.]+)$", "Gamma", float),
         (r"  EDID Structure Version & Revision: (\S+)$", "EDIDVersion", str),
         (r"    Display Product Name: '(.*)'$", "Model", str),
         (r"    Display Product Serial Number: '(.*)'$", "SerialNumber", str),
         (r"  Extension blocks: (\d+)$", "EDIDExtensions", int)]
TIMING = re.compile(r"    DTD(?: \d+)?: +(\d+)x(\d+)(i?) +([\d.]+) Hz.*?(?:\((.*)\))?$")
NATIVE = re.compile(r"Native Video Resolution if the DisplayID Blocks are parsed:\n  (\d+)x(\d+)")
# What kyr leaves out: numbers and texts that stand for none, and weeks that no year has.
UNSET = {"IDSerialNumber": r"0|16843009|4294967295", "SerialNumber": r"[-0xX ]*",
         "ManufactureWeek": r"5[5-9]|[6-9].|..."}
UNPRINTABLE = re.compile(r"\\x[0-9A-F]{2}|[^ -~]")


def decode(edid):
    with tempfile.NamedTemporaryFile() as file:
        file.write(edid)
        file.flush()
        return output_of(f"edid-decode -s -n {file.name}")


def timings(text):
    for line in text.splitlines():
        if found := TIMING.match(line):
            yield (int(found[1]), int(found[2]), found[3] == "i"), float(found[4]), found[5] or ""


def preferred(text):
    """The native resolution, the preferred timing that is too large for the first block, or the first timing."""
    all_told = list(timings(text))
    large = [told for told in all_told if "preferred" in told[2] and max(told[0][:2]) > 4095]
    best = (large or all_told or [None])[0]
    native = NATIVE.search(text)
    if native and (not best or best[0][:2] != (int(native[1]), int(native[2]))):
        same = [told for told in all_told if told[0][:2] == (int(native[1]), int(native[2])) and max(told[0]) > 4095]
        best = same[0] if same else ((int(native[1]), int(native[2]), False), None, "")
    return best


def theirs(text):
    told = {}
    for line in text.split("Block 1,")[0].splitlines():
        for pattern, name, convert in LINES:
            if name not in told and (found := re.match(pattern, line)) and (value := convert(found[1])) is not None:
                told[name] = value.strip() if isinstance(value, str) else value
    told = {name: value for name, value in told.items() if not re.fullmatch(UNSET.get(name, "(?!)"), str(value))}
    if size := re.search(r"Maximum image size: (\d+) cm x (\d+) cm", text):
        told["size"] = (int(size[1]), int(size[2]))
    if best := preferred(text):
        told["resolution"], told["RefreshRate"] = best[0], best[1]
    return {name: value for name, value in told.items() if value not in (None, "")}


def ours(instance):
    at = {name: told.get("text", told["value"]) if name in ("InputType", "DigitalInterface") else told["value"]
          for name, told in instance["properties"].items()}
    if at.get("ScreenWidth"):
        at["size"] = (at["ScreenWidth"], at["ScreenHeight"])
    if at.get("HorizontalResolution"):
        at["resolution"] = (at["HorizontalResolution"], at["VerticalResolution"], at["Interlaced"])
    return at


def is_equal(name, mine, value):
    if mine is None:
        return False
    if name == "size":  # a timing that fits tells millimetres
        return all(abs(mine[i] - 10 * value[i]) <= 10 for i in (0, 1))
    if name in ("Gamma", "RefreshRate"):
        return abs(float(mine) - value) < 0.006
    if isinstance(mine, str):  # edid-decode ends a text at the first byte that it cannot print
        return UNPRINTABLE.split(mine)[0].strip() == value
    return mine == value


def machine_with(folder, edids):
    """A machine with one card, which has a connector for each EDID."""
    device = f"{folder}/sys/devices/platform/example"
    for number, edid in enumerate(edids, 1):
        connector = f"{device}/drm/card0/card0-DP-{number}"
        os.makedirs(connector)
        with open(f"{connector}/edid", "wb") as file:
            file.write(edid)
    os.makedirs(f"{folder}/sys/class/drm")
    os.symlink("../../devices/platform/example/drm/card0", f"{folder}/sys/class/drm/card0")
    for number in range(1, len(edids) + 1):
        os.symlink(f"../../devices/platform/example/drm/card0/card0-DP-{number}",
                   f"{folder}/sys/class/drm/card0-DP-{number}")
    return folder


def monitors(edids, command):
    with tempfile.TemporaryDirectory() as folder:
        told = collect([*command, "--class", "MOLTA_Monitor"], machine_with(folder, edids), check=False)
    instances = next(cls["instances"] for cls in told["classes"] if cls["name"] == "MOLTA_Monitor")
    return {instance["properties"]["Name"]["value"]: ours(instance) for instance in instances}


def differences(edids, command):
    mine = monitors(edids, command)
    for number, edid in enumerate(edids, 1):
        if (told := mine.get(f"DP-{number}")) is None:
            yield f"EDID {number} is missing"
            continue
        for name, value in theirs(decode(edid)).items():
            if not is_equal(name, told.get(name), value):
                yield f"EDID {number}: {name} is {told.get(name)!r}, and edid-decode tells {value!r}"


def main():
    if not shutil.which("edid-decode", path=PATH):
        return 77
    found = list(differences(random_edids(COUNT), sys.argv[1:]))
    print("\n".join(found[:100]), f"\n{len(found)} differences in {2 * COUNT} EDIDs")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
