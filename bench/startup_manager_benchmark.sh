#!/bin/bash
# What the startup manager's construction adds to start-up: a process of its own each time.
# usage: startup_manager_benchmark.sh BUILD_FOLDER [REPETITIONS]
set -euo pipefail

build=${1:?which build folder?}
repetitions=${2:-9}

for _ in $(seq "$repetitions"); do
    "$build/startup_manager_benchmark"
done | sort -n | awk '
    { total[NR] = $1; clip[NR] = $2 }
    END {
        middle = int((NR + 1) / 2)
        printf "construction: median %.1f ms (%.1f to %.1f), of it the clip %.1f ms\n",
            total[middle], total[1], total[NR], clip[middle]
    }'
"$(dirname "$0")/startup_benchmark.sh" "$build" "$repetitions" | grep -A2 'later'
