# On Windows the runtime folder holds all DLLs that what lies in it needs. Without Qt everything else
# is linked statically, and there is nothing to place.
if(NOT WIN32 OR NOT RECORD_CONVERTER_HAS_QT)
    return()
endif()

set(search ${RECORD_CONVERTER_QT_BIN})
foreach(folder IN LISTS CMAKE_PREFIX_PATH CMAKE_FIND_ROOT_PATH)
    list(APPEND search ${folder}/bin)
endforeach()
foreach(name IN ITEMS libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
    cmake_path(GET found PARENT_PATH folder)
    list(APPEND search ${folder})
endforeach()
list(REMOVE_ITEM search "")

# record_converter_place_libraries(TARGET FOLDER NEEDING...): makes a target that does so for a folder,
# after the targets NEEDING: for all that lies there, or when these are programs, for them alone,
# because others may be linked in the same folder meanwhile.
function(record_converter_place_libraries target folder)
    set(programs)
    foreach(name IN LISTS ARGN)
        get_target_property(type ${name} TYPE)
        if(type STREQUAL "EXECUTABLE")
            list(APPEND programs $<TARGET_FILE:${name}>)
        endif()
    endforeach()
    add_custom_target(${target} ALL
        COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} "-DPROGRAMS=${programs}" "-DSEARCH=${search}"
            -DOBJDUMP=${CMAKE_OBJDUMP} -P ${PROJECT_SOURCE_DIR}/cmake/PlaceLibraries.cmake
        COMMENT "Placing the DLLs that ${folder} needs" VERBATIM)
    add_dependencies(${target} ${ARGN})
endfunction()

set(needing)
foreach(target IN ITEMS mediaconverter zelclient zelcore record_converter_product
                        record_converter_qt_runtime)
    if(TARGET ${target})
        list(APPEND needing ${target})
    endif()
endforeach()
record_converter_place_libraries(record_converter_windows_runtime
    ${RECORD_CONVERTER_RUNTIME_DIR} ${needing})
