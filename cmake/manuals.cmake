# The manual pages, made of the Markdown in man/ and of the document of the format where lowdown is there.
find_program(STATECUT_LOWDOWN lowdown)
set(manuals "")
set(man_dirs "")
if(NOT STATECUT_LOWDOWN)
  message(STATUS "No lowdown: no manual pages")
  return()
endif()

# The day of the release is that of the newest section of the changelog.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md release_line REGEX "^## " LIMIT_COUNT 1)
string(REGEX MATCH "[0-9]+-[0-9]+-[0-9]+$" release_day "${release_line}")

# add_manual(SOURCE NAME.SECTION [PURPOSE]): a page, and its place below the folder of manuals.
function(add_manual source page)
  cmake_path(GET page STEM LAST_ONLY name)
  cmake_path(GET page EXTENSION LAST_ONLY section)
  string(SUBSTRING ${section} 1 -1 section)
  set(output ${PROJECT_BINARY_DIR}/man/man${section}/${page})
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man/man${section}
    COMMAND ${PROJECT_SOURCE_DIR}/man/render ${source} ${name} ${section} ${PROJECT_VERSION}
      ${release_day} ${ARGN} > ${output}
    DEPENDS ${source} ${PROJECT_SOURCE_DIR}/man/render ${PROJECT_SOURCE_DIR}/CMakeLists.txt
      ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    VERBATIM)
  set(manuals ${manuals} ${output} PARENT_SCOPE)
endfunction()

file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/man/*.md)
foreach(source IN LISTS sources)
  cmake_path(GET source STEM LAST_ONLY page)
  add_manual(${source} ${page})
endforeach()
add_manual(${PROJECT_SOURCE_DIR}/docs/format.md statecut-format.5
  "format of postal address reference databases")

# The short forms of the lookups have one page.
foreach(name IN ITEMS city street firm)
  set(output ${PROJECT_BINARY_DIR}/man/man1/statedb-${name}.1)
  file(CONFIGURE OUTPUT ${output} CONTENT ".so man1/statedb-zip.1\n")
  list(APPEND manuals ${output})
endforeach()

add_custom_target(manuals ALL DEPENDS ${manuals})
foreach(section IN ITEMS 1 3 5)
  list(APPEND man_dirs ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
