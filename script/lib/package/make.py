"""Makes build/package of what is built: make.py ROOT VERSION EPOCH. script/package calls it.

Nothing in what it makes depends on the folder, the user or the hour: names are sorted, times are EPOCH.
"""
import hashlib
import os
import pathlib
import shutil
import subprocess
import sys
import time
import zipfile

from bom import INSTALLER, bill_of_materials, list_binaries
from contents import list_contents
from installer import write_lists

TRIPLES = {"x86": "i686-w64-mingw32", "x64": "x86_64-w64-mingw32"}
COMMON_LICENCES = pathlib.Path("/usr/share/common-licenses")
# Texts that the accounts of the packages only refer to.
REFERRED = ("GPL-3",)
# A ZIP knows no earlier time.
ZIP_BEGINS = (1980, 1, 1, 0, 0, 0)
# What of the environment would have makensis read other files than Debian's.
NSIS_PLACES = {"NSISDIR", "NSISCONFDIR"}


def sha256(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def write_licences(root, folder):
    folder.mkdir(parents=True)
    packages = {part["package"]: part["copyright"] for _, _, parts in list_binaries(root) for part in parts}
    packages[INSTALLER["package"]] = pathlib.Path(f"/usr/share/doc/{INSTALLER['package']}/copyright")
    for package, account in packages.items():
        shutil.copyfile(account, folder / f"{package}.txt")
    for name in REFERRED:
        shutil.copyfile(COMMON_LICENCES / name, folder / f"{name}.txt")


def write_module(root, arch, made):
    """The module without its link to the symbols, which stay here: they tell how the compiler was called."""
    (made / arch).mkdir(parents=True)
    subprocess.run([f"{TRIPLES[arch]}-objcopy", "--remove-section=.gnu_debuglink",
                    root / "build" / arch / "Lantry.ocx", made / arch / "Lantry.ocx"],
                   check=True, env={**os.environ, "SOURCE_DATE_EPOCH": "0"})


def write_made(root, version, epoch):
    """What the table names below build/package/made."""
    made = root / "build/package/made"
    for arch in TRIPLES:
        write_module(root, arch, made)
    write_licences(root, made / "licenses")
    (made / "TarnLinkObjects.spdx.json").write_text(bill_of_materials(root, version, epoch))
    sums = made / "SHA256SUMS"
    sums.write_text("".join(f"{sha256(source)}  {place}\n" for place, source in list_contents(root) if source != sums))


def stage(contents, folder, epoch):
    for place, source in contents:
        target = folder / place
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)
        target.chmod(0o644)
        os.utime(target, (epoch, epoch))


def write_zip(path, folder, places, epoch):
    moment = max(time.gmtime(epoch)[:6], ZIP_BEGINS)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for place in places:
            entry = zipfile.ZipInfo(f"{folder.name}/{place}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 3
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, (folder / place).read_bytes())


def write_installer(root, path, folder, version, epoch):
    lists = folder.parent / "lists.nsh"
    write_lists(lists, folder)
    os.utime(lists, (epoch, epoch))
    inherited = {name: value for name, value in os.environ.items() if name not in NSIS_PLACES}
    subprocess.run(
        ["makensis", "-NOCONFIG", "-V2", "-WX", "-NOCD", f"-DVERSION={version}", f"-DSTAGE={folder}", f"-DLISTS={lists}",
         f"-DOUTPUT={path}", root / "package/setup.nsi"],
        check=True, env={**inherited, "SOURCE_DATE_EPOCH": str(epoch), "TZ": "UTC"})


def make(root, version, epoch):
    package = root / "build/package"
    shutil.rmtree(package, ignore_errors=True)
    package.mkdir(parents=True)
    write_made(root, version, epoch)
    contents = list_contents(root)
    name = f"TarnLinkObjects-{version}"
    folder = package / "stage" / name
    stage(contents, folder, epoch)
    products = [package / f"{name}.zip", package / f"{name}-setup.exe", package / f"{name}.spdx.json"]
    write_zip(products[0], folder, [place for place, _ in contents], epoch)
    write_installer(root, products[1], folder, version, epoch)
    shutil.copyfile(package / "made/TarnLinkObjects.spdx.json", products[2])
    (package / "SHA256SUMS").write_text("".join(f"{sha256(path)}  {path.name}\n" for path in sorted(products)))


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]).resolve(), sys.argv[2], int(sys.argv[3]))
