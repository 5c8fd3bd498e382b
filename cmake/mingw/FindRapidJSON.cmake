include(${CMAKE_CURRENT_LIST_DIR}/linkHeaders.cmake)
link_headers(rapidjson RAPIDJSON_PARENT)
set(RapidJSON_INCLUDE_DIRS ${PROJECT_BINARY_DIR}/headers)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(RapidJSON REQUIRED_VARS RAPIDJSON_PARENT)
