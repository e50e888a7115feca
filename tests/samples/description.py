"""What a program may name: the members in the type library's description, the functions in the public header."""
import dataclasses
import re


@dataclasses.dataclass
class Member:
    """A property or a method. Counts are those of the arguments between the brackets, without a value that is put."""

    type: str = ""  # of the value, as the description calls it; none of a method that gives nothing
    is_property: bool = False
    readable: bool = False
    writable: bool = False
    fewest: int = 0
    most: int = 0


@dataclasses.dataclass
class Function:
    """A flat function. Types are words such as "HWND", "int", "LONG", "void", "const char*"."""

    result: str
    parameters: list


def without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.S)


class TypeLibrary:
    def __init__(self, path):
        text = without_comments(path.read_text())
        self.identifier = re.search(r"uuid\(([0-9a-f-]+)\)[^\]]*\]\s*library", text)[1]
        self.enumerations = {
            name: {value: int(number) for value, number in re.findall(r"(\w+) = (-?\d+)", body)}
            for name, body in re.findall(r"\benum (\w+)\s*\{(.*?)\}", text, flags=re.S)
        }
        self.values = {name: number for values in self.enumerations.values() for name, number in values.items()}
        self.control = self._members(text, "ITarnComm")
        self.extension = self._members(text, "IScriptExtension")
        body = re.search(r"dispinterface _ITarnCommEvents\s*\{(.*?)\n\};", text, flags=re.S)[1]
        self.events = {
            name: len([each for each in arguments.split(",") if each.strip()])
            for name, arguments in re.findall(r"void (\w+)\((.*?)\);", self._plain(body), flags=re.S)
        }

    @staticmethod
    def _plain(text):
        """Without help texts, which hold brackets."""
        return re.sub(r'helpstring\("(?:\\.|[^"\\])*"\)', "helpstring", text)

    def _members(self, text, interface):
        body = re.search(rf"interface {interface} : IDispatch\s*\{{(.*?)\n\}};", text, flags=re.S)[1]
        members = {}
        row = r"\[(id\([^\]]*)\]\s*HRESULT (\w+)\((.*?)\);"
        for attributes, name, arguments in re.findall(row, self._plain(body), flags=re.S):
            given = [each for each in re.findall(r"\[([^\]]*)\]", arguments) if "retval" not in each]
            member = members.setdefault(name, Member())
            if "propput" in attributes:
                member.writable = True
                given.pop()
            else:
                member.readable = True
            value = re.search(r"\[(?:out, retval|in)\] (\w+) \*?\w+$", arguments.strip())
            member.is_property |= "prop" in attributes
            if value and (member.is_property or "retval" in arguments):
                member.type = value[1]
            member.most = len(given)
            member.fewest = len([each for each in given if "optional" not in each])
        return members


class Header:
    def __init__(self, path):
        text = without_comments(path.read_text())
        self.constants = {
            name: int(number) for name, number in re.findall(r"#define (TARN_\w+)[\s\\]+\(?(-?\d+)\)?", text)
        }
        declared = r"TARN_IMPORT ([\w ]+?\*?) ?TARNAPI (\w+)\(([^;]*)\);"
        self.functions = {
            name: Function(result.strip(), self._types(arguments))
            for result, name, arguments in re.findall(declared, text, flags=re.S)
        }

    @staticmethod
    def _types(arguments):
        if arguments.strip() == "void":
            return []
        return [re.sub(r"\s*\w+$", "", each.strip()) for each in arguments.split(",")]
