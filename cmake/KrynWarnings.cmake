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
  if(KRYN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
