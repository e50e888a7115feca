# shellcheck shell=bash
# Transfers over a line that spoils, loses or doubles bytes, both ways, the same ones in each run. A file may arrive
# right, or its transfer may fail; where a CRC guards it, none may be told to have arrived and be another one. A
# transfer that takes too long is given up by the sample, which counts as failed.

limit=15 # seconds
outcomes=$work/outcomes
: >"$outcomes"

gkermit_sends="gkermit -q -i -P -s"
gkermit_receives="gkermit -q -i -P -w -r"
kermit_sends="kermit -Y -q -i -l 0 -s"

# GUARD crc: never wrong; sum: a checksum is fooled now and then.
noisy() { # GUARD SEED KIND=PROBABILITY UPLOAD|DOWNLOAD PROTOCOL FILE COMMAND
    local guard=$1 seed=$2 kind=$3 direction=$4 protocol=$5 name=$6 into=there
    shift 6
    host_options=(--limit "$limit")
    [[ $protocol != kermit ]] || first=receiver
    [[ $protocol != xmodem* ]] || same=same_padded_file
    [[ $direction == upload ]] || into=here
    line_says noise "seed=$seed" "$kind"
    "begin_$direction" "$protocol" "$*" "$name"
    end_of host $((limit + 20))
    local outcome=failed
    if [[ $status == 0 ]]; then
        end_of peer "$peer_limit" # which may still write
        "$same" "$inputs/$name" "$folder/$into" "$name" && outcome=right || outcome=wrong
    fi
    line_says stats
    echo "$outcome $(grep -oE '(corrupted|dropped|doubled)=[0-9]*' <<<"$answer" | tr -dc '0-9\n' | paste -sd ' ')" >>"$outcomes"
    [[ $outcome$guard != wrongcrc ]] || fail_case "another file came than was sent, and the sample tells a success"
}

rows=(
    "crc 1  corrupt=1e-5 download zmodem     k400.bin sz -q"
    "crc 2  corrupt=1e-4 download zmodem     k100.bin sz -q"
    "crc 3  corrupt=1e-5 upload   zmodem     k400.bin rz -q"
    "crc 4  corrupt=1e-4 upload   zmodem     k100.bin rz -q"
    "crc 5  corrupt=1e-4 download zmodem     k100.bin sz -q -o"
    "crc 6  corrupt=1e-4 upload   zmodem     k20.bin  rz -q"
    "crc 7  corrupt=1e-4 upload   zmodem     k100.bin rz -q -w 4096"
    "crc 8  corrupt=1e-5 download ymodem     k100.bin sb -q"
    "crc 9  corrupt=1e-4 download ymodem     k20.bin  sb -q"
    "crc 10 corrupt=1e-5 upload   ymodem     k100.bin rb -q"
    "crc 11 corrupt=1e-4 upload   ymodem     k20.bin  rb -q"
    "crc 12 corrupt=1e-5 download xmodem-crc k100.bin sx -q"
    "crc 13 corrupt=1e-4 download xmodem-crc k20.bin  sx -q"
    "crc 14 corrupt=1e-5 upload   xmodem-crc k100.bin rx -q -c k100.bin"
    "crc 15 corrupt=1e-4 upload   xmodem-crc k20.bin  rx -q -c k20.bin"
    "crc 16 corrupt=1e-4 download xmodem-1k  k20.bin  sx -q -k"
    "crc 17 corrupt=1e-4 upload   xmodem-1k  k20.bin  rx -q -c k20.bin"
    "sum 18 corrupt=1e-4 download xmodem     k20.bin  sx -q"
    "sum 19 corrupt=1e-4 upload   xmodem     k20.bin  rx -q k20.bin"
    "sum 20 corrupt=1e-5 download kermit     k20.bin  $gkermit_sends"
    "sum 21 corrupt=1e-4 download kermit     k20.bin  $gkermit_sends"
    "sum 22 corrupt=1e-5 upload   kermit     k20.bin  $gkermit_receives"
    "sum 23 corrupt=1e-4 upload   kermit     k20.bin  $gkermit_receives"
    "sum 24 corrupt=1e-4 download kermit     k20.bin  $kermit_sends"
    "crc 25 drop=1e-4    download zmodem     k100.bin sz -q"
    "crc 26 drop=1e-4    upload   zmodem     k100.bin rz -q"
    "crc 27 double=1e-4  download zmodem     k100.bin sz -q"
    "crc 28 double=1e-4  upload   zmodem     k100.bin rz -q"
    "crc 29 corrupt=5e-4 download zmodem     k20.bin  sz -q"
    "crc 30 corrupt=5e-4 upload   zmodem     k20.bin  rz -q"
)
for row in "${rows[@]}"; do
    read -r guard seed kind direction protocol name command <<<"$row"
    # shellcheck disable=SC2086 # a command is words
    run_case "$protocol-$direction-${kind/=/-}-$seed" noisy \
        "$guard" "$seed" "$kind" "$direction" "$protocol" "$name" $command
done
awk '{ count[$1]++; for (i = 2; i <= NF; ++i) spoilt += $i }
     END { printf "%d right, %d failed, %d wrong; %d bytes were spoilt\n", count["right"], count["failed"], count["wrong"], spoilt }' \
    "$outcomes"
