#include "Views/FrontDoor/FrontDoorModel.h"

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <asio/thread_pool.hpp>
#include <optional>

#include "Models/FileURL.h"
#include "Views/FrontDoor/DiskNotice.h"
#include "Views/QtExecutor.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {
namespace {

using OnlyDisk = FrontDoorModel::OnlyDisk;

class FrontDoorModelTest : public testing::Test {
  protected:
    ~FrontDoorModelTest() override { pool.join(); }

    std::string makeDisk(const std::string& name, const std::vector<std::string>& homes) {
        for (const auto* folder : {"/Applications", "/Library", "/Users/Shared"})
            directory.makeDirectory(name + folder);
        for (const auto& home : homes) directory.makeDirectory(name + ("/Users/" + home));
        return directory.path(name);
    }
    void makeModel(std::vector<std::string> folders, OnlyDisk onlyDisk = OnlyDisk::isOpened) {
        model.emplace(FrontDoorModel::Surroundings{main.get_executor(), pool.get_executor(),
                                                   [folders] { return folders; }, std::chrono::minutes(1)},
                      onlyDisk, false);
        QObject::connect(&*model, &FrontDoorModel::chosen, &*model,
                         [this](const DiskPlace& place) { chosen = place; });
    }
    void look() {
        model->look();
        wait();
    }
    void wait() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !model->isLooking(); }, 60'000));
    }
    QString text(int row, FrontDoorModel::Role role) const {
        return model->data(model->index(row, 0), static_cast<int>(role)).toString();
    }
    static QUrl url(const std::string& path) {
        return QUrl::fromEncoded(QByteArray::fromStdString(FileURL::fromPath(path, true).absoluteString()));
    }

    TemporaryDirectory directory;
    QtExecutionContext main;
    asio::thread_pool pool{1};
    std::optional<FrontDoorModel> model;
    std::optional<DiskPlace> chosen;
};

TEST_F(FrontDoorModelTest, OpensTheOnlyHomeOfTheOnlyDiskAtOnce) {
    const auto disk = makeDisk("disk", {"sample"});
    makeModel({disk, directory.path()});
    look();
    EXPECT_EQ(chosen, (DiskPlace{disk, "/Users/sample"}));
}

TEST_F(FrontDoorModelTest, OffersItWhereThePersonHasAskedForAnother) {
    makeModel({makeDisk("disk", {"sample"})}, OnlyDisk::isOffered);
    look();
    EXPECT_EQ(model->count(), 1);
    EXPECT_EQ(chosen, std::nullopt);
    model->open(0);
    EXPECT_TRUE(chosen);
}

TEST_F(FrontDoorModelTest, TellsWhenItBeginsToLookAndWhenItHasLooked) {
    makeModel({makeDisk("disk", {"anna", "ben"})});
    std::vector<bool> states;
    QObject::connect(&*model, &FrontDoorModel::isLookingChanged, &*model,
                     [&] { states.push_back(model->isLooking()); });
    look();
    EXPECT_EQ(states, (std::vector{true, false}));
    EXPECT_FALSE(model->data({}, static_cast<int>(FrontDoorModel::Role::title)).isValid());
}

TEST_F(FrontDoorModelTest, OpensNothingByItselfOnASecondLook) {
    makeModel({directory.path("disk")});
    look();
    EXPECT_EQ(model->count(), 0);
    makeDisk("disk", {"sample"});
    look();
    EXPECT_EQ(model->count(), 1);
    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(FrontDoorModelTest, OffersEveryHomeByName) {
    const auto one = makeDisk("One", {"anna", "ben"});
    const auto two = makeDisk("Two", {"carl"});
    makeModel({two, one});
    look();
    ASSERT_EQ(model->count(), 3);
    EXPECT_EQ(chosen, std::nullopt);
    EXPECT_EQ(text(0, FrontDoorModel::Role::title), "anna on One");
    EXPECT_EQ(text(1, FrontDoorModel::Role::title), "ben on One");
    EXPECT_EQ(text(2, FrontDoorModel::Role::title), "Two");
    EXPECT_TRUE(text(2, FrontDoorModel::Role::caption).endsWith(" • carl"));
    model->open(1);
    EXPECT_EQ(chosen, (DiskPlace{one, "/Users/ben"}));
}

TEST_F(FrontDoorModelTest, ADiskWithoutAHomeIsShownAndCannotBeOpened) {
    makeModel({makeDisk("disk", {})});
    look();
    ASSERT_EQ(model->count(), 1);
    EXPECT_FALSE(
        model->data(model->index(0, 0), static_cast<int>(FrontDoorModel::Role::canBeOpened)).toBool());
    model->open(0);
    model->open(1);
    model->open(-1);
    EXPECT_EQ(chosen, std::nullopt);
}

TEST_F(FrontDoorModelTest, AFolderIsOpenedWhateverItsNameIsMadeOf) {
    const auto disk = makeDisk("\xFF%20 #?", {"sample"});
    makeModel({});
    model->openFolder(url(disk));
    wait();
    EXPECT_EQ(chosen, (DiskPlace{disk, "/Users/sample"}));
}

TEST_F(FrontDoorModelTest, AFolderWithSeveralHomesOffersThem) {
    makeModel({});
    model->openFolder(url(makeDisk("disk", {"anna", "ben"})));
    wait();
    EXPECT_EQ(model->count(), 2);
    EXPECT_EQ(chosen, std::nullopt);
    EXPECT_EQ(model->message(), "");
}

TEST_F(FrontDoorModelTest, SaysWhyAFolderIsNotOpened) {
    makeModel({});
    for (const auto& folder : {url(directory.path()), url(makeDisk("disk", {})), url("/"),
                               QUrl("https://example.org/x"), QUrl("file://elsewhere/x"), QUrl()}) {
        model->setMessage({});
        model->openFolder(folder);
        wait();
        EXPECT_NE(model->message(), "") << folder.toString().toStdString();
        EXPECT_EQ(chosen, std::nullopt);
    }
}

TEST_F(FrontDoorModelTest, AModelThatGoesWhileItLooksIsToldNothing) {
    makeModel({makeDisk("disk", {"sample"})});
    model->look();
    model.reset();
    pool.join();
    QCoreApplication::processEvents();
    EXPECT_EQ(chosen, std::nullopt);
}

TEST(DiskNotice, SaysCalmlyWhatStandsInTheWay) {
    MacDisk disk;
    disk.homes = {{"/Users/anna", true}, {"/Users/ben", false}};
    EXPECT_EQ(diskNotice(disk, "/Users/anna"), "");
    EXPECT_TRUE(diskNotice(disk, "/Users/ben").contains("“/Users/ben” is not yours"));
    EXPECT_EQ(diskNotice(disk, "/Users/carl"), "");
    disk.isReadOnly = true;
    EXPECT_TRUE(diskNotice(disk, "/Users/anna").contains("read-only"));
}

}  // namespace
}  // namespace orvane::test
