#!/usr/bin/env python3
"""compare.py KYR [OPTION OF KYR COLLECT]...

Compares what kyr collects on this machine with what other tools tell of it. Every fact that two of them agree on must
be in ours and equal, and so must a fact of which one tool is the authority. Prints a table; exit status 1 if a fact
differs or is missing, 77 if fewer than two of the tools are installed. COMPARE_ALL=1 also prints what only one tool
tells, which is not judged.

Left out is what changes between two runs: free memory and space, load, current clock speeds, temperatures.
"""
import collections
import os
import sys

sys.dont_write_bytecode = True  # nothing is left beside the sources

import compare_devices  # noqa: F401  (this and the next add their tools to those of compare_tools)
import compare_inventories  # noqa: F401
import compare_ours
import compare_tools

SKIPPED = 77

# Whose word counts alone: the others tell nothing of it, or what these have told them.
AUTHORITIES = {"package": "dpkg-query", "module": "lsmod", "mount": "findmnt", "route": "ip", "address": "ip",
               "interface": "ip", "resolver": "cat", "pci": "lspci", "usb": "lsusb", "cache": "lscpu", "numa": "lscpu",
               "partition": "lsblk", "file": "blkid", "swap": "swapon", "memory": "dmidecode", "firmware": "dmidecode",
               "board": "dmidecode", "temperature": "sensors", "account": "getent", "group": "getent",
               "password": "passwd"}

# A maker's words for nothing, which ours reports as no value.
PLACEHOLDERS = ("not specified", "to be filled by o.e.m.", "default string", "none", "unknown", "n/a",
                "system product name", "system manufacturer", "system version", "system serial number")


def tidy(value):
    if isinstance(value, str):
        value = " ".join(value.split())
        return None if value.lower() in ("", *PLACEHOLDERS) else value
    return value


def facts_of(triples):
    tidied = ((thing, what, tidy(value)) for thing, what, value in triples)
    return {(thing, what): value for thing, what, value in tidied if value is not None}


def ask_tools():
    facts = collections.defaultdict(lambda: collections.defaultdict(list))
    asked = []
    for name, extract in compare_tools.installed():
        asked.append(name)
        for key, value in facts_of(extract()).items():
            facts[key][value].append(name)
    return asked, facts


def agreed(thing, tellers_of):
    """The values that count, each with who tells it."""
    by_two = {value: tellers for value, tellers in tellers_of.items() if len(set(tellers)) > 1}
    authority = AUTHORITIES.get(thing.split()[0])
    return by_two or {value: tellers for value, tellers in tellers_of.items() if authority in tellers}


def verdict(mine, values, judged):
    if mine in values:
        return "equal"
    word = "missing" if mine is None else "differs"
    return word.upper() if judged else word


def rows(facts, ours):
    for key in sorted(facts):
        counted = agreed(key[0], facts[key])
        values = counted or facts[key]
        told = [tool for tellers in values.values() for tool in tellers]
        yield key, values, told, ours.get(key), verdict(ours.get(key), values, bool(counted)), bool(counted)


def shown(value, width=44):
    text = " ".join(map(str, sorted(value))) if isinstance(value, frozenset) else str(value)
    return text if len(text) <= width else text[:width - 3] + "..."


def print_row(key, values, told, mine, word):
    print(f"{' '.join(key):44} {word:8} {shown(' | '.join(map(shown, values)))}  [{', '.join(dict.fromkeys(told))}]")
    if word == "equal":
        return
    print(f"{'':44} {'ours':8} {'-' if mine is None else shown(mine)}")
    if isinstance(mine, frozenset):
        theirs = frozenset.union(*values)
        print(f"{'':53} only ours: {shown(mine - theirs)}; not in ours: {shown(theirs - mine)}")


def compare(facts, ours):
    counts = collections.Counter()
    for key, values, told, mine, word, judged in rows(facts, ours):
        counts[word if judged else "told by one"] += 1
        plenty = key[0].startswith(("package ", "module ")) and word == "equal"
        if judged and not plenty or not judged and os.environ.get("COMPARE_ALL"):
            print_row(key, values, told, mine, word)
    return counts


def main():
    if len(sys.argv) < 2 or sys.argv[1].startswith("-"):
        print(__doc__, file=sys.stderr)
        return 2
    asked, facts = ask_tools()
    if len(asked) < 2:
        print(f"skipped: of the tools to compare with, only {asked} are installed")
        return SKIPPED
    counts = compare(facts, facts_of(compare_ours.tell(sys.argv[1:])))
    print(f"\nagainst {', '.join(asked)}:")
    print(", ".join(f"{count} {word}" for word, count in sorted(counts.items())))
    return 1 if counts["DIFFERS"] or counts["MISSING"] or not counts["equal"] else 0


if __name__ == "__main__":
    sys.exit(main())
