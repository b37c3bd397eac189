import QtQuick
import Orvane

/// What the program says of itself and of its maker.
Item {
    id: about

    required property AboutModel model

    implicitWidth: 500
    implicitHeight: column.implicitHeight

    component ContactLink: PushButton {
        required property url destination

        helpText: destination
        Accessible.role: Accessible.Link
    }

    component Line: PlainText {
        anchors.horizontalCenter: parent?.horizontalCenter
    }

    Column {
        id: column

        width: about.width
        padding: 30
        spacing: 18

        readonly property real lineWidth: width - leftPadding - rightPadding

        Image {
            objectName: "aboutIcon"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 112
            height: 112
            source: Theme.programIcon
            sourceSize { width: 112; height: 112 }
        }

        Column {
            objectName: "aboutTitles"
            width: column.lineWidth
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 5

            Line {
                text: "Orvane"
                font: Theme.weighted(Theme.largeTitle, Font.Bold)
                Accessible.role: Accessible.Heading
            }

            Line {
                text: "Application uninstaller for macOS"
                font: Theme.headline
                color: Theme.secondary
            }

            TabularText {
                objectName: "versionText"
                anchors.horizontalCenter: parent.horizontalCenter
                text: about.model.versionText
                font: Theme.callout
                color: Theme.secondary
            }
        }

        Line {
            objectName: "aboutDescription"
            width: column.lineWidth
            text: "Orvane helps you find installed applications, review their related files and services, and remove only the items you choose."
            color: Theme.secondary
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }

        Divider {
            objectName: "aboutDivider"
            width: column.lineWidth
            anchors.horizontalCenter: parent.horizontalCenter
        }

        Column {
            objectName: "makerTitles"
            width: column.lineWidth
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 4

            Line {
                text: "Made by"
                font: Theme.caption
                color: Theme.secondary
            }

            Line {
                text: about.model.makerName
                font: Theme.weighted(Theme.title3, Font.Bold)
            }
        }

        Row {
            objectName: "contactLinks"
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 10

            ContactLink {
                objectName: "sourceCodeLink"
                text: "GitHub"
                symbol: "chevron.left.forwardslash.chevron.right"
                destination: about.model.sourceCodeURL
                onClicked: about.model.open(destination)
            }

            ContactLink {
                objectName: "professionalNetworkLink"
                text: "LinkedIn"
                symbol: "person.crop.square"
                destination: about.model.professionalNetworkURL
                onClicked: about.model.open(destination)
            }

            Row {
                spacing: 4

                ContactLink {
                    objectName: "emailLink"
                    text: "Email"
                    symbol: "envelope.fill"
                    destination: about.model.emailURL
                    onClicked: about.model.open(destination)
                }

                PushButton {
                    objectName: "copyEmailButton"
                    symbol: about.model.isEmailCopied ? "checkmark" : "doc.on.doc"
                    helpText: about.model.isEmailCopied ? "Email address copied" : "Copy email address"
                    onClicked: about.model.copyEmailAddress()
                }
            }
        }

        Line {
            objectName: "copyrightText"
            text: about.model.copyrightText
            font: Theme.caption
            color: Theme.tertiary
        }
    }
}
