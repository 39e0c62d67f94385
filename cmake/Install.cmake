# `cmake --install`: the command-line tool, refgrove.so, its C header, and
# the files with which C and C++ programs find them (pkg-config and a CMake
# package). Layout under the prefix:
#   bin/refgrove
#   <libdir>/refgrove.so
#   include/refgrove/refgrove.h, include/refgrove/search.h, include/refgrove/network.h
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
install(FILES core/refgrove.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refgrove)
install(FILES search/refgrove_search.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refgrove RENAME search.h)
install(FILES network/refgrove_network.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/refgrove RENAME network.h)

# The way up from a directory below the prefix to the prefix itself.
function(refgrove_path_to_prefix out dir)
  file(RELATIVE_PATH up /prefix/${dir} /prefix)
  set(${out} ${up} PARENT_SCOPE)
endfunction()

refgrove_path_to_prefix(REFGROVE_PC_TO_PREFIX ${REFGROVE_PKGCONFIG_DIR})
configure_file(cmake/refgrove.pc.in refgrove.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/refgrove.pc DESTINATION ${REFGROVE_PKGCONFIG_DIR})

refgrove_path_to_prefix(REFGROVE_CONFIG_TO_PREFIX ${REFGROVE_CMAKE_DIR})
configure_file(cmake/refgroveConfig.cmake.in refgroveConfig.cmake @ONLY)
# 0.x releases: only the same minor version is compatible.
write_basic_package_version_file(refgroveConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/refgroveConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/refgroveConfigVersion.cmake
        DESTINATION ${REFGROVE_CMAKE_DIR})

# Installs into a temporary prefix and builds a C program (and the same as
# C++) against it, once through pkg-config and once through find_package.
# Not where refgrove.so needs the host's symbols (i386) or a sanitizer's
# runtime (the program would have to be built with it too).
if(NOT REFGROVE_I386 AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME install_test
           COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/cmake/install_test/run.sh ${CMAKE_BINARY_DIR}
                   ${CMAKE_CURRENT_SOURCE_DIR}/data/sample/ ${CMAKE_C_COMPILER} ${CMAKE_CXX_COMPILER}
                   ${CMAKE_GENERATOR})
  set_tests_properties(install_test PROPERTIES TIMEOUT 300)
endif()
