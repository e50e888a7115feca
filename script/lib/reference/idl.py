"""What the type library offers, read from its IDL."""

import re
from dataclasses import dataclass, field

BRACKET = r'\[((?:[^\]"]|"(?:\\.|[^"\\])*")*)\]'
MEMBER = re.compile(BRACKET + r'\s*(?:HRESULT|void)\s+(\w+)\s*\(([^;]*)\)\s*;')
BLOCK = re.compile(BRACKET + r'\s*(interface|dispinterface|coclass)\s+(\w+)[^{;]*\{(.*?)\n\};', re.S)
ENUMERATION = re.compile(r'typedef\s*' + BRACKET + r'\s*enum\s+(\w+)\s*\{([^}]*)\}', re.S)
ARGUMENT = re.compile(r'\[([^\]]*)\]\s*(\w+)\s*(\**)\s*(\w+)')


@dataclass
class Argument:
    marks: list
    type: str
    stars: str
    name: str


@dataclass
class Member:
    """A property with all of its accessors, a method or an event."""

    name: str
    number: int
    help: str
    marks: set
    access: list = field(default_factory=list)  # propget, propput, propputref; none for a method
    arguments: list = field(default_factory=list)  # of the first accessor, the result among them

    @property
    def is_property(self):
        return bool(self.access)

    @property
    def result(self):
        return next((a for a in self.arguments if "retval" in a.marks), None)

    @property
    def inputs(self):
        inputs = [a for a in self.arguments if "retval" not in a.marks]
        return inputs[:-1] if self.access and not self.result else inputs

    @property
    def type(self):
        if self.result:
            return self.result.type
        return self.arguments[-1].type if self.access else ""


@dataclass
class Interface:
    name: str
    kind: str
    help: str
    members: dict = field(default_factory=dict)


@dataclass
class Library:
    interfaces: dict
    enumerations: dict  # name: (help, {value name: number})
    classes: dict


def help_of(attributes):
    found = re.search(r'helpstring\("((?:\\.|[^"\\])*)"\)', attributes)
    return re.sub(r"\\(.)", r"\1", found.group(1)).strip() if found else ""


def marks_of(attributes):
    bare = re.sub(r'"(?:\\.|[^"\\])*"', "", attributes)
    return {mark.strip() for mark in bare.split(",")}


def read_arguments(text):
    return [
        Argument([mark.strip() for mark in marks.split(",")], type_, stars, name)
        for marks, type_, stars, name in ARGUMENT.findall(text)
    ]


def read_members(text):
    members = {}
    for attributes, name, arguments in MEMBER.findall(text):
        marks = marks_of(attributes)
        access = [mark for mark in marks if mark.startswith("prop")]
        if name in members:
            members[name].access += access
            continue
        number = int(re.search(r"\bid\((-?\d+)\)", attributes).group(1))
        members[name] = Member(name, number, help_of(attributes), marks, access, read_arguments(arguments))
    return members


def read_values(text):
    return {name: int(number) for name, number in re.findall(r"(\w+)\s*=\s*(-?\d+)", text)}


def read(path):
    text = re.sub(r"^\s*//.*$", "", path.read_text(encoding="ascii"), flags=re.M)
    blocks = [Interface(name, kind, help_of(attributes), read_members(body))
              for attributes, kind, name, body in BLOCK.findall(text)]
    return Library(
        {block.name: block for block in blocks if block.kind != "coclass"},
        {name: (help_of(attributes), read_values(body)) for attributes, name, body in ENUMERATION.findall(text)},
        {block.name: block for block in blocks if block.kind == "coclass"},
    )
