#!/usr/bin/env python3
"""check_sockets.py [--nobody] KYR [OPTION OF KYR COLLECT]...

Opens sockets of many kinds, has two processes hold them, and checks that kyr tells of each with both of them; that a
copy of the plugin in another folder needs a grant to find them; and that ss, if it is there, tells the same. With
--nobody, all as an ordinary user.
"""
import contextlib
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # nothing is left beside the sources

from kyr_collect import collect

CLASSES = ["MOLTA_ListeningSocket", "MOLTA_UnixListeningSocket"]
MANY = 200


def listener(family, kind, address, *options):
    opened = socket.socket(family, kind)
    for level, option, value in options:
        opened.setsockopt(level, option, value)
    opened.bind(address)
    if kind != socket.SOCK_DGRAM:
        opened.listen(7)
    return opened


def open_sockets(folder):
    """The sockets by the names that kyr is to give them, each with what it is to say, but for the processes."""
    inet, inet6, stream, datagram = socket.AF_INET, socket.AF_INET6, socket.SOCK_STREAM, socket.SOCK_DGRAM
    reuse = (socket.SOL_SOCKET, socket.SO_REUSEPORT, 1)
    wanted, kept = {}, []

    def keep(opened, protocol, **said):
        host, port = opened.getsockname()[:2]
        name = f"{protocol} [{host}]:{port}" if ":" in host else f"{protocol} {host}:{port}"
        wanted[name] = {"Sockets": 1, "Port": port, "Address": host, **said}
        kept.append(opened)
        return opened

    for _ in range(MANY):
        keep(listener(inet, stream, ("127.0.0.1", 0)), "tcp", Backlog=7, LocalOnly=True)
    keep(listener(inet, datagram, ("127.0.0.1", 0)), "udp")
    shared = keep(listener(inet, stream, ("127.0.0.1", 0), reuse), "tcp", Sockets=2)
    kept.append(listener(inet, stream, shared.getsockname(), reuse))
    with contextlib.suppress(OSError):  # a system without IPv6
        keep(listener(inet6, stream, ("::1", 0), (socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)), "tcp", IPv6Only=True)
    peer = socket.socket(inet, datagram)
    peer.bind(("127.0.0.1", 0))
    peer.connect(("127.0.0.1", 9))
    kept += [peer, socket.socket(inet, stream)]
    kept[-1].connect(kept[0].getsockname())
    for kind, address in ((stream, f"{folder}/a path"), (socket.SOCK_SEQPACKET, "\0kyr test " + folder)):
        kept.append(listener(socket.AF_UNIX, kind, address))
        wanted[address.replace("\0", "@")] = {"SocketType": int(kind), "Backlog": 7}
    return wanted, kept, f"udp 127.0.0.1:{peer.getsockname()[1]}"


def told_by_kyr(command):
    choice = [word for name in CLASSES for word in ("--class", name)]
    classes = [cls for cls in collect([*command, *choice], check=False)["classes"] if cls["name"] in CLASSES]
    values = [{name: told["value"] for name, told in each["properties"].items()}
              for cls in classes for each in cls["instances"]]
    return {each["Name"]: each for each in values}, {cls["name"]: cls["reasonCode"] for cls in classes}


def told_by_ss():
    told = {}
    for line in subprocess.run(["ss", "-lntupH"], stdout=subprocess.PIPE, check=True, text=True).stdout.splitlines():
        fields = line.split()
        told.setdefault(f"{fields[0]} {fields[4]}", set()).update(int(at) for at in re.findall(r"pid=(\d+)", line))
    return told


def faults(command, wanted, holders, unwanted):
    told, _ = told_by_kyr(command)
    for name, said in wanted.items():
        found = told.get(name)
        if found is None:
            yield f"{name}: not told"
            continue
        for key, value in {**said, "Owner": os.getuid(), "ProcessIDs": holders,
                           "ProcessNames": [open("/proc/self/comm", encoding="utf-8").read().strip()],
                           "Executables": [os.readlink("/proc/self/exe")]}.items():
            if found[key] != value:
                yield f"{name}: {key} is {found[key]}, not {value}"
    if unwanted in told:
        yield f"{unwanted}: has a peer"
    if shutil.which("ss"):
        told_there = told_by_ss()
        for name in wanted:
            if name.startswith(("tcp", "udp")) and told_there.get(name) != set(told.get(name, {}).get("ProcessIDs") or []):
                yield f"{name}: ss tells {told_there.get(name)}"


def grant_faults(command, name, holders):
    """Of a copy of the plugin in a folder that is none of kyr's."""
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o755)
        at = command.index("--plugins") + 1
        shutil.copytree(f"{command[at]}/sockets", f"{folder}/sockets")
        foreign = [*command[:at], folder, *command[at + 1:]]
        told, reasons = told_by_kyr(foreign)
        if told[name]["ProcessIDs"] is not None or reasons[CLASSES[0]] != "not granted":
            yield f"without a grant: {told[name]['ProcessIDs']}, {reasons}"
        told, _ = told_by_kyr([*foreign, "--grant", "sockets:processes"])
        if told[name]["ProcessIDs"] != holders:
            yield f"with a grant: {told[name]['ProcessIDs']}, not {holders}"


def run_as_nobody(command):
    """All of it in a program started anew: one that changes its user is hidden from others of that user."""
    become = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
    started = [*become, "/usr/bin/python3", os.path.abspath(__file__), *command]
    if subprocess.run([*become, command[0], "--version"], capture_output=True, check=False).returncode != 0:
        return 77
    return subprocess.run(started, check=False).returncode


def main():
    command = sys.argv[1:]
    if command[0] == "--nobody":
        return run_as_nobody(command[1:])
    with tempfile.TemporaryDirectory() as folder:
        wanted, kept, unwanted = open_sockets(folder)
        wait, end = os.pipe()
        child = os.fork()
        if child == 0:
            os.close(end)
            os.read(wait, 1)
            os._exit(0)
        holders = sorted([os.getpid(), child])
        found = [*faults(command, wanted, holders, unwanted), *grant_faults(command, next(iter(wanted)), holders)]
        os.close(end)
        os.waitpid(child, 0)
        del kept
    print("\n".join(found[:50]))
    return 1 if found else 0


sys.exit(main())
