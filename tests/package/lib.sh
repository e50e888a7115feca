# shellcheck shell=bash
# What the cases of the package share: the made package, a Wine prefix of their own, checks that end the case.

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# shellcheck source-path=SCRIPTDIR
source "$root/script/lib/wine.sh"

package=$root/build/package
version=$(sed -nE 's/^project\(TarnLink VERSION ([0-9.]+) .*/\1/p' "$root/CMakeLists.txt")
setup=$package/TarnLinkObjects-$version-setup.exe
archive=$package/TarnLinkObjects-$version.zip
limit=60 # seconds that anything may take
class= # the control's, set by read_class
declare -A triples=([x86]=i686-w64-mingw32 [x64]=x86_64-w64-mingw32)
declare -A system_folders=([x86]='C:\windows\syswow64' [x64]='C:\windows\system32')
declare -A views=([x86]=32 [x64]=64)

die() {
    echo "tests/package: $*" >&2
    exit 1
}

expect() { # what, wanted, got
    [[ $2 == "$3" ]] || die "$1: wanted <$2>, got <$3>"
}

read_class() {
    class=$(sed -nE 's/.*comClass .*clsid="(\{[0-9a-f-]+\})" tlbid.*/\1/p' "$root/build/x86/Lantry.manifest")
    [[ $class ]] || die "no class stands in build/x86/Lantry.manifest"
}

# The prefix, locked, with its server; all in it ends with this script.
enter_prefix() {
    [[ -f $setup && -f $archive ]] || die "there is no package: script/package"
    use_wine package
    lock_wine
    trap leave_prefix EXIT
    trap 'exit 143' TERM HUP INT
    need_prefix
    drive=$WINEPREFIX/drive_c
    read_class
    scratch=$drive/try
    rm -rf "$scratch"
    mkdir "$scratch"
    start_wine {wine_lock}>&- </dev/null >/dev/null 2>&1
    # A user's classes are there from the start, but under Wine.
    run_for 0 reg add 'HKCU\Software\Classes' /f >/dev/null
    # Wine's script hosts register what is theirs when they run.
    echo 'WScript.Quit 0' >"$scratch/nothing.vbs"
    for arch in "${!system_folders[@]}"; do
        run_script "$arch" nothing.vbs
    done
}

# A case that failed in its midst leaves what it installed: the next one begins with a new prefix.
leave_prefix() {
    local result=$?
    end_wine
    rm -rf "${scratch:-}"
    ((result == 0)) || rm -f "$WINEPREFIX/recipe"
}

run() {
    timeout "$limit" "${loader:-wine}" "$@" {wine_lock}>&- </dev/null
}

# Runs it and prints what it says; its result has to be the one given: run_for RESULT COMMAND...
run_for() {
    local wanted=$1 result=0
    shift
    run "$@" 2>&1 | tr -d '\r' || result=$?
    ((result == wanted)) || die "$* ended with $result, not $wanted"
}

# By the script host of a width, which wants to end well: run_script ARCH NAME, of a file in C:\try
run_script() {
    local loader
    loader=$(wine_loader "$1")
    run_for 0 "${system_folders[$1]}\\cscript.exe" //nologo "C:\\try\\$2"
}

# The installer's folder may hold spaces and has no quotes, as only a command line of its own can have it:
# install OPTIONS...
install() {
    printf '@"%s" %s\r\n' "$(windows_path "$setup")" "$*" >"$scratch/install.bat"
    run_for 0 cmd /c 'C:\try\install.bat'
}

await() { # what, command...
    local end=$((SECONDS + limit))
    until "${@:2}"; do
        ((SECONDS < end)) || die "$1 did not come"
        sleep 0.1
    done
}

# A folder of the prefix, as a path for Windows.
as_windows() {
    local path=C:${1#"$drive"}
    printf '%s' "${path//\//\\}"
}

# One value: read_value HIVE ARCHITECTURE KEY [NAME]. Empty: it is not there.
read_value() {
    local name=(/ve)
    [[ ! ${4:-} ]] || name=(/v "$4")
    run reg query "$1\\Software\\$3" "${name[@]}" "/reg:${views[$2]}" 2>/dev/null |
        tr -d '\r' | sed -nE 's/^ .*REG_(SZ|DWORD) +(.*)/\2/p'
}

module_of() { # hive, architecture
    read_value "$1" "$2" "Classes\\CLSID\\$class\\InprocServer32"
}

unpack() {
    python3 -c 'import sys, zipfile; zipfile.ZipFile(sys.argv[1]).extractall(sys.argv[2])' "$archive" "$scratch"
    unpacked=$scratch/TarnLinkObjects-$version
}

list_places() {
    python3 -B "$root/script/lib/package/contents.py" "$root" | cut -f 1
}

# A folder holds what the table says, byte for byte, and besides only what is named: check_files FOLDER [PLACE...]
check_files() {
    local place source
    diff <({ list_places; printf '%s\n' "${@:2}"; } | sed '/^$/d' | LC_ALL=C sort) \
        <(cd "$1" && find . -type f | sed 's|^\./||' | LC_ALL=C sort) || die "$1 holds other files than the table says"
    while IFS=$'\t' read -r place source; do
        cmp "$source" "$1/$place" || die "$1/$place is not $source"
    done < <(python3 -B "$root/script/lib/package/contents.py" "$root")
}

# All keys and files of the prefix, but for what Windows keeps of its programs at any time.
take_snapshot() { # name
    run regedit /E "$(as_windows "$scratch/$1.hklm")" 'HKEY_LOCAL_MACHINE\Software'
    run regedit /E "$(as_windows "$scratch/$1.hkcu")" 'HKEY_CURRENT_USER\Software'
    for hive in hklm hkcu; do
        iconv -f UTF-16 -t UTF-8 "$scratch/$1.$hive" | tr -d '\r' >"$scratch/$1.$hive.text"
    done
    (cd "$drive" && find . \( -path ./try -o -path './users/*/Temp' -o -path './windows/wiretap*' \) -prune -o -print | LC_ALL=C sort) >"$scratch/$1.files.text"
}

compare_snapshots() { # before, after
    local kind
    for kind in hklm.text hkcu.text files.text; do
        diff "$scratch/$1.$kind" "$scratch/$2.$kind" >"$scratch/difference" && continue
        head -n 20 "$scratch/difference" >&2
        die "something is left behind, see above"
    done
}

is_gone() {
    [[ ! -e $1 ]]
}

# As the system's list of programs does it; the uninstaller works on in a copy of itself when its start has ended.
remove_installed() { # hive, folder
    local command
    command=$(read_value "$1" x64 'Microsoft\Windows\CurrentVersion\Uninstall\TarnLinkObjects' QuietUninstallString)
    expect "the command that removes" "\"$(as_windows "$2")\\uninstall.exe\" /S" "$command"
    run "$(as_windows "$2")\\uninstall.exe" /S
    await "the end of uninstall.exe" is_gone "$2/uninstall.exe"
    await "the end of its copy" has_no_uninstaller
}

has_no_uninstaller() {
    ! run tasklist 2>/dev/null | grep -qi 'un.*\.exe.*nst\|Un_'
}
