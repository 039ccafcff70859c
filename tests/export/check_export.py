#!/usr/bin/env python3
# tests/export/check_export.py MACHINES KYR [OPTION]...
#
# Collects from all recorded machines, exports the collections in every form, reads them back by sqlite3, psql, mlr, jq and
# Python, and compares with what their documents say. Then it loads text into PostgreSQL in the orders that matter. With the
# options, KYR has all plugins; with_postgres.py gives the server. By hand:
# tests/export/with_postgres.py tests/export/check_export.py tests/fixtures/machines build/bin/kyr --plugins build/plugins
#   --schema build/schema/kyrcore.xml
import collections
import csv
import io
import json
import os
import re
import sqlite3
import subprocess
import sys
import tempfile
import zlib

import odd_collection
from export_oracle import Collection, Column, cast, frozen

PG_TYPES = {"INTEGER": ("smallint", "integer", "bigint", "boolean"), "ANY": ("numeric",), "REAL": ("double precision",),
            "TEXT": ("text", "jsonb", "timestamp with time zone", "interval")}
csv.field_size_limit(2**30)
faults = []


def check(condition, text):
    if not condition:
        faults.append(text)
        print(text, flush=True)


def run(*arguments, text=None, status=0, root=None):
    environment = {**os.environ, "TZ": "UTC", "LC_ALL": "C.UTF-8", **({"KYR_SYSTEM_ROOT": root} if root else {})}
    result = subprocess.run(arguments, input=None if text is None else text.encode(), env=environment,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if status is not None and result.returncode != status:
        sys.exit(f"{' '.join(arguments)[:300]}: status {result.returncode}\n{result.stderr.decode()[-3000:]}")
    return result.stdout.decode(), result.stderr.decode()


def psql(text, *options, status=0):
    return run("psql", "-X", "-d", "fleet", *options, text=text, status=status)


def new_database():
    run("psql", "-qXd", "postgres", "-c", "DROP DATABASE IF EXISTS fleet", "-c", "CREATE DATABASE fleet")


# ---- Readers ----


class Tables:
    """What data bases have in common: an ask function that gives rows as dictionaries."""

    by_id = True

    def describe(self):
        self.names, self.columns = {}, collections.defaultdict(dict)
        for each in self.ask("SELECT * FROM column_info WHERE property IS NOT NULL"):
            self.names[each["class"]] = each["table_name"]
            kind = self.kind(each["table_name"], each["column_name"])
            self.columns[each["class"]][each["column_name"]] = Column(each["property"], each["cim_type"], each["unit"], kind)
        self.runs = {each["file"]: each["id"] for each in self.ask("SELECT id, file FROM run")}
        self.cells = {(cls, row["run_id"], row["id"]): row for cls, name in self.names.items()
                      for row in self.ask(f'SELECT * FROM {self.place(name)} ORDER BY run_id, id')}
        self.by_number = {(run, number): (cls, row) for (cls, run, number), row in self.cells.items()}

    def rows(self, path, cls):
        return [self.row(cls, row) for (name, run, _), row in self.cells.items() if (name, run) == (cls, self.runs[path])]

    def row(self, cls, row, references=True):
        values = {}
        for name, column in self.columns[cls].items():
            if row[name] is None or (column.cim_type == "reference" and not references):
                continue
            is_row = column.cim_type == "reference" and name.endswith("_id")
            values[name] = self.content(row["run_id"], row[name]) if is_row else cast(row[name], column)
        return values

    def content(self, run, number):
        return frozenset(self.row(*self.by_number[run, number], references=False).items())

    def missing(self, path, cls):
        found = collections.defaultdict(dict)
        for each in self.ask(f"SELECT * FROM missing WHERE run_id = {self.runs[path]} AND table_name = '{self.names[cls]}'"):
            found[each["row_id"]][each["column_name"]] = ": ".join(filter(None, (each["reason"], each["source"])))
        return list(found.values())


class Sqlite(Tables):
    name = "sqlite"

    def __init__(self, kyr, files, folder):
        run(kyr, "export", "--sqlite", f"{folder}/fleet.db", "--keep-runs", "99", *files)
        self.file = sqlite3.connect(f"{folder}/fleet.db")
        self.file.row_factory = sqlite3.Row
        self.types = {(each["t"], each["c"]): each["type"] for each in self.ask(
            "SELECT m.name AS t, p.name AS c, p.type FROM sqlite_schema m, pragma_table_info(m.name) p")}
        self.describe()

    def ask(self, statement):
        return [dict(each) for each in self.file.execute(statement)]

    def kind(self, table, column):
        return self.types[table, column]

    @staticmethod
    def place(name):
        return f'"{name}"'


class Postgres(Tables):
    name = "postgres"

    def __init__(self, kyr, files, kinds):
        new_database()
        psql(run(kyr, "export", "--postgres", "--keep-runs", "99", *files)[0])
        types = self.ask("SELECT table_name, column_name, data_type FROM information_schema.columns")
        self.types, self.kinds = {(each["table_name"], each["column_name"]): each["data_type"] for each in types}, kinds
        self.describe()

    @staticmethod
    def ask(statement):
        settings = "SET TIME ZONE 'UTC'; SET intervalstyle = iso_8601; SET extra_float_digits = 1;"
        out = psql(f"{settings} COPY (SELECT to_json(r) FROM ({statement}) r) TO STDOUT WITH (FORMAT csv, QUOTE E'\\x01');",
                   "-qAt")[0]
        return [json.loads(line.strip("\x01").replace("\x01\x01", "\x01")) for line in out.splitlines() if line]

    def kind(self, table, column):
        kind = self.kinds[table, column]
        check(self.types[table, column] in PG_TYPES[kind], f"{table}.{column} is {self.types[table, column]}, not {kind}")
        return kind

    @staticmethod
    def place(name):
        return f'public."{name}"'


class Lines:
    """Texts for programs, in which a reference is one column: the path."""

    by_id = False

    def __init__(self, columns):
        self.columns = {cls: {self.plain(name, each): each for name, each in of_class.items()}
                        for cls, of_class in columns.items()}

    @staticmethod
    def plain(name, column):
        return re.sub("_(id|path)$", "", name) if column.cim_type == "reference" else name

    def row(self, cls, values):
        return {name: cast(value, self.columns[cls][name]) for name, value in values.items()}


class JsonLines(Lines):
    name = "jsonl"

    def __init__(self, kyr, files, database):
        super().__init__(database.columns)
        text = run(kyr, "export", "--jsonl", *files)[0]
        self.lines = [json.loads(line) for line in text.splitlines()]
        self.names = database.names
        again = [json.loads(line) for line in run("jq", "-c", "[.host, .class, .key, .missing]", text=text)[0].splitlines()]
        check(again == [[each.get(name) for name in ("host", "class", "key", "missing")] for each in self.lines],
              "jq reads other lines")
        self.files, file = [], None
        for line in self.lines:
            file = line["run"]["file"] if line["class"] == "run" else file
            self.files.append(file)

    def of(self, path, cls):
        return [line for line, file in zip(self.lines, self.files) if (file, line["class"]) == (path, self.names[cls])]

    def rows(self, path, cls):
        for line in self.of(path, cls):
            for name, value in line[self.names[cls]].items():
                column = self.columns[cls][name]
                is_number = column.kind in ("INTEGER", "ANY", "REAL") and column.cim_type != "reference"
                check(is_number == (not isinstance(value, (str, list))) or value in ("NaN", "Infinity", "-Infinity"),
                      f"{cls} {name} is {value!r}")
        return [self.row(cls, line[self.names[cls]]) for line in self.of(path, cls)]

    def missing(self, path, cls):
        return [line["missing"] for line in self.of(path, cls) if "missing" in line]


class Csv(Lines):
    name = "csv"

    def __init__(self, kyr, files, database):
        super().__init__(database.columns)
        self.kyr, self.files, self.classes = kyr, files, {}
        self.times = {each["collected_at"]: each["file"] for each in database.ask("SELECT collected_at, file FROM run")}

    def rows(self, path, cls):
        if cls not in self.classes:
            self.classes[cls] = self.rows_of_files(cls)
        return [self.row(cls, row) for file, row in self.classes[cls] if file == path]

    def rows_of_files(self, cls):
        head = ("host", "machine_id", "collected_at")
        taken = {name + "_": name for name in head}
        text = run(self.kyr, "export", "--csv", cls, *self.files)[0]
        return [(self.times[row["collected_at"]],
                 {taken.get(name, name): value for name, value in row.items() if value and name not in head})
                for row in csv.DictReader(io.StringIO(text, newline=""))]


def check_mlr(kyr, path, cls):
    text = run(kyr, "export", "--csv", cls, path)[0]
    found = json.loads(run("mlr", "-S", "--icsv", "--ojson", "cat", text=text)[0], strict=False)
    rows = list(csv.DictReader(io.StringIO(text, newline="")))
    check([[str(each) for each in row.values()] for row in found] == [list(row.values()) for row in rows], f"mlr: {cls}")


# ---- Every value ----


def multiset(rows):
    return collections.Counter(frozenset(row.items()) for row in rows if row)


def differing(expected, found):
    """Of the first rows that are not the same, the cells."""
    lost, added = (set().union(*list(rows)[:1]) for rows in (expected - found, found - expected))
    return f"not there: {str(lost - added)[:500]}\n  instead: {str(added - lost)[:500]}"


def compare(reader, collection, path, cls):
    rows, missing = collection.rows(cls, reader.columns, reader.by_id)
    expected, found = multiset(rows), multiset(reader.rows(path, cls))
    if reader.name == "sqlite":  # which has no NaN
        expected = multiset({name: value for name, value in row.items() if value != "NaN"} for row in rows)
    if reader.name == "csv":  # in which a text of no characters is none
        expected = multiset({name: value for name, value in row.items() if value != ""} for row in rows)
    check(expected == found, f"{reader.name}: {path}: {cls}\n  {differing(expected, found)}")
    if hasattr(reader, "missing"):
        check_missing(reader, missing, path, cls)


def check_missing(reader, expected, path, cls):
    found = reader.missing(path, cls)
    for row in found:
        for name in [name for name, reason in row.items() if reason.startswith("NaN")]:
            del row[name]
    names = lambda rows: collections.Counter(frozenset(row) for row in rows if row)
    check(names(expected) == names(found), f"{reader.name}: {path}: {cls} missing: {names(expected)} {names(found)}")
    told = collections.Counter(str(reason) for row in expected for reason in row.values())
    said = collections.Counter(reason.split("exists: ")[-1] for row in found for reason in row.values())
    check(told == said, f"{reader.name}: {path}: {cls}: reasons {told - said} {said - told}")


def check_states(databases, collection, path):
    for database in databases:
        rows = database.ask(f"SELECT class, plugin, state, reason_code, reason FROM class_state WHERE run_id = {database.runs[path]}")
        found = {tuple(row[name] for name in ("class", "plugin", "state", "reason_code", "reason")) for row in rows}
        check(collection.states <= found, f"{database.name}: {path}: states {list(collection.states - found)[:2]}")


def check_wide(postgres, path):
    rows, missing = postgres.rows(path, "ACME_Wide"), postgres.missing(path, "ACME_Wide")
    values = set(rows[0].values()) | {reason.split("columns: ")[1] for reason in missing[0].values()}
    check(values == {"w"} | {f"value of column {i}" for i in range(odd_collection.WIDE)}, "columns without room")


def check_values(kyr, files, folder):
    sqlite = Sqlite(kyr, files, folder)
    postgres = Postgres(kyr, files, sqlite.types)
    lines, texts = JsonLines(kyr, files, sqlite), Csv(kyr, files, sqlite)
    check(sqlite.names == postgres.names, f"names of tables: {set(sqlite.names.items()) ^ set(postgres.names.items())}")
    check(sqlite.names["ACME_DiskDrive"] == "acme_disk_drive", "two tables of one name")
    count = 0
    for path in files:
        collection = Collection(kyr, path)
        for cls in [cls for cls, instances in collection.classes.items() if instances]:
            for reader in (sqlite, lines) if cls == "ACME_Wide" else (sqlite, postgres, lines, texts):
                compare(reader, collection, path, cls)
            count += sum(each["value"] is not None for instance in collection.classes[cls]
                         for each in instance["properties"].values())
        check_states((sqlite, postgres), collection, path)
    check_wide(postgres, files[-1])
    for cls in ("MOLTA_DiskDrive", "MOLTA_Mount"):
        check_mlr(kyr, f"{folder}/hostile.xml", cls)
    check_mlr(kyr, files[-1], "ACME_Odd")
    return count


# ---- Loading text after text ----


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def write(path, text):
    """Saves an edited collection, of which the check sum at the end is right again."""
    text = text[:text.rindex("CRC-32 of all before: ") + 22].encode()
    with open(path, "wb") as file:
        file.write(text + b"%08x -->\n" % zlib.crc32(text))
    return path


def at(time, text):
    """The collection as if it were of that time."""
    return re.sub(r'("DateTimeOfCollection" TYPE="datetime"><VALUE>)[^<]*', rf"\g<1>{time}", text)


def one(statement):
    return psql(statement, "-qAt")[0].strip()


def check_loads(kyr, folder):
    laptop = read(f"{folder}/laptop.xml")
    day = [write(f"{folder}/day{i}.xml", at(f"2026120{i + 1}080000.000000+060", text)) for i, text in enumerate((
        laptop, laptop, laptop.replace("S6EXNX0R000001", "OTHER"),
        laptop.replace('<PROPERTY NAME="Rotational" TYPE="boolean">', '<PROPERTY NAME="Rotational" TYPE="string">'),
        laptop.replace('S6EXNX0R000001', 'THIRD')))]
    clone = write(f"{folder}/clone.xml", read(day[1]).replace(">tern<", ">kite<"))
    # Files, an option, what psql says, the days of the runs that are there then, and a query with its answer.
    rotational = "SELECT string_agg(concat(rotational, rotational_text), ',' ORDER BY run_id, id) FROM disk_drive"
    changes = "SELECT string_agg(concat_ws(' ', op, class, old, new), ', ' ORDER BY op DESC) FROM change WHERE property IS NULL"
    replaced = "removed MOLTA_DiskDrive EXAMPLE SSD PM9A1 1TB, added MOLTA_DiskDrive EXAMPLE SSD PM9A1 1TB"
    not_compared = ("SELECT string_agg(to_char(previous_at, 'DD') || to_char(changed_at, ' \"to\" DD'), ', ') FROM change"
                    " WHERE op = 'not compared'")
    steps = [((day[1],), [], "1 runs stored", "2", None),
             ((day[1],), [], "0 runs stored, 1 already there", "2", ("SELECT count(*) FROM change", "0")),
             ((day[0],), [], "is older than the stored one of 2026-12-02", "2", None),
             ((day[1], day[2]), [], "1 runs stored, 1 already there", "3", (changes, replaced)),
             ((day[0],), ["--keep-runs=2"], "1 runs stored", "1,3", (changes, replaced)),
             ((clone,), [], f"'tern' ({day[2]}) and 'kite' ({clone})", "1,2,3", ("SELECT count(*) FROM host", "2")),
             ((day[3],), [], "1 runs stored", "2,4", (rotational, "f,t,false,true")),
             ((day[3],), [], "1 already there", "2,4", (not_compared, "03 to 04")),
             # What the text compares has a stored run in between.
             ((day[1], day[4]), ["--keep-runs=2"], "2 runs stored", "2,4,5",
              ("SELECT count(*) FROM change WHERE changed_at - previous_at > interval '1 day'", "0"))]
    new_database()
    for files, options, told, runs, asked in steps:
        err = psql(run(kyr, "export", "--postgres", *options, *files)[0])[1]
        step = f"load {[os.path.basename(file) for file in files]} {options}"
        check(told in err, f"{step}: psql says {err}")
        days = one("SELECT string_agg(to_char(collected_at, 'FMDD'), ',' ORDER BY collected_at) FROM run")
        check(days == runs, f"{step}: runs of {days}, not {runs}")
        check(one("SELECT count(*) FROM disk_drive WHERE run_id NOT IN (SELECT id FROM run)") == "0", f"{step}: rows without a run")
        answer = asked and one(asked[0])
        check(not asked or answer == asked[1], f"{step}: {answer}, not {asked and asked[1]}")


def check_two_at_once(kyr, files, folder):
    """Two processes that make and fill one data base."""
    command = [kyr, "export", "--sqlite", f"{folder}/two.db", "--keep-runs", "99", *files]
    both = [subprocess.Popen(command, stderr=subprocess.PIPE, text=True) for _ in range(2)]
    for each in both:
        told = each.communicate()[1]
        check(each.returncode == 0, f"two at once: {told}")
    runs = sqlite3.connect(f"{folder}/two.db").execute("SELECT count(*), count(DISTINCT file) FROM run").fetchone()
    check(runs == (len(files), len(files)), f"two at once: {runs} runs of {len(files)} files")


def check_refusals(kyr, folder):
    text = run(kyr, "export", "--postgres", f"{folder}/laptop.xml")[0]
    new_database()
    psql("CREATE TABLE host (mine text)")
    err = psql(text, status=3)[1]
    check("table host that another program" in err and one("SELECT count(*) FROM host") == "0", f"another's table: {err}")
    run("psql", "-qXd", "postgres", "-c", "DROP DATABASE fleet", "-c",
        "CREATE DATABASE fleet TEMPLATE template0 ENCODING 'LATIN1' LC_COLLATE 'C' LC_CTYPE 'C'")
    err = psql(text, status=3)[1]
    check("LATIN1, not as UTF8" in err, f"another encoding: {err}")


def main(machines, kyr, *options):
    with tempfile.TemporaryDirectory() as folder:
        files = [f"{folder}/{name}.xml" for name in sorted(os.listdir(machines))]
        for path in files:
            run(kyr, "collect", *options, "-o", path, root=f"{machines}/{os.path.basename(path)[:-4]}", status=None)
        odd = odd_collection.add_odd_classes(at("20261201000000.000000-300", read(f"{folder}/laptop.xml")))
        write(f"{folder}/odd.xml", odd)
        count = check_values(kyr, [*files, f"{folder}/odd.xml"], folder)
        check_two_at_once(kyr, files, folder)
        check_loads(kyr, folder)
        check_refusals(kyr, folder)
    print(f"{count} values in four forms, {len(faults)} faults")
    return 1 if faults else 0


sys.exit(main(*sys.argv[1:]))
