# What every target of ours is compiled with: link it PRIVATE.
add_library(build_options INTERFACE)
target_compile_options(build_options INTERFACE
  # Scores are sums and products in the order written, on every machine.
  -ffp-contract=off
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${MATERIAL_ANALYSIS_WERROR}>:-Werror>)
# g++ 12 at -O3 warns of an overlap inside std::string where a literal is put before a text.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(build_options INTERFACE -Wno-restrict)
endif()

# Sanitizers and counters have to be on everywhere, in what we link too.
if(MATERIAL_ANALYSIS_SANITIZE)
  add_compile_options(-fsanitize=${MATERIAL_ANALYSIS_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${MATERIAL_ANALYSIS_SANITIZE})
endif()
if(MATERIAL_ANALYSIS_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
