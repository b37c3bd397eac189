import QtQuick

/// A name, a path or an identifier on one line whatever it holds, with its middle left out where the line is too
/// short. What would turn the direction of the text around, so that it reads as another name, is shown as unreadable.
PlainText {
    property string line
    /// How much lower than usual the text is written in its line, which keeps its place and height.
    property real drop: 0

    // Before a joiner, the sign that asks for a picture only keeps the font that draws it from joining it.
    text: line.replace(/[\n-\r\u0085\u2028\u2029]+/g, " ").replace(/[\u202a-\u202e\u2066-\u2069]/g, "\ufffd")
              .replace(/\ufe0f(?=\u200d)/g, "")
    maximumLineCount: 1
    elide: Text.ElideMiddle
    horizontalAlignment: Text.AlignLeft
    topPadding: drop
    bottomPadding: -drop
}
