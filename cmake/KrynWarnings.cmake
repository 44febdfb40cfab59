# Warning sets. Engine and tools: strict, conversions included. Tests: the
# usual set (test macros compare mixed types freely).
function(kryn_strict_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wconversion -Wsign-conversion
    -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Wnull-dereference)
  if(KRYN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

function(kryn_test_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
  # GCC 12 reports std::string copies inlined at -O3 as overlapping
  # (-Wrestrict false positives in libstdc++); tests build strings freely.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(KRYN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
