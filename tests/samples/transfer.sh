# shellcheck shell=bash
# Files to rz and from sz.

sample_sends() {
    local path
    path=$(windows_path "$inputs/k20.bin")
    start_far_end "$far_tty" rz --quiet
    start_sample COM5 send "$path"
    expect_end host 0
    expect_end peer 0
    compare "$folder/there" k20.bin
    echo "$path: 20000 bytes." | expect_words
}

# The name that is given counts, and not the one that sz tells.
sample_receives() {
    local path
    path=$(windows_path "$folder/here/mine.bin")
    start_far_end "$far_tty" sz --quiet "$inputs/k100.bin"
    start_sample COM5 receive "$path"
    expect_end host 0
    expect_end peer 0
    as_name=mine.bin compare "$folder/here" k100.bin
    echo "$path: 100000 bytes." | expect_words
}

# The first file gets the name that is given; C, which hears of the second, lets it not choose its own.
refuses_second() {
    start_far_end "$far_tty" sz --quiet "$inputs/k3.bin" "$inputs/k20.bin"
    start_sample COM5 receive "$(windows_path "$folder/here/mine.bin")"
    expect_end host 1
    host_says "The transfer failed" || fail_case "the sample doesn't say so"
    as_name=mine.bin compare "$folder/here" k3.bin
}

# What can't be written is lost, and the transfer ends well all the same.
loses_received() {
    start_far_end "$far_tty" sz --quiet "$inputs/k3.bin"
    start_sample COM5 receive "$(windows_path "$folder/here/none/mine.bin")"
    expect_end host 1
    host_says "No file went over" || fail_case "the sample doesn't say so"
}

# A far end that protects what it has.
loses_sent() {
    echo mine >"$folder/there/k3.bin"
    start_far_end "$far_tty" rz --quiet --protect
    start_sample COM5 send "$(windows_path "$inputs/k3.bin")"
    expect_end host 1
    host_says "No file went over" || fail_case "the sample doesn't say so"
}

no_file() {
    start_sample COM5 send "$(windows_path "$folder/here/none")"
    expect_end host 1
    host_says 'none' || fail_case "the sample doesn't say which"
}

no_port() {
    start_sample COM9 send "$(windows_path "$inputs/k3.bin")"
    expect_end host 1
    host_says "COM9 does not open: ..*" || fail_case "the sample doesn't say why"
}

run_case send sample_sends
run_case receive sample_receives
run_case lost-here loses_received
if [[ $language == c ]]; then # which hears of each file
    run_case lost-there loses_sent
    run_case second refuses_second
fi
run_case no-file no_file
run_case no-port no_port
