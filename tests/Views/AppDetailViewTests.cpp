#include "tests/Views/AppDetailViewFixture.h"

namespace orvane::test {
namespace {

const QString nothingDetected = QStringLiteral("No active processes or launch services were detected.");

TEST_F(AppDetailViewTest, SaysThatThereIsNoIdentifier) {
    InstalledApplication foo = application("Foo");
    foo.bundleIdentifier.reset();
    foo.size = 0;
    showLoading(foo);
    EXPECT_TRUE(textsIn(item("detailHeader")).contains("No bundle identifier"));
    EXPECT_TRUE(textsIn(item("detailHeader")).contains("—"));
}

TEST_F(AppDetailViewTest, ShowsThatThePlanIsOnItsWay) {
    installBundle("Foo");
    showLoading(application("Foo"));
    EXPECT_EQ(cardTexts(),
              (QStringList{"…", "…", "…", "Related Items", "Recoverable Space", "Active Services"}));
    for (const QString& section : {servicesSection, filesSection}) {
        EXPECT_EQ(itemsOfType(item(section), "Spinner").size(), 1U);
        EXPECT_EQ(frameIn(box(section), *itemsOfType(item(section), "Spinner").front()),
                  QRectF(14, 14, 16, 16));
    }
    EXPECT_EQ(textsIn(item(servicesSection)), QStringList("Services and Processes"));
    EXPECT_EQ(textsIn(item(filesSection)), QStringList("Files Found"));
    EXPECT_FALSE(isEnabled("reviewButton"));
    EXPECT_TRUE(isEnabled("showInFinderButton"));
}

TEST_F(AppDetailViewTest, CardsCountWhatThePlanHolds) {
    installBundle("Foo");
    addCache("org.example.Foo");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    run(12345, "Foo");
    showPlan(application("Foo"));
    EXPECT_EQ(cardTexts(), (QStringList{"3", detail->recoverableSpaceText(), "1", "Related Items",
                                        "Recoverable Space", "Active Services"}));
    EXPECT_TRUE(detail->recoverableSpaceText().endsWith("KB"));
    EXPECT_TRUE(itemsOfType(*pane, "Spinner").empty());
}

TEST_F(AppDetailViewTest, CardsAreReadAloudWithTheirValues) {
    installBundle("Foo");
    showPlan(application("Foo"));
    QStringList names;
    for (QQuickItem* card : itemsOfType(item("summaryCards"), "SummaryCard"))
        names.append(accessibleName(*card));
    EXPECT_EQ(names, (QStringList{"Related Items: 1", "Recoverable Space: " + detail->recoverableSpaceText(),
                                  "Active Services: 0"}));
}

TEST_F(AppDetailViewTest, ProtectsASystemApplicationEvenWithItsPlan) {
    installBundle("Foo");
    InstalledApplication system = application("Foo");
    system.isSystemApplication = true;
    showPlan(system);
    EXPECT_FALSE(item("availabilityNotice").isVisible());
    EXPECT_EQ(textsIn(item("protectionNotice")),
              (QStringList{"Protected by macOS", "System applications cannot be removed by Orvane."}));
    EXPECT_FALSE(isEnabled("reviewButton"));
}

TEST_F(AppDetailViewTest, OffersWhatAFormerApplicationLeftBehind) {
    addCache("org.example.Foo");
    InstalledApplication gone = application("Foo");
    gone.isInstalled = false;
    showPlan(gone);
    EXPECT_FALSE(item("protectionNotice").isVisible());
    EXPECT_EQ(textsIn(item("availabilityNotice")),
              (QStringList{"Application is no longer installed",
                           "Orvane kept this saved entry. Any remaining related files can still be reviewed "
                           "and removed."}));
    EXPECT_TRUE(isEnabled("reviewButton"));
}

TEST_F(AppDetailViewTest, NoticesComeAndGoWithWhatIsKnown) {
    showPlan(application("Foo"));
    EXPECT_FALSE(item("availabilityNotice").isVisible());
    InstalledApplication gone = application("Foo");
    gone.isInstalled = false;
    detail->setApplication(gone);
    EXPECT_TRUE(item("availabilityNotice").isVisible());
}

TEST_F(AppDetailViewTest, ListsProcessesBeforeLaunchItems) {
    addLaunchAgent("org.example.Foo", "Foo's agent");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    run(12345, "Foo");
    showPlan(application("Foo"));
    const QStringList texts = textsIn(item(servicesSection));
    ASSERT_EQ(texts.size(), 9);
    EXPECT_EQ(texts.mid(0, 4),
              (QStringList{"Services and Processes", "Foo", "Running process • PID 12345", "Foo's agent"}));
    EXPECT_LT(texts.indexOf("Foo's agent"), texts.indexOf("Foo's helper"));
}

TEST_F(AppDetailViewTest, ListsProcessesAlone) {
    run(7, "Foo");
    showPlan(application("Foo"));
    EXPECT_EQ(textsIn(item(servicesSection)),
              (QStringList{"Services and Processes", "Foo", "Running process • PID 7"}));
    const QQuickItem& row = *itemsOfType(item(servicesSection), "RunningServiceRow").front();
    EXPECT_EQ(row.height(), 16 + 2 + 13 + 2 * 5);
    EXPECT_EQ(frameIn(box(servicesSection), row).topLeft(), QPointF(14, 14));
    EXPECT_EQ(box(servicesSection).height(), row.height() + 2 * 14);
}

TEST_F(AppDetailViewTest, ListsLaunchItemsAlone) {
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"));
    EXPECT_FALSE(textsIn(item(servicesSection)).contains(nothingDetected));
    EXPECT_EQ(rows(servicesSection).size(), 1U);
}

TEST_F(AppDetailViewTest, SaysThatNothingRuns) {
    installBundle("Foo");
    showPlan(application("Foo"));
    EXPECT_EQ(textsIn(item(servicesSection)), (QStringList{"Services and Processes", nothingDetected}));
    const QQuickItem& row = *itemsOfType(item(servicesSection), "EmptyDetailRow").front();
    EXPECT_EQ(row.height(), 16 + 2 * 5);
    EXPECT_EQ(itemsOfType(row, "orvane::Symbol").front()->property("name"), "checkmark.circle.fill");
}

TEST_F(AppDetailViewTest, ShowsNoSpaceWhereThereIsNone) {
    mac.makeDirectory("/Applications/Foo.app");
    showPlan(application("Foo"));
    EXPECT_EQ(cardTexts().mid(0, 3), (QStringList{"1", "—", "0"}));
    EXPECT_TRUE(textsIn(*rows(filesSection).front()).contains("—"));
}

TEST_F(AppDetailViewTest, TitlesAnItemByItsDetailElseByItsName) {
    installBundle("Foo");
    addLaunchAgent("org.example.Foo", "Foo's agent");
    showPlan(application("Foo"));
    EXPECT_EQ(accessibleName(*rows(servicesSection).front()),
              "Foo's agent, /Users/sample/Library/LaunchAgents/org.example.Foo.plist");
    EXPECT_EQ(accessibleName(*rows(filesSection).front()), "Foo.app, /Applications/Foo.app");
    EXPECT_EQ(textsIn(*rows(filesSection).front()).mid(0, 1), QStringList("Foo.app"));
}

TEST_F(AppDetailViewTest, MarksWhatOnlyAnAdministratorRemoves) {
    addLaunchAgent("org.example.Foo", "Foo's agent");
    addLaunchDaemon("org.example.Foo", "Foo's helper");
    showPlan(application("Foo"));
    const auto launchRows = rows(servicesSection);
    ASSERT_EQ(launchRows.size(), 2U);
    EXPECT_EQ(tint(*launchRows[0]), QColor("#007aff"));
    EXPECT_EQ(itemsOfType(*launchRows[0], "orvane::Symbol").size(), 1U);
    EXPECT_EQ(tint(*launchRows[1]), QColor("#ff9500"));
    const auto symbols = itemsOfType(*launchRows[1], "orvane::Symbol");
    ASSERT_EQ(symbols.size(), 2U);
    EXPECT_EQ(symbols[1]->property("name"), "lock.fill");
    EXPECT_TRUE(accessibleDescription(*launchRows[1]).contains("Administrator permission may be required"));
    EXPECT_FALSE(accessibleDescription(*launchRows[0]).contains("Administrator"));
}

}  // namespace
}  // namespace orvane::test
