import QtQuick 2.15
import QtQuick.Controls.impl 2.15

// Draws an Image in one colour, keeping its shape. No shader: the software renderer draws none, so
// the tinted picture is made by the image item that colours icons in Quick Controls.
Item {
    id: overlay

    /// The Image to colour, its own source an absolute URL. It is best made invisible.
    property var source: null
    /// Opacity tells how much of the source's own colour is replaced.
    property color color: "transparent"
    /// Kept for compatibility: the tinted picture is always kept.
    property bool cached: false

    Component {
        id: original

        Image {
            source: overlay.source.source
            sourceSize: overlay.source.sourceSize
            fillMode: overlay.source.fillMode
        }
    }
    Loader {
        anchors.fill: parent
        active: overlay.source !== null && overlay.color.a < 1
        sourceComponent: original
    }
    IconImage {
        anchors.fill: parent
        source: overlay.source !== null ? overlay.source.source : ""
        sourceSize: overlay.source !== null ? overlay.source.sourceSize : Qt.size(0, 0)
        fillMode: overlay.source !== null ? overlay.source.fillMode : Image.Stretch
        color: overlay.color
        antialiasing: overlay.antialiasing
    }
}
