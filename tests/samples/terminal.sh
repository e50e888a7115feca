# shellcheck shell=bash
# The far end answers each line. C reads them from its input, JScript from its arguments.

# shellcheck disable=SC2016 # Perl's own variables
answers='$| = 1; $/ = "\r"; while (<STDIN>) { chomp; printf "%s is %d long\r\n", $_, length }'

talk() {
    start_far_end "$far_tty" perl -e "$answers"
    if [[ $language == c ]]; then
        typed=$folder/typed
        printf '%s\n' "$@" >"$typed"
        start_sample COM5
    else
        start_sample COM5 "$@"
    fi
    expect_end host 0
    for line; do
        echo "$line is ${#line} long"
    done | expect_words
}

no_port() {
    start_sample COM9 hello
    expect_end host 1
    host_says "does not open: ..*" || fail_case "the sample doesn't say why"
}

run_case two-lines talk "hello" "how long is this"
run_case long-line talk "$(printf 'x%.0s' {1..300})" "hello"
run_case no-port no_port
