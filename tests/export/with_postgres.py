#!/usr/bin/env python3
# tests/export/with_postgres.py COMMAND...
#
# Runs the command with PGHOST and PGUSER set to a PostgreSQL server of its own, in a temporary folder, reached by a socket
# there. The server must not be the superuser's: then it is that of the user postgres.
import glob
import os
import pwd
import shutil
import subprocess
import sys
import tempfile

SETTINGS = "-c listen_addresses= -c fsync=off -c max_connections=10"


def programs():
    found = sorted(glob.glob("/usr/lib/postgresql/*/bin"), key=lambda path: int(path.split("/")[-2]))
    return found[-1] if found else sys.exit("no PostgreSQL server is installed: scripts/setup installs it")


def main(command):
    folder, change = tempfile.mkdtemp(prefix="kyr-postgres-", dir="/tmp"), []
    if os.geteuid() == 0:
        owner = pwd.getpwnam("postgres")
        os.chown(folder, owner.pw_uid, owner.pw_gid)
        change = ["setpriv", f"--reuid={owner.pw_uid}", f"--regid={owner.pw_gid}", "--clear-groups"]

    def server(program, *arguments):
        with open(f"{folder}/output", "a") as output:
            return subprocess.run([*change, f"{programs()}/{program}", "-D", f"{folder}/data", *arguments], cwd="/",
                                  stdout=output, stderr=subprocess.STDOUT).returncode

    try:
        if server("initdb", "-N", "-A", "trust", "-U", "kyr", "-E", "UTF8", "--locale=C") != 0 or server(
                "pg_ctl", "-w", "-l", f"{folder}/log", "-o", f"-k {folder} {SETTINGS}", "start") != 0:
            return open(f"{folder}/output").read() + "the PostgreSQL server does not start"
        return subprocess.run(command, env={**os.environ, "PGHOST": folder, "PGUSER": "kyr"}).returncode
    finally:
        server("pg_ctl", "-m", "immediate", "stop")
        shutil.rmtree(folder, ignore_errors=True)


sys.exit(main(sys.argv[1:]))
