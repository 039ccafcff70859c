"""check_own.py SOURCES KYR

Runs kyr check over the documents of this tree and those in its guides: they violate no rule at all.
"""
import glob
import os
import re
import subprocess
import sys
import tempfile

sources, kyr = sys.argv[1:]
paths = [*glob.glob(f"{sources}/schema/*.xml"), f"{sources}/plugins"]
with tempfile.TemporaryDirectory() as folder:
    for guide in glob.glob(f"{sources}/docs/*.md"):
        with open(guide, encoding="utf-8") as file:
            documents = re.findall(r"^```xml (\S+\.properties\.xml)$\n(.*?)^```$", file.read(), re.M | re.S)
        for name, text in documents:
            paths.append(os.path.join(folder, name))
            with open(paths[-1], "w", encoding="utf-8") as file:
                file.write(text)
    run = subprocess.run([kyr, "check", "--fail-on", "note", *paths], check=False, capture_output=True, text=True)
if run.returncode != 0 or len(paths) < 4:
    sys.exit(f"{paths}\n{run.stdout}{run.stderr}")
