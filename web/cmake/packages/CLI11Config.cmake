# The page has no command line.
add_library(CLI11::CLI11 INTERFACE IMPORTED)
