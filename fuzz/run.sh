#!/usr/bin/env bash
# Builds the compile fuzzer with clang under ASan and UBSan in build-fuzz/
# and runs a campaign of SECONDS (default 600) on one core. New inputs go to
# build-fuzz/corpus; the kept ones in fuzz/corpus seed it. Findings land in
# build-fuzz/findings; once fixed, copy them into fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
cmake -S . -B build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DQELKERN_FUZZ=ON -DQELKERN_SANITIZE=ON -DQELKERN_TESTS=OFF -DQELKERN_QT=OFF > /dev/null
cmake --build build-fuzz --target qel_compile_fuzzer -j2
mkdir -p build-fuzz/corpus build-fuzz/findings
UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 ASAN_OPTIONS=detect_leaks=1 \
  build-fuzz/fuzz/qel_compile_fuzzer build-fuzz/corpus fuzz/corpus \
  -dict=fuzz/qel.dict -max_total_time="$seconds" -max_len=4096 -timeout=10 -rss_limit_mb=4096 \
  -artifact_prefix=build-fuzz/findings/ -print_final_stats=1
