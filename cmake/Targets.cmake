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

# record_converter_scenarios(SCRIPT [LABELS label...] [TIMEOUT seconds] [ENVIRONMENT name=value...])
# A script of Python cases that start the built programs, those for Windows under Wine; each case is
# a CTest test of its own.
function(record_converter_scenarios script)
    cmake_parse_arguments(ARG "" "TIMEOUT" "LABELS;ENVIRONMENT" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 300)
    endif()
    find_package(Python3 3.11 REQUIRED COMPONENTS Interpreter)
    set(surroundings RC_BUILD=${PROJECT_BINARY_DIR} RC_SANITIZER=${RECORD_CONVERTER_SANITIZE}
        "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/engine/tsan.supp" ${ARG_ENVIRONMENT})
    set(properties TIMEOUT ${ARG_TIMEOUT} SKIP_REGULAR_EXPRESSION "skipped=")
    if(CMAKE_CROSSCOMPILING)
        list(APPEND surroundings RC_WINE_PREFIX=${PROJECT_BINARY_DIR}/wine)
        # A known folder that a test cannot move holds the log there, one for all programs.
        list(APPEND properties RESOURCE_LOCK known-log-folder)
    endif()
    set(python ${Python3_EXECUTABLE} -B ${CMAKE_CURRENT_SOURCE_DIR}/${script})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${script})
    execute_process(COMMAND ${CMAKE_COMMAND} -E env ${surroundings} ${python} --list
        OUTPUT_VARIABLE cases COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[^\n]+" cases "${cases}")
    foreach(case IN LISTS cases)
        string(REPLACE ".test_" "." name ${case})
        add_test(NAME ${name} COMMAND ${python} ${case})
        set_tests_properties(${name} PROPERTIES ${properties}
            LABELS "${ARG_LABELS}" ENVIRONMENT "${surroundings}")
    endforeach()
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
    if(MINGW)
        get_target_property(libraries ${target} INTERFACE_LINK_LIBRARIES)
        list(TRANSFORM libraries REPLACE "\\.dll\\.a$" ".a")
        set_target_properties(${target} PROPERTIES INTERFACE_LINK_LIBRARIES "${libraries}")
    endif()
endfunction()
