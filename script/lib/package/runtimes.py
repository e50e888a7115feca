"""Which run-time libraries of the compiler are linked into a module, as its linker's map tells, and whose they are."""
import functools
import pathlib
import re
import subprocess

GCC = "GPL-3.0-or-later WITH GCC-exception-3.1"
# The library's file, its name for people, its licence, and words that Debian's account of the licence must hold.
# First match counts; a library of the compiler's that no row names stops the build.
KNOWN = (
    (r"libstdc\+\+\.a", "GNU Standard C++ Library", GCC, "GCC RUNTIME LIBRARY EXCEPTION"),
    (r"libgcc(_eh)?\.a|crt(begin|end|fastmath)\.o", "GCC runtime support", GCC, "GCC RUNTIME LIBRARY EXCEPTION"),
    (r"lib(win)?pthread\.a", "winpthreads", "MIT AND BSD-3-Clause", "winpthreads"),
    (r"lib\w+\.a|(dll)?crt2\.o|crt\w+\.o", "MinGW-w64 runtime", "ZPL-2.1", "mingw-w64"),
)


def linked_files(linker_map):
    """Absolute paths of archives and objects with code in the module."""
    text = pathlib.Path(linker_map).read_text(errors="replace")
    # What is taken of an archive stands at the start of the map; objects that come whole, in LOAD lines.
    archives = re.findall(r"^(/\S+?\.a)\(", text, re.M)
    objects = re.findall(r"^LOAD (/\S+?\.o)$", text, re.M)
    return sorted({str(pathlib.Path(path).resolve()) for path in archives + objects})


def ask(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


@functools.cache
def owner_of(path):
    return ask("dpkg", "-S", path).split(":")[0]


def describe(path):
    name = pathlib.Path(path).name
    for pattern, title, licence, words in KNOWN:
        if re.fullmatch(pattern, name):
            return title, licence, words
    raise SystemExit(f"{path} is linked in, and no row of runtimes.py names its licence")


def list_runtimes(root, maps):
    """Rows of {title, package, version, source, licence, copyright (a path)}, one for each title and package."""
    rows = {}
    for path in sorted({path for each in maps for path in linked_files(each)}):
        if path.startswith(f"{root.resolve()}/"):
            continue
        title, licence, words = describe(path)
        package = owner_of(path)
        if (title, package) in rows:
            continue
        version, source = ask("dpkg-query", "-Wf", "${Version}\t${source:Package} ${source:Version}", package).split("\t")
        account = pathlib.Path(f"/usr/share/doc/{package}/copyright")
        if words.lower() not in account.read_text(errors="replace").lower():
            raise SystemExit(f"{account} says nothing of {words}: look at the licence of {path} again")
        rows[title, package] = {"title": title, "package": package, "version": version, "source": source,
                                "licence": licence, "copyright": account}
    return [rows[key] for key in sorted(rows)]
