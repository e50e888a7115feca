# shellcheck shell=bash
# The tests' own Wine: a prefix for each of x86, x64, phone, call, form, bench, package and screen under build/wine, with
# the serial ports that lead to the virtual line. Only programs in screen paint, on the display of display.sh. Sourced by
# scripts; the user's prefix is never touched.

wine_root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
wine_linger=60 # seconds that a wineserver waits for the next program

# Makes a prefix current: use_wine x86|x64|phone|call|form|bench|package|screen [build root]
use_wine() {
    wine_name=$1
    wine_build=${2:-$wine_root/build}
    wine_line=$wine_build/line/$wine_name # the ends of the cables are links in here
    export WINEPREFIX=$wine_build/wine/$wine_name
    export WINEARCH=win64
    export WINEDEBUG=${WINEDEBUG:--all}
    # No offer to download the first two; the third would write menus into the user's home. The libraries of
    # TARN_NATIVE are the program's own and not Wine's.
    export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=${TARN_NATIVE:+;$TARN_NATIVE=n}"
    unset DISPLAY WAYLAND_DISPLAY
}

# Paths as a program under Wine sees them.
windows_path() {
    local path=Z:$1
    printf '%s' "${path//\//\\}"
}

# What starts Wine's own programs in a width: `wine` takes the 32-bit one even where C:\windows\system32 is named.
# wine_loader x86|x64
wine_loader() {
    [[ $1 == x64 ]] && echo /usr/lib/wine/wine64 || echo wine
}

# Where Windows of 64 bits has its own programs of a width: system_folder x86|x64
system_folder() {
    [[ $1 == x64 ]] && echo 'C:\windows\system32' || echo 'C:\windows\syswow64'
}

# Rows of "COM number, path". COM1 to COM4 may be real ports of this machine and stay untouched.
list_ports() {
    local pair
    if [[ $wine_name == bench ]]; then
        for pair in {0..15}; do
            echo "$((20 + 2 * pair)) $wine_line/a$pair"
            echo "$((21 + 2 * pair)) $wine_line/b$pair"
        done
        return
    fi
    echo "5 $wine_line/a"
    echo "6 $wine_line/b"
    echo "7 $wine_line"         # a folder: access denied
    echo "8 $wine_line/nowhere/port" # opens, and the device refuses every call; COM9 is not there
    echo "11 $wine_line/phone/a0" # two modems, see start_modems
    echo "12 $wine_line/phone/a1"
}

print_registry() {
    local number path
    printf 'REGEDIT4\n'
    if [[ $wine_name == screen ]]; then
        # No window manager runs there: Wine is to give the focus and to place the windows by itself.
        printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n"Managed"="N"\n'
    else
        printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\Drivers]\n"Graphics"="null"\n'
    fi
    # A program that crashes ends with a backtrace, not in a dialog that nobody sees.
    printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\WineDbg]\n"ShowCrashDialog"=dword:00000000\n'
    printf '\n[HKEY_LOCAL_MACHINE\\Software\\Wine\\Ports]\n'
    while read -r number path; do
        printf '"COM%s"="%s"\n' "$number" "${path//\\/\\\\}"
    done < <(list_ports)
}

# Ends every program in the current prefix and its server, and waits until they are gone.
end_wine() {
    [[ -d $WINEPREFIX ]] || return 0
    wineserver --kill >/dev/null 2>&1 || true
    wineserver --wait >/dev/null 2>&1 || true
}

# The Ports key is read when the server starts, so the server that made the prefix has to end.
make_prefix() {
    end_wine
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    print_registry >"$WINEPREFIX/tests.reg"
    wine wineboot --init
    wine regedit /S "$(windows_path "$WINEPREFIX/tests.reg")"
    wineserver --kill || true
    wineserver --wait
    part_from_home
    list_prefix_recipe >"$WINEPREFIX/recipe"
}

# Documents, pictures and the like are links into the user's home until they are folders of the prefix.
part_from_home() {
    local link
    while IFS= read -r -d '' link; do
        rm "$link"
        mkdir "$link"
    done < <(find "$WINEPREFIX/drive_c/users" -type l -print0)
}

list_prefix_recipe() {
    wine --version
    declare -f use_wine make_prefix part_from_home
    print_registry
}

# Makes the current prefix unless it is there and made the same way. Its callers hold its lock.
need_prefix() {
    local log=$wine_build/wine/$wine_name.log
    mkdir -p "$wine_build/wine" "$wine_line"
    [[ -f $WINEPREFIX/recipe && $(<"$WINEPREFIX/recipe") == "$(list_prefix_recipe)" ]] && return
    # In a shell of its own, so that a failure inside stops it there.
    bash -c 'set -e; source "$1"; use_wine "$2" "$3"; make_prefix' make_prefix \
        "${BASH_SOURCE[0]}" "$wine_name" "$wine_build" </dev/null >"$log" 2>&1 && return
    echo "the Wine prefix $WINEPREFIX could not be made:" >&2
    cat "$log" >&2
    return 1
}

# Starts the server and its services ahead of the program, so that neither holds that program's output open.
start_wine() {
    wineserver --persistent="$wine_linger" || true # one that runs already is as good
    wine cmd /c exit 0
}

# Takes the lock of the current prefix and its cable for as long as descriptor $wine_lock is open. Arguments are
# those of flock.
lock_wine() {
    mkdir -p "$wine_build/wine"
    exec {wine_lock}>"$wine_build/wine/$wine_name.lock"
    flock "$@" "$wine_lock"
}

# The guard outlives the script, however it ends: unless it hears that all is well, it carries out a command and ends
# whatever still runs in the current prefix. It keeps the lock for that time, and listens for as long as anybody has
# descriptor $guard. start_guard [COMMAND...]
start_guard() {
    exec {guard}> >(setsid --fork bash -c '
        source "$1"; use_wine "$2" "$3"
        read -r word && [[ $word == ended ]] && exit
        "${@:4}"
        end_wine
        ' guard "$wine_root/script/lib/wine.sh" "$wine_name" "$wine_build" "$@" >/dev/null 2>&1)
}

dismiss_guard() {
    echo ended >&"$guard"
}
