# quon_free_thread_slots(<DLL target>): the slot of thread-local storage that GCC's run-time takes in the DLL is freed when
# the DLL is unloaded (GccThreadSlots.cpp).
function(quon_free_thread_slots target)
  if(NOT MSVC)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/GccThreadSlots.cpp)
    target_link_options(${target} PRIVATE -Wl,--wrap=__imp_TlsAlloc -Wl,--wrap=__imp_TlsFree)
  endif()
endfunction()
