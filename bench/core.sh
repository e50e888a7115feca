#!/usr/bin/env bash
# The comm object beside plain calls: bench/core.sh x86|x64, called by script/bench.
set -euo pipefail
arch=$1
source "$(dirname -- "${BASH_SOURCE[0]}")/lab.sh"

rounds=3      # runs of each side, by turns
bulk_rounds=5 # the same for the rates, of which the best counts
declare -A bulk_bytes=([1024]=4194304 [4096]=8388608)
echo_trips=2000
idle_seconds=5
unread_seconds=3
unread_bytes=64
growth_ports=(1 4 16)
growth_seconds=3
growth_trips=1000
objects=200

# run_out SIDE BLOCK: the rate that the far end saw
run_out() {
    local text seen bytes=${bulk_bytes[$2]}
    start_program "$1" out "$2" "$bytes"
    await_ready
    seen=$("$peer" sink "$(far_end 0)" "$bytes") || fail "output by $1: the far end failed"
    finish_program
    value_of MBps "$seen"
}

# run_in SIDE in|event BLOCK: the rate that the program saw
run_in() {
    local text source bytes=${bulk_bytes[$3]}
    start_program "$@" "$bytes"
    "$peer" source "$(far_end 0)" "$bytes" &
    source=$!
    finish_program
    wait "$source" || fail "input by $1: the far end failed"
    value_of MBps "$text"
}

run_event() { run_in "$1" event "$2"; }
run_wait() { run_in "$1" in "$2"; }

# bulk_row WHAT MODULE_RUN BARE_RUN BLOCK [free]: the best of each side counts; a free row has no limit
bulk_row() {
    local round module=() bare=()
    for ((round = 0; round < bulk_rounds; ++round)); do
        module+=("$("$2" module "$4")")
        bare+=("$("$3" bare "$4")")
    done
    local m b
    m=$(best "${module[@]}")
    b=$(best "${bare[@]}")
    local limit=">= 0.9" verdict
    verdict=$(holds "$m >= 0.9 * $b")
    [[ ${5:-} != free ]] || limit="" verdict=-
    row "$1, $4-byte blocks, MB/s" "$m" "$b" "$(calculate %.2f "$m / $b")" "$limit" "$verdict"
}

# Processor time of the program and of the server over so many seconds, in microseconds a second: spend SECONDS
spend() {
    local mine server_time
    mine=$(processor_time "$program")
    server_time=$(processor_time "$server")
    sleep "$1"
    mine=$(($(processor_time "$program") - mine))
    server_time=$(($(processor_time "$server") - server_time))
    echo "program $((mine / $1)) server $((server_time / $1)) both $(((mine + server_time) / $1))"
}

# hold SIDE PORTS SECONDS TRIPS: what it costs to hold ports open, then the echo on the first of them
hold() {
    local text
    start_program "$1" hold "$2"
    await_ready
    footprint
    (($3 == 0)) || spend "$3"
    (($4 == 0)) || "$peer" echo "$(far_end 0)" "$4" || fail "echo by $1, $2 ports: the far end failed"
    "$peer" quit "$(far_end 0)"
    finish_program
}

unread() {
    local text
    start_program "$1" unread "$unread_bytes"
    await_ready
    "$peer" send "$(far_end 0)" "$unread_bytes"
    sleep 0.3
    spend "$unread_seconds"
    "$peer" quit "$(far_end 0)"
    finish_program
}

# repeat RUN ARGUMENTS...: fills texts_module and texts_bare by turns
repeat() {
    local round
    texts_module=()
    texts_bare=()
    for ((round = 0; round < rounds; ++round)); do
        texts_module+=("$("$1" module "${@:2}")")
        texts_bare+=("$("$1" bare "${@:2}")")
    done
}

# The median or the least of a value over the texts: over median|least NAME TEXT...
over() {
    local pick=$1 name=$2 text values=()
    shift 2
    for text in "$@"; do
        values+=("$(value_of "$name" "$text")")
    done
    "$pick" "${values[@]}"
}

echo_row() {
    local name=$1 m b
    m=$(over median "$name" "${texts_module[@]}")
    b=$(over median "$name" "${texts_bare[@]}")
    row "$2" "$m" "$b" "$(calculate %+d "$m - $b")" "<= +1000" "$(holds "$m - $b <= 1000")"
}

echo_rows() {
    repeat hold 1 0 "$echo_trips"
    echo_row median_us "echo of one byte, median, us"
    echo_row p99_us "echo of one byte, 99 %, us"
}

