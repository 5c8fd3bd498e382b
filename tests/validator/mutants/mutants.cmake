# Mutants: libraries of ours with one deliberate fault each, which checks of the validator have to
# find. A mutant is a source with one place replaced, and everything else as it is.

# Writes `source` (a path below the project) with one place replaced to `result`. The place has to be
# there exactly once: what a mutant changes may not move away from under it unnoticed.
function(write_mutated_source name source place replacement result)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${source})
  file(READ ${PROJECT_SOURCE_DIR}/${source} text)
  string(FIND "${text}" "${place}" first)
  string(FIND "${text}" "${place}" last REVERSE)
  if(first EQUAL -1 OR NOT first EQUAL last)
    message(FATAL_ERROR "mutant ${name}: not exactly once in ${source}:\n${place}")
  endif()
  string(REPLACE "${place}" "${replacement}" text "${text}")
  file(CONFIGURE OUTPUT ${result} CONTENT "${text}" @ONLY)
endfunction()

# Adds to `table`, a variable of the caller, the line that the test of the mutants reads: the mutant,
# and the checks that were named in the arguments of the caller.
macro(note_mutant table name)
  list(JOIN arg_CAUGHT_BY " " caught)
  list(JOIN arg_FAILED_BY " " failed)
  list(JOIN arg_WARNED_BY " " warned)
  string(APPEND ${table} "    {\"${name}\", \"$<TARGET_FILE:mutant-${name}>\","
    " \"${caught}\", \"${failed}\", \"${warned}\"},\n")
  set(${table} "${${table}}" PARENT_SCOPE)
endmacro()

# What most mutants of a side include: there are hundreds of them, and nobody debugs one.
set(mutant_options -ffp-contract=off -g0)
add_shared_headers(component_mutant_headers LIBRARIES
  HEADERS <filesystem> <map> <memory> <optional> <sstream> <string> <vector>
    <rapidjson/document.h>
    ${PROJECT_SOURCE_DIR}/modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h
  LINKS host Threads::Threads
  OPTIONS ${mutant_options})
add_shared_headers(host_mutant_headers LIBRARIES
  HEADERS <algorithm> <atomic> <condition_variable> <filesystem> <fstream> <functional> <map>
    <memory> <mutex> <set> <string> <thread> <vector> ${PROJECT_SOURCE_DIR}/host/tasks.h
  LINKS host Threads::Threads
  OPTIONS ${mutant_options})

# add_component_mutant(NAME
#   SOURCE    a source of the component, by its name
#   REPLACE   a place in it, as [[...]]
#   BY        what stands there instead, as [[...]]
#   CAUGHT_BY the ids of checks that have to fail, or to crash
#   FAILED_BY the ids of checks that have to fail by what they compare, and may not crash
#   WARNED_BY the ids of checks that have to warn)
function(add_component_mutant name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SOURCE;REPLACE;BY" "CAUGHT_BY;FAILED_BY;WARNED_BY")
  set(mutated ${CMAKE_CURRENT_BINARY_DIR}/${name}/${arg_SOURCE})
  write_mutated_source(${name} modules/BusinessLayer/MaterialAnalysis/${arg_SOURCE}
    "${arg_REPLACE}" "${arg_BY}" ${mutated})
  add_library(mutant-${name} MODULE ${mutated}
    $<FILTER:$<TARGET_OBJECTS:material_analysis_objects>,EXCLUDE,/${arg_SOURCE}>)
  target_link_libraries(mutant-${name} PRIVATE host)
  target_include_directories(mutant-${name} SYSTEM PRIVATE ${RapidJSON_INCLUDE_DIRS})
  target_compile_options(mutant-${name} PRIVATE ${mutant_options})
  target_precompile_headers(mutant-${name} REUSE_FROM component_mutant_headers)
  target_link_options(mutant-${name} PRIVATE -Wl,--strip-debug
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/modules/BusinessLayer/MaterialAnalysis/exports.map)
  set_target_properties(mutant-${name} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  note_mutant(component_mutants ${name})
endfunction()

# The sources of the plain host that a header of it is part of.
set(host_sources_of_Channel.h Task.cpp)
set(host_sources_of_Clip.h Task.cpp analyse.cpp materials.cpp)
set(host_sources_of_Counted.h Task.cpp materials.cpp services.cpp)
set(host_sources_of_analyse.h Task.cpp analyse.cpp)

# add_host_mutant(NAME
#   SOURCE    a source or header of the plain host, by its name
#   REPLACE   a place in it, as [[...]]
#   BY        what stands there instead, as [[...]]
#   CAUGHT_BY, FAILED_BY, WARNED_BY
#             as above; without any, there is no fault)
function(add_host_mutant name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "SOURCE;REPLACE;BY" "CAUGHT_BY;FAILED_BY;WARNED_BY")
  set(room tests/validator/plain_host)
  set(directory ${CMAKE_CURRENT_BINARY_DIR}/host/${name})
  write_mutated_source(${name} ${room}/${arg_SOURCE} "${arg_REPLACE}" "${arg_BY}"
    ${directory}/${arg_SOURCE})
  set(sources ${arg_SOURCE})
  if(DEFINED host_sources_of_${arg_SOURCE})
    # A header is looked for beside the source that includes it first.
    set(sources ${host_sources_of_${arg_SOURCE}})
    file(GLOB files RELATIVE ${PROJECT_SOURCE_DIR}/${room} ${PROJECT_SOURCE_DIR}/${room}/*.h)
    list(REMOVE_ITEM files ${arg_SOURCE})
    foreach(file IN LISTS files sources)
      configure_file(${PROJECT_SOURCE_DIR}/${room}/${file} ${directory}/${file} COPYONLY)
    endforeach()
  endif()
  list(JOIN sources "|" replaced)
  list(TRANSFORM sources PREPEND ${directory}/)
  add_library(mutant-host-${name} MODULE ${sources}
    "$<FILTER:$<TARGET_OBJECTS:plain_host>,EXCLUDE,/(${replaced})[.]o$>")
  target_include_directories(mutant-host-${name} PRIVATE ${PROJECT_SOURCE_DIR}/${room})
  target_link_libraries(mutant-host-${name} PRIVATE host Threads::Threads)
  target_compile_options(mutant-host-${name} PRIVATE ${mutant_options})
  target_precompile_headers(mutant-host-${name} REUSE_FROM host_mutant_headers)
  target_link_options(mutant-host-${name} PRIVATE -Wl,--strip-debug)
  set_target_properties(mutant-host-${name} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/host)
  if(arg_CAUGHT_BY OR arg_FAILED_BY OR arg_WARNED_BY)
    note_mutant(host_mutants host-${name})
  endif()
endfunction()
