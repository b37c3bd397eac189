#include <QtCore/QDir>
#include <QtTest/QTest>
#include <algorithm>
#include <string_view>
#include <vector>

#include "Views/Symbols/Symbol.h"
#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class SymbolTest : public ControlTest {
  protected:
    /// The part of the window's picture that an item takes.
    QImage picture(const QQuickItem& item) {
        const qreal ratio = window->effectiveDevicePixelRatio();
        const QRectF frame = frameIn(*window->contentItem(), item);
        return window->grabWindow().copy(QRectF(frame.topLeft() * ratio, frame.size() * ratio).toRect());
    }
};

TEST_F(SymbolTest, IsDrawnInItsColour) {
    QQuickItem& symbol = stage(R"(Symbol { name: "folder.fill"; size: 16; color: "#ff9500" })");
    EXPECT_EQ(symbol.size(), QSizeF(16, 16));
    const QImage orange = picture(symbol);
    EXPECT_EQ(orange.pixelColor(orange.rect().center()), QColor("#ff9500"));
    symbol.setProperty("color", QColor("#007aff"));
    const QImage blue = picture(symbol);
    EXPECT_EQ(blue.pixelColor(blue.rect().center()), QColor("#007aff"));
}

TEST_F(SymbolTest, DrawsEveryDrawingThereIs) {
    const QStringList files = QDir(":/qt/qml/Orvane/Symbols").entryList();
    ASSERT_GT(files.size(), 30);
    QQuickItem& symbol = stage(R"(Symbol { size: 16; color: "black" })");
    const QImage nothing = picture(symbol);
    for (const QString& file : files) {
        symbol.setProperty("name", QString(file).remove(".svg"));
        EXPECT_NE(picture(symbol), nothing) << file.toStdString();
    }
}

/// How a drawing fills its square of 16 units.
struct Ink {
    double share = 0;
    QRectF frame;
    QPointF centre;
};

Ink inkOf(const QImage& picture) {
    const double unit = 16.0 / picture.width();
    double sum = 0;
    QPointF weighted;
    QRect frame;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const double ink = 1 - picture.pixelColor(x, y).lightnessF();
            sum += ink;
            weighted += QPointF(x + 0.5, y + 0.5) * ink;
            if (ink > 0.5) frame |= QRect(x, y, 1, 1);
        }
    }
    return {sum * unit * unit / 256,
            {QPointF(frame.topLeft()) * unit, QSizeF(frame.size()) * unit},
            weighted / sum * unit};
}

TEST_F(SymbolTest, AllAreDrawnOnOneGridWithOneWeight) {
    QQuickItem& symbol = stage(R"(Symbol { size: 160; color: "black" })");
    for (const QString& file : QDir(":/qt/qml/Orvane/Symbols").entryList()) {
        const QString name = QString(file).remove(".svg");
        SCOPED_TRACE(name.toStdString());
        symbol.setProperty("name", name);
        const Ink ink = inkOf(picture(symbol));
        EXPECT_GE(std::max(ink.frame.width(), ink.frame.height()), name == "tick" ? 11 : 12);
        EXPECT_LE(std::max(ink.frame.width(), ink.frame.height()), 14.5);
        EXPECT_NEAR(ink.frame.center().x(), 8, 0.3);
        EXPECT_NEAR(ink.frame.center().y(), 8, 0.3);
        EXPECT_NEAR(ink.centre.x(), 8, 0.6);
        // What stands on something, as a lock or a drive does, is heavier below.
        EXPECT_NEAR(ink.centre.y(), 8, 1.3);
        const bool isSolid = name.split('.').contains("fill");
        EXPECT_GE(ink.share, isSolid ? 0.27 : 0.08);
        EXPECT_LE(ink.share, isSolid ? 0.50 : 0.38);
    }
}

TEST(SymbolPicture, IsAsOpaqueAsTheSystemSays) {
    const QImage image = imageOfOpacities(std::string_view("\x00\x40\xFF\x80\x01\x00", 6), {3, 2});
    ASSERT_EQ(image.size(), QSize(3, 2));
    std::vector<int> opacities;
    for (int i = 0; i < 6; ++i) opacities.push_back(image.pixelColor(i % 3, i / 3).alpha());
    EXPECT_EQ(opacities, (std::vector{0x00, 0x40, 0xFF, 0x80, 0x01, 0x00}));
}

TEST_F(SymbolTest, ComplainsOfANameThatThereIsNot) {
    static QStringList messages;
    messages.clear();
    const auto handler = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& message) { messages << message; });
    stage(R"(Symbol { name: "unicorn" })");
    qInstallMessageHandler(handler);
    EXPECT_TRUE(messages.join('\n').contains("there is no symbol named unicorn"));
}

}  // namespace
}  // namespace orvane::test
