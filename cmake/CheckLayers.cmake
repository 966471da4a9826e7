# Build-time pass of the include check, so that an include added to a file
# fails the next build without waiting for CMake to configure again:
#   cmake -DORVE_SOURCE_DIR=<tree> -DORVE_STAMP=<file> -P CheckLayers.cmake
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/OrveLayers.cmake)
orve_check_layers(${ORVE_SOURCE_DIR})
file(TOUCH ${ORVE_STAMP})
