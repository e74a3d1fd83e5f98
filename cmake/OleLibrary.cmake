# One way to make a shared library of the project, so that the libraries differ in name only.

# scripts/abi.sh reads the interface from it. `cmake --install --strip` leaves it behind.
set(release_of_its_own OFF)
if(PROJECT_IS_TOP_LEVEL AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(release_of_its_own ON)
endif()
option(OLE_DEBUG_INFO "Give the libraries debug info" ${release_of_its_own})
option(OLE_INSTALL "Offer the libraries to cmake --install" ${PROJECT_IS_TOP_LEVEL})
# Headers of several major versions may stand side by side.
set(OLE_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/ole-${PROJECT_VERSION_MAJOR}")
set(OLE_LIBRARY_EXPORTS "${CMAKE_CURRENT_LIST_DIR}/library.map")

# ole_add_library(<name> <define>): a shared library of every source below the calling folder, with
# the alias ole::<name>. <define> is set while the library itself is built, for its export macro.
function(ole_add_library name define)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  add_library(${name} SHARED ${sources})
  add_library(ole::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    DEFINE_SYMBOL ${define}
    INSTALL_RPATH "$ORIGIN")
  target_compile_features(${name} PUBLIC cxx_std_20)
  # Nobody puts a function of his own in the place of one that the library calls: Clang's rule.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:ole_flags>)
  if(NOT APPLE AND NOT WIN32)
    target_link_options(${name} PRIVATE "LINKER:--version-script=${OLE_LIBRARY_EXPORTS}")
    set_target_properties(${name} PROPERTIES LINK_DEPENDS "${OLE_LIBRARY_EXPORTS}")
  endif()
  if(OLE_DEBUG_INFO)
    target_compile_options(${name} PRIVATE -g "-fdebug-prefix-map=${PROJECT_SOURCE_DIR}=.")
  endif()
endfunction()

# ole_public_headers(<name> <base> <header>...): the headers that are installed with the library,
# each under its path from the folder <base>, which is where consumers look for them.
function(ole_public_headers name base)
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${base}" FILES ${ARGN})
  if(OLE_INSTALL)
    install(TARGETS ${name} EXPORT ole-targets
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${name} NAMELINK_COMPONENT development
      FILE_SET HEADERS DESTINATION ${OLE_INSTALL_INCLUDEDIR} COMPONENT development)
  endif()
endfunction()
