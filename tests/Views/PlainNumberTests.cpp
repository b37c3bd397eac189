#include <QtCore/QLocale>

#include "Views/DetailModel.h"
#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

/// In a country that writes 1.234 for the number that every text here writes as 1234.
class PlainNumberTest : public ViewModelTest {
  protected:
    PlainNumberTest() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    ~PlainNumberTest() override { QLocale::setDefault(former_); }

    /// The pane of an application with as many items.
    void show(int count) {
        for (int i = 0; i < count; ++i)
            mac.makeDirectory(TestVolume::home() + "/Library/Group Containers/Foo" + std::to_string(i));
        mac.makeDirectory(TestVolume::home() + "/.Trash");
        InstalledApplication gone = application("Foo");
        gone.isInstalled = false;
        pane = std::make_unique<DetailModel>(gone, services);
        waitUntil([this] { return !pane->isLoading(); });
    }

    std::unique_ptr<DetailModel> pane;

  private:
    const QLocale former_;
};

TEST_F(PlainNumberTest, CardsCountWithoutGrouping) {
    show(1001);
    EXPECT_EQ(pane->relatedItemsText(), "1001");
}

TEST_F(PlainNumberTest, QuestionAndResultCountWithoutGrouping) {
    show(1001);
    pane->setShowingRemovalSheet(true);
    ReviewModel& review = *pane->review();
    EXPECT_EQ(
        review.confirmationMessage(),
        "This will immediately delete 1001 selected item(s). They will not be moved to Trash and cannot "
        "be recovered.");
    review.setConfirmingPermanentDeletion(true);
    review.deletePermanently();
    waitUntil([&] { return review.hasResult(); });
    EXPECT_EQ(review.resultMessage(), "Deleted 1001 item(s) permanently.");
}

TEST_F(PlainNumberTest, ProcessIdentifiersAreWrittenWithoutGrouping) {
    RunningApplication running;
    running.processIdentifier = 1234567;
    running.bundleIdentifier = "org.example.Foo";
    workspace.setRunningApplications({running});
    show(0);
    const QAbstractItemModel& rows = *pane->runningServices();
    EXPECT_EQ(rows.index(0, 0).data(rows.roleNames().key("caption")), "Running process • PID 1234567");
}

}  // namespace
}  // namespace orvane::test
