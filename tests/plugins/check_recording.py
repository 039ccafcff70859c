#!/usr/bin/env python3
"""check_recording.py RECORD KYR [OPTION OF KYR COLLECT]...

Records this machine with scripts/record, collects it from the recording, and compares with a collection of the machine
itself: but for what changes by itself, the two must not differ in a byte.
"""
import difflib
import subprocess
import sys
import tarfile
import tempfile

sys.dont_write_bytecode = True  # nothing is left beside the sources

from kyr_collect import output_of_collect

OPTIONS = ["--stable", "--null", "--references"]


def record(program, folder):
    archive = f"{folder}/machine.tar.gz"
    subprocess.run([sys.executable, program, archive], check=True)
    with tarfile.open(archive) as recorded:
        recorded.extractall(f"{folder}/root")
    return f"{folder}/root"


def differences(program, command):
    with tempfile.TemporaryDirectory() as folder:
        recorded = output_of_collect(command, OPTIONS, record(program, folder), check=False)
        live = output_of_collect(command, OPTIONS, check=False)
    if live.count("\n") < 100:
        return ["Nearly nothing was collected.", live]
    return list(difflib.unified_diff(live.splitlines(), recorded.splitlines(), "live", "recorded", lineterm="", n=1))


def main():
    for _ in range(3):  # an address or a mount may come between the recording and the collection
        found = differences(sys.argv[1], sys.argv[2:])
        if not found:
            return 0
    print("\n".join(found[:200]))
    return 1


sys.exit(main())
