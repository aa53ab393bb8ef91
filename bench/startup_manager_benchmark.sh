#!/bin/bash
# How long the startup manager's construction takes, once per process.
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
        printf "construction: %.1f to %.1f ms\n", total[1], total[NR]
        printf "row\tstartup manager: construction\t%.3f\tof it, the clip\t%.3f\tms\n",
            total[middle], clip[middle]
    }'
