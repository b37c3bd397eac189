import QtQuick
import Orvane

/// The one About window. Its content gives it its size, which the user cannot change.
Window {
    id: about

    required property AboutModel model

    objectName: "about"
    title: "About Orvane"
    flags: Qt.Dialog | Qt.WindowTitleHint | Qt.WindowCloseButtonHint
    width: view.implicitWidth
    // Four points are whole pixels on a screen of any usual scale.
    height: 4 * Math.ceil(view.implicitHeight / 4)
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height
    color: Theme.window

    AboutView {
        id: view

        model: about.model
        focus: true
        Keys.onEscapePressed: about.close()
    }
}
