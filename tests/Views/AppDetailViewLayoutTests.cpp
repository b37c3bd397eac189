#include "tests/Views/AppDetailViewFixture.h"

namespace orvane::test {
namespace {

TEST_F(AppDetailViewTest, StacksItsPartsAtTheirMeasures) {
    installBundle("Foo");
    showPlan(application("Foo"));
    const QRectF header = frame("detailHeader");
    EXPECT_EQ(header.topLeft(), QPointF(padding, padding));
    EXPECT_EQ(header.width(), 700 - 2 * padding);
    EXPECT_EQ(header.height(), 76);
    const QRectF cards = frame("summaryCards");
    EXPECT_EQ(cards, QRectF(padding, header.bottom() + spacing, 700 - 2 * padding, 70));
    const QRectF upperSection = frame(servicesSection);
    EXPECT_EQ(upperSection.topLeft(), QPointF(padding, cards.bottom() + spacing));
    const QRectF files = frame(filesSection);
    EXPECT_EQ(files.topLeft(), QPointF(padding, upperSection.bottom() + spacing));
    EXPECT_EQ(files.width(), 700 - 2 * padding);
}

TEST_F(AppDetailViewTest, HeaderTellsWhoItIs) {
    installBundle("Foo");
    showPlan(application("Foo"));
    QQuickItem& header = item("detailHeader");
    EXPECT_EQ(textsIn(header),
              (QStringList{"Foo", "Show in Finder", "org.example.Foo", "Version 1.0", "12.3 MB"}));
    const QRectF icon = frameIn(header, *itemsOfType(header, "QQuickImage").front());
    EXPECT_EQ(icon, QRectF(0, 0, 76, 76));
    EXPECT_EQ(frameIn(header, textItem(header, "Foo")).left(), 76 + 18);
    const QRectF button = frame("showInFinderButton");
    EXPECT_EQ(button.right(), 700 - padding);
    EXPECT_EQ(button.center().y(), frame("detailHeader").center().y());
    const QRectF name = frameIn(header, textItem(header, "Foo"));
    const QRectF identifier = frameIn(header, textItem(header, "org.example.Foo"));
    EXPECT_EQ(identifier.top() - name.bottom(), 5);
    const QRectF version = frameIn(header, *itemsOfType(header, "SymbolLabel").front());
    EXPECT_EQ(version.top() - identifier.bottom(), 5);
    const QRectF size = frameIn(header, *itemsOfType(header, "SymbolLabel").back());
    EXPECT_EQ(size.left() - version.right(), 12);
}

TEST_F(AppDetailViewTest, CardsShareTheRowInWholePoints) {
    for (const int width : {600, 601, 602, 700}) {
        showLoading(application("Foo"), {width, 700});
        const auto cards = itemsOfType(item("summaryCards"), "SummaryCard");
        ASSERT_EQ(cards.size(), 3U);
        qreal left = 0;
        for (const QQuickItem* card : cards) {
            EXPECT_EQ(card->x(), left);
            EXPECT_EQ(card->width(), qRound(card->width()));
            EXPECT_NEAR(card->width(), (width - 2 * padding - 2 * 12) / 3.0, 1);
            EXPECT_EQ(card->height(), 42 + 2 * 14);
            EXPECT_EQ(card->property("radius"), 12);
            left = card->x() + card->width() + 12;
        }
        EXPECT_EQ(left - 12, width - 2 * padding);
        const QQuickItem& symbolFrame = *itemsOfType(*cards[0], "orvane::PixelRectangle").front();
        EXPECT_EQ(symbolFrame.size(), QSizeF(42, 42));
        EXPECT_EQ(symbolFrame.property("radius"), 10);
        delete pane;
    }
}

TEST_F(AppDetailViewTest, ShowsBothNoticesOneBelowTheOther) {
    InstalledApplication gone = application("Foo");
    gone.isInstalled = false;
    gone.isSystemApplication = true;
    showPlan(gone);
    const QRectF availability = frame("availabilityNotice");
    const QRectF protection = frame("protectionNotice");
    EXPECT_EQ(availability.top(), frame("detailHeader").bottom() + spacing);
    EXPECT_EQ(protection.top(), availability.bottom() + spacing);
    EXPECT_EQ(frame("summaryCards").top(), protection.bottom() + spacing);
    for (const char* name : {"availabilityNotice", "protectionNotice"}) {
        QQuickItem& notice = item(name);
        EXPECT_EQ(notice.width(), 700 - 2 * padding);
        EXPECT_EQ(notice.property("radius"), 12);
        EXPECT_EQ(frameIn(notice, textItem(notice, textsIn(notice).first())).top(), 14);
        EXPECT_EQ(frameIn(notice, textItem(notice, textsIn(notice).last())).bottom(), notice.height() - 14);
    }
}

TEST_F(AppDetailViewTest, LeavesTheBoxOfFilesEmpty) {
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"));
    EXPECT_EQ(rows(servicesSection).size(), 1U);
    EXPECT_EQ(textsIn(item(filesSection)), QStringList("Files Found"));
    EXPECT_EQ(box(filesSection).height(), 2 * 14);
    EXPECT_EQ(box(filesSection).width(), 700 - 2 * padding);
    EXPECT_EQ(box(filesSection).property("radius"), 12);
    EXPECT_EQ(frameIn(item(filesSection), box(filesSection)).top(),
              frameIn(item(filesSection), textItem(item(filesSection), "Files Found")).bottom() + 12);
}

TEST_F(AppDetailViewTest, RowsStandAtTheirMeasures) {
    installBundle("Foo");
    addCache("org.example.Foo");
    showPlan(application("Foo"));
    const auto fileRows = rows(filesSection);
    ASSERT_EQ(fileRows.size(), 2U);
    EXPECT_EQ(frameIn(box(filesSection), *fileRows[0]).topLeft(), QPointF(14, 14));
    EXPECT_EQ(fileRows[0]->width(), box(filesSection).width() - 2 * 14);
    EXPECT_EQ(fileRows[0]->height(), 16 + 2 + 13 + 2 * 4);
    EXPECT_EQ(fileRows[1]->mapToItem(fileRows[0], QPointF()).y(), fileRows[0]->height() + 8);
    const QQuickItem& title = textItem(*fileRows[0], "Foo.app");
    EXPECT_EQ(frameIn(*fileRows[0], title).topLeft(), QPointF(24 + 10, 4));
    const QQuickItem& symbol = *itemsOfType(*fileRows[0], "orvane::Symbol").front();
    EXPECT_EQ(frameIn(*fileRows[0], symbol).center().x(), 12);
    const QQuickItem& size = *itemsOfType(*fileRows[0], "TabularText").front();
    EXPECT_EQ(frameIn(*fileRows[0], size).right(), fileRows[0]->width());
}

TEST_F(AppDetailViewTest, LeavesAirBetweenATitleAndWhatIsBelowIt) {
    installBundle("Foo");
    run(7, "Foo");
    showPlan(application("Foo"));
    const auto baseline = [this](const QString& section, const QString& text) {
        const QQuickItem& line = textItem(item(section), text);
        return frameIn(*pane, line).top() + line.property("baselineOffset").toReal();
    };
    // The ascents of the two sizes of type are 3 points apart.
    EXPECT_NEAR(baseline(filesSection, "/Applications/Foo.app") - baseline(filesSection, "Foo.app"),
                16 + 2 - 3 + 0.5, 0.2);
    EXPECT_NEAR(baseline(servicesSection, "Running process • PID 7") - baseline(servicesSection, "Foo"),
                16 + 2 - 3 + 1, 0.2);
}

TEST_F(AppDetailViewTest, WritesAnyPathOnOneLineAndLeavesItsMiddleOut) {
    const std::string name = "a\nb" + std::string(150, 'x') + "<b>z</b>";
    mac.makeDirectory(TestVolume::home() + "/Library/Group Containers/Foo" + name);
    showPlan(application("Foo"));
    QQuickItem& row = *rows(filesSection).front();
    QQuickItem* path = nullptr;
    for (QQuickItem* text : itemsOfType(row, "OneLineText")) path = text;
    ASSERT_NE(path, nullptr);
    EXPECT_EQ(path->property("lineCount"), 1);
    EXPECT_TRUE(path->property("truncated").toBool());
    EXPECT_EQ(path->height(), 13);
    EXPECT_EQ(path->property("elide").toInt(), Qt::ElideMiddle);
    EXPECT_EQ(path->property("textFormat").toInt(), Qt::PlainText);
    EXPECT_EQ(row.height(), 16 + 2 + 13 + 2 * 4);
}

TEST_F(AppDetailViewTest, DrawsSymbolsAndBoxesOnWholePixels) {
    installBundle("Foo");
    addCache("org.example.Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    run(7, "Foo");
    InstalledApplication both = application("Foo");
    both.isInstalled = false;
    both.isSystemApplication = true;
    for (const int width : {611, 700}) {
        showPlan(both, {width, 900});
        for (const char* type : {"orvane::Symbol", "QQuickImage", "SummaryCard", "Notice", "PushButton"}) {
            for (const QQuickItem* drawn : itemsOfType(*pane, type)) {
                const QRectF where = frameIn(*pane, *drawn);
                EXPECT_EQ(where, QRectF(where.toRect())) << type << " at width " << width;
            }
        }
        delete pane;
    }
}

TEST_F(AppDetailViewTest, KeepsItsFormWithNamesOfAnyKind) {
    InstalledApplication odd = application("Foo");
    const QRectF button = [&] {
        showPlan(odd);
        const QRectF where = frame("showInFinderButton");
        delete pane;
        return where;
    }();
    odd.version = "1\n2";
    odd.bundleIdentifier = "org.example." + std::string(10'000, 'i');
    for (const std::string& name : {std::string(10'000, 'x'), std::string("a\n\nb\nc\nd\ne"),
                                    std::string("a\xff\xfe"), std::string("<h1>Foo</h1>")}) {
        odd.name = name;
        showPlan(odd);
        const QQuickItem& title = *itemsOfType(item("detailHeader"), "OneLineText").front();
        EXPECT_LE(title.property("lineCount").toInt(), 3);
        EXPECT_LE(title.height(), 3 * 32);
        EXPECT_LE(frame("showInFinderButton").left() - frameIn(*pane, title).right(), 18);
        EXPECT_EQ(frame("showInFinderButton").right(), button.right());
        EXPECT_EQ(itemsOfType(item("detailHeader"), "OneLineText")[1]->height(), 15);
        EXPECT_TRUE(textsIn(item("detailHeader")).contains("Version 1 2"));
        delete pane;
    }
}

TEST_F(AppDetailViewTest, HeaderTellsTheFileWhereThereIsNoName) {
    InstalledApplication nameless = application("Foo");
    nameless.name = "";
    showPlan(nameless);
    EXPECT_EQ(textsIn(item("detailHeader")).first(), "Foo.app");
}

TEST_F(AppDetailViewTest, LetsNoNameTurnItsTextAround) {
    InstalledApplication odd = application("Foo");
    odd.name = "Foo\u202egpj.exe\u2069";
    showPlan(odd);
    EXPECT_EQ(textsIn(item("detailHeader")).first(), "Foo\ufffdgpj.exe\ufffd");
}

}  // namespace
}  // namespace orvane::test
