# shellcheck shell=bash
# ZModem: sz and rz.

sizes=(empty.bin one.bin n1023.bin n1024.bin n1025.bin k100.bin)

resume_upload() { # OPTION: with --resume or without
    head -c 65000 "$inputs/k100.bin" >"$folder/there/k100.bin"
    upload zmodem "rz -q -r" k100.bin
    crossed ab
    ((count < 70000)) || fail_case "$count bytes were sent for the 35000 that were missing"
}

resume_download() { # PEER COMMAND
    head -c 65000 "$inputs/k100.bin" >"$folder/here/k100.bin"
    host_options=(--resume)
    download zmodem "$1" k100.bin
    crossed ba
    ((count < 70000)) || fail_case "$count bytes were sent for the 35000 that were missing"
}

replace_download() {
    head -c 65000 "$inputs/k400.bin" >"$folder/here/k100.bin"
    download zmodem "sz -q" k100.bin
}

skip_upload() {
    echo mine >"$folder/there/one.bin"
    begin_upload zmodem "rz -q -p" one.bin n1024.bin
    expect_end host 3
    expect_end peer 0
    host_says '^AbortFile ' || fail_case "no AbortFile came"
    [[ $(<"$folder/there/one.bin") == mine ]] || fail_case "what was to be skipped is overwritten"
    same_file "$inputs/n1024.bin" "$folder/there" n1024.bin || fail_case "the file behind it did not arrive"
}

# What the sender asks for is not heard: an offered file takes the place of the one that is there.
protect_download() {
    echo mine >"$folder/here/one.bin"
    download zmodem "sz -q -p" one.bin n1024.bin
}

# A known gap: the sample's first offer doesn't wait for the receiver's wishes, so that a receiver that wants all
# control characters escaped never understands it. The case fails when that gap closes, too.
escaped_upload() {
    host_options=(--limit 5)
    begin_upload zmodem "rz -q -e" n1024.bin
    expect_end host 1
}

rename_upload() {
    host_options=(--rename other.bin)
    as_name=other.bin
    upload zmodem "rz -q" n1024.bin
}

rename_download() {
    host_options=(--rename other.bin)
    as_name=other.bin
    download zmodem "sz -q" n1024.bin
}

# The name that the far end offers, and the one under which the sample writes it.
hostile_name() { # OFFERED WRITTEN
    mkdir -p "$(dirname -- "$folder/there/$1")"
    cp "$inputs/n1024.bin" "$folder/there/$1"
    start_peer sz -q -f "$1"
    start_host --protocol zmodem receive
    expect_end host 0
    expect_end peer 0
    as_name=$2
    compare "$folder/here" n1024.bin
}

# A name that leads out of the folder is answered with cancels on the line. A sender that overhears them goes on, and
# then the file lands in the folder all the same.
leading_away() { # OFFERED
    cp "$inputs/n1024.bin" "$folder/secret.bin"
    start_peer sz -q -f "$1"
    start_host --protocol zmodem receive
    end_of host "$host_limit"
    end_of peer "$peer_limit"
    set_step "looking for cancels and files"
    line_says transcript off # so that it is written
    grep -q 'a>b 18 18 18 18 18 18 18 18 18 18' "$folder/transcript" || fail_case "no cancel was sent"
    host_says '^PrepareFile ' || fail_case "the host was not asked"
    cmp "$inputs/n1024.bin" "$folder/secret.bin" || fail_case "the file above is overwritten"
    [[ $(find "$folder/here" -type f ! -name secret.bin) == "" ]] || fail_case "it has another name"
}

with_dialog() { # KIND upload|download COMMAND
    host_options=(--dialog "$1")
    "$2" zmodem "$3" k20.bin
}

# The object begins by itself, and the names are the far end's.
by_itself() { # PEER COMMAND, FILE...
    local command name
    read -ra command <<<"$1"
    for name in "${@:2}"; do
        cp "$inputs/$name" "$folder/there"
    done
    start_host auto
    await "the open port" 20 host_says 'is open'
    start_peer "${command[@]}" "${@:2}"
    expect_end host 0
    expect_end peer 0
    compare "$folder/here" "${@:2}"
}

for size in "${sizes[@]}"; do
    run_case "sz-$size" download zmodem "sz -q" "$size"
    run_case "rz-$size" upload zmodem "rz -q" "$size"
done
run_case sz-batch download zmodem "sz -q" "${sizes[@]}"
run_case sz-crc16 download zmodem "sz -q -o" k100.bin
run_case sz-crc16-batch download zmodem "sz -q -o" "${sizes[@]}"
run_case rz-batch upload zmodem "rz -q" "${sizes[@]}"
run_case sz-escaped download zmodem "sz -q -e" k100.bin
run_case rz-escaped-gap escaped_upload
run_case sz-window download zmodem "sz -q -w 4096" k100.bin
run_case rz-window upload zmodem "rz -q -w 4096" k100.bin
run_case sz-frames download zmodem "sz -q -L 256 -l 4096" k100.bin
run_case sz-large download zmodem "sz -q" k400.bin
run_case rz-large upload zmodem "rz -q" k400.bin
run_case sz-resume resume_download "sz -q"
run_case rz-resume resume_upload
run_case sz-replace replace_download
run_case sz-protect protect_download
run_case rz-skip skip_upload
run_case sz-rename rename_download
run_case rz-rename rename_upload
run_case sz-name-path hostile_name sub/deep/n1024.bin n1024.bin
run_case sz-name-device hostile_name sub/NUL.txt _NUL.txt
run_case sz-name-device-dot hostile_name com1. _com1
run_case sz-name-odd hostile_name 'a?b*c:d' 'd'
run_case sz-name-drive hostile_name 'c:n1024.bin' n1024.bin
run_case sz-name-backslash hostile_name '..x\y\n1024.bin' n1024.bin
run_case sz-name-above leading_away ../secret.bin
run_case sz-name-absolute leading_away "$work/sz-name-absolute/secret.bin"
run_case sz-dialog with_dialog free download "sz -q"
run_case rz-dialog with_dialog locks upload "rz -q"
run_case sz-by-itself by_itself "sz -q" k100.bin one.bin
