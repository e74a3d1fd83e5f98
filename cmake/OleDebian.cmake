# Debian packages, made by cpack: the two libraries, each under its name with the major version, what
# is needed to build programs with them, and the tool. scripts/packages.sh makes and tries them.

# debian/changelog says which version is packaged.
set(changelog "${PROJECT_SOURCE_DIR}/debian/changelog")
file(STRINGS "${changelog}" heading LIMIT_COUNT 1)
file(STRINGS "${changelog}" signed REGEX "^ -- " LIMIT_COUNT 1)
if(NOT heading MATCHES "^ole \\(([0-9.]+)-([0-9.]+)\\)" OR NOT CMAKE_MATCH_1 VERSION_EQUAL PROJECT_VERSION)
  message(FATAL_ERROR "debian/changelog does not begin with an entry for ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE "${CMAKE_MATCH_2}")
set(version "${PROJECT_VERSION}-${CMAKE_MATCH_2}")
string(REGEX REPLACE "^ -- (.*>)  .*" "\\1" CPACK_DEBIAN_PACKAGE_MAINTAINER "${signed}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${changelog}" "${PROJECT_SOURCE_DIR}/CHANGELOG.md")

find_program(OLE_GZIP gzip REQUIRED)
mark_as_advanced(OLE_GZIP)
function(compress source result)
  execute_process(COMMAND "${OLE_GZIP}" -9nc "${source}"
    OUTPUT_FILE "${PROJECT_BINARY_DIR}/${result}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()
compress("${changelog}" changelog.Debian.gz)
compress("${PROJECT_SOURCE_DIR}/CHANGELOG.md" changelog.gz)

# ole_debian_package(<component> <package> <section> <depends> <description>): the first line of the
# description is the synopsis. What the programs of a package link is added to <depends> by cpack.
function(ole_debian_package component package section depends description)
  install(FILES
    "${PROJECT_SOURCE_DIR}/debian/copyright"
    "${PROJECT_BINARY_DIR}/changelog.Debian.gz" "${PROJECT_BINARY_DIR}/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${package}" COMPONENT ${component})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
endfunction()

set(libole libole${PROJECT_VERSION_MAJOR})
set(libtarn libtarn${PROJECT_VERSION_MAJOR})
ole_debian_package(tarn ${libtarn} libs ""
"platform library of the logging database ole
Strings, text files, identifiers, notifications, timecodes and settings, as
${libole} uses them.")
ole_debian_package(ole ${libole} libs "${libtarn} (= ${version})"
"logging database of a film and video editor
Tables of shots, takes, timecodes, key numbers, rolls and notes: their file
format, sorting, searching, tagging, and the import of ALE logs.")
ole_debian_package(development libole-dev libdevel "${libole} (= ${version}), ${libtarn} (= ${version})"
"logging database of a film and video editor (development)
Tables of shots, takes, timecodes, key numbers, rolls and notes: their file
format, sorting, searching, tagging, and the import of ALE logs.
.
This package holds the headers, the CMake package, the pkg-config file, the
guide and the examples for programs that use ${libole}.")
ole_debian_package(tool olelog video "${libole} (>= ${version}), ${libtarn} (>= ${version})"
"import, check, search and export the logs of a shoot
A filter for ALE logs of cameras and labs, and for table files of logs: it
tells what an import would lose, and shows, sorts, tags, merges and exports
rows as CSV or JSON.")

# dpkg runs ldconfig once, when all is unpacked.
set(CPACK_DEBIAN_TARN_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/debian/triggers")
set(CPACK_DEBIAN_OLE_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/debian/triggers")

# The manual page is compressed where it is packed.
install(CODE "
  execute_process(COMMAND \"${OLE_GZIP}\" -9nf
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_MANDIR}/man1/olelog.1\" COMMAND_ERROR_IS_FATAL ANY)"
  COMPONENT tool)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ole)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL tarn ole development tool)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE ole)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Its own libraries are in no package that dpkg knows yet: their packages are named above.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
include(CPack)
