#!/usr/bin/env bash
# File transfers beside other people's programs: bench/transfer.sh x86|x64 [--quick], called by script/bench.
set -euo pipefail
arch=$1
source "$(dirname -- "${BASH_SOURCE[0]}")/lab.sh"

file=data.txt # as bench_transfer knows it
data_head="the first byte of all"
data_tail=0123456789 # nothing else in the file has digits

slow=115200 # bits a second, 10 bits a byte
fast=921600
receiver_holds=4096 # bytes: what the driver at the fast line's end keeps for a program that is late
start_limit=40      # seconds beside what the bytes take
lead=0.3            # seconds that one side has before the other begins
free_rounds=3       # of the unpaced line, of which the best counts
clock_pause=0.003   # seconds between looks at the unpaced line
clock=              # the process that looks

long_bytes=1048576
short_bytes=262144 # of the protocols that wait for each block, whose rate doesn't change with the length
free_bytes=4194304
if [[ ${2:-} == --quick ]]; then
    long_bytes=65536
    short_bytes=16384
    free_bytes=1048576
fi

declare -A numbers=([xmodem]=2 [ymodem]=3 [zmodem]=5 [kermit]=6) # as SetProtocol takes them; XModem is 1K
declare -A peer_sends=(
    [xmodem]="sx -q -k $file"
    [ymodem]="sb -q -k $file"
    [zmodem]="sz -q $file"
    [kermit]="gkermit -q -i -P -S -e 94 -s $file"
)
declare -A peer_receives=(
    [xmodem]="rx -q -c $file"
    [ymodem]="rb -q"
    [zmodem]="rz -q"
    [kermit]="gkermit -q -i -P -w -S -e 94 -r"
)

# ---- The line ----

# One command to the first cable, its answer in $answer.
line_says() {
    local channel
    exec {channel}<>"/dev/tcp/127.0.0.1/$(<"$wine_line/control")"
    echo "0 $*" >&"$channel"
    IFS= read -r -t 10 answer <&"$channel" || answer=silence
    exec {channel}>&-
    [[ $answer == ok* ]] || fail "the line answers \"$answer\" to \"$*\""
}

# One of the line's counts, as it told them last: count_of ab|ba NAME
count_of() {
    local rest=${answer##*"$1.$2="}
    echo "${rest%% *}"
}

# lay_line BAUD DIRECTION BYTES: paced, or unpaced with 0
lay_line() {
    local receiving_end=${2:1}
    line_says reset
    line_says baud "$1"
    [[ $1 != "$fast" ]] || line_says fifo "$receiving_end" "$receiver_holds"
    if (($1)); then
        line_says transcript "$work/transcript"
    else
        start_clock "$2" "$3"
    fi
    stty -F "$near_end" raw -echo
    stty -F "$(far_end 0)" raw -echo
}

# ---- The file ----

# Lines of words, without runs and 8-bit characters, which Kermit's two sides would tell in different ways.
make_file() {
    awk -v size="$1" -v head="$data_head" -v tail="$data_tail" 'BEGIN {
        srand(7)
        line = head
        while (written + length(line) + 1 <= size - 128) {
            printf "%s\n", line
            written += length(line) + 1
            line = ""
            while (length(line) < 60)
                line = line substr("carrier parity buffer handle signal window packet", 1 + int(rand() * 30), 8) " "
            sub(/ +$/, "", line)
        }
        while (written + length(tail) < size) {
            printf "%s", written % 9 ? substr("abcdefgh", 1 + written % 8, 1) : "\n"
            ++written
        }
        printf "%s", tail
    }' >"$2"
}

lay_files() { # SENDER'S FOLDER, BYTES
    rm -rf "$work/here" "$work/there"
    mkdir -p "$work/here" "$work/there"
    make_file "$2" "$work/$1/$file"
    [[ $(stat -c %s "$work/$1/$file") == "$2" ]] || fail "the file has not the length it should have"
}

# The same in both folders. XModem fills the last block up, and every length here is one of whole blocks.
check_files() {
    cmp --silent "$work/here/$file" "$work/there/$file" || fail "the file did not arrive as it was sent"
}

