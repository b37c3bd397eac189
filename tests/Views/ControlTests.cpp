#include "tests/Views/ControlTest.h"

#include <QtCore/QTextBoundaryFinder>
#include <QtGui/QFontMetricsF>
#include <QtTest/QTest>
#include <algorithm>

namespace orvane::test {
namespace {

using ButtonTest = ControlTest;

TEST_F(ButtonTest, HasTheMetricsOfItsSize) {
    stage(R"(Row {
        PushButton { objectName: "plain"; symbol: "folder"; text: "Show" }
        PushButton { objectName: "large"; symbol: "trash"; text: "Review"; isLarge: true }
    })");
    for (const auto& [name, height, padding] : {std::tuple("plain", 22, 9), std::tuple("large", 30, 14)}) {
        const QQuickItem& button = item(name);
        const QRectF symbol = frameIn(button, *itemsOfType(button, "orvane::Symbol").at(0));
        const QRectF text = frameIn(button, textItem(button, button.property("text").toString()));
        EXPECT_EQ(button.height(), height) << name;
        EXPECT_EQ(symbol.left(), padding) << name;
        EXPECT_EQ(text.left() - symbol.right(), 5) << name;
        EXPECT_NEAR(button.width() - text.right(), padding, 1) << name;
    }
}

TEST_F(ButtonTest, IsPressedByPointerKeysAndScreenReader) {
    QQuickItem& button = stage(R"(PushButton { text: "Press" })");
    const QSignalSpy clicks(&button, SIGNAL(clicked()));
    click(button);
    EXPECT_EQ(clicks.count(), 1);
    button.forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    press(Qt::Key_Enter);
    press(Qt::Key_Space);
    EXPECT_EQ(clicks.count(), 4);
    EXPECT_TRUE(pressForScreenReader(button));
    EXPECT_EQ(clicks.count(), 5);
}

TEST_F(ButtonTest, DoesNothingWhileItIsDisabled) {
    QQuickItem& button = stage(R"(PushButton { text: "Press"; enabled: false })");
    const QSignalSpy clicks(&button, SIGNAL(clicked()));
    click(button);
    pressForScreenReader(button);
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_EQ(accessibleDescription(button), "dimmed");
}

TEST_F(ButtonTest, IsNamedByItsTextOrElseByItsHelp) {
    stage(R"(Row {
        PushButton { objectName: "text"; text: "Email"; helpText: "Write a letter" }
        SymbolButton { objectName: "symbol"; symbol: "info.circle"; helpText: "About Orvane" }
    })");
    EXPECT_EQ(accessibleName(item("text")), "Email");
    EXPECT_EQ(accessibleName(item("symbol")), "About Orvane");
}

TEST_F(ButtonTest, ShowsItsHelpUnderTheRestingPointer) {
    QQuickItem& button =
        stage(R"(SymbolButton { x: 100; y: 100; symbol: "info.circle"; helpText: "About" })");
    hover(button);
    waitUntil([this] { return textsIn(*window->contentItem()).contains("About"); });
    const QQuickItem& help = textItem(*window->contentItem(), "About");
    EXPECT_GE(frameIn(*window->contentItem(), help).top(), button.y() + button.height());
}

TEST_F(ButtonTest, LeavesTheKeyboardWhereItIsWhenClicked) {
    stage(R"(Column {
        RoundedTextField { objectName: "field"; focus: true }
        PushButton { objectName: "button"; text: "Press" }
    })");
    item("field").forceActiveFocus();
    click(item("button"));
    EXPECT_TRUE(isActive("field"));
}

TEST_F(ButtonTest, WearsTheRingOnlyForTheKeyboard) {
    stage(R"(Row {
        PushButton { objectName: "first"; text: "First" }
        PushButton { objectName: "second"; text: "Second" }
    })");
    EXPECT_TRUE(itemsOfType(item("first"), "FocusRing").empty());
    press(Qt::Key_Tab);
    ASSERT_EQ(itemsOfType(item("first"), "FocusRing").size(), 1U);
    const QQuickItem& ring = *itemsOfType(item("first"), "FocusRing").front();
    EXPECT_EQ(frameIn(item("first"), ring), QRectF(-3, -3, item("first").width() + 6, 28));
    press(Qt::Key_Tab);
    EXPECT_TRUE(itemsOfType(item("first"), "FocusRing").empty());
    EXPECT_TRUE(isActive("second"));
}

