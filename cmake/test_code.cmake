# How tests are compiled and run; included by the folders that hold them.
#
# Alike in every build, so that builds share the compiler cache: what is tested is
# optimised and instrumented, a test is not, since optimising it takes longer than
# running it. Only the thread sanitizer needs all code instrumented; and a fuzzer
# runs long enough for its own code to be optimised.
if(NOT KZOCI_SANITIZE MATCHES "fuzzer")
  foreach(build_type IN ITEMS DEBUG RELEASE RELWITHDEBINFO MINSIZEREL)
    set(CMAKE_CXX_FLAGS_${build_type} -g1)
  endforeach()
  if(NOT KZOCI_SANITIZE MATCHES "thread")
    set(KZOCI_PLAIN_CODE ON)
  endif()
endif()

# Test code that runs many thousand cases is optimised all the same.
function(kzoci_busy_test_code target)
  target_compile_options(${target} PRIVATE -O2)
endfunction()

# Seconds that a test may take. An emulator needs many times what the processor itself does.
set(kzoci_test_timeout 300)
if(CMAKE_CROSSCOMPILING_EMULATOR)
  set(kzoci_test_timeout 6000)
endif()
