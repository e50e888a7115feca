"""Pages of what the type library offers: properties, methods, events, enumerations and the small interfaces."""

from markup import anchor, cell, escape, table

# As BASIC names the types of the IDL
BASIC_TYPES = {"VARIANT_BOOL": "Boolean", "long": "Long", "short": "Integer", "float": "Single", "BSTR": "String",
               "VARIANT": "Variant", "IFontDisp": "Font", "IUnknown": "Object"}
MARKS = {"hidden": "hidden in object browsers", "nonbrowsable": "not shown by property browsers",
         "restricted": "not for scripts"}


class AutomationPages:
    def __init__(self, model, linker):
        self.model = model
        self.linker = linker

    def type_of(self, name):
        if name in self.model.library.enumerations:
            return f"[{name}](../enumerations/{name}.md)"
        if name in self.model.library.interfaces:
            return f"[{name}](../interfaces/{name}.md)"
        return BASIC_TYPES[name]

    @staticmethod
    def access_of(member):
        reads, writes = "propget" in member.access, {"propput", "propputref"} & set(member.access)
        return "read, write" if reads and writes else "read" if reads else "write"

    @staticmethod
    def basic_type(name):
        return BASIC_TYPES.get(name, name)

    def basic_argument(self, argument):
        optional = "Optional " if "optional" in argument.marks else ""
        way = "ByRef" if "out" in argument.marks else "ByVal"
        return f"{optional}{way} {argument.name} As {self.basic_type(argument.type)}"

    def basic_syntax(self, member, before="object."):
        arguments = ", ".join(self.basic_argument(argument) for argument in member.inputs)
        if member.is_property:
            text = f"{before}{member.name}" + (f"({arguments})" if arguments else "")
            return text + (" = value" if self.access_of(member) != "read" else "")
        result = f" As {self.basic_type(member.result.type)}" if member.result else ""
        return f"{before}{member.name}({arguments}){result}"

    def cpp_syntax(self, member):
        def written(argument):
            return f"{argument.type}{'*' * len(argument.stars)} {argument.name}"
        inputs = [written(argument) for argument in member.inputs]
        value = f"{member.type}{'*' if self.model.library.interfaces.get(member.type) or member.type == 'IFontDisp' else ''}"
        lines = []
        if "propget" in member.access:
            lines.append(f"HRESULT get_{member.name}({', '.join([*inputs, value + '* value'])});")
        for kind, prefix in (("propput", "put_"), ("propputref", "putref_")):
            if kind in member.access:
                lines.append(f"HRESULT {prefix}{member.name}({', '.join([*inputs, value + ' value'])});")
        if not member.access:
            lines.append(f"HRESULT {member.name}({', '.join(written(argument) for argument in member.arguments)});")
        return "\n".join(lines)

    def traits(self, member, default=None):
        rows = [["Type", self.type_of(member.type)]] if member.is_property else []
        if not member.is_property and member.result:
            rows.append(["Result", self.type_of(member.result.type)])
        if member.is_property:
            rows.append(["Access", self.access_of(member)])
        if default is not None and member.is_property:
            rows.append(["On a new control", "not readable" if default == "-" and self.access_of(member) == "write"
                         else "no fixed value" if default == "-"
                         else f"`{cell(default)}`"])
        rows.append(["Dispatch number", str(member.number)])
        marks = [MARKS[mark] for mark in sorted(member.marks) if mark in MARKS]
        if marks:
            rows.append(["Shown", ", ".join(marks)])
        return table(["", ""], rows)

    def with_errors(self, text):
        """Remarks, with "{name}" of an error as the link to its row."""
        for name, row in self.model.errors.items():
            text = text.replace("{" + name + "}", f"Raises [{row.number}](../errors.md#{anchor(name)})")
        return text

    def values_of(self, enumeration):
        _, values = self.model.library.enumerations[enumeration]
        return table(["Value", "Name", "Meaning"],
                     [[str(number), f"`{name}`", self.linker.automation(self.model.values[name])]
                      for name, number in values.items()])

    def flat_list(self, names):
        return "\n".join(f"- [`{name}`](../functions/{name}.md)" for name in names)

    def member_page(self, member):
        row = self.model.members[member.name]
        parts = [f"# {member.name}", escape(member.help), self.traits(member, row.default)]
        remarks = self.with_errors(self.linker.automation(row.remarks, member.name))
        if remarks:
            parts.append(remarks)
        parts += self.arguments_part(member)
        used = member.type if member.is_property else member.result.type if member.result else ""
        if used in self.model.library.enumerations:
            parts += ["## Values", self.values_of(used)]
        parts += ["## Syntax", f"```vb\n{self.basic_syntax(member)}\n```", f"```text\n{self.cpp_syntax(member)}\n```"]
        if row.functions:
            parts += ["## Flat functions", self.flat_list(row.functions)]
        return "\n\n".join(parts) + "\n"

    def arguments_part(self, member):
        if not member.inputs:
            return []
        return ["## Arguments", table(["Name", "Type", "Passed"],
                                      [[f"`{argument.name}`", self.type_of(argument.type),
                                        "by reference" if "out" in argument.marks else
                                        "optional" if "optional" in argument.marks else "by value"]
                                       for argument in member.inputs])]

    def event_page(self, member):
        row = self.model.events[member.name]
        arguments = ", ".join(self.basic_argument(argument).replace("ByRef ", "") for argument in member.inputs)
        parts = [f"# {member.name}", escape(member.help), self.traits(member),
                 self.linker.automation(row.cause, member.name)]
        parts += self.arguments_part(member)
        parts += ["## Syntax", f"```vb\nPrivate Sub object_{member.name}({arguments})\n```"]
        if row.code != "-":
            told = "As [`TARN_EVENT_TRANSFER`](../constants.md#tarn_event_transfer), with the status " \
                if row.code.startswith("TARN_TRANSFER") else "As "
            parts += ["## Flat interface", f"{told}[`{row.code}`](../constants.md#{anchor(row.code)})."]
        return "\n\n".join(parts) + "\n"

    def enumeration_page(self, name):
        text, _ = self.model.library.enumerations[name]
        users = [member.name for member in self.model.control.values()
                 if name in (member.type, *(argument.type for argument in member.arguments))]
        users += [event.name for event in self.model.control_events.values()
                  if name in (argument.type for argument in event.arguments) and event.name not in users]
        parts = [f"# {name}", escape(text), self.values_of(name)]
        if users:
            parts += ["## Used by", "\n".join(f"- [`{user}`]({self.linker.members[user]})" for user in users)]
        return "\n\n".join(parts) + "\n"

    def interface_page(self, name):
        interface = self.model.library.interfaces[name]
        parts = [f"# {name}", escape(interface.help) + "."]
        for member in interface.members.values():
            parts += [f"## {escape(member.name)}", escape(member.help), self.traits(member),
                      f"```vb\n{self.basic_syntax(member)}\n```"]
        return "\n\n".join(parts) + "\n"

    def member_rows(self, members, folder):
        return [[f"[{escape(name)}]({folder}/{name}.md)", escape(member.help)]
                for name, member in sorted(members.items(), key=lambda pair: pair[0].lower())]

    def errors_page(self):
        parts = ["# Errors of the control",
                 "What members of the control raise. An error in the automation sense: BASIC's `Err`, an exception, or"
                 " the result of the call with the text in the thread's error object."]
        for name, row in self.model.errors.items():
            parts += [f"## {name.capitalize()}", table(["", ""], [["Number", f"`{row.number}`"], ["Text", escape(row.text)],
                                                             ["When", escape(row.cause)]])]
        return "\n\n".join(parts) + "\n"
