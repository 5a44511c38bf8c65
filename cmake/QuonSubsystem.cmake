# Subsystems are OBJECT libraries that see each other's headers only along the arrows of docs/architecture.md.
#
# Headers are included by folder and name ("paths/QuonPath.h"). So that a wrong arrow does not build, no target gets the
# source tree as its include folder: each subsystem has a folder of its own below the build tree that holds one link, to
# its source folder, and a target gets these folders of the subsystems that it names under USES.

# quon_expose(<target> <folder-or-file>): makes <target> give its users the include name <folder-or-file> and no other.
function(quon_expose target name)
  set(root ${CMAKE_BINARY_DIR}/arrows/${target})
  get_filename_component(parent ${root}/${name} DIRECTORY)
  file(MAKE_DIRECTORY ${parent})
  file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${name} ${root}/${name} RESULT failed SYMBOLIC)
  if(failed)
    # Windows without the right to make links: build without the check.
    target_include_directories(${target} INTERFACE ${CMAKE_SOURCE_DIR})
  else()
    target_include_directories(${target} INTERFACE ${root})
  endif()
endfunction()

# quon_subsystem(<name> FOLDER <folder> [SOURCES ...] [HEADERS ...] [USES <subsystem> ...])
# HEADERS are the public ones: they are installed. A subsystem without sources is allowed. Every subsystem may use base.
function(quon_subsystem name)
  cmake_parse_arguments(arg "" "FOLDER" "SOURCES;HEADERS;USES" ${ARGN})
  add_library(${name}_headers INTERFACE)
  quon_expose(${name}_headers ${arg_FOLDER})
  target_link_libraries(${name}_headers INTERFACE Quon::Framework)
  if(NOT name STREQUAL "base")
    target_link_libraries(${name}_headers INTERFACE base_headers)
  endif()
  foreach(used IN LISTS arg_USES)
    target_link_libraries(${name}_headers INTERFACE ${used}_headers)
  endforeach()
  if(arg_SOURCES)
    add_library(${name} OBJECT ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE quon_library_options ${name}_headers)
    set_property(GLOBAL APPEND PROPERTY QUON_OBJECT_TARGETS ${name})
  endif()
  foreach(header IN LISTS arg_HEADERS)
    set_property(GLOBAL APPEND PROPERTY QUON_PUBLIC_HEADERS ${arg_FOLDER}/${header})
  endforeach()
  set_property(GLOBAL APPEND PROPERTY QUON_HEADER_TARGETS ${name}_headers)
endfunction()
