include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
kzoci_headers(CLI11::CLI11 CLI)
