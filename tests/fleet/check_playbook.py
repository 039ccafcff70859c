"""check_playbook.py PREFIX MACHINES

Runs the role and the module of Ansible under PREFIX on several hosts, all of them this machine with the files of one of
the MACHINES: looking only, then twice in earnest.
"""
import json
import os
import sqlite3
import subprocess
import sys
import tempfile

prefix, machines = sys.argv[1:]
MOST_BYTES = 2048  # of what a host returns
MOST_MISSING = 20
BROKEN_PLUGINS = 95

# The variables of each host, and the state of its collection or a part of the message with which it fails. The programs
# are lines of shell, where $kyr is the real one.
HOSTS = {
    "server": ({}, "complete"),
    "laptop": ({"machine": "laptop"}, "complete"),
    "bare": ({"machine": "empty"}, "partial"),
    "many-missing": ({"machine": "virtual", "plugins": "{folder}/broken"}, "partial"),
    "not-installed": ({"kyr_executable": "{folder}/nothing"}, "install the package kyr"),
    "nothing-found": ({"program": '"$kyr" "$@" --plugins {folder}/hosts'}, "nothing was collected"),
    "not-writable": ({"kyr_path": "{folder}/hosts.json/m.xml.gz"}, "cannot make the folder of"),
    "disk-full": ({"program": 'ulimit -f 0; "$kyr" "$@"'}, "cannot write"),
    "wrong-class": ({"kyr_classes": ["Nonsense"]}, "Nonsense"),
    "other-program": ({"program": "echo hello"}, "is it kyr"),
    "crashing": ({"program": "kill -SEGV $$"}, "killed by signal 11"),
    # Ended half a minute after the deadline.
    "hanging": ({"program": "exec sleep 60", "kyr_deadline": -29}, "did not end within 1 seconds"),
}
COLLECTED = sorted(name for name, (_, outcome) in HOSTS.items() if outcome in ("complete", "partial"))

PLAY = """
- hosts: all
  gather_facts: false
  environment: {KYR_SYSTEM_ROOT: "{{ root }}", KYR_PLUGIN_PATH: "{{ plugins }}"}
  roles: [kyrcore.kyr.kyr]
"""


class Fleet:
    def __init__(self, folder):
        self.folder = folder
        os.mkdir(f"{folder}/hosts")
        for number in range(BROKEN_PLUGINS):
            name = f"a-plugin-whose-name-is-so-long-that-few-fit-{number}"
            os.makedirs(f"{folder}/broken/{name}")
            self.write(f"broken/{name}/lib{name}.pi.so", "no library")
        self.write("play.yml", PLAY)
        self.write("hosts.json", json.dumps({"all": {"hosts": {name: self.variables(name) for name in HOSTS}}}))

    def variables(self, name):
        own = {key: value.format(folder=self.folder) if isinstance(value, str) else value
               for key, value in HOSTS[name][0].items()}
        program = own.pop("program", 'exec "$kyr" "$@"')
        # What the data base is loaded by is this program, too.
        self.write(f"kyr-{name}", f"#!/bin/sh\nkyr={prefix}/bin/kyr\n{program}\n")
        os.chmod(f"{self.folder}/kyr-{name}", 0o755)
        return {"ansible_connection": "local", "ansible_python_interpreter": sys.executable,
                "root": f"{machines}/{own.pop('machine', 'server')}", "plugins": "",
                "kyr_packages": [], "kyr_path": f"{self.host_file(name)}", "kyr_executable": f"{self.folder}/kyr-{name}",
                "kyr_database": f"{self.folder}/fleet.sqlite", **own}

    def host_file(self, name):
        return f"{self.folder}/hosts/{name}/collected.xml.gz"

    def write(self, name, text):
        with open(f"{self.folder}/{name}", "w", encoding="utf-8") as file:
            file.write(text)

    def run(self, hosts, *options, status=0):
        """What each host returned, by name of the task."""
        run("ansible-playbook", "-i", f"{self.folder}/hosts.json", "--limit", ",".join(hosts), *options,
            f"{self.folder}/play.yml", status=status, RESULTS=f"{self.folder}/results")
        results = {}
        with open(f"{self.folder}/results", encoding="utf-8") as file:
            for task, host, result in map(json.loads, file):
                results.setdefault(task, {})[host] = result
        return results


