# What the two Windows toolchains share. They set `triple` and include this file.
#
# Programs are linked statically, so that an .exe wants nothing but the system's own libraries beside it. The linker of mingw-w64
# adds no manifest of its own, and none is given: without an execution level in it Windows redirects what a 32-bit program of a
# user without rights writes below HKEY_LOCAL_MACHINE, and the settings survive. scripts/check-windows.sh looks at the result.

set(CMAKE_SYSTEM_NAME Windows)
# Of Debian's two thread models the one whose standard library has a mutex, which GoogleTest wants.
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
# What is delivered carries no symbols; they stay in the object files.
set(CMAKE_EXE_LINKER_FLAGS_RELWITHDEBINFO_INIT "-s")

# Tests run under wine, and are found when they are run: a machine may build them that cannot run them.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh)
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
