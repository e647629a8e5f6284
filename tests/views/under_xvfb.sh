#!/bin/sh
# under_xvfb.sh COMMAND ..: runs a command on an X server of its own, which takes a free display by itself and
# says which when it is ready. The command's result is the script's. SCREEN is its size, where the usual one is not
# meant.
set -eu

scratch=$(mktemp -d)
server=
# shellcheck disable=SC2317 # it is the trap that calls it
tidy_up() {
    if [ -n "$server" ] && kill "$server" 2>/dev/null; then wait "$server" || true; fi
    rm -rf "$scratch"
}
trap tidy_up EXIT
trap 'exit 1' INT TERM

mkfifo "$scratch/display"
Xvfb -displayfd 3 -screen 0 "${SCREEN:-1280x1024}x24" -nolisten tcp 3>"$scratch/display" 2>"$scratch/log" &
server=$!
# An X server that fails closes the pipe, so this ends in every case.
if ! read -r number <"$scratch/display"; then
    cat "$scratch/log" >&2
    exit 1
fi

# Nothing of the user's session: no display, no settings, no accessibility bus.
status=0
DISPLAY=":$number" GDK_BACKEND=x11 GDK_SCALE=1 GTK_THEME=Adwaita GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1 \
    "$@" || status=$?
exit "$status"
