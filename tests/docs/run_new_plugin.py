"""run_new_plugin.py PREFIX LANGUAGE

Makes a plugin with the kyr under PREFIX, and does what that says, and what the README.md that it made says, with
warnings as errors. Each way ends with an instance of the plugin.
"""
import os
import re
import subprocess
import sys
import tempfile

prefix, language = sys.argv[1:]
environment = {**os.environ, "PATH": f"{prefix}/bin:{os.environ['PATH']}", "CMAKE_PREFIX_PATH": prefix,
               "CMAKE_GENERATOR": "Ninja", "CFLAGS": "-Wpedantic -Wshadow -Werror",
               "CXXFLAGS": "-Wpedantic -Wshadow -Werror"}


def run(commands, folder):
    result = subprocess.run(["sh", "-exc", commands], cwd=folder, env=environment, text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if result.returncode != 0:
        sys.exit(f"this failed with status {result.returncode}:\n{commands}\n{result.stdout}")
    return result.stdout


def expect_instance(printed):
    with open("/proc/sys/kernel/pid_max", encoding="ascii") as file:
        limit = file.read().strip()
    for line in (r"^EX_KernelLimits$", r"^  Name +kernel$", rf"^  Processes +{limit} Processes$", r"100% tests passed"):
        if not re.search(line, printed, re.M):
            sys.exit(f"no line {line} in:\n{printed}")


with tempfile.TemporaryDirectory() as root:
    told = run(f"kyr new-plugin kernel_limits --language {language}", root)
    steps = re.findall(r"^  (.+)$", told, re.M)
    if len(steps) != 3:
        sys.exit(f"not three steps:\n{told}")
    expect_instance(run("\n".join(steps), root))
    plugin = os.path.join(root, "kernel_limits")
    with open(os.path.join(plugin, "README.md"), encoding="utf-8") as file:
        blocks = re.findall(r"^```sh\n(.*?)^```$", file.read(), re.M | re.S)
    run("rm -r build", plugin)
    expect_instance("".join(run(block, plugin) for block in blocks))
