#!/usr/bin/env python3
# tests/host/damage_files.py COUNT MACHINE KYR
#
# Saves a collection of a machine of the fixtures, and shows COUNT damaged copies of it: each must print what the whole
# file prints, or end with a status and a word on standard error, and none may hold kyr up. Damage depends on its number
# alone. By hand: tests/host/damage_files.py 5000 tests/fixtures/machines/container build/bin/kyr
import gzip
import os
import random
import subprocess
import sys
import tempfile
import time

MOST_SECONDS = 20  # of the 30 that kyr gives to the reader of a file


def flip(data, rng, times=1):
    for _ in range(times):
        data[rng.randrange(len(data))] ^= 1 << rng.randrange(8)


def flip_some(data, rng):
    flip(data, rng, rng.randint(2, 20))


def cut(data, rng):
    del data[rng.randrange(len(data)):]


def cut_end(data, rng):
    del data[-rng.randint(1, 400):]


def cut_start(data, rng):
    del data[: rng.randint(1, len(data) - 1)]


def delete(data, rng):
    at = rng.randrange(len(data))
    del data[at : at + rng.choice([1, 2, 10, 100, 5000])]


def insert(data, rng):
    at = rng.randrange(len(data))
    data[at:at] = bytes(rng.randrange(256) for _ in range(rng.choice([1, 2, 50])))


def duplicate(data, rng):
    at, size = rng.randrange(len(data)), rng.choice([1, 40, 2000])
    data[at:at] = data[at : at + size]


def clear_block(data, rng):
    at, size = rng.randrange(len(data)) & ~511, 512
    data[at : at + size] = bytes(len(data[at : at + size]))


def swap_blocks(data, rng):
    a, b = (rng.randrange(len(data) - 512) & ~511 for _ in range(2))
    data[a : a + 512], data[b : b + 512] = data[b : b + 512], data[a : a + 512]


def replace_one(data, rng, old, new):
    places, at = [], data.find(old)
    while at >= 0:
        places.append(at)
        at = data.find(old, at + 1)
    if places:
        at = rng.choice(places)
        data[at : at + len(old)] = new


def stop(data, rng):
    """What makes the reader end without an error."""
    replace_one(data, rng, rng.choice([b"</", b"<"]), rng.choice([b"<!", b"<?", b"<!--", b"<![CDATA["]))


def stop_and_cut(data, rng):
    stop(data, rng)
    cut_end(data, rng)


def unquote(data, rng):
    replace_one(data, rng, b'"', b"")


def unquote_and_cut(data, rng):
    del data[data.find(b'"', rng.randrange(len(data) - 100)) + 1 :]


DAMAGES = [flip, flip, flip_some, cut, cut_end, cut_start, delete, insert, duplicate, clear_block, swap_blocks, stop,
           stop, stop_and_cut, unquote, unquote_and_cut]


def damaged(number, whole):
    """The name and the content of the damaged file of that number."""
    rng = random.Random(number)
    damage = rng.choice(DAMAGES)
    form = rng.choice(["plain", "text in gzip", "gzip"])
    data = bytearray(gzip.compress(whole, 6, mtime=0) if form == "gzip" else whole)
    damage(data, rng)
    content = gzip.compress(data, 1, mtime=0) if form == "text in gzip" else bytes(data)
    return f"{number} ({damage.__name__}, {form})", ".xml" if form == "plain" else ".xml.gz", content


def run(command):
    start = time.monotonic()
    done = subprocess.run(command, capture_output=True, timeout=100)
    return done, time.monotonic() - start


def main():
    count, machine, kyr = int(sys.argv[1]), sys.argv[2], sys.argv[3]
    os.environ["KYR_SYSTEM_ROOT"] = machine
    faults, told, refused, slowest = [], 0, 0, 0.0
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "whole.xml")
        subprocess.run([kyr, "collect", "-o", file], check=True)
        with open(file, "rb") as stream:
            whole = stream.read()
        shows = [[kyr, "show", *options] for options in ([], ["--json"])]
        expected = [run([*show, file])[0].stdout for show in shows]
        for number in range(count):
            name, ending, content = damaged(number, whole)
            path = os.path.join(folder, "damaged" + ending)
            with open(path, "wb") as stream:
                stream.write(content)
            done, seconds = run([*shows[number % 2], path])
            slowest = max(slowest, seconds)
            is_told = done.returncode in (1, 3) and done.stderr != b""
            told += done.returncode == 1
            refused += done.returncode == 3
            if not is_told and (done.returncode != 0 or done.stdout != expected[number % 2]):
                faults.append(f"{name}: status {done.returncode}, {done.stderr[-200:]!r}")
            if seconds > MOST_SECONDS:
                faults.append(f"{name}: {seconds:.1f} s")
    for fault in faults:
        print(fault)
    same = count - told - refused - sum("status" in fault for fault in faults)
    print(f"{count} files: {refused} refused, {told} shown as changed, {same} shown alike, {len(faults)} faults;",
          f"{slowest:.2f} s at most")
    return 1 if faults else 0


sys.exit(main())
