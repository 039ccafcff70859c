"""Writes what each task returned from each host to the file that the variable RESULTS names, a line of JSON for each."""
import json
import os

from ansible.plugins.callback import CallbackBase

DOCUMENTATION = """
name: results
type: aggregate
short_description: Lines of JSON for the tests
description: One line for each task and host.
"""


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = "aggregate"
    CALLBACK_NAME = "results"

    def __init__(self):
        super().__init__()
        self.file = open(os.environ["RESULTS"], "w", encoding="utf-8")

    def _write(self, result, **more):
        # Ansible gives callbacks more than the play can see.
        returned = {key: value for key, value in result._result.items() if key != "invocation" and key[0] != "_"}
        self.file.write(json.dumps([result._task.name, result._host.name, {**returned, **more}]) + "\n")
        self.file.flush()

    def v2_runner_on_ok(self, result):
        self._write(result)

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self._write(result, failed=True)
