"""What compilers want that don't run on Windows: the control as C# sees it, and a unit of the platform for Delphi."""

TYPES = {"BSTR": "string", "long": "int", "short": "short", "VARIANT_BOOL": "bool", "VARIANT": "object"}

PLATFORM = """
namespace System.Windows.Forms
{
    public class Application { public static void Run() { } public static void ExitThread() { } }
    public class Control : System.IDisposable
    {
        public System.IntPtr Handle { get { return System.IntPtr.Zero; } }
        public object Invoke(System.Delegate method) { return null; }
        public void Dispose() { }
    }
}
"""

WINDOWS_UNIT = """unit Windows;

interface

type
  HWND = PtrUInt;

implementation

end.
"""


def csharp_type(library, name):
    """None where a sample has no use for it: pictures, collections."""
    return TYPES.get(name) or (name if name in library.enumerations else None)


def csharp_control(library):
    """Properties, the methods without arguments or with a text, and the events without arguments."""
    rows = []
    for name, member in library.control.items():
        kind = csharp_type(library, member.type)
        if member.is_property and kind and member.most == 0:
            get, put = member.readable * "get { return value; }", member.writable * "set { }"
            rows.append(f"public {kind} {name} {{ {get.replace('value', f'default({kind})')} {put} }}")
        elif not member.is_property and kind and member.most == 0:
            rows.append(f"public {kind} {name}() {{ return default({kind}); }}")
    for name, count in library.events.items():
        if count == 0 and name not in library.control:
            rows.append(f"public event System.Action {name} {{ add {{ }} remove {{ }} }}")
    values = [f"public enum {name} {{ {', '.join(f'{each} = {number}' for each, number in body.items())} }}"
              for name, body in library.enumerations.items()]
    return PLATFORM + "namespace TarnLink {\n" + "\n".join(values) + "\npublic class TarnComm {\n" + "\n".join(
        rows) + "\n}\n}\n"
