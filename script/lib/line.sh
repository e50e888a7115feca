# shellcheck shell=bash
# The virtual line of the current prefix: `use_wine` comes first, its lock is held. Sets $line to the process.

line_limit=100 # tenths of a second for the line to be ready

# start_line CABLES: two ends for each at $wine_line, as the prefix's ports expect them.
start_line() {
    local tool=$wine_build/native/tests/line/tarnline waited
    [[ -x $tool ]] || {
        echo "the virtual line is not built: script/build native" >&2
        return 1
    }
    rm -f "$wine_line/control"
    (
        # It must neither hold the prefix's lock nor keep a guard from hearing our end.
        for descriptor in ${wine_lock:-} ${guard:-}; do
            exec {descriptor}>&-
        done
        exec "$tool" --dir "$wine_line" --cables "$1" --with-parent </dev/null >"$wine_line/log" 2>&1
    ) &
    line=$!
    for ((waited = 0; waited < line_limit; ++waited)); do
        [[ -s $wine_line/control ]] && return
        kill -0 "$line" 2>/dev/null || break
        sleep 0.1
    done
    cat "$wine_line/log" >&2
    echo "the virtual line did not get ready" >&2
    return 1
}

end_line() {
    [[ -n ${line:-} ]] || return 0
    kill "$line" 2>/dev/null || true
    wait "$line" 2>/dev/null || true
}

# Programs under Wine that open its ports have their modem signals by this.
wear_line() {
    # One library for each width: the loader puts the name of its folder in for $LIB.
    export LD_PRELOAD="$wine_build/native/tests/line/\$LIB/libtarnsignals.so"
    export TARN_LINE_STATE=$wine_line
    TARN_LINE_DIR=$(windows_path "$wine_line")
    export TARN_LINE_DIR
}
