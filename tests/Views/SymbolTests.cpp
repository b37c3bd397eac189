#include <QtCore/QDir>
#include <QtTest/QTest>

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
