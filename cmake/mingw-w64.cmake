# Cross-compiles for 64-bit Windows with Debian's MinGW-w64 and runs the results under Wine.
# RECORD_CONVERTER_WINDOWS_PREFIX names the folder with FFmpeg and minizip for Windows,
# RECORD_CONVERTER_WINDOWS_QT the one with Qt; when they are not given, they are those that
# scripts/windows-dependencies.sh and scripts/windows-qt.sh make.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

function(record_converter_find variable script)
    if(NOT ${variable})
        execute_process(COMMAND ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../scripts/${script} --print-prefix
            OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE)
        set(${variable} ${found} PARENT_SCOPE)
    endif()
endfunction()
record_converter_find(RECORD_CONVERTER_WINDOWS_PREFIX windows-dependencies.sh)
record_converter_find(RECORD_CONVERTER_WINDOWS_QT windows-qt.sh)
foreach(library IN ITEMS libavformat minizip)
    if(NOT EXISTS ${RECORD_CONVERTER_WINDOWS_PREFIX}/lib/pkgconfig/${library}.pc)
        message(FATAL_ERROR "No ${library} for Windows in \"${RECORD_CONVERTER_WINDOWS_PREFIX}\". "
            "The command that makes it: scripts/windows-dependencies.sh")
    endif()
endforeach()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES
    RECORD_CONVERTER_WINDOWS_PREFIX RECORD_CONVERTER_WINDOWS_QT CMAKE_PREFIX_PATH)

# Nothing of the build machine's own libraries may be found, only its programs.
set(CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH} ${RECORD_CONVERTER_WINDOWS_QT}
    ${RECORD_CONVERTER_WINDOWS_PREFIX} /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR}
    "${RECORD_CONVERTER_WINDOWS_PREFIX}/lib/pkgconfig:/usr/x86_64-w64-mingw32/lib/pkgconfig")
set(PKG_CONFIG_ARGN --static)

# moc, rcc and their like run on the build machine: its own Qt's, of the same version.
if(NOT QT_HOST_PATH)
    set(QT_HOST_PATH /usr)
    file(GLOB QT_HOST_PATH_CMAKE_DIR /usr/lib/*-linux-gnu/cmake)
endif()

find_program(WINE_PROGRAM NAMES wine wine64)
if(WINE_PROGRAM)
    set(CMAKE_CROSSCOMPILING_EMULATOR
        ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh ${CMAKE_BINARY_DIR}/wine)
endif()
