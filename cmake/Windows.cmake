# The cross build: zcmod.dll, its resource modules, the stand-ins, the gallery, the tests and the benchmarks.
enable_language(RC)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include(cmake/ResourceModules.cmake)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(ZCMOD_RUNTIME_DIR ${CMAKE_BINARY_DIR}/bin)

add_compile_definitions(UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)

# --- Dependencies: static libpng and zlib, so that the DLL needs no DLL of theirs ---------------------------------
find_path(PNG_INCLUDE_DIR png.h REQUIRED)
find_library(PNG_STATIC_LIBRARY NAMES libpng16.a libpng.a REQUIRED)
find_library(ZLIB_STATIC_LIBRARY NAMES libz.a REQUIRED)
add_library(zcmod_png INTERFACE)
target_include_directories(zcmod_png INTERFACE ${PNG_INCLUDE_DIR})
target_link_libraries(zcmod_png INTERFACE ${PNG_STATIC_LIBRARY} ${ZLIB_STATIC_LIBRARY})

# --- Version -------------------------------------------------------------------------------------------------
set(ZCMOD_VERSION_BUILD 0 CACHE STRING "Build number in the version resources")
configure_file(cmake/zcmod_version.h.in ${CMAKE_BINARY_DIR}/generated/zcmod_version.h @ONLY)

# --- The library ---------------------------------------------------------------------------------------------
file(GLOB ZCMOD_SOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/*/*.cpp)
list(FILTER ZCMOD_SOURCES EXCLUDE REGEX "/src/core/")  # the shared core is built once, in zcmod_core
add_library(zcmod_core OBJECT ${ZCMOD_CORE_SOURCES})
target_include_directories(zcmod_core PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(zcmod_core PRIVATE zcmod_png)

add_library(zcmod SHARED ${ZCMOD_SOURCES} $<TARGET_OBJECTS:zcmod_core> src/zcmod.rc)
add_library(zcmod::zcmod ALIAS zcmod)
target_compile_definitions(zcmod PRIVATE ZCMOD_BUILDING)
target_include_directories(zcmod
  PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
  PRIVATE ${PROJECT_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
target_link_libraries(zcmod
  PRIVATE zcmod_png
  PUBLIC user32 gdi32)
target_link_libraries(zcmod PRIVATE
  msimg32 comctl32 comdlg32 ole32 oleaut32 uuid shell32 shlwapi version advapi32 gdiplus windowscodecs)
# -static takes libgcc, libstdc++ and winpthread into the DLL: it imports only system DLLs.
target_link_options(zcmod PRIVATE -static -static-libgcc -static-libstdc++)
set_target_properties(zcmod PROPERTIES PREFIX "" IMPORT_PREFIX "" IMPORT_SUFFIX ".lib")
set_source_files_properties(src/zcmod.rc PROPERTIES
  INCLUDE_DIRECTORIES "${PROJECT_SOURCE_DIR}/include;${CMAKE_BINARY_DIR}/generated")

# --- Resource modules: languages and themes ----------------------------------------------------------------
zcmod_font_family("Zelvo Sans Wide" ${CMAKE_BINARY_DIR}/fonts ZCMOD_FONTS)
zcmod_resource_module(zcmod_lang_eng lang/ZCMOD_eng.rc ${ZCMOD_RUNTIME_DIR}/Lang/ZCMOD_eng.zlr)
zcmod_resource_module(zcmod_lang_heb lang/ZCMOD_heb.rc ${ZCMOD_RUNTIME_DIR}/Lang/ZCMOD_heb.zlr)
zcmod_theme_art(Default ${CMAKE_BINARY_DIR}/art/Default ZCMOD_ART_DEFAULT)
zcmod_theme_art(Graphite ${CMAKE_BINARY_DIR}/art/Graphite ZCMOD_ART_GRAPHITE)
zcmod_resource_module(zcmod_theme_default themes/Default/ZCMOD_Default.rc
  ${ZCMOD_RUNTIME_DIR}/Resource/ZCMOD_Default.zgr DEPENDS ${ZCMOD_FONTS} ${ZCMOD_ART_DEFAULT}
  INCLUDES ${CMAKE_BINARY_DIR}/art/Default)
zcmod_resource_module(zcmod_theme_graphite themes/Graphite/ZCMOD_Graphite.rc
  ${ZCMOD_RUNTIME_DIR}/Resource/ZCMOD_Graphite.zgr DEPENDS ${ZCMOD_FONTS} ${ZCMOD_ART_GRAPHITE}
  INCLUDES ${CMAKE_BINARY_DIR}/art/Graphite)
add_custom_target(zcmod_resources ALL DEPENDS
  zcmod_lang_eng zcmod_lang_heb zcmod_theme_default zcmod_theme_graphite)
add_dependencies(zcmod zcmod_resources)

# --- Stand-ins for the closed parts of the user's machine (test and demo equipment, never linked in) --------
add_subdirectory(standins)

# --- Install and package ------------------------------------------------------------------------------------
install(TARGETS zcmod EXPORT zcmodTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zcmod DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${ZCMOD_RUNTIME_DIR}/Lang/ZCMOD_eng.zlr ${ZCMOD_RUNTIME_DIR}/Lang/ZCMOD_heb.zlr
  DESTINATION ${CMAKE_INSTALL_BINDIR}/Lang)
install(FILES ${ZCMOD_RUNTIME_DIR}/Resource/ZCMOD_Default.zgr ${ZCMOD_RUNTIME_DIR}/Resource/ZCMOD_Graphite.zgr
  DESTINATION ${CMAKE_INSTALL_BINDIR}/Resource)
install(EXPORT zcmodTargets NAMESPACE zcmod:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zcmod)
configure_package_config_file(cmake/zcmodConfig.cmake.in ${CMAKE_BINARY_DIR}/zcmodConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zcmod)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/zcmodConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/zcmodConfig.cmake ${CMAKE_BINARY_DIR}/zcmodConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/zcmod)

# --- Tests, gallery, benchmarks -------------------------------------------------------------------------------
if(BUILD_TESTING)
  add_subdirectory(tests)
endif()
add_subdirectory(examples/gallery)
if(EXISTS ${PROJECT_SOURCE_DIR}/bench/CMakeLists.txt)
  add_subdirectory(bench)
endif()
