# Copies into FOLDER what PROGRAMS, or else all programs and DLLs in it, need beside them, and what
# those need in turn, as far as it lies in one of the folders SEARCH; the rest is Windows' own.
# cmake -DFOLDER=FOLDER "-DPROGRAMS=FILE;..." "-DSEARCH=FOLDER;..." -DOBJDUMP=PROGRAM
#   -P PlaceLibraries.cmake
cmake_minimum_required(VERSION 3.25)
set(waiting ${PROGRAMS})
if(NOT waiting)
    file(GLOB_RECURSE waiting ${FOLDER}/*.dll ${FOLDER}/*.exe)
endif()
while(waiting)
    list(POP_FRONT waiting library)
    execute_process(COMMAND ${OBJDUMP} -p ${library} OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[A-Za-z0-9_.+-]+\\.[Dd][Ll][Ll]" needed "${needed}")
    list(REMOVE_DUPLICATES needed)
    foreach(name IN LISTS needed)
        foreach(folder IN LISTS SEARCH)
            if(EXISTS ${folder}/${name} AND NOT EXISTS ${FOLDER}/${name})
                file(COPY ${folder}/${name} DESTINATION ${FOLDER})
                list(APPEND waiting ${FOLDER}/${name})
            endif()
        endforeach()
    endforeach()
endwhile()
