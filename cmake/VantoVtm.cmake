# vanto_compile_vtm(<list-var> <source-dir> <output-dir> <source>=<output> ...)
# Compiles message-library sources with vtmc at build time: each pair makes
# <output-dir>/<output> from <source-dir>/<source> (its directory first) and
# appends the output to <list-var>, for a target to depend on.
function(vanto_compile_vtm var srcdir outdir)
  set(outs ${${var}})
  foreach(pair IN LISTS ARGN)
    string(REPLACE "=" ";" p "${pair}")
    list(GET p 0 src)
    list(GET p 1 out)
    get_filename_component(dir "${outdir}/${out}" DIRECTORY)
    add_custom_command(OUTPUT "${outdir}/${out}"
      COMMAND ${CMAKE_COMMAND} -E make_directory "${dir}"
      COMMAND vtmc "${srcdir}/${src}" -o "${outdir}/${out}"
      DEPENDS vtmc "${srcdir}/${src}"
      COMMENT "Compiling the message library ${out}"
      VERBATIM)
    list(APPEND outs "${outdir}/${out}")
  endforeach()
  set(${var} ${outs} PARENT_SCOPE)
endfunction()
