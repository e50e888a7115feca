"""Checks the made package by reading it: the ZIP against the table, sums, links, the bill of materials, no path of the
builder.

check_package.py ROOT
"""
import hashlib
import json
import pathlib
import posixpath
import re
import sys
import zipfile

root = pathlib.Path(sys.argv[1]).resolve()
sys.path.insert(0, str(root / "script/lib/package"))
from contents import list_contents  # noqa: E402

LINKED = ("GNU Standard C++ Library", "GCC runtime support", "MinGW-w64 runtime", "winpthreads")
PACKAGE_FIELDS = ("SPDXID", "name", "versionInfo", "downloadLocation", "licenseConcluded", "licenseDeclared",
                  "copyrightText")
DOCUMENT_FIELDS = ("spdxVersion", "dataLicense", "SPDXID", "name", "documentNamespace", "creationInfo", "packages",
                   "relationships")
LINK = re.compile(r"\]\(([^)\s#]+)[^)]*\)")
problems = []


def check(holds, words):
    if not holds:
        problems.append(words)


def read_zip(path, folder):
    with zipfile.ZipFile(path) as archive:
        entries = archive.infolist()
        check(len({entry.date_time for entry in entries}) == 1, "files of the ZIP have different times")
        check(all(entry.filename.startswith(f"{folder}/") for entry in entries), "the ZIP has more than one folder")
        names = [entry.filename.removeprefix(f"{folder}/") for entry in entries]
        check(names == sorted(set(names)), "names in the ZIP are not sorted, or are there twice")
        return {name: archive.read(entry) for name, entry in zip(names, entries)}


def check_sums(lines, read, wanted):
    rows = dict(reversed(line.split("  ", 1)) for line in lines.splitlines())
    check(set(rows) == set(wanted), f"SHA256SUMS names {sorted(set(rows) ^ set(wanted))} in one place only")
    for name, digest in rows.items():
        check(hashlib.sha256(read(name)).hexdigest() == digest, f"the sum of {name} is another")


def check_identifiers(bill):
    elements = [bill, *bill["packages"], *bill.get("files", [])]
    identifiers = [each["SPDXID"] for each in elements]
    check(len(set(identifiers)) == len(identifiers), "an SPDXID is there twice")
    for each in identifiers:
        check(re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", each), f"{each} is no SPDXID")
    for row in bill["relationships"]:
        for end in ("spdxElementId", "relatedSpdxElement"):
            check(row[end] in identifiers, f"{row} leads nowhere")


def related(bill, package, kind):
    packages = {each["SPDXID"]: each for each in bill["packages"]}
    return [packages.get(row["relatedSpdxElement"]) for row in bill["relationships"]
            if row["spdxElementId"] == package["SPDXID"] and row["relationshipType"] == kind]


def check_bill(bill, files):
    for field in DOCUMENT_FIELDS:
        check(field in bill, f"the bill of materials has no {field}")
    check(bill["spdxVersion"] == "SPDX-2.3", "the bill of materials is of another version")
    check_identifiers(bill)
    for package in bill["packages"]:
        check_part(bill, package, files)
    binaries = {package["packageFileName"].removeprefix("./"): package for package in bill["packages"]
                if "packageFileName" in package}
    wanted = {place for place in files if place.startswith("bin/") and place.endswith((".ocx", ".exe"))}
    check(set(binaries) == wanted, f"the bill of materials tells of {sorted(binaries)}, not of {sorted(wanted)}")
    for place, package in binaries.items():
        check_binary(bill, package, files[place])


def check_part(bill, package, files):
    for field in PACKAGE_FIELDS:
        check(package.get(field), f"{package.get('name')} has no {field}")
    if not package.get("filesAnalyzed", True):
        for kind in ("CONTAINS", "CONTAINED_BY"):
            check(None not in related(bill, package, kind), f"{package['name']} may hold no files: they are not analysed")
        for field in ("hasFiles", "packageVerificationCode", "licenseInfoFromFiles"):
            check(field not in package, f"{package['name']} has {field}, and its files are not analysed")
    debian = re.match(r"Debian package ([^,]+),", package.get("sourceInfo", ""))
    if debian:
        check(f"licenses/{debian[1]}.txt" in files, f"no licence text of {debian[1]}")


def check_binary(bill, package, data):
    name, parts = package["name"], related(bill, package, "STATIC_LINK")
    linked = {part["name"] for part in parts}
    check(not name.endswith(".ocx") or linked == set(LINKED), f"{name} is said to hold {sorted(linked)}")
    told = set(package["licenseConcluded"].split(" AND "))
    for part in parts:
        check(told >= set(part["licenseConcluded"].split(" AND ")), f"{name} is not told to be under {part['name']}'s")
    for sum_ in package["checksums"]:
        digest = hashlib.new(sum_["algorithm"].lower(), data).hexdigest()
        check(digest == sum_["checksumValue"], f"{name}: another {sum_['algorithm']}")


def check_links(files):
    """What the package's Markdown leads to is in the package, a file or a folder."""
    folders = {place.rsplit("/", depth)[0] for place in files for depth in range(1, place.count("/") + 1)}
    for place in files:
        if not place.endswith(".md"):
            continue
        for target in LINK.findall(files[place].decode()):
            goal = posixpath.normpath(posixpath.join(posixpath.dirname(place), target))
            check(re.match(r"[a-z]+:", target) or goal in files or goal in folders, f"{place} leads to {target}")


def main():
    version = re.search(r"project\(TarnLink VERSION ([0-9.]+)", (root / "CMakeLists.txt").read_text())[1]
    package, name = root / "build/package", f"TarnLinkObjects-{version}"
    files = read_zip(package / f"{name}.zip", name)
    contents = dict(list_contents(root))
    check(set(files) == set(contents), f"the ZIP and the table differ: {sorted(set(files) ^ set(contents))}")
    for place, source in contents.items():
        check(files.get(place) == source.read_bytes(), f"{place} is not {source}")
    check_sums(files["SHA256SUMS"].decode(), files.__getitem__, set(files) - {"SHA256SUMS"})
    check_sums((package / "SHA256SUMS").read_text(), lambda each: (package / each).read_bytes(),
               {f"{name}{ending}" for ending in (".zip", "-setup.exe", ".spdx.json")})
    check_links(files)
    check_bill(json.loads(files["TarnLinkObjects.spdx.json"]), files)
    for place, data in files.items():
        check(str(root).encode() not in data, f"{place} names {root}")
    print(*problems, sep="\n")
    return bool(problems)


if __name__ == "__main__":
    sys.exit(main())
