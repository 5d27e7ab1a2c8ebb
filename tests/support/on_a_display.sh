#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs a program on a display of its own, with a window manager: on_a_display.sh PROGRAM [ARGUMENT...]
# Ends with what the program ends with. Needs Xvfb and openbox.
set -uo pipefail

folder="$(mktemp -d)"
finish() {
    kill "${manager:-}" "${server:-}" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$folder"
}
trap finish EXIT

# The server writes the number of its display once it takes clients.
mkfifo "$folder/number"
Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp 3>"$folder/number" 2>"$folder/log" &
server=$!
if ! read -r -t 30 number <"$folder/number"; then
    printf 'on_a_display: the display did not start: %s\n' "$(tail -n 1 "$folder/log")" >&2
    exit 1
fi
export DISPLAY=":$number" QT_QPA_PLATFORM=xcb HOME="$folder" XDG_RUNTIME_DIR="$folder"
unset WAYLAND_DISPLAY
# A window that comes before its manager would never be told that it shows.
mkfifo "$folder/ready"
openbox --sm-disable --startup "sh -c 'echo ready >$folder/ready'" >/dev/null 2>&1 &
manager=$!
if ! read -r -t 30 _ <>"$folder/ready"; then
    printf 'on_a_display: the window manager did not start\n' >&2
    exit 1
fi
"$@"
