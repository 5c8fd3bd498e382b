# How a program of GoogleTest's becomes tests of CTest.
include(GoogleTest)

# Windows looks for libraries beside the program: the C++ library, which the component and its host
# share, is put there.
if(MINGW)
  foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
      OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    file(REAL_PATH ${file} file)
    file(MAKE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
    file(CREATE_LINK ${file} ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${library} SYMBOLIC)
  endforeach()
endif()

# Registers every test in `program` by itself; where each start of the program costs an emulator's,
# the program as one. As one it has to skip nothing, as the skipped tests would go unseen.
function(add_google_tests program)
  if(NOT CMAKE_CROSSCOMPILING)
    gtest_discover_tests(${program} DISCOVERY_TIMEOUT 60)
    return()
  endif()
  add_test(NAME ${program} COMMAND ${program} --gtest_brief=1)
  set_tests_properties(${program} PROPERTIES
    FIXTURES_REQUIRED emulator FAIL_REGULAR_EXPRESSION "\\[  SKIPPED \\]")
endfunction()

# The first start of Wine makes its drive C:, which takes longer than many a test.
if(CMAKE_CROSSCOMPILING)
  add_test(NAME Emulator.Starts COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} wineboot --init)
  set_tests_properties(Emulator.Starts PROPERTIES FIXTURES_SETUP emulator)
endif()
