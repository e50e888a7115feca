# shellcheck shell=bash
# What the tables share: the line and Wine, runs of the two programs, processor time, medians, rows.
# Sourced by the tables, with $arch set and TARN_BUILD the build root.

lab_root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)
source "$lab_root/script/lib/wine.sh"

signals=$TARN_BUILD/native/tests/line/\$LIB/libtarnsignals.so # the loader puts in the folder of each width
peer=$TARN_BUILD/native/bench/native/linepeer
first_port=20    # the prefix's ports are pairs from here on, this end and the far end
line_limit=100   # tenths of a second for the line to be ready
program_limit=30 # seconds for one run
missed=0

fail() {
    echo "bench: $*" >&2
    exit 1
}

start_lab() {
    use_wine bench "$TARN_BUILD"
    lock_wine
    trap end_lab EXIT
    need_prefix
    end_wine # figures are those of a fresh server
    start_line
    export TARN_LINE_STATE=$wine_line
    (
        export LD_PRELOAD=$signals
        start_wine
    ) </dev/null >/dev/null 2>&1 {wine_lock}>&-
    server=$(find_server)
    : >"$wine_line/errors"
}

start_line() {
    local waited
    rm -f "$wine_line/control"
    "$TARN_BUILD/native/tests/line/tarnline" --dir "$wine_line" --cables 16 --with-parent \
        </dev/null >"$wine_line/log" 2>&1 {wine_lock}>&- &
    line=$!
    for ((waited = 0; waited < line_limit; ++waited)); do
        [[ -s $wine_line/control ]] && return
        sleep 0.1
    done
    fail "the virtual line did not get ready"
}

end_lab() {
    [[ -z ${program:-} ]] || kill "$program" 2>/dev/null || true
    end_wine
    [[ -z ${line:-} ]] || kill "$line" 2>/dev/null || true
    wait
}

# The server of this prefix: others may run on the machine.
find_server() {
    local process
    for process in $(pidof wineserver wineserver64 wineserver32); do
        if tr '\0' '\n' <"/proc/$process/environ" | grep -qx "WINEPREFIX=$WINEPREFIX"; then
            echo "$process"
            return
        fi
    done
    fail "no Wine server"
}

far_end() {
    echo "$wine_line/b$1"
}

# Starts bench_module or bench_bare: start_program module|bare COMMAND ARGUMENTS...
# What was started is $started_program, the process that runs the program is $program after await_ready. What it prints
# comes from descriptor $printed; its input ends when $typed is closed.
start_program() {
    local side=$1 command=$2
    shift 2
    rm -f "$wine_line/printed" "$wine_line/typed"
    mkfifo "$wine_line/printed" "$wine_line/typed"
    exec {typed}<>"$wine_line/typed"
    (
        export LD_PRELOAD=$signals
        exec wine "$TARN_BUILD/$arch/bench_$side.exe" "$command" "$first_port" "$@"
    ) <"$wine_line/typed" >"$wine_line/printed" 2>>"$wine_line/errors" {wine_lock}>&- {typed}>&- &
    started_program=$!
    program=$started_program
    exec {printed}<"$wine_line/printed"
}

# Lets the program end; what else it printed is in $text then. Not for subshells: only its parent can wait for it.
finish_program() {
    local status=0
    exec {typed}>&-
    text=$(timeout "$program_limit" cat <&"$printed") || status=$?
    exec {printed}<&-
    text=${text//$'\r'/}
    ((status == 0)) || kill "$program" "$started_program" 2>/dev/null || true
    wait "$started_program" || status=$?
    program=
    if ((status)); then
        tail -n 5 "$wine_line/errors" >&2
        fail "a program failed ($status)"
    fi
}

# Wine's starter becomes a program of its own width and starts one of the other in a process of its own.
find_program() {
    local name file process
    read -r name <"/proc/$program/comm"
    [[ $name == bench_* ]] && return
    for file in /proc/[0-9]*/comm; do
        process=${file%/comm}
        { read -r name <"$file"; } 2>/dev/null && [[ $name == bench_* ]] || continue
        if { tr '\0' '\n' <"$process/environ"; } 2>/dev/null | grep -qx "WINEPREFIX=$WINEPREFIX"; then
            program=${process#/proc/}
            return
        fi
    done
    fail "the program's process is not to be found"
}

# The program has told that it is set up.
await_ready() {
    local line
    read -r -t "$program_limit" line <&"$printed" && [[ $line == ready* ]] || fail "the program did not get ready"
    find_program
    sleep 0.3 # what its start still costs is not to be counted
}

# A number from lines of "name value name value": value_of NAME TEXT
value_of() {
    awk -v name="$1" '{ for (i = 1; i < NF; ++i) if ($i == name) { print $(i + 1); exit } }' <<<"$2"
}

# Processor time of processes with all their threads, in microseconds.
processor_time() {
    local process sum=0 time rest file
    for process in "$@"; do
        for file in /proc/"$process"/task/*/schedstat; do
            { read -r time rest <"$file"; } 2>/dev/null || continue
            ((sum += time / 1000))
        done
    done
    echo "$sum"
}

# Threads and private memory of the program, in bytes.
footprint() {
    local tasks=(/proc/"$program"/task/*)
    awk -v threads="${#tasks[@]}" '/^Private_/ { sum += $2 }
        END { print "threads", threads, "bytes", sum * 1024 }' "/proc/$program/smaps_rollup"
}

median() {
    printf '%s\n' "$@" | sort -g | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }'
}

least() {
    printf '%s\n' "$@" | sort -g | head -n 1
}

best() {
    printf '%s\n' "$@" | sort -g | tail -n 1
}

# table_head TITLE OURS OTHERS
table_head() {
    printf '%-44s %12s %12s %10s %10s  %s\n' "$@" "against" limit ""
}

# row WHAT OURS OTHERS COMPARISON LIMIT ok|miss|-
row() {
    printf '%-44s %12s %12s %10s %10s  %s\n' "$@"
    [[ $6 != miss ]] || missed=1
}

# holds EXPRESSION: "ok" or "miss"; what could not be calculated is a miss
holds() {
    awk "BEGIN { print ($1) ? \"ok\" : \"miss\" }"
}

calculate() {
    awk "BEGIN { printf \"$1\", $2 }"
}
