#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QString>
#include <string_view>

namespace orvane {

/// A picture of so many pixels in black, by how opaque each of them is, row by row from the top, 0 to 255.
QImage imageOfOpacities(std::string_view opacities, QSize pixels);

/// A symbol in one colour, drawn for the pixels of the screen it is on: the system's own where that has one
/// of the name, else the project's drawing. Main thread. A name of which there is no drawing draws nothing
/// and is reported as a warning of the QML that asked for it.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// The symbol's name, such as "lock.fill"; empty for none.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    /// The side of the square that the symbol is drawn in, in points.
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged FINAL)

  public:
    explicit Symbol(QQuickItem* parent = nullptr);

    const QString& name() const { return name_; }
    void setName(const QString& name);
    const QColor& color() const { return color_; }
    void setColor(const QColor& color);
    qreal size() const { return implicitWidth(); }
    void setSize(qreal size);

    void paint(QPainter* painter) override;

  signals:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

  protected:
    void itemChange(ItemChange change, const ItemChangeData& data) override;

  private:
    QString source() const;

    QString name_;
    QColor color_ = Qt::black;
};

}  // namespace orvane
