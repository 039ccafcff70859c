"""Runs kyr collect for the checks beside this file, which get kyr and its options on their own command lines."""
import json
import os
import subprocess


def output_of_collect(command, options, root=None, check=True):
    """What it prints, of the machine below a root or of this one."""
    environment = {**os.environ, "KYR_SYSTEM_ROOT": root} if root else None
    return subprocess.run([command[0], "collect", *options, *command[1:]], env=environment, stdout=subprocess.PIPE,
                          check=check).stdout.decode("utf-8", "replace")


def collect(command, root=None, check=True):
    return json.loads(output_of_collect(command, ["--json"], root, check))
