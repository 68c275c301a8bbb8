# Warnings, sanitizers and the one way to declare a library of the project.

add_library(tesselia_options INTERFACE)
target_compile_options(tesselia_options INTERFACE -Wall -Wextra -Wpedantic -Werror)
if(TESSELIA_SANITIZE)
  target_compile_options(tesselia_options INTERFACE -fsanitize=${TESSELIA_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(tesselia_options INTERFACE -fsanitize=${TESSELIA_SANITIZE})
endif()

# Above the seam numbers change their width only where the code says so.
add_library(strict_options INTERFACE)
target_link_libraries(strict_options INTERFACE tesselia_options)
target_compile_options(strict_options INTERFACE -Wconversion)

# add_layer(name [STRICT] SOURCES files... [USES libraries...])
# A library whose only include folder is its own: it sees the headers of what it names in USES and of nothing else.
function(add_layer name)
  cmake_parse_arguments(LAYER "STRICT" "" "SOURCES;USES" ${ARGN})
  add_library(${name} STATIC ${LAYER_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${LAYER_USES})
  if(LAYER_STRICT)
    target_link_libraries(${name} PRIVATE strict_options)
  else()
    target_link_libraries(${name} PRIVATE tesselia_options)
  endif()
endfunction()

# precompile(target headers...)
# Large headers once for the target. Not in the build that clang-tidy reads, which cannot use another compiler's.
function(precompile target)
  if(TESSELIA_SANITIZE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# build_tests_fast(target)
# Test code is built often and runs once.
function(build_tests_fast target)
  target_compile_options(${target} PRIVATE -O0 -U_FORTIFY_SOURCE)
endfunction()
