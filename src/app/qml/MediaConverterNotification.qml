import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Window 2.15
import QtQuick.Layouts 1.3
import QtGraphicalEffects 1.15
import "."

ApplicationWindow {
    id: root

    property bool isFinished: false
    readonly property int textStartedWidth: 300
    readonly property int textFinishedWidth: 180
    readonly property int textErrorWidth: 280
    readonly property int buttonSize: 30
    readonly property int fontSize: 16
    readonly property int margin: 16
    readonly property int space: 10
    readonly property int dlgHeight: 72
    readonly property int textPadding: 0
    readonly property int borderWidth: 2
    readonly property int radiusSize: 2
    readonly property bool isRTL: Qt.locale().textDirection === Qt.RightToLeft

    // Where a view waits below the window's visible area, and where it slides to.
    readonly property int hiddenY: 400
    readonly property int shownY: 200

    // The controller goes before the window does.
    readonly property bool isDark: mediaConverterController?.isDark ?? false
    readonly property color buttonBoardColor: isDark ? Qt.rgba(255, 255, 255, 0.5)
                                                     : Qt.rgba(0, 0, 0, 0.5)
    readonly property color buttonBackgroundColor: isDark ? Qt.rgba(0, 0, 0, 1)
                                                          : Qt.rgba(255, 255, 255, 1)
    readonly property color textColor: isDark ? Qt.rgba(255, 255, 255, 0.7) : Qt.rgba(0, 0, 0, 0.7)
    readonly property color iconColor: isDark ? Qt.rgba(255, 255, 255, 1) : Qt.rgba(0, 0, 0, 1)
    readonly property color backgroundColor: isDark ? Qt.rgba(0, 0, 0, 1)
                                                    : Qt.rgba(255, 255, 255, 1)
    readonly property color backgroundBoardColor: isDark ? Qt.rgba(255, 255, 255, 0.3)
                                                         : Qt.rgba(0, 0, 0, 0.3)

    visible: true
    height: 400
    width: viewStart.visible ? viewStart.width
                             : viewFinish.visible ? viewFinish.width : viewError.width
    x: isRTL ? 10 : Screen.width - width - 10
    y: Screen.height - height
    color: "transparent"
    title: "Obrix"
    flags: Qt.WindowStaysOnTopHint | Qt.FramelessWindowHint
    LayoutMirroring.enabled: isRTL

    function slideIn(view) {
        view.visible = true
        view.y = shownY
        view.forceActiveFocus()
    }

    Connections {
        target: mediaConverterController

        function onConvertStarted() {
            root.slideIn(viewStart)
        }
        function onConvertError() {
            root.isFinished = true
            viewStart.visible = false
            viewFinish.visible = false
            root.slideIn(viewError)
        }
        function onConvertFinished() {
            root.isFinished = true
            viewStart.visible = false
            viewError.visible = false
            root.slideIn(viewFinish)
        }
    }

    component ViewText: Text {
        Layout.alignment: Qt.AlignVCenter
        // Three lines fit between the borders; what is longer is elided, never drawn outside.
        Layout.maximumHeight: root.dlgHeight - 2 * root.borderWidth
        // Between words, and inside one only where it alone is too wide for its line.
        wrapMode: Text.Wrap
        elide: Text.ElideRight
        padding: root.textPadding
        color: root.textColor
        font.pixelSize: root.fontSize
    }

    component ViewIcon: Icon {
        Layout.alignment: Qt.AlignVCenter
        buttonSize: root.buttonSize
        iconButtonBoardColor: root.buttonBoardColor
        iconButtonBackgroundColor: root.buttonBackgroundColor
        iconButtonImageColor: root.iconColor
        isDark: root.isDark
    }

    component ViewButton: IconButton {
        Layout.alignment: Qt.AlignVCenter
        buttonSize: root.buttonSize
        iconButtonBoardColor: root.buttonBoardColor
        iconButtonBackgroundColor: root.buttonBackgroundColor
        iconButtonImageColor: root.iconColor
        isDark: root.isDark
    }

    component View: Rectangle {
        id: view

        property string message
        default property alias content: row.data
        signal dismissed

        visible: false
        x: 0
        y: root.hiddenY
        width: row.implicitWidth + 2 * root.margin
        height: root.dlgHeight
        color: root.backgroundColor
        border.color: root.backgroundBoardColor
        border.width: root.borderWidth
        radius: root.radiusSize
        focus: true
        Accessible.role: Accessible.StaticText
        Accessible.name: message
        Keys.onEscapePressed: dismissed()

        Behavior on y {
            NumberAnimation {
                duration: 1000
                easing.type: Easing.InOutQuad
            }
        }

        RowLayout {
            id: row

            anchors.fill: parent
            anchors.margins: root.margin
            // Three lines of text are higher than what is left between margins.
            anchors.topMargin: root.borderWidth
            anchors.bottomMargin: root.borderWidth
            spacing: root.space
            layoutDirection: root.isRTL ? Qt.RightToLeft : Qt.LeftToRight
        }
    }

    View {
        id: viewStart

        objectName: "viewStart"
        message: mediaConverterController?.convertingStartedText ?? ""
        onDismissed: visible = false

        ViewIcon {
            iconButtonSvg: "shape-circle-regular.svg"
            Accessible.name: viewStart.message
        }
        ViewText {
            text: viewStart.message
            Layout.maximumWidth: root.textStartedWidth
        }
        ViewButton {
            iconButtonSvg: "cancel-regular.svg"
            Accessible.name: "close"
            onClicked: viewStart.dismissed()
        }
    }

    View {
        id: viewFinish

        objectName: "viewFinish"
        message: mediaConverterController?.convertingFinishedText ?? ""
        onDismissed: {
            visible = false
            mediaConverterController.close()
        }

        ViewIcon {
            iconButtonSvg: "check-regular.svg"
            Accessible.name: viewFinish.message
        }
        ViewText {
            text: viewFinish.message
            Layout.maximumWidth: root.textFinishedWidth
        }
        ViewButton {
            iconButtonSvg: "open-in-folder-regular.svg"
            Accessible.name: "open"
            onClicked: mediaConverterController.open()
        }
        ViewButton {
            iconButtonSvg: "file-video-regular.svg"
            Accessible.name: "play"
            onClicked: mediaConverterController.play()
        }
        ViewButton {
            iconButtonSvg: "cancel-regular.svg"
            Accessible.name: "close"
            onClicked: viewFinish.dismissed()
        }
    }

    View {
        id: viewError

        objectName: "viewError"
        message: mediaConverterController?.convertingErrorText ?? ""
        onDismissed: {
            visible = false
            mediaConverterController.close()
        }

        ViewIcon {
            iconButtonSvg: "check-regular.svg"
            focus: true
            Accessible.name: viewError.message
        }
        ViewText {
            text: viewError.message
            maximumLineCount: 3
            Layout.maximumWidth: root.textErrorWidth
        }
        ViewButton {
            iconButtonSvg: "cancel-regular.svg"
            focus: true
            Accessible.name: "close"
            onClicked: viewError.dismissed()
        }
    }
}
