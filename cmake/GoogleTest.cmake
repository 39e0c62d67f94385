# GoogleTest is compiled from the sources of Debian's `googletest` package in
# every build: its prebuilt libraries are 64-bit only, and compiling it with the
# build's own flags keeps the sanitizer and -m32 builds consistent.
set(REFGROVE_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest source tree")
if(NOT EXISTS ${REFGROVE_GTEST_SOURCE}/CMakeLists.txt)
  message(FATAL_ERROR "GoogleTest sources not found in ${REFGROVE_GTEST_SOURCE}; "
                      "run scripts/install-deps (Debian package `googletest`).")
endif()
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${REFGROVE_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
include(GoogleTest)
