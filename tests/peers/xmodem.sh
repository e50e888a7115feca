# shellcheck shell=bash
# XModem: sx and rx. It tells no name and no length, so that files come filled up to a whole block.

same=same_padded_file

# rx is told the name that the file gets.
to_rx() { # PROTOCOL "OPTIONS" FILE
    upload "$1" "rx -q $2 $3" "$3"
}

from_sx() { # PROTOCOL "OPTIONS" FILE
    download "$1" "sx -q $2" "$3"
}

# Without a name the file gets one that isn't there yet.
without_name() {
    cp "$inputs/n1024.bin" "$folder/there"
    echo there >"$folder/here/UNTITLED.000"
    start_peer sx -q n1024.bin
    start_host --protocol xmodem-crc receive
    expect_end host 0
    expect_end peer 0
    set_step "comparing the file"
    same_padded_file "$inputs/n1024.bin" "$folder/here" UNTITLED.001 || fail_case "UNTITLED.001 isn't what was sent"
    [[ $(<"$folder/here/UNTITLED.000") == there ]] || fail_case "UNTITLED.000 is overwritten"
}

for size in one.bin n128.bin n129.bin k20.bin; do
    run_case "sx-checksum-$size" from_sx xmodem "" "$size"
    run_case "rx-checksum-$size" to_rx xmodem "" "$size"
    run_case "sx-crc-$size" from_sx xmodem-crc "" "$size"
    run_case "rx-crc-$size" to_rx xmodem-crc "-c" "$size"
done
for size in one.bin n1023.bin n1024.bin n1025.bin k100.bin; do
    run_case "sx-1k-$size" from_sx xmodem-1k "-k" "$size"
    run_case "rx-1k-$size" to_rx xmodem-1k "-c" "$size"
done
run_case rx-checksum-for-crc to_rx xmodem-crc "" n1025.bin
run_case rx-crc-for-checksum to_rx xmodem "-c" n1025.bin
run_case sx-without-name without_name
