# Resources of a program, from one source on every platform.

if(CMAKE_SYSTEM_NAME STREQUAL "Windows")
  enable_language(RC)
else()
  # From the package binutils-mingw-w64-x86-64. The format that it writes here does not depend on the target.
  find_program(TESSELIA_WINDRES x86_64-w64-mingw32-windres REQUIRED)
endif()

# add_resources(target rcfile [files that it includes...])
# Puts the resources into a target whose objects end up in the program: an executable or an object library. On Windows they
# become resources of the program; elsewhere the layer's kernel finds them (platform/kernel/Resources.h). A program has one
# such file at most.
function(add_resources target rcfile)
  get_filename_component(rc ${rcfile} ABSOLUTE)
  get_filename_component(name ${rcfile} NAME_WE)
  get_filename_component(folder ${rc} DIRECTORY)
  list(TRANSFORM ARGN PREPEND ${folder}/ OUTPUT_VARIABLE included)
  if(CMAKE_SYSTEM_NAME STREQUAL "Windows")
    target_sources(${target} PRIVATE ${rc})
    set_source_files_properties(${rc} PROPERTIES COMPILE_OPTIONS "-c;65001" OBJECT_DEPENDS "${included}")
    return()
  endif()

  # The package with windres brings no preprocessor of its own.
  set(res ${CMAKE_CURRENT_BINARY_DIR}/${name}.res)
  add_custom_command(OUTPUT ${res}
    COMMAND ${TESSELIA_WINDRES} --preprocessor=${CMAKE_CXX_COMPILER} --preprocessor-arg=-E --preprocessor-arg=-xc
            --preprocessor-arg=-DRC_INVOKED -c 65001 -O res -I ${folder} ${rc} -o ${res}
    DEPENDS ${rc} ${included}
    VERBATIM)
  configure_file(${CMAKE_CURRENT_FUNCTION_LIST_DIR}/EmbeddedResources.cpp.in ${CMAKE_CURRENT_BINARY_DIR}/${name}_res.cpp @ONLY)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${name}_res.cpp PROPERTIES OBJECT_DEPENDS ${res})
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}_res.cpp)
endfunction()
