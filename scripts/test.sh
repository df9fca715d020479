#!/usr/bin/env bash
# Builds and runs every test twice: a normal build (with the Qt parts when
# Qt 6 is installed), and a build under AddressSanitizer and
# UndefinedBehaviorSanitizer. The normal build is also installed into a
# temporary prefix and packaged (scripts/check-install.sh). The tests whose
# runs start a watch thread run a third time under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc 2>/dev/null || echo 2)

echo "== normal build =="
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build -j"$jobs"
QT_QPA_PLATFORM=offscreen ctest --test-dir build --output-on-failure -j"$jobs"

echo "== install and packages =="
./scripts/check-install.sh build

echo "== sanitizer build =="
cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Debug -DQELKERN_SANITIZE=ON -DQELKERN_QT=OFF > /dev/null
cmake --build build-sanitize -j"$jobs"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --test-dir build-sanitize --output-on-failure -j"$jobs"

echo "== thread sanitizer build (the tests that start threads) =="
cmake -S . -B build-tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQELKERN_TSAN=ON -DQELKERN_QT=OFF \
  -DQELKERN_EXAMPLES=OFF -DQELKERN_BENCHMARKS=OFF > /dev/null
cmake --build build-tsan -j"$jobs" --target test_machine test_pipeline
# Some kernels randomise more address bits than ThreadSanitizer allows.
norandom=()
if setarch "$(uname -m)" -R true 2> /dev/null; then norandom=(setarch "$(uname -m)" -R); fi
export TSAN_OPTIONS=halt_on_error=1
"${norandom[@]}" build-tsan/tests/test_machine --gtest_brief=1 --gtest_filter='RunControl.*'
"${norandom[@]}" build-tsan/tests/test_pipeline --gtest_brief=1 --gtest_filter='FuzzCorpus.Run*'
