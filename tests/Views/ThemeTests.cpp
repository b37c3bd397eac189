#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <algorithm>
#include <cmath>

#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class ThemeTest : public ControlTest {
  protected:
    QColor color(const char* name) { return theme().property(name).value<QColor>(); }
    QFont style(const char* name) { return theme().property(name).value<QFont>(); }
};

TEST_F(ThemeTest, HasTheColoursOfBothAppearances) {
    struct Token {
        const char* name;
        const char* light;
        const char* dark;
    };
    for (const char* appearance : {"light", "dark"}) {
        theme().setProperty("appearance", appearance);
        for (const Token& token :
             {Token{"window", "#ffffff", "#1e1e1e"}, Token{"sidebar", "#f3f3f5", "#2a2a2c"},
              Token{"bar", "#f6f6f8", "#262628"}, Token{"sheet", "#f6f6f7", "#2b2b2d"},
              Token{"accent", "#007aff", "#0a84ff"}, Token{"orange", "#ff9500", "#ff9f0a"},
              Token{"purple", "#af52de", "#bf5af2"}, Token{"green", "#28cd41", "#32d74b"},
              Token{"red", "#ff3b30", "#ff453a"}, Token{"control", "#ffffff", "#59595c"},
              Token{"field", "#ffffff", "#3a3a3c"}, Token{"inactiveSelection", "#dcdcde", "#464648"}})
            EXPECT_EQ(color(token.name), QColor(appearance == QString("dark") ? token.dark : token.light))
                << token.name << " " << appearance;
    }
    theme().setProperty("appearance", "light");
    EXPECT_NEAR(color("label").alphaF(), 0.85, 0.005);
    EXPECT_NEAR(color("secondary").alphaF(), 0.50, 0.005);
    EXPECT_NEAR(color("tertiary").alphaF(), 0.26, 0.005);
}

TEST_F(ThemeTest, FollowsTheDesktopsPaletteAsItChanges) {
    theme().setProperty("appearance", "system");
    const QPalette before = QGuiApplication::palette();
    QGuiApplication::setPalette(QPalette(QColor("#202020")));
    EXPECT_EQ(theme().property("isDark"), true);
    QGuiApplication::setPalette(QPalette(QColor("#e0e0e0")));
    EXPECT_EQ(theme().property("isDark"), false);
    QGuiApplication::setPalette(before);
}

TEST_F(ThemeTest, HasTheTextStylesOfTheMac) {
    for (const auto& [name, size, weight] :
         {std::tuple("largeTitle", 26, QFont::Normal), std::tuple("title", 22, QFont::Normal),
          std::tuple("title2", 17, QFont::Normal), std::tuple("title3", 15, QFont::Normal),
          std::tuple("headline", 13, QFont::Bold), std::tuple("body", 13, QFont::Normal),
          std::tuple("callout", 12, QFont::Normal), std::tuple("subheadline", 11, QFont::Normal),
          std::tuple("caption", 10, QFont::Normal), std::tuple("caption2", 10, QFont::Medium)}) {
        EXPECT_EQ(style(name).pixelSize(), size) << name;
        EXPECT_EQ(style(name).weight(), weight) << name;
    }
}

TEST_F(ThemeTest, KeepsTheSizeOfAStyleInAnotherWeight) {
    stage(R"(PlainText { objectName: "text"; text: "Foo"; font: Theme.weighted(Theme.title2, Font.Bold) })");
    const auto font = item("text").property("font").value<QFont>();
    EXPECT_EQ(font.pixelSize(), 17);
    EXPECT_EQ(font.weight(), QFont::Bold);
    EXPECT_EQ(font.family(), QGuiApplication::font().family());
}

TEST_F(ThemeTest, NeverMakesTheFaintestFillInvisible) {
    theme().setProperty("appearance", "light");
    stage(R"(Row {
        Rectangle { objectName: "faint"; color: Theme.quaternaryFill(0.35) }
        Rectangle { objectName: "full"; color: Theme.quaternaryFill(1) }
    })");
    EXPECT_NEAR(item("faint").property("color").value<QColor>().alphaF(), 0.05, 0.005);
    EXPECT_NEAR(item("full").property("color").value<QColor>().alphaF(), 0.10, 0.005);
}

/// How light a colour is over a ground, from 0 to 1 as eyes have it.
double luminance(const QColor& color, const QColor& ground) {
    const auto channel = [&](double above, double below) {
        const double value = above * color.alphaF() + below * (1 - color.alphaF());
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * channel(color.redF(), ground.redF()) + 0.7152 * channel(color.greenF(), ground.greenF()) +
           0.0722 * channel(color.blueF(), ground.blueF());
}

double contrast(const QColor& color, const QColor& ground) {
    const double one = luminance(color, ground) + 0.05;
    const double other = luminance(ground, ground) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

TEST_F(ThemeTest, EverythingCanBeReadInHighContrast) {
    QObject& look = theme();
    look.setProperty("hasHighContrast", true);
    for (const char* appearance : {"light", "dark"}) {
        look.setProperty("appearance", appearance);
        for (const char* ground : {"window", "sidebar", "bar", "sheet", "control", "field"}) {
            for (const char* text : {"label", "secondary", "tertiary", "red"})
                EXPECT_GE(contrast(color(text), color(ground)), 4.5)
                    << text << " on " << ground << appearance;
            EXPECT_GE(contrast(color("separator"), color(ground)), 3) << ground << appearance;
            EXPECT_GE(contrast(color("focusRing"), color(ground)), 3) << ground << appearance;
        }
        EXPECT_GE(contrast(color("orange"), color("window")), 4.5) << appearance;
        EXPECT_GE(contrast(color("accentText"), color("accent")), 4.5) << appearance;
    }
}

TEST_F(ThemeTest, MovesNothingForThoseWhoWishSo) {
    EXPECT_EQ(theme().property("listDuration"), 450);
    EXPECT_EQ(theme().property("sheetDuration"), 200);
    theme().setProperty("reducesMotion", true);
    EXPECT_EQ(theme().property("listDuration"), 0);
    EXPECT_EQ(theme().property("sheetDuration"), 0);
}

}  // namespace
}  // namespace orvane::test
