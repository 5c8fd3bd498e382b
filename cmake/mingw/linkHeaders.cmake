# Gives the headers of one header-only library, those in `directory` of the building machine, alone:
# what lies beside them is for that machine. `found` is where they come from.
function(link_headers directory found)
  find_path(${found} ${directory} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH)
  if(${found})
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers)
    file(CREATE_LINK ${${found}}/${directory} ${PROJECT_BINARY_DIR}/headers/${directory} SYMBOLIC)
  endif()
endfunction()
