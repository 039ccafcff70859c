#!/usr/bin/env python3
"""check_completion.py COMPLETIONS KYR

What three shells make of a line on which somebody presses the tabulator, each with its own completion."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

COMPLETIONS, KYR = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])

# What is typed, and what the last word may become; if only one, it does.
CASES = [
    ("kyr sh", "show"),
    ("kyr help sc", "schema"),
    ("kyr show --prov", "--provenance"),
    ("kyr show --sandbox re", "require"),
    ("kyr show --sandbox=re", "--sandbox=require"),
    ("kyr collect --plugins fol", "folder/"),
    ("kyr collect --plugins de", "default"),
    ("kyr collect --plugins ", "default", "folder/"),
    ("kyr collect --plugins fol --class DiskPar", "DiskPartition"),
    ("kyr show MOLTA_ComputerS", "MOLTA_ComputerSystem"),
    ("kyr show --stable mach", "machine.xml.gz"),
    ("kyr show -- mach", "machine.xml.gz"),
    ("kyr diff machine.xml.gz mach", "machine.xml.gz"),
    ("kyr diff machine.xml.gz --class=cach", "--class=cache"),
    ("kyr show adapters --columns Nam", "Name"),
    ("kyr show --columns Caption,KernelRel", "Caption,KernelRelease"),
    ("kyr get serialN", "serialNumber"),
    ("kyr get OperatingSy", "OperatingSystem."),
    ("kyr get os.KernelRel", "os.KernelRelease"),
    ("kyr assoc --role Dep",),
    ("kyr export --sqlite mach", "machine.xml.gz"),
    ("kyr export --csv class_s", "class_state"),
    ("kyr export --class=DiskPar", "--class=DiskPartition"),
    ("kyr check --fail-on wa", "warning"),
    ("kyr check --explain S2", "S20", "S22", "S24", "S26", "S27", "S28", "S29"),
    ("kyr nosuch sh",),
]

BASH = r"""
. /usr/share/bash-completion/bash_completion
. "$1/kyr.bash"
shift
COMP_LINE=$1 COMP_POINT=${#1}
shift
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
_kyr kyr
printf '%s\n' "${COMPREPLY[@]}"
"""

ZSH = r"""
zmodload zsh/zpty
zpty shell zsh -f -i
say() { zpty -w shell "$1"; }
say "fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -D; PS1=; unsetopt zle_bracketed_paste list_beep"
say "answer() { print -r -- \$BUFFER >answer; mv answer answered; BUFFER= }; zle -N answer; bindkey '^X^A' answer"
for line in "${@:2}"; do
    zpty -w -n shell "$line"$'\t\x18\x01'
    for (( waited = 0; waited < 600; ++waited )); do
        [[ -f answered ]] && break
        zpty -rt shell heard
        sleep 0.1
    done
    cat answered || print "no answer"
    rm -f answered
done
zpty -d shell
"""


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False, stdin=subprocess.DEVNULL).stdout


def bash(line):
    words = re.findall(r"[=:]|[^ =:]+| $", line)
    found = run("bash", "-c", BASH, "bash", str(COMPLETIONS), line, *map(str.strip, words)).split()
    # The shell takes "=" for the end of a word, and replaces what is behind it.
    return [line.split()[-1].partition("=")[0] + "=" + word if "=" in line else word for word in found]


def fish(line):
    found = run("fish", "--no-config", "-c", f"source {COMPLETIONS}/kyr.fish; complete -C '{line}'")
    return [each.partition("\t")[0] for each in found.splitlines()]


def zsh(lines):
    return run("zsh", "-f", "-c", ZSH, "zsh", str(COMPLETIONS), *lines).splitlines()


def expected(shell, words):
    return [word.rstrip("/") for word in words] if shell == "bash" else words  # it adds the stroke itself


def ending(word):
    return "" if word[-1] in "./" else " "  # what goes on is not ended


def check():
    faults = []
    typed = zsh([case[0] for case in CASES])
    for number, (line, *words) in enumerate(CASES):
        for shell, found in (("bash", bash(line)), ("fish", fish(line))):
            if sorted(found) != expected(shell, words):
                faults.append(f"{shell}: {line}: {found}, and not {expected(shell, words)}")
        whole = line[:line.rfind(" ") + 1] + words[0] + ending(words[0]) if len(words) == 1 else line
        found = typed[number] if number < len(typed) else "nothing"
        if found != whole:
            faults.append(f"zsh: {line}: {found}, and not {whole}")
    return faults


with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryDirectory() as home:
    os.chdir(folder)
    os.environ.update(PATH=f"{KYR.parent}:{os.environ['PATH']}", HOME=home, TERM="xterm", LC_ALL="C.UTF-8")
    pathlib.Path("folder").mkdir()
    pathlib.Path("machine.xml.gz").touch()
    results = check()
print("\n".join(results) or f"{len(CASES)} lines in three shells")
sys.exit(bool(results))
