import QtQuick
import QtQuick.Controls

ApplicationWindow {
    visible: true
    width: 300
    height: 400
    color: "transparent"
    flags: Qt.WindowStaysOnTopHint | Qt.FramelessWindowHint
}
