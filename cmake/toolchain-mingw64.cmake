# Cross-compiles for Windows x64 with mingw-w64 (posix threads) and runs what it built under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_triple}-windres)
set(CMAKE_AR ${_triple}-gcc-ar-posix)
set(CMAKE_RANLIB ${_triple}-gcc-ranlib-posix)

# Cross-built dependencies (libpng, GoogleTest) live in a cache outside the source tree.
if(DEFINED ENV{ZCMOD_CACHE})
  set(ZCMOD_CACHE "$ENV{ZCMOD_CACHE}")
else()
  set(ZCMOD_CACHE "$ENV{HOME}/.cache/zcmod")
endif()
set(ZCMOD_DEPS "${ZCMOD_CACHE}/mingw-deps" CACHE PATH "Prefix of the cross-built dependencies")

set(CMAKE_FIND_ROOT_PATH /usr/${_triple} ${ZCMOD_DEPS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run.sh)
