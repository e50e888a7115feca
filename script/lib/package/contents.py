"""The table package/contents as rows of (place in the package, file it comes from), sorted by place.

As a program: contents.py ROOT prints the rows, separated by tabs.
"""
import pathlib
import subprocess
import sys

ARCHITECTURES = ("x86", "x64")
OF_THE_HOUSE = {"CMakeLists.txt", "conf.py", "site.css"}  # they build our own trees and serve nobody else


def read_table(root):
    """Rows of (place, source, may be missing), with {arch} filled in."""
    for line in (root / "package/contents").read_text().splitlines():
        if not line or line.startswith("#"):
            continue
        place, source, *condition = (field.strip() for field in line.split("|"))
        for arch in ARCHITECTURES if "{arch}" in line else ("",):
            yield place.replace("{arch}", arch), source.replace("{arch}", arch), condition == ["if built"]


def list_folder(root, folder):
    """Files below a folder, as paths from there: what is made, or what the repository holds of it."""
    whole = root / folder
    if not folder.startswith("build/") and (root / ".git").exists():
        held = subprocess.run(["git", "-C", root, "ls-files", "-z", "--", folder], check=True, capture_output=True)
        found = [pathlib.PurePosixPath(name).relative_to(folder) for name in held.stdout.decode().split("\0") if name]
    else:
        found = [path.relative_to(whole) for path in whole.rglob("*") if path.is_file()]
    return [path for path in found if path.name not in OF_THE_HOUSE]


def list_contents(root):
    rows = {}
    for place, source, may_be_missing in read_table(root):
        if not place.endswith("/"):
            rows[place] = root / source
            continue
        files = list_folder(root, source)
        if not files and not may_be_missing:
            raise SystemExit(f"package/contents: {source} is empty")
        for path in files:
            rows[place + path.as_posix()] = root / source / path
    return sorted(rows.items())


if __name__ == "__main__":
    for place, source in list_contents(pathlib.Path(sys.argv[1])):
        print(place, source, sep="\t")
