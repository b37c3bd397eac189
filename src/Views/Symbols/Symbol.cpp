#include "Views/Symbols/Symbol.h"

#include <QtQml/qqmlinfo.h>
#include <QFile>
#include <QPainter>
#include <QQuickWindow>
#include <QSvgRenderer>
#include <algorithm>

#include "Views/Desktop/SystemSymbol.h"

namespace orvane {

namespace {

constexpr auto picture = QImage::Format_ARGB32_Premultiplied;

/// Our own drawing of a symbol, in the middle of so many device pixels.
QImage drawing(const QString& source, QSize pixels) {
    QImage image(pixels, picture);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(source);
    const int side = std::min(pixels.width(), pixels.height());
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRect((pixels.width() - side) / 2, (pixels.height() - side) / 2, side, side));
    return image;
}

/// What is opaque takes the colour.
QImage tinted(QImage image, const QColor& color) {
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

}  // namespace

QImage imageOfOpacities(std::string_view opacities, QSize pixels) {
    const auto* const bytes = reinterpret_cast<const uchar*>(opacities.data());
    return QImage(bytes, pixels.width(), pixels.height(), pixels.width(), QImage::Format_Alpha8)
        .convertToFormat(picture);
}

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
    const QSize pixels = (QSizeF(width(), height()) * ratio).toSize();
    const auto opacities = systemSymbol(name_.toStdString(), pixels.width(), pixels.height());
    QImage image =
        tinted(opacities ? imageOfOpacities(*opacities, pixels) : drawing(source(), pixels), color_);
    image.setDevicePixelRatio(ratio);
    painter->drawImage(QPointF(0, 0), image);
}

}  // namespace orvane
