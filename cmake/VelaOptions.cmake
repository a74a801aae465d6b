# Compiler and layout settings that hold for every target of the project.

option(VELA_BUILD_TESTS "Build the tests" ON)
option(VELA_BUILD_FUZZERS "Build the fuzz targets as programs; needs Clang" OFF)
set(VELA_SANITIZE "" CACHE STRING "Sanitizers to build with, as the compiler's -fsanitize takes them")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The build tree has the shape of the install tree, so that an executable finds its libraries the same way in both.
# Libraries stand under lib/ on every architecture: a system is one directory that can be moved.
set(CMAKE_INSTALL_LIBDIR lib)
# What is not said to be part of the runtime is for component authors.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME sdk)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib")

add_compile_options(
  -Wall -Wextra -Wpedantic -Werror
  -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
# A constructor parameter named like its member is clear enough.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:Clang>:-Wshadow>)
# 64-bit time and file offsets, also where long has 32 bits.
add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
# A unique symbol pins the shared object that defines it: nothing of ours may keep a library from being unloaded.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
add_link_options(-Wl,--as-needed -Wl,--no-undefined)
# An optimised build leaves out what nothing refers to.
set(is_optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
add_compile_options($<${is_optimised}:-ffunction-sections> $<${is_optimised}:-fdata-sections>)
add_link_options($<${is_optimised}:LINKER:--gc-sections>)
include(VelaHardening)
add_compile_options(${VELA_HARDENING_COMPILE_OPTIONS})
add_link_options(${VELA_HARDENING_LINK_OPTIONS})

if(VELA_SANITIZE)
  add_compile_options(-fsanitize=${VELA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VELA_SANITIZE})
  add_compile_definitions(VELA_SANITIZED=1)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The instrumentation hides value ranges from the optimiser, which then warns of what cannot happen.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
