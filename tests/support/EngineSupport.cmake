# Stand-ins for the engine's libraries.
# record_converter_fake_library(FOLDER NAME SOURCE [DEFINITION...])
# Builds a stand-in library, as NAME is called on this system, into a folder of its own beside the
# test programs.
add_custom_target(fake_engines)
function(record_converter_fake_library folder name source)
    string(MAKE_C_IDENTIFIER "fake_${folder}_${name}" target)
    add_library(${target} MODULE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${source})
    target_compile_definitions(${target} PRIVATE ${ARGN})
    target_link_libraries(${target} PRIVATE Threads::Threads rc_zel)
    record_converter_warnings(${target})
    record_converter_link_runtime(${target})
    # Exports what its extern "C" block holds on either system, without attributes.
    set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET default
        OUTPUT_NAME ${name} PREFIX ${CMAKE_SHARED_MODULE_PREFIX}
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/fake-engines/${folder})
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "")
    elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # A library with unique symbols, of which the standard library has some, is never unloaded.
        target_compile_options(${target} PRIVATE -fno-gnu-unique)
    endif()
    add_dependencies(fake_engines ${target})
endfunction()

record_converter_fake_library(whole mediaconverter FakeEngine.cpp)
record_converter_fake_library(whole zelclient FakeClient.cpp)
record_converter_fake_library(whole record-converter FakeProduct.cpp)
record_converter_fake_library(no-stop mediaconverter FakeEngine.cpp FAKE_NO_STOP)
record_converter_fake_library(no-stop record-converter FakeProduct.cpp)
# Stand for Qt's plugin, which the launcher wants to see. Wine passes on no variable of Qt's.
set(window_system qoffscreen)
if(WIN32)
    set(window_system qwindows)
endif()
foreach(folder IN ITEMS whole no-stop)
    record_converter_fake_library(${folder}/platforms ${window_system} FakeProduct.cpp)
endforeach()
if(NOT WIN32)
    target_link_options(fake_no_stop_mediaconverter PRIVATE -Wl,-z,nodelete)
endif()
record_converter_fake_library(no-factory mediaconverter FakeEngine.cpp FAKE_NO_FACTORY)
record_converter_fake_library(failing-factory mediaconverter FakeEngine.cpp
    FAKE_FACTORY_RESULT=0x1000)
record_converter_fake_library(no-instance mediaconverter FakeEngine.cpp FAKE_STORES_NOTHING)
