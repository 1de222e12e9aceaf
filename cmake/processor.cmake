# Debian's cross compiler for one processor, and what runs its programs here.
#
#   KZOCI_PROCESSOR     i386, whose programs run on amd64 as they are; arm64, armhf or s390x,
#                       whose programs run in an emulator (qemu-user)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KZOCI_PROCESSOR)

set(triplet_i386 i686-linux-gnu)
set(triplet_arm64 aarch64-linux-gnu)
set(triplet_armhf arm-linux-gnueabihf)
set(triplet_s390x s390x-linux-gnu)
set(emulator_arm64 qemu-aarch64)
set(emulator_armhf qemu-arm)
set(emulator_s390x qemu-s390x)

set(triplet ${triplet_${KZOCI_PROCESSOR}})
if(NOT triplet)
  message(FATAL_ERROR "unknown processor ${KZOCI_PROCESSOR}: i386, arm64, armhf and s390x are known")
endif()
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)

# The libraries come with the compiler.
if(emulator_${KZOCI_PROCESSOR})
  set(CMAKE_SYSTEM_NAME Linux)
  set(CMAKE_SYSTEM_PROCESSOR ${KZOCI_PROCESSOR})
  find_program(KZOCI_EMULATOR ${emulator_${KZOCI_PROCESSOR}} REQUIRED)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${KZOCI_EMULATOR} -L /usr/${triplet})
else()
  set(libraries /usr/${triplet}/lib)
  # A path of the old kind holds for what those libraries load as well.
  string(CONCAT CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=${libraries}/ld-linux.so.2 "
         "-Wl,--disable-new-dtags,-rpath,${libraries}")
endif()
