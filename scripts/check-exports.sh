#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every function and class declared in the public headers must be exported
# by the shared library, or a host that uses it fails to link.
#   check-exports.sh STATIC_ARCHIVE SHARED_LIBRARY HEADER_DIR
# Lists the symbols that the archive defines but the library hides, and fails
# if one of them is named in a public header as a class or a function.
set -euo pipefail
archive=$1 library=$2 headers=$3

defined() { awk '$2 ~ /^[TDBR]$/ { $1 = ""; $2 = ""; print substr($0, 3) }'; }
hidden=$(comm -23 <(nm -C --defined-only -g "$archive" 2>/dev/null | defined | sort -u) \
                  <(nm -DC --defined-only "$library" | defined | sort -u))
public=$(cat "$headers"/*.h)

missing=0
while IFS= read -r symbol; do
  [ -z "$symbol" ] && continue
  name=${symbol%%(*}      # drop the parameters
  name=${name%%::*}       # the class, or the free function
  case $name in *" "*|qelkern|std|__*|memory_widget) continue ;; esac
  if grep -Eq "(class|struct)[[:space:]]+(QELKERN_API[[:space:]]+)?$name\b[^;]*\{|^[^/]*\b$name[[:space:]]*\(" <<<"$public"; then
    echo "not exported: $symbol"
    missing=1
  fi
done <<<"$hidden"
exit $missing
