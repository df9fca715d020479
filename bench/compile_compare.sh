#!/usr/bin/env bash
# Compile speed of qel against Lua 5.4's own compiler on the same programs,
# written once in QEL and once in Lua. Builds nothing.
#
#   bench/compile_compare.sh QEL [LUAC]     e.g. build/qel luac5.4
#
# Environment: RUNS (default 5) runs of each program and compiler, LINES
# (default 1000000) lines of the statement program. Prints the median wall
# time of each side, the ratio qel/luac (below 1: qel is faster) and qel's
# lines per second.
set -euo pipefail

QEL=${1:?usage: compile_compare.sh QEL [LUAC]}
LUAC=${2:-luac5.4}
RUNS=${RUNS:-5}
LINES=${LINES:-1000000}

if ! command -v "$LUAC" > /dev/null; then
  echo "installing lua5.4 from Debian" >&2
  apt-get install -y lua5.4 > /dev/null || { apt-get update > /dev/null && apt-get install -y lua5.4 > /dev/null; }
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Plain statements: assignments and expressions, four variables.
gen_statements() {
  awk -v n="$LINES" -v lang="$1" 'BEGIN {
    if (lang == "qel") { print "VAR a, b, c, d : INTEGER;"; print "BEGIN"; set = " := "; end = ";" }
    else { print "local a, b, c, d = 0, 0, 0, 0"; set = " = "; end = "" }
    for (i = 0; i < n - 3; i++) {
      k = i % 4
      if (k == 0) print "a" set "b + c * 3 - (d - " i % 97 ")" end
      else if (k == 1) print "b" set "a * 2 + 7" end
      else if (k == 2) print "c" set "c - b / 5 + a" end
      else print "d" set "(a + b) * (c - d) + 1" end
    }
    if (lang == "qel") { print "a := 0"; print "END." } else print "a = 0"
  }'
}

# Many names in one block, each declared and then used. Lua allows 200
# locals per function, so its side uses globals of the same names.
gen_declarations() {
  awk -v n="$((LINES / 10))" -v lang="$1" 'BEGIN {
    if (lang == "qel") {
      print "VAR"
      for (i = 0; i < n; i++) print "  v" i " : INTEGER;"
      print "BEGIN"
      for (i = 0; i < n; i++) print "  v" i " := v" (n - 1 - i) " + 1;"
      print "  v0 := 0"
      print "END."
    } else {
      for (i = 0; i < n; i++) print "v" i " = 0"
      for (i = 0; i < n; i++) print "v" i " = v" (n - 1 - i) " + 1"
    }
  }'
}

# Nesting as deep as Lua's parser allows (about 200 levels of syntax in all):
# IFs 60 deep around a line with 60 parentheses, repeated.
gen_nesting() {
  awk -v n="$((LINES / 10))" -v lang="$1" 'BEGIN {
    depth = 60
    opening = ""; closing = ""
    for (i = 0; i < depth; i++) { opening = opening "("; closing = closing ")" }
    if (lang == "qel") { print "VAR a : INTEGER;"; print "BEGIN" } else print "local a = 0"
    for (r = 0; r < n / (2 * depth + 1); r++) {
      for (i = 0; i < depth; i++) print (lang == "qel" ? "IF a < " i " THEN" : "if a < " i " then")
      if (lang == "qel") print "a := " opening "a + 1" closing
      else print "a = " opening "a + 1" closing
      for (i = 0; i < depth; i++) print (lang == "qel" ? "END;" : "end")
    }
    if (lang == "qel") { print "a := 0"; print "END." } else print "a = 0"
  }'
}

now() { date +%s%N; }

# Median of the arguments, in nanoseconds.
median() { printf '%s\n' "$@" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# Runs a command RUNS times, alternating with the other side by the caller;
# prints one time in nanoseconds.
time_once() {
  local start end
  start=$(now)
  "$@" > /dev/null 2>&1 || { echo "failed: $*" >&2; exit 1; }
  end=$(now)
  echo $((end - start))
}

printf '%-14s %9s %11s %11s %8s %14s\n' program lines "qel s" "luac s" ratio "qel lines/s"
for program in statements declarations nesting; do
  "gen_$program" qel > "$work/$program.qel"
  "gen_$program" lua > "$work/$program.lua"
  "$QEL" --compile-only --quiet --prelude-dir "$work" "$work/$program.qel" > /dev/null ||
    { echo "qel does not compile the $program program" >&2; exit 1; }
  "$LUAC" -p "$work/$program.lua" || { echo "luac does not compile the $program program" >&2; exit 1; }
  qel_times=()
  lua_times=()
  for ((run = 0; run < RUNS; run++)); do
    qel_times+=("$(time_once "$QEL" --compile-only --quiet --prelude-dir "$work" "$work/$program.qel")")
    lua_times+=("$(time_once "$LUAC" -p "$work/$program.lua")")
  done
  qel_ns=$(median "${qel_times[@]}")
  lua_ns=$(median "${lua_times[@]}")
  lines=$(wc -l < "$work/$program.qel")
  awk -v p="$program" -v l="$lines" -v q="$qel_ns" -v u="$lua_ns" 'BEGIN {
    printf "%-14s %9d %11.3f %11.3f %8.2f %14.0f\n", p, l, q / 1e9, u / 1e9, q / u, l / (q / 1e9)
  }'
done
