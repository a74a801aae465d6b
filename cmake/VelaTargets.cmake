# What every target of the project has in common, said once.

# One precompiled header with the standard headers that nearly every source needs, shared by all targets.
add_library(vela_pch OBJECT "${CMAKE_CURRENT_SOURCE_DIR}/cmake/pch.cpp")
target_precompile_headers(vela_pch PRIVATE
  <algorithm> <array> <atomic> <chrono> <condition_variable> <cstdint> <exception> <functional> <map> <memory> <mutex>
  <optional> <set> <stdexcept> <string> <string_view> <thread> <tuple> <type_traits> <utility> <vector> <fmt/format.h>)
target_link_libraries(vela_pch PRIVATE fmt::fmt Threads::Threads)

function(vela_use_pch target)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    # Executables are compiled as the libraries are, so that they can share the precompiled header.
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${target} PRIVATE -fPIC)
  endif()
  target_precompile_headers(${target} REUSE_FROM vela_pch)
  target_link_libraries(${target} PRIVATE fmt::fmt)
endfunction()

# vela_add_library(Name ALIAS Short [SOURCES ...] [OBJECTS ...] [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
# A shared library libName.so, known as Vela::Short here and in the installed package. Its public headers stand under
# include/ of the current directory and are installed. Its sources are compiled as Name_objects, for programs that reach
# what the library hides; OBJECTS are those of other targets.
function(vela_add_library name)
  cmake_parse_arguments(ARG "" "ALIAS" "SOURCES;OBJECTS;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
  set(targets ${name})
  if(ARG_SOURCES)
    add_library(${name}_objects OBJECT ${ARG_SOURCES})
    vela_use_pch(${name}_objects)
    target_include_directories(${name}_objects PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}")
    list(APPEND ARG_OBJECTS $<TARGET_OBJECTS:${name}_objects>)
    list(APPEND targets ${name}_objects)
  endif()
  add_library(${name} SHARED ${ARG_OBJECTS})
  add_library(Vela::${ARG_ALIAS} ALIAS ${name})
  # Libraries of different major versions can stand side by side; none is taken for another. docs/versions.md
  set_target_properties(${name} PROPERTIES EXPORT_NAME ${ARG_ALIAS} LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  set(exports "${PROJECT_SOURCE_DIR}/cmake/VelaExports.map")
  target_link_options(${name} PRIVATE "LINKER:--version-script=${exports}")
  set_target_properties(${name} PROPERTIES LINK_DEPENDS "${exports}")
  target_include_directories(${name} PUBLIC "$<INSTALL_INTERFACE:include>")
  target_compile_features(${name} PUBLIC cxx_std_20)
  foreach(target ${targets})
    target_link_libraries(${target} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/include")
      target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>")
    endif()
  endforeach()
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/include")
    vela_install_headers("${CMAKE_CURRENT_SOURCE_DIR}/include")
  endif()
  install(TARGETS ${name} EXPORT VelaKiroTargets LIBRARY DESTINATION lib COMPONENT runtime)
endfunction()

function(vela_install_headers directory)
  install(DIRECTORY "${directory}/" DESTINATION include FILES_MATCHING PATTERN "*.hpp")
endfunction()

# vela_add_room(name SOURCES ... [USES other-room...] [LIBS ...])
# One room of the framework library: an object library with its own include path. What it does not list under USES it
# cannot include, so an include that climbs does not compile.
function(vela_add_room name)
  cmake_parse_arguments(ARG "" "" "SOURCES;USES;LIBS" ${ARGN})
  add_library(kiro_${name} OBJECT ${ARG_SOURCES})
  vela_use_pch(kiro_${name})
  target_include_directories(kiro_${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
  if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/include")
    target_include_directories(kiro_${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/include")
    vela_install_headers("${CMAKE_CURRENT_SOURCE_DIR}/include")
  endif()
  foreach(room IN LISTS ARG_USES)
    target_include_directories(kiro_${name} PUBLIC $<TARGET_PROPERTY:kiro_${room},INTERFACE_INCLUDE_DIRECTORIES>)
  endforeach()
  target_link_libraries(kiro_${name} PUBLIC Vela::Commons Vela::Rsc Vela::Nm ${ARG_LIBS})
endfunction()

# Seconds that a single test may take. An emulated one takes 5 to 10 times as long.
set(VELA_TEST_TIMEOUT 120)
if(CMAKE_CROSSCOMPILING)
  set(VELA_TEST_TIMEOUT 1200)
endif()

# vela_add_test(name SOURCES ... [LIBS ...] [ROOMS ...] [DEPENDS ...])
# A GoogleTest executable under tests/ of the build tree. ROOMS names rooms of the framework library whose private
# classes the test reaches: their objects become part of the executable, which then stands for the library itself.
function(vela_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;ROOMS;DEPENDS" ${ARGN})
  add_executable(test-${name} ${ARG_SOURCES} "${PROJECT_SOURCE_DIR}/tests/support/HangReport.cpp")
  vela_use_pch(test-${name})
  foreach(room IN LISTS ARG_ROOMS)
    target_link_libraries(test-${name} PRIVATE kiro_${room})
  endforeach()
  if(ARG_ROOMS)
    set_target_properties(test-${name} PROPERTIES ENABLE_EXPORTS ON)
  endif()
  target_include_directories(test-${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests/support")
  target_link_libraries(test-${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main Threads::Threads)
  set_target_properties(test-${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  if(ARG_DEPENDS)
    add_dependencies(test-${name} ${ARG_DEPENDS})
  endif()
  include(GoogleTest)
  gtest_discover_tests(test-${name}
    TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${VELA_TEST_TIMEOUT} LABELS ${name})
endfunction()
