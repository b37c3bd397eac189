#include "Views/Style/PixelRectangle.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRenderNode>
#include <algorithm>
#include <cmath>

namespace orvane {
namespace {

struct Looks {
    QRectF frame;
    QColor color;
    QColor lineColor;
    qreal radius = 0;
    qreal lineWidth = 0;
};

QPainterPath rounded(const QRectF& frame, qreal radius) {
    const qreal room = std::min(frame.width(), frame.height()) / 2;
    QPainterPath path;
    path.addRoundedRect(frame, std::clamp<qreal>(radius, 0, room), std::clamp<qreal>(radius, 0, room));
    return path;
}

/// Edges that lie between pixels go to the nearest one; what is there at all keeps a pixel.
QRectF onPixels(const QRectF& frame) {
    const qreal left = std::round(frame.left());
    const qreal top = std::round(frame.top());
    return {left, top, std::max<qreal>(1, std::round(frame.right()) - left),
            std::max<qreal>(1, std::round(frame.bottom()) - top)};
}

void paintLooks(QPainter& painter, const Looks& looks) {
    if (looks.frame.isEmpty()) return;
    // In the pixels of what is painted on.
    const QTransform toDevice = painter.deviceTransform();
    const qreal scale = toDevice.m11();
    const QRectF frame = onPixels(toDevice.mapRect(looks.frame));
    painter.setTransform(toDevice.inverted() * painter.transform());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QPainterPath outline = rounded(frame, looks.radius * scale);
    if (looks.color.alpha() > 0) painter.fillPath(outline, looks.color);
    if (looks.lineWidth <= 0) return;
    const qreal line = std::max<qreal>(1, std::round(looks.lineWidth * scale));
    QPainterPath ring = outline;
    ring.addPath(rounded(frame.adjusted(line, line, -line, -line), looks.radius * scale - line));
    painter.fillPath(ring, looks.lineColor);
}

/// Paints right onto the window, where alone it is known where its pixels are.
class DirectNode : public QSGRenderNode {
  public:
    explicit DirectNode(QQuickWindow* window) : window_(window) {}

    void show(const Looks& looks) {
        looks_ = looks;
        markDirty(DirtyMaterial | DirtyGeometry);
    }

    StateFlags changedStates() const override { return {}; }
    RenderingFlags flags() const override { return BoundedRectRendering; }
    QRectF rect() const override { return looks_.frame; }

    void render(const RenderState* state) override {
        auto* const painter = static_cast<QPainter*>(
            window_->rendererInterface()->getResource(window_, QSGRendererInterface::PainterResource));
        if (!painter) return;
        const QRegion* const clip = state->clipRegion();
        if (clip && !clip->isEmpty()) painter->setClipRegion(*clip, Qt::ReplaceClip);
        painter->setTransform(matrix()->toTransform());
        painter->setOpacity(inheritedOpacity());
        paintLooks(*painter, looks_);
    }

  private:
    QQuickWindow* window_;
    Looks looks_;
};

}  // namespace

void PixelRectangle::paint(QPainter* painter) {
    paintLooks(*painter, {boundingRect(), color_, lineColor_, radius_, lineWidth_});
}

QSGNode* PixelRectangle::updatePaintNode(QSGNode* node, UpdatePaintNodeData* data) {
    if (window()->rendererInterface()->graphicsApi() != QSGRendererInterface::Software)
        return QQuickPaintedItem::updatePaintNode(node, data);
    auto* const direct = node ? static_cast<DirectNode*>(node) : new DirectNode(window());
    direct->show({boundingRect(), color_, lineColor_, radius_, lineWidth_});
    return direct;
}

}  // namespace orvane
