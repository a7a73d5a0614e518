# Sourced by the scripts of this folder, with the repository's root as the current directory and a
# program tree as the first argument: an empty home, and a display with a window manager.

source .ci/setup.sh
set_up build display

tree=${1-$PWD/build/velmora}
scratch=$(mktemp -d)
pids=()
end() {
    local pid
    for pid in "${pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    rm -rf "$scratch"
}
trap end EXIT

fail() {
    echo "RED: $*" >&2
    sed 's/^/    /' "$scratch"/*.log >&2
    exit 1
}
# within SECONDS COMMAND...: until the command succeeds.
within() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        ((SECONDS < end)) || return 1
        sleep 0.1
    done
}

mkdir "$scratch/state" "$scratch/home"
chmod 700 "$scratch/state"
export VELMORA_DIR=$tree XDG_CONFIG_HOME=$scratch/state XDG_RUNTIME_DIR=$scratch/state
export HOME=$scratch/home LC_ALL=C.UTF-8
unset WAYLAND_DISPLAY QT_QPA_PLATFORM QT_SCALE_FACTOR
exec 3<>"$scratch/display"
# A key that a busy machine releases late must not repeat.
Xvfb -displayfd 3 -screen 0 1280x900x24 -r >"$scratch/xvfb.log" 2>&1 &
pids+=($!)
within 20 test -s "$scratch/display" || fail "there is no display"
DISPLAY=:$(cat "$scratch/display")
export DISPLAY
# A window that comes before it is ready would never be shown.
openbox --startup "touch $scratch/managed" >"$scratch/openbox.log" 2>&1 &
pids+=($!)
within 20 test -e "$scratch/managed" || fail "there is no window manager"

find_window() {
    xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -n 1 | grep .
}
is_in_front() {
    [[ $(xdotool getactivewindow getwindowname) == "$1" ]]
}
# in_front TITLE: waits until the keys go there.
in_front() {
    within 30 is_in_front "$1" || fail "in front is not '$1' but '$(xdotool getactivewindow getwindowname)'"
}
# press KEYS: where the focus is. The question at the end is answered once the keys are released.
press() {
    xdotool key --delay 60 "$@" get_desktop >"$scratch/desktop"
    sleep 0.3
}
# One more than the program's own, which no tip may be: the pointer rests where none comes.
has_menu() {
    (($(xdotool search --onlyvisible --class pellux | wc -l) > 1))
}
# choose MENU ITEM: by their keys.
choose() {
    press "$1"
    within 20 has_menu || fail "$1 opens no menu"
    press "$2"
}
take_window() {
    window=$(find_window '^Pellux$')
}
# start DIRECTORY COMMAND...: the program, its window in $window.
start() {
    (cd "$1" && exec "${@:2}") >"$scratch/pellux.log" 2>&1 &
    program=$!
    pids+=($program)
    within 30 take_window || fail "the program shows no window"
}
is_home() {
    [[ $(xdotool getactivewindow) == "$window" ]]
}
is_asking() {
    xdotool getactivewindow && ! is_home
}
has_ended() {
    ! kill -0 "$program"
}
quit() {
    press ctrl+q
    within 20 is_asking || fail "no question before the end"
    press Return
    within 20 has_ended || fail "the program does not end"
    wait "$program" || fail "the program ended with status $?"
}
