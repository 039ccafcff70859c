"""check_service.py PREFIX MACHINE

Checks the units of systemd under PREFIX, and runs what the service runs day by day on the files of MACHINE.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

prefix, machine = sys.argv[1:]
units = [f"{prefix}/lib/systemd/system/kyr-collect.{kind}" for kind in ("service", "timer")]
MOST_EXPOSURE = 35  # of 100, as systemd-analyze counts it

# Each gives the service mounts of its own, with other options and some more, which would be collected as the machine's;
# PrivateNetwork hides the adapters.
HIDING = {"BindPaths", "BindReadOnlyPaths", "DynamicUser", "ExecPaths", "InaccessiblePaths", "MountAPIVFS", "NoExecPaths",
          "PrivateDevices", "PrivateIPC", "PrivateMounts", "PrivateNetwork", "PrivateTmp", "ProcSubset",
          "ProtectControlGroups", "ProtectHome", "ProtectKernelLogs", "ProtectKernelModules", "ProtectKernelTunables",
          "ProtectProc", "ProtectSystem", "ReadOnlyPaths", "ReadWritePaths", "RootDirectory", "TemporaryFileSystem"}


def analyze(*arguments):
    result = subprocess.run(["systemd-analyze", *arguments], text=True, capture_output=True, check=False)
    assert result.returncode == 0, f"systemd-analyze {arguments}:\n{result.stdout}{result.stderr}"
    return result.stderr


def read(path):
    with open(path, "rb") as file:
        return file.read()


def check_units():
    told = analyze("verify", "--man=no", *units)
    assert "kyr-collect" not in told, told
    analyze("security", "--offline=true", f"--threshold={MOST_EXPOSURE}", units[0])
    with open(units[0], encoding="utf-8") as file:
        options = set(re.findall(r"^(\w+)=", file.read(), re.M))
    assert "CapabilityBoundingSet" in options and not options & HIDING, options & HIDING


class Days:
    def __init__(self, folder):
        self.root, self.state, self.programs = (f"{folder}/{name}" for name in ("root", "state", "programs"))
        shutil.copytree(machine, self.root, symlinks=True)
        os.mkdir(self.state)
        os.mkdir(self.programs)
        self.set_program('exec "$kyr" "$@"')

    def set_program(self, line):
        """What the service finds as kyr: a line of shell, where $kyr is the real one."""
        with open(f"{self.programs}/kyr", "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\nkyr={prefix}/bin/kyr\n{line}\n")
        os.chmod(f"{self.programs}/kyr", 0o755)

    def path(self, name):
        return f"{self.state}/{name}.xml.gz"

    def run(self, status, *printed, **environment):
        """Runs the service. Returns what the two files held before."""
        before = [read(self.path(name)) if os.path.exists(self.path(name)) else None for name in ("current", "previous")]
        result = subprocess.run([f"{prefix}/libexec/kyr/collect-and-compare", self.state], text=True, check=False,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                env={**os.environ, "PATH": f"{self.programs}:{os.environ['PATH']}",
                                     "KYR_SYSTEM_ROOT": self.root, **environment})
        assert result.returncode == status, f"status {result.returncode} and not {status}:\n{result.stdout}"
        assert all(one in result.stdout for one in printed), f"not all of {printed} in:\n{result.stdout}"
        assert printed or not result.stdout, result.stdout
        return before

    def run_at_once(self, count):
        """Runs the service several times side by side. Returns the exit statuses."""
        programs = [subprocess.Popen([f"{prefix}/libexec/kyr/collect-and-compare", self.state],
                                     env={**os.environ, "PATH": f"{self.programs}:{os.environ['PATH']}",
                                          "KYR_SYSTEM_ROOT": self.root}) for _ in range(count)]
        return [program.wait() for program in programs]

    def expect(self, current, previous):
        """None: no such file; otherwise its content, or what is only not to be its content."""
        for name, (same, content) in (("current", current), ("previous", previous)):
            there = read(self.path(name)) if os.path.exists(self.path(name)) else None
            assert (there == content) is same, f"{name}.xml.gz is {'not' if same else 'still'} what it was"

    def write(self, path, text):
        with open(f"{self.root}/{path}", "w", encoding="utf-8") as file:
            file.write(text)


def is_(content):
    return True, content


def is_not(content):
    return False, content


def check_days(days):
    days.run(0)
    days.expect(is_not(None), is_(None))

    days.write("proc/sys/kernel/hostname", "renamed\n")
    before, _ = days.run(0, "ComputerSystem\n", "-> renamed\n", "1 changed\n")
    days.expect(is_not(before), is_(before))

    # In the journal what has changed is of the priority "notice".
    days.write("proc/sys/kernel/hostname", "again\n")
    before, _ = days.run(0, "<5>ComputerSystem\n", "<5>1 changed\n", JOURNAL_STREAM="1:1")
    days.expect(is_not(before), is_(before))
    days.run(0)

    os.rename(f"{days.root}/sys/firmware", f"{days.root}/sys/hidden")
    before, _ = days.run(1, "missing source", "not compared\n")
    days.expect(is_not(before), is_(before))
    os.rename(f"{days.root}/sys/hidden", f"{days.root}/sys/firmware")
    days.run(0, "not compared\n")

    for status, program in ((3, f'exec "$kyr" "$@" --plugins {days.state}'),  # no plugin there
                            (4, 'ulimit -f 0; exec "$kyr" "$@"'),
                            (143, 'kill -TERM $PPID; "$kyr" "$@"; exit 1')):
        days.set_program(program)
        current, previous = days.run(status, *(["kyr: "] if status != 143 else []))
        days.expect(is_(current), is_(previous))

    days.set_program('exec "$kyr" "$@"')
    with open(days.path("current"), "wb") as file:
        file.write(b"damaged")
    current, previous = days.run(3, "cannot read the collection")
    days.expect(is_not(current), is_(previous))
    days.run(0)

    assert days.run_at_once(3) == [0, 0, 0]
    files = [os.stat(days.path(name)) for name in ("current", "previous")]
    assert files[0].st_ino != files[1].st_ino, "both files are one"
    assert all(file.st_mode & 0o077 == 0 for file in files), "others can read the files"


check_units()
with tempfile.TemporaryDirectory() as temporary:
    check_days(Days(temporary))