# ---- A transfer ----

# A program at an end, in the background; its process is $started: start_peer END FOLDER COMMAND...
start_peer() {
    local end=$1 folder=$2
    shift 2
    command -v "$1" >/dev/null || fail "the program $1 is missing: script/bootstrap installs it"
    (
        cd "$work/$folder"
        export LD_PRELOAD="$TARN_BUILD/native/tests/line/\$LIB/libkeepbytes.so"
        exec "$@" <"$end" >"$end" 2>"$work/peer_$folder.log"
    ) {wine_lock}>&- &
    started=$!
}

end_peer() {
    local process=$1 end=$((SECONDS + program_limit))
    while kill -0 "$process" 2>/dev/null; do
        if ((SECONDS >= end)); then
            kill "$process"
            fail "a peer program did not end"
        fi
        sleep 0.05
    done
    wait "$process" || fail "a peer program failed ($?)"
}

allow_time() { # BYTES, BAUD
    program_limit=$((start_limit + ($2 ? 15 * $1 / $2 : 0)))
}

# transfer_module PROTOCOL send|receive BAUD BYTES: one file between the module and the peer
transfer_module() {
    local protocol=$1 direction=$2 peer_process
    local command sender=here towards=ab
    command=${peer_receives[$protocol]}
    if [[ $direction == receive ]]; then
        command=${peer_sends[$protocol]}
        sender=there towards=ba
    fi
    lay_files "$sender" "$4"
    lay_line "$3" "$towards" "$4"
    allow_time "$4" "$3"
    pushd "$work/here" >/dev/null
    start_program transfer "$direction" "${numbers[$protocol]}" "$(($3 ? $3 : fast))"
    popd >/dev/null
    await_ready
    # shellcheck disable=SC2086 # words
    start_peer "$(far_end 0)" there $command
    peer_process=$started
    sleep "$lead"
    echo >&"$typed"
    finish_program
    end_peer "$peer_process"
    told=$text
    look_at "$towards" "$4"
}

# The same between two peers.
transfer_peers() { # PROTOCOL BAUD BYTES
    local sender receiver
    lay_files there "$3"
    lay_line "$2" ba "$3"
    allow_time "$3" "$2"
    # shellcheck disable=SC2086 # words
    start_peer "$near_end" here ${peer_receives[$1]}
    receiver=$started
    sleep "$lead"
    # shellcheck disable=SC2086 # words
    start_peer "$(far_end 0)" there ${peer_sends[$1]}
    sender=$started
    end_peer "$sender"
    end_peer "$receiver"
    told=
    look_at ba "$3"
}

