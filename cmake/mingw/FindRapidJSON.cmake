# RapidJSON's headers alone: those beside them are the building machine's.
find_path(RAPIDJSON_PARENT rapidjson/document.h PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
set(RapidJSON_INCLUDE_DIRS ${PROJECT_BINARY_DIR}/headers)
if(RAPIDJSON_PARENT)
  file(MAKE_DIRECTORY ${RapidJSON_INCLUDE_DIRS})
  file(CREATE_LINK ${RAPIDJSON_PARENT}/rapidjson ${RapidJSON_INCLUDE_DIRS}/rapidjson SYMBOLIC)
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(RapidJSON REQUIRED_VARS RAPIDJSON_PARENT)
