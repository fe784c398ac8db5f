import QtQuick
import Host 1.0

Rectangle {
    id: page
    color: "#10202a"
    property string last: "Hazır"

    Text {
        id: heading
        anchors { top: parent.top; horizontalCenter: parent.horizontalCenter; margins: 16 }
        color: "white"
        font.pixelSize: 20
        text: page.last
    }

    KycItem {
        anchors { top: heading.bottom; left: parent.left; right: parent.right; bottom: parent.bottom; topMargin: 16 }
        steps: ["idPhoto", "selfie"]
        onCaptured: what => page.last = what
        onClosed: Qt.quit()
    }
}
