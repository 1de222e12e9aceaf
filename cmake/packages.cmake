# The Debian packages, one for each component of the installation; scripts/package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "the kzoci authors <kzoci@localhost.localdomain>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL library explanation development command)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What is stripped goes into packages of debug symbols.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)

set(library_package libkzoci${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"connect identifiers of a database client
A connect identifier is a net service name, which is looked up in a names
file, or a literal descriptor. The library turns it into records from which a
connection layer picks servers, balances load, times out, retries and
blacklists.")

set(explanation_package libkzoci-explain${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_EXPLANATION_PACKAGE_NAME ${explanation_package})
set(CPACK_DEBIAN_EXPLANATION_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_EXPLANATION_DESCRIPTION
"why connect identifiers of a database client lead nowhere
A connect identifier is a net service name, which is looked up in a names
file, or a literal descriptor. The library tells a program why a lookup fails:
with line, column and what to do.")

# Whoever links a library depends on its package; the loader's cache is brought up to date.
foreach(component IN ITEMS library explanation)
  string(TOUPPER ${component} name)
  set(package ${${component}_package})
  string(REGEX REPLACE "[0-9]+$" "" soname ${package})
  string(REPLACE - _ soname ${soname})
  file(WRITE ${PROJECT_BINARY_DIR}/${component}/shlibs
       "${soname} ${PROJECT_VERSION_MAJOR} ${package} (>= ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})\n")
  set(CPACK_DEBIAN_${name}_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/${component}/shlibs
      ${PROJECT_SOURCE_DIR}/packaging/debian/triggers)
endforeach()

set(packaged ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkzoci-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${library_package} (= ${packaged}), ${explanation_package} (= ${packaged})")
set(CPACK_DEBIAN_DEVELOPMENT_DEBUGINFO_PACKAGE OFF)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"connect identifiers of a database client (development files)
A connect identifier is a net service name, which is looked up in a names
file, or a literal descriptor. This package has the headers, the static
libraries, and what CMake and pkg-config need to find them.")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME kztns)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION database)
set(CPACK_DEBIAN_COMMAND_DESCRIPTION
"shows, checks and mends names files of a database client
The command shows what a lookup of a connect identifier finds and why it finds
nothing, tells what is wrong with a names file with line and column, and mends
it.")

# Documents that Debian wants in every package.
if(KZOCI_DEBIAN_FILES)
  configure_file(packaging/debian/changelog changelog.Debian COPYONLY)
  kzoci_compress(${PROJECT_BINARY_DIR}/changelog.Debian changelog)
  foreach(component IN ITEMS library explanation development command)
    string(TOUPPER ${component} name)
    set(folder ${CMAKE_INSTALL_DOCDIR}/../${CPACK_DEBIAN_${name}_PACKAGE_NAME})
    cmake_path(NORMAL_PATH folder)
    install(FILES packaging/debian/copyright ${changelog}
            DESTINATION ${folder} COMPONENT ${component})
    set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
    configure_file(packaging/debian/${component}.lintian-overrides.in lintian/${package} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/lintian/${package}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component})
  endforeach()
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/strip_archives.cmake)
include(CPack)