# The clock of an unpaced line, on which a transcript would be the brake: the line's bytes a second, from one sixteenth
# of the file's length to fifteen.
start_clock() { # DIRECTION BYTES
    (
        exec {channel}<>"/dev/tcp/127.0.0.1/$(<"$wine_line/control")"
        exec {nothing}<>"$work/nothing"
        begin=
        while :; do
            echo "0 stats" >&"$channel"
            IFS= read -r -t 10 answer <&"$channel"
            now=${EPOCHREALTIME/[.,]/}
            seen=${answer##*"$1.out="} # as count_of, without a process for each look
            seen=${seen%% *}
            if [[ -z $begin ]] && ((16 * seen >= $2)); then
                begin=$now from=$seen
            elif ((16 * seen >= 15 * $2)); then
                echo "$(((seen - from) * 1000000 / (now - begin)))" >"$work/clock"
                exit
            fi
            read -r -t "$clock_pause" -u "$nothing" || true
        done
    ) {wine_lock}>&- &
    clock=$!
}

# What crossed: $rate in bytes of the file a second, from its first byte's arrival to its last one's; $asked, how often
# ZModem's receiver told a position; $overrun, bytes that the receiver's driver had no room for.
look_at() { # DIRECTION BYTES
    local seen
    check_files
    line_says stats
    overrun=$(count_of "$1" overrun)
    if [[ -n $clock ]]; then
        wait "$clock"
        clock=
        rate=$(calculate %.1f "$(<"$work/clock") * $2 / $(count_of "$1" out)")
        return
    fi
    line_says transcript off
    seen=$(perl "$lab_root/bench/crossing.pl" "$work/transcript" "$1" "$data_head" "$data_tail")
    asked=$(value_of positions "$seen")
    rate=$(calculate %.1f "$2 / ($(value_of seconds "$seen"))")
    rm -f "$work/transcript"
}

# ---- Rows ----

share() {
    calculate %.3f "$1 / $2"
}

# peer_row LABEL PEER_RATE TIMES: the rate of the module beside the peer's
peer_row() {
    local limit=${3:+>= $3} verdict=-
    [[ -z $3 ]] || verdict=$(holds "$rate >= $3 * $2")
    row "$1, bytes/s" "$rate" "$2" "$(share "$rate" "$2")" "$limit" "$verdict"
}

# line_row BAUD TIMES: the same rate beside the line's
line_row() {
    row "  beside the line's" "$rate" "$(($1 / 10))" "$(share "$rate" "$(($1 / 10))")" ">= $2" \
        "$(holds "$rate >= $2 * $1 / 10")"
}

zmodem_rows() {
    local peers
    transfer_peers zmodem "$slow" "$long_bytes"
    peers=$rate
    transfer_module zmodem receive "$slow" "$long_bytes"
    peer_row "ZModem receive, $slow" "$peers" 0.98
    line_row "$slow" 0.95
    transfer_module zmodem send "$slow" "$long_bytes"
    peer_row "ZModem send, $slow" "$peers" ""
    line_row "$slow" 0.93
}

# The protocols that wait for each block: waiting_rows PROTOCOL LABEL
waiting_rows() {
    local peers
    transfer_peers "$1" "$slow" "$short_bytes"
    peers=$rate
    transfer_module "$1" receive "$slow" "$short_bytes"
    peer_row "$2 receive, $slow" "$peers" 0.95
    transfer_module "$1" send "$slow" "$short_bytes"
    peer_row "$2 send, $slow" "$peers" 0.95
}

fast_rows() {
    local peers lost
    transfer_peers zmodem "$fast" "$long_bytes"
    peers=$rate lost=$overrun
    transfer_module zmodem receive "$fast" "$long_bytes"
    peer_row "ZModem receive, $fast" "$peers" ""
    line_row "$fast" 0.9
    row "  bytes lost" "$overrun" "$lost" "" "0" "$(holds "$overrun == 0")"
    row "  repeats asked for" "$((asked - 1))" "" "" "0" "$(holds "$asked == 1")"
}

# Unpaced, the best of some rounds: what fills the line is up to the two programs.
free_rows() {
    local direction round peers=() rates spent
    for ((round = 0; round < free_rounds; ++round)); do
        transfer_peers zmodem 0 "$free_bytes"
        peers+=("$rate")
    done
    for direction in receive send; do
        rates=()
        spent=()
        for ((round = 0; round < free_rounds; ++round)); do
            transfer_module zmodem "$direction" 0 "$free_bytes"
            rates+=("$rate")
            spent+=("$(value_of processor_ms "$told")")
        done
        free_row "$direction" "$(best "${rates[@]}")" "$(best "${peers[@]}")"
        row "  the process, ms/MB" "$(calculate %.1f "$(least "${spent[@]}") * 1e6 / $free_bytes")" "" "" "" -
    done
}

free_row() {
    row "ZModem $1, unpaced, MB/s" "$(calculate %.3f "$2 / 1e6")" "$(calculate %.3f "$3 / 1e6")" "$(share "$2" "$3")" \
        "" -
}

start_lab
near_end=$wine_line/a0
work=$wine_line/transfer # the file lies in "here" at end a, in "there" at end b
mkdir -p "$work"
rm -f "$work/nothing"
mkfifo "$work/nothing"
table_head "transfer, $arch" module peer
zmodem_rows
waiting_rows ymodem YModem
waiting_rows xmodem XModem-1K
waiting_rows kermit Kermit
fast_rows
free_rows
rm -rf "$work"
exit "$missed"
