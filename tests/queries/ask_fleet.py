#!/usr/bin/env python3
# tests/queries/ask_fleet.py COUNT MACHINES QUERIES KYR [OPTION]...
#
# Makes a fleet of COUNT machines from collections of MACHINES, a folder of recorded ones, exports what it was on two
# days to SQLite and to PostgreSQL, and compares what the questions in QUERIES get there with fleet_oracle.py. With the
# options, KYR has all plugins. The environment tells the server. By hand:
# tests/export/with_postgres.py tests/queries/ask_fleet.py 1000 tests/fixtures/machines queries build/bin/kyr
#   --plugins build/plugins --schema build/schema/kyrcore.xml
import collections
import datetime
import json
import multiprocessing
import os
import re
import subprocess
import sys
import tempfile

import fleet_oracle

HERE = os.path.dirname(os.path.abspath(__file__))
BASES = ("server", "virtual", "nvme", "laptop", "container", "hostile", "unreadable")
faults = []


def fault(text):
    faults.append(text)
    print(text, flush=True)


def run(*arguments, check=True, environment=None, **options):
    result = subprocess.run(arguments, env={**os.environ, "TZ": "UTC", **(environment or {})}, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True, errors="replace", **options)
    if check and result.returncode != 0:
        sys.exit(f"{' '.join(arguments)[:200]}: status {result.returncode}\n{result.stderr[-2000:]}")
    return result


def read_run(task):
    kyr, path = task
    return json.loads(run(kyr, "show", path, "--json", check=False).stdout)


def make_fleet(folder, count, machines, kyr):
    """The files of both days."""
    bases = [f"{folder}/{name}.xml" for name in BASES]
    for name, base in zip(BASES, bases):
        run(*kyr[:1], "collect", *kyr[1:], "-o", base, check=False, environment={"KYR_SYSTEM_ROOT": f"{machines}/{name}"})
    return [run(sys.executable, f"{HERE}/../../bench/fleet.py", "--day", str(day), "--packages", "30", str(count),
                f"{folder}/day{day}", *bases).stdout.split() for day in (1, 2)]


# ---- The data bases ----


class Sqlite:
    def __init__(self, folder, kyr):
        self.kyr, self.path = kyr, f"{folder}/fleet.db"

    def export(self, files):
        return run(self.kyr, "export", "--sqlite", self.path, *files, check=False)

    def ask(self, statement):
        return json.loads(run("sqlite3", "-json", self.path, statement).stdout or "[]")


class Postgres:
    """A data base fleet of the server that the environment names, made anew."""

    def __init__(self, folder, kyr):
        self.kyr, self.folder = kyr, folder
        for action in ("DROP DATABASE IF EXISTS fleet", "CREATE DATABASE fleet"):
            run("psql", "-qXd", "postgres", "-c", action)

    def export(self, files):
        with open(f"{self.folder}/fleet.sql", "w") as file:
            result = subprocess.run([self.kyr, "export", "--postgres", *files], stdout=file, stderr=subprocess.PIPE, text=True)
        run("psql", "-qXd", "fleet", "-f", file.name)
        return result

    def ask(self, statement):
        text = f"SET TIME ZONE 'UTC'; SELECT coalesce(json_agg(rows), '[]') FROM ({statement}) rows"
        return json.loads(run("psql", "-qAtXd", "fleet", "-c", text).stdout)


# ---- Comparing ----


def statements(text):
    return [each.strip() for each in re.sub(r"^ *--.*\n", "", text, flags=re.M).split(";") if each.strip()]


def with_parameters(text, parameters):
    for name, value in parameters.items():
        text, count = re.subn(rf"'[^']*' AS {name}\b", f"'{value}' AS {name}", text)
        if not count:
            fault(f"no parameter {name}")
    return text


def defaults(text):
    return dict((name, value) for value, name in re.findall(r"'([^']*)' AS (\w+)", text.partition("\n  latest")[0])
                if name in ("product", "version", "day", "serial", "since", "package"))


def plain(column, value):
    """A value as the oracle has it: the engines differ in booleans, arrays, times and large numbers."""
    if value is None:
        return None
    if column == "superuser":
        return bool(value)
    if column == "empty_slots":
        return tuple(json.loads(value) if isinstance(value, str) else value)
    if column in ("collected_at", "changed_at", "known_since"):
        text = re.sub(r"([+-]\d\d)$", r"\1:00", value.replace("Z", "+00:00"))
        time = datetime.datetime.fromisoformat(text).astimezone(datetime.timezone.utc)
        return time.replace(tzinfo=None, microsecond=0).isoformat()
    return str(value)


def difference(columns, expected, answered):
    wanted, found = (collections.Counter(tuple(plain(name, value) for name, value in zip(columns, row)) for row in rows)
                     for rows in (expected, ([row[name] for name in columns] for row in answered)))
    return [f"  missing {row}" for row in wanted - found] + [f"  too much {row}" for row in found - wanted]


def compare(fleet, queries, engine):
    for name, (question, cases, *columns) in fleet_oracle.QUESTIONS.items():
        with open(f"{queries}/{name}.sql") as file:
            text = file.read()
        for parameters in cases:
            expected = question(fleet, **{**defaults(text), **parameters})
            asked = statements(with_parameters(text, parameters))
            if len(asked) != len(expected):
                fault(f"{name}: {len(asked)} statements")
            for statement, header, rows in zip(asked, columns, expected):
                differing = difference(header, rows, engine.ask(statement))
                print(f"{type(engine).__name__} {name} {parameters or ''}: {len(rows)} rows", flush=True)
                if differing:
                    fault("\n".join([f"{len(differing)} rows differ", *differing[:10]]))


def export(engine, files, status, **wanted):
    """Exports the files, and compares the exit status and the counts of the closing line."""
    result = engine.export(files)
    closing = result.stderr.strip().rpartition("\n")[2]
    counts = {word: int(number) for number, word in re.findall(r"(\d+) (?:runs )?(stored|already|older|unreadable)", closing)}
    if result.returncode != status or counts != wanted:
        fault(f"{type(engine).__name__}: status {result.returncode}, {closing}; expected {status}, {wanted}")


def main():
    count, machines, queries, *kyr = sys.argv[1:]
    with tempfile.TemporaryDirectory(prefix="kyr-fleet") as folder:
        first, second = make_fleet(folder, int(count), machines, kyr)
        good = [path for path in first if "/broken-" not in path]
        with multiprocessing.Pool() as pool:
            fleet = fleet_oracle.Fleet(pool.imap(read_run, ((kyr[0], path) for path in good + second), chunksize=4))
        sqlite = Sqlite(folder, kyr[0])
        export(sqlite, first, 1, stored=len(good), unreadable=len(first) - len(good))
        export(sqlite, second, 0, stored=len(second))
        export(sqlite, second, 0, stored=0, already=len(second))
        compare(fleet, queries, sqlite)
        postgres = Postgres(folder, kyr[0])
        export(postgres, good + second, 0, stored=len(good + second))
        compare(fleet, queries, postgres)
    sys.exit(f"{len(faults)} faults" if faults else 0)


if __name__ == "__main__":
    main()
