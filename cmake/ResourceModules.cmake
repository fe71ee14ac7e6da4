# Resource-only modules (the zlr language and zgr theme files), built from resource scripts by windres.

# zcmod_font_family(<family> <output dir> <out var>)
# Renames the four DejaVu Sans styles to <family>; sets <out var> to the list of font files made.
function(zcmod_font_family family outdir outvar)
  set(dejavu /usr/share/fonts/truetype/dejavu)
  set(styles "" -Bold -Oblique -BoldOblique)
  set(made)
  foreach(style IN LISTS styles)
    set(source DejaVuSans${style}.ttf)
    set(target ZelvoSansWide${style}.ttf)
    add_custom_command(OUTPUT ${outdir}/${target}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${outdir}
      COMMAND /usr/bin/python3 ${PROJECT_SOURCE_DIR}/themes/fonts/rename_font.py
              ${dejavu}/${source} ${outdir}/${target} "${family}"
      DEPENDS ${dejavu}/${source} ${PROJECT_SOURCE_DIR}/themes/fonts/rename_font.py
      COMMENT "Font ${target}" VERBATIM)
    list(APPEND made ${outdir}/${target})
  endforeach()
  set(${outvar} ${made} PARENT_SCOPE)
endfunction()

# zcmod_theme_art(<theme> <output dir> <out var> [FAMILIES <dir>])
# Renders the artwork of <theme> (themes/art: drawing code to SVG, SVG to PNG by rsvg-convert) into
# <output dir> and sets <out var> to the fragment art.rc that lists the pictures by resource id. FAMILIES
# names another folder of drawing modules (an application's own pictures) instead of themes/art/families.
function(zcmod_theme_art theme outdir outvar)
  cmake_parse_arguments(ARG "" "FAMILIES" "" ${ARGN})
  file(GLOB_RECURSE art_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/themes/art/*.py)
  set(families)
  if(ARG_FAMILIES)
    file(GLOB own_sources CONFIGURE_DEPENDS ${ARG_FAMILIES}/*.py)
    list(APPEND art_sources ${own_sources})
    set(families ${ARG_FAMILIES})
  elseif(EXISTS ${PROJECT_SOURCE_DIR}/themes/${theme}/ZCMOD_${theme}.rc)
    # The theme's colour strings are checked against its palette.
    list(APPEND art_sources ${PROJECT_SOURCE_DIR}/themes/${theme}/ZCMOD_${theme}.rc)
  endif()
  add_custom_command(OUTPUT ${outdir}/art.rc
    COMMAND /usr/bin/python3 ${PROJECT_SOURCE_DIR}/themes/art/render.py ${theme} ${outdir} ${families}
    DEPENDS ${art_sources}
    COMMENT "Artwork of the theme ${theme}" VERBATIM)
  set(${outvar} ${outdir}/art.rc PARENT_SCOPE)
endfunction()

# zcmod_resource_module(<target> <script> <output file> [DEPENDS files...] [INCLUDES dirs...])
# Compiles <script> with windres (UTF-8) and links it into a resource-only module with no entry point.
function(zcmod_resource_module target script output)
  cmake_parse_arguments(ARG "" "" "DEPENDS;INCLUDES" ${ARGN})
  if(NOT IS_ABSOLUTE ${script})
    set(script ${CMAKE_CURRENT_SOURCE_DIR}/${script})
  endif()
  get_filename_component(script_dir ${script} DIRECTORY)
  get_filename_component(out_dir ${output} DIRECTORY)
  set(object ${CMAKE_CURRENT_BINARY_DIR}/resmod/${target}.o)
  set(includes
    --include-dir=${script_dir} --include-dir=${PROJECT_SOURCE_DIR}/include
    --include-dir=${PROJECT_SOURCE_DIR}/themes --include-dir=${CMAKE_BINARY_DIR}/generated
    --include-dir=${CMAKE_BINARY_DIR}/fonts)
  foreach(dir IN LISTS ARG_INCLUDES)
    list(APPEND includes --include-dir=${dir})
  endforeach()
  file(GLOB shared_scripts ${PROJECT_SOURCE_DIR}/themes/*.rc)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/resmod ${out_dir}
    COMMAND ${CMAKE_RC_COMPILER} -c 65001 ${includes} -O coff -i ${script} -o ${object}
    COMMAND ${CMAKE_C_COMPILER} -nostdlib -shared -Wl,-e,0 -s ${object} -o ${output}
    DEPENDS ${script} ${shared_scripts} ${PROJECT_SOURCE_DIR}/include/zcmod/ResourceIds.h
            ${CMAKE_BINARY_DIR}/generated/zcmod_version.h ${ARG_DEPENDS}
    COMMENT "Resource module ${output}" VERBATIM)
  add_custom_target(${target} DEPENDS ${output})
endfunction()