TEST_F(ButtonTest, WearsTheRingAroundASymbol) {
    QQuickItem& button = stage(R"(SymbolButton { x: 50; y: 50; symbol: "info.circle"; helpText: "About" })");
    EXPECT_TRUE(itemsOfType(button, "FocusRing").empty());
    button.forceActiveFocus(Qt::TabFocusReason);
    ASSERT_EQ(itemsOfType(button, "FocusRing").size(), 1U);
    EXPECT_EQ(frameIn(button, *itemsOfType(button, "FocusRing").front()), QRectF(-7, -7, 30, 30));
}

TEST_F(ButtonTest, IsHitALittleBeyondASymbol) {
    QQuickItem& button = stage(R"(SymbolButton { x: 50; y: 50; symbol: "info.circle"; helpText: "About" })");
    const QSignalSpy clicks(&button, SIGNAL(clicked()));
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(47, 58));
    EXPECT_EQ(clicks.count(), 1);
    QTest::mouseClick(window.get(), Qt::LeftButton, {}, QPoint(45, 58));
    EXPECT_EQ(clicks.count(), 1);
}

using CheckToggleTest = ControlTest;

TEST_F(CheckToggleTest, TellsOfEveryWayToTickIt) {
    QQuickItem& toggle = stage(R"(CheckToggle { text: "Cache" })");
    const QSignalSpy toggles(&toggle, SIGNAL(toggled()));
    click(toggle);
    EXPECT_EQ(toggle.property("checked"), true);
    toggle.forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(toggle.property("checked"), false);
    EXPECT_TRUE(pressForScreenReader(toggle));
    EXPECT_EQ(toggle.property("checked"), true);
    EXPECT_EQ(toggles.count(), 3);
}

TEST_F(CheckToggleTest, HasABoxOfFourteenPointsInTheMiddle) {
    QQuickItem& toggle = stage(R"(CheckToggle { text: "Cache"; height: 41 })");
    const QQuickItem& box = *toggle.property("indicator").value<QQuickItem*>();
    EXPECT_EQ(frameIn(toggle, box), QRectF(0, 14, 14, 14));
}

TEST_F(CheckToggleTest, StaysAsItIsWhileDisabled) {
    QQuickItem& toggle = stage(R"(CheckToggle { text: "Cache"; checked: true; enabled: false })");
    click(toggle);
    pressForScreenReader(toggle);
    EXPECT_EQ(toggle.property("checked"), true);
}

using TextFieldTest = ControlTest;

TEST_F(TextFieldTest, ShowsItsPlaceholderOnlyWhileItIsEmpty) {
    QQuickItem& field = stage(R"(RoundedTextField { placeholderText: "Search applications" })");
    EXPECT_EQ(field.height(), 24);
    EXPECT_EQ(accessibleName(field), "Search applications");
    EXPECT_TRUE(textsIn(field).contains("Search applications"));
    click(field);
    press(Qt::Key_A);
    EXPECT_EQ(field.property("text"), "a");
    EXPECT_FALSE(textsIn(field).contains("Search applications"));
}

TEST_F(TextFieldTest, HasTheMenuAndTheKeysOfAField) {
    QQuickItem& field = stage(R"(RoundedTextField { text: "amber fold" })");
    field.forceActiveFocus();
    const auto choose = [&](const QString& text) {
        click(field, Qt::RightButton);
        waitUntil([this] { return itemsOfType(*window->contentItem(), "PopupMenuItem").size() == 3; });
        layOut();
        const auto entries = itemsOfType(*window->contentItem(), "PopupMenuItem");
        const auto isMeant = [&](const QQuickItem* entry) { return entry->property("text") == text; };
        click(**std::ranges::find_if(entries, isMeant));
        waitUntil([this] { return itemsOfType(*window->contentItem(), "PopupMenuItem").empty(); });
        EXPECT_TRUE(field.hasActiveFocus());
    };
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(field.property("selectedText"), "amber fold");
    choose("Copy");
    EXPECT_EQ(field.property("selectedText"), "amber fold");
    choose("Cut");
    EXPECT_EQ(field.property("text"), "");
    choose("Paste");
    EXPECT_EQ(field.property("text"), "amber fold");
    press(Qt::Key_Home);
    EXPECT_EQ(field.property("cursorPosition"), 0);
    press(Qt::Key_End);
    EXPECT_EQ(field.property("cursorPosition"), 10);
    press(Qt::Key_Menu);
    waitUntil([this] { return itemsOfType(*window->contentItem(), "PopupMenuItem").size() == 3; });
    QStringList possible;
    for (const QQuickItem* entry : itemsOfType(*window->contentItem(), "PopupMenuItem"))
        if (entry->isEnabled()) possible << entry->property("text").toString();
    EXPECT_EQ(possible, QStringList("Paste"));
}

