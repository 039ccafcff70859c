#!/usr/bin/env python3
# tests/plugins/export_values.py MACHINES KYR [OPTION...]
#
# Saves collections of all machines of the fixtures, and edited copies, exports them into a data base, and looks for
# every value that "kyr show --json" has of them there: with its type, in its base unit, and with its word. What is
# expected is found here from the JSON documents alone. The options are those of collecting.
import json
import math
import os
import re
import sqlite3
import subprocess
import sys
import tempfile

KILO = {"Kilo": 1, "Mega": 2, "Giga": 3, "Tera": 4, "Peta": 5, "Milli": -1, "Micro": -2, "Nano": -3}
# For each unit the end of the column's name and what Kilo means.
BASES = {"Bytes": ("_bytes", 1024), "Octets": ("_bytes", 1024), "Bits": ("_bits", 1024),
         "Bits per Second": ("_bits_per_second", 1000), "Transfers per Second": ("_transfers_per_second", 1000),
         "Hertz": ("_hertz", 1000), "Seconds": ("_seconds", 1000), "Volts": ("_volts", 1000), "Amps": ("_amps", 1000),
         "Amperes": ("_amps", 1000), "Watts": ("_watts", 1000), "WattHours": ("_watt_hours", 1000),
         "AmpereHours": ("_ampere_hours", 1000), "Degrees C": ("_degrees_c", 1),
         "Revolutions per Minute": ("_rpm", 1), "Percent": ("_percent", 1)}
COUNTED = ("Packets Files Pages Cores Threads Slots Modules Ranks Ways Lanes Ports Devices Cycles Uses Instances "
           "Identifier").split()
SCOPE = {"CreationClassName", "SystemCreationClassName", "SystemName", "CSCreationClassName", "CSName"}
HUGE = 2**64 - 1
# What copies of the first machine have in place of a value: the type, the property, and the text.
EDITS = [("uint64", "Size", str(HUGE)), ("uint64", "TotalSize", str(2**63)), ("string", "Model", "a&#10;&#9;\u202e\"'\\"),
         ("uint16", "BusType", "60000")]


def run(*arguments, root=None):
    environment = dict(os.environ, TZ="UTC", **({"KYR_SYSTEM_ROOT": root} if root else {}))
    return subprocess.run(arguments, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)


def unit_of(declared):
    """What a column's name ends with, and what its numbers are multiplied with and divided by."""
    if declared is None or declared in COUNTED:
        return "", 1, 1
    if declared in BASES:
        return BASES[declared][0], 1, 1
    for word, steps in KILO.items():
        if declared.startswith(word) and declared[len(word):] in BASES:
            end, kilo = BASES[declared[len(word):]]
            return end, kilo ** max(steps, 0), kilo ** max(-steps, 0)
    return "_" + declared.lower().replace(" ", "_"), 1, 1


def iso(text):
    """A date and time, or a length of time, of CIM; None for one that does not exist."""
    if text[21] == ":":
        fraction = "" if text[15:21] == "000000" else "." + text[15:21]
        return f"P{int(text[:8])}DT{int(text[8:10])}H{int(text[10:12])}M{int(text[12:14])}{fraction}S"
    minutes = int(text[22:25])
    fraction = "" if text[15:21] == "000000" else "." + text[15:21]
    if not 1 <= int(text[4:6]) <= 12:
        return None
    return (f"{text[:4]}-{text[4:6]}-{text[6:8]}T{text[8:10]}:{text[10:12]}:{text[12:14]}{fraction}"
            f"{text[21]}{minutes // 60:02}:{minutes % 60:02}")


def scaled(value, factor, divisor):
    if isinstance(value, str) or value is None:
        return value.replace("\0", "\\x00") if value else value
    return value * factor / divisor if divisor > 1 else value * factor


def is_same(expected, found):
    """Integers are exact, and beyond 64 bits they are texts."""
    if isinstance(expected, bool):
        return found == int(expected)
    if isinstance(expected, int) and not -2**63 <= expected < 2**63:
        return found == str(expected)
    if isinstance(expected, float) or isinstance(found, float):
        return isinstance(found, (int, float)) and math.isclose(expected, found, rel_tol=1e-12)
    return type(expected) is type(found) and expected == found


class Table:
    """The rows of one class and run, and which columns a property has."""

    def __init__(self, db, run_id, cls):
        self.name, = db.execute("SELECT table_name FROM column_info WHERE class = ? AND column_name = 'id'",
                                (cls,)).fetchone()
        self.columns = {}
        for prop, column, unit in db.execute(
                "SELECT property, column_name, unit FROM column_info WHERE class = ? AND property NOT NULL", (cls,)):
            self.columns.setdefault(prop, {})[column] = unit
        cursor = db.execute(f'SELECT * FROM "{self.name}" WHERE run_id = ? ORDER BY id', (run_id,))
        names = [each[0] for each in cursor.description]
        self.rows = [dict(zip(names, row)) for row in cursor]
        self.missing = {(row, column) for row, column in db.execute(
            "SELECT row_id, column_name FROM missing WHERE run_id = ? AND table_name = ?", (run_id, self.name))}


