"""Collects the inventory of a machine with kyr, and tells how complete it is."""

DOCUMENTATION = """
module: kyr
short_description: Collect the inventory of a machine
description:
  - Runs C(kyr collect -o) and tells how complete the collection is.
  - The collection itself stays in the file, for M(ansible.builtin.fetch). What is returned takes at most 2 kB, and no facts
    are set, so that the number of hosts costs the controller nothing.
  - Some classes that could not be collected are no failure. See C(state) and C(missing), or use C(failed_when).
version_added: 1.1.0
author: kyrcore developers
requirements:
  - kyr, and Python 3.6 or later
options:
  path:
    description:
      - The file to save, which ends in C(.xml.gz) or C(.xml). It is replaced as a whole or not at all.
      - A new one can be read by its owner alone, since some serial numbers are for the superuser only. The same holds for
        its folder, if that is missing.
    type: path
    required: true
  classes:
    description: Only these classes with their subclasses; names as C(kyr collect --class) takes them. Otherwise all.
    type: list
    elements: str
    default: []
  timeout:
    description: Seconds for each plugin. Otherwise as long as C(kyr) gives it.
    type: int
  deadline:
    description:
      - Seconds for all plugins together. What is not there by then is missing.
      - C(kyr) itself is ended half a minute later, which is a failure.
    type: int
    default: 300
  executable:
    description: The program, if it is not in C(PATH).
    type: path
    default: kyr
attributes:
  check_mode:
    description: Collects into a temporary file, tells how complete that is, and leaves I(path) as it is.
    support: full
"""

EXAMPLES = """
- name: Collect
  kyrcore.kyr.kyr:
    path: /var/lib/kyr/ansible.xml.gz
  register: collected
  become: true

- name: Fetch what was collected
  ansible.builtin.fetch:
    src: "{{ collected.path }}"
    dest: "inventory/{{ inventory_hostname }}.xml.gz"
    flat: true
  become: true

- name: Collect disks, and fail if not all of them are known
  kyrcore.kyr.kyr:
    path: /var/lib/kyr/disks.xml.gz
    classes: [disks]
  register: collected
  failed_when: collected is failed or collected.state != "complete"
  become: true
"""

RETURN = """
path:
  description: The file.
  type: str
  returned: success
host:
  description: The machine as the file tells it; null for what it does not tell.
  type: dict
  returned: success
  sample: {name: db01.example.net, machine_id: 0eedb226-312d-4aa4-b63f-2ce3b9260b16, uuid: null, serial_number: KQ12345}
state:
  description: C(complete), or C(partial) if something is missing.
  type: str
  returned: success
missing:
  description: What is missing, with the reason; the first 20, and fewer where they are long.
  type: list
  elements: str
  returned: success
  sample: ["missing source /sys/firmware: not present (class MOLTA_PhysicalMemory)"]
missing_count:
  description: How many there are of these in the file.
  type: int
  returned: success
rc:
  description: The exit status of C(kyr), if that is why the module failed.
  type: int
  returned: failure
"""

import json
import os
import subprocess

from ansible.module_utils.basic import AnsibleModule

MOST_BYTES = 1700  # of the result as JSON; the rest of 2 kB is for what Ansible adds
MOST_MISSING = 20
MOST_CHARACTERS = 300  # of one text
GRACE = 30  # seconds
LAST_USABLE_STATUS = 1
HOST_MEMBERS = {"name": "name", "machine_id": "machineId", "uuid": "uuid", "serial_number": "serialNumber"}


class KyrModule(AnsibleModule):
    def add_path_info(self, kwargs):
        """Adds nothing: with a path it would replace the state by "file", and add owner and mode."""
        return kwargs


def cut(text):
    return text if len(text) <= MOST_CHARACTERS else text[: MOST_CHARACTERS - 3] + "..."


def lines_of(diagnostics):
    return [line[5:] if line.startswith("kyr: ") else line for line in diagnostics.splitlines()]


def as_many_as_fit(result, lines):
    """Those of the first lines with which the result is not too large."""
    taken = []
    for line in lines[:MOST_MISSING]:
        taken.append(cut(line))
        if len(json.dumps(dict(result, missing=taken))) > MOST_BYTES:
            return taken[:-1]
    return taken


def run(module, arguments, seconds):
    try:
        done = subprocess.run(arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=seconds, check=False)
    except subprocess.TimeoutExpired:
        module.fail_json(msg="%s did not end within %d seconds, and was killed" % (" ".join(arguments[:2]), seconds))
    except OSError as error:
        module.fail_json(msg="cannot run %s: %s" % (arguments[0], error))
    output, diagnostics = (text.decode("utf-8", "replace") for text in (done.stdout, done.stderr))
    if not 0 <= done.returncode <= LAST_USABLE_STATUS:
        ending = "status %d" if done.returncode > 0 else "killed by signal %d"
        told = as_many_as_fit({}, lines_of(diagnostics)) or ["no message, " + ending % abs(done.returncode)]
        module.fail_json(msg="kyr %s failed: %s" % (arguments[1], "; ".join(told)), rc=done.returncode)
    return output, lines_of(diagnostics)


def find_program(module):
    name = module.params["executable"]
    path = module.get_bin_path(name)
    if path is None:
        module.fail_json(msg="there is no program '%s' on this host: install the package kyr, or give its path as 'executable'"
                         % name)
    return path


def make_folder_of(module, path):
    try:
        os.makedirs(os.path.dirname(path) or ".", exist_ok=True)
    except OSError as error:
        module.fail_json(msg="cannot make the folder of '%s': %s" % (path, error))


def collect(module, program, path):
    arguments = [program, "collect", "-o", path, "--deadline", str(module.params["deadline"])]
    if module.params["timeout"] is not None:
        arguments += ["--timeout", str(module.params["timeout"])]
    for name in module.params["classes"]:
        arguments += ["--class", name]
    run(module, arguments, module.params["deadline"] + GRACE)


def describe(module, program, path):
    """What the file tells of itself, which is what a later reader of it is told."""
    output, missing = run(module, [program, "show", "--from", path, "--class", "MOLTA_Collection", "--json"], GRACE)
    try:
        collection = json.loads(output)
    except ValueError:
        module.fail_json(msg="'%s' printed no JSON: is it kyr 1.1.0 or later?" % program)
    host = {key: collection["host"][member] and cut(collection["host"][member]) for key, member in HOST_MEMBERS.items()}
    result = {"state": collection["state"], "host": host, "path": module.params["path"], "missing_count": len(missing)}
    return dict(result, missing=as_many_as_fit(result, missing))


def main():
    module = KyrModule(supports_check_mode=True, argument_spec={
        "path": {"type": "path", "required": True},
        "classes": {"type": "list", "elements": "str", "default": []},
        "timeout": {"type": "int"},
        "deadline": {"type": "int", "default": 300},
        "executable": {"type": "path", "default": "kyr"},
    })
    os.umask(0o077)
    program = find_program(module)
    path = module.params["path"]
    if module.check_mode:
        path = os.path.join(module.tmpdir, "check.xml.gz")
    else:
        make_folder_of(module, path)
    collect(module, program, path)
    # Data that are read again are no change of the machine.
    module.exit_json(changed=False, **describe(module, program, path))


if __name__ == "__main__":
    main()
