# Headers that many targets include, compiled once for all of them:
#
#   add_shared_headers(NAME PROGRAMS|LIBRARIES HEADERS header... [LINKS target...]
#     [OPTIONS option...])
#   target_precompile_headers(TARGET REUSE_FROM NAME)
#
# The targets are all programs or all libraries, and have the same options. A file that takes a
# header for granted is noticed where CMAKE_DISABLE_PRECOMPILE_HEADERS is on.
function(add_shared_headers name kind)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "HEADERS;LINKS;OPTIONS")
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT "int main() {}\n")
  if(kind STREQUAL PROGRAMS)
    add_executable(${name} ${source})
  else()
    add_library(${name} OBJECT ${source})
  endif()
  target_link_libraries(${name} PRIVATE ${arg_LINKS})
  target_compile_options(${name} PRIVATE ${arg_OPTIONS})
  target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()
