import QtQuick 2.15
import QtQuick.Controls 2.15
import QtGraphicalEffects 1.15

Button {
    id: button

    property int buttonSize: 32
    property color iconButtonBoardColor: Qt.rgba(255, 255, 255, 0.5)
    property color iconButtonBackgroundColor: Qt.rgba(0, 0, 0, 1)
    property color iconButtonImageColor: Qt.rgba(255, 255, 255, 1)
    property string iconButtonSvg: ""
    property bool isDark: true
    readonly property color focusOutlineColor: isDark ? "#64B4FA" : "#1170CF"

    implicitWidth: buttonSize
    implicitHeight: buttonSize
    width: buttonSize
    height: buttonSize
    // qmllint disable
    background: Icon.Disc { control: button }
    contentItem: Icon.Glyph { control: button }
    // qmllint enable

    // Space presses a button by itself. A key that is held down repeats itself: it presses once.
    function takeRepeated(event) {
        event.accepted = event.isAutoRepeat
        return event.isAutoRepeat
    }
    function pressOnce(event) {
        if (!takeRepeated(event)) {
            clicked()
            event.accepted = true
        }
    }
    Keys.onReturnPressed: event => pressOnce(event)
    Keys.onEnterPressed: event => pressOnce(event)
    Keys.onSpacePressed: event => takeRepeated(event)
    Keys.onReleased: event => takeRepeated(event)
}
