# `cmake --install`: the command-line tool, refgrove.so, its C header, and
# the files with which C and C++ programs find them (pkg-config and a CMake
# package); the Python package installs itself (python/CMakeLists.txt).
# Layout under the prefix:
#   bin/refgrove
#   <mandir>/man1/refgrove.1
#   <libdir>/refgrove.so
#   include/refgrove/refgrove.h (the umbrella), export.h, query.h,
#   preprocess.h, search.h, network.h, fronts.h: the folder include/refgrove/ as it is
#   <libdir>/pkgconfig/refgrove.pc
#   <libdir>/cmake/refgrove/refgroveConfig.cmake, refgroveConfigVersion.cmake
#
# refgrove.so keeps the name the host engine loads it by: no "lib" prefix and
# no soname. Programs therefore link it as -l:refgrove.so (the name is then
# what the executable records) and find it at run time through an rpath.
# Both package files locate the prefix from where they are installed, so an
# installation can be moved or made with `cmake --install --prefix`.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(REFGROVE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/refgrove)
set(REFGROVE_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS refgrove_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS refgrove LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# The headers include each other as "refgrove/...", which the include
# directory of the prefix resolves as the source tree's include/ does.
install(DIRECTORY include/refgrove DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/tools/refgrove.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The way up from a directory below the prefix to the prefix itself
# ("../..", without the trailing "/" that RELATIVE_PATH leaves).
function(refgrove_path_to_prefix out dir)
  file(RELATIVE_PATH up /prefix/${dir} /prefix)
  string(REGEX REPLACE "/$" "" up "${up}")
  set(${out} ${up} PARENT_SCOPE)
endfunction()

refgrove_path_to_prefix(REFGROVE_PC_TO_PREFIX ${REFGROVE_PKGCONFIG_DIR})
configure_file(cmake/refgrove.pc.in refgrove.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/refgrove.pc DESTINATION ${REFGROVE_PKGCONFIG_DIR})

refgrove_path_to_prefix(REFGROVE_CONFIG_TO_PREFIX ${REFGROVE_CMAKE_DIR})
configure_file(cmake/refgroveConfig.cmake.in refgroveConfig.cmake @ONLY)
write_basic_package_version_file(refgroveConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/refgroveConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/refgroveConfigVersion.cmake
        DESTINATION ${REFGROVE_CMAKE_DIR})

# Installs into a temporary prefix and builds a C program (and the same as
# C++) against it, once through pkg-config and once through find_package;
# with the Python package, imports it from the prefix.
# Not where refgrove.so needs the host's symbols (i386) or a sanitizer's
# runtime (the program would have to be built with it too).
if(NOT REFGROVE_I386 AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME install_test
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/cmake/install_test/run.sh ${CMAKE_BINARY_DIR}
                   ${CMAKE_CURRENT_SOURCE_DIR}/data/sample/ ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER}
                   ${CMAKE_GENERATOR} ${PROJECT_VERSION} "${REFGROVE_PYTHON_PACKAGE_DIR}")
  set_tests_properties(install_test PROPERTIES TIMEOUT 300)
endif()
