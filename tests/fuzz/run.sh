#!/bin/bash
# run.sh <kels-fuzz> <seconds> <directory> [libFuzzer's options]: runs every target for so long, two at a time, from the
# kept inputs on. What is found new stays in the directory, and so does an input that fails. Compared operands are no
# hints here: most are addresses, others in every run.
set -euo pipefail

program=$1 seconds=$2 directory=$3
shift 3
kept=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/corpus

fuzz() {
    local target=$1 found=$directory/$1 log=$directory/$1.log
    shift
    mkdir -p "$found"
    if "$program" "$target" -max_total_time="$seconds" -max_len=100 -len_control=0 -use_cmp=0 -timeout=60 \
        -print_final_stats=1 -artifact_prefix="$directory/$target-" "$@" "$found" "$kept/$target" >"$log" 2>&1; then
        local runs coverage
        runs=$(sed -n 's/stat::number_of_executed_units: *//p' "$log")
        coverage=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)
        printf '%-12s %10d runs, %6d edges reached\n' "$target" "$runs" "${coverage#cov: }"
    else
        tail -n 60 "$log"
        printf '%-12s failed\n' "$target"
        return 1
    fi
}
export -f fuzz
export program seconds directory kept

"$program" | xargs -P 2 -I{} bash -c 'fuzz "$@"' fuzz {} "$@"
