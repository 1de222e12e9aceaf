# The project's version is that of kzoci/version.h: kzoci_version.
set(version_header ${CMAKE_CURRENT_LIST_DIR}/../kzoci/version.h)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${version_header})
file(STRINGS ${version_header} kzoci_version REGEX "^#define KZOCI_VERSION_[A-Z]+ [0-9]+$")
list(TRANSFORM kzoci_version REPLACE "^.* " "")
list(JOIN kzoci_version "." kzoci_version)
