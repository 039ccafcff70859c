#!/usr/bin/env python3
"""export.py COUNT FOLDER KYR [OPTION]...

Makes a fleet of COUNT machines for two days in FOLDER, from the recorded ones of the tests, unless it is there, and
exports it: seconds, seconds of processors, the highest memory of all processes together (shared pages counted once) and
what was written. Then the seconds that each question of queries/ takes, also in the data base fleet_bench of the
PostgreSQL server that the environment tells, if there is one. KYR with the options has all plugins.
"""
import glob
import os
import subprocess
import sys
import time

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BASES = ("server", "virtual", "nvme", "laptop", "container", "hostile", "unreadable")
QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


def make_days(count, folder, kyr):
    """The files that hold the names of those of each day."""
    lists = [f"{folder}/day{day}.list" for day in (1, 2)]
    if all(map(os.path.exists, lists)):
        return lists
    os.makedirs(folder, exist_ok=True)
    bases = [f"{folder}/{name}.xml" for name in BASES]
    for name, base in zip(BASES, bases):
        root = {**os.environ, "KYR_SYSTEM_ROOT": f"{TOP}/tests/fixtures/machines/{name}"}
        subprocess.run([kyr[0], "collect", *kyr[1:], "-o", base], env=root, **QUIET)
    for day, path in enumerate(lists, 1):
        made = subprocess.run([f"{TOP}/bench/fleet.py", "--day", str(day), count, f"{folder}/day{day}", *bases],
                              stdout=subprocess.PIPE, check=True)
        with open(path, "wb") as file:
            file.write(made.stdout)
    return lists


def memory_of(group):
    """What the processes of the group hold, in bytes."""
    held = 0
    for path in glob.glob("/proc/[0-9]*"):
        try:
            if os.getpgid(int(path[6:])) == group:
                with open(f"{path}/smaps_rollup") as file:
                    held += sum(int(line.split()[1]) * 1024 for line in file if line.startswith("Pss:"))
        except (OSError, ValueError):
            pass  # it has ended
    return held


def measure(command, output=subprocess.DEVNULL):
    before, start, peak = os.times(), time.monotonic(), 0
    with subprocess.Popen(command, stdout=output, stderr=subprocess.PIPE, text=True, start_new_session=True) as process:
        while process.poll() is None:
            peak = max(peak, memory_of(process.pid))
            time.sleep(0.05)
        told = process.stderr.read().strip().rpartition("\n")[2]
    after = os.times()
    used = after.children_user + after.children_system - before.children_user - before.children_system
    return time.monotonic() - start, used, peak / 2**20, told


def export(what, command, written, output=None):
    if output is None and os.path.exists(written) and "again" not in what and "day 2" not in what:
        os.remove(written)
    with open(output or os.devnull, "w") as file:
        seconds, used, peak, told = measure(command, file)
    size = os.path.getsize(written) / 2**20
    print(f"{what:22} {seconds:7.1f} s {used:7.1f} s CPU {peak:7.0f} MiB {size:9.1f} MiB written  {told}", flush=True)


def ask(engine, *command):
    for path in sorted(glob.glob(f"{TOP}/queries/*.sql")):
        start = time.monotonic()
        with open(path) as file:
            done = subprocess.run(command, stdin=file, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        lines = done.stdout.count("\n") if done.returncode == 0 else done.stderr.strip()
        print(f"{engine} {os.path.basename(path):28} {time.monotonic() - start:7.2f} s  {lines} lines", flush=True)


def main():
    count, folder, *kyr = sys.argv[1:]
    first, second = make_days(count, folder, kyr)
    sizes = [os.path.getsize(path) for path in glob.glob(f"{folder}/day1/*")]
    print(f"{len(sizes)} files, {sum(sizes) / 2**20:.1f} MiB")
    base = [kyr[0], "export"]
    export("sqlite day 1", [*base, "--sqlite", f"{folder}/fleet.db", f"@{first}"], f"{folder}/fleet.db")
    export("sqlite day 2", [*base, "--sqlite", f"{folder}/fleet.db", f"@{second}"], f"{folder}/fleet.db")
    export("sqlite day 2 again", [*base, "--sqlite", f"{folder}/fleet.db", f"@{second}"], f"{folder}/fleet.db")
    for what, option in (("postgres", ["--postgres"]), ("jsonl", ["--jsonl"]), ("csv", ["--csv", "DiskDrive"])):
        path = f"{folder}/fleet.{what}"
        export(what, [*base, *option, f"@{first}"], path, path)
    ask("sqlite  ", "sqlite3", f"{folder}/fleet.db")
    if subprocess.run(["psql", "-qXd", "postgres", "-c", "SELECT 1"], **QUIET).returncode != 0:
        return print("no PostgreSQL server")
    for action in ("DROP DATABASE IF EXISTS fleet_bench", "CREATE DATABASE fleet_bench"):
        subprocess.run(["psql", "-qXd", "postgres", "-c", action], check=True, **QUIET)
    seconds, used, peak, told = measure(["psql", "-qXd", "fleet_bench", "-f", f"{folder}/fleet.postgres"])
    print(f"{'psql day 1':22} {seconds:7.1f} s  {told}")
    subprocess.run(["psql", "-qAtXd", "fleet_bench", "-c", "ANALYZE; SELECT pg_size_pretty(pg_database_size(current_database()))"])
    ask("postgres", "psql", "-qAtXd", "fleet_bench")


if __name__ == "__main__":
    main()
