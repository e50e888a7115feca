# shellcheck shell=bash
# An instrument that sends a reading ten times a second, whoever listens.

count=4

# shellcheck disable=SC2016 # for the shell that is started
instrument='for ((n = 100; n < 400; ++n)); do printf "reading %d\r\n" "$n"; sleep 0.1; done'

# Times that are times, and readings that follow one another.
log_readings() {
    local file=$folder/here/log.csv
    echo "2001-02-03 04:05:06,from before" >"$file"
    start_far_end "$far_tty" bash -c "$instrument"
    start_sample COM5 "$(windows_path "$file")" "$count"
    expect_end host 0
    kill_peer
    set_step "reading the log"
    tr -d '\r' <"$file" | awk -F '[ ,]' -v count="$count" -v today="$(date +%F)" '
        NR == 1 { if ($0 != "2001-02-03 04:05:06,from before") exit wrong = 1; next }
        $1 < "2020-01-01" || $1 > today || $2 !~ /^[0-2][0-9]:[0-5][0-9]:[0-5][0-9]$/ || $3 != "reading" { exit wrong = 1 }
        NR > 2 && $4 != last + 1 { exit wrong = 1 }
        { last = $4 }
        END { exit wrong || NR != count + 1 }' ||
        fail_case "the log is not what was sent: $(head -n 6 "$file")"
}

no_port() {
    start_sample COM9 "$(windows_path "$folder/here/log.csv")" 1
    expect_end host 1
    host_says "COM9 does not open: ..*" || fail_case "the sample doesn't say why"
}

# C opens it before the port; the script, for each line.
no_file() {
    start_sample COM5 "$(windows_path "$folder/here/none/log.csv")" 1
    expect_end host 1
    host_says "can't be written" || fail_case "the sample doesn't say so"
}

run_case readings log_readings
[[ $language != c ]] || run_case no-file no_file
run_case no-port no_port
