"""A flat function as each language writes it."""

import textwrap

LIBRARY = "Lantry.ocx"
WIDTH = 100
NUMBERS = {"int", "LONG", "DWORD", "UINT"}
INDENT = "    "


def pointer(has_wide):
    return "LongPtr" if has_wide else "Long"


def basic_parameter(parameter, has_wide):
    type_, name = parameter.type, parameter.name
    if type_ in NUMBERS:
        return f"ByVal {name} As Long"
    if type_ == "char":
        return f"ByVal {name} As Byte"
    if type_ in ("char*", "const char*"):
        return f"ByVal {name} As String"
    if type_ in ("void*", "const void*"):
        return f"{name} As Any"
    return f"ByVal {name} As {pointer(has_wide)}"


def basic(function, has_wide):
    """The Declare statement; nothing for what BASIC can't call."""
    if function.is_variadic or function.is_handler:
        return ""
    kind = "Sub" if function.result == "void" else "Function"
    safe = "PtrSafe " if has_wide else ""
    parameters = ", ".join(basic_parameter(parameter, has_wide) for parameter in function.parameters)
    result = ""
    if function.result != "void":
        result = " As Long" if function.result in NUMBERS else " As Byte" if function.result == "char" else \
            f" As {pointer(has_wide)}"
    line = f'Public Declare {safe}{kind} {function.name} Lib "{LIBRARY}" ({parameters}){result}'
    wrapped = textwrap.wrap(line, WIDTH, subsequent_indent=INDENT, break_long_words=False, break_on_hyphens=False)
    return " _\n".join(wrapped)


def c(function):
    parameters = ", ".join(f"{parameter.type} {parameter.name}".strip() for parameter in function.parameters) or "void"
    call = "__cdecl" if function.is_variadic else "TARNAPI"
    line = f"{function.result} {call} {function.name}({parameters});"
    if function.is_handler:
        line = f"typedef {function.result}(TARNAPI* {function.name})({parameters});"
    return "\n".join(textwrap.wrap(line, WIDTH, subsequent_indent=INDENT, break_long_words=False))
