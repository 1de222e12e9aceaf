# Debian's cross compiler for i386, whose programs run on amd64 as they are, with the
# libraries that come with it.
set(CMAKE_C_COMPILER i686-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)

set(libraries /usr/i686-linux-gnu/lib)
# A path of the old kind holds for what those libraries load as well.
string(CONCAT CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=${libraries}/ld-linux.so.2 "
       "-Wl,--disable-new-dtags,-rpath,${libraries}")
