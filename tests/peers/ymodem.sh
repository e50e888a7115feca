# shellcheck shell=bash
# YModem: sb and rb.

sizes=(empty.bin one.bin n128.bin n1023.bin n1024.bin n1025.bin k100.bin)

rename_download() {
    host_options=(--rename other.bin)
    as_name=other.bin
    download ymodem "sb -q" n1024.bin
}

hostile_name() { # OFFERED WRITTEN
    mkdir -p "$(dirname -- "$folder/there/$1")"
    cp "$inputs/n1024.bin" "$folder/there/$1"
    start_peer sb -q -f "$1"
    start_host --protocol ymodem receive
    expect_end host 0
    expect_end peer 0
    as_name=$2
    compare "$folder/here" n1024.bin
}

for size in empty.bin n1025.bin k100.bin; do
    run_case "sb-$size" download ymodem "sb -q" "$size"
    run_case "rb-$size" upload ymodem "rb -q" "$size"
done
run_case sb-long-blocks download ymodem "sb -q -k" k100.bin
run_case sb-batch download ymodem "sb -q" "${sizes[@]}"
run_case rb-batch upload ymodem "rb -q" one.bin empty.bin n1024.bin k100.bin
run_case sb-stream download ymodem-g "sb -q" n1024.bin
run_case sb-rename rename_download
run_case sb-name-path hostile_name sub/n1024.bin n1024.bin
run_case sb-name-device hostile_name aux.bin _aux.bin
