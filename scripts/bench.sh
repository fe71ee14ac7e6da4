#!/usr/bin/env bash
# Builds the benchmarks and runs them once under Wine, printing one table of ratios.
#   ZCMOD_BENCH_BUILD   build folder (default build/bench, configured Release)
#   ZCMOD_BENCH_PREFIX  Wine prefix (default a copy of the base prefix in the cache, made once)
#   ZCMOD_BENCH_SECONDS measuring time per case and side (default 0.4)
#   ZCMOD_BENCH_ONLY    run only the cases whose key contains this text (e.g. "recipient")
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/env.sh"
cd "$ZCMOD_ROOT"

build=${ZCMOD_BENCH_BUILD:-build/bench}
prefix=${ZCMOD_BENCH_PREFIX:-$ZCMOD_CACHE/wine-bench}
if [ ! -f "$build/build.ninja" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw64.cmake \
    -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF >/dev/null
fi
# The recipient cases search a stand-in phone: the service, its controller and the suite's resource modules
# go beside the program.
cmake --build "$build" -j2 --target zcmod_bench zcmod_service_standins phonectl dkhl64 zcmod_resources >/dev/null
[ -d "$prefix" ] || cp -a "$ZCMOD_WINE_BASE" "$prefix"

# The animated GIF input: 24 frames of 320 x 240, full-frame images with moving shapes, by ImageMagick.
inputs="$build/bench-inputs"
mkdir -p "$inputs"
if [ ! -f "$inputs/anim.gif" ]; then
  args=()
  for i in $(seq 0 23); do
    args+=(\( -size 320x240 gradient:navy-orange -fill white -draw "circle $((40 + i * 10)),120 $((60 + i * 10)),120"
           -fill black -draw "rectangle 10,$((i * 8)) 60,$((i * 8 + 30))" \))
  done
  /usr/bin/convert -delay 5 -loop 0 "${args[@]}" "$inputs/anim.gif"
fi
gif_win="Z:$(realpath "$inputs/anim.gif" | tr / '\\')"

export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
echo "machine: $(nproc) cores, $(awk '/model name/ {sub(/.*: /, ""); print; exit}' /proc/cpuinfo), $(wine --version 2>/dev/null)"
xvfb-run -a -s "-screen 0 1280x1024x24" sh -c '
  wineserver -p
  wine cmd /c exit </dev/null >/dev/null 2>&1
  wine "$0" --gif "$1" --seconds "$2" ${3:+--only "$3"}
  rc=$?
  wineserver -k; wineserver -w
  exit $rc' "$build/bin/zcmod_bench.exe" "$gif_win" "${ZCMOD_BENCH_SECONDS:-0.4}" "${ZCMOD_BENCH_ONLY:-}"
