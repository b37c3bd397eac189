#include <algorithm>

#include "tests/Views/AppDetailViewFixture.h"
#include "tests/Views/Styles.h"

namespace orvane::test {
namespace {

TEST_F(AppDetailViewTest, WritesEveryTextInItsStyle) {
    installBundle("Foo");
    addLaunchAgent("org.example.Foo", "Foo's agent");
    run(12345, "Foo");
    InstalledApplication both = application("Foo");
    both.isInstalled = false;
    both.isSystemApplication = true;
    const QQuickItem& view = showPlan(both, {700, 1200});
    EXPECT_EQ(styleOf(item("detailHeader"), "Foo"), "26 bold label");
    EXPECT_EQ(styleOf(view, "org.example.Foo"), "12 regular secondary");
    EXPECT_EQ(styleOf(view, "Version 1.0"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "12.3 MB"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "Application is no longer installed"), "13 semibold secondary");
    EXPECT_EQ(styleOf(view, textsIn(item("availabilityNotice")).last()), "12 regular secondary");
    EXPECT_EQ(styleOf(view, "Protected by macOS"), "13 semibold orange");
    EXPECT_EQ(styleOf(view, "System applications cannot be removed by Orvane."), "12 regular orange");
    EXPECT_EQ(styleOf(item("summaryCards"), "2"), "15 bold label");
    EXPECT_EQ(styleOf(view, "Recoverable Space"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "Services and Processes"), "13 bold label");
    EXPECT_EQ(styleOf(item(servicesSection), "Foo"), "13 medium label");
    EXPECT_EQ(styleOf(view, "Running process • PID 12345"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "Foo.app"), "13 medium label");
    EXPECT_EQ(styleOf(view, "/Applications/Foo.app"), "10 regular secondary");
    EXPECT_EQ(styleOf(view, "Review every selected item before removal"), "12 regular secondary");
}

TEST_F(AppDetailViewTest, FillsEveryPartAsItIsStated) {
    InstalledApplication both = application("Foo");
    both.isInstalled = false;
    both.isSystemApplication = true;
    showPlan(both, {700, 1200});
    struct Fill {
        double opacity;
        double radius;
    };
    const auto quaternary = [](double opacity) { return std::max(0.05, 0.1 * opacity); };
    const auto expectFill = [](const QQuickItem& part, const QColor& base, Fill fill) {
        const auto color = part.property("color").value<QColor>();
        EXPECT_EQ(QColor(color.rgb()), base);
        EXPECT_NEAR(color.alphaF(), fill.opacity, 0.002);
        EXPECT_EQ(part.property("radius"), fill.radius);
    };
    expectFill(item("availabilityNotice"), Qt::black, {quaternary(0.4), 12});
    expectFill(item("protectionNotice"), QColor("#ff9500"), {0.1, 12});
    for (const QString& section : {servicesSection, filesSection})
        expectFill(box(section), Qt::black, {quaternary(0.35), 12});
    const auto cards = itemsOfType(item("summaryCards"), "SummaryCard");
    ASSERT_EQ(cards.size(), 3U);
    const QList<QColor> tints{"#007aff", "#af52de", "#28cd41"};
    for (int i = 0; i < 3; ++i) {
        const QQuickItem& card = *cards[static_cast<std::size_t>(i)];
        expectFill(card, Qt::black, {quaternary(0.45), 12});
        const QQuickItem& frame = *itemsOfType(card, "orvane::PixelRectangle").front();
        EXPECT_EQ(frame.size(), QSizeF(42, 42));
        expectFill(frame, tints[i], {0.12, 10});
    }
    EXPECT_EQ(item("actionBar").property("color").value<QColor>(), QColor("#f6f6f8"));
}

TEST_F(AppDetailViewTest, MarksEveryPartWithItsSymbol) {
    installBundle("Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    run(12345, "Foo");
    InstalledApplication both = application("Foo");
    both.isInstalled = false;
    both.isSystemApplication = true;
    showPlan(both, {700, 1200});
    EXPECT_EQ(symbolsIn(item("detailHeader")),
              (QStringList{"folder label", "internaldrive secondary", "number secondary"}));
    EXPECT_EQ(symbolsIn(item("availabilityNotice")), QStringList("app.badge.checkmark secondary"));
    EXPECT_EQ(symbolsIn(item("protectionNotice")), QStringList("lock.shield.fill orange"));
    EXPECT_EQ(symbolsIn(item("summaryCards")),
              (QStringList{"doc.on.doc.fill blue", "externaldrive.fill.badge.minus purple",
                           "waveform.path.ecg green"}));
    EXPECT_EQ(symbolsIn(item(servicesSection)),
              (QStringList{"gearshape.2.fill label", "lock.fill orange", "server.rack orange",
                           "waveform.path.ecg green"}));
    EXPECT_EQ(symbolsIn(item(filesSection)), (QStringList{"app.fill blue", "folder.badge.gearshape label"}));
    EXPECT_EQ(symbolsIn(item("actionBar")), (QStringList{"checklist secondary", "trash white"}));
}

TEST_F(AppDetailViewTest, SetsTheContentOfEveryPartAtItsMeasures) {
    addLaunchAgent("org.example.Foo", "Foo's agent");
    run(7, "Foo");
    InstalledApplication system = application("Foo");
    system.isSystemApplication = true;
    showPlan(system);
    EXPECT_EQ(pane->property("color").value<QColor>(), QColor(Qt::white));
    const QQuickItem& service = *itemsOfType(item(servicesSection), "RunningServiceRow").front();
    EXPECT_EQ(frameIn(*pane, *rows(servicesSection).front()).top(), frameIn(*pane, service).bottom() + 8);
    const QQuickItem& bar = item("actionBar");
    const QQuickItem& checklist = *itemsOfType(bar, "orvane::Symbol").front();
    EXPECT_EQ(frameIn(bar, checklist).left(), padding);
    EXPECT_EQ(frameIn(bar, textItem(bar, "Review every selected item before removal")).left(),
              frameIn(bar, checklist).right() + 8);
    const QQuickItem& notice = item("protectionNotice");
    const QQuickItem& shield = *itemsOfType(notice, "orvane::Symbol").front();
    EXPECT_EQ(shield.size(), QSizeF(17 + 1, 17 + 1));
    EXPECT_EQ(frameIn(notice, shield).center().x(), 14 + 12);
    EXPECT_EQ(frameIn(notice, textItem(notice, "Protected by macOS")).left(), 14 + 24 + 8);
    EXPECT_EQ(frameIn(notice, textItem(notice, "Protected by macOS")).right(), notice.width() - 14);
}

TEST_F(AppDetailViewTest, SaysInThePaleStyleThatNothingRuns) {
    showPlan(application("Foo"));
    const QString text = "No active processes or launch services were detected.";
    EXPECT_EQ(styleOf(item(servicesSection), text), "13 regular secondary");
    const QQuickItem& row = *itemsOfType(item(servicesSection), "EmptyDetailRow").front();
    EXPECT_EQ(frameIn(row, *itemsOfType(row, "SymbolLabel").front()).top(), 5);
    EXPECT_EQ(row.height(), 16 + 2 * 5);
}

TEST_F(AppDetailViewTest, WritesTheFilePalelyWhereThereIsNoName) {
    InstalledApplication nameless = application("Foo");
    nameless.name = "";
    showPlan(nameless);
    EXPECT_EQ(styleOf(item("detailHeader"), "Foo.app"), "26 bold tertiary");
}

TEST_F(AppDetailViewTest, AsksForPicturesInTheSizeThatTheyAreShownIn) {
    showPlan(application("Foo"));
    const QQuickItem& icon = *itemsOfType(item("detailHeader"), "QQuickImage").front();
    EXPECT_EQ(icon.property("sourceSize").toSize(), icon.size().toSize());
}

TEST_F(AppDetailViewTest, ARunningServiceStandsAtItsMeasures) {
    run(7, "Foo");
    showPlan(application("Foo"));
    const QQuickItem& row = *itemsOfType(item(servicesSection), "RunningServiceRow").front();
    EXPECT_EQ(frameIn(row, *itemsOfType(row, "orvane::Symbol").front()).center().x(), 12);
    const QRectF name = frameIn(row, textItem(row, "Foo"));
    const QRectF caption = frameIn(row, textItem(row, "Running process • PID 7"));
    EXPECT_EQ(name.topLeft(), QPointF(24 + 10, 5));
    EXPECT_EQ(caption.topLeft(), QPointF(24 + 10, name.bottom() + 2));
    EXPECT_EQ(caption.bottom(), row.height() - 5);
    EXPECT_EQ(accessibleName(*itemsOfType(item(servicesSection), "RunningServiceRow").front()),
              "Foo, Running process • PID 7");
}

}  // namespace
}  // namespace orvane::test
