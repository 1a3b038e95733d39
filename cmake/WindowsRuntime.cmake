# On Windows the runtime folder holds all DLLs that what lies in it needs. A cross build without Qt
# links everything else statically and has nothing to place.
if(NOT WIN32 OR (CMAKE_CROSSCOMPILING AND NOT RECORD_CONVERTER_HAS_QT))
    return()
endif()

set(search ${RECORD_CONVERTER_QT_BIN})
foreach(folder IN LISTS CMAKE_PREFIX_PATH CMAKE_FIND_ROOT_PATH)
    list(APPEND search ${folder}/bin)
endforeach()
if(MINGW)
    set(list_command ${CMAKE_OBJDUMP} -p)
    foreach(name IN ITEMS libstdc++-6.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
            OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
        cmake_path(GET found PARENT_PATH folder)
        list(APPEND search ${folder})
    endforeach()
    cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH folder)
    list(APPEND search ${folder})
else()
    find_program(DUMPBIN_PROGRAM dumpbin REQUIRED)
    set(list_command ${DUMPBIN_PROGRAM} /nologo /dependents)
endif()
list(REMOVE_ITEM search "")

set(needing)
foreach(target IN ITEMS mediaconverter zelclient zelcore record_converter_product)
    if(TARGET ${target})
        list(APPEND needing ${target})
    endif()
endforeach()
if(TARGET record_converter_qt_runtime)
    list(APPEND needing record_converter_qt_runtime)
endif()
add_custom_target(record_converter_windows_runtime ALL
    COMMAND ${CMAKE_COMMAND} -DRUNTIME=${RECORD_CONVERTER_RUNTIME_DIR} "-DSEARCH=${search}"
        "-DLIST=${list_command}" -P ${PROJECT_SOURCE_DIR}/cmake/PlaceLibraries.cmake
    COMMENT "Placing the DLLs that the runtime folder needs" VERBATIM)
add_dependencies(record_converter_windows_runtime ${needing})
