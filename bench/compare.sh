#!/usr/bin/env bash
# Runs each pair of programs in bench/programs/ (NAME.qel and NAME.lua: the
# same algorithm, the same printed result) with qel and Lua, checks that
# both print the same "result ..." lines, and prints the median time and
# peak memory of each, the ratio qel / Lua and their geometric mean. Time is
# the wall clock of the whole process, the runs of qel and Lua taken in turns
# so that other load falls on both alike; CLOCK=cpu takes user + system time.
# Builds nothing. Installs lua5.4 and luajit from Debian's packages when
# they are asked for and missing.
#
#   bench/compare.sh QEL LUA [LUAJIT]      e.g. build/qel lua5.4 luajit
#   RUNS=7 bench/compare.sh ...            runs per program (default 5)
#   ONLY="fib loop" bench/compare.sh ...   a subset of the programs
# LuaJIT runs with its compiler off (-joff), as an interpreter.
set -euo pipefail

if [[ $# -lt 2 || $# -gt 3 ]]; then
    echo "usage: $0 QEL LUA [LUAJIT]" >&2
    exit 2
fi
qel=$1 lua=$2 luajit=${3:-}
runs=${RUNS:-5}
programs="$(cd "$(dirname "$0")" && pwd)/programs"

ensure() {  # ensure COMMAND PACKAGE
    command -v "$1" > /dev/null && return
    if [[ "$1" != */* ]] && command -v apt-get > /dev/null; then
        echo "installing $2 ..." >&2
        apt-get install -y -qq "$2" > /dev/null 2>&1 ||
            { apt-get update -qq > /dev/null 2>&1 && apt-get install -y -qq "$2" > /dev/null 2>&1; } || true
    fi
    command -v "$1" > /dev/null || { echo "$0: cannot run $1" >&2; exit 2; }
}
ensure "$qel" qel
ensure "$lua" lua5.4
[[ -n "$luajit" ]] && ensure "$luajit" luajit

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# run NAME COMMAND...: runs once; appends microseconds and peak KiB to
# $scratch/NAME.times and .rss, keeps the result lines in $scratch/NAME.out.
run() {
    local name=$1; shift
    local start end
    start=$(date +%s%N)
    /usr/bin/time -f '%U %S %M' -o "$scratch/usage" "$@" > "$scratch/output" 2>&1 || true
    end=$(date +%s%N)
    if [[ "${CLOCK:-wall}" == cpu ]]; then
        tail -n 1 "$scratch/usage" | awk '{ printf "%d\n", ($1 + $2) * 1e6 }' >> "$scratch/$name.times"
    else
        echo "$(( (end - start) / 1000 ))" >> "$scratch/$name.times"
    fi
    tail -n 1 "$scratch/usage" | awk '{ print $3 }' >> "$scratch/$name.rss"
    grep -o 'result .*' "$scratch/output" | tr -d '\r' > "$scratch/$name.out" || true
}

median() {  # of the numbers in a file, one a line
    sort -n "$1" | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

header="program      qel s    lua s  qel/lua   qel MiB  lua MiB"
[[ -n "$luajit" ]] && header+="  luajit s  qel/jit"
echo "$header"
mismatch=0
ratios=()
jitRatios=()
for source in "$programs"/*.qel; do
    name=$(basename "$source" .qel)
    [[ "$name" == extern ]] && continue
    [[ -n "${ONLY:-}" && " $ONLY " != *" $name "* ]] && continue
    [[ -f "$programs/$name.lua" ]] || continue
    rm -f "$scratch"/*.times "$scratch"/*.rss
    for ((i = 0; i < runs; ++i)); do
        run qel "$qel" --prelude-dir "$programs/" "$source"
        run lua "$lua" "$programs/$name.lua"
        [[ -n "$luajit" ]] && run jit "$luajit" -joff "$programs/$name.lua"
    done
    if ! cmp -s "$scratch/qel.out" "$scratch/lua.out" || [[ ! -s "$scratch/qel.out" ]]; then
        echo "$name: results differ: qel '$(cat "$scratch/qel.out")', lua '$(cat "$scratch/lua.out")'" >&2
        mismatch=1
        continue
    fi
    q=$(median "$scratch/qel.times") l=$(median "$scratch/lua.times")
    ratio=$(awk -v q="$q" -v l="$l" 'BEGIN { printf "%.2f", q / l }')
    ratios+=("$ratio")
    line=$(awk -v n="$name" -v q="$q" -v l="$l" -v r="$ratio" \
        -v qm="$(median "$scratch/qel.rss")" -v lm="$(median "$scratch/lua.rss")" \
        'BEGIN { printf "%-10s %7.3f  %7.3f  %7s  %8.1f %8.1f", n, q / 1e6, l / 1e6, r, qm / 1024, lm / 1024 }')
    if [[ -n "$luajit" ]]; then
        if cmp -s "$scratch/qel.out" "$scratch/jit.out"; then
            j=$(median "$scratch/jit.times")
            jr=$(awk -v q="$q" -v j="$j" 'BEGIN { printf "%.2f", q / j }')
            jitRatios+=("$jr")
            line+=$(awk -v j="$j" -v r="$jr" 'BEGIN { printf "  %8.3f  %7s", j / 1e6, r }')
        else
            line+="         -        -"
        fi
    fi
    echo "$line"
done

geomean() { printf '%s\n' "$@" | awk '{ s += log($1) } END { if (NR) printf "%.2f", exp(s / NR) }'; }
summary="geometric mean qel/lua: $(geomean "${ratios[@]}") over ${#ratios[@]} programs, $runs runs each"
[[ ${#jitRatios[@]} -gt 0 ]] && summary+="; qel/luajit -joff: $(geomean "${jitRatios[@]}") over ${#jitRatios[@]}"
echo "$summary"
exit "$mismatch"
