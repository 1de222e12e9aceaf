# Installing the libraries, their headers, packages for CMake and pkg-config, the command.
# Each component is a Debian package, too.
include(CMakePackageConfigHelpers)

# Debian packages name the licence in a file of their own, see packages.cmake.
if(NOT KZOCI_DEBIAN_FILES)
  set(components library development)
  if(KZOCI_BUILD_TOOLS)
    list(APPEND components explanation command)
  endif()
  foreach(component IN LISTS components)
    install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/kzoci COMPONENT ${component})
  endforeach()
endif()

# The static library that "pkg-config --static" and "gcc -static" take.
if(BUILD_SHARED_LIBS)
  kzoci_whole_library(kzoci_static STATIC)
  install(TARGETS kzoci_static ARCHIVE COMPONENT development)
endif()

install(TARGETS kzoci_tnsname kzoci_platform kzoci EXPORT kzociTargets
        LIBRARY COMPONENT library NAMELINK_COMPONENT development
        ARCHIVE COMPONENT development)
install(FILES kzoci/oci_tnsname.h kzoci/oci_tnsname.hpp kzoci/oci_tnsname_parser.h
              kzoci/oci_tnsname_records.hpp kzoci/version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kzoci COMPONENT development)
install(FILES kzoci/platform/api.h kzoci/platform/default_logger.h kzoci/platform/log.h
              kzoci/platform/memory.h kzoci/platform/my_strtoll10.h kzoci/platform/types.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kzoci/platform COMPONENT development)
if(KZOCI_BUILD_TOOLS)
  install(TARGETS kztns RUNTIME COMPONENT command)
  set(completions tools/kztns/completions)
  # Debian's zsh has a place for packages; elsewhere, and in /usr/local, it is site-functions.
  set(zsh_dir zsh/site-functions)
  if(KZOCI_DEBIAN_FILES)
    set(zsh_dir zsh/vendor-completions)
  endif()
  install(FILES ${completions}/kztns.bash RENAME kztns COMPONENT command
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${completions}/_kztns COMPONENT command
          DESTINATION ${CMAKE_INSTALL_DATADIR}/${zsh_dir})
  install(FILES ${completions}/kztns.fish COMPONENT command
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  # The language server's findings link to it. In Debian a package has a folder of its own
  # name, and a link for the command, which looks in the other one.
  set(command_doc_dir ${CMAKE_INSTALL_DATADIR}/doc/kzoci)
  if(KZOCI_DEBIAN_FILES)
    set(command_doc_dir ${CMAKE_INSTALL_DATADIR}/doc/kztns)
    file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/doc)
    file(CREATE_LINK kztns ${PROJECT_BINARY_DIR}/doc/kzoci SYMBOLIC)
    install(FILES ${PROJECT_BINARY_DIR}/doc/kzoci DESTINATION ${CMAKE_INSTALL_DATADIR}/doc
            COMPONENT command)
  endif()
  install(FILES docs/diagnostics.md DESTINATION ${command_doc_dir} COMPONENT command)
  install(TARGETS kzoci_explain EXPORT kzociTargets
          LIBRARY COMPONENT explanation NAMELINK_COMPONENT development)
  install(FILES kzoci/explain.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kzoci
          COMPONENT development)
endif()
# kzoci_compress FILE RESULT: RESULT becomes the path of the compressed file.
function(kzoci_compress file result)
  cmake_path(GET file FILENAME name)
  execute_process(COMMAND gzip -9nc ${file} OUTPUT_FILE ${PROJECT_BINARY_DIR}/${name}.gz
                  COMMAND_ERROR_IS_FATAL ANY)
  set(${result} ${PROJECT_BINARY_DIR}/${name}.gz PARENT_SCOPE)
endfunction()

foreach(page IN LISTS kzoci_man_pages)
  cmake_path(GET page EXTENSION LAST_ONLY section)
  string(SUBSTRING ${section} 1 1 section)
  set(component command)
  if(section EQUAL 3)
    set(component development)
  endif()
  if(KZOCI_DEBIAN_FILES)
    kzoci_compress(${page} page)
  endif()
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kzoci)
install(EXPORT kzociTargets NAMESPACE kzoci:: FILE kzociTargets.cmake
        DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/kzociConfig.cmake.in ${PROJECT_BINARY_DIR}/kzociConfig.cmake
                              INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kzociConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kzociConfig.cmake ${PROJECT_BINARY_DIR}/kzociConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT development)

# The package finds the tree that it is in from its own place.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_package /prefix/${pkgconfig_dir} /prefix)
set(package_flags)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(package_flags " -D_TIME_BITS=64 -D_FILE_OFFSET_BITS=64")
endif()
set(packages kzoci)
if(TARGET kzoci_explain)
  list(APPEND packages kzoci_explain)
endif()
foreach(package IN LISTS packages)
  configure_file(cmake/${package}.pc.in ${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${pkgconfig_dir}
          COMPONENT development)
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  # Removes what was installed last, of all components and of each.
  add_custom_target(uninstall
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${PROJECT_BINARY_DIR}
            -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake
    VERBATIM)
  include(cmake/packages.cmake)
endif()
