#include "tests/Views/Styles.h"

#include <QtCore/QHash>
#include <QtGui/QColor>
#include <QtGui/QFont>

#include "tests/Views/ViewTest.h"

namespace orvane::test {
namespace {

QString nameOf(const QColor& color) {
    static const QHash<QString, QString> names{
        {"#d9000000", "label"}, {"#80000000", "secondary"}, {"#42000000", "tertiary"},
        {"#ff007aff", "blue"},  {"#ffff9500", "orange"},    {"#ffaf52de", "purple"},
        {"#ff28cd41", "green"}, {"#ffff3b30", "red"},       {"#ffffffff", "white"},
    };
    const QString value = color.name(QColor::HexArgb);
    return names.value(value, value);
}

QString nameOf(QFont::Weight weight) {
    static const QHash<int, QString> names{{QFont::Normal, "regular"},
                                           {QFont::Medium, "medium"},
                                           {QFont::DemiBold, "semibold"},
                                           {QFont::Bold, "bold"}};
    return names.value(weight, QString::number(weight));
}

}  // namespace

QString styleOf(const QQuickItem& ancestor, const QString& text) {
    const QQuickItem& item = textItem(ancestor, text);
    const auto font = item.property("font").value<QFont>();
    return QStringLiteral("%1 %2 %3")
        .arg(font.pixelSize())
        .arg(nameOf(font.weight()), nameOf(item.property("color").value<QColor>()));
}

QStringList symbolsIn(const QQuickItem& ancestor) {
    QStringList symbols;
    for (const QQuickItem* symbol : itemsOfType(ancestor, QStringLiteral("orvane::Symbol")))
        if (const QString name = symbol->property("name").toString(); !name.isEmpty())
            symbols << name + ' ' + nameOf(symbol->property("color").value<QColor>());
    symbols.sort();
    return symbols;
}

}  // namespace orvane::test
