"""What tables must hold of a collection, found in its documents of "kyr show --json" and "kyr schema --json" alone.

A reader of what was exported gives the description of columns as Column, and rows as dictionaries from columns to values:
numbers, booleans and texts of their type, arrays as lists, times in UTC, no entry for what is null."""
import collections
import datetime
import json
import re
import subprocess

Column = collections.namedtuple("Column", "property cim_type unit kind")  # kind: the type of the column in SQLite
# Units, by what their numbers are multiplied and divided to be in the base unit, and the end of a column's name.
UNITS = {"Bytes": (1, 1, "bytes"), "KiloBytes": (1024, 1, "bytes"), "Octets": (1, 1, "bytes"), "Bits": (1, 1, "bits"),
         "Bits per Second": (1, 1, "bits_per_second"), "MegaHertz": (10**6, 1, "hertz"), "Hertz": (1, 1, "hertz"),
         "MegaTransfers per Second": (10**6, 1, "transfers_per_second"), "Seconds": (1, 1, "seconds"),
         "MilliSeconds": (1, 1000, "seconds"), "Volts": (1, 1, "volts"),
         "MilliVolts": (1, 1000, "volts"), "Amps": (1, 1, "amps"), "MilliAmperes": (1, 1000, "amps"), "Watts": (1, 1, "watts"),
         "WattHours": (1, 1, "watt_hours"), "AmpereHours": (1, 1, "ampere_hours"), "Degrees C": (1, 1, "degrees_c"),
         "Revolutions per Minute": (1, 1, "rpm"), "Percent": (1, 1, "percent"),
         "MilliMeters": (1, 1000, "meters"), "Inches": (1, 1, "inches"), "Pixels": (1, 1, "pixels"), "Hours": (1, 1, "hours"),
         "Million Loops per Second": (1, 1, "million_loops_per_second")}
SCOPE = {"CreationClassName", "SystemCreationClassName", "SystemName", "CSCreationClassName", "CSName",
         "OSCreationClassName", "OSName"}


def frozen(value):
    """Arrays as tuples, in which True is not 1."""
    if isinstance(value, list):
        return tuple(str(each) if isinstance(each, bool) else frozen(each) for each in value)
    return value


def visible(text):
    return text.replace("\0", "\\x00") if isinstance(text, str) else text


def moment(text):
    """Of a CIM date and time, in UTC; none if there is no such moment."""
    try:
        start = datetime.datetime.strptime(text[:21], "%Y%m%d%H%M%S.%f")
    except ValueError:
        return None
    return (start - datetime.timedelta(minutes=int(text[21:]))).isoformat(timespec="microseconds")


def length(text):
    """Of an interval, in microseconds."""
    days, hours, minutes, seconds, micros = (int(text[a:b]) for a, b in ((0, 8), (8, 10), (10, 12), (12, 14), (15, 21)))
    return (((days * 24 + hours) * 60 + minutes) * 60 + seconds) * 10**6 + micros


def length_of_iso(text):
    found = re.fullmatch(r"P(?:(\d+)D)?(?:T(?:(\d+)H)?(?:(\d+)M)?(?:([\d.]+)S)?)?", text)
    days, hours, minutes = (int(each or 0) for each in found.groups()[:3])
    return round(((days * 24 + hours) * 60 + minutes) * 60 * 10**6 + float(found[4] or 0) * 10**6)


def cast(value, column):
    """A value as a program reads it, or the text of one, as that of an expected row."""
    if column.cim_type == "datetime":
        if value.startswith("P"):
            return length_of_iso(value)
        time = datetime.datetime.fromisoformat(value.replace(" ", "T")).astimezone(datetime.timezone.utc)
        return time.replace(tzinfo=None).isoformat(timespec="microseconds")
    if column.kind == "REAL":
        return {"nan": "NaN", "inf": "Infinity", "-inf": "-Infinity"}.get(str(float(value)), float(value))
    if column.cim_type == "boolean" and column.kind == "INTEGER":
        return value in (True, "true")
    if column.kind in ("INTEGER", "ANY"):
        return int(value)
    return frozen(json.loads(value) if isinstance(value, str) and column.cim_type.endswith("[]") else value)


