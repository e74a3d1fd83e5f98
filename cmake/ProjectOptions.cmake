# Flags that every target of the project shares. They are build requirements only: nothing here
# reaches a program that uses the installed libraries.
#
# The library target `ole_flags` carries warnings and sanitizers; each target links it privately.

option(OLE_WERROR "Treat compiler warnings as errors" ${PROJECT_IS_TOP_LEVEL})
set(OLE_SANITIZE "" CACHE STRING "Sanitizers to build with, e.g. \"address;undefined\"")

option(OLE_BLOCKS_ALONE "Allocate every string and row on its own: for valgrind" OFF)

add_library(ole_flags INTERFACE)

set(OLE_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
# GCC 12 warns falsely of overlap where a std::string is put together from literals.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  list(APPEND OLE_WARNINGS -Wno-restrict)
endif()
if(OLE_WERROR)
  list(APPEND OLE_WARNINGS -Werror)
endif()
target_compile_options(ole_flags INTERFACE ${OLE_WARNINGS})
target_compile_definitions(ole_flags INTERFACE $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

if(OLE_BLOCKS_ALONE)
  target_compile_definitions(ole_flags INTERFACE TARN_BLOCKS_ALONE)
endif()

if(OLE_SANITIZE)
  string(REPLACE ";" "," sanitizers "${OLE_SANITIZE}")
  target_compile_options(
    ole_flags INTERFACE -fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ole_flags INTERFACE -fsanitize=${sanitizers})
endif()

if(OLE_BUILD_FUZZERS)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES Clang)
    message(FATAL_ERROR "OLE_BUILD_FUZZERS needs Clang: -DCMAKE_CXX_COMPILER=clang++")
  endif()
  target_compile_options(ole_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Undefined symbols show when a library is linked, not when a program loads it. A sanitizer's own
# symbols are found in the program only, so there the check would fail.
if(NOT OLE_SANITIZE AND NOT APPLE)
  set(is_library "$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>")
  target_link_options(ole_flags INTERFACE "$<${is_library}:LINKER:--no-undefined>")
endif()

find_program(OLE_CCACHE ccache)
mark_as_advanced(OLE_CCACHE)
if(OLE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # No object tells in which build folder it was made, so that one folder's serve the others.
  set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_NOHASHDIR=1 "${OLE_CCACHE}")
endif()
