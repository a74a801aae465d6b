# Compiler and linker settings that make a memory fault harder to exploit. They hold for the runtime and for what
# vela_add_component_library builds: a process is as hard as the softest library in it.
#
# Sets VELA_HARDENING_COMPILE_OPTIONS and VELA_HARDENING_LINK_OPTIONS.
include(CheckCXXCompilerFlag)
include(CMakePushCheckState)

# Calls on buffers of a known size are checked, which only an optimising compiler can do; bounds of the standard
# containers are checked always.
set(is_optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
set(VELA_HARDENING_COMPILE_OPTIONS
  $<${is_optimised}:-U_FORTIFY_SOURCE> $<${is_optimised}:-D_FORTIFY_SOURCE=2> -D_GLIBCXX_ASSERTIONS)
cmake_push_check_state()
# What the target architecture does not have, its compiler refuses or, as a warning, ignores.
string(APPEND CMAKE_REQUIRED_FLAGS " -Werror")
foreach(option -fstack-protector-strong -fstack-clash-protection -fcf-protection=full -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "VELA_HAS${option}" is_known)
  check_cxx_compiler_flag(${option} ${is_known})
  if(${is_known})
    list(APPEND VELA_HARDENING_COMPILE_OPTIONS ${option})
  endif()
endforeach()
cmake_pop_check_state()
# A crash tells its stack: on ARM a function without exceptions has no way back otherwise.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  list(APPEND VELA_HARDENING_COMPILE_OPTIONS -funwind-tables)
endif()

# All symbols are bound at load, so that the tables of addresses are read-only afterwards; no stack is executable.
set(VELA_HARDENING_LINK_OPTIONS
  LINKER:-z,relro,-z,now,-z,noexecstack $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie>)
