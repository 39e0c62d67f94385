# refgrove_test(<name> SOURCES <files...> LIBS <libraries...>)
# Builds one GoogleTest program and registers each of its tests with CTest.
function(refgrove_test name)
  cmake_parse_arguments(T "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE ${T_LIBS} GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT 300
                       WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
endfunction()
