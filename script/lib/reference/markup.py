"""Plain text of comments and help strings as Markdown, with links to what is named in it."""

import re

SPECIAL = re.compile(r"([\\`*_<>\[\]{}#~^$|])")
WORD = re.compile(r"`?\b([A-Za-z_][A-Za-z0-9_]*)\b`?")
CODE = re.compile(r"`([^`]+)`")


def escape(text):
    return SPECIAL.sub(r"\\\1", text)


def anchor(heading):
    """As Sphinx and repository browsers make it."""
    return heading.lower().replace(" ", "-")


class Linker:
    """Where the page of each name is, seen from a page one folder below the reference."""

    def __init__(self, model):
        self.functions = {name: f"../functions/{name}.md" for name in model.header.functions}
        self.constants = {name: f"../constants.md#{anchor(name)}" for name in model.header.constants}
        self.members = {}
        for kind, names in (("properties", model.properties), ("methods", model.methods),
                            ("events", model.control_events)):
            self.members.update({name: f"../{kind}/{name}.md" for name in names if name not in self.members})
        self.enumerations = {name: f"../enumerations/{name}.md" for name in model.library.enumerations}
        self.values = {value: self.enumerations[name]
                       for name, (_, values) in model.library.enumerations.items() for value in values}

    def flat(self, text, own=""):
        """A comment of the header: names of functions with more than one hump, and constants, become links."""
        parts, last = [], 0
        for found in WORD.finditer(text):
            name = found.group(1)
            target = self.constants.get(name) or (self.functions.get(name) if self.is_telling(name) else None)
            if target and name != own:
                parts += [escape(text[last:found.start()]), f"[`{name}`]({target})"]
                last = found.end()
        return "".join(parts) + escape(text[last:])

    @staticmethod
    def is_telling(name):
        return len(re.findall(r"[A-Z]", name)) > 1 or name.startswith("tarnbas")

    def automation(self, text, own=""):
        """A row of the tables: it is Markdown already, and names in backticks become links."""
        def link(found):
            name = found.group(1)
            target = self.members.get(name) or self.values.get(name)
            return f"[`{name}`]({target})" if target and name != own else found.group(0)
        return CODE.sub(link, text)


def paragraphs(text, linker, own=""):
    """A comment of the header as Markdown: its paragraphs, lists and indented code."""
    result = []
    for part in re.split(r"\n\s*\n", text):
        if part.startswith("    "):
            result.append("```c\n" + "\n".join(line[4:] for line in part.split("\n")) + "\n```")
        elif part.startswith("- "):
            result.append("- " + linker.flat(" ".join(part[2:].split()), own))
        else:
            result.append(linker.flat(" ".join(part.split()), own))
    return "\n\n".join(result)


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def cell(text):
    """Text for a cell that is Markdown already."""
    return text.replace("|", "\\|")
