# shellcheck shell=bash
# A virtual X display for one script, with functions for the user's actions. Sourced; needs bash. It creates a
# scratch folder, "$folder". The folder, the display and the started programs end with the script; the display and
# the programs also end if the script is killed.

# have_programs PROGRAM...: true if all are installed; reports the first one that is not.
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
    # The server removes its lock and its sockets.
    if [ -n "$server" ]; then
        kill "$server" 2>/dev/null || true
        wait "$server" 2>/dev/null || true
    fi
    rm -rf "$folder"
}
trap leave EXIT

# start PROGRAM [ARGUMENT...]: starts a program in the background and sets "$started" to its process.
start() {
    setpriv --pdeathsig KILL "$@" &
    started=$!
    programs+=("$started")
}

# wait_until SECONDS COMMAND...: repeats a command until it succeeds; false after the time limit.
wait_until() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        [ "$SECONDS" -le "$end" ] || return 1
        sleep 0.05
    done
}

# start_x_display [SIZE]: starts a display with a screen of that size (1024x768) for all programs started later.
# The server chooses a free number and writes it when it is ready. Without -noreset it would restart after its
# last client and lose the next one.
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
    # Qt prints a warning without this folder.
    XDG_RUNTIME_DIR=$folder/runtime
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    unset WAYLAND_DISPLAY
    export DISPLAY XDG_RUNTIME_DIR QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
}

has_window_manager() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }

# windows CAPTION: prints the visible windows with that caption (a regular expression), one per line. A search can
# block forever if a window closes meanwhile.
windows() { timeout 20 xdotool search --onlyvisible --name "$1" 2>/dev/null; }
is_shown() { [ -n "$(windows "$1")" ]; }
is_not_shown() { ! is_shown "$1"; }

# wait_for_window CAPTION: prints the first such window as soon as there is one.
wait_for_window() {
    if wait_until 60 is_shown "$1"; then
        windows "$1" | head -n 1
    else
        echo "no window \"$1\" has appeared" >&2
        return 1
    fi
}

# focus_window WINDOW: sends later keys to that window. A new window may refuse the focus at first.
focus_window() {
    wait_until 30 takes_focus "$1" || { echo "window $1 takes no keys" >&2; return 1; }
}
takes_focus() {
    timeout 20 xdotool windowfocus "$1" 2>/dev/null
    [ "$(timeout 20 xdotool getwindowfocus 2>/dev/null)" = "$1" ]
}

# settle PROCESS: waits until a program and the display have handled all their input and are idle: neither has run
# for a while. The load of the machine does not matter.
settle() {
    local before='' times still=0 end=$((SECONDS + 120))
    while [ "$SECONDS" -le "$end" ]; do
        read_times "$1"
        case $times in
            *[RD]*) still=0 ;; # it is ready to run
            "$before") still=$((still + 1)) ;;
            *) still=0 ;;
        esac
        [ "$still" -lt 4 ] || return 0
        before=$times
        sleep 0.02
    done
    echo "process $1 does not become idle" >&2
    return 1
}
# Sets "$times" to the state and the running time in nanoseconds of the program and of the display.
read_times() {
    local process state='' ran=''
    times=
    for process in "$1" "$server"; do
        read -r state <"/proc/$process/stat" && read -r ran _ <"/proc/$process/schedstat"
        state=${state##*) }
        times+="${state%% *} $ran "
    done 2>/dev/null
}

# colours AREA: prints the number of colours in a part of the screen (a geometry of ImageMagick).
colours() { import -window root -crop "$1" png:- 2>/dev/null | identify -format %k - 2>/dev/null; }

# wait_for_end PROCESS [SECONDS]: true if a program ends by itself, with exit code 0, within the time.
wait_for_end() { wait_until "${2:-120}" has_ended "$1" && wait "$1" 2>/dev/null; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }
