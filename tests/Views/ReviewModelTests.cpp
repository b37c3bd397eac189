#include "Views/ReviewModel.h"

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <future>
#include <memory>

#include "tests/Fixtures/OneEntry.h"
#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

class ReviewModelTest : public ViewModelTest {
  protected:
    ReviewModelTest() { mac.makeDirectory(TestVolume::home() + "/.Trash"); }

    /// An item of the plan to come, with a file that holds it.
    RelatedItem& addItem(const std::string& name, RelatedItemKind kind = RelatedItemKind::cache) {
        mac.makeFile(pathOf(name));
        RelatedItem item;
        item.url = FileURL::fromPath(pathOf(name), false);
        item.kind = kind;
        item.size = 4000;
        plan.items.push_back(item);
        return plan.items.back();
    }
    void addItems(std::initializer_list<const char*> names) {
        for (const char* name : names) addItem(name);
    }
    /// An item that only an administrator can remove; the prompt is granted, and nothing comes of it.
    void addStubbornItem(const std::string& name) { addItem(name).requiresAdministrator = true; }

    ReviewModel& open() {
        sheet = std::make_unique<ReviewModel>(plan, std::vector<std::string>(plan.items.size()), services);
        return *sheet;
    }
    void waitForResult() {
        waitUntil([this] { return sheet->hasResult(); });
    }
    /// Holds the administrator's prompt open until the test lets it go, and so the removal.
    void holdPrompt() {
        privilegedRunner.setBehaviour(
            [future = promptAnswered.get_future().share()](const PrivilegedRequest&) {
                future.wait();
                return PrivilegedOutcome{};
            });
    }

    static std::string pathOf(const std::string& name) {
        return TestVolume::home() + "/Library/Caches/" + name;
    }
    bool exists(const std::string& name) const { return mac.contains(pathOf(name)); }
    bool isInTrash(const std::string& name) const {
        return mac.contains(TestVolume::home() + "/.Trash/" + name);
    }
    QVariant value(int row, const char* role) const {
        const QAbstractItemModel& items = *sheet->items();
        return items.index(row, 0).data(items.roleNames().key(role));
    }
    std::vector<bool> selection() const {
        std::vector<bool> result;
        for (int row = 0; row < sheet->items()->rowCount(); ++row)
            result.push_back(value(row, "isSelected").toBool());
        return result;
    }

    RemovalPlan plan{application("Foo"), {}, {}};
    std::unique_ptr<ReviewModel> sheet;
    std::promise<void> promptAnswered;
};

TEST_F(ReviewModelTest, SelectsEverythingWhenItOpens) {
    addItems({"a", "b"});
    addStubbornItem("c");
    EXPECT_EQ(open().title(), "Uninstall Foo?");
    EXPECT_EQ(selection(), (std::vector{true, true, true}));
    EXPECT_EQ(sheet->selectAllTitle(), "Deselect All");
    EXPECT_TRUE(sheet->canRemove());
    EXPECT_FALSE(sheet->isRemoving());
    EXPECT_FALSE(sheet->hasResult());
    EXPECT_EQ(sheet->resultMessage(), "");
    EXPECT_EQ(sheet->removalMode(), ReviewModel::Trash);
}

TEST_F(ReviewModelTest, ListsTheItemsInTheOrderOfThePlan) {
    addItem("b", RelatedItemKind::preference).size = 0;
    addItem("a", RelatedItemKind::launchDaemon).requiresAdministrator = true;
    open();
    EXPECT_EQ(value(0, "kindTitle"), "Preferences");
    EXPECT_EQ(value(0, "symbol"), "gearshape.fill");
    EXPECT_EQ(value(0, "sizeText"), "—");
    EXPECT_EQ(value(0, "requiresAdministrator"), false);
    EXPECT_EQ(value(1, "kindTitle"), "Launch Daemon");
    EXPECT_EQ(value(1, "path"), QString::fromStdString(pathOf("a")));
    EXPECT_EQ(value(1, "sizeText"), "4 KB");
    EXPECT_EQ(value(1, "requiresAdministrator"), true);
}

TEST_F(ReviewModelTest, OffersToSelectAllOnceOneItemIsDeselected) {
    addItems({"a", "b", "c"});
    open();
    QAbstractItemModelTester tester(sheet->items(), QAbstractItemModelTester::FailureReportingMode::Warning);
    QSignalSpy changed(sheet->items(), &QAbstractItemModel::dataChanged);
    sheet->setSelected(1, false);
    EXPECT_EQ(sheet->selectAllTitle(), "Select All");
    EXPECT_EQ(selection(), (std::vector{true, false, true}));
    sheet->setSelected(1, false);
    ASSERT_EQ(changed.size(), 1) << "once";
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changed[0][1].toModelIndex().row(), 1);
    sheet->toggleAll();
    EXPECT_EQ(selection(), (std::vector{true, true, true}));
    EXPECT_EQ(sheet->selectAllTitle(), "Deselect All");
    sheet->toggleAll();
    EXPECT_EQ(selection(), (std::vector{false, false, false}));
}

