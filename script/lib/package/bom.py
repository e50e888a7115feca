"""The bill of materials, SPDX 2.3 in JSON: our binaries, and what of others is linked into them or packs them."""
import hashlib
import json
import re
import time
import uuid

from runtimes import ask, list_runtimes

# Where the package has them from.
BINARIES = {"Lantry.ocx": "build/package/made", "tarnregister.exe": "build"}
ARCHITECTURES = ("x86", "x64")
# Its stub and its System plug-in go into the installer; the stub unpacks LZMA.
INSTALLER = {"title": "Nullsoft Scriptable Install System", "package": "nsis-common",
             "licence": "Zlib AND MIT AND CPL-1.0 WITH LZMA-exception"}
OURS = "MIT"


def identifier(*words):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.]+", "-", "-".join(words)).strip("-")


def digest(path, kind):
    return hashlib.new(kind, path.read_bytes()).hexdigest()


def list_binaries(root):
    """Rows of (place in the package, path, run-times linked in)."""
    for arch in ARCHITECTURES:
        for name, folder in BINARIES.items():
            linker_map = (root / "build" / arch / name).with_suffix(".map")
            yield f"bin/{arch}/{name}", root / folder / arch / name, list_runtimes(root, [linker_map])


def installer_tool():
    version, source = ask("dpkg-query", "-Wf", "${Version}\t${source:Package} ${source:Version}",
                          INSTALLER["package"]).split("\t")
    return {**INSTALLER, "version": version, "source": source}


def describe_part(part):
    return {
        "SPDXID": identifier(part["title"], part["package"]),
        "name": part["title"],
        "versionInfo": part["version"],
        "supplier": "Organization: Debian",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": part["licence"],
        "licenseDeclared": part["licence"],
        "copyrightText": "NOASSERTION",
        "sourceInfo": f"Debian package {part['package']}, built from {part['source']}",
        "externalRefs": [{
            "referenceCategory": "PACKAGE-MANAGER",
            "referenceType": "purl",
            "referenceLocator": f"pkg:deb/debian/{part['package'].replace('+', '%2B')}"
                                f"@{part['version'].replace('+', '%2B')}",
        }],
    }


def all_of(licences):
    """One expression: each of the licences, ours first, counts for some part."""
    single = {each for licence in licences for each in licence.split(" AND ")}
    return " AND ".join(sorted(single, key=lambda each: (each != OURS, each)))


def describe_product(version, licence, concluded):
    return {
        "SPDXID": identifier("TarnLinkObjects"),
        "name": "Tarn Link Objects",
        "versionInfo": version,
        "supplier": "Organization: The Tarn Link Objects developers",
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": concluded,
        "licenseDeclared": OURS,
        "copyrightText": re.search(r"^Copyright .*$", licence, re.M).group(),
    }


def describe_binary(product, place, path, runtimes):
    """A package of its own: one whose files are not analysed may hold packages, and no files."""
    return {
        **product,
        "SPDXID": identifier(place),
        "name": place,
        "packageFileName": f"./{place}",
        "checksums": [{"algorithm": kind.upper(), "checksumValue": digest(path, kind)} for kind in ("sha1", "sha256")],
        "licenseConcluded": all_of([OURS, *(part["licence"] for part in runtimes)]),
    }


def relate(subject, kind, other):
    return {"spdxElementId": subject, "relationshipType": kind, "relatedSpdxElement": other}


def bill_of_materials(root, version, epoch):
    rows = list(list_binaries(root))
    everything = all_of([OURS, *(part["licence"] for _, _, runtimes in rows for part in runtimes)])
    product = describe_product(version, (root / "LICENSE").read_text(), everything)
    tool = describe_part(installer_tool())
    parts, binaries = {}, []
    relations = [relate("SPDXRef-DOCUMENT", "DESCRIBES", product["SPDXID"]),
                 relate(tool["SPDXID"], "BUILD_TOOL_OF", product["SPDXID"])]
    for place, path, runtimes in rows:
        binaries.append(describe_binary(product, place, path, runtimes))
        relations.append(relate(product["SPDXID"], "CONTAINS", binaries[-1]["SPDXID"]))
        for part in map(describe_part, runtimes):
            parts[part["SPDXID"]] = part
            relations.append(relate(binaries[-1]["SPDXID"], "STATIC_LINK", part["SPDXID"]))
    sums = " ".join(each["checksums"][1]["checksumValue"] for each in binaries)
    return json.dumps({
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"TarnLinkObjects-{version}",
        "documentNamespace": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, f'{version} {sums}')}",
        "creationInfo": {
            "created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(epoch)),
            "creators": ["Tool: script/package"],
        },
        "packages": [product, *binaries, *(parts[key] for key in sorted(parts)), tool],
        "relationships": relations,
    }, indent=1, ensure_ascii=False) + "\n"
