# Every target of our own compiles with the same warnings, on every compiler that we support. They
# are errors with GCC, which builds what ships; what another compiler alone warns of stops nothing.
function(record_converter_warnings target)
    if(MSVC)
        # The numbers are what -Wconversion and -Wshadow say beyond /W4.
        target_compile_options(${target} PRIVATE /W4 /w14242 /w14254 /w14456 /w14457 /w14458 /w14459
            /external:anglebrackets /external:W0 /permissive- /utf-8 /Zc:__cplusplus)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wshadow
            $<$<NOT:$<CXX_COMPILER_ID:Clang>>:-Werror>)
        # GCC bug 105651: with -O3 it takes a text before a std::string for an overlapping copy.
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
            target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-Wno-restrict>)
        endif()
    endif()
endfunction()