TEST_F(ReviewModelTest, ComparesOnlyTheCountsForTheSelectAllButton) {
    // Two items of one path are one entry of the selection, which thus never counts as many as the plan.
    addItems({"a", "a"});
    open();
    EXPECT_EQ(selection(), (std::vector{true, true}));
    EXPECT_EQ(sheet->selectAllTitle(), "Select All");
    sheet->toggleAll();
    EXPECT_EQ(selection(), (std::vector{true, true}));
    sheet->setSelected(0, false);
    EXPECT_EQ(selection(), (std::vector{false, false}));
}

TEST_F(ReviewModelTest, RemovesNothingWhenNothingIsSelected) {
    addItems({"a"});
    open();
    sheet->toggleAll();
    EXPECT_FALSE(sheet->canRemove());
    sheet->moveToTrash();
    sheet->setConfirmingPermanentDeletion(true);
    EXPECT_FALSE(sheet->isConfirmingPermanentDeletion());
    sheet->deletePermanently();
    EXPECT_FALSE(sheet->isRemoving());
    pool.join();
    EXPECT_TRUE(exists("a"));
}

TEST_F(ReviewModelTest, CountsAnEmptyPlanAsAllSelected) {
    EXPECT_EQ(open().selectAllTitle(), "Deselect All");
    EXPECT_FALSE(sheet->canRemove());
}

TEST_F(ReviewModelTest, MovesTheSelectedItemsToTheTrash) {
    addItems({"a", "b", "c", "kept"});
    open();
    sheet->setSelected(3, false);
    sheet->moveToTrash();
    EXPECT_TRUE(sheet->isRemoving());
    EXPECT_EQ(sheet->progressText(), "Moving to Trash…");
    waitForResult();
    EXPECT_FALSE(sheet->isRemoving());
    EXPECT_EQ(sheet->resultMessage(), "Moved 3 item(s) to Trash.");
    EXPECT_TRUE(isInTrash("a") && isInTrash("b") && isInTrash("c"));
    EXPECT_TRUE(exists("kept"));
    EXPECT_FALSE(exists("a") || exists("b") || exists("c"));
}

TEST_F(ReviewModelTest, KeepsADeselectedItemThatLiesInASelectedOne) {
    addItem("outer/inner");
    addItem("outer/other");
    plan.items.insert(plan.items.begin(), plan.items.back());
    plan.items.front().url = FileURL::fromPath(pathOf("outer"), false);
    for (const bool toTrash : {true, false}) {
        open();
        sheet->setSelected(1, false);
        if (toTrash) {
            sheet->moveToTrash();
        } else {
            sheet->setConfirmingPermanentDeletion(true);
            sheet->deletePermanently();
        }
        waitForResult();
        EXPECT_TRUE(sheet->resultMessage().contains(" 1 item(s) could not be removed."))
            << sheet->resultMessage().toStdString();
        EXPECT_TRUE(exists("outer/inner"));
        EXPECT_FALSE(exists("outer/other")) << "it was selected, and holds nothing that is to stay";
    }
}

TEST_F(ReviewModelTest, AsksBeforeItDeletes) {
    addItems({"a", "b", "c"});
    open();
    sheet->setSelected(0, false);
    sheet->setConfirmingPermanentDeletion(true);
    EXPECT_TRUE(sheet->isConfirmingPermanentDeletion());
    EXPECT_EQ(
        sheet->confirmationMessage(),
        "This will immediately delete 2 selected item(s). They will not be moved to Trash and cannot be "
        "recovered.");
    EXPECT_FALSE(sheet->isRemoving());
}

TEST_F(ReviewModelTest, NeverDeletesUnasked) {
    addItems({"a"});
    open();
    sheet->deletePermanently();
    EXPECT_FALSE(sheet->isRemoving());
    sheet->setConfirmingPermanentDeletion(true);
    sheet->cancelConfirmation();
    sheet->deletePermanently();
    EXPECT_FALSE(sheet->isRemoving());
    EXPECT_TRUE(sheet->canRemove());
}

TEST_F(ReviewModelTest, DeletesPermanentlyAndCountsWhatFailed) {
    addItems({"a"});
    addStubbornItem("b");
    open();
    sheet->setConfirmingPermanentDeletion(true);
    sheet->deletePermanently();
    EXPECT_FALSE(sheet->isConfirmingPermanentDeletion());
    EXPECT_EQ(sheet->removalMode(), ReviewModel::Permanent);
    EXPECT_EQ(sheet->progressText(), "Deleting permanently…");
    waitForResult();
    EXPECT_EQ(sheet->resultMessage(),
              "Deleted 1 item(s) permanently. 1 item(s) could not be removed. Locked items may require "
              "administrator access.");
    EXPECT_FALSE(exists("a"));
    EXPECT_FALSE(isInTrash("a"));
    EXPECT_TRUE(exists("b"));
}

TEST_F(ReviewModelTest, CountsAnItemThatVanishedNeitherAsMovedNorAsFailed) {
    addItems({"a", "b"});
    open();
    ASSERT_TRUE(removeItem(mac.files(), TestVolume::url(pathOf("b"))));
    sheet->moveToTrash();
    waitForResult();
    EXPECT_EQ(sheet->resultMessage(), "Moved 1 item(s) to Trash.");
}

