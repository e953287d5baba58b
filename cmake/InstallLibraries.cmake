# What a program needs to be built with the libraries and to run: the component "runtime" holds the
# shared objects, "development" all else. Nothing installed holds a path, so the tree may be moved.
include(CMakePackageConfigHelpers)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tqlabel)
set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)

install(
  TARGETS tqasn1 tqlabel
  EXPORT tqlabel
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT runtime
          NAMELINK_COMPONENT development
  INCLUDES
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)

# The exported targets depend on no other package, so they are the whole configuration.
install(EXPORT tqlabel NAMESPACE tqlabel:: FILE tqlabel-config.cmake DESTINATION ${cmake_dir}
        COMPONENT development)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/tqlabel-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tqlabel-config-version.cmake DESTINATION ${cmake_dir}
        COMPONENT development)

# install_pkgconfig(<library> <description> <libraries that only it calls>)
function(install_pkgconfig library description requires)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${pkgconfig_dir} OUTPUT_VARIABLE up)
  set(pc ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${pc} @ONLY)
  install(FILES ${pc} DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
install_pkgconfig(tqasn1 "DER primitives, and the allocator of tqlabel" "")
install_pkgconfig(tqlabel "Builds, parses and edits security labels" "tqasn1 = ${PROJECT_VERSION}")
