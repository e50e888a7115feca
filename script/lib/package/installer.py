"""The lists that package/setup.nsi includes: what it looks for, copies and takes away, from one folder."""


def escape(path):
    return path.replace("$", "$$")


def list_folders(places):
    folders = {""}
    for place in places:
        while "/" in place:
            place = place.rpartition("/")[0]
            folders.add(place)
    return sorted(folders)


def installed(path):
    return f"$INSTDIR\\{escape(path)}".replace("/", "\\").rstrip("\\")


def write_lists(path, folder):
    places = sorted(each.relative_to(folder).as_posix() for each in folder.rglob("*") if each.is_file())
    folders = list_folders(places)
    lines = ["!macro NoteFiles"]
    lines += [f'  !insertmacro NoteFile "{escape(place)}"'.replace("/", "\\") for place in places]
    lines += ["!macroend", "", "!macro CopyFiles"]
    for each in folders:
        lines.append(f'  SetOutPath "{installed(each)}"')
        lines += [f'  File "${{STAGE}}/{escape(place)}"' for place in places if place.rpartition("/")[0] == each]
        lines.append(f'  !insertmacro NoteErrors "{installed(each)}"')
    lines += ["!macroend", "", "!macro RemoveFiles"]
    lines += [f'  Delete "{installed(place)}"' for place in places]
    # The deepest first, and only those that are empty then.
    lines += [f'  RMDir "{installed(each)}"' for each in reversed(folders) if each]
    size = sum((folder / place).stat().st_size for place in places)
    lines += ["!macroend", "", f"!define KILOBYTES {(size + 1023) // 1024}", ""]
    path.write_text("\n".join(lines))
