# On Windows the system itself supplies the names of the seam. The libraries of platform/ are here under the same names, with nothing
# in them, so that what stands above the seam is declared once for both platforms.

add_library(seam INTERFACE)
# Vista is the oldest Windows that has the calls of the seam (callbacks at the end of a thread, removing a registry tree).
target_compile_definitions(seam INTERFACE WINVER=0x0600 _WIN32_WINNT=0x0600)
target_link_libraries(seam INTERFACE user32 gdi32 comctl32 comdlg32 imm32 advapi32 winmm)

foreach(part kernel messages desktop desktop_main)
  add_library(${part} INTERFACE)
  target_link_libraries(${part} INTERFACE seam)
endforeach()

add_library(threads INTERFACE)
target_include_directories(threads INTERFACE ${CMAKE_SOURCE_DIR}/platform/threads)
add_library(locks INTERFACE)
target_include_directories(locks INTERFACE ${CMAKE_SOURCE_DIR}/platform/locks)
target_link_libraries(locks INTERFACE seam)

# The header library of Debian, without the headers of the C library that stand beside it.
find_file(NLOHMANN_HEADERS nlohmann PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
file(CREATE_LINK ${NLOHMANN_HEADERS} ${CMAKE_BINARY_DIR}/headers/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers)
