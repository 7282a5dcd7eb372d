# What `cmake --install` puts down, in components that are the packages of debian/: programs (with their
# manual pages and completions), data, library (what programs load), development, python, sqlite, documents.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/statecut)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/statecut)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(python_dir lib/python3/dist-packages)

set(STATECUT_ZSH_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
  "Where zsh looks for completions")
set(bash_dir ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
set(fish_dir ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
set(completion_dirs ${bash_dir} ${STATECUT_ZSH_DIR} ${fish_dir})

# Notes the folders that `uninstall` takes away: the project's own, and those that are not there yet.
set(own_dirs ${CMAKE_INSTALL_DATADIR}/statecut ${CMAKE_INSTALL_LIBDIR}/statecut ${package_dir} ${header_dir} ${python_dir}/statecut
  ${CMAKE_INSTALL_DOCDIR})
set(shared_dirs ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_LIBDIR} ${pkgconfig_dir} ${man_dirs}
  ${completion_dirs})
string(CONFIGURE [[
set(NOTED "@PROJECT_BINARY_DIR@/install_folders.txt")
set(OWN "@own_dirs@")
set(SHARED "@shared_dirs@")
include("@CMAKE_CURRENT_LIST_DIR@/notefolders.cmake")
]] note_folders @ONLY)
install(CODE "${note_folders}" ALL_COMPONENTS)

install(TARGETS statecut statedb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
install(TARGETS mod_statecut LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/statecut COMPONENT sqlite)
include(${CMAKE_CURRENT_LIST_DIR}/completions.cmake)
foreach(page IN LISTS manuals)
  cmake_path(GET page EXTENSION LAST_ONLY section)
  string(SUBSTRING ${section} 1 -1 section)
  set(component programs)
  if(section EQUAL 3)
    set(component development)
  endif()
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section} COMPONENT ${component})
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/data/us_zip_city.csv ${PROJECT_SOURCE_DIR}/data/NOTICE.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/statecut COMPONENT data)
install(TARGETS statecut_core statecut_shared EXPORT statecut
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(EXPORT statecut NAMESPACE statecut:: FILE statecutConfig.cmake DESTINATION ${package_dir}
  COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/statecutConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/statecutConfigVersion.cmake DESTINATION ${package_dir}
  COMPONENT development)

# For pkg-config: the prefix is found from the place of the file, so that it may be moved. statecut is
# the C library, statecut-cxx the archive with the C++ interface.
file(RELATIVE_PATH to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" to_prefix ${to_prefix})
foreach(name IN ITEMS statecut statecut-cxx)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endforeach()

# The Python package finds the library of the prefix that it lies in.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/bindings/python/statecut DESTINATION ${python_dir}
  COMPONENT python
  FILES_MATCHING PATTERN "*.py" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)

# include/statecut/core is a link to src/; of that, the headers of the interface are installed.
# They include each other by relative names, so that one include path serves both trees.
file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/statecut/*.h)
install(FILES ${headers} ${PROJECT_BINARY_DIR}/include/statecut/version.h DESTINATION ${header_dir}
  COMPONENT development)
foreach(header IN ITEMS
    base/le.h base/memory.h base/procobj.h base/row.h base/stream.h
    log/seedlog.h log/utllgmsg.h dbfiles/apiutil.h dbfiles/controlrec.h
    hash/namehash.h
    tables/dbapi.h tables/refpointers.h tables/rows.h tables/tolvfree.h
    lookup/cache.h lookup/cities.h lookup/dispatch.h lookup/firm.h lookup/session.h
    lookup/street.h lookup/tablesets.h lookup/zip.h
    reader/database.h reader/error.h reader/records.h)
  get_filename_component(module ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${header_dir}/core/${module}
    COMPONENT development)
endforeach()

file(GLOB documents CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
file(GLOB examples CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/examples/*.c ${PROJECT_SOURCE_DIR}/examples/*.cpp
  ${PROJECT_SOURCE_DIR}/examples/*.py)
install(FILES ${examples} DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT documents)

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -D BUILD=${PROJECT_BINARY_DIR}
    -P ${CMAKE_CURRENT_LIST_DIR}/uninstall.cmake VERBATIM)
endif()
