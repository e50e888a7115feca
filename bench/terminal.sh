#!/usr/bin/env bash
# The terminal beside other people's engines, and on the screen: bench/terminal.sh x86|x64, called by script/bench.
set -euo pipefail
arch=$1
source "$(dirname -- "${BASH_SOURCE[0]}")/lab.sh"

window_rounds=3
window_bytes=8000000
window_limit=120 # seconds for one run

engines=$TARN_BUILD/native/bench/native/terminal_bench
window=$TARN_BUILD/$arch/bench_terminal.exe

# engine_row STREAM LABEL PEER TIMES: each of our emulations against a peer
engine_row() {
    local emulation ours peer
    peer=$(value_of "$1_$3_MBps" "$figures")
    for emulation in vt100 ansi; do
        ours=$(value_of "$1_${emulation}_MBps" "$figures")
        row "$2, ${emulation^^} to $3, MB/s" "$ours" "$peer" "$(calculate %.2f "$ours / $peer")" ">= $4" \
            "$(holds "$ours >= $4 * $peer")"
    done
}

# depth_rows NAME LABEL: one figure of each depth
depth_rows() {
    local depth
    for depth in 0 1000 20000; do
        row "$2, $depth rows behind" "$(value_of "$1_$depth" "$figures")" "" "" "" -
    done
}

# What a line costs at the worst depth against the best.
depth_share() {
    calculate %.2f "$(best "$@") / $(least "$@")"
}

engine_rows() {
    local depth share costs=()
    [[ -x $engines ]] || fail "the native build is missing: script/build native"
    figures=$("$engines") || fail "the engines failed"
    engine_row plain "plain lines" libvterm 3
    engine_row plain "plain lines" libtsm 2
    engine_row mix "codes and text" libvterm 3
    engine_row mix "codes and text" libtsm 2
    depth_rows line_ns "line, ns"
    for depth in 0 1000 20000; do
        costs+=("$(value_of "line_ns_$depth" "$figures")")
    done
    share=$(depth_share "${costs[@]}")
    row "line, worst depth against best" "$share" "" "" "<= 1.3" "$(holds "$share > 0 && $share <= 1.3")"
    depth_rows feed_ns "bare line feed, ns"
    depth_rows worst_us "longest line, us"
}

run_window() {
    TARN_DISPLAY=1 TARN_ARCH=$arch timeout "$window_limit" "$lab_root/tests/run-under-wine" \
        "$window" "$1" "$window_bytes" | tr -d '\r' || fail "the window failed"
}

# window_rows STREAM LABEL LIMIT: the best of some runs, with what goes with it; no limit is none
window_rows() {
    local round text rate fastest=0 verdict=-
    for ((round = 0; round < window_rounds; ++round)); do
        text=$(run_window "$1")
        rate=$(value_of MBps "$text")
        [[ $(holds "$rate > $fastest") == ok ]] || continue
        fastest=$rate
        figures=$text
    done
    [[ -z $3 ]] || verdict=$(holds "$fastest >= $3")
    row "window, $2, MB/s" "$fastest" "" "" "${3:+>= $3}" "$verdict"
    row "  frames painted" "$(value_of frames "$figures")" "" "" "" -
    row "  share of painting" "$(value_of paint_share "$figures")" "" "" "" -
}

table_head "terminal, $arch: best of 5 rates, windows of $window_rounds" engine other
engine_rows
window_rows plain "plain lines" 2
window_rows mix "codes and text" ""
exit "$missed"
