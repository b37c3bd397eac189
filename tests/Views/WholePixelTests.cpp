#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <algorithm>

#include "tests/Views/WindowStates.h"

namespace orvane::test {
namespace {

/// In the scale that the process was started with.
class WholePixelsTest : public WindowStatesTest, public testing::WithParamInterface<const char*> {
  protected:
    /// Compares each rectangle's edges with the same picture without it: next to an edge nothing of it is
    /// seen outside, and inside all of it.
    void checkEdges(QQuickWindow& seen) {
        for (QQuickItem* rectangle : itemsOfType(layer(seen), QStringLiteral("orvane::PixelRectangle")))
            if (rectangle->width() > 0 && rectangle->height() > 0) checkEdges(seen, *rectangle);
    }

    int checked = 0;

  private:
    static double opacityOf(const QQuickItem& item) {
        return item.opacity() * (item.parentItem() ? opacityOf(*item.parentItem()) : 1);
    }

    static int mixed(int below, int above, double opacity) {
        return qRound(below * (1 - opacity) + above * opacity);
    }

    void checkEdges(QQuickWindow& seen, QQuickItem& rectangle) {
        const auto color = rectangle.property("color").value<QColor>();
        const auto lineColor = rectangle.property("lineColor").value<QColor>();
        const qreal lineWidth = rectangle.property("lineWidth").toReal();
        const QColor edge = lineWidth > 0 ? lineColor : color;
        const double opacity = edge.alphaF() * opacityOf(rectangle);
        const double fill = color.alphaF() * opacityOf(rectangle);
        if (opacity == 0) return;
        const QImage with = seen.grabWindow();
        rectangle.setProperty("color", QColor(Qt::transparent));
        rectangle.setProperty("lineWidth", 0);
        const QImage without = seen.grabWindow();
        rectangle.setProperty("color", color);
        rectangle.setProperty("lineWidth", lineWidth);

        const qreal ratio = seen.effectiveDevicePixelRatio();
        const QRectF frame = frameIn(*seen.contentItem(), rectangle);
        const QRect pixels(
            QPoint(qRound(frame.left() * ratio), qRound(frame.top() * ratio)),
            QPoint(qRound(frame.right() * ratio), qRound(frame.bottom() * ratio)) - QPoint(1, 1));
        const QPoint middle = pixels.center();
        const std::string name = rectangle.parentItem()->metaObject()->className();
        for (const auto& [inside, outward] : {std::pair(QPoint(pixels.left(), middle.y()), QPoint(-1, 0)),
                                              std::pair(QPoint(pixels.right(), middle.y()), QPoint(1, 0)),
                                              std::pair(QPoint(middle.x(), pixels.top()), QPoint(0, -1)),
                                              std::pair(QPoint(middle.x(), pixels.bottom()), QPoint(0, 1))}) {
            if (!with.rect().contains(inside) || !with.rect().contains(inside + outward)) continue;
            EXPECT_EQ(with.pixel(inside + outward), without.pixel(inside + outward))
                << name << " goes too far at " << inside.x() << "," << inside.y();
            const QColor is = with.pixelColor(inside);
            const QColor was = without.pixelColor(inside);
            // The ring of the keyboard is seen through.
            const auto rings = itemsOfType(layer(seen), QStringLiteral("FocusRing"));
            const bool isBelowRing = std::ranges::any_of(rings, [&, here = inside](const QQuickItem* ring) {
                const QPointF place = (QPointF(here) + QPointF(0.5, 0.5)) / ratio;
                return ring != &rectangle && frameIn(*seen.contentItem(), *ring).contains(place);
            });
            // Or something else is on top of it there.
            if (is == was || isBelowRing) continue;
            ++checked;
            const QColor below =
                lineWidth > 0 && color.alpha() > 0
                    ? QColor(mixed(was.red(), color.red(), fill), mixed(was.green(), color.green(), fill),
                             mixed(was.blue(), color.blue(), fill))
                    : was;
            EXPECT_NEAR(is.red(), mixed(below.red(), edge.red(), opacity), 3)
                << name << " is there by halves";
            EXPECT_NEAR(is.green(), mixed(below.green(), edge.green(), opacity), 3) << name;
            EXPECT_NEAR(is.blue(), mixed(below.blue(), edge.blue(), opacity), 3) << name;
        }
    }
};

TEST_P(WholePixelsTest, NoEdgeIsDrawnByHalves) {
    visitEveryState([&](const std::string& state, QQuickWindow& seen) {
        SCOPED_TRACE(state);
        window->setProperty("appearance", GetParam());
        const int before = checked;
        checkEdges(seen);
        EXPECT_GT(checked, before + 3);
    });
}

TEST_P(WholePixelsTest, NoWindowsLastRowOrColumnIsLeftOut) {
    visitEveryState([&](const std::string& state, QQuickWindow& seen) {
        if (state != "about") return;
        window->setProperty("appearance", GetParam());
        const QImage picture = seen.grabWindow();
        const QColor ground = theme().property("window").value<QColor>();
        EXPECT_EQ(picture.width(), seen.width() * seen.effectiveDevicePixelRatio());
        EXPECT_EQ(picture.height(), seen.height() * seen.effectiveDevicePixelRatio());
        for (int x = 0; x < picture.width(); ++x)
            for (const int y : {0, picture.height() - 1})
                ASSERT_EQ(picture.pixelColor(x, y), ground) << x << ' ' << y;
        for (int y = 0; y < picture.height(); ++y)
            for (const int x : {0, picture.width() - 1})
                ASSERT_EQ(picture.pixelColor(x, y), ground) << x << ' ' << y;
    });
}

INSTANTIATE_TEST_SUITE_P(Appearances, WholePixelsTest, testing::Values("light", "dark"));

/// A process has one scale: for each, this program is run anew.
class ScaledScreenTest : public testing::TestWithParam<const char*> {};

TEST_P(ScaledScreenTest, ShowsNothingByHalves) {
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", GetParam());
    for (const char* variable : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX", "GTEST_OUTPUT"})
        environment.remove(variable);
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QCoreApplication::applicationFilePath(),
                  {"--gtest_brief=1", "--gtest_filter=Appearances/WholePixelsTest.*"});
    constexpr int longest = 900'000;
    ASSERT_TRUE(program.waitForFinished(longest));
    const std::string said = program.readAll().toStdString();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << said;
    EXPECT_NE(said.find("4 tests"), std::string::npos) << said;
}

INSTANTIATE_TEST_SUITE_P(Fractions, ScaledScreenTest, testing::Values("1.25", "1.5", "1.75"));

}  // namespace
}  // namespace orvane::test
