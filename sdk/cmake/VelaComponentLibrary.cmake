# vela_add_component_library(Name SOURCES a.cpp ... [LIBS target ...])
#
# A component library libName.so for the Vela runtime. It exports its entry function VelaDynamicLibraryMain and nothing
# else, so that several libraries in one process cannot get into each other's way and unloading one really unmaps it.
include("${CMAKE_CURRENT_LIST_DIR}/VelaHardening.cmake")
set(VELA_COMPONENT_LIBRARY_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/VelaComponentLibrary.map")
set(VELA_CONTRACT_NOTE "${CMAKE_CURRENT_LIST_DIR}/VelaContractNote.cpp")

function(vela_add_component_library name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LIBS")
  if(ARG_UNPARSED_ARGUMENTS OR NOT ARG_SOURCES)
    message(FATAL_ERROR "usage: vela_add_component_library(Name SOURCES a.cpp ... [LIBS target ...])")
  endif()

  # The note tells the runtime, before it loads the library, what the library was built with.
  add_library(${name} MODULE ${ARG_SOURCES} "${VELA_CONTRACT_NOTE}")
  set_source_files_properties("${VELA_CONTRACT_NOTE}" PROPERTIES
    SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)
  set_target_properties(${name} PROPERTIES
    PREFIX lib
    SUFFIX .so
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    LINK_DEPENDS "${VELA_COMPONENT_LIBRARY_EXPORTS}")
  target_compile_features(${name} PRIVATE cxx_std_20)
  # A unique symbol would pin the library in memory for the life of the process.
  target_compile_options(${name} PRIVATE
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique> ${VELA_HARDENING_COMPILE_OPTIONS})
  target_link_options(${name} PRIVATE
    ${VELA_HARDENING_LINK_OPTIONS} "LINKER:--version-script=${VELA_COMPONENT_LIBRARY_EXPORTS}")
  target_link_libraries(${name} PRIVATE Vela::Kiro ${ARG_LIBS})
endfunction()
