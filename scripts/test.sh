#!/usr/bin/env bash
# Builds everything and runs every test: the DLL's tests under Wine (one Xvfb, one warm wineserver), the
# portable core's tests natively with sanitizers, and each fuzzer for a bounded time.
# Exits non-zero on any failure.
#   ZCMOD_FUZZ_SECONDS  seconds per fuzzer (default 20; 0 skips the timed runs)
#   ZCMOD_CTEST_ARGS    extra arguments for ctest (e.g. "-R Resources")
set -uo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/env.sh"
cd "$ZCMOD_ROOT"

"$here/bootstrap.sh" || exit 1

status=0
step() { printf '\n== %s\n' "$*"; }

step "build: Windows x64 (mingw)"
cmake --preset mingw >/dev/null || exit 1
cmake --build --preset mingw || exit 1

step "build: portable core (native, sanitizers, fuzzers)"
cmake --preset native >/dev/null || exit 1
cmake --build --preset native || exit 1

step "tests under Wine"
export WINEPREFIX="$ZCMOD_WINE_TEST" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# The server and a first process start before ctest, or Wine's helper processes inherit ctest's pipe.
# The tests run one at a time: they share the prefix's registry.
xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
  wineserver -p
  wine cmd /c exit </dev/null >/dev/null 2>&1
  ctest --preset mingw '"${ZCMOD_CTEST_ARGS:-}"'
  rc=$?
  wineserver -k; wineserver -w
  exit $rc' || status=1

step "native tests"
ctest --preset native -j2 ${ZCMOD_CTEST_ARGS:-} || status=1

seconds=${ZCMOD_FUZZ_SECONDS:-20}
if [ "$seconds" -gt 0 ]; then
  step "fuzzers, ${seconds} s each"
  for fuzzer in build/native/*_fuzzer; do
    [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer" _fuzzer)
    work=$(mktemp -d)
    # New inputs go to a scratch folder; the committed seeds are read, not changed.
    if "$fuzzer" -max_total_time="$seconds" -print_final_stats=0 "$work" "fuzz/corpus/$name" \
         >"$work.log" 2>&1; then
      echo "fuzz $name: $(grep -E '^Done [0-9]+ runs' "$work.log" | tail -n 1)"
    else
      echo "fuzz $name: FAILED"; tail -n 40 "$work.log"; status=1
    fi
    rm -rf "$work" "$work.log"
  done
fi

[ $status = 0 ] && step "all tests passed" || step "FAILURES"
exit $status
