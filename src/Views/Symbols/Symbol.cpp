#include "Views/Symbols/Symbol.h"

#include <QtQml/qqmlinfo.h>
#include <QFile>
#include <QPainter>
#include <QQuickWindow>
#include <QSvgRenderer>
#include <algorithm>

namespace orvane {

namespace {

/// The drawing of a symbol in a colour, centred in so many device pixels. What is opaque in the file takes
/// the colour.
QImage tinted(const QString& source, QSize pixels, const QColor& color) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(source);
    const int side = std::min(pixels.width(), pixels.height());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRect((pixels.width() - side) / 2, (pixels.height() - side) / 2, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

}  // namespace

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setSize(16);
}

void Symbol::setName(const QString& name) {
    if (name == name_) return;
    name_ = name;
    if (!name_.isEmpty() && !QFile::exists(source()))
        qmlWarning(this) << "there is no symbol named " << name_;
    update();
    emit nameChanged();
}

void Symbol::setColor(const QColor& color) {
    if (color == color_) return;
    color_ = color;
    update();
    emit colorChanged();
}

void Symbol::setSize(qreal size) {
    if (size == this->size()) return;
    setImplicitSize(size, size);
    emit sizeChanged();
}

QString Symbol::source() const {
    return QStringLiteral(":/qt/qml/Orvane/Symbols/%1.svg").arg(name_);
}

void Symbol::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickPaintedItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged) update();
}

void Symbol::paint(QPainter* painter) {
    if (name_.isEmpty() || !QFile::exists(source())) return;
    const qreal ratio = window() ? window()->effectiveDevicePixelRatio() : 1;
    QImage image = tinted(source(), (QSizeF(width(), height()) * ratio).toSize(), color_);
    image.setDevicePixelRatio(ratio);
    painter->drawImage(QPointF(0, 0), image);
}

}  // namespace orvane
