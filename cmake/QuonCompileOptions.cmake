# The options that every target of the project shares.
add_library(quon_compile_options INTERFACE)
target_compile_definitions(quon_compile_options INTERFACE
  UNICODE _UNICODE WINVER=0x0A00 _WIN32_WINNT=0x0A00 NOMINMAX)

# The library's own targets, an extension module of the framework, add this to the options of all.
add_library(quon_library_options INTERFACE)
target_link_libraries(quon_library_options INTERFACE quon_compile_options)
target_compile_definitions(quon_library_options INTERFACE QUON_BUILDING_LIBRARY)

if(MSVC)
  # The run-time's classic functions are used on purpose: their exact results are part of the interfaces.
  target_compile_definitions(quon_library_options INTERFACE _AFXEXT _CRT_SECURE_NO_WARNINGS)
  target_compile_options(quon_compile_options INTERFACE
    /W4 /permissive- /Zc:__cplusplus /utf-8 /fp:precise $<$<BOOL:${QUON_WARNINGS_AS_ERRORS}>:/WX>)
else()
  target_compile_options(quon_compile_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    # Results are bit-exact with a plain evaluation: no fused multiply-add.
    -ffp-contract=off
    # Line tables are enough for a back trace, and link much faster than all of the debug information.
    $<$<CONFIG:Debug>:-g1>
    $<$<BOOL:${QUON_WARNINGS_AS_ERRORS}>:-Werror>)
  target_compile_definitions(quon_compile_options INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
  if(QUON_SANITIZE)
    # There is no run-time library for reports here: the program stops at the place.
    target_compile_options(quon_compile_options INTERFACE
      -fsanitize=undefined -fsanitize-undefined-trap-on-error -fno-sanitize=vptr)
  endif()
  if(QUON_COVERAGE)
    # Relative names would depend on the folder that a program is started in. The counts of threads must come out even.
    target_compile_options(quon_library_options INTERFACE --coverage -fprofile-update=atomic -fprofile-abs-path)
    target_link_options(quon_library_options INTERFACE --coverage)
  endif()
  # The compiler's run-time is linked in, so that a program needs no DLL beside ours.
  target_link_options(quon_compile_options INTERFACE -static)
endif()
