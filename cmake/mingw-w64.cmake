# Cross-building for 64-bit Windows with MinGW-w64 (Debian's -posix
# compilers: the win32 thread model has no std::mutex). Programs are linked
# statically, so that only system DLLs remain, and run through Wine for the
# tests and for the tools used at build time.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(_mingw x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${_mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${_mingw}-windres)

# Libraries and packages come from the MinGW tree only (else the Linux
# GoogleTest would be found); programs may be the build machine's.
set(CMAKE_FIND_ROOT_PATH /usr/${_mingw})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Wine 8 (Debian's wine64) keeps its loader off PATH.
find_program(VANTO_WINE NAMES wine64 wine PATHS /usr/lib/wine NO_DEFAULT_PATH)
if(NOT VANTO_WINE)
  find_program(VANTO_WINE NAMES wine64 wine)
endif()
if(VANTO_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${VANTO_WINE})
endif()
