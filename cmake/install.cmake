# Installing the libraries, their headers and a CMake package, and packing them.
include(CMakePackageConfigHelpers)

install(TARGETS kzoci_tnsname kzoci_platform EXPORT kzociTargets)
install(FILES kzoci/oci_tnsname.h kzoci/oci_tnsname_parser.h kzoci/version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kzoci)
install(FILES kzoci/platform/default_logger.h kzoci/platform/log.h kzoci/platform/memory.h
              kzoci/platform/my_strtoll10.h kzoci/platform/types.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kzoci/platform)
if(KZOCI_BUILD_TOOLS)
  install(TARGETS kztns)
endif()

set(kzoci_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kzoci)
install(EXPORT kzociTargets NAMESPACE kzoci:: FILE kzociTargets.cmake
        DESTINATION ${kzoci_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kzociConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES cmake/kzociConfig.cmake ${PROJECT_BINARY_DIR}/kzociConfigVersion.cmake
        DESTINATION ${kzoci_package_dir})

if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_PACKAGE_CONTACT "kzoci maintainers")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  include(CPack)
endif()
