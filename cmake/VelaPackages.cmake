# Debian packages: the runtime, the operator's tool, what component authors need, and debug symbols.
# ./dev package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vela-kiro)
set(CPACK_PACKAGE_VENDOR "Vela")
set(CPACK_PACKAGE_CONTACT "Vela Kiro maintainers <vela-kiro@packages.vela>")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
# What is installed sees the prefix that it will have.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime tool sdk)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
if(CMAKE_SYSTEM_PROCESSOR STREQUAL "armv7l")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()

set(packaging "${PROJECT_SOURCE_DIR}/packaging/debian")
set(this_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

# vela_add_package(component NAME package SECTION section DESCRIPTION text [DEPENDS text] [CONTROL file...])
macro(vela_add_package component)
  cmake_parse_arguments(ARG "" "NAME;SECTION;DESCRIPTION;DEPENDS" "CONTROL" ${ARGN})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${ARG_NAME})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${ARG_SECTION})
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${ARG_DESCRIPTION}")
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${ARG_DEPENDS}")
  set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA "${ARG_CONTROL}")
  install(FILES "${packaging}/copyright" DESTINATION share/doc/${ARG_NAME} COMPONENT ${component} EXCLUDE_FROM_ALL)
  vela_install_compressed("${packaging}/changelog" share/doc/${ARG_NAME}/changelog.Debian.gz ${component})
  if(EXISTS "${packaging}/${ARG_NAME}.lintian-overrides")
    install(FILES "${packaging}/${ARG_NAME}.lintian-overrides"
      DESTINATION share/lintian/overrides RENAME ${ARG_NAME} COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endmacro()

# Without a time stamp, so that the same sources make the same package.
function(vela_install_compressed file destination component)
  get_filename_component(name "${destination}" NAME)
  get_filename_component(directory "${destination}" DIRECTORY)
  set(compressed "${CMAKE_CURRENT_BINARY_DIR}/packaging/${component}/${name}")
  get_filename_component(compressed_directory "${compressed}" DIRECTORY)
  file(MAKE_DIRECTORY "${compressed_directory}")
  execute_process(COMMAND gzip -9n --stdout "${file}" OUTPUT_FILE "${compressed}" COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  install(FILES "${compressed}" DESTINATION "${directory}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(libraries)
foreach(library Commons Rsc Nm Kiro Scm)
  string(APPEND libraries "libVela.System.${library} ${PROJECT_VERSION_MAJOR} vela-kiro (>= ${this_version})\n")
endforeach()
file(WRITE "${CMAKE_CURRENT_BINARY_DIR}/packaging/shlibs" "${libraries}")

vela_add_package(runtime NAME vela-kiro SECTION misc
  DESCRIPTION "controller runtime: application and component framework
The executable Vela.System.Application is every process of a controller
system: it starts the other processes, loads component libraries and
drives their components through one lifecycle."
  CONTROL "${packaging}/triggers" "${packaging}/postinst" "${packaging}/prerm" "${packaging}/postrm"
    "${CMAKE_CURRENT_BINARY_DIR}/packaging/shlibs")
vela_install_compressed("${packaging}/Vela.System.Application.1" share/man/man1/Vela.System.Application.1.gz runtime)
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)

vela_add_package(tool NAME kiroctl SECTION admin
  DESCRIPTION "controller runtime: the operator's command line
Looks into a running controller system, checks its documents before it
runs, and writes new component libraries."
  DEPENDS "vela-kiro (= ${this_version})")
set(CPACK_DEBIAN_TOOL_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_SUGGESTS vela-kiro-dev)

vela_add_package(sdk NAME vela-kiro-dev SECTION libdevel
  DESCRIPTION "controller runtime: SDK for component libraries
Headers, CMake package, schemas and a template project to build
component libraries for the controller runtime."
  DEPENDS "vela-kiro (= ${this_version}), libfmt-dev")

include(CPack)
