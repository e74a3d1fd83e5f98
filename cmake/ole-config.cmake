# find_package(ole 14): the targets ole::ole, which programs link, and ole::tarn, which it needs.
include("${CMAKE_CURRENT_LIST_DIR}/ole-targets.cmake")
