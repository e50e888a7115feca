"""Pages of the public header: a page for each flat function, one for all constants."""

import re

import declarations
from markup import escape, paragraphs, table

TELLING = 40  # characters
DEAD = "A handle that is null, foreign or of an object that was destroyed: nothing is done, and the result is {}."


class FlatPages:
    def __init__(self, model, linker):
        self.model = model
        self.linker = linker

    def function_page(self, function):
        name = function.name
        parts = [f"# {name}", f"```c\n{declarations.c(function)}\n```", paragraphs(function.text, self.linker, name)]
        if function.parameters:
            parts += ["## Arguments", self.arguments(function)]
        parts += ["## Result", self.result(function)]
        parts += self.basic(function)
        parts += self.neighbours(function)
        return "\n\n".join(parts) + "\n"

    def arguments(self, function):
        return table(["Name", "Type", "Meaning"],
                     [[f"`{parameter.name}`", f"`{parameter.type}`" if parameter.type else "",
                       self.linker.flat(self.model.argument_text(function.name, parameter.name), function.name)]
                      for parameter in function.parameters])

    @staticmethod
    def result(function):
        takes_object = any(parameter.name == "hWnd" for parameter in function.parameters)
        if function.result == "void":
            return "None." + (" A handle of no living object is met with silence." if takes_object else "")
        told = f"`{function.result}`, as told above."
        if not takes_object:
            return told
        if function.name in ("tarnbasInput", "tarnbasLineInput"):
            return told
        empty = {"const char*": "an empty string", "HWND": "`NULL`", "HANDLE": "`NULL`"}.get(function.result, "0")
        return f"{told} {DEAD.format(empty)}"

    @staticmethod
    def basic(function):
        if function.is_handler:
            return []
        if function.is_variadic:
            return ["## BASIC", "Can't be declared: it takes any number of arguments in C's own way."]
        return ["## VBA, 32 and 64 bits", f"```vb\n{declarations.basic(function, True)}\n```",
                "## Visual Basic 6", f"```vb\n{declarations.basic(function, False)}\n```"]

    def neighbours(self, function):
        parts = []
        members = self.model.members_of_function(function.name)
        if members:
            parts += ["## Members of the control",
                      "\n".join(f"- [`{name}`]({self.linker.members[name]})" for name in members)]
        others = [name for name in self.model.group_of(function) if name != function.name]
        if others:
            parts += ["## Told together with",
                      "\n".join(f"- [`{name}`](../functions/{name}.md)" for name in others)]
        return parts

    def constants_page(self):
        parts = ["# Constants", "What `TarnComm.h` defines, in its order."]
        for constant in self.model.header.constants.values():
            telling = constant.meaning or constant.text
            parts += [f"## {escape(constant.name)}", f"`{constant.value}`",
                      paragraphs(telling, self.linker, constant.name).replace("](../", "](")]
        return "\n\n".join(parts) + "\n"

    def introduction_page(self):
        return "# Rules of all flat functions\n\n" + \
            paragraphs(self.model.header.introduction, self.linker).replace("](../", "](") + "\n"

    def index_page(self):
        parts = ["# Flat functions", "The exports of `Lantry.ocx`, as `TarnComm.h` declares them. "
                 "[Rules of all flat functions](rules.md) tells of errors, threads, events and units."]
        for section in dict.fromkeys(function.section for function in self.model.header.functions.values()):
            parts.append(f"## {section}")
            if section in self.model.header.sections:
                parts.append(paragraphs(self.model.header.sections[section], self.linker).replace("](../", "]("))
            functions = [function for function in self.model.header.functions.values() if function.section == section]
            texts = dict.fromkeys(function.text for function in functions)
            parts.append(table(["Functions", "What", "Property, method"],
                               [self.index_row(text, [function.name for function in functions if function.text == text])
                                for text in texts]))
        return "\n\n".join(parts) + "\n"

    def index_row(self, text, functions):
        """The functions that share a comment, and its first sentence, or more of them where that tells little."""
        plain = " ".join(text.split())
        telling = re.match(r".{%d,}?\.(?= |$)|.*" % TELLING, plain).group(0)
        members = dict.fromkeys(member for function in functions for member in self.model.members_of_function(function))
        return [", ".join(f"[{function}](functions/{function}.md)" for function in functions), escape(telling),
                ", ".join(f"[{name}]({self.linker.members[name].removeprefix('../')})" for name in members)]
