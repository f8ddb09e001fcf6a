# Debian packages: what programs need to run and what they need to be built, of the library and of its
# windows where they are built, and the program itself.

set(CPACK_PACKAGE_NAME quillaven)
set(CPACK_PACKAGE_VENDOR "QuillavenLib")
set(CPACK_PACKAGE_CONTACT "The makers of QuillavenLib")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
# Each package's own description begins with its summary: none is put before it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)

# quillaven_package(COMPONENT NAME SECTION SUMMARY TEXT [PACKAGE...]): the Debian package of a component.
# It needs the packages named last in its own version.
function(quillaven_package component name section summary text)
  set(needed ${ARGN})
  list(TRANSFORM needed APPEND " (= ${PROJECT_VERSION})")
  list(JOIN needed ", " needed)
  string(TOUPPER ${component} upper)
  set(variable CPACK_DEBIAN_${upper})
  set(${variable}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(${variable}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(${variable}_PACKAGE_DEPENDS "${needed}" PARENT_SCOPE)
  set(${variable}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(copyright library)
  if(component STREQUAL program)
    set(copyright program)
  endif()
  if(NOT WIN32)
    install(
      FILES ${PROJECT_SOURCE_DIR}/cmake/copyright-${copyright}.txt
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
      RENAME copyright
      COMPONENT ${component})
  endif()
endfunction()

# A package of a library to run with is named after the version of its binary interface.
set(library libquillaven${PROJECT_VERSION_MAJOR})
quillaven_package(
  runtime ${library} libs "Base of simulations on maps of cells and networks"
  "${PROJECT_DESCRIPTION}; a transport network and function tables. This is what programs need to run.")
quillaven_package(
  development libquillaven-dev libdevel "Headers and CMake files of QuillavenLib"
  "What programs that use QuillavenLib are built with: headers, a CMake package and a pkg-config file."
  ${library})
if(TARGET QuillavenDesktop)
  set(desktop libquillaven-desktop${PROJECT_VERSION_MAJOR})
  quillaven_package(
    desktop ${desktop} libs "Windows for programs of QuillavenLib"
    "Its message boxes and the spline tool in real windows. This is what programs need to run."
    ${library})
  quillaven_package(
    desktop_development libquillaven-desktop-dev libdevel "Headers and CMake files of QuillavenDesktop"
    "What programs that show QuillavenLib's windows are built with." ${desktop} libquillaven-dev)
endif()
if(TARGET quillaven)
  quillaven_package(
    program quillaven science "Draws, converts and edits rasters, networks and function tables"
    "The command-line program of QuillavenLib, with land use, roads and railways of Liechtenstein."
    ${library} ${desktop})
endif()
# The libraries of one package are not installed while the next is made.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/quillaven
                                                ${PROJECT_BINARY_DIR}/desktop)
include(CPack)
