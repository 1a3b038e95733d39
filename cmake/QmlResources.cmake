# The window's QML and icons as resources, with the QML compiled ahead of time. Generated code is
# not held to our warnings. An object library: each program that uses the window links it directly,
# so that its initialisers are not dropped.
set(qml_files MediaConverterNotification.qml IconButton.qml Icon.qml)
set(qml_qrc ${CMAKE_CURRENT_SOURCE_DIR}/qml/app.qrc)
set(qml_generated ${CMAKE_CURRENT_BINARY_DIR}/qmlcache)

qt6_add_resources(qml_sources ${qml_qrc})

set(qml_paths)
foreach(file IN LISTS qml_files)
    set(compiled ${qml_generated}/${file}.cpp)
    add_custom_command(
        OUTPUT ${compiled}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${qml_generated}
        COMMAND Qt6::qmlcachegen --bare --only-bytecode --resource-path /${file} --resource ${qml_qrc}
                -o ${compiled} ${CMAKE_CURRENT_SOURCE_DIR}/qml/${file}
        DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/qml/${file} ${qml_qrc}
        COMMENT "Compiling ${file}"
        VERBATIM)
    list(APPEND qml_sources ${compiled})
    list(APPEND qml_paths /${file})
endforeach()

# What makes Qt find the compiled files by their resource paths; the tool knows it by its ending,
# "qmlcache_loader.cpp".
set(qml_loader ${qml_generated}/record_converter_qmlcache_loader.cpp)
add_custom_command(
    OUTPUT ${qml_loader}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${qml_generated}
    COMMAND Qt6::qmlcachegen --resource-name record_converter_qmlcache --resource ${qml_qrc}
            -o ${qml_loader} ${qml_paths}
    DEPENDS ${qml_qrc}
    VERBATIM)

add_library(rc_app_resources OBJECT ${qml_sources} ${qml_loader})
target_link_libraries(rc_app_resources PRIVATE Qt6::Qml)
