#include <QtCore/QEasingCurve>
#include <QtCore/QtMath>
#include <QtGui/QColor>
#include <QtTest/QTest>
#include <algorithm>
#include <cmath>

#include "tests/Views/ControlTest.h"

namespace orvane::test {
namespace {

/// What every control is drawn with: fills, lines, opacities, sizes and motion.
class LookTest : public ControlTest {
  protected:
    LookTest() { theme().setProperty("appearance", "light"); }

    /// As red, green, blue and alpha, however it was written.
    static QColor color(const QObject& object, const char* property = "color") {
        return QColor::fromRgba(object.property(property).value<QColor>().rgba());
    }
    QColor token(const char* name) { return color(theme(), name); }
    /// The pointer is on nothing.
    /// Two steps: a pointer that another window left at the very place of the last would not move, and what
    /// stands at the window's origin counts as hovered until one does.
    void takePointerAway() {
        QTest::mouseMove(window.get(), QPoint(window->width() - 2, window->height() - 2));
        QTest::mouseMove(window.get(), QPoint(window->width() - 1, window->height() - 1));
    }
    /// The body of a control.
    static QObject& surface(const QQuickItem& control, const char* part = "background") {
        return *control.property(part).value<QQuickItem*>();
    }
    static QQuickItem& only(const QQuickItem& ancestor, const char* type) {
        const auto found = itemsOfType(ancestor, type);
        EXPECT_EQ(found.size(), 1U) << type;
        return *found.at(0);
    }
    /// What a control is filled with while a button of the mouse is down on it.
    QColor pressedFill(QQuickItem& control, const char* part = "background") {
        const QPoint centre =
            control.mapToScene(QPointF(control.width() / 2, control.height() / 2)).toPoint();
        QTest::mousePress(window.get(), Qt::LeftButton, {}, centre);
        const QColor fill = color(surface(control, part), "fill");
        QTest::mouseRelease(window.get(), Qt::LeftButton, {}, centre);
        return fill;
    }
};

TEST_F(LookTest, SetsTextInLinesOfAQuarterMoreThanItsSize) {
    stage(R"(Column {
        Repeater { model: [10, 11, 12, 13, 15, 17, 26]
            PlainText { text: "Foo"; font: Qt.font({ pixelSize: modelData }) } }
    })");
    std::vector<qreal> heights;
    for (const QQuickItem* line : itemsOfType(*window->contentItem(), "PlainText"))
        heights.push_back(line->height());
    EXPECT_EQ(heights, (std::vector<qreal>{13, 14, 15, 16, 20, 22, 32}));
}

TEST_F(LookTest, DrawsAPlainButtonOnTheControlsColourWithinAHairline) {
    QQuickItem& button = stage(R"(PushButton { x: 100; y: 100; text: "Press" })");
    takePointerAway();
    const QObject& body = surface(button);
    EXPECT_EQ(color(body, "fill"), token("control"));
    EXPECT_EQ(color(body, "line"), token("controlLine"));
    EXPECT_EQ(body.property("radius"), 6);
    EXPECT_EQ(body.property("hairline"), 1 / window->effectiveDevicePixelRatio());
    EXPECT_EQ(color(textItem(button, "Press")), token("label"));
    EXPECT_EQ(pressedFill(button), QColor::fromRgba(QColor("#ffffff").darker(110).rgba()));
    EXPECT_EQ(surface(button).property("opacity"), 1);
}

TEST_F(LookTest, DrawsAProminentButtonInTheAccentColourWithoutALine) {
    QQuickItem& button =
        stage(R"(PushButton { x: 100; y: 100; text: "Go"; isProminent: true; isLarge: true })");
    EXPECT_EQ(color(surface(button), "fill"), token("accent"));
    EXPECT_EQ(color(surface(button), "line").alpha(), 0);
    EXPECT_EQ(surface(button).property("radius"), 7);
    EXPECT_EQ(color(textItem(button, "Go")), QColor(Qt::white));
    EXPECT_EQ(pressedFill(button), QColor::fromRgba(token("accent").darker(110).rgba()));
}

TEST_F(LookTest, WritesWhatDestroysInRedOnAPlainButton) {
    QQuickItem& button =
        stage(R"(PushButton { text: "Delete"; symbol: "trash.slash"; isDestructive: true })");
    takePointerAway();
    EXPECT_EQ(color(surface(button), "fill"), token("control"));
    EXPECT_EQ(color(textItem(button, "Delete")), token("red"));
    EXPECT_EQ(color(only(button, "orvane::Symbol")), token("red"));
}

TEST_F(LookTest, FadesWhatIsDisabledToFortyPercent) {
    stage(R"(Column { enabled: false
        PushButton { objectName: "plain"; text: "Press" }
        PushButton { objectName: "prominent"; text: "Go"; isProminent: true }
        SymbolButton { objectName: "symbol"; symbol: "info.circle"; helpText: "About" }
        CheckToggle { objectName: "toggle"; text: "Cache" }
        RoundedTextField { objectName: "field" }
    })");
    const auto opacity = [this](const char* name, const char* part) {
        return surface(item(name), part).property("opacity").toReal();
    };
    EXPECT_EQ(opacity("plain", "background"), 0.4);
    EXPECT_EQ(opacity("plain", "contentItem"), 0.4);
    EXPECT_EQ(opacity("prominent", "background"), 0.4);
    EXPECT_EQ(opacity("prominent", "contentItem"), 1);
    theme().setProperty("appearance", "dark");
    EXPECT_EQ(opacity("prominent", "contentItem"), 0.4);
    EXPECT_EQ(opacity("symbol", "contentItem"), 0.4);
    EXPECT_EQ(opacity("toggle", "indicator"), 0.4);
    EXPECT_EQ(opacity("toggle", "contentItem"), 0.4);
    EXPECT_EQ(item("field").opacity(), 0.4);
}

