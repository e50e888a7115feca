# shellcheck shell=bash
# What the tables have in common: a cable, samples/flat/transfer at its end a, a peer program at its end b, the
# files of both, waits with limits. A case that fails says in which step; the next one begins anew.

host_limit=40 # seconds for the sample to end, where a case doesn't say more
peer_limit=15 # seconds for the peer to end once the sample has
poll=0.05     # seconds

far_tty=$wine_root # set by lay_lab
inputs=            # files that are sent; made once
cases=0
failures=0
failed_names=()

# ---- The laboratory ----

lay_lab() {
    far_tty=$wine_line/b
    inputs=$work/inputs
    rm -rf "$work"
    mkdir -p "$work"
    make_inputs
    lock_wine
    trap leave_lab EXIT
    trap 'exit 143' TERM HUP INT
    need_prefix
    (
        exec {wine_lock}>&-
        start_wine </dev/null >/dev/null 2>&1
    )
}

leave_lab() {
    end_peer
    [[ -z ${host:-} ]] || kill -KILL "$host" 2>/dev/null || true
    end_line
}

# Names say what is in the files. The large ones begin with all byte values and with what protocols stumble over.
make_inputs() {
    mkdir -p "$inputs"
    perl -e '
        sub file { open my $f, ">:raw", "$ARGV[0]/$_[0]" or die $!; print $f $_[1]; close $f or die $!; }
        srand 20; # the same bytes in each run
        sub bytes { join "", map { chr int rand 256 } 1 .. $_[0] }
        my $all = join "", map { chr } 0 .. 255;
        my $awkward = "@\r@\n\r@\x8d**\x18B00" . "\x18" x 12 . "\x11\x13" x 40 . "\0" x 300 . "\xff" x 300 . "\x1a" x 20
                    . "#" x 100 . "&" x 100 . "+++ATH\r" . "\x01\x01\x04\x15" x 20;
        file("empty.bin", ""); file("one.bin", "\x1b");
        file("n$_.bin", bytes($_)) for 127, 128, 129, 1023, 1024, 1025;
        file("k3.bin", substr($all . $awkward . bytes(3000), 0, 3000));
        file("k20.bin", substr($all . $awkward . bytes(20000), 0, 20000));
        file("k100.bin", substr($all . $awkward . $all . bytes(100000), 0, 100000));
        file("k400.bin", $all . $awkward . bytes(400000));
    ' "$inputs"
}

# One command to a tool of the line, its answer in $answer: ask_tool control|modems COMMAND...
ask_tool() {
    local channel
    exec {channel}<>"/dev/tcp/127.0.0.1/$(<"$wine_line/$1")"
    echo "${*:2}" >&"$channel"
    IFS= read -r -t 5 answer <&"$channel" || answer=silence
    exec {channel}>&-
}

line_says() {
    ask_tool control "$@"
    [[ $answer == ok* ]] || fail_case "the cable answers \"$answer\" to \"$*\""
}

# Whether the answer of a modem holds this: modem_says INDEX COMMAND ANSWER
modem_says() {
    local answer
    ask_tool modems "$1" "$2"
    [[ $answer == *"$3"* ]]
}

# ---- A case ----

lay_cable() {
    start_line 1
    line_says "transcript $folder/transcript"
    stty -F "$far_tty" raw -echo
}

# Fresh modems, and behind one of them a computer where guest logs in with the password. Ready when it answers calls.
lay_telephone() {
    start_modems
    TARN_BUILD=$wine_build setsid "$wine_root/script/lib/farhost" "$wine_line/a1" "$inputs" guest "$far_password" \
        </dev/null >"$folder/peer.log" 2>&1 {wine_lock}>&- &
    peer=$!
    await "the far modem" 10 modem_says 1 state s0=1
}

far_password=guest
lay_case=lay_cable # what each case begins with

