# shellcheck shell=bash
# Transfers that are stopped in the middle, over a line of 115,200 baud so that there is a middle. None may hang, and
# none may end as if all were well.

middle=3000 # bytes
file=k400.bin

gkermit_sends="gkermit -q -i -P -s"
gkermit_receives="gkermit -q -i -P -w -r"

begin() { # upload|download PROTOCOL "PEER COMMAND"
    line_says baud 115200
    [[ $2 != kermit ]] || first=receiver
    [[ $2 != xmodem* ]] || same=same_padded_file
    "begin_$1" "$2" "$3" "$file"
}

nothing_is_good() {
    ! host_says '^FinishFile' || fail_case "the sample tells a success"
    host_says '^AbortFileTransfer' || fail_case "the sample doesn't tell the failure"
}

# Hangs up politely: lrzsz says so on the line.
peer_is_ended() { # UPLOAD|DOWNLOAD PROTOCOL COMMAND
    begin "$@"
    await "the middle of the file" 20 host_has_bytes "$middle"
    set_step "ending the peer"
    kill -TERM "$peer"
    expect_end host 1 20
    nothing_is_good
}

# Falls silent: the sample ends by its own limit or by that of the protocol, whatever comes first.
peer_is_killed() { # LIMIT UPLOAD|DOWNLOAD PROTOCOL COMMAND
    host_options=(--limit "$1")
    begin "${@:2}"
    await "the middle of the file" 20 host_has_bytes "$middle"
    set_step "killing the peer"
    kill_peer
    peer=
    expect_end host 1 "$(($1 + 10))"
    nothing_is_good
}

# The peer is told by a cancel; Kermit has none.
host_aborts() { # UPLOAD|DOWNLOAD PROTOCOL COMMAND
    host_options=(--abort-after "$middle")
    begin "$@"
    expect_end host 1 20
    nothing_is_good
    [[ $2 == kermit ]] || expect_failure peer "$peer_limit"
}

host_closes() { # UPLOAD|DOWNLOAD PROTOCOL COMMAND
    host_options=(--close-after "$middle")
    begin "$@"
    expect_end host 1 10
    nothing_is_good
}

# A folder has the name that the file would get. It is refused; by ZModem that is the end of the file alone, and sz,
# which offers it again and again, is told to skip it.
cant_be_written() { # PROTOCOL COMMAND
    mkdir "$folder/here/$file"
    host_options=(--limit 20)
    [[ $1 != kermit ]] || first=receiver
    [[ $1 != xmodem* ]] || same=same_padded_file
    begin_download "$1" "$2" "$file"
    if [[ $1 == zmodem ]]; then
        expect_end host 3 30
        ! host_says '^FinishFile ' || fail_case "the sample tells a success"
    else
        expect_end host 1 30
        nothing_is_good
    fi
    ! host_says 'The time is over' || fail_case "the transfer didn't end by itself"
}

# What is done to each, and its command. Falling silent takes long, so not all of them do.
rows=(
    "rz upload   zmodem     abort,close,kill | rz -q"
    "sz download zmodem     abort,close,kill,refuse | sz -q"
    "rb upload   ymodem     abort,close | rb -q"
    "sb download ymodem     abort,close,refuse | sb -q"
    "rx upload   xmodem-crc abort,close,kill | rx -q -c $file"
    "sx download xmodem-crc abort,close,refuse | sx -q"
    "gkermit-receives upload   kermit abort,close,kill | $gkermit_receives"
    "gkermit-sends    download kermit abort,close,refuse | $gkermit_sends"
)
for row in "${rows[@]}"; do
    read -r name direction protocol deeds <<<"${row%|*}"
    command=${row#*| }
    [[ $deeds != *abort* ]] || run_case "$name-host-aborts" host_aborts "$direction" "$protocol" "$command"
    [[ $deeds != *close* ]] || run_case "$name-host-closes" host_closes "$direction" "$protocol" "$command"
    [[ $deeds != *kill* ]] || run_case "$name-killed" peer_is_killed 3 "$direction" "$protocol" "$command"
    [[ $deeds != *refuse* ]] || run_case "$name-cant-be-written" cant_be_written "$protocol" "$command"
done
run_case rz-ended peer_is_ended upload zmodem "rz -q"
run_case sz-ended peer_is_ended download zmodem "sz -q"
run_case sx-silent peer_is_killed 60 download xmodem-crc "sx -q"
