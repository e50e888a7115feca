# shellcheck shell=bash
# A computer behind a modem. Each case has fresh modems.

lay_case=lay_telephone
far_password=tarn

# log_in STATUS NUMBER PASSWORD WORDS...: one line for each
log_in() {
    start_sample COM11 "$2" guest "$3" "far\$ " hello
    expect_end host "$1" 60
    printf '%s\n' "${@:4}" | expect_words
}

run_case guest log_in 0 5551002 tarn "Logged in as guest." "hello" "hello: not found"
run_case wrong-password log_in 1 5551002 wrong "The answer is incorrect."
run_case busy log_in 1 5550100 tarn "The answer is BUSY."