# Runs a case by itself, so that what fails in it ends it and no more: run_case NAME COMMAND...
run_case() {
    local name=$1 start=$EPOCHREALTIME
    shift
    # shellcheck disable=SC2053 # the right is a pattern
    [[ -z $pattern || $name == $pattern ]] || return 0
    cases=$((cases + 1))
    folder=$work/$name
    mkdir -p "$folder/here" "$folder/there"
    local result=0
    # In the background: a list that is asked for its result would not stop at a failure.
    (
        set -E
        trap 'echo "        \"$BASH_COMMAND\" failed" >&2' ERR
        trap leave_lab EXIT
        step=$folder/step
        set_step "laying the line"
        "$lay_case"
        "$@"
    ) &
    wait $! || result=$?
    if ((result == 0)); then
        [[ ${KEEP:-} ]] || rm -rf "$folder"
        printf 'ok      %-46s %5.1f s\n' "$name" "$(since "$start")"
    else
        failures=$((failures + 1))
        failed_names+=("$name")
        printf 'FAILED  %-46s %5.1f s, while %s\n' "$name" "$(since "$start")" "$(<"$folder/step")"
        show_logs
    fi
}

since() {
    echo "$EPOCHREALTIME $1" | awk '{ print $1 - $2 }'
}

set_step() {
    echo "$*" >"$step"
}

fail_case() {
    echo "        $*" >&2
    exit 1
}

show_logs() {
    local log
    for log in "$folder/host.log" "$folder/peer.log"; do
        [[ ! -s $log ]] || tail -c 600 "$log" | tr -d '\r\0\033\b' | tail -n 6 | sed "s/^/        ${log##*/}: /"
    done
    echo "        see $folder"
}

end_cases() {
    ((cases)) || refuse "no case is named so"
    if ((failures)); then
        echo "$failures of $cases cases failed: ${failed_names[*]}"
        exit 1
    fi
    echo "$cases cases are good"
}

# ---- The two sides ----

# The sample at its end of the cable, in the background: start_host ARGUMENT...
start_host() {
    (
        exec {wine_lock}>&-
        wear_line
        exec wine "$program" --port COM5 --quiet --folder "$(windows_path "$folder/here")" "$@" \
            </dev/null >"$folder/host.log" 2>&1
    ) &
    host=$!
}

# A peer in the folder "there", in the background: start_peer COMMAND...
start_peer() {
    need_program "$1"
    (
        exec {wine_lock}>&-
        cd "$folder/there"
        export LD_PRELOAD="$wine_build/native/tests/line/\$LIB/libkeepbytes.so"
        if [[ $1 == kermit ]]; then
            exec "$@" <>"$far_tty" >"$folder/peer.log" 2>&1 # its line is descriptor 0, so that it leaves no lock
        fi
        exec "$@" <"$far_tty" >"$far_tty" 2>"$folder/peer.log"
    ) &
    peer=$!
}

need_program() {
    command -v "$1" >/dev/null || fail_case "the program $1 is missing: script/bootstrap installs it"
}

kill_peer() {
    kill -KILL "$peer"
    wait "$peer" 2>/dev/null || true
}

