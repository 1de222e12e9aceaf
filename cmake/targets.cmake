# How our targets are compiled. Flags belong to targets, never to a folder or to the
# whole build: a project that takes us in keeps its own.

# kzoci_target NAME: what all our targets have in common.
function(kzoci_target target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion)
  if(KZOCI_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  # Source paths in log records begin at the project's folder, wherever it is built.
  target_compile_options(${target} PRIVATE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
  kzoci_instrument(${target})
endfunction()

# Whoever links what is instrumented needs the runtime of the instrumentation.
# KZOCI_PLAIN_CODE is set in folders whose own code is not instrumented.
function(kzoci_instrument target)
  set(compiling)
  set(linking)
  if(KZOCI_SANITIZE)
    list(APPEND compiling -fsanitize=${KZOCI_SANITIZE} -fno-sanitize-recover=all
         -fno-omit-frame-pointer)
    list(APPEND linking -fsanitize=${KZOCI_SANITIZE})
  endif()
  if(KZOCI_COVERAGE)
    # Counters are shared by threads.
    list(APPEND compiling --coverage -O0 -fprofile-update=atomic)
    list(APPEND linking --coverage)
  endif()
  if(NOT KZOCI_PLAIN_CODE)
    target_compile_options(${target} PRIVATE ${compiling})
  endif()
  target_link_options(${target} PUBLIC ${linking})
endfunction()

# kzoci_library NAME SOURCE...: kzoci_NAME, known as kzoci::NAME. It needs the C library
# alone, so that a C program links it.
function(kzoci_library name)
  add_library(kzoci_${name} STATIC ${ARGN})
  add_library(kzoci::${name} ALIAS kzoci_${name})
  set_target_properties(kzoci_${name} PROPERTIES EXPORT_NAME ${name}
                        POSITION_INDEPENDENT_CODE ON)
  target_compile_features(kzoci_${name} PRIVATE cxx_std_20)
  # Calls within a file are our own functions, also in position-independent code. The
  # checks of the C++ library report through that library.
  target_compile_options(kzoci_${name} PRIVATE -fno-exceptions -fno-rtti
                         -fno-semantic-interposition -U_GLIBCXX_ASSERTIONS)
  # The records hold a 64-bit time_t.
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(kzoci_${name} PUBLIC _TIME_BITS=64 _FILE_OFFSET_BITS=64)
  endif()
  target_include_directories(kzoci_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                                  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  kzoci_target(kzoci_${name})
endfunction()
