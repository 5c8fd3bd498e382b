# Cross-building for 64-bit Windows with MinGW-w64, in its variant with POSIX threads, which has
# <thread> and <mutex>. What is built runs under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)  # of GoogleTest's project
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Nothing of the building machine is for Windows; the modules in mingw/ know what is for any system.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/mingw)

# Wine, without a word of its own, a desktop, or a look at another build's drive C:.
find_program(WINE NAMES wine64 PATHS /usr/lib/wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_COMMAND} -E env
  WINEDEBUG=-all WINEPREFIX=${CMAKE_BINARY_DIR}/wine
  WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
  ${WINE})
