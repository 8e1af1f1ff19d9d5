# Installs the build into a scratch prefix, builds examples/consumer against
# it with find_package(VantoRtl), and runs it and an installed tool without
# LD_LIBRARY_PATH.
set(prefix "${BIN}/install-check/prefix")
set(cbuild "${BIN}/install-check/consumer")
file(REMOVE_RECURSE "${BIN}/install-check")
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()
run(${CMAKE_COMMAND} --install "${BUILD}" --prefix "${prefix}")
run(${CMAKE_COMMAND} -S "${SRC}/examples/consumer" -B "${cbuild}" -G Ninja
    "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build "${cbuild}")
run("${cbuild}/consumer")
if(NOT last_output MATCHES "C:\\\\Daten\\\\Texte.vtm not open status 1")
  message(FATAL_ERROR "unexpected consumer output: ${last_output}")
endif()
run(env -u LD_LIBRARY_PATH "${prefix}/bin/vtmc" --help)
run(env -u LD_LIBRARY_PATH "${prefix}/bin/vtmdump" --help)
message(STATUS "installed package works")
