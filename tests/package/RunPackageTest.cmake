# Installs the build into a fresh prefix, builds tests/package against it with find_package(zcmod), runs it.
file(REMOVE_RECURSE ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -Dzcmod_DIR=${WORK_DIR}/prefix/lib/cmake/zcmod
    -DZCMOD_README=${SOURCE_DIR}/../../README.md)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${EMULATOR} ${WORK_DIR}/build/consumer.exe)
message(STATUS "${last_output}")
if(NOT last_output MATCHES "face=1 scale=1 legacy=1 skin=1")
  message(FATAL_ERROR "unexpected output: ${last_output}")
endif()
