#!/usr/bin/env bash
# Formats the C++ sources with the committed .clang-format, or with --check
# lists the files that are not formatted and fails. Run through ./kxvtk format,
# so that every machine uses the environment's clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
list=$1; shift
mode=${1:-apply}
[ -s "$list" ] || { echo "format: no files listed" >&2; exit 1; }
if [ "$mode" = "--check" ]; then
  if ! clang-format --dry-run -Werror --files="$list" 2>/tmp/kxvtk-format.$$; then
    grep -o '^[^:]*:[0-9]*:[0-9]*: error' /tmp/kxvtk-format.$$ | cut -d: -f1 | sort -u |
      sed 's/^/not formatted: /' >&2
    rm -f /tmp/kxvtk-format.$$
    echo "format: run ./kxvtk format" >&2
    exit 1
  fi
  rm -f /tmp/kxvtk-format.$$
  echo "format: $(wc -l < "$list") files formatted"
else
  clang-format -i --files="$list"
fi
