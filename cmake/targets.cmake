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
    set(measuring --coverage)
    if(KZOCI_COVERAGE STREQUAL "mcdc")
      set(measuring -fprofile-instr-generate -fcoverage-mapping -fcoverage-mcdc)
    endif()
    # Counters are shared by threads.
    list(APPEND compiling ${measuring} -O0 -fprofile-update=atomic)
    list(APPEND linking ${measuring})
  endif()
  if(NOT KZOCI_PLAIN_CODE)
    target_compile_options(${target} PRIVATE ${compiling})
  endif()
  target_link_options(${target} PUBLIC ${linking})
endfunction()

# kzoci_interface NAME: what programs get that link one of the libraries, which they know as
# kzoci::NAME.
function(kzoci_interface target name)
  add_library(kzoci::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  # The records hold a 64-bit time_t.
  if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_compile_definitions(${target} PUBLIC _TIME_BITS=64 _FILE_OFFSET_BITS=64)
  endif()
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                              $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endfunction()

# kzoci_library NAME SOURCE...: the static library kzoci_NAME, known as kzoci::NAME. It needs
# the C library alone, so that a C program links it.
function(kzoci_library name)
  add_library(kzoci_${name} STATIC ${ARGN})
  kzoci_interface(kzoci_${name} ${name})
  set_target_properties(kzoci_${name} PROPERTIES
                        POSITION_INDEPENDENT_CODE ON  # libkzoci.so is made of it, too
                        CXX_VISIBILITY_PRESET hidden
                        VISIBILITY_INLINES_HIDDEN ON
                        UNITY_BUILD OFF)  # a function that a program brings leaves out its file
  target_compile_features(kzoci_${name} PRIVATE cxx_std_20)
  # Calls within a file are our own functions, also in position-independent code. The
  # checks of the C++ library report through that library.
  target_compile_options(kzoci_${name} PRIVATE -fno-exceptions -fno-rtti
                         -fno-semantic-interposition -U_GLIBCXX_ASSERTIONS)
  kzoci_target(kzoci_${name})
endfunction()

# kzoci_whole_library NAME [SHARED|STATIC]: module and platform in one library. A C compiler
# links it: it needs nothing of the C++ library.
function(kzoci_whole_library target)
  add_library(${target} ${ARGN}
    $<TARGET_OBJECTS:kzoci_tnsname> $<TARGET_OBJECTS:kzoci_platform>)
  set_target_properties(${target} PROPERTIES
                        OUTPUT_NAME kzoci
                        VERSION ${PROJECT_VERSION}
                        SOVERSION ${PROJECT_VERSION_MAJOR}
                        LINKER_LANGUAGE C)
  # CMake names the C++ library for objects that come from C++.
  target_link_options(${target} PRIVATE LINKER:--as-needed)
  kzoci_instrument(${target})
endfunction()

# kzoci_export_only TARGET FILE: a shared library exports what a file lists, one function a line.
function(kzoci_export_only target list)
  file(STRINGS ${list} functions)
  list(JOIN functions ";\n    " functions)
  set(script ${PROJECT_BINARY_DIR}/${target}.map)
  file(CONFIGURE OUTPUT ${script}
       @ONLY CONTENT
       "KZOCI_${PROJECT_VERSION_MAJOR} {\n  global:\n    @functions@;\n  local: *;\n};\n")
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${list})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${script})
  target_link_options(${target} PRIVATE "LINKER:--version-script=${script}" LINKER:-z,defs)
endfunction()
