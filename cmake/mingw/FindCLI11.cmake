include(${CMAKE_CURRENT_LIST_DIR}/linkHeaders.cmake)
link_headers(CLI CLI11_PARENT)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CLI11 REQUIRED_VARS CLI11_PARENT)

if(CLI11_FOUND AND NOT TARGET CLI11::CLI11)
  add_library(CLI11::CLI11 INTERFACE IMPORTED)
  target_include_directories(CLI11::CLI11 INTERFACE ${PROJECT_BINARY_DIR}/headers)
endif()
