#!/usr/bin/env python3
"""check_manual.py MAN_FOLDER KYR SOURCES

mandoc finds nothing to complain of in the pages, all pages that they refer to are there, and the page of each command
has every option of its help. Variables of the environment that the sources ask for stand in kyr(1)."""

import pathlib
import re
import subprocess
import sys

MANUAL, KYR, SOURCES = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
faults = []
VERSION = subprocess.run([KYR, "--version"], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False).stdout


def expect(condition, fault):
    if not condition:
        faults.append(fault)


def text_of(page):
    return re.sub(".\b", "", output("mandoc", "-Tascii", str(page)))


def check_page(page):
    # It looks for other pages in the system's manual alone, and would have no version in those of the system itself.
    meant = re.compile("referenced manual|operating system explicitly specified")
    faults.extend(line for line in output("mandoc", "-Tlint", str(page)).splitlines() if not meant.search(line))
    expect(text_of(page).endswith(f"{VERSION}\n"), f"{page.name}: the foot has no version")
    for name, section in re.findall(r"(?m)Xr (\S+) ([0-9])", page.read_text()):
        expect((MANUAL / f"man{section}" / f"{name}.{section}").exists(), f"{page.name}: no page {name}({section})")


def check_options(page, *command):
    text = text_of(page)
    options = set(re.findall(r"(?m)^ +(?:-\w,)?(--[a-z-]+)", output(KYR, *command, "--help")))
    expect("--help" in options, f"{page.name}: no options in the help")
    for option in sorted(options):
        expect(re.search(rf"(?m)^ +(-\w, )?{option}\b(?!-)", text), f"{page.name}: no {option}")


def check_environment():
    text = text_of(MANUAL / "man1" / "kyr.1")
    asked = {name for path in [*SOURCES.glob("host/**/*.cpp"), *SOURCES.glob("plugins/**/*.cpp")]
             for name in re.findall(r'"(KYR_[A-Z_]+)"', path.read_text())}
    expect("KYR_PAGER" in asked, "no variable found in the sources")
    for name in sorted(asked):
        expect(name in text, f"kyr.1: no {name}")


pages = sorted(MANUAL.glob("man*/*"))
for each in pages:
    check_page(each)
commands = re.findall(r"(?m)^  ([a-z-]+) +", output(KYR, "--help").partition("Subcommands:")[2].partition("\n\n")[0])
expect(len(commands) >= 9, f"commands found: {commands}")
check_options(MANUAL / "man1" / "kyr.1")
for each in commands:
    if each != "help":
        check_options(MANUAL / "man1" / f"kyr-{each}.1", each)
check_environment()
print("\n".join(faults) or f"{len(pages)} pages are in order")
sys.exit(bool(faults))
