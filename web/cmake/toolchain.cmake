# Builds for browsers, with Debian's emscripten. Its compiler brings a C library of its own:
# of this machine's headers only those of libraries that are nothing but headers may be seen,
# so these are linked into a folder that has no others.
set(NODE_PATH /usr/share/nodejs)
set(ENV{NODE_PATH} ${NODE_PATH})
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)

foreach(package IN ITEMS CLI11 nlohmann_json)
  set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/packages CACHE PATH "")
endforeach()

# The linker finds symbols in any order of libraries.
set(CMAKE_CXX_LINK_GROUP_USING_RESCAN_SUPPORTED TRUE)
set(CMAKE_CXX_LINK_GROUP_USING_RESCAN "" "")
set(CMAKE_C_LINK_GROUP_USING_RESCAN_SUPPORTED TRUE)
set(CMAKE_C_LINK_GROUP_USING_RESCAN "" "")

# Some flags speak of shared libraries, which are not made.
foreach(language IN ITEMS C CXX)
  set(CMAKE_${language}_FLAGS_INIT
      "-Wno-unused-command-line-argument -include ${CMAKE_CURRENT_LIST_DIR}/wide_time.h")
endforeach()
