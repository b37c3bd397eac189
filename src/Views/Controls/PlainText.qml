import QtQuick

/// Text as it is written: never read as markup, and heard by a screen reader as it is seen.
Text {
    font: Theme.body
    color: Theme.label
    textFormat: Text.PlainText
    lineHeightMode: Text.FixedHeight
    lineHeight: Theme.lineHeight(font.pixelSize)

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
