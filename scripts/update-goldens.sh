#!/usr/bin/env bash
# Writes the golden pictures of the pixel tests anew from what the controls show now: the one deliberate way
# a golden changes. Look at every picture it changed (git status tests/golden) before committing it.
#   scripts/update-goldens.sh [REGEX]   only the Wine tests whose names match REGEX
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export ZCMOD_UPDATE_GOLDENS=1 ZCMOD_FUZZ_SECONDS=0
export ZCMOD_CTEST_ARGS="${1:+-R $1}"
"$here/test.sh"
git -C "$here/.." status --short tests/golden
