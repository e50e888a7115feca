# shellcheck shell=bash
# The virtual line of the current prefix, and the modems at it: `use_wine` comes first, its lock is held. Sets $line and
# $exchange to the processes.

line_limit=100 # tenths of a second for a program of the lab to be ready

# Starts a program of the lab and waits for the file that it writes when it is ready; its process is in $tool then:
# start_tool PROGRAM READY-FILE ARGUMENTS...
start_tool() {
    local program=$wine_build/native/tests/$1 ready=$2 log=$wine_line/${1##*/}.log waited
    [[ -x $program ]] || {
        echo "${1##*/} is not built: script/build native" >&2
        return 1
    }
    mkdir -p "$wine_line"
    rm -f "$ready"
    (
        # It must neither hold the prefix's lock nor keep a guard from hearing our end.
        for descriptor in ${wine_lock:-} ${guard:-}; do
            exec {descriptor}>&-
        done
        exec "$program" "${@:3}" --with-parent </dev/null >"$log" 2>&1
    ) &
    tool=$!
    for ((waited = 0; waited < line_limit; ++waited)); do
        [[ -s $ready ]] && return
        kill -0 "$tool" 2>/dev/null || break
        sleep 0.1
    done
    cat "$log" >&2
    echo "${1##*/} did not get ready" >&2
    return 1
}

# start_line CABLES: two ends for each at $wine_line, as the prefix's ports expect them.
start_line() {
    start_tool line/tarnline "$wine_line/control" --dir "$wine_line" --cables "$1" || return
    line=$tool
}

# Two cables with a modem at the far end of each, in place of the line: COM11 is the modem with the first number, COM12
# that with the second.
modem_numbers=(5551001 5551002)
start_modems() {
    local number numbers=()
    for number in "${modem_numbers[@]}"; do
        numbers+=(--number "$number")
    done
    wine_line+=/phone
    start_line "${#modem_numbers[@]}" || return
    start_tool modem/tarnmodem "$wine_line/modems" --line "$wine_line" "${numbers[@]}" || return
    exchange=$tool
}

end_line() {
    local process
    for process in ${exchange:-} ${line:-}; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
}

# Programs under Wine that open its ports have their modem signals by this.
wear_line() {
    # One library for each width: the loader puts the name of its folder in for $LIB.
    export LD_PRELOAD="$wine_build/native/tests/line/\$LIB/libtarnsignals.so"
    export TARN_LINE_STATE=$wine_line
    TARN_LINE_DIR=$(windows_path "$wine_line")
    export TARN_LINE_DIR
}