TEST_F(LookTest, RingsAreThreePointsWideAndFollowTheShape) {
    QQuickItem& button = stage(R"(PushButton { text: "Press" })");
    takePointerAway();
    button.forceActiveFocus(Qt::TabFocusReason);
    const QQuickItem& ring = only(button, "FocusRing");
    EXPECT_EQ(ring.property("lineWidth"), 3);
    EXPECT_EQ(color(ring, "lineColor"), token("focusRing"));
    EXPECT_EQ(ring.property("radius"), 6 + 3);
    EXPECT_EQ(color(ring).alpha(), 0);
}

TEST_F(LookTest, DrawsATickInWhiteOnTheAccentColour) {
    QQuickItem& toggle = stage(R"(CheckToggle { x: 50; y: 50; text: "Cache"; checked: true })");
    const QObject& box = surface(toggle, "indicator");
    EXPECT_EQ(box.property("radius"), 3.5);
    EXPECT_EQ(color(box, "fill"), token("accent"));
    EXPECT_EQ(color(box, "line").alpha(), 0);
    const QQuickItem& tick = only(toggle, "orvane::Symbol");
    EXPECT_EQ(color(tick), QColor(Qt::white));
    EXPECT_EQ(tick.size(), QSizeF(12, 12));
    EXPECT_EQ(pressedFill(toggle, "indicator"), QColor::fromRgba(token("accent").darker(110).rgba()));
    EXPECT_EQ(toggle.property("checked"), false);
    takePointerAway();
    EXPECT_EQ(color(box, "fill"), token("field"));
    EXPECT_EQ(color(box, "line"), token("controlLine"));
    EXPECT_TRUE(itemsOfType(toggle, "orvane::Symbol").empty());
}

TEST_F(LookTest, DrawsAFieldOnItsColourWithThePlaceholderPale) {
    QQuickItem& field = stage(R"(RoundedTextField { placeholderText: "Search" })");
    EXPECT_EQ(color(surface(field), "fill"), token("field"));
    EXPECT_EQ(surface(field).property("radius"), 6);
    EXPECT_EQ(color(textItem(field, "Search")), token("tertiary"));
    EXPECT_EQ(frameIn(field, textItem(field, "Search")).left(), 8);
    EXPECT_EQ(color(field), token("label"));
    field.forceActiveFocus();
    EXPECT_EQ(only(field, "FocusRing").property("radius"), 6 + 3);
}

TEST_F(LookTest, DrawsDividersInTheSeparatorsColour) {
    const QQuickItem& divider = stage("Divider { width: 100 }");
    EXPECT_EQ(divider.implicitHeight(), 1);
    EXPECT_EQ(color(*divider.childItems().front()), token("separator"));
}

