#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtGui/QColor>
#include <QtQuick/QQuickPaintedItem>

namespace orvane {

/// A rectangle, rounded or not, all of whose edges lie on whole pixels of the screen at whatever scale, so
/// that none is drawn by halves. Qt's own one is right at whole scales only. Main thread.
class PixelRectangle : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER color_ WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(qreal radius MEMBER radius_ WRITE setRadius NOTIFY radiusChanged FINAL)
    /// The line within the edge: in points, and at least a pixel where it is more than 0.
    Q_PROPERTY(qreal lineWidth MEMBER lineWidth_ WRITE setLineWidth NOTIFY lineWidthChanged FINAL)
    Q_PROPERTY(QColor lineColor MEMBER lineColor_ WRITE setLineColor NOTIFY lineColorChanged FINAL)

  public:
    using QQuickPaintedItem::QQuickPaintedItem;

    void setColor(const QColor& color) { change(color_, color, &PixelRectangle::colorChanged); }
    void setRadius(qreal radius) { change(radius_, radius, &PixelRectangle::radiusChanged); }
    void setLineWidth(qreal width) { change(lineWidth_, width, &PixelRectangle::lineWidthChanged); }
    void setLineColor(const QColor& color) { change(lineColor_, color, &PixelRectangle::lineColorChanged); }

    void paint(QPainter* painter) override;

  signals:
    void colorChanged();
    void radiusChanged();
    void lineWidthChanged();
    void lineColorChanged();

  protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) override;

  private:
    template <typename Value>
    void change(Value& member, const Value& value, void (PixelRectangle::*changed)()) {
        if (member == value) return;
        member = value;
        update();
        emit(this->*changed)();
    }

    QColor color_ = Qt::white;
    QColor lineColor_ = Qt::black;
    qreal radius_ = 0;
    qreal lineWidth_ = 0;
};

}  // namespace orvane
