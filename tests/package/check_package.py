"""Checks the made package by reading it: the ZIP against the table, sums, the bill of materials, no path of the builder.

check_package.py ROOT
"""
import hashlib
import json
import pathlib
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
                   "files", "relationships")
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
    elements = [bill, *bill["packages"], *bill["files"]]
    identifiers = [each["SPDXID"] for each in elements]
    check(len(set(identifiers)) == len(identifiers), "an SPDXID is there twice")
    for each in identifiers:
        check(re.fullmatch(r"SPDXRef-[A-Za-z0-9.-]+", each), f"{each} is no SPDXID")
    for row in bill["relationships"]:
        for end in ("spdxElementId", "relatedSpdxElement"):
            check(row[end] in identifiers, f"{row} leads nowhere")


def check_bill(bill, files):
    for field in DOCUMENT_FIELDS:
        check(field in bill, f"the bill of materials has no {field}")
    check(bill["spdxVersion"] == "SPDX-2.3", "the bill of materials is of another version")
    for package in bill["packages"]:
        for field in PACKAGE_FIELDS:
            check(package.get(field), f"{package.get('name')} has no {field}")
    check_identifiers(bill)
    titles = {package["SPDXID"]: package["name"] for package in bill["packages"]}
    for file in bill["files"]:
        check_binary(file, files[file["fileName"].removeprefix("./")])
        linked = {titles[row["relatedSpdxElement"]] for row in bill["relationships"]
                  if row["spdxElementId"] == file["SPDXID"] and row["relationshipType"] == "STATIC_LINK"}
        if file["fileName"].endswith(".ocx"):
            check(linked == set(LINKED), f"{file['fileName']} is said to hold {sorted(linked)}")
    for package in bill["packages"]:
        debian = re.match(r"Debian package ([^,]+),", package.get("sourceInfo", ""))
        if debian:
            check(f"licenses/{debian[1]}.txt" in files, f"no licence text of {debian[1]}")


def check_binary(file, data):
    for sum_ in file["checksums"]:
        digest = hashlib.new(sum_["algorithm"].lower(), data).hexdigest()
        check(digest == sum_["checksumValue"], f"{file['fileName']}: another {sum_['algorithm']}")


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
    check_bill(json.loads(files["TarnLinkObjects.spdx.json"]), files)
    for place, data in files.items():
        check(str(root).encode() not in data, f"{place} names {root}")
    print(*problems, sep="\n")
    return bool(problems)


if __name__ == "__main__":
    sys.exit(main())
