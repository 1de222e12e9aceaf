# Builds for Windows (64 bits) by Debian's mingw-w64. Its programs run here under wine, with
# a folder of their own in the place of the user's: below the build, KZOCI_WINE_FOLDER.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KZOCI_WINE_FOLDER)
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# A program needs no library of the compiler beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)

# This machine's headers are of another system; those of libraries that are nothing but
# headers are linked into a folder that has no others.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
foreach(package IN ITEMS CLI11 nlohmann_json)
  set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/windows CACHE PATH "")
endforeach()

find_program(KZOCI_WINE wine REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/env WINEDEBUG=-all WINEPREFIX=${KZOCI_WINE_FOLDER}
    ${KZOCI_WINE})
