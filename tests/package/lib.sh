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
    start_guard rm -f "$WINEPREFIX/recipe"
    trap leave_prefix EXIT
    trap 'exit 143' TERM HUP INT
    need_prefix
    drive=$WINEPREFIX/drive_c
    read_class
    scratch=$drive/try
    rm -rf "$scratch"
    mkdir "$scratch"
    start_wine {wine_lock}>&- {guard}>&- </dev/null >/dev/null 2>&1
    # A user's classes are there from the start, but under Wine.
    run_for 0 reg add 'HKCU\Software\Classes' /f >/dev/null
    # Wine's script hosts register what is theirs when they run.
    echo 'WScript.Quit 0' >"$scratch/nothing.vbs"
    for arch in x86 x64; do
        run_script "$arch" nothing.vbs
    done
}

# A case that failed in its midst leaves what it installed: the next one begins with a new prefix.
leave_prefix() {
    local result=$?
    end_wine
    rm -rf "${scratch:-}"
    ((result == 0)) || rm -f "$WINEPREFIX/recipe"
    dismiss_guard
}

# By a loader of Wine's: run_by LOADER COMMAND...
run_by() {
    timeout "$limit" "$@" {wine_lock}>&- {guard}>&- </dev/null
}

run() {
    run_by wine "$@"
}

# Prints what a command says; its result has to be the one given: want RESULT COMMAND...
want() {
    local wanted=$1 result=0
    shift
    "$@" 2>&1 | tr -d '\r' || result=$?
    ((result == wanted)) || die "$* ended with $result, not $wanted"
}

# A program for Windows: run_for RESULT COMMAND...
run_for() {
    want "$1" run "${@:2}"
}

# By the script host of a width, which wants to end well: run_script ARCH NAME, of a file in C:\try
run_script() {
    want 0 run_by "$(wine_loader "$1")" "$(system_folder "$1")\\cscript.exe" //nologo "C:\\try\\$2"
}

# A folder that an installer takes may hold spaces and has no quotes, as only a command line of its own can have it:
# run_line RESULT PROGRAM WORDS
run_line() {
    printf '@"%s" %s\r\n' "$2" "$3" >"$scratch/line.bat"
    run_for "$1" cmd /c 'C:\try\line.bat'
}

install_for() { # result, options...
    run_line "$1" "$(windows_path "$setup")" "${*:2}"
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

# A folder holds what the package does, byte for byte, and besides only what is named: check_files FOLDER [PLACE...]
check_files() {
    local sums=$package/made/SHA256SUMS
    diff <({ cut -c 67- "$sums"; printf '%s\n' SHA256SUMS "${@:2}"; } | LC_ALL=C sort) \
        <(cd "$1" && find . -type f | sed 's|^\./||' | LC_ALL=C sort) || die "$1 holds other files than the package"
    cmp "$sums" "$1/SHA256SUMS" || die "$1/SHA256SUMS is another"
    (cd "$1" && sha256sum --quiet --check SHA256SUMS) || die "$1 holds other bytes than the package"
}

# All keys and files of the prefix, but for what Windows keeps of its programs at any time. The server writes the hives as
# it ends; a key's line tells when it was changed.
take_snapshot() { # name
    local hive
    end_wine
    for hive in system user; do
        awk '/^\[/ { sub(/ [0-9]+$/, ""); ours = /^\[Software\\/ } ours && !/^#time=/' "$WINEPREFIX/$hive.reg" \
            >"$scratch/$1.$hive.text"
    done
    (cd "$drive" && find . \( -path ./try -o -path './users/*/Temp' -o -path './windows/wiretap*' \) -prune -o -print | LC_ALL=C sort) >"$scratch/$1.files.text"
}

compare_snapshots() { # before, after
    local kind
    for kind in system.text user.text files.text; do
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

# NSIS names the copy's folder.
has_no_uninstaller() {
    ! pgrep -f '\\~nsu[0-9A-F]*\.tmp' >/dev/null
}