TEST_F(LookTest, TurnsASpinnerOnceASecondWithSpokesThatFade) {
    const QQuickItem& spinner = stage("Spinner {}");
    const QObject* timer = nullptr;
    for (const QObject* candidate : spinner.findChildren<QObject*>())
        if (candidate->property("interval").isValid()) timer = candidate;
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->property("interval"), 1000 / 8);
    std::vector<qreal> opacities;
    for (const QQuickItem* spoke : itemsOfType(spinner, "QQuickRectangle")) {
        opacities.push_back(spoke->opacity());
        EXPECT_EQ(spoke->size(), QSizeF(2, 4.5));
    }
    std::ranges::sort(opacities, std::greater());
    ASSERT_EQ(opacities.size(), 8U);
    EXPECT_NEAR(opacities.front(), 0.85, 0.001);
    for (std::size_t i = 1; i < opacities.size(); ++i)
        EXPECT_NEAR(opacities[i - 1] - opacities[i], 0.09, 0.001);
}

TEST_F(LookTest, SetsTheSpokesOfASpinnerAroundItsCentre) {
    QQuickItem& spinner = stage("Spinner {}");
    std::vector<int> angles;
    for (const QQuickItem* spoke : itemsOfType(spinner, "QQuickRectangle")) {
        // The middle of the outer end, turned about the centre.
        const QPointF end = spoke->mapToItem(&spinner, QPointF(1, 0)) - QPointF(8, 8);
        EXPECT_NEAR(std::hypot(end.x(), end.y()), 7.5, 0.001);
        angles.push_back(qRound(qRadiansToDegrees(std::atan2(end.x(), -end.y()))));
    }
    std::ranges::sort(angles);
    EXPECT_EQ(angles, (std::vector{-135, -90, -45, 0, 45, 90, 135, 180}));
    const int first = spinner.property("step").toInt();
    waitUntil([&] { return spinner.property("step") != first; });
    EXPECT_EQ(spinner.property("step"), (first + 1) % 8);
}

TEST_F(LookTest, DrawsASymbolToPressPalelyUntilThePointerIsOnIt) {
    QQuickItem& button = stage(R"(SymbolButton { x: 50; y: 50; symbol: "info.circle"; helpText: "About" })");
    takePointerAway();
    const QQuickItem& symbol = only(button, "orvane::Symbol");
    EXPECT_EQ(color(symbol), token("secondary"));
    EXPECT_EQ(symbol.size(), QSizeF(16, 16));
    hover(button);
    EXPECT_EQ(color(symbol), token("label"));
    takePointerAway();
}

TEST_F(LookTest, ShowsAPlaceholderInTheMiddleOfItsPlace) {
    const QQuickItem& placeholder = stage(
        R"(ContentUnavailable { symbol: "square.grid.2x2"; title: "Nothing"; description: "Choose." })");
    const QQuickItem& symbol = only(placeholder, "orvane::Symbol");
    EXPECT_EQ(symbol.size(), QSizeF(48, 48));
    EXPECT_EQ(color(symbol), token("secondary"));
    const QQuickItem& title = textItem(placeholder, "Nothing");
    EXPECT_EQ(title.property("font").value<QFont>().pixelSize(), 17);
    EXPECT_EQ(title.property("font").value<QFont>().weight(), QFont::Bold);
    EXPECT_EQ(color(textItem(placeholder, "Choose.")), token("secondary"));
    EXPECT_EQ(frameIn(placeholder, symbol).center().x(), 150);
}

const char* const panelsQML = R"(Item {
    width: 900; height: 700
    property Sheet sheet: Sheet { objectName: "sheet"; title: "Foo"; width: 400; height: 300 }
    property Alert alert: Alert {
        objectName: "alert"
        title: "Delete?"
        message: "It is gone then."
        actions: [
            AlertAction { text: "Cancel"; isDefault: true; isCancel: true },
            AlertAction { text: "Delete"; isDestructive: true }
        ]
    }
})";

class PanelLookTest : public LookTest {
  protected:
    QObject& open(const char* panel) {
        auto* const popup = stage(panelsQML, {900, 700}).property(panel).value<QObject*>();
        popup->setProperty("visible", true);
        waitUntil([popup] { return popup->property("isReady").toBool(); });
        layOut();
        return *popup;
    }
    /// The animation of a property in a transition.
    static const QObject& animation(const QObject& panel, const char* transition, const QString& property) {
        QObject* const object = panel.property(transition).value<QObject*>();
        QQmlListReference animations(object, "animations");
        for (qsizetype i = 0; i < animations.count(); ++i)
            if (animations.at(i)->property("property") == property) return *animations.at(i);
        throw std::runtime_error("nothing moves " + property.toStdString());
    }
    static QEasingCurve::Type curve(const QObject& animation) {
        return animation.property("easing").value<QEasingCurve>().type();
    }
};

