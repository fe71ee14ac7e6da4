#!/usr/bin/env bash
# Long fuzzing runs: scripts/fuzz.sh MINUTES [FUZZER...]
# Builds the native fuzzers (build/native, clang with ASan and UBSan) and runs each for MINUTES, growing a
# working corpus under build/native/fuzz-work/<name> from the committed seeds. A crash input is copied into
# fuzz/corpus/<name>/ as crash-<hash>, where the corpus test (ctest -R fuzz.<name>.corpus) replays it from
# then on; fix the fault and commit the input with the fix. Exits non-zero if any fuzzer crashed.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/.." && pwd)
minutes=${1:?usage: scripts/fuzz.sh MINUTES [FUZZER...]}
shift
cd "$root"
[ -f build/native/build.ninja ] || cmake --preset native >/dev/null
cmake --build --preset native >/dev/null
fuzzers=("$@")
if [ ${#fuzzers[@]} -eq 0 ]; then
  for source in fuzz/*_fuzzer.cpp; do fuzzers+=("$(basename "$source" _fuzzer.cpp)"); done
fi
failed=0
for name in "${fuzzers[@]}"; do
  work="build/native/fuzz-work/$name"
  artifacts="build/native/fuzz-artifacts/$name"
  mkdir -p "$work" "$artifacts"
  echo "== $name: $minutes minute(s)"
  if ! "build/native/${name}_fuzzer" -max_total_time=$((minutes * 60)) -print_final_stats=1 \
      -artifact_prefix="$artifacts/" "$work" "fuzz/corpus/$name" 2>"$work.log"; then
    failed=1
    for crash in "$artifacts"/crash-* "$artifacts"/leak-* "$artifacts"/timeout-*; do
      [ -f "$crash" ] || continue
      cp "$crash" "fuzz/corpus/$name/$(basename "$crash")"
      echo "   kept fuzz/corpus/$name/$(basename "$crash") (replayed by ctest -R fuzz.$name.corpus)"
    done
    tail -n 20 "$work.log"
  fi
  grep -E 'stat::number_of_executed_units' "$work.log" | sed "s/^/   /" || true
done
exit $failed
