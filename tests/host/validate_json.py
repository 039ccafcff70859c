"""Tells of each JSON document that does not obey a JSON Schema: validate_json.py SCHEMA DOCUMENT..."""

import json
import sys

from jsonschema import Draft7Validator


def read(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def main(schema_path, *paths):
    schema = read(schema_path)
    Draft7Validator.check_schema(schema)
    validator = Draft7Validator(schema)
    refused = 0
    for path in paths:
        error = next(validator.iter_errors(read(path)), None)
        if error is not None:
            refused += 1
            print(f"{path}: {'/'.join(map(str, error.path))}: {error.message[:200]}")
    return 1 if refused else 0


sys.exit(main(*sys.argv[1:]))
