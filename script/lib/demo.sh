# shellcheck shell=bash disable=SC2034,SC2154
# What the steps of script/demo have in common: the line of a prefix, far ends, what was measured. Sourced after
# wine.sh, line.sh and display.sh. Whoever lays a line has $wine_line, whoever lays folders has $near_folder and
# $far_folder.

port=COM5       # one end of the cable, the program's
far_end=b       # the other end's name, the far computer's
prompt='tarn$ ' # of a shell there
account=guest   # at the far computer
password=tarn
limit=20 # seconds that a step of a window, a file or a call may take
pictures=$wine_root/build/demo

end_demo() {
    [[ -z ${program:-} ]] || end_wine
    [[ -z ${shell:-} ]] || kill -- "-$shell" 2>/dev/null || true
    [[ -z ${peer:-} ]] || kill "$peer" 2>/dev/null || true
    [[ -z ${far_host:-} ]] || kill -- "-$far_host" 2>/dev/null || true
    end_display
    end_line
}

# What a step shows.
step() {
    printf '\n== %s\n' "$*"
    start_watch
}

start_watch() {
    watch_began=${EPOCHREALTIME//[!0-9]/} # microseconds
}

# measured WHAT: with the seconds since the watch was started.
measured() {
    local took=$((${EPOCHREALTIME//[!0-9]/} - watch_began))
    printf '  -> %s; %d.%d s\n' "$1" "$((took / 1000000))" "$((took / 100000 % 10))"
}

fail() {
    echo "script/demo: $*" >&2
    exit 1
}

# The line of one prefix, which is made the first time: lay_line x86|screen start_line 1, or what else starts one
lay_line() {
    use_wine "$1"
    lock_wine
    trap end_demo EXIT
    trap 'exit 143' TERM HUP INT
    need_prefix
    start_watch
    "${@:2}"
}

# Folders of both ends; what the far one has to give lies in it.
lay_folders() {
    near_folder=$wine_line/near
    far_folder=$wine_line/far
    rm -rf "$near_folder" "$far_folder" "$wine_line/said"
    mkdir "$near_folder" "$far_folder"
    cp "$root/build/x86/Lantry.ocx" "$far_folder"
    cp "$root/include/TarnComm.h" "$near_folder"
}

# A program of ours under Wine, at the line: run_sample COMMAND...
run_sample() {
    (
        exec {wine_lock}>&-
        wear_line
        start_wine </dev/null >/dev/null 2>&1
        exec "$@" </dev/null
    )
}

# What the far computer runs: with an account it asks who is there first. sz flushes its terminal as it ends, which
# takes the last bytes away on a pty. This shell asks nobody, and drops a PS1 that it is given: it gets another name.
# shellcheck disable=SC2016
far_program='
    until [[ -z ${account:-} || ( ${caller:-} == "$account" && ${word:-} == "$password" ) ]]; do
        read -rp "login: " caller
        [[ $caller ]] || continue
        read -rsp "Password: " word
        echo
    done
    unset account password caller word
    sz() { LD_PRELOAD=$keep command sz --quiet "$@"; }
    export -f sz
    PS1=$at_prompt exec bash --norc --noprofile --noediting -i'

# A real shell, with the far end of the cable as its terminal: start_shell FOLDER NAME=VALUE... -- STTY SETTINGS
start_shell() {
    local folder=$1 tty=$wine_line/$far_end variables=()
    shift
    while [[ $1 != -- ]]; do
        variables+=("$1")
        shift
    done
    stty -F "$tty" sane "${@:2}"
    mkdir -p "$folder"
    (
        exec {wine_lock}>&-
        cd "$folder" || exit
        exec setsid --ctty env -i HOME="$PWD" PATH="$PATH" LC_ALL=C TERM=dumb at_prompt="$prompt" \
            keep="$wine_build/native/tests/line/\$LIB/libkeepbytes.so" "${variables[@]}" \
            bash -c "$far_program" <"$tty" >"$tty" 2>&1
    ) &
    shell=$!
}

# The log of the current prefix: begin_log, then keep_log NAME moves it to where the pictures are.
begin_log() {
    written_log=$WINEPREFIX/drive_c/windows/wiretap.txt
    rm -f "$written_log"
}

keep_log() {
    mkdir -p "$pictures"
    mv "$written_log" "$pictures/$1.txt"
}

# Waits until a command succeeds: await WHAT COMMAND...
await() {
    local end=$((SECONDS + limit))
    until "${@:2}" >/dev/null 2>&1; do
        if ((SECONDS >= end)) || ! kill -0 "${program:-$$}" 2>/dev/null; then
            echo "script/demo: $1 did not come" >&2
            return 1
        fi
        sleep 0.1
    done
}

# Both copies of a file: how long, how fast, and that their checksums are the same. compare_copies FILE
compare_copies() {
    local bytes sum_near sum_far
    bytes=$(stat -c %s "$far_folder/$1")
    sum_near=$(sha256sum <"$near_folder/$1")
    sum_far=$(sha256sum <"$far_folder/$1")
    echo "  near: ${sum_near%% *}"
    echo "  far:  ${sum_far%% *}"
    [[ $sum_near == "$sum_far" ]] || fail "the copies of $1 differ"
    measured "$1: $bytes bytes, both checksums are equal"
}

# Text of the line, without what is not text in it.
show_lines() {
    { tr '\r' '\n' <"$1" | LC_ALL=C tr -cd '\n[:print:]' && echo; } | sed '/^$/d; s/^/  | /'
}

# The window's picture, twice, until both are the same.
picture_stands() {
    import -window "$window" "$pictures/now.png"
    sleep 0.2
    import -window "$window" "$pictures/then.png"
    cmp --silent "$pictures/now.png" "$pictures/then.png"
}

# How many of the colour cube's eight corners are near the colours of more than a thousand pixels: text has these, the
# pictures in a toolbar have not.
count_colours() {
    convert "$1" -posterize 2 -format %c histogram:info: | awk -F: '$1 > 1000 { ++count } END { print count + 0 }'
}

# keep_picture NAME LEAST: of the window, when nothing in it changes. With fewer colours it lacks what it should show.
keep_picture() {
    local picture=$pictures/$1.png colours
    await "a picture that stands still" picture_stands
    mv "$pictures/then.png" "$picture"
    rm -f "$pictures/now.png"
    colours=$(count_colours "$picture")
    ((colours >= $2)) || fail "${picture#"$root"/} has $colours colours only"
    measured "a picture, $(identify -format %wx%h "$picture"), $colours main colours: ${picture#"$root"/}"
}
