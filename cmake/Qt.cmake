# Finds Qt for what needs it. Sets RECORD_CONVERTER_HAS_QT, and where its plugins and QML modules lie:
# RECORD_CONVERTER_QT_PLUGINS, RECORD_CONVERTER_QT_QML, RECORD_CONVERTER_QT_BIN.
set(RECORD_CONVERTER_HAS_QT OFF)
set(qt_absent "RECORD_CONVERTER_QT is OFF")

if(RECORD_CONVERTER_QT)
    set(qt_where)
    if(CMAKE_CROSSCOMPILING)
        # The build machine's own Qt is no use to the target.
        set(qt_where PATHS ${CMAKE_PREFIX_PATH} ${CMAKE_FIND_ROOT_PATH} NO_DEFAULT_PATH)
    endif()
    find_package(Qt6 6.4 QUIET COMPONENTS Core Gui Widgets Qml Quick LinguistTools ${qt_where})
    if(RECORD_CONVERTER_TESTS AND Qt6_FOUND)
        find_package(Qt6 6.4 QUIET COMPONENTS Test ${qt_where})
    endif()
    set(qt_absent "Qt 6.4 or later was not found")
    if(Qt6_FOUND)
        set(RECORD_CONVERTER_QT_PLUGINS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_PLUGINS})
        set(RECORD_CONVERTER_QT_QML ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_QML})
        set(RECORD_CONVERTER_QT_BIN ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS})
        set(RECORD_CONVERTER_HAS_QT ON)
        foreach(module IN ITEMS QtQml QtQml/WorkerScript QtQuick QtQuick/Controls/Basic
                                QtQuick/Layouts QtQuick/Templates QtQuick/Window)
            if(NOT EXISTS ${RECORD_CONVERTER_QT_QML}/${module}/qmldir)
                set(RECORD_CONVERTER_HAS_QT OFF)
                set(qt_absent "Qt's QML module ${module} was not found")
            endif()
        endforeach()
    endif()
endif()

if(RECORD_CONVERTER_HAS_QT)
    message(STATUS "record-converter: Qt ${Qt6_VERSION}: the window is built")
elseif(RECORD_CONVERTER_QT STREQUAL "ON")
    message(FATAL_ERROR "RECORD_CONVERTER_QT is ON, but ${qt_absent}")
else()
    message(STATUS "record-converter: ${qt_absent}: left out are the window (the record-converter library), "
                   "its translations and their tests")
endif()
