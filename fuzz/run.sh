#!/usr/bin/env bash
# Builds the fuzz targets with clang under ASan and UBSan in build-fuzz/ and
# runs a campaign of SECONDS (default 600) for each harness named (default:
# all), one after the other on one core. New inputs go to
# build-fuzz/corpus/HARNESS, seeded by the kept ones in fuzz/corpus/HARNESS.
# Findings land in build-fuzz/findings/HARNESS; once fixed, copy them into
# fuzz/corpus/HARNESS. Prints the executions of each harness and the total;
# fails if any harness found something.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
shift || true
harnesses=("$@")
[ ${#harnesses[@]} -gt 0 ] || harnesses=(compile run edit)
for harness in "${harnesses[@]}"; do
  case $harness in
    compile | run | edit) ;;
    *) echo "unknown harness '$harness' (compile, run, edit)" >&2; exit 2 ;;
  esac
done

cmake -S . -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQELKERN_FUZZ=ON -DQELKERN_SANITIZE=ON -DQELKERN_TESTS=OFF -DQELKERN_QT=OFF > /dev/null
targets=()
for harness in "${harnesses[@]}"; do targets+=(--target "qel_${harness}_fuzzer"); done
cmake --build build-fuzz "${targets[@]}" -j2

total=0
failed=0
summary=""
for harness in "${harnesses[@]}"; do
  corpus=build-fuzz/corpus/$harness
  findings=build-fuzz/findings/$harness
  log=build-fuzz/fuzz-$harness.log
  mkdir -p "$corpus" "$findings"
  echo "== $harness: $seconds s (log $log) =="
  status=0
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 ASAN_OPTIONS=detect_leaks=1 \
    "build-fuzz/fuzz/qel_${harness}_fuzzer" "$corpus" "fuzz/corpus/$harness" \
    -dict=fuzz/qel.dict -max_total_time="$seconds" -max_len=4096 -timeout=10 -rss_limit_mb=4096 \
    -artifact_prefix="$findings/" -print_final_stats=1 > "$log" 2>&1 || status=$?
  executed=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  executed=${executed:-0}
  total=$((total + executed))
  if [ "$status" -ne 0 ]; then
    failed=1
    summary+="$harness: $executed executions, FINDING (exit $status, see $log and $findings)"$'\n'
  else
    summary+="$harness: $executed executions, no finding"$'\n'
  fi
done
printf '%s' "$summary"
echo "total: $total executions"
exit $failed
