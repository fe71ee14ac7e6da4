#!/usr/bin/env bash
# Prepares this machine to build and run ZCMOD: Debian packages, libpng and GoogleTest cross-built for
# mingw-w64, and a ready Wine prefix. Idempotent: a second run with everything in place takes seconds.
#
# Everything that is built lands in a cache outside the clone ($ZCMOD_CACHE, default ~/.cache/zcmod), so a
# fresh clone of the repository reuses it.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/env.sh
. "$here/env.sh"

log() { printf '[bootstrap] %s\n' "$*"; }

# --- 1. Debian packages -----------------------------------------------------------------------------------
packages=(
  g++-mingw-w64-x86-64-posix gcc-mingw-w64-x86-64-posix mingw-w64-tools libz-mingw-w64-dev
  wine wine64 xvfb xauth cmake ninja-build googletest dpkg-dev imagemagick netpbm
  python3-fonttools fonts-dejavu-core fonts-dejavu-extra librsvg2-bin ccache
  clang libclang-rt-14-dev libpng-dev zlib1g-dev libgtest-dev libgmock-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  [ "$(id -u)" = 0 ] || { echo "bootstrap: missing packages (${missing[*]}); run as root" >&2; exit 1; }
  log "installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

mkdir -p "$ZCMOD_CACHE" "$ZCMOD_DEPS"

# --- 2. libpng, static, for mingw ---------------------------------------------------------------------------
# Built from Debian's own source package of bookworm/main, so Debian's security patches are applied.
png_stamp="$ZCMOD_DEPS/.libpng-$ZCMOD_PNG_VERSION"
if [ ! -f "$png_stamp" ]; then
  log "building libpng $ZCMOD_PNG_VERSION for mingw"
  src_list=/etc/apt/sources.list.d/zcmod-deb-src.sources
  if [ -z "$(apt-cache showsrc libpng1.6 2>/dev/null)" ]; then
    [ "$(id -u)" = 0 ] || { echo "bootstrap: need root to enable deb-src" >&2; exit 1; }
    sed 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources > "$src_list"
    apt-get update -qq
  fi
  work="$ZCMOD_CACHE/src"
  rm -rf "$work/libpng"
  mkdir -p "$work/libpng"
  (cd "$work/libpng" && apt-get source --download-only -qq "libpng1.6=$ZCMOD_PNG_VERSION" >/dev/null &&
     dpkg-source -x --no-check ./*.dsc tree >/dev/null)
  cmake -S "$work/libpng/tree" -B "$work/libpng/build" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ZCMOD_ROOT/cmake/toolchain-mingw64.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$ZCMOD_DEPS" -DPNG_SHARED=OFF -DPNG_STATIC=ON -DPNG_TESTS=OFF \
    -DPNG_EXECUTABLES=OFF -DPNG_BUILD_ZLIB=OFF -DZLIB_USE_STATIC_LIBS=ON \
    -DZLIB_LIBRARY=/usr/x86_64-w64-mingw32/lib/libz.a -DZLIB_INCLUDE_DIR=/usr/x86_64-w64-mingw32/include \
    >/dev/null
  cmake --build "$work/libpng/build" >/dev/null
  cmake --install "$work/libpng/build" >/dev/null
  # The PNG test suite of the same source tree: real files that nobody here wrote.
  rm -rf "$ZCMOD_DEPS/share/pngsuite"
  mkdir -p "$ZCMOD_DEPS/share"
  cp -a "$work/libpng/tree/contrib/pngsuite" "$ZCMOD_DEPS/share/pngsuite"
  rm -rf "$work/libpng/build"
  touch "$png_stamp"
fi

# --- 3. GoogleTest and GoogleMock, static, for mingw ------------------------------------------------------------
gtest_stamp="$ZCMOD_DEPS/.googletest"
if [ ! -f "$gtest_stamp" ]; then
  log "building GoogleTest for mingw"
  b="$ZCMOD_CACHE/src/googletest-build"
  rm -rf "$b"
  cmake -S /usr/src/googletest -B "$b" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ZCMOD_ROOT/cmake/toolchain-mingw64.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$ZCMOD_DEPS" -DBUILD_GMOCK=ON -DINSTALL_GTEST=ON -DBUILD_SHARED_LIBS=OFF \
    -Dgtest_force_shared_crt=ON >/dev/null
  cmake --build "$b" >/dev/null
  cmake --install "$b" >/dev/null
  rm -rf "$b"
  touch "$gtest_stamp"
fi

# --- 4. Wine prefixes ---------------------------------------------------------------------------------------
# One base prefix is made with wineboot; the test and demo prefixes are copies of it, so that the tests'
# registry keys and the demo's settings never meet.
make_base_prefix() {
  log "creating the Wine prefix (about 20 s)"
  rm -rf "$ZCMOD_WINE_BASE"
  WINEPREFIX="$ZCMOD_WINE_BASE" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" \
    xvfb-run -a sh -c 'wineboot -i >/dev/null 2>&1; wineserver -w'
  # Without a window manager, destroying a managed top-level window waits 2 s.
  WINEPREFIX="$ZCMOD_WINE_BASE" WINEDEBUG=-all \
    xvfb-run -a sh -c 'wine reg add "HKCU\\Software\\Wine\\X11 Driver" /v Managed /t REG_SZ /d N /f \
      >/dev/null 2>&1; wineserver -w'
  touch "$ZCMOD_WINE_BASE/.zcmod-ready"
}
[ -f "$ZCMOD_WINE_BASE/.zcmod-ready" ] || make_base_prefix
for p in "$ZCMOD_WINE_TEST" "$ZCMOD_WINE_DEMO"; do
  if [ ! -f "$p/.zcmod-ready" ]; then
    rm -rf "$p"
    cp -a "$ZCMOD_WINE_BASE" "$p"
  fi
done
log "ready"