end_peer() {
    [[ -z ${peer:-} ]] || kill -KILL "$peer" 2>/dev/null || true
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

host_says() {
    grep -qsa -- "$1" "$folder/host.log"
}

# Of the file under way, as the sample was last told.
host_has_bytes() {
    local shown
    shown=$(awk '/^TransferBlock/ { shown = $2 } END { print shown + 0 }' "$folder/host.log" 2>/dev/null) || shown=0
    ((shown >= $1))
}

# await WHAT SECONDS COMMAND...: that it becomes true
await() {
    local what=$1 end=$((SECONDS + $2))
    shift 2
    set_step "waiting for $what"
    until "$@"; do
        ((SECONDS < end)) || fail_case "$what did not come"
        [[ -z ${host:-} ]] || ! has_ended "$host" || "$@" || fail_case "the sample ended without $what"
        sleep "$poll"
    done
}

# The exit status of a side that has a limit to end in: end_of host|peer SECONDS, in $status
end_of() {
    local id=${!1} end=$((SECONDS + $2))
    set_step "waiting for the end of the $1"
    until has_ended "$id"; do
        ((SECONDS < end)) || fail_case "the $1 did not end in $2 seconds"
        sleep "$poll"
    done
    status=0
    wait "$id" || status=$?
    eval "$1="
}

# expect_end host|peer STATUS [SECONDS]
expect_end() {
    end_of "$1" "${3:-$([[ $1 == host ]] && echo $host_limit || echo $peer_limit)}"
    [[ $status == "$2" ]] || fail_case "the $1 ended with $status, not with $2"
}

# That it ended, and not well.
expect_failure() {
    end_of "$1" "$2"
    ((status)) || fail_case "the $1 ended as if all were well"
}

# ---- Files ----

# Its name as a program may have changed its case: find_file FOLDER NAME
find_file() {
    find "$1" -maxdepth 1 -type f -iname "$2" -print -quit
}

# The same, bit by bit: same_file SENT FOLDER NAME
same_file() {
    local got
    got=$(find_file "$2" "$3")
    [[ $got ]] && cmp --silent "$1" "$got"
}

# The same, filled up to a whole block: XModem tells no length.
same_padded_file() {
    local got sent_size got_size
    got=$(find_file "$2" "$3")
    [[ $got ]] || return 1
    sent_size=$(stat -c %s "$1")
    got_size=$(stat -c %s "$got")
    ((got_size % 128 == 0 && got_size >= sent_size && got_size - sent_size < 1024)) || return 1
    cmp --silent --bytes="$sent_size" "$1" "$got" &&
        [[ $(tail -c +$((sent_size + 1)) "$got" | tr -d '\032' | wc -c) == 0 ]]
}

same=same_file # what compares

compare() { # FOLDER NAME...
    local into=$1 name
    shift
    set_step "comparing the files"
    for name; do
        "$same" "$inputs/$name" "$into" "${as_name:-$name}" || fail_case "$name did not arrive as it was sent"
    done
    [[ $(find "$into" -type f | wc -l) == $# ]] || fail_case "other files came: $(ls "$into")"
}

# Bytes that crossed from the peer's end or the sample's: crossed ba|ab, in $count
crossed() {
    line_says stats
    # shellcheck disable=SC2001
    count=$(sed "s/.*$1\.out=\([0-9]*\).*/\1/" <<<"$answer")
}

# ---- The plain ways across ----

host_options=() # beside the protocol
first=sender    # who begins: the other one would lose the first bytes, or repeat them late

host_sends() { # PROTOCOL FILE...
    local files=() name
    for name in "${@:2}"; do
        cp "$inputs/$name" "$folder/here"
        files+=("$name")
    done
    start_host "${host_options[@]}" --protocol "$1" send "${files[@]}"
}

# The sample sends, the peer receives: upload PROTOCOL "PEER COMMAND" FILE...
upload() {
    begin_upload "$@"
    expect_end host 0
    expect_end peer 0
    compare "$folder/there" "${@:3}"
}

begin_upload() {
    local command
    read -ra command <<<"$2"
    if [[ $first == sender ]]; then
        host_sends "$1" "${@:3}"
        await "the first file" 20 host_says '^StartFile'
        start_peer "${command[@]}"
    else
        start_peer "${command[@]}"
        host_sends "$1" "${@:3}"
    fi
}

# The peer sends, the sample receives: download PROTOCOL "PEER COMMAND" FILE...
download() {
    begin_download "$@"
    expect_end host 0
    expect_end peer 0
    compare "$folder/here" "${@:3}"
}

begin_download() {
    local command name names=()
    read -ra command <<<"$2"
    for name in "${@:3}"; do
        cp "$inputs/$name" "$folder/there"
    done
    [[ $same == same_file ]] || names=("$3") # XModem tells no name either
    if [[ $first == sender ]]; then
        start_peer "${command[@]}" "${@:3}"
        start_host "${host_options[@]}" --protocol "$1" receive "${names[@]}"
    else
        start_host "${host_options[@]}" --protocol "$1" receive "${names[@]}"
        await "the open port" 20 host_says 'is open'
        start_peer "${command[@]}" "${@:3}"
    fi
}
