"""How each language names things. A rule takes a sample's text and yields what is wrong with it."""
import re

EXTENDER = {"Move"}  # what a form adds to the control
PROGRAM_NAME = "TarnLink.TarnComm"

# Words that Visual Basic takes for no name
BASIC_RESERVED = set(
    "and as call case close const declare dim do each else end enum event exit for function get global goto if in input is"
    " len let like loop me mod new next not nothing null on open option or print private public put resume select set"
    " static step stop sub then to type until wend while with write xor".split())

# Numbers that scripts without the type library give names of their own.
OWN_NAMES = {"zmodem": "Protocol_ZModem", "nodialog": "Dialog_Hidden"}

STRINGS = {
    "basic": r'"(?:[^"]|"")*"',
    "c": r'"(?:\\.|[^"\\\n])*"',
    "pascal": r"'(?:[^']|'')*'",
    "python": r'"""(?:.|\n)*?"""|f?r?"(?:\\.|[^"\\\n])*"',
    "shell": r"'[^']*'",
}
COMMENTS = {"basic": r"'[^\n]*", "c": r"//[^\n]*", "pascal": r"//[^\n]*", "python": r"#[^\n]*", "shell": r"#[^\n]*"}


def code_of(text, family):
    """The text without its comments; of strings the quotes are left, and what they put in: {comm.PortStatus}."""

    def empty(match):
        found = match[0]
        if match.lastgroup == "comment":
            return ""
        inside = re.findall(r"\{[^{}]*\}|\$\([^()]*\)", found) if family in ("c", "python") else []
        return '"' + " ".join(inside) + '"'

    pattern = f"(?P<string>{STRINGS[family]})|(?P<comment>{COMMENTS[family]})"
    return re.sub(pattern, empty, text)


def arguments_behind(code, place):
    """How many arguments stand in the brackets at this place; None without brackets."""
    if code[place : place + 1] != "(":
        return None
    depth, count, last = 0, 0, place
    for at in range(place, len(code)):
        character = code[at]
        if character in "([{":
            depth += 1
        elif character in ")]}":
            depth -= 1
            if depth == 0:
                return count + 1 if code[last + 1 : at].strip() or count else 0
        elif character == "," and depth == 1:
            count, last = count + 1, at
    return None


def wrong_members(code, library, family, ignores_case):
    """Each `comm.Member`: that it is there, can be read or set so, and takes so many arguments."""
    members = {name.lower() if ignores_case else name: member for name, member in library.control.items()}
    use = r"(?<![\w.])\$?(?:self\.)?(?:comm|Comm1)\.(\w+)(\s*(?:\+=|=(?![=>])))?"
    for match in re.finditer(use, code):
        name, put = match[1], (match[2] or "").strip()
        if name in EXTENDER:
            continue
        if put == "+=":
            if library.events.get(name) is None:
                yield f"there is no event {name}"
            continue
        member = members.get(name.lower() if ignores_case else name)
        if member is None:
            yield f"there is no {name}"
            continue
        is_put = put and not (family == "basic" and inside_condition(code, match.start()))
        if is_put and not member.writable:
            yield f"{name} can't be set"
        if not is_put and not member.readable:
            yield f"{name} can't be read"
        count = None if put else arguments_behind(code, match.end())
        if not member.fewest <= (count or 0) <= member.most:
            yield f"{name} takes {member.fewest} to {member.most} arguments, not {count or 0}"


def inside_condition(code, place):
    """BASIC compares by the sign that it assigns by."""
    before = code[code.rfind("\n", 0, place) + 1 : place]
    statement = re.split(r"\b(?:Then|Else)\b|:", before, flags=re.I)[-1]
    return bool(statement.strip())


def wrong_values(code, library):
    """Words that look like a value of an enumeration."""
    families = {name.split("_")[0] for name in library.values if "_" in name}
    for word in sorted(set(re.findall(r"(?<!\w)(\w+_\w+)\b", code))):
        if word.split("_")[0] in families and word not in library.values:
            yield f"there is no value {word}"
    for enumeration, value in re.findall(r"\b(\w+)\.(\w+_\w+)\b", code):
        if enumeration in library.enumerations and value not in library.enumerations[enumeration]:
            yield f"{value} is none of {enumeration}"
    own = r"(?im)^\s*(?:const\s+|var\s+|\$)(\w+)\s*=\s*(\d+)"
    for name, number in re.findall(own, code):
        value = OWN_NAMES.get(name.lower())
        if value and library.values[value] != int(number):
            yield f"{name} is {library.values[value]}, not {number}"


