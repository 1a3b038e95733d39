include(Warnings)

# record_converter_library(NAME SOURCES file... [LINK target...])
# A static library of our own; headers are included as "folder/Header.h" from src/.
function(record_converter_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_LINK})
    record_converter_warnings(${name})
endfunction()

# record_converter_test(NAME SOURCES file... [LINK target...] [LABELS label...] [TIMEOUT seconds]
#                       [ENVIRONMENT name=value...] [LOCK name])
# Cases that share a LOCK never run at the same time.
# A GoogleTest program; each of its cases is a CTest test of its own.
function(record_converter_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT;LOCK" "SOURCES;LINK;LABELS;ENVIRONMENT" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gmock_main GTest::gmock GTest::gtest)
    record_converter_warnings(${name})
    record_converter_link_runtime(${name})
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
    set(properties TIMEOUT ${ARG_TIMEOUT})
    if(ARG_LABELS)
        list(APPEND properties LABELS "${ARG_LABELS}")
    endif()
    if(ARG_LOCK)
        list(APPEND properties RESOURCE_LOCK ${ARG_LOCK})
    endif()
    if(ARG_ENVIRONMENT)
        list(APPEND properties ENVIRONMENT "${ARG_ENVIRONMENT}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
        PROPERTIES ${properties})
endfunction()

# MinGW's runtime is linked in, so that a program or library without Qt needs no DLL of it.
function(record_converter_link_runtime target)
    if(MINGW)
        target_link_options(${target} PRIVATE -static)
    endif()
endfunction()

# pkg_check_modules prefers a library's import file; a program that is to need no DLL of MinGW's
# links the archive beside it.
function(record_converter_link_archives target)
    if(MINGW AND CMAKE_CROSSCOMPILING)
        get_target_property(libraries ${target} INTERFACE_LINK_LIBRARIES)
        list(TRANSFORM libraries REPLACE "\\.dll\\.a$" ".a")
        set_target_properties(${target} PROPERTIES INTERFACE_LINK_LIBRARIES "${libraries}")
    endif()
endfunction()
