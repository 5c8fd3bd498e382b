# What an installation holds: autotrim with the libraries it runs on, the validator, and a CMake
# package for those who write a host or load the component.
include(CMakePackageConfigHelpers)

set(package_headers ${CMAKE_INSTALL_INCLUDEDIR}/MaterialAnalysis)
set(package_config ${CMAKE_INSTALL_LIBDIR}/cmake/MaterialAnalysis)

set(installed_targets host host_kit MaterialAnalysis)
if(MATERIAL_ANALYSIS_REFERENCE_HOST)
  list(APPEND installed_targets reference_host)
  set_target_properties(reference_host PROPERTIES INSTALL_RPATH "$ORIGIN")
  install(TARGETS autotrim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES reference_host/ReferenceHost.h DESTINATION ${package_headers}/reference_host)
endif()

if(MATERIAL_ANALYSIS_VALIDATOR)
  install(TARGETS material-analysis-validator RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  set(checks material-analysis-component-checks)
  if(TARGET material-analysis-host-checks)
    list(APPEND checks material-analysis-host-checks)
  endif()
  install(TARGETS ${checks}
    RUNTIME DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/MaterialAnalysis)
endif()

install(TARGETS ${installed_targets} EXPORT MaterialAnalysisTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY host host_kit DESTINATION ${package_headers} FILES_MATCHING PATTERN "*.h")
install(FILES modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h
  DESTINATION ${package_headers}/modules/BusinessLayer/MaterialAnalysis)

install(EXPORT MaterialAnalysisTargets
  NAMESPACE MaterialAnalysis:: DESTINATION ${package_config})
configure_package_config_file(
  cmake/MaterialAnalysisConfig.cmake.in ${PROJECT_BINARY_DIR}/MaterialAnalysisConfig.cmake
  INSTALL_DESTINATION ${package_config})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/MaterialAnalysisConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/MaterialAnalysisConfig.cmake
  ${PROJECT_BINARY_DIR}/MaterialAnalysisConfigVersion.cmake
  DESTINATION ${package_config})
