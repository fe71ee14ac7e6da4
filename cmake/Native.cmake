# The native build of the portable core: unit tests with AddressSanitizer and UBSan, and libFuzzer fuzzers.
option(ZCMOD_SANITIZE "Build the core and its tests with AddressSanitizer and UBSan" OFF)
option(ZCMOD_FUZZERS "Build the libFuzzer fuzzers (clang only)" OFF)

find_package(PNG REQUIRED)

set(ZCMOD_SANITIZER_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)

add_library(zcmod_core STATIC ${ZCMOD_CORE_SOURCES})
target_include_directories(zcmod_core PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(zcmod_core PUBLIC PNG::PNG)
if(ZCMOD_SANITIZE)
  target_compile_options(zcmod_core PUBLIC ${ZCMOD_SANITIZER_FLAGS})
  target_link_options(zcmod_core PUBLIC ${ZCMOD_SANITIZER_FLAGS})
endif()

# The stand-in service's portable part (vCards, search patterns, the contact generator): equipment, not library.
set(ZCMOD_STANDIN_CORE_SOURCES ${PROJECT_SOURCE_DIR}/standins/service/core/VCard.cpp
  ${PROJECT_SOURCE_DIR}/standins/service/core/Search.cpp ${PROJECT_SOURCE_DIR}/standins/service/core/Generator.cpp)
add_library(zcmod_standin_core STATIC ${ZCMOD_STANDIN_CORE_SOURCES})
target_include_directories(zcmod_standin_core PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/standins)
if(ZCMOD_SANITIZE)
  target_compile_options(zcmod_standin_core PUBLIC ${ZCMOD_SANITIZER_FLAGS})
  target_link_options(zcmod_standin_core PUBLIC ${ZCMOD_SANITIZER_FLAGS})
endif()

if(BUILD_TESTING)
  find_package(GTest REQUIRED)
  include(GoogleTest)
  file(GLOB ZCMOD_NATIVE_TESTS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/native/*.cpp)
  add_executable(zcmod_core_tests ${ZCMOD_NATIVE_TESTS})
  target_link_libraries(zcmod_core_tests PRIVATE zcmod_core zcmod_standin_core GTest::gtest GTest::gtest_main)
  # libpng's PNG suite, copied out of the libpng source tree by scripts/bootstrap.sh.
  if(DEFINED ENV{ZCMOD_CACHE})
    set(ZCMOD_PNGSUITE_DIR "$ENV{ZCMOD_CACHE}/mingw-deps/share/pngsuite")
  else()
    set(ZCMOD_PNGSUITE_DIR "$ENV{HOME}/.cache/zcmod/mingw-deps/share/pngsuite")
  endif()
  target_compile_definitions(zcmod_core_tests PRIVATE
    ZCMOD_SOURCE_DIR="${PROJECT_SOURCE_DIR}" ZCMOD_FUZZ_DIR="${PROJECT_SOURCE_DIR}/fuzz"
    ZCMOD_PNGSUITE_DIR="${ZCMOD_PNGSUITE_DIR}")
  gtest_discover_tests(zcmod_core_tests TEST_PREFIX "native." DISCOVERY_MODE PRE_TEST)
endif()

if(ZCMOD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "The fuzzers need clang (libFuzzer)")
  endif()
  # The core once more, instrumented for coverage-guided fuzzing.
  add_library(zcmod_core_fuzz STATIC ${ZCMOD_CORE_SOURCES})
  target_include_directories(zcmod_core_fuzz PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(zcmod_core_fuzz PUBLIC PNG::PNG)
  target_compile_options(zcmod_core_fuzz PUBLIC -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
  file(GLOB ZCMOD_FUZZERS_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzzer.cpp)
  foreach(source IN LISTS ZCMOD_FUZZERS_SOURCES)
    get_filename_component(name ${source} NAME_WE)
    add_executable(${name} ${source})
    target_link_libraries(${name} PRIVATE zcmod_core_fuzz)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)
    # Every committed seed must pass: the corpus doubles as a regression suite.
    string(REGEX REPLACE "_fuzzer$" "" corpus ${name})
    add_test(NAME fuzz.${corpus}.corpus
      COMMAND ${name} -runs=0 ${PROJECT_SOURCE_DIR}/fuzz/corpus/${corpus})
  endforeach()
  # The vCard reader of the stand-in service lies outside the core.
  target_sources(vcard_fuzzer PRIVATE ${ZCMOD_STANDIN_CORE_SOURCES})
  target_include_directories(vcard_fuzzer PRIVATE ${PROJECT_SOURCE_DIR}/standins)
endif()
