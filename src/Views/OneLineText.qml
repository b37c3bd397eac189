import QtQuick

/// A path or an identifier on one line whatever it holds, with its middle left out where the line is too short.
PlainText {
    property string line

    text: line.replace(/[\n-\r\u0085\u2028\u2029]+/g, " ")
    maximumLineCount: 1
    elide: Text.ElideMiddle
    horizontalAlignment: Text.AlignLeft
}
