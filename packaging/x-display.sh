# shellcheck shell=bash
# A virtual X display of a script's own, and the user's hands on it. Sourced; needs bash. It gives the script
# a scratch folder, "$folder". The folder, the display and the programs started go with the script, the
# latter two even with one that is killed outright.

# have_programs PROGRAM...: whether all are installed; names the first one that is not.
have_programs() {
    local program
    for program; do
        command -v "$program" >/dev/null || { echo "$program is not installed"; return 1; }
    done
}

folder=$(mktemp -d)
server=
programs=()
leave() {
    local process
    for process in "${programs[@]}"; do
        kill -9 "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    # The server takes its lock and its sockets away.
    if [ -n "$server" ]; then
        kill "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
    fi
    rm -rf "$folder"
}
trap leave EXIT

# start PROGRAM [ARGUMENT...]: starts a program in the background; its process is "$started".
start() {
    setpriv --pdeathsig KILL "$@" &
    started=$!
    programs+=("$started")
}

# wait_until SECONDS COMMAND...: tries a command until it succeeds; false if it does not in time.
wait_until() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -le "$end" ] || return 1
        sleep 0.05
    done
}

# start_x_display [SIZE]: a display with a screen of that size (1024x768) for all that is started later. The
# server chooses a free number and tells it when it can be reached. One that starts anew whenever its last
# client leaves would lose the next.
start_x_display() {
    : >"$folder/display"
    setpriv --pdeathsig TERM Xvfb -displayfd 3 -screen 0 "${1:-1024x768}x24" -nolisten tcp -noreset \
        3>"$folder/display" 2>"$folder/server" &
    server=$!
    wait_until 60 grep -q . "$folder/display" || {
        echo "Xvfb did not start:" >&2
        cat "$folder/server" >&2
        exit 1
    }
    DISPLAY=:$(cat "$folder/display")
    # The toolkit complains where it has none.
    XDG_RUNTIME_DIR=$folder/runtime
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    unset WAYLAND_DISPLAY
    export DISPLAY XDG_RUNTIME_DIR QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
}

has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }

# windows CAPTION: the visible windows with such a caption (a regular expression), one a line. A search that
# meets a window on its way out may never end.
windows() { timeout 20 xdotool search --onlyvisible --name "$1" 2>/dev/null; }
is_shown() { [ -n "$(windows "$1")" ]; }
is_not_shown() { ! is_shown "$1"; }

# wait_for_window CAPTION: gives the first such window as soon as there is one.
wait_for_window() {
    if wait_until 60 is_shown "$1"; then
        windows "$1" | head -n 1
    else
        echo "no window \"$1\" has come" >&2
        return 1
    fi
}

# focus_window WINDOW: the keys pressed later go there. A window that has only just appeared may refuse.
focus_window() {
    wait_until 30 takes_focus "$1" || { echo "window $1 takes no keys" >&2; return 1; }
}
takes_focus() {
    timeout 20 xdotool windowfocus "$1" 2>/dev/null
    [ "$(timeout 20 xdotool getwindowfocus 2>/dev/null)" = "$1" ]
}

# settle PROCESS: waits until a program and the display have handled what was sent to them and rest: neither
# has run for a while, however busy the machine is otherwise.
settle() {
    local before= times still=0 end=$((SECONDS + 120))
    while [ "$SECONDS" -le "$end" ]; do
        read_times "$1"
        case $times in
            *[RD]*) still=0 ;; # it would run if the machine let it
            "$before") still=$((still + 1)) ;;
            *) still=0 ;;
        esac
        [ "$still" -lt 4 ] || return 0
        before=$times
        sleep 0.02
    done
    echo "process $1 does not come to rest" >&2
    return 1
}
# Sets "$times" to what tells that the program or the display has run: its state, and its running time in
# nanoseconds.
read_times() {
    local process state= ran=
    times=
    for process in "$1" "$server"; do
        read -r state <"/proc/$process/stat" && read -r ran _ <"/proc/$process/schedstat"
        state=${state##*) }
        times+="${state%% *} $ran "
    done 2>/dev/null
}

# colours AREA: how many colours a part of the screen shows; it is named as ImageMagick names it.
colours() { import -window root -crop "$1" png:- 2>/dev/null | identify -format %k - 2>/dev/null; }

# wait_for_end PROCESS [SECONDS]: whether a program ends by itself, in order and in time.
wait_for_end() { wait_until "${2:-120}" has_ended "$1" && wait "$1" 2>/dev/null; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }
