# shellcheck shell=bash
# Packets whole, broken, in pieces and one upon the other, and the answers to them.

longest=$(printf 'x%.0s' {1..99})
sums_to_zero=UUV # the low byte: digits that are none may not pass for it

# packet BODY [SUM]: its bytes
packet() {
    local sum=0 i
    for ((i = 0; i < ${#1}; ++i)); do
        sum=$((sum + $(printf '%d' "'${1:i:1}")))
    done
    printf ':%02d%s' "${#1}" "$1"
    [[ -z $1 ]] || printf '%s' "${2:-$(printf '%02X' $((sum & 255)))}"
}

# One after the other: bytes that are sent, and the answers that must have come before the next. Where none is due, a
# pause keeps the pieces apart; were it too short, they would come as one and be as right.
converse() {
    local answer all=
    while (($#)); do
        printf '%s' "$1"
        [[ $2 ]] || sleep 0.3
        IFS= read -r -t 10 -N "${#2}" answer || true
        all+=$answer
        [[ $answer == "$2" ]] || break
        shift 2
    done
    echo "$all" >"$folder/answers"
    packet ""
}

speak_packets() {
    start_sample COM5
    await "the open port" 20 host_says 'is open'
    local hello
    hello=$(packet hello)
    (
        exec {wine_lock}>&- <"$far_tty" >"$far_tty"
        converse "$hello" + "$(packet hello 00)" - "$(packet "$sums_to_zero" zz)" - "${hello:0:2}" "" "${hello:2:4}" "" "${hello:6}" + \
            "$hello$(packet "$longest")$(packet again)" +++
    ) &
    peer=$!
    expect_end host 0
    expect_end peer 0
    [[ $(<"$folder/answers") == "+--++++" ]] || fail_case "the answers are $(<"$folder/answers")"
    expect_words <<WORDS
COM5 is open.
good hello
bad  hello
bad  $sums_to_zero
good hello
good hello
good $longest
good again
WORDS
}

# Neither ends well nor hangs.
hears_stranger() { # HEADER
    start_sample COM5
    await "the open port" 20 host_says 'is open'
    printf '%s' "$1" >"$far_tty"
    expect_end host 1
}

no_port() {
    start_sample COM9
    expect_end host 1
    host_says "COM9 does not open: ..*" || fail_case "the sample doesn't say why"
}

run_case packets speak_packets
run_case no-colon hears_stranger ATZ
run_case no-digits hears_stranger :no
run_case no-port no_port