class Missing(str):
    """Why a value is null; or what it is, if a data base cannot hold it."""


class Collection:
    def __init__(self, kyr, path):
        def document(*arguments):
            return json.loads(subprocess.run([kyr, *arguments, "--json"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout)

        shown = document("show", path, "--provenance", "--keys")
        self.host, self.classes = shown["host"]["name"], {each["name"]: each["instances"] for each in shown["classes"]}
        self.states = {(each["name"], each["plugin"], each["state"], each["reasonCode"], each["reason"])
                       for each in shown["classes"] if each["state"]}
        self.words = {(cls["name"], each["name"]) for cls in document("schema", path)["classes"] for each in cls["properties"]
                      if "Values" in each["qualifiers"]}
        self.by_path = {each["path"]: (cls, each) for cls, instances in self.classes.items() for each in instances}

    def rows(self, cls, tables, by_id):
        """Those of the class, and those of the table missing. Tables has the columns of each class. References are paths, or
        where by_id the row itself that they refer to, if it is there."""
        rows = [self.row(cls, instance, tables, by_id) for instance in self.classes[cls]]
        return [row for row, _ in rows], [missing for _, missing in rows]

    def row(self, cls, instance, tables, by_id, references=True):
        by_property = collections.defaultdict(list)
        for name, column in tables[cls].items():
            by_property[column.property].append(name)
        row, missing = {}, {}
        for name, each in instance["properties"].items():
            if each["value"] is None or (each["type"] == "reference" and not references):
                continue
            if not by_property[name]:
                assert name in SCOPE and each["value"] in (self.host, cls, "MOLTA_ComputerSystem"), (cls, name, each)
                continue
            if each["type"] == "reference":
                row.update(self.reference(each["value"]["path"], sorted(by_property[name]), tables, by_id))
                continue
            for column, value in self.cells(cls, name, each, sorted(by_property[name])):
                (missing if isinstance(value, Missing) else row)[column] = frozen(value)
        missing.update(self.reasons(instance, by_property))
        return {column: value for column, value in row.items() if value is not None}, missing

    def reference(self, path, columns, tables, by_id):
        if not by_id:
            return {columns[0]: path}
        if path not in self.by_path:
            return {columns[1]: path}
        cls, instance = self.by_path[path]
        return {columns[0]: frozenset(self.row(cls, instance, tables, by_id, references=False)[0].items())}

    @staticmethod
    def reasons(instance, by_property):
        notes = instance["properties"].get("UnavailableValues", {"value": None})["value"] or []
        for name, _, note in (each.partition(": ") for each in notes):
            is_null = name in instance["properties"] and instance["properties"][name]["value"] is None
            if is_null and by_property[name]:
                yield sorted(by_property[name])[0], Missing(note)

    def cells(self, cls, name, each, columns):
        value, kind = each["value"], each["type"]
        if (cls, name) in self.words:
            assert columns[1] == columns[0].rstrip("_") + "_code", (cls, columns)
            yield columns[1], value
            yield columns[0], self.word(each)
        elif kind == "datetime":
            is_length = value.endswith(":000")
            found = length(value) if is_length else moment(value)
            column = [each for each in columns if each.endswith("_interval") == is_length][0]
            yield column, found if found is not None else Missing(value)
        else:
            yield columns[0], self.scaled(value, each["unit"], columns[0], cls)

    @staticmethod
    def word(each):
        if isinstance(each["value"], list):
            return [None if word == str(value) else word for word, value in zip(each["text"], each["value"])]
        return None if each["text"] == str(each["value"]) else each["text"]

    @staticmethod
    def scaled(value, unit, column, cls):
        factor, divisor, end = UNITS.get(unit, (1, 1, ""))
        is_cut = re.search("_[0-9a-f]{8}$", column)
        assert is_cut or column.rstrip("_").endswith(end), (cls, column, unit)
        if isinstance(value, list):
            return [visible(each) for each in value]
        if isinstance(value, bool) or not isinstance(value, (int, float)):
            return visible(value)
        return value * factor if divisor == 1 else value / divisor
