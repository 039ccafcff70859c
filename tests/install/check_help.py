"""check_help.py SCRIPTS

Checks that each of the scripts tells with --help what it does, refuses an option that it does not have, and does
nothing else: here there is nothing to build, and what fails says so on standard error.
"""
import os
import shutil
import subprocess
import sys
import tempfile

SOURCED = "common"
PASSES_OPTIONS_ON = "bench"  # to a program that has to be built first

with tempfile.TemporaryDirectory() as folder:
    scripts = shutil.copytree(sys.argv[1], f"{folder}/scripts")
    for name in sorted(set(os.listdir(scripts)) - {SOURCED}):
        for options in (["--help"], ["-h"]):
            result = subprocess.run([f"{scripts}/{name}", *options], text=True, capture_output=True, check=False)
            told = (result.returncode, result.stdout.startswith(f"scripts/{name}"), result.stderr)
            assert told == (0, True, ""), f"{name} {options}: {result}"
        result = subprocess.run([f"{scripts}/{name}", "--nonsense"], text=True, capture_output=True, check=False)
        assert name == PASSES_OPTIONS_ON or (result.returncode, result.stdout) == (2, ""), f"{name} --nonsense: {result}"
    assert os.listdir(folder) == ["scripts"], os.listdir(folder)
