"""The hand-written tables beside this file: rows of fields with bars between them."""

import re
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent


@dataclass
class MemberRow:
    default: str
    functions: list
    remarks: str


@dataclass
class EventRow:
    code: str
    cause: str


@dataclass
class ErrorRow:
    number: str
    text: str
    cause: str


def rows(name, columns):
    """The rows of a table as {first field: the others}; a bar in quotes belongs to its field."""
    result = {}
    for line in (HERE / name).read_text(encoding="utf-8").splitlines():
        if not line.strip() or line.startswith("#"):
            continue
        fields = [part.strip() for part in re.split(r"\|(?!\")", line)]
        if len(fields) != columns:
            raise SystemExit(f"{name}: {len(fields)} fields in place of {columns}: {line}")
        if fields[0] in result:
            raise SystemExit(f"{name}: two rows of {fields[0]}")
        result[fields[0]] = fields[1:]
    return result


def members():
    return {name: MemberRow(default, functions.split(), remarks)
            for name, (default, functions, remarks) in rows("members.txt", 4).items()}


def events():
    return {name: EventRow(*row) for name, row in rows("events.txt", 3).items()}


def errors():
    return {name: ErrorRow(*row) for name, row in rows("errors.txt", 4).items()}


def values():
    return {name: meaning for name, (meaning,) in rows("values.txt", 2).items()}


def arguments():
    return {name: meaning for name, (meaning,) in rows("arguments.txt", 2).items()}
