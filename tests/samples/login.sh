# shellcheck shell=bash
# A computer behind a modem. Each case has fresh modems.

lay_case=lay_telephone

# Ready when its modem has been told to answer.
lay_telephone() {
    start_modems
    TARN_BUILD=$wine_build setsid "$wine_root/script/lib/farhost" "$wine_line/a1" "$inputs" guest tarn \
        </dev/null >"$folder/far.log" 2>&1 {wine_lock}>&- &
    peer=$!
    await "the far modem" 10 modem_answers
}

modem_answers() {
    local channel answer
    exec {channel}<>"/dev/tcp/127.0.0.1/$(<"$wine_line/modems")"
    echo "1 state" >&"$channel"
    IFS= read -r -t 5 answer <&"$channel" || answer=silence
    exec {channel}>&-
    [[ $answer == *s0=1* ]]
}

# log_in STATUS NUMBER PASSWORD WORDS...: one line for each
log_in() {
    start_sample COM11 "$2" guest "$3" "far\$ " hello
    expect_end host "$1" 60
    printf '%s\n' "${@:4}" | expect_words
}

run_case guest log_in 0 5551002 tarn "Logged in as guest." "hello" "hello: not found"
run_case wrong-password log_in 1 5551002 wrong "The answer is incorrect."
run_case busy log_in 1 5550100 tarn "The answer is BUSY."