TEST_F(ReviewModelTest, AsksEveryProcessToQuitWhateverIsSelected) {
    addItems({"a", "b"});
    plan.runningServices = {{100, "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"}, {200, "Helper", ""}};
    open();
    sheet->setSelected(0, false);
    sheet->moveToTrash();
    waitForResult();
    EXPECT_EQ(workspace.terminated(), plan.runningServices);
}

TEST_F(ReviewModelTest, HoldsEverythingStillWhileItRemoves) {
    addItems({"a"});
    addStubbornItem("b");
    holdPrompt();
    open();
    sheet->moveToTrash();
    EXPECT_FALSE(sheet->canRemove());
    sheet->setSelected(0, false);
    EXPECT_EQ(selection(), (std::vector{true, true}));
    sheet->toggleAll();
    EXPECT_EQ(selection(), (std::vector{true, true}));
    sheet->setConfirmingPermanentDeletion(true);
    EXPECT_EQ(selection(), (std::vector{true, true}));
    EXPECT_FALSE(sheet->isConfirmingPermanentDeletion());
    sheet->moveToTrash();
    promptAnswered.set_value();
    waitForResult();
    pool.join();
    EXPECT_EQ(privilegedRunner.runs().size(), 1U);
    EXPECT_EQ(sheet->resultMessage(),
              "Moved 1 item(s) to Trash. 1 item(s) could not be removed. Locked items may require "
              "administrator access.");
}

TEST_F(ReviewModelTest, DeletesNothingAndDisturbsNobodyWhenNothingIsSelectedAnyMore) {
    addItems({"a", "b"});
    plan.runningServices = {{100, "Foo", "/Applications/Foo.app/Contents/MacOS/Foo"}};
    open();
    sheet->setConfirmingPermanentDeletion(true);
    sheet->toggleAll();
    sheet->deletePermanently();
    EXPECT_FALSE(sheet->isConfirmingPermanentDeletion());
    EXPECT_FALSE(sheet->isRemoving());
    pool.join();
    EXPECT_TRUE(workspace.terminated().empty());
    EXPECT_TRUE(exists("a"));
    EXPECT_TRUE(exists("b"));
}

TEST_F(ReviewModelTest, SaysHowItRemovesFromTheFirstMomentOn) {
    addItems({"a", "b"});
    open();
    QStringList texts;
    QObject::connect(sheet.get(), &ReviewModel::isRemovingChanged, sheet.get(), [&] {
        if (sheet->isRemoving()) texts << sheet->progressText();
    });
    sheet->setSelected(1, false);
    sheet->setConfirmingPermanentDeletion(true);
    sheet->deletePermanently();
    waitForResult();
    sheet->acknowledgeResult();
    sheet->moveToTrash();
    waitForResult();
    EXPECT_EQ(texts, (QStringList{"Deleting permanently…", "Moving to Trash…"}));
}

TEST_F(ReviewModelTest, ClosesAndRefreshesTheLibraryOnceTheResultIsAcknowledged) {
    load({application("Foo")});
    addItems({"a"});
    open();
    QSignalSpy dismissed(sheet.get(), &ReviewModel::dismissed);
    sheet->moveToTrash();
    waitForResult();
    removeBundle("Foo");
    EXPECT_TRUE(listed("Foo").isInstalled);
    sheet->acknowledgeResult();
    EXPECT_FALSE(sheet->hasResult());
    EXPECT_EQ(sheet->resultMessage(), "");
    EXPECT_EQ(dismissed.size(), 1);
    waitUntil([this] { return !listed("Foo").isInstalled; });
    sheet->acknowledgeResult();
    EXPECT_EQ(dismissed.size(), 1);
}

TEST_F(ReviewModelTest, FinishesTheRemovalWithoutItsSheet) {
    load({application("Foo")});
    addItems({"a"});
    addStubbornItem("b");
    holdPrompt();
    open();
    sheet->moveToTrash();
    waitUntil([this] { return isInTrash("a"); });
    sheet.reset();
    removeBundle("Foo");
    promptAnswered.set_value();
    waitUntil([this] { return !listed("Foo").isInstalled; });
    EXPECT_FALSE(exists("a"));
}

TEST_F(ReviewModelTest, StartsARemovalThatItsSheetDoesNotLiveToSee) {
    load({application("Foo")});
    addItems({"a"});
    open().moveToTrash();
    sheet.reset();
    removeBundle("Foo");
    waitUntil([this] { return !listed("Foo").isInstalled; });
    EXPECT_TRUE(isInTrash("a"));
}

TEST_F(ReviewModelTest, RefreshesTheLibraryForAResultThatNobodySaw) {
    load({application("Foo")});
    addItems({"a"});
    open().moveToTrash();
    waitForResult();
    removeBundle("Foo");
    sheet.reset();
    waitUntil([this] { return !listed("Foo").isInstalled; });
}

}  // namespace
}  // namespace orvane::test
