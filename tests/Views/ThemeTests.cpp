#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <algorithm>
#include <cmath>

#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

class ThemeTest : public ControlTest {
  protected:
    /// As red, green, blue and alpha, however it was written.
    QColor color(const char* name) { return QColor::fromRgba(theme().property(name).value<QColor>().rgba()); }
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
             {Token{"label", "#d9000000", "#deffffff"}, Token{"secondary", "#80000000", "#8cffffff"},
              Token{"tertiary", "#42000000", "#42ffffff"}, Token{"accentText", "#ffffff", "#ffffff"},
              Token{"window", "#ffffff", "#1e1e1e"}, Token{"sidebar", "#f3f3f5", "#2a2a2c"},
              Token{"bar", "#f6f6f8", "#262628"}, Token{"sheet", "#f6f6f7", "#2b2b2d"},
              Token{"separator", "#1a000000", "#1cffffff"}, Token{"veil", "#2e000000", "#66000000"},
              Token{"accent", "#007aff", "#0a84ff"}, Token{"blue", "#007aff", "#0a84ff"},
              Token{"orange", "#ff9500", "#ff9f0a"}, Token{"purple", "#af52de", "#bf5af2"},
              Token{"green", "#28cd41", "#32d74b"}, Token{"red", "#ff3b30", "#ff453a"},
              Token{"control", "#ffffff", "#59595c"}, Token{"controlLine", "#1f000000", "#0fffffff"},
              Token{"controlShadow", "#0d000000", "#26000000"}, Token{"field", "#ffffff", "#3a3a3c"},
              Token{"inactiveSelection", "#dcdcde", "#464648"},
              // The accent at 50 %.
              Token{"focusRing", "#80007aff", "#800a84ff"}})
            EXPECT_EQ(color(token.name), QColor(appearance == QString("dark") ? token.dark : token.light))
                << token.name << " " << appearance;
    }
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
    struct Style {
        const char* name;
        int size;
        QFont::Weight weight;
        // Large titles are set tight, small text is not.
        double spacing;
    };
    for (const Style& expected :
         {Style{"largeTitle", 26, QFont::Normal, -0.5}, Style{"title", 22, QFont::Normal, -0.4},
          Style{"title2", 17, QFont::Normal, -0.3}, Style{"title3", 15, QFont::Normal, -0.2},
          Style{"headline", 13, QFont::Bold, 0}, Style{"body", 13, QFont::Normal, 0},
          Style{"callout", 12, QFont::Normal, 0}, Style{"subheadline", 11, QFont::Normal, 0},
          Style{"caption", 10, QFont::Normal, 0}, Style{"caption2", 10, QFont::Medium, 0}}) {
        const QFont font = style(expected.name);
        EXPECT_EQ(font.pixelSize(), expected.size) << expected.name;
        EXPECT_EQ(font.weight(), expected.weight) << expected.name;
        EXPECT_NEAR(font.letterSpacing(), expected.spacing, 0.02) << expected.name;
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
    for (const auto& [appearance, ground] : {std::pair("light", Qt::black), std::pair("dark", Qt::white)}) {
        theme().setProperty("appearance", appearance);
        const QQuickItem& row = stage(R"(Row {
            Rectangle { color: Theme.quaternaryFill(0.35) }
            Rectangle { color: Theme.quaternaryFill(0.8) }
            Rectangle { color: Theme.quaternaryFill(1) }
        })");
        std::vector<int> alphas;
        for (const QQuickItem* box : row.childItems()) {
            const auto fill = box->property("color").value<QColor>();
            EXPECT_EQ(QColor(fill.rgb()), QColor(ground)) << appearance;
            alphas.push_back(qRound(fill.alphaF() * 100));
        }
        EXPECT_EQ(alphas, (std::vector{5, 8, 10})) << appearance;
    }
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