using TextTest = ControlTest;

TEST_F(TextTest, IsNeverReadAsMarkup) {
    QQuickItem& text = stage(R"(PlainText { text: "<b>Foo</b> &amp; <img src='x'>" })");
    QQuickItem& same = stage(R"(PlainText { text: "Foo" })");
    EXPECT_GT(text.width(), 3 * same.width());
    EXPECT_EQ(accessibleName(text), "<b>Foo</b> &amp; <img src='x'>");
}

TEST_F(TextTest, DrawsJoinedPicturesAsOne) {
    stage(R"(Column {
        OneLineText { objectName: "single"; line: "👩" }
        OneLineText { objectName: "profession"; line: "👩\u200d💻" }
        OneLineText { objectName: "family"; line: "👨\u200d👩\u200d👧\u200d👦" }
        OneLineText { objectName: "flag"; line: "🏳\ufe0f\u200d🌈" }
        OneLineText { objectName: "country"; line: "🇩🇪" }
        OneLineText { objectName: "shade"; line: "👍🏽" }
    })");
    for (const char* joined : {"profession", "family", "flag", "country", "shade"})
        EXPECT_EQ(item(joined).implicitWidth(), item("single").implicitWidth()) << joined;
}

TEST_F(TextTest, CutsAJoinedPictureAsOne) {
    const QString whole = "Ab👩\u200d💻cd👨\u200d👩\u200d👧\u200d👦efg";
    const QFontMetricsF metrics(theme().property("body").value<QFont>());
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, whole);
    for (int width = 12; width < metrics.horizontalAdvance(whole); ++width) {
        const QStringList parts = metrics.elidedText(whole, Qt::ElideMiddle, width).split(QChar(0x2026));
        ASSERT_EQ(parts.size(), 2) << width;
        for (const qsizetype cut : {parts[0].size(), whole.size() - parts[1].size()}) {
            characters.setPosition(cut);
            EXPECT_TRUE(characters.isAtBoundary()) << width;
        }
    }
}

TEST_F(TextTest, GivesEveryDigitTheSameWidth) {
    stage(R"qml(Column {
        TabularText { objectName: "narrow"; text: "Version 1.11 (111)"; font: Theme.caption }
        TabularText { objectName: "wide"; text: "Version 4.04 (480)"; font: Theme.caption }
        PlainText { objectName: "plain"; text: "Version 4.04 (480)"; font: Theme.caption }
    })qml");
    EXPECT_EQ(item("narrow").width(), item("wide").width());
    EXPECT_NEAR(item("wide").width(), item("plain").width(), 4);
    EXPECT_EQ(accessibleName(item("narrow")), "Version 1.11 (111)");
}

using SpinnerTest = ControlTest;

TEST_F(SpinnerTest, TurnsOnlyWhileItCanBeSeen) {
    QQuickItem& spinner = stage(R"(Spinner {})");
    EXPECT_EQ(spinner.size(), QSizeF(16, 16));
    EXPECT_EQ(itemsOfType(spinner, "QQuickRectangle").size(), 8U);
    const QVariant step = spinner.property("step");
    waitUntil([&] { return spinner.property("step") != step; });
    EXPECT_EQ(spinner.property("isTurning"), true);
    spinner.setVisible(false);
    EXPECT_EQ(spinner.property("isTurning"), false);
    spinner.setVisible(true);
    window->hide();
    EXPECT_EQ(spinner.property("isTurning"), false);
}

using DividerTest = ControlTest;

TEST_F(DividerTest, IsOnePixelThin) {
    stage(R"(Item {
        Divider { objectName: "flat"; width: 100 }
        Divider { objectName: "upright"; height: 100; isVertical: true }
    })");
    const qreal hairline = 1 / window->effectiveDevicePixelRatio();
    EXPECT_EQ(item("flat").childItems().front()->size(), QSizeF(100, hairline));
    EXPECT_EQ(item("upright").childItems().front()->size(), QSizeF(hairline, 100));
}

}  // namespace
}  // namespace orvane::test
