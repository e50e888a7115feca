# shellcheck shell=bash
# A display that nobody sees, for programs that paint: sets $DISPLAY, and $display to the server's process.

display_limit=10 # seconds for the server to be ready

# start_display [WIDTHxHEIGHTxDEPTH]: on a number that is free. Ends with this script, however that ends.
start_display() {
    local number shown
    exec {shown}< <(
        # It must neither hold the prefix's lock nor keep a guard from hearing our end.
        for descriptor in ${wine_lock:-} ${guard:-}; do
            exec {descriptor}>&-
        done
        exec setpriv --pdeathsig TERM Xvfb -displayfd 1 -screen 0 "${1:-1024x768x24}" -noreset 2>/dev/null
    )
    display=$!
    if ! read -r -t "$display_limit" number <&"$shown"; then
        echo "the display did not get ready: is xvfb installed?" >&2
        return 1
    fi
    exec {shown}<&-
    export DISPLAY=:$number
}

# Programs on the display have to be gone: Wine's own hold on to the first one that they see.
end_display() {
    [[ -n ${display:-} ]] || return 0
    kill "$display" 2>/dev/null || true
    wait "$display" 2>/dev/null || true
    display=
    unset DISPLAY
}
