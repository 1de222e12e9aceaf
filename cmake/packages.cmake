# The Debian packages: one for each component of the installation. scripts/package makes
# them.
set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_CONTACT "the kzoci authors <kzoci@localhost>")
include(CPack)
