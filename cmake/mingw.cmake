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

# Wine needs the page at 0x7ffe0000 for itself, and does not start where the system has laid the heap
# over it, as it does with one process in some thousands when it chooses addresses at random. Where
# it may not be told not to, as in some containers, such a process fails.
find_program(SETARCH setarch REQUIRED)
execute_process(COMMAND ${SETARCH} -R ${CMAKE_COMMAND} -E true
  RESULT_VARIABLE setarch_failure OUTPUT_QUIET ERROR_QUIET)
set(FIXED_ADDRESSES)
if(NOT setarch_failure)
  set(FIXED_ADDRESSES ${SETARCH} -R)
endif()

# Wine, without a word of its own, a desktop, or a look at another build's drive C:.
find_program(WINE NAMES wine64 PATHS /usr/lib/wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_COMMAND} -E env
  WINEDEBUG=-all WINEPREFIX=${CMAKE_BINARY_DIR}/wine
  WINEDLLOVERRIDES=mscoree,mshtml,winemenubuilder.exe=
  ${FIXED_ADDRESSES} ${WINE})
