#include <QtCore/QMimeData>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QDropEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <asio/thread_pool.hpp>

#include "Views/FrontDoor/FrontDoorModel.h"
#include "Views/QtExecutor.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/Views/ViewTest.h"

namespace orvane::test {
namespace {

class FrontDoorPageTest : public ViewTest {
  protected:
    FrontDoorPageTest() {
        for (const auto* folder : {"disk/Applications", "disk/Library", "disk/Users/anna", "disk/Users/ben"})
            directory.makeDirectory(folder);
    }
    ~FrontDoorPageTest() override { doorPool.join(); }

    void open() { show("FrontDoorPage", {{"model", QVariant::fromValue(&model)}}, {900, 700}); }
    void waitForLook() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !model.isLooking(); }, 60'000));
    }

    /// What the desktop tells a window onto which that is dropped. Whether the window takes it.
    bool drop(const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent dropped({100, 100}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window.get(), &dropped);
        return true;
    }
    QUrl disk() const { return QUrl::fromLocalFile(QString::fromStdString(directory.path("disk"))); }

    TemporaryDirectory directory;
    QtExecutionContext doorContext;
    asio::thread_pool doorPool{1};
    FrontDoorModel model{{doorContext.get_executor(), doorPool.get_executor(),
                          [] { return std::vector<std::string>(); }, std::chrono::minutes(1)},
                         FrontDoorModel::OnlyDisk::isOpened,
                         true};
};

TEST_F(FrontDoorPageTest, AFolderThatIsDroppedIsOpened) {
    open();
    EXPECT_TRUE(drop({disk()}));
    waitForLook();
    EXPECT_EQ(model.count(), 2) << "its homes are offered";
}

TEST_F(FrontDoorPageTest, OnlyOneFolderAtATimeIsTaken) {
    open();
    EXPECT_FALSE(drop({disk(), disk()}));
    EXPECT_FALSE(drop({}));
    EXPECT_FALSE(model.isLooking());
}

TEST_F(FrontDoorPageTest, TheKeyboardComesToTheDisksAndChoosesOne) {
    open();
    EXPECT_TRUE(item("chooseFolderButton").hasActiveFocus());
    model.openFolder(disk());
    waitForLook();
    auto& list = item("diskList");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.hasActiveFocus(); }, 60'000));
    QString home;
    QObject::connect(&model, &FrontDoorModel::chosen, &model,
                     [&](const DiskPlace& place) { home = QString::fromStdString(place.home); });
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(home, "/Users/ben");
}

TEST_F(FrontDoorPageTest, EscapeGoesBackToTheDiskBefore) {
    open();
    const QSignalSpy cancelled(&model, &FrontDoorModel::cancelled);
    press(Qt::Key_Escape);
    EXPECT_EQ(cancelled.size(), 1);
}

TEST_F(FrontDoorPageTest, SaysWhatCouldNotBeOpened) {
    open();
    EXPECT_FALSE(item("message").isVisible());
    model.openFolder(QUrl::fromLocalFile(QString::fromStdString(directory.path())));
    waitForLook();
    EXPECT_TRUE(item("message").isVisible());
    EXPECT_EQ(accessibleName(item("message")), model.message());
}

}  // namespace
}  // namespace orvane::test
