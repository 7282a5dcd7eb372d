# Adds to the file NOTED the folders OWN, and those of SHARED and of the folders above either that are
# not there.
cmake_policy(VERSION 3.25)
foreach(name IN LISTS OWN SHARED)
  cmake_path(ABSOLUTE_PATH name BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}" NORMALIZE
    OUTPUT_VARIABLE folder)
  cmake_path(GET folder ROOT_PATH root)
  if(name IN_LIST OWN)
    file(APPEND "${NOTED}" "$ENV{DESTDIR}${folder}\n")
  endif()
  while(NOT folder STREQUAL root AND NOT IS_DIRECTORY "$ENV{DESTDIR}${folder}")
    file(APPEND "${NOTED}" "$ENV{DESTDIR}${folder}\n")
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endforeach()
