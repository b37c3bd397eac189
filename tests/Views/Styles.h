#pragma once

#include <QtCore/QStringList>
#include <QtQuick/QQuickItem>

namespace orvane::test {

/// How a text below an item is written: its size in points, its weight and its colour in the light
/// appearance, such as "13 bold secondary". The test ends when the text is not there.
QString styleOf(const QQuickItem& ancestor, const QString& text);

/// The symbols that are seen in an item with their colours, such as "trash.slash red", in alphabetical order.
QStringList symbolsIn(const QQuickItem& ancestor);

}  // namespace orvane::test
