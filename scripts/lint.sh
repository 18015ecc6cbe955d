#!/usr/bin/env bash
# The style checks CI keeps: the sources as .clang-format writes them, and
# src/ clean under the checks of .clang-tidy, read with the compile database
# of the `clang` preset (configured here when it is not yet).
#   scripts/lint.sh           both
#   scripts/lint.sh format    only the format check
#   scripts/lint.sh tidy      only clang-tidy
set -euo pipefail
cd "$(dirname "$0")/.."
what=${1:-all}

if [ "$what" != tidy ]; then
  find src tests bench fuzz -name '*.h' -o -name '*.cpp' | sort | xargs clang-format --dry-run --Werror
  echo "lint: the sources are formatted"
fi
if [ "$what" != format ]; then
  test -f build/clang/compile_commands.json || cmake --preset clang >/dev/null
  run-clang-tidy -quiet -p build/clang -j 2 "$PWD/src/" >build/clang/tidy.log 2>&1 || {
    grep -E -A 3 'warning:|error:' build/clang/tidy.log || cat build/clang/tidy.log
    echo "lint: clang-tidy found the above (whole output in build/clang/tidy.log)"
    exit 1
  }
  echo "lint: src/ passes clang-tidy"
fi
