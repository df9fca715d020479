#!/usr/bin/env bash
# A short fuzz campaign for CI: every harness for SECONDS (default 60) on
# one core, from the kept corpus. Fails on any finding.
set -euo pipefail
cd "$(dirname "$0")/.."
exec fuzz/run.sh "${1:-60}" compile run edit
