import QtQuick 2.15
import QtQuick.Controls 2.15
import QtGraphicalEffects 1.15

Control {
    id: icon

    property int buttonSize: 32
    property color iconButtonBoardColor: Qt.rgba(255, 255, 255, 0.5)
    property color iconButtonBackgroundColor: Qt.rgba(0, 0, 0, 1)
    property color iconButtonImageColor: Qt.rgba(255, 255, 255, 1)
    property string iconButtonSvg: ""
    property bool isDark: true
    readonly property color focusOutlineColor: isDark ? "#64B4FA" : "#1170CF"

    // What is drawn, also by IconButton, whose control has the properties above too.
    component Disc: Rectangle {
        id: disc

        required property var control

        radius: width / 2
        color: control.iconButtonBackgroundColor
        border.width: 1
        border.color: control.iconButtonBoardColor

        Rectangle {
            anchors.centerIn: parent
            width: disc.control.buttonSize + 6
            height: disc.control.buttonSize + 6
            radius: width / 2
            color: "transparent"
            border.width: 2
            border.color: disc.control.activeFocus ? disc.control.focusOutlineColor : "transparent"
        }
    }
    component Glyph: Item {
        id: glyph

        required property var control

        // In the window, where the view rests; it slides by whole pixels from end to end.
        readonly property point corner: {
            const place = glyph.control
            return place.parent?.mapToItem(null, place.x, place.y) ?? Qt.point(0, 0)
        }

        // Centred on whole pixels of the screen whatever the control's place and padding: sharp.
        function centred(corner: real, start: real, space: real, size: real): real {
            const scale = Screen.devicePixelRatio
            const inWindow = corner + start
            return Math.round((inWindow + (space - size) / 2) * scale) / scale - inWindow
        }

        Image {
            id: image

            x: glyph.centred(glyph.corner.x, glyph.x, glyph.width, width)
            y: glyph.centred(glyph.corner.y, glyph.y, glyph.height, height)
            // The overlay needs the whole URL: elsewhere a relative one means another file.
            source: glyph.control.iconButtonSvg === "" ? ""
                                                       : Qt.resolvedUrl(glyph.control.iconButtonSvg)
            sourceSize.width: glyph.control.buttonSize / 2
            sourceSize.height: glyph.control.buttonSize / 2
            visible: false
        }
        ColorOverlay {
            anchors.fill: image
            source: image
            color: glyph.control.iconButtonImageColor
            antialiasing: true
        }
    }

    implicitWidth: buttonSize
    implicitHeight: buttonSize
    width: buttonSize
    height: buttonSize
    padding: buttonSize / 4
    focusPolicy: Qt.TabFocus
    background: Disc { control: icon }
    contentItem: Glyph { control: icon }
}
