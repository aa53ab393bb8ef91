#!/bin/bash
# Runs the start-up benchmark on a virtual display and with settings of its own.
# usage: startup_benchmark.sh BUILD_FOLDER [REPETITIONS]
set -euo pipefail

build=${1:?which build folder?}
repetitions=${2:-9}

scratch=$(mktemp -d)
xvfb=
trap '[ -z "$xvfb" ] || kill "$xvfb"; wait; rm -rf "$scratch"' EXIT

Xvfb -displayfd 3 -noreset -screen 0 1280x1024x24 3>"$scratch/display" 2>/dev/null &
xvfb=$!
for _ in $(seq 100); do
    [ -s "$scratch/display" ] && break
    sleep 0.1
done
DISPLAY=:$(cat "$scratch/display")
export DISPLAY
unset WAYLAND_DISPLAY QT_QPA_PLATFORM

export HOME=$scratch XDG_RUNTIME_DIR=$scratch
mkdir "$scratch/config"
export XDG_CONFIG_HOME=$scratch/config

for screen in "first launch" "later launches"; do
    "$build/startup_benchmark" "$build/quorvane" "$build/bare_window" "$repetitions" 2>"$scratch/errors" \
        >"$scratch/figures" || { cat "$scratch/errors" >&2; exit 1; }
    # The programs' own console lines are among them.
    sed -n "s/^row\t/row\t$screen: /p" "$scratch/figures"
    mkdir -p "$scratch/config/quorvane"
    printf '[General]\nhardwareChecked=true\n' >"$scratch/config/quorvane/quorvane.ini"
done
