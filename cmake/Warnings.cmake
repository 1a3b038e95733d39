# Every target of our own compiles with the same warnings. They are errors with GCC, which builds
# what ships; what clang alone warns of stops nothing.
function(record_converter_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<NOT:$<CXX_COMPILER_ID:Clang>>:-Werror>)
    # GCC bug 105651: with -O3 it takes a text before a std::string for an overlapping copy.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-Wno-restrict>)
    endif()
endfunction()
