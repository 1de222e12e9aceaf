# kzoci_headers(TARGET FOLDER): a library of headers alone, those of this machine in
# /usr/include/FOLDER, seen without the others there.
function(kzoci_headers target folder)
  if(TARGET ${target})
    return()
  endif()
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers)
  file(CREATE_LINK /usr/include/${folder} ${PROJECT_BINARY_DIR}/headers/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${PROJECT_BINARY_DIR}/headers)
endfunction()
