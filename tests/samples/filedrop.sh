# shellcheck shell=bash
# A caller behind a modem who offers files under names of all kinds.

lay_case=start_modems
outside=$WINEPREFIX/drive_c/evil.bat # where a hostile caller's file would go

# Its line is standard input and output: call NUMBER NAME...
# The files are told by their whole names, each in a transfer of its own, or all in one where $at_once is set; what the
# far end refuses is the caller's loss.
call() {
    local word=
    stty sane -isig -echo
    printf 'ATE0V1\rATDT%s\r' "$1"
    until [[ $word == CONNECT* ]]; do
        IFS= read -r -t 30 word || return
    done
    stty raw
    export LD_PRELOAD="$wine_build/native/tests/line/\$LIB/libkeepbytes.so"
    shift
    if [[ ${at_once:-} ]]; then
        timeout 30 sz --quiet --full-path -- "$@" || true
        return
    fi
    for name; do
        timeout 30 sz --quiet --full-path -- "$name" || true
    done
}

# Each name: "as it is offered" "as it is kept". The sample ends after $count files, or after all of them.
drop() {
    local offered=() kept=() name
    while (($#)); do
        offered+=("$1")
        [[ -z $2 ]] || kept+=("$2")
        shift 2
    done
    for name in "${offered[@]}"; do
        mkdir -p "$(dirname -- "$folder/there/$name")"
        cp "$inputs/k3.bin" "$folder/there/$name"
    done
    mkdir "$folder/here/drop"
    rm -f "$outside"
    start_sample COM11 "$(windows_path "$folder/here/drop")\\" "${count:-${#kept[@]}}"
    await "an open line" 20 host_says 'waits for calls'
    (
        exec {wine_lock}>&- <"$wine_line/a1" >"$wine_line/a1" 2>"$folder/peer.log"
        cd "$folder/there"
        call 5551001 "${offered[@]}"
    ) &
    peer=$!
    expect_end host 0 60
    as_kept "${kept[@]}"
}

# These files, and no others anywhere that the sample may reach.
as_kept() {
    local name
    set_step "looking for the files"
    for name; do
        cmp --silent "$inputs/k3.bin" "$folder/here/drop/$name" || fail_case "$name is not what was sent"
    done
    [[ ! -e $outside ]] || fail_case "the caller's path was taken"
    [[ $(find "$folder/here" -type f | wc -l) == $# ]] || fail_case "other files came: $(find "$folder/here" -type f)"
    { echo "COM11 waits for calls."; printf '%s: 3000 bytes.\n' "$@"; } | expect_words
}

# The sample ends with the transfer, though that has brought more files than it was to wait for.
more_at_once() {
    local at_once=yes count=1
    drop one.txt 0001-one.txt two.txt 0002-two.txt
}

no_port() {
    start_sample COM9 "$(windows_path "$folder/here")\\"
    expect_end host 1
    host_says "COM9 does not open: ..*" || fail_case "the sample doesn't say why"
}

run_case plain drop letter.txt 0001-letter.txt
run_case hostile drop sub/folder.bin 0001-folder.bin 'C:\evil.bat' 0002-evil.bat 'nul' 0003-nul \
    'a b;c.txt' 0004-a_b_c.txt
run_case at-once more_at_once
run_case twice drop letter.txt 0001-letter.txt ./letter.txt 0002-letter.txt
run_case no-port no_port
