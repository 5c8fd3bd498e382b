# What every target of ours is compiled with: link it PRIVATE.
add_library(build_options INTERFACE)
target_compile_options(build_options INTERFACE
  # Scores are sums and products in the order written, on every machine.
  -ffp-contract=off
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  # g++ 12 at -O3 warns of an overlap inside std::string where a literal is put before a text.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
  $<$<BOOL:${MATERIAL_ANALYSIS_WERROR}>:-Werror>)

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
