# cmake --install, and a ZIP by cpack: DLLs and host to bin, import libraries to lib, headers to include/QuonWin32Utils (the framework's to
# include/QuonFramework), the package that find_package(QuonWin32Utils) reads, the manual and what debuggers read.
include(CMakePackageConfigHelpers)

set(package_dir lib/cmake/QuonWin32Utils)

set(installed_targets quon_win32utils quon_framework_interface)
set_target_properties(quon_framework_interface PROPERTIES EXPORT_NAME Framework)
if(NOT MSVC)
  list(APPEND installed_targets quon_framework quon_framework_new)
  set_target_properties(quon_framework PROPERTIES EXPORT_NAME FrameworkStandIn)
  set_target_properties(quon_framework_new PROPERTIES EXPORT_NAME FrameworkNew)
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

set(doc_dir share/doc/QuonWin32Utils)
install(FILES README.md CHANGELOG.md DESTINATION ${doc_dir})
install(DIRECTORY docs/ DESTINATION ${doc_dir}/manual FILES_MATCHING PATTERN "*.md" PATTERN "*.svg")
install(DIRECTORY examples/ DESTINATION ${doc_dir}/examples FILES_MATCHING PATTERN "*.cpp" PATTERN "*.txt")
# The HTML of the target docs, when it was built.
install(DIRECTORY ${CMAKE_BINARY_DIR}/docs/html DESTINATION ${doc_dir} OPTIONAL)
install(FILES debug/QuonWin32Utils.natvis debug/quon_gdb.py DESTINATION share/QuonWin32Utils/debug)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR "QuonWin32Utils")
string(TOLOWER ${CMAKE_CXX_COMPILER_ID} compiler)
set(CPACK_PACKAGE_FILE_NAME "QuonWin32Utils-${PROJECT_VERSION}-win64-${compiler}")
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
