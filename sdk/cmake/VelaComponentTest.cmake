# vela_add_component_test(Name SOURCES a.cpp ... LIBRARIES component-library... [LIBS target ...])
#
# A GoogleTest program that hosts components with the test kit (Vela::KiroTesting), and its tests for ctest. LIBRARIES are
# the targets of vela_add_component_library; the runtime loads the shared objects that they build, by the targets' names.
include(GoogleTest)

function(vela_add_component_test name)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "SOURCES;LIBRARIES;LIBS")
  if(ARG_UNPARSED_ARGUMENTS OR NOT ARG_SOURCES)
    message(FATAL_ERROR
      "usage: vela_add_component_test(Name SOURCES a.cpp ... LIBRARIES component-library... [LIBS target ...])")
  endif()
  if(NOT TARGET Vela::KiroTesting)
    message(FATAL_ERROR "vela_add_component_test needs GoogleTest (package libgtest-dev), which was not found")
  endif()

  set(entries "")
  foreach(library IN LISTS ARG_LIBRARIES)
    string(APPEND entries "    ComponentLibrary(\"${library}\", R\"path($<TARGET_FILE:${library}>)path\"),\n")
  endforeach()
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.$<CONFIG>.libraries.cpp")
  set(text "// Where the component libraries of the test lie.
#include <Vela/System/Kiro/Testing/ComponentLibrary.hpp>
")
  if(ARG_LIBRARIES)
    string(APPEND text "
using Vela::System::Kiro::Testing::ComponentLibrary;

static const ComponentLibrary libraries[] = {
${entries}};
")
  endif()
  file(GENERATE OUTPUT "${source}" CONTENT "${text}")

  add_executable(${name} ${ARG_SOURCES} "${source}")
  target_compile_features(${name} PRIVATE cxx_std_20)
  target_link_libraries(${name} PRIVATE Vela::KiroTesting GTest::gtest_main ${ARG_LIBS})
  if(ARG_LIBRARIES)
    add_dependencies(${name} ${ARG_LIBRARIES})
  endif()
  gtest_discover_tests(${name}
    TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 120)
endfunction()
