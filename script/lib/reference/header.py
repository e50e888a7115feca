"""What the public header declares: groups of functions and constants, each with the comment that tells of them."""

import re
from dataclasses import dataclass, field

SECTION = re.compile(r"/\* -{4} (.*?) -{4,}\s*\*/", re.S)
PROTOTYPE = re.compile(r"TARN_IMPORT\s+(.*?)\s*(TARNAPI|__cdecl)\s+(\w+)\((.*?)\)\s*(?:TARN_PRINTF\(.*?\))?;", re.S)
HANDLER = re.compile(r"typedef\s+(\w+)\((TARNAPI)\*\s*(\w+)\)\((.*?)\);", re.S)
CONSTANT = re.compile(r"#define (TARN_[A-Z0-9_]+) +(\(?-?\d+\)?)(?: +/\*(.*?)\*/)?")
TOKEN = re.compile(r"/\*.*?\*/", re.S)
NO_CONSTANTS = {"TARN_IMPORT", "TARN_PRINTF"}


@dataclass
class Parameter:
    type: str
    name: str


@dataclass
class Function:
    name: str
    result: str
    parameters: list
    is_variadic: bool
    text: str
    section: str
    is_handler: bool = False


@dataclass
class Constant:
    name: str
    value: int
    meaning: str
    text: str
    section: str


@dataclass
class Header:
    introduction: str
    sections: dict = field(default_factory=dict)  # title: text that stands before all groups
    functions: dict = field(default_factory=dict)
    constants: dict = field(default_factory=dict)


def bare(comment):
    """The text of a comment, without its frame."""
    lines = comment.removeprefix("/*").removesuffix("*/").split("\n")
    return "\n".join(re.sub(r"^ \* ?", "", line) if line != " *" else "" for line in lines).strip()


def read_parameter(text):
    text = " ".join(text.split())
    if text == "...":
        return Parameter("", "...")
    found = re.fullmatch(r"(.*?[\s*])(\w+)", text)
    return Parameter(found.group(1).strip(), found.group(2))


def read_parameters(text):
    return [] if text.strip() == "void" else [read_parameter(part) for part in text.split(",")]


def split_groups(text):
    """Runs of lines without a blank one between them, where a comment holds together what is inside of it."""
    held = TOKEN.sub(lambda comment: comment.group(0).replace("\n\n", "\n \n"), text)
    return [group for group in re.split(r"\n\s*\n", held) if group.strip()]


def leading_comment(group):
    found = re.match(r"\s*(/\*.*?\*/)\s*(?:\n|$)", group, re.S)
    return bare(found.group(1)) if found else ""


def add_functions(header, group, text, section):
    for result, _, name, parameters in PROTOTYPE.findall(group):
        read = read_parameters(parameters)
        variadic = any(parameter.name == "..." for parameter in read)
        header.functions[name] = Function(name, " ".join(result.split()), read, variadic, text, section)
    for result, _, name, parameters in HANDLER.findall(group):
        header.functions[name] = Function(name, result, read_parameters(parameters), False, text, section, True)


def add_constants(header, group, text, section):
    for name, value, meaning in CONSTANT.findall(group.replace("\\\n", " ")):
        if name not in NO_CONSTANTS:
            header.constants[name] = Constant(name, int(value.strip("()")), " ".join(meaning.split()), text, section)


def read(path):
    text = path.read_text(encoding="ascii")
    first = TOKEN.search(text)
    header = Header(bare(first.group(0)))
    section, is_first = "Constants and handlers", False
    for group in split_groups(text[first.end():]):
        title = SECTION.search(group)
        if title:
            section, is_first = " ".join(title.group(1).split()), True
            continue
        comment = leading_comment(group)
        is_declaration = PROTOTYPE.search(group) or CONSTANT.search(group)
        add_functions(header, group, comment, section)
        add_constants(header, group, comment, section)
        if is_first and not is_declaration:
            header.sections[section] = comment
        is_first = False
    return header
