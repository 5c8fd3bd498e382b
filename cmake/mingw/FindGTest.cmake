# GoogleTest, built from the sources that Debian's package "googletest" installs.
find_path(GTEST_SOURCES googletest/CMakeLists.txt PATHS /usr/src/googletest
  NO_CMAKE_FIND_ROOT_PATH)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GTest REQUIRED_VARS GTEST_SOURCES)

if(GTest_FOUND AND NOT TARGET GTest::gtest)
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${GTEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
endif()
