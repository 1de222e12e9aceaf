# The man pages, with the version in them, below man/ of the build folder. kzoci_man_pages
# lists them.
set(kzoci_man_pages)
foreach(page IN ITEMS kztns.1 kzoci_tnsname.3 kzoci_tnsnames.5)
  configure_file(${PROJECT_SOURCE_DIR}/docs/man/${page}.in ${PROJECT_BINARY_DIR}/man/${page} @ONLY)
  list(APPEND kzoci_man_pages ${PROJECT_BINARY_DIR}/man/${page})
endforeach()