def run(*command, status=0, **environment):
    result = subprocess.run(command, text=True, capture_output=True, check=False, stdin=subprocess.DEVNULL,
                            env={**os.environ, "ANSIBLE_COLLECTIONS_PATH": f"{prefix}/share/ansible/collections",
                                 "ANSIBLE_CALLBACK_PLUGINS": f"{os.path.dirname(os.path.abspath(__file__))}/callbacks",
                                 "ANSIBLE_CALLBACKS_ENABLED": "results", "ANSIBLE_NOCOLOR": "1", **environment})
    assert result.returncode == status, f"{command}: status {result.returncode}\n{result.stdout}\n{result.stderr}"
    return result.stdout


def check_documentation():
    document = json.loads(run("ansible-doc", "--json", "kyrcore.kyr.kyr"))["kyrcore.kyr.kyr"]
    assert set(document["doc"]["options"]) == {"path", "classes", "timeout", "deadline", "executable"}, document["doc"]
    assert "kyrcore.kyr.kyr" in document["examples"] and "missing_count" in document["return"], document
    assert "kyr_inventory" in run("ansible-doc", "-t", "role", "kyrcore.kyr.kyr")


def check_collected(results, hosts):
    assert set(results) == set(hosts), set(results)
    for host in hosts:
        outcome = HOSTS[host][1]
        result = results[host]
        assert result["changed"] is False and "ansible_facts" not in result, result
        assert len(json.dumps(result)) <= MOST_BYTES, f"{host} returns {len(json.dumps(result))} bytes"
        if host not in COLLECTED:
            assert result.get("failed") and outcome in result["msg"], f"{host}: {result}"
            continue
        assert result["state"] == outcome and not result.get("failed"), result
        assert bool(result["missing"]) is (outcome == "partial"), result
        assert len(result["missing"]) <= min(MOST_MISSING, result["missing_count"]), result


def check_files(fleet, fetched):
    assert sorted(os.listdir(f"{fleet.folder}/inventory")) == [f"{host}.xml.gz" for host in COLLECTED]
    for host in COLLECTED:
        there, here = fleet.host_file(host), f"{fleet.folder}/inventory/{host}.xml.gz"
        assert read(there) == read(here), f"what was fetched from {host} is not what was collected"
        assert os.stat(there).st_mode & 0o077 == 0, f"others can read {there}"
        assert fetched[host]["changed"] is False, fetched[host]


def check_database(path, results):
    with sqlite3.connect(path) as database:
        names = {name for (name,) in database.execute("SELECT name FROM host")}
    assert names == {results[host]["host"]["name"] for host in COLLECTED}, names


def read(path):
    with open(path, "rb") as file:
        return file.read()


check_documentation()
with tempfile.TemporaryDirectory() as temporary:
    all_hosts = Fleet(temporary)
    looked = all_hosts.run(COLLECTED, "--check")
    check_collected(looked["Collect"], COLLECTED)
    assert not os.listdir(f"{temporary}/hosts") and not os.path.exists(f"{temporary}/inventory")
    for chosen in (list(HOSTS), COLLECTED):
        done = all_hosts.run(chosen, status=0 if chosen == COLLECTED else 2)
        check_collected(done["Collect"], chosen)
        check_files(all_hosts, done["Fetch"])
        check_database(f"{temporary}/fleet.sqlite", done["Collect"])
    assert done["Collect"]["many-missing"]["missing_count"] == BROKEN_PLUGINS
    assert done["Collect"]["server"]["host"]["serial_number"] == "KQ12345"
