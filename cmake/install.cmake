# What `cmake --install` puts down: the tools with the ZIP codes that they build from, the library with
# its headers, its CMake package and its pkg-config file, the Python package, and the documents.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/statecut)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/statecut)

install(TARGETS statecut statedb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/data/us_zip_city.csv ${PROJECT_SOURCE_DIR}/data/NOTICE.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/statecut)
install(TARGETS statecut_core statecut_shared EXPORT statecut
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT statecut NAMESPACE statecut:: FILE statecutConfig.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/statecutConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/statecutConfigVersion.cmake DESTINATION ${package_dir})

# For pkg-config: the prefix is found from the place of the file, so that it may be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" to_prefix ${to_prefix})
configure_file(${CMAKE_CURRENT_LIST_DIR}/statecut.pc.in ${PROJECT_BINARY_DIR}/statecut.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/statecut.pc DESTINATION ${pkgconfig_dir})

# The Python package finds the library of the prefix that it lies in.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/bindings/python/statecut
  DESTINATION lib/python3/dist-packages COMPONENT python
  FILES_MATCHING PATTERN "*.py" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)

# include/statecut/core is a link to src/; of that, the headers of the interface are installed.
# They include each other by relative names, so that one include path serves both trees.
file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/statecut/*.h)
install(FILES ${headers} DESTINATION ${header_dir})
foreach(header IN ITEMS
    base/le.h base/memory.h base/procobj.h base/row.h base/stream.h
    log/seedlog.h log/utllgmsg.h dbfiles/apiutil.h dbfiles/controlrec.h
    hash/namehash.h
    tables/dbapi.h tables/refpointers.h tables/rows.h tables/tolvfree.h
    lookup/cache.h lookup/cities.h lookup/dispatch.h lookup/firm.h lookup/session.h
    lookup/street.h lookup/tablesets.h lookup/zip.h
    reader/database.h reader/error.h reader/records.h)
  get_filename_component(module ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/src/${header} DESTINATION ${header_dir}/core/${module})
endforeach()

file(GLOB documents CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/docs/*.md ${PROJECT_SOURCE_DIR}/man/*.md)
install(FILES ${documents} DESTINATION ${CMAKE_INSTALL_DOCDIR})
file(GLOB examples CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/examples/*.c ${PROJECT_SOURCE_DIR}/examples/*.cpp
  ${PROJECT_SOURCE_DIR}/examples/*.py)
install(FILES ${examples}
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
