# Lays what Qt loads at run time into the runtime folder, as it ships: plugins by kind, QML modules
# under qml/. Links to Qt on Linux, where it is the system's; copies on Windows, where it is shipped.
set(qt_runtime_files)

function(record_converter_lay source target)
    set(placed ${RECORD_CONVERTER_RUNTIME_DIR}/${target})
    get_filename_component(folder ${placed} DIRECTORY)
    cmake_path(IS_PREFIX PROJECT_SOURCE_DIR ${source} own)
    if(NOT WIN32 AND NOT own)
        set_property(GLOBAL APPEND PROPERTY RECORD_CONVERTER_LINKED ${source})
        set(lay COMMAND ${CMAKE_COMMAND} -E create_symlink ${source} ${placed})
    elseif(IS_DIRECTORY ${source})
        set(lay COMMAND ${CMAKE_COMMAND} -E copy_directory ${source} ${placed})
    else()
        set(lay COMMAND ${CMAKE_COMMAND} -E copy ${source} ${placed} DEPENDS ${source})
    endif()
    add_custom_command(OUTPUT ${placed}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
        ${lay}
        COMMENT "Placing ${target}" VERBATIM)
    list(APPEND qt_runtime_files ${placed})
    set(qt_runtime_files ${qt_runtime_files} PARENT_SCOPE)
endfunction()

# Lays those of `patterns` (relative to `root`) that are there under the same names below `below`.
macro(record_converter_lay_existing root below)
    file(GLOB qt_found RELATIVE ${root} ${ARGN})
    foreach(qt_file IN LISTS qt_found)
        record_converter_lay(${root}/${qt_file} ${below}${qt_file})
    endforeach()
endmacro()

set(plugins ${RECORD_CONVERTER_QT_PLUGINS})
set(suffix ${CMAKE_SHARED_LIBRARY_SUFFIX})
set(prefix lib)
if(WIN32)
    set(prefix "")
endif()
record_converter_lay_existing(${plugins} ""
    ${plugins}/platforms/${prefix}qxcb${suffix}
    ${plugins}/platforms/${prefix}qoffscreen${suffix}
    ${plugins}/platforms/${prefix}qwayland-*${suffix}
    ${plugins}/platforms/${prefix}qwindows${suffix}
    ${plugins}/imageformats/${prefix}qsvg${suffix}
    ${plugins}/xcbglintegrations/*${suffix}
    ${plugins}/wayland-*/*${suffix}
    ${plugins}/platforminputcontexts/*${suffix}
    ${plugins}/styles/*${suffix})

set(qml ${RECORD_CONVERTER_QT_QML})
record_converter_lay_existing(${qml} qml/
    ${qml}/QtQml
    ${qml}/QtQuick/qmldir ${qml}/QtQuick/plugins.qmltypes ${qml}/QtQuick/*${suffix}
    ${qml}/QtQuick/Controls/qmldir ${qml}/QtQuick/Controls/plugins.qmltypes
    ${qml}/QtQuick/Controls/*${suffix}
    ${qml}/QtQuick/Controls/Basic
    ${qml}/QtQuick/Controls/impl
    ${qml}/QtQuick/Layouts
    ${qml}/QtQuick/Templates
    ${qml}/QtQuick/Window)

# The overlay that colours the icons; Qt 6 has no module of that name any more.
if(NOT EXISTS ${qml}/QtGraphicalEffects/qmldir)
    record_converter_lay_existing(${CMAKE_CURRENT_SOURCE_DIR}/qml qml/
        ${CMAKE_CURRENT_SOURCE_DIR}/qml/QtGraphicalEffects/qmldir
        ${CMAKE_CURRENT_SOURCE_DIR}/qml/QtGraphicalEffects/ColorOverlay.qml)
else()
    record_converter_lay_existing(${qml} qml/ ${qml}/QtGraphicalEffects)
endif()

add_custom_target(record_converter_qt_runtime ALL DEPENDS ${qt_runtime_files})