TEST_F(PanelLookTest, SlideEightPointsWhileTheyFadeInAFifthOfASecond) {
    QObject& sheet = open("sheet");
    // A transition is there from its first run on.
    sheet.setProperty("visible", false);
    waitUntil([&] { return !sheet.property("visible").toBool(); });
    for (const char* transition : {"enter", "exit"}) {
        for (const char* property : {"opacity", "slide"})
            EXPECT_EQ(animation(sheet, transition, property).property("duration"), 200)
                << transition << " " << property;
    }
    EXPECT_EQ(animation(sheet, "enter", "opacity").property("from"), 0);
    EXPECT_EQ(animation(sheet, "enter", "opacity").property("to"), 1);
    EXPECT_EQ(animation(sheet, "enter", "slide").property("from"), -8);
    EXPECT_EQ(animation(sheet, "enter", "slide").property("to"), 0);
    EXPECT_EQ(curve(animation(sheet, "enter", "slide")), QEasingCurve::OutQuad);
    EXPECT_EQ(animation(sheet, "exit", "opacity").property("to"), 0);
    EXPECT_EQ(animation(sheet, "exit", "slide").property("to"), -8);
    EXPECT_EQ(curve(animation(sheet, "exit", "slide")), QEasingCurve::InQuad);
}

TEST_F(PanelLookTest, ASheetHasItsFillCornersAndVeil) {
    const QObject& sheet = open("sheet");
    const QObject& body = *sheet.property("background").value<QQuickItem*>();
    EXPECT_EQ(color(body, "fill"), token("sheet"));
    EXPECT_EQ(color(body, "line"), token("separator"));
    EXPECT_EQ(body.property("radius"), 10);
    EXPECT_EQ(only(dynamic_cast<const QQuickItem&>(body), "SoftShadow").property("shapeRadius"), 10);
    const QImage picture = window->grabWindow();
    // White under black at 18 %.
    EXPECT_NEAR(picture.pixelColor(2, 690).red(), 209, 1);
    EXPECT_EQ(picture.pixelColor(450, 200), QColor("#f6f6f7"));
}

TEST_F(PanelLookTest, TheVeilIsDarkerInTheDark) {
    theme().setProperty("appearance", "dark");
    open("sheet");
    // What is behind is white here too, as the stage is; black at 40 % is over it.
    EXPECT_NEAR(window->grabWindow().pixelColor(2, 690).red(), 153, 1);
}

TEST_F(PanelLookTest, AnAlertHasItsMeasuresAndTypes) {
    const QObject& alert = open("alert");
    const QObject& body = *alert.property("background").value<QQuickItem*>();
    EXPECT_EQ(body.property("radius"), 12);
    EXPECT_EQ(color(body, "fill"), token("sheet"));
    EXPECT_EQ(alert.property("width"), 260);
    const QQuickItem& content = *alert.property("contentItem").value<QQuickItem*>();
    const QQuickItem& icon = only(content, "QQuickImage");
    EXPECT_EQ(icon.size(), QSizeF(56, 56));
    EXPECT_EQ(frameIn(content, icon).topLeft(), QPointF(102, 18));
    const auto font = [&](const char* text) {
        return textItem(content, text).property("font").value<QFont>();
    };
    EXPECT_EQ(font("Delete?").pixelSize(), 13);
    EXPECT_EQ(font("Delete?").weight(), QFont::Bold);
    EXPECT_EQ(font("It is gone then.").pixelSize(), 11);
    const QRectF title = frameIn(content, textItem(content, "Delete?"));
    EXPECT_EQ(title.top() - frameIn(content, icon).bottom(), 10);
    EXPECT_EQ(frameIn(content, textItem(content, "It is gone then.")).top() - title.bottom(), 10);
    const auto buttons = itemsOfType(content, "PushButton");
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_EQ(buttons[0]->property("text"), "Cancel");
    EXPECT_EQ(buttons[0]->property("isProminent"), true);
    EXPECT_EQ(color(textItem(*buttons[1], "Delete")), token("red"));
    EXPECT_EQ(frameIn(content, *buttons[1]).top() - frameIn(content, *buttons[0]).bottom(), 6);
    EXPECT_EQ(content.height() - frameIn(content, *buttons[1]).bottom(), 16);
    EXPECT_EQ(alert.property("y").toReal(), qRound((700 - content.height()) * 0.48));
}

}  // namespace
}  // namespace orvane::test
