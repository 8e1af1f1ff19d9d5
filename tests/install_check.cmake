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
# Started elsewhere and without a terminal, it finds the installed system
# library of the locale's language.
file(MAKE_DIRECTORY "${BIN}/install-check/elsewhere")
foreach(case "C;DEU" "de_DE.UTF-8;DEU" "en_US.UTF-8;ENU")
  list(GET case 0 locale)
  list(GET case 1 lang)
  execute_process(COMMAND env -u LD_LIBRARY_PATH -u VANTORTL_MSGDIR LC_ALL=${locale} "${cbuild}/consumer"
                  WORKING_DIRECTORY "${BIN}/install-check/elsewhere" INPUT_FILE /dev/null
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT out MATCHES "C:\\\\Daten\\\\Texte.vtm not open status 1\nsystem messages ${lang}, boxes ${lang}\n")
    message(FATAL_ERROR "consumer (LC_ALL=${locale}): exit ${rc}\n${out}\n${err}")
  endif()
endforeach()
run(env -u LD_LIBRARY_PATH "${prefix}/bin/vtmc" --help)
if(NOT last_output MATCHES "share/doc/vantortl" OR NOT EXISTS "${prefix}/share/doc/vantortl/vtm-source.md")
  message(FATAL_ERROR "the source format's description is not installed where vtmc --help says:\n${last_output}")
endif()
run(env -u LD_LIBRARY_PATH "${prefix}/bin/vtmdump" --help)
foreach(lang de en)
  if(NOT EXISTS "${prefix}/share/vantortl/${lang}/VNT60LIB.VTM")
    message(FATAL_ERROR "the system message library (${lang}) was not installed")
  endif()
endforeach()
# The window toolkit as a component; run on a virtual display when there is one.
if(WX)
  set(wbuild "${BIN}/install-check/consumer_wx")
  run(${CMAKE_COMMAND} -S "${SRC}/examples/consumer_wx" -B "${wbuild}" -G Ninja
      "-DCMAKE_PREFIX_PATH=${prefix}" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS=${FLAGS}")
  run(${CMAKE_COMMAND} --build "${wbuild}")
  find_program(XVFB_RUN xvfb-run)
  if(XVFB_RUN)
    run(env -u LD_LIBRARY_PATH "LSAN_OPTIONS=suppressions=${SRC}/tests/wx/lsan.supp" ${XVFB_RUN} -a
        "${wbuild}/consumer_wx")
    if(NOT last_output MATCHES "toolkit started, confirmation dialog built in")
      message(FATAL_ERROR "unexpected window consumer output: ${last_output}")
    endif()
  endif()
endif()
message(STATUS "installed package works")
