# cmake --install: DLLs and host to bin, import libraries to lib, headers to include/QuonWin32Utils (the framework's to
# include/QuonFramework), and the package that find_package(QuonWin32Utils) reads.
include(CMakePackageConfigHelpers)

set(package_dir lib/cmake/QuonWin32Utils)

set(installed_targets quon_win32utils quon_framework_interface)
set_target_properties(quon_framework_interface PROPERTIES EXPORT_NAME Framework)
if(NOT MSVC)
  list(APPEND installed_targets quon_framework)
  set_target_properties(quon_framework PROPERTIES EXPORT_NAME FrameworkStandIn)
  install(DIRECTORY framework/include/ DESTINATION include/QuonFramework
          FILES_MATCHING PATTERN "*.h" PATTERN "quon_framework_journal.h" EXCLUDE)
endif()

install(TARGETS ${installed_targets} EXPORT QuonWin32UtilsTargets)
if(TARGET quonhost)
  install(TARGETS quonhost)
endif()

get_property(public_headers GLOBAL PROPERTY QUON_PUBLIC_HEADERS)
foreach(header IN LISTS public_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION include/QuonWin32Utils/${folder})
endforeach()

install(EXPORT QuonWin32UtilsTargets NAMESPACE Quon:: DESTINATION ${package_dir})
configure_package_config_file(cmake/QuonWin32UtilsConfig.cmake.in
  ${CMAKE_BINARY_DIR}/QuonWin32UtilsConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/QuonWin32UtilsConfigVersion.cmake
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/QuonWin32UtilsConfig.cmake ${CMAKE_BINARY_DIR}/QuonWin32UtilsConfigVersion.cmake
        DESTINATION ${package_dir})
