"""Writes the reference pages: python3 script/lib/reference FOLDER. Fails where a member has no help text."""

import sys
from pathlib import Path

from automation import AutomationPages
from flat import FlatPages
from markup import Linker, table
from model import SMALL_INTERFACES, Model


KINDS = {"properties": "Properties", "methods": "Methods", "events": "Events", "enumerations": "Enumerations",
         "interfaces": "Objects of the control", "functions": "Flat functions"}


class Writer:
    def __init__(self, folder):
        self.folder = folder
        self.count = 0

    # A page of one member stands in no table of contents, which would be on each page: it leads back to its overview.
    def write_member(self, kind, name, text):
        title = KINDS[kind]
        self.write(f"{kind}/{name}.md", f"---\norphan: true\n---\n\n{text}\n[{title}](../{kind}.md)\n")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8", newline="\n")
        self.count += 1


def write_overview(writer, kind, sentence, rows):
    writer.write(f"{kind}.md", f"# {KINDS[kind]}\n\n{sentence}\n\n{table(['Name', 'Help text'], rows)}\n")


def write_kind(writer, pages, kind, sentence, members, page):
    for member in members.values():
        writer.write_member(kind, member.name, page(member))
    write_overview(writer, kind, sentence, pages.member_rows(members, kind))


def write_automation(writer, model, linker):
    pages = AutomationPages(model, linker)
    write_kind(writer, pages, "properties", "Of the control, `TarnLink.TarnComm`.", model.properties,
               pages.member_page)
    write_kind(writer, pages, "methods", "Of the control, `TarnLink.TarnComm`.", model.methods,
               pages.member_page)
    write_kind(writer, pages, "events", "Of the control, on the thread that made it. "
               "[OnComm](events/OnComm.md) comes ahead of each that the line or a transfer causes.",
               model.control_events, pages.event_page)
    for name in model.library.enumerations:
        writer.write_member("enumerations", name, pages.enumeration_page(name))
    write_overview(writer, "enumerations", "Named values of the type library.",
                   [[f"[{name}](enumerations/{name}.md)", text]
                    for name, (text, _) in sorted(model.library.enumerations.items())])
    for name in SMALL_INTERFACES:
        writer.write_member("interfaces", name, pages.interface_page(name))
    write_overview(writer, "interfaces", "What some properties hand out.",
                   [[f"[{name}](interfaces/{name}.md)", model.library.interfaces[name].help]
                    for name in SMALL_INTERFACES])
    writer.write("errors.md", pages.errors_page())


def write_flat(writer, model, linker):
    pages = FlatPages(model, linker)
    for function in model.header.functions.values():
        writer.write_member("functions", function.name, pages.function_page(function))
    writer.write("functions.md", pages.index_page())
    writer.write("constants.md", pages.constants_page())
    writer.write("rules.md", pages.introduction_page())


def main(arguments):
    if len(arguments) != 1:
        print("usage: python3 script/lib/reference FOLDER", file=sys.stderr)
        return 2
    model = Model()
    problems = model.check()
    if problems:
        print("\n".join(problems), file=sys.stderr)
        return 1
    writer = Writer(Path(arguments[0]))
    linker = Linker(model)
    write_automation(writer, model, linker)
    write_flat(writer, model, linker)
    print(f"{writer.count} pages")
    return 0


sys.exit(main(sys.argv[1:]))