def wrong_program_names(text):
    """The name by which the object is made."""
    made = r"(?:CreateObject|ActiveXObject|-ComObject|As New|= New)\s*\(?\s*[\"']?(TarnLink\.\w+)"
    for name in re.findall(made, text):
        if name != PROGRAM_NAME:
            yield f"there is no {name}"


# ---- Handlers of events ----


def wrong_basic_handlers(code, library):
    for name, arguments in re.findall(r"\bSub Comm1_(\w+)\(([^)]*)\)", code):
        given = len([each for each in arguments.split(",") if each.strip()])
        if library.events.get(name) != given:
            yield f"there is no event {name} with {given} arguments"


def wrong_python_handlers(code, library):
    for name, arguments in re.findall(r"\bdef ([A-Z]\w*)\(self([^)]*)\)", code):
        given = arguments.count(",")
        if library.events.get(name) != given:
            yield f"there is no event {name} with {given} arguments"


def wrong_basic_names(code):
    for name in re.findall(r"\b(\w+) As\b", code):
        if name.lower() in BASIC_RESERVED:
            yield f"{name} is a word of the language"


def wrong_forms(text, library):
    """The line by which a form finds the control's library."""
    wanted = f'Object = "{{{library.identifier}}}#1.0#0"; "Lantry.ocx"'
    if wanted not in text:
        yield "the form's Object line is not " + wanted


# ---- Declarations of flat functions ----

BASIC_TYPES = {
    "int": {"Long"}, "LONG": {"Long"}, "DWORD": {"Long"}, "const char*": {"String"}, "char*": {"String"},
    "void": {""},
}
PASCAL_TYPES = {
    "HWND": {"HWND"}, "int": {"Integer"}, "LONG": {"Longint"}, "DWORD": {"Cardinal", "DWORD"},
    "const char*": {"PAnsiChar"}, "char*": {"PAnsiChar"}, "const void*": {"Pointer"}, "void*": {"Pointer"},
    "void": {""},
}


def wrong_signature(name, result, parameters, types, header):
    function = header.functions.get(name)
    if function is None:
        yield f"there is no function {name}"
        return
    if len(parameters) != len(function.parameters):
        yield f"{name} takes {len(function.parameters)} arguments, not {len(parameters)}"
        return
    for wanted, given in zip([function.result, *function.parameters], [result, *parameters]):
        if given not in types.get(wanted, set()):
            yield f"{name} has {given or 'nothing'} for {wanted}"


def wrong_declares(code, header):
    """Of BASIC: one half for interpreters that know LongPtr, one for those before."""
    modern, old = re.search(r"#If VBA7 Then(.*?)#Else(.*?)#End If", code, flags=re.S).groups()
    declared = []
    for half, handle, mark in ((modern, "LongPtr", "PtrSafe "), (old, "Long", "")):
        types = BASIC_TYPES | {"HWND": {handle}, "HANDLE": {handle}}
        row = r'Declare (PtrSafe )?(?:Function|Sub) (\w+) Lib "" \(([^)]*)\)(?: As (\w+))?'
        found = re.findall(row, half)
        declared.append([name for _, name, _, _ in found])
        for safe, name, arguments, result in found:
            given = [each.strip() for each in arguments.split(",") if each.strip()]
            if safe != mark:
                yield f"{name}: PtrSafe is for LongPtr"
            if not all(each.startswith("ByVal ") for each in given):
                yield f"{name} takes its arguments by value"
            yield from wrong_signature(name, result, [each.split(" As ")[-1] for each in given], types, header)
        if f"Private comm As {handle}\n" not in half:
            yield f"a handle is a {handle} here"
    if declared[0] != declared[1]:
        yield "the two halves declare different functions"


def wrong_pascal_unit(code, header):
    face, body = code.split("implementation")
    for name, number in re.findall(r"(TARN_\w+) = (-?\d+);", face):
        if header.constants.get(name) != int(number):
            yield f"{name} is {header.constants.get(name)}, not {number}"
    row = r"(?:function|procedure) (\w+)\(([^)]*)\)(?:: (\w+))?;( stdcall;)?"
    for name, arguments, result, convention in re.findall(row, face):
        if not convention:
            yield f"{name} is stdcall"
        if not re.search(rf"\b{name}; external Module;", body):
            yield f"{name} is declared and not found"
        given = [each.split(":")[-1].strip() for each in arguments.split(";") if each.strip()]
        yield from wrong_signature(name, result, given, PASCAL_TYPES, header)
