# Shared settings of the project's scripts; sourced, not run.
ZCMOD_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
: "${ZCMOD_CACHE:=${HOME:-/root}/.cache/zcmod}"
ZCMOD_DEPS="$ZCMOD_CACHE/mingw-deps"
ZCMOD_PNG_VERSION=1.6.39-2+deb12u5
ZCMOD_WINE_BASE="$ZCMOD_CACHE/wine-base"
: "${ZCMOD_WINE_TEST:=$ZCMOD_CACHE/wine-test}"
: "${ZCMOD_WINE_DEMO:=$ZCMOD_CACHE/wine-demo}"
export ZCMOD_ROOT ZCMOD_CACHE ZCMOD_DEPS ZCMOD_PNG_VERSION ZCMOD_WINE_BASE ZCMOD_WINE_TEST ZCMOD_WINE_DEMO
