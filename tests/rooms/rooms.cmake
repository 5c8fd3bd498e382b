# Fails when a source includes what its room may not. Run as: cmake -D ROOT=... -P rooms.cmake
set(component modules/BusinessLayer/MaterialAnalysis)
set(violations "")

# Checks the includes in one source: each has to match `allowed`.
function(check_file source allowed)
  file(STRINGS ${ROOT}/${source} includes REGEX "^#include ")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include [<\"]([^>\"]+)[>\"].*" "\\1" name "${include}")
    if(NOT name MATCHES "^(${allowed})")
      list(APPEND violations "${source} includes ${name}")
    endif()
  endforeach()
  set(violations "${violations}" PARENT_SCOPE)
endfunction()

# Checks the includes in all sources below `room`, those of the sub-rooms named behind `EXCEPT`
# aside: each has to match `allowed`.
function(check_room room allowed)
  cmake_parse_arguments(arg "" "" "EXCEPT" ${ARGN})
  file(GLOB_RECURSE sources RELATIVE ${ROOT} ${ROOT}/${room}/*.h ${ROOT}/${room}/*.cpp)
  if(NOT sources)
    message(FATAL_ERROR "no sources in ${room}")
  endif()
  foreach(source IN LISTS sources)
    list(JOIN arg_EXCEPT "|" excepted)
    if(arg_EXCEPT AND source MATCHES "^(${excepted})")
      continue()
    endif()
    check_file(${source} "${allowed}")
  endforeach()
  set(violations "${violations}" PARENT_SCOPE)
endfunction()

# A header of the C++ standard library: no folder, no ending.
set(standard "[a-z_0-9]+$")

check_room(host "${standard}|host/")
check_room(${component} "${standard}|host/|${component}/"
  EXCEPT ${component}/JsonDocument ${component}/ResultCacheText.cpp)
check_room(dynamic_library "${standard}|dynamic_library/|dlfcn.h$|windows.h$")
check_room(examples/minimal-host "${standard}|host/|host_kit/|[A-Za-z]+.h$")
check_room(fake_host "${standard}|host/|fake_host/")
check_room(host_kit "${standard}|host/|host_kit/")
check_room(validator/check "${standard}|host/|validator/check/|CLI/|rapidjson/|sys/|windows.h$")
check_room(validator/component
  "${standard}|host/|fake_host/|dynamic_library/|validator/check/|validator/component/|${component}/IKorMaterialAnalysis.h|malloc.h$|sys/|unistd.h$")
check_room(validator/host
  "${standard}|host/|dynamic_library/|validator/check/|validator/host/")
check_room(validator
  "${standard}|validator/|CLI/|rapidjson/|[a-z]+.h$|sys/"
  EXCEPT validator/check validator/component validator/host)
check_room(reference_host "${standard}|host/|host_kit/|reference_host/|fcntl.h$|sys/|unistd.h$"
  EXCEPT reference_host/media reference_host/services/Log reference_host/vision
  reference_host/cache/KeptFacts.cpp reference_host/cache/contentKey.cpp)
set(cache "${standard}|host/|reference_host/cache/|reference_host/media/|reference_host/ReferenceHost.h")
check_room(reference_host/cache "${cache}|fcntl.h$|unistd.h$"
  EXCEPT reference_host/cache/KeptFacts.cpp reference_host/cache/contentKey.cpp)
check_file(reference_host/cache/KeptFacts.cpp "${cache}|rapidjson/")
check_file(reference_host/cache/contentKey.cpp "${cache}|xxhash.h$")
check_room(reference_host/scenes "${standard}|host/|reference_host/scenes/")
check_room(reference_host/media
  "${standard}|host/|reference_host/|libav[a-z]+/|libsw[a-z]+/|libheif/|fcntl.h$|sys/|unistd.h$")
check_room(reference_host/vision
  "${standard}|host/|reference_host/vision/|opencv2/|dlib/")
check_room(autotrim
  "${standard}|host/|autotrim/|reference_host/ReferenceHost.h|${component}/IKorMaterialAnalysis.h|CLI/|fmt/|rapidjson/|[a-z]+.h$|sys/")

if(violations)
  list(JOIN violations "\n  " text)
  message(FATAL_ERROR "rooms that include what they may not:\n  ${text}")
endif()
