# What `cmake --install` puts down: the tools with the ZIP codes that they build from, the library with
# its headers and CMake package, and the documents.
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
install(FILES ${PROJECT_SOURCE_DIR}/examples/lookup.cpp
  DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
