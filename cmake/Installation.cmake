# Headers, the shared library, a CMake package and a pkg-config file.

include(CMakePackageConfigHelpers)

install(
  TARGETS QuillavenLib
  EXPORT QuillavenLibTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT runtime
          NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(
  DIRECTORY ${PROJECT_SOURCE_DIR}/quillaven
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  COMPONENT development
  FILES_MATCHING
  PATTERN "*.h"
  PATTERN "*_internal.h" EXCLUDE
  PATTERN posix EXCLUDE
  PATTERN windows EXCLUDE)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QuillavenLib)
install(
  EXPORT QuillavenLibTargets
  NAMESPACE Quillaven::
  DESTINATION ${package_dir}
  COMPONENT development)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/QuillavenLibConfig.cmake.in
  ${PROJECT_BINARY_DIR}/QuillavenLibConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/QuillavenLibConfigVersion.cmake COMPATIBILITY SameMinorVersion)
# The pkg-config file finds its prefix from where it lies, so that the tree can be moved.
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/QuillavenLib.pc.in ${PROJECT_BINARY_DIR}/QuillavenLib.pc
               @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/QuillavenLibConfig.cmake
              ${PROJECT_BINARY_DIR}/QuillavenLibConfigVersion.cmake
        DESTINATION ${package_dir}
        COMPONENT development)
install(
  FILES ${PROJECT_BINARY_DIR}/QuillavenLib.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT development)
