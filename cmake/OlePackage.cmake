# How other projects find the installed libraries: find_package(ole) and pkg-config. Both work out
# the folders from where their own files stand, so that an installed tree may be moved.

include(CMakePackageConfigHelpers)

# The guide, what it links to, and the examples, laid out as here, so that its links lead somewhere.
set(pages embedding tasks limits performance tool format-ale format-container format-csv format-fieldmap format-table)
list(TRANSFORM pages PREPEND "${PROJECT_SOURCE_DIR}/docs/")
list(TRANSFORM pages APPEND ".md")
install(FILES ${pages} DESTINATION "${CMAKE_INSTALL_DOCDIR}/docs" COMPONENT development)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
  FILES_MATCHING PATTERN "*.cpp")
install(FILES "${PROJECT_SOURCE_DIR}/samples/day-12.ale" DESTINATION "${CMAKE_INSTALL_DOCDIR}/samples" COMPONENT development)

# A platform of the host's own is the host's to install and to find.
if(OLE_PLATFORM_TARGET STREQUAL "tarn")
  set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/ole-${PROJECT_VERSION_MAJOR}")
  install(EXPORT ole-targets NAMESPACE ole:: DESTINATION "${package_folder}" COMPONENT development)
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/ole-config-version.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES
    "${PROJECT_SOURCE_DIR}/cmake/ole-config.cmake" "${PROJECT_BINARY_DIR}/ole-config-version.cmake"
    DESTINATION "${package_folder}" COMPONENT development)

  set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  string(REGEX REPLACE "[^/]+" ".." prefix_from_here "${pkgconfig_folder}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/ole.pc.in" "${PROJECT_BINARY_DIR}/ole.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/ole.pc"
    DESTINATION "${pkgconfig_folder}" COMPONENT development)
endif()
