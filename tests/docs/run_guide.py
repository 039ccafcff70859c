"""run_guide.py GUIDE PREFIX EXPECTED...

Does what a guide tells its reader, in an empty folder: writes each code block whose fence names a file, runs each
block of sh, with the core installed under PREFIX. What the commands print must hold each of the expected texts.
"""
import os
import re
import subprocess
import sys
import tempfile

guide, prefix, *expected = sys.argv[1:]
with open(guide, encoding="utf-8") as file:
    blocks = re.findall(r"^```(\w+) ?(\S*)\n(.*?)^```$", file.read(), re.M | re.S)
environment = {**os.environ, "PATH": f"{prefix}/bin:{os.environ['PATH']}", "CMAKE_PREFIX_PATH": prefix,
               "PKG_CONFIG_PATH": next(at for at, _, files in os.walk(prefix) if "kyrcore.pc" in files),
               "CMAKE_GENERATOR": "Ninja"}  # as this tree is built: make need not be there
printed = ""
with tempfile.TemporaryDirectory() as folder:
    for language, name, text in blocks:
        if name:
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(text)
        elif language == "sh":
            result = subprocess.run(["sh", "-ec", text], cwd=folder, env=environment, text=True, check=False,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            printed += result.stdout
            if result.returncode != 0:
                sys.exit(f"{guide}: this failed with status {result.returncode}:\n{text}\n{result.stdout}")
        else:
            sys.exit(f"{guide}: a block of {language} is neither a file nor a command:\n{text}")
missing = [text for text in expected if text not in printed]
if missing or not blocks:
    sys.exit(f"{guide}: {missing} is not in what its commands print:\n{printed}")
