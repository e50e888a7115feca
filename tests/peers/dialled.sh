# shellcheck shell=bash
# samples/flat/dial calls a computer behind a modem, logs in and fetches a file by sz. Each case has fresh modems.

lay_case=lay_telephone

# A call by the sample: STATUS "SAYS" ARGUMENT...
call() {
    (
        exec {wine_lock}>&-
        wear_line
        exec wine "$program" "${@:3}" </dev/null >"$folder/host.log" 2>&1
    ) &
    host=$!
    expect_end host "$1" 60
    host_says "$2" || fail_case "the sample doesn't say \"$2\""
}

is_on_hook() {
    modem_says 0 state "mode=command carrier=0"
}

gets() { # FILE "SAYS" ARGUMENT...
    local got=$folder/here/$1
    call 0 "$2" "${@:3}" 5551002 "sz $1" "$(windows_path "$got")"
    compare "$folder/here" "$1"
    await "the end of the call" 5 is_on_hook
}

gets_nothing() { # "SAYS" NUMBER COMMAND ARGUMENT...
    call 1 "$1" "${@:4}" "$2" "$3" "$(windows_path "$folder/here/nothing")"
    await "the end of the call" 5 is_on_hook
}

without_dial_tone() {
    modem_says 0 "dialtone off" ok
    gets_nothing "$@"
}

run_case file gets k100.bin "connected 14400; carrier on"
run_case hang-up-by-command gets k3.bin "Hung up" --init "ATX4E1V1S7=60&C1&D0"
run_case busy gets_nothing "busy" 5550100 "sz k3.bin"
run_case no-dial-tone without_dial_tone "dial tone" 5551002 "sz k3.bin"
run_case no-carrier gets_nothing "carrier" 5550102 "sz k3.bin" --init "ATX4E1V1S7=2&C1"
run_case wrong-password gets_nothing "didn't say" 5551002 "sz k3.bin" --password wrong
run_case no-such-file gets_nothing "" 5551002 "sz none.bin"
run_case set-up-refused gets_nothing "" 5551002 "sz k3.bin" --init "AT@"
