# shellcheck shell=bash
# Kermit: gkermit and kermit (C-Kermit), binary.

first=receiver # a sender repeats its first packet only after seconds

gkermit_sends="gkermit -q -i -P -s"
gkermit_receives="gkermit -q -i -P -w -r"
kermit_sends="kermit -Y -q -i -l 0 -s"
kermit_receives="kermit -Y -q -i -l 0 -r"

# Two known gaps of the sending side: an empty file goes out as a packet that no peer takes, and of a batch only the
# first file is opened. Both fail, and what is told to have arrived has arrived. The cases fail when a gap closes, too.
empty_upload_gap() { # PEER COMMAND
    begin_upload kermit "$1" empty.bin
    expect_end host 1
    ! host_says '^FinishFile ' || fail_case "the sample tells a success"
}

batch_upload_gap() { # PEER COMMAND
    begin_upload kermit "$1" n1025.bin k3.bin
    expect_end host 1
    [[ $(grep -c '^FinishFile ' "$folder/host.log") == 1 ]] || fail_case "not one file is told to have arrived"
    same_file "$inputs/n1025.bin" "$folder/there" n1025.bin || fail_case "the first file did not arrive"
}

for peer_name in gkermit kermit; do
    sends=${peer_name}_sends
    receives=${peer_name}_receives
    for size in empty.bin one.bin n1025.bin k20.bin; do
        run_case "$peer_name-sends-$size" download kermit "${!sends}" "$size"
        [[ $size == empty.bin ]] || run_case "$peer_name-receives-$size" upload kermit "${!receives}" "$size"
    done
    run_case "$peer_name-sends-batch" download kermit "${!sends}" one.bin empty.bin k3.bin n1025.bin
    run_case "$peer_name-receives-empty-gap" empty_upload_gap "${!receives}"
    run_case "$peer_name-receives-batch-gap" batch_upload_gap "${!receives}"
done