idle_rows() {
    local m b
    repeat hold 1 "$idle_seconds" 0
    m=$(over least both "${texts_module[@]}")
    b=$(over least both "${texts_bare[@]}")
    row "idle port, processor us/s, with the server" "$m" "$b" "$(calculate %.2f "$m / $b")" "<= 1.1" \
        "$(holds "$m <= 1.1 * $b")"
    m=$(over least program "${texts_module[@]}")
    b=$(over least program "${texts_bare[@]}")
    row "  of it the program's own" "$m" "$b" "$(calculate %.2f "$m / $b")" "" -
}

unread_row() {
    local m b
    m=$(value_of both "$(unread module)")
    b=$(value_of both "$(unread bare)")
    row "$unread_bytes unread bytes, threshold 1, processor us/s" "$m" "$b" "$(calculate %.3f "$m / $b")" "" -
}

lookup_row() {
    local tool=$TARN_BUILD/native/tests/native/lookup_bench rate
    if [[ ! -x $tool ]]; then
        row "look-up, ten strings, MB/s" "not built" "" "" ">= 20" miss
        return
    fi
    rate=$(value_of lookup_engine_MBps "$("$tool")")
    row "look-up, ten strings, MB/s" "$rate" "" "" ">= 20" "$(holds "$rate >= 20")"
}

# What a side's program is with so many objects and no port open: with_objects SIDE COUNT
with_objects() {
    local text
    start_program "$1" objects "$2"
    await_ready
    footprint
    finish_program
}

bytes_each() {
    local none many
    none=$(value_of bytes "$(with_objects "$1" 1)")
    many=$(value_of bytes "$(with_objects "$1" $((objects + 1)))")
    echo $(((many - none) / objects))
}

object_row() {
    local m b
    m=$(bytes_each module)
    b=$(bytes_each bare) # a plain window
    row "object without a screen, bytes" "$m" "$b" "$(calculate %+d "$m - $b")" "< 200000" \
        "$(holds "$m > 0 && $m < 200000")"
}

# growth_line PORTS NAME LABEL DIVISOR: one figure of both sides
growth_line() {
    local m b
    m=$(value_of "$2" "${grown[module $1]}")
    b=$(value_of "$2" "${grown[bare $1]}")
    row "$1 open: $3" "$(calculate %.0f "$m / $4")" "$(calculate %.0f "$b / $4")" "" "" -
}

# A port of many may cost half as much again as the only one, or, where Wine's own threads make it dearer for everybody,
# half as much again as it grows for the bare program: straight_row NAME LABEL PER_PORT
straight_row() {
    local one most=${growth_ports[-1]} many share bare limit
    one=$(value_of "$1" "${grown[module 1]}")
    many=$(value_of "$1" "${grown[module $most]}")
    share=$(calculate %.2f "$many / ($3) / $one")
    bare=$(calculate %.2f "$(value_of "$1" "${grown[bare $most]}") / ($3) / $(value_of "$1" "${grown[bare 1]}")")
    limit=$(calculate %.2f "1.5 * ($bare > 1 ? $bare : 1)")
    row "$2, $most ports against 1" "$share" "$bare" "" "<= $limit" "$(holds "$share > 0 && $share <= $limit")"
}

# Takes from a footprint what the side's program is before it opens a port.
less_start() {
    awk -v start="${started[$1]}" 'BEGIN { split(start, s) }
        /^threads/ { print $1, $2 - s[2], $3, $4 - s[4]; next } { print }'
}

growth_rows() {
    local ports side most=${growth_ports[-1]}
    declare -A grown started
    for side in module bare; do
        started[$side]=$(with_objects "$side" 0)
    done
    for ports in "${growth_ports[@]}"; do
        for side in module bare; do
            grown["$side $ports"]=$(hold "$side" "$ports" "$growth_seconds" "$growth_trips" | less_start "$side")
        done
        growth_line "$ports" threads "threads more than before" 1
        growth_line "$ports" bytes "private memory more, kB" 1000
        growth_line "$ports" both "idle, processor us/s" 1
        growth_line "$ports" median_us "echo on the first, median us" 1
    done
    straight_row threads "threads a port" "$most"
    straight_row bytes "memory a port" "$most"
    straight_row both "processor time a port" "$most"
    straight_row median_us "echo round trip" 1
}

start_lab
table_head "core, $arch: best of $bulk_rounds rates, median or least of $rounds" module bare
bulk_row output run_out run_out 1024
# The writer hands the device 1024 bytes at a time whatever the host's blocks are: not the same block sizes.
bulk_row output run_out run_out 4096 free
bulk_row "input by WaitForInput" run_wait run_wait 1024
bulk_row "input by WaitForInput" run_wait run_wait 4096
bulk_row "input by Receive event" run_event run_wait 1024
bulk_row "input by Receive event" run_event run_wait 4096
echo_rows
idle_rows
unread_row
lookup_row
object_row
growth_rows
exit "$missed"
