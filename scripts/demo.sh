#!/usr/bin/env bash
# Builds ZCMOD and runs its gallery under Wine.
#   scripts/demo.sh                      interactive (needs a display: DISPLAY must be set)
#   scripts/demo.sh --screenshots DIR    headless: one PNG per page, exit 0 when every page passes; without
#                                        the options below it writes every page four times, in DIR/<theme>-ltr
#                                        (English) and DIR/<theme>-rtl (Hebrew) for both themes
# Options: --lang eng|heb (default eng), --theme Default|Graphite (default Default), --rtl.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/env.sh"
cd "$ZCMOD_ROOT"

screenshots="" lang=eng theme=Default rtl="" chosen=""
while [ $# -gt 0 ]; do
  case "$1" in
    --screenshots) screenshots=${2:?--screenshots needs a folder}; shift 2 ;;
    --lang) lang=${2:?}; chosen=1; shift 2 ;;
    --theme) theme=${2:?}; chosen=1; shift 2 ;;
    --rtl) rtl=--rtl; chosen=1; shift ;;
    -h|--help) sed -n '2,8p' "$0"; exit 0 ;;
    *) echo "demo: unknown option $1" >&2; exit 2 ;;
  esac
done
if [ -z "$screenshots" ] && [ -z "${DISPLAY:-}" ]; then
  echo "demo: no display; use --screenshots DIR to run headless" >&2
  exit 2
fi

"$here/bootstrap.sh"
cmake --preset mingw >/dev/null
cmake --build --preset mingw --target gallery zcmod_resources dkhl64
cmake --build --preset mingw --target zcmod_service_standins phonectl

# The runtime folder: the application, the library with its Lang and Resource folders, and the stand-ins
# for the closed libraries of a user's machine.
bin=build/mingw/bin
run=build/mingw/demo
rm -rf "$run"
mkdir -p "$run/Lang" "$run/Resource"
cp "$bin/gallery.exe" "$bin/zcmod.dll" "$bin/DKHL64.dll" "$run/"
cp "$bin/Lang/ZCMOD_eng.zlr" "$bin/Lang/ZCMOD_heb.zlr" "$run/Lang/"
cp "$bin/Resource/ZCMOD_Default.zgr" "$bin/Resource/ZCMOD_Graphite.zgr" "$run/Resource/"
cp -r "$bin/pictures" "$run/pictures"
# The stand-in connectivity service and its controller; the virtual phones live in "phones" beside them.
cp "$bin/standins/service/LinkAPI64.dll" "$bin/standins/service/DAAPI64.dll" \
   "$bin/standins/service/VersitConverter64.dll" "$bin/phonectl.exe" "$run/"
cp standins/samples/contacts.vcf "$run/sample-contacts.vcf"
# The stand-in's shell namespace extension, registered in the session below ("wine regsvr32 /u" removes it):
# the phones of "phones" beside it show up under My Computer in the file dialogs.
cp "$bin/standins/service/PhoneFolders64.dll" "$run/"

# The settings the library reads, for the stand-in settings library's manufacturer "Zelvo".
export WINEPREFIX="$ZCMOD_WINE_DEMO" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
winpath() { printf 'Z:%s' "$(realpath "$1")" | tr '/' '\\'; }
regpath() { winpath "$1" | sed 's/\\/\\\\/g'; }

# Runs the gallery once with the settings of lang, theme and rtl; into the folder $1 when it is given.
run_gallery() {
reg="$run/settings.reg"
cat > "$reg" <<REG
REGEDIT4

[HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Zelvo\\DeskHub]
"Current Language"="$lang"
"Current Resource"="$theme"

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432node\\Zelvo]
"DeskHubBuildNumber"="1.0.42"

[HKEY_CURRENT_USER\\Software\\Zelvo\\DeskHub]
"Theme"="$theme"
REG

# Where the library finds the connectivity service: the stand-ins of the runtime folder.
cat >> "$reg" <<REG

[HKEY_LOCAL_MACHINE\\SOFTWARE\\Desk Link Service\\API]
"DMAPI64"="$(regpath "$run/LinkAPI64.dll")"
"FSAPI64"="$(regpath "$run/LinkAPI64.dll")"
"VCAPI64"="$(regpath "$run/VersitConverter64.dll")"
"CAAPI64"="$(regpath "$run/DAAPI64.dll")"
REG

# Everything runs in one Wine session: the settings, then a sample phone made by the controller (ten
# thousand generated contacts and a small file tree), then the gallery. (A Wine process started without a
# display would leave the session's desktop without one.)
session='
  wine regedit /S "$1" >/dev/null 2>&1
  wine "$2/phonectl.exe" new sample --name "Sample phone" --contacts 10000 --files 12 >/dev/null 2>&1 ||
    { echo "demo: phonectl could not make the sample phone" >&2; exit 1; }
  wine "$2/phonectl.exe" contacts sample "$2/sample-contacts.vcf" --append >/dev/null 2>&1 ||
    { echo "demo: phonectl could not load the sample contacts" >&2; exit 1; }
  wine regsvr32 /s "$2/PhoneFolders64.dll" >/dev/null 2>&1 ||
    { echo "demo: the phone folders could not be registered" >&2; exit 1; }
  reg=$1 run=$2; shift 2
  wine "$run/gallery.exe" "$@"
  rc=$?
  wineserver -w
  exit $rc'

if [ -n "${1:-}" ]; then
  mkdir -p "$1"
  xvfb-run -a -s "-screen 0 1280x1024x24" sh -c "$session" sh "$(winpath "$reg")" "$run" \
    --screenshots "$(winpath "$1")" $rtl
  echo "demo: screenshots in $1"
else
  sh -c "$session" sh "$(winpath "$reg")" "$run" $rtl
fi
}

if [ -n "$screenshots" ] && [ -z "$chosen" ]; then
  # Every page in both themes and both layouts, each layout in its language.
  for theme in Default Graphite; do
    lang=eng rtl="" run_gallery "$screenshots/$theme-ltr"
    lang=heb rtl=--rtl run_gallery "$screenshots/$theme-rtl"
  done
else
  run_gallery "$screenshots"
fi
