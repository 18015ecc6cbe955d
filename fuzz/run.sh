#!/usr/bin/env bash
# Builds the `fuzz` preset and runs every harness for a bounded time, each on
# a scratch copy of its seeds in fuzz/corpus/<harness>/ (the seeds themselves
# stay as committed) and with fuzz/<harness>.dict where there is one. A crash,
# a sanitizer report, a leak, a timeout or a broken rule fails the run; the
# input that caused it is kept under build/fuzz/findings/<harness>/ and named
# at the end, with the command that replays it.
#
#   fuzz/run.sh                      every harness, FUZZ_SECONDS (default 7) each
#   fuzz/run.sh layout text_rules    only those
#   FUZZ_SECONDS=600 fuzz/run.sh json_project
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${FUZZ_SECONDS:-7}
# The database harness writes a file per input: memory is faster than disk.
if [ -z "${TMPDIR:-}" ] && [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
test -f build/fuzz/build.ninja || cmake --preset fuzz >/dev/null
cmake --build --preset fuzz >/dev/null

if [ $# -gt 0 ]; then
  harnesses=("$@")
else
  harnesses=()
  for dir in fuzz/corpus/*/; do harnesses+=("$(basename "$dir")"); done
fi

findings=()
for harness in "${harnesses[@]}"; do
  program=build/fuzz/bin/fuzz_$harness
  scratch=build/fuzz/scratch/$harness
  kept=build/fuzz/findings/$harness
  log=build/fuzz/scratch/$harness.log
  rm -rf "$scratch"
  mkdir -p "$scratch" "$kept"
  options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$kept/")
  if [ -f "fuzz/$harness.dict" ]; then options+=(-dict="fuzz/$harness.dict"); fi
  if "$program" "${options[@]}" "$scratch" "fuzz/corpus/$harness" >"$log" 2>&1; then
    echo "fuzz: $harness: $(grep -o 'Done [0-9]* runs in [0-9]* second(s)' "$log" || echo done)"
    continue
  fi
  input=$(sed -n 's/.*Test unit written to \(.*\)$/\1/p' "$log" | tail -n 1)
  grep -m 1 -B 2 -A 25 -E '==ERROR|runtime error|rule broken|terminate called|deadly signal|timeout|out-of-memory' "$log" || tail -n 30 "$log"
  echo "fuzz: $harness: FAILED on input ${input:-(none kept, see $log)}"
  findings+=("$harness: ${input:-$log}   replay: $program ${input:-}")
done

[ ${#findings[@]} -eq 0 ] && exit 0
echo
echo "fuzz: ${#findings[@]} harness(es) failed; the inputs that caused it:"
printf '  %s\n' "${findings[@]}"
exit 1
