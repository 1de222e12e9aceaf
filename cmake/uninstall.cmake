# Removes what an installation put in its place: the files that the manifests of a build
# folder list, of all components or of single ones, and folders of our own that are empty
# without them. Other folders, links to folders and files of others stay.
#   cmake -DFOLDER=BUILD_FOLDER -P uninstall.cmake
cmake_minimum_required(VERSION 3.25)

# Names of folders that nothing but this project is installed in.
set(own_folder "/(include/kzoci/platform|include/kzoci|cmake/kzoci|doc/kzoci)$")

# Paths may have any character in them: they are never patterns, nor elements of lists.
function(remove_file path)
  if(NOT EXISTS "${path}" AND NOT IS_SYMLINK "${path}")
    message(STATUS "Not there: ${path}")
    return()
  endif()
  file(REMOVE "${path}")
  if(EXISTS "${path}" OR IS_SYMLINK "${path}")
    message(FATAL_ERROR "cannot remove ${path}")
  endif()
  message(STATUS "Removed ${path}")
  set(removed TRUE PARENT_SCOPE)
  cmake_path(GET path PARENT_PATH folder)
  while("${folder}" MATCHES "${own_folder}")
    # Unlike CMake's own commands it fails on a folder that is not empty, and on a link.
    execute_process(COMMAND rmdir -- "${folder}" OUTPUT_QUIET ERROR_QUIET)
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endfunction()

function(remove_listed manifest)
  file(READ "${manifest}" rest)
  while("${rest}" MATCHES "^([^\n]*)\n?(.*)$" AND NOT "${rest}" STREQUAL "")
    set(file "${CMAKE_MATCH_1}")
    set(rest "${CMAKE_MATCH_2}")
    remove_file("$ENV{DESTDIR}${file}")
  endwhile()
  set(removed ${removed} PARENT_SCOPE)
endfunction()

set(removed FALSE)
set(manifests)
foreach(component IN ITEMS "" _library _explanation _development _command)
  set(manifest "install_manifest${component}.txt")
  if(EXISTS "${FOLDER}/${manifest}")
    list(APPEND manifests ${manifest})
    remove_listed("${FOLDER}/${manifest}")
  endif()
endforeach()
if(NOT manifests)
  message(FATAL_ERROR "nothing is installed: there is no install_manifest.txt in ${FOLDER}")
endif()
# Where nothing was there, DESTDIR is perhaps another one.
if(removed)
  foreach(manifest IN LISTS manifests)
    file(REMOVE "${FOLDER}/${manifest}")
  endforeach()
endif()