class Comparison:
    def __init__(self, db, run_id, document):
        self.db, self.document, self.faults, self.values = db, document, [], 0
        self.tables = {cls["name"]: Table(db, run_id, cls["name"]) for cls in document["classes"]}
        self.ids = {}
        for cls in document["classes"]:
            rows = self.tables[cls["name"]].rows
            self.expect(len(rows) == len(cls["instances"]), cls["name"], "number of rows", len(rows))
            for instance, row in zip(cls["instances"], rows):
                self.ids.setdefault(instance["path"], set()).add(row["id"])
        self.host, = db.execute("SELECT name FROM host JOIN run ON host.id = host_id WHERE run.id = ?", (run_id,)).fetchone()
        for cls in document["classes"]:
            for instance, row in zip(cls["instances"], self.tables[cls["name"]].rows):
                for name, prop in instance["properties"].items():
                    self.compare(cls["name"], row, name, prop)
        states = {tuple(row) for row in db.execute(
            "SELECT class, plugin, state, reason_code, reason FROM class_state WHERE run_id = ?", (run_id,))}
        for cls in document["classes"]:
            state = tuple(cls[key] for key in ("name", "plugin", "state", "reasonCode", "reason"))
            self.expect(cls["state"] is None or state in states, cls["name"], "state", state)

    def expect(self, is_right, *what):
        self.values += 1
        if not is_right:
            self.faults.append(" ".join(map(str, what)))

    def compare(self, cls, row, name, prop):
        table = self.tables[cls]
        columns = table.columns.get(name, {})
        if not columns:
            expected = self.host if not name.endswith("ClassName") else cls if name == "CreationClassName" else None
            return self.expect(name in SCOPE and (prop["value"] in (expected, None) or
                                                  expected is None and prop["value"] in self.tables), cls, name, prop)
        value, where = prop["value"], (cls, row["id"], name, prop, columns)
        if value is None:
            return self.expect(all(row[column] is None for column in columns), *where)
        if isinstance(value, dict):
            return self.compare_reference(row, columns, value["path"], where)
        if len(columns) > 1 and prop["type"] != "datetime":
            return self.compare_enumeration(row, columns, prop, where)
        if prop["type"] == "datetime":
            column = next(each for each in columns if each.endswith("_interval") == (value[21] == ":"))
            expected = iso(value)
        else:
            (column, unit), = columns.items()
            end, factor, divisor = unit_of(prop["unit"])
            self.expect(column.endswith(end) and (unit or "") == end[1:].replace("_", " ") or unit == prop["unit"], *where)
            expected = ([scaled(each, factor, divisor) for each in value] if isinstance(value, list)
                        else scaled(value, factor, divisor))
            if prop["type"].startswith("real") and isinstance(value, str):
                expected = None if value == "NaN" else float(value.replace("Infinity", "inf"))
        if expected is None:
            return self.expect(row[column] is None and (row["id"], column) in table.missing, *where)
        found = row[column]
        if isinstance(expected, list):
            return self.expect(found is not None and json.loads(found) == expected, found, *where)
        self.expect(is_same(expected, found), repr(found), *where)

    def compare_reference(self, row, columns, path, where):
        number, = (row[column] for column in columns if column.endswith("_id"))
        text, = (row[column] for column in columns if column.endswith("_path"))
        if path in self.ids:
            return self.expect(number in self.ids[path] and text is None, *where)
        self.expect(number is None and text == path, *where)

    def compare_enumeration(self, row, columns, prop, where):
        code, = (row[column] for column in columns if column.endswith("_code"))
        word, = (row[column] for column in columns if not column.endswith("_code"))
        value, text = prop["value"], prop["text"]
        if isinstance(value, list):
            expected = [None if each == str(number) else each for each, number in zip(text, value)]
            return self.expect(json.loads(code) == value and json.loads(word) == expected, *where)
        self.expect(is_same(value, code) and word == (None if text == str(value) else text), word, *where)


def edited(path, folder):
    """A copy in which values are extreme, and without the mark that would tell that it was edited."""
    text = open(path, encoding="utf-8").read()
    text = re.sub(r"<!--.*?-->", "", text, flags=re.S)
    for kind, name, value in EDITS:
        start = f'<PROPERTY NAME="{name}" TYPE="{kind}"><VALUE>'
        text, count = re.subn(f"({start})[^<]*", lambda found, value=value: found.group(1) + value, text, count=1)
        assert count == 1, name
    text, count = re.subn(r"\d{14}\.\d{6}\+000", "20261350000000.000000+000", text, count=1)
    assert count == 1
    result = os.path.join(folder, "edited.xml")
    open(result, "w", encoding="utf-8").write(text)
    return result


def main(machines, kyr, *options):
    with tempfile.TemporaryDirectory() as folder:
        files = []
        for machine in sorted(os.listdir(machines)):
            files.append(os.path.join(folder, machine + ".xml"))
            run(kyr, "collect", *options, "-o", files[-1], root=os.path.join(machines, machine))
        files.append(edited(os.path.join(folder, "server.xml"), folder))
        faults = values = 0
        for path in files:
            base = path + ".db"
            export = run(kyr, "export", "--sqlite", base, path)
            db = sqlite3.connect(base)
            document = json.loads(run(kyr, "show", path, "--json").stdout)
            comparison = Comparison(db, 1, document)
            print(f"{os.path.basename(path)}: {comparison.values} values, {len(comparison.faults)} faults",
                  export.stderr.decode().strip())
            print("\n".join(comparison.faults[:10]))
            faults += len(comparison.faults) + export.returncode
            values += comparison.values
    sys.exit(1 if faults or values < 10000 else 0)


main(*sys.argv[1:])
