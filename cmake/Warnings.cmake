# Every target of our own compiles with the same warnings, on every compiler that we support. Clang
# builds the fuzzing programs only, and what it alone warns of does not stop them.
function(record_converter_warnings target)
    if(MSVC)
        target_compile_options(${target} PRIVATE /W4 /WX /permissive- /utf-8)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wshadow
            $<$<NOT:$<CXX_COMPILER_ID:Clang>>:-Werror>)
    endif()
endfunction()
