# refgrove_sanitizer_preload(<var>): sets <var> to the LD_PRELOAD value that
# a sanitized library needs in a program not built with the sanitizer (swipl,
# python3): GCC's ASan and UBSan libraries, or clang's ASan runtime, which
# holds its UBSan too. Empty when the build is not sanitized.
function(refgrove_sanitizer_preload var)
  set(preload "")
  if(CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      set(runtimes libasan.so libubsan.so)
    else()
      set(runtimes libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
    endif()
    foreach(runtime ${runtimes})
      execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime} OUTPUT_VARIABLE path
                      OUTPUT_STRIP_TRAILING_WHITESPACE)
      list(APPEND preload ${path})
    endforeach()
    list(JOIN preload " " preload)
  endif()
  set(${var} "${preload}" PARENT_SCOPE)
endfunction()
