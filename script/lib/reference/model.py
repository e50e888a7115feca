"""All that the pages tell of, held together: type library, header and tables. What lacks a text stops the build."""

from pathlib import Path

import header
import idl
import tables

ROOT = Path(__file__).resolve().parents[3]
CONTROL = "ITarnComm"
EVENTS = "_ITarnCommEvents"
SMALL_INTERFACES = ["IScriptExtension", "ICommPort", "ITapiLocation"]


class Model:
    def __init__(self, idl_path=ROOT / "src/module/TarnLink.idl", header_path=ROOT / "include/TarnComm.h"):
        self.library = idl.read(idl_path)
        self.header = header.read(header_path)
        self.members = tables.members()
        self.events = tables.events()
        self.errors = tables.errors()
        self.values = tables.values()
        self.arguments = tables.arguments()
        self.problems = []

    @property
    def control(self):
        return self.library.interfaces[CONTROL].members

    @property
    def control_events(self):
        return self.library.interfaces[EVENTS].members

    @property
    def properties(self):
        return {name: member for name, member in self.control.items() if member.is_property}

    @property
    def methods(self):
        return {name: member for name, member in self.control.items() if not member.is_property}

    def members_of_function(self, name):
        return [member for member, row in sorted(self.members.items()) if name in row.functions]

    def argument_text(self, function, name):
        return self.arguments.get(f"{function}.{name}") or self.arguments.get(name, "")

    def group_of(self, function):
        """The functions that share a comment."""
        return [other.name for other in self.header.functions.values()
                if other.text == function.text and other.section == function.section]

    def check(self):
        self.compare("members.txt", self.members, self.control)
        self.compare("events.txt", self.events, self.control_events)
        self.compare("values.txt", self.values,
                     [value for _, values in self.library.enumerations.values() for value in values])
        self.check_help()
        self.check_functions()
        self.check_argument_rows()
        return self.problems

    def compare(self, table, rows, names):
        self.problems += [f"{table}: no row for {name}" for name in names if name not in rows]
        self.problems += [f"{table}: a row for {name}, which is not there" for name in rows if name not in names]

    def check_help(self):
        for block in [*self.library.interfaces.values(), *self.library.classes.values()]:
            self.need(block.help, block.name)
            for member in block.members.values():
                self.need(member.help, f"{block.name}.{member.name}")
        for name, (text, _) in self.library.enumerations.items():
            self.need(text, name)

    def check_functions(self):
        for function in self.header.functions.values():
            self.need(function.text, function.name)
            for parameter in function.parameters:
                self.need(self.argument_text(function.name, parameter.name), f"{function.name}: {parameter.name}")
        for constant in self.header.constants.values():
            self.need(constant.meaning or constant.text, constant.name)
        for member, row in self.members.items():
            self.problems += [f"members.txt: {member} names {name}, which is no function"
                              for name in row.functions if name not in self.header.functions]
        for event, row in self.events.items():
            if row.code != "-" and row.code not in self.header.constants:
                self.problems.append(f"events.txt: {event} names {row.code}, which is no constant")

    def check_argument_rows(self):
        used = {name for function in self.header.functions.values() for parameter in function.parameters
                for name in (parameter.name, f"{function.name}.{parameter.name}")}
        self.problems += [f"arguments.txt: no function takes {name}" for name in self.arguments if name not in used]

    def need(self, text, what):
        if not text:
            self.problems.append(f"{what} has no help text")
