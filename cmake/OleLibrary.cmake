# One way to make a shared library of the project, so that the libraries differ in name only.

# ole_add_library(<name> <define>): a shared library of every source below the calling folder, with
# the alias ole::<name>. <define> is set while the library itself is built, for its export macro.
function(ole_add_library name define)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  add_library(${name} SHARED ${sources})
  add_library(ole::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_compile_definitions(${name} PRIVATE ${define})
  # Nobody puts a function of his own in the place of one that the library calls: Clang's rule.
  target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:ole_flags>)
endfunction()
