#include <functional>

#include "tests/Services/AppLibraryFixture.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Field = AppLibrary::Field;

/// Remembers what it is told, with the value that the field has at that moment.
class Recorder : public AppLibrary::Observer {
  public:
    explicit Recorder(AppLibrary& library) : library_(library) { library.addObserver(*this); }
    ~Recorder() override { library_.removeObserver(*this); }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void libraryWillChange(Field field) override { note("will", field); }
    void libraryDidChange(Field field) override {
        note("did", field);
        if (whenTold) whenTold();
    }

    std::vector<std::string> notes;
    std::function<void()> whenTold;

  private:
    void note(const std::string& when, Field field) { notes.push_back(when + " " + value(field)); }

    std::string value(Field field) const {
        switch (field) {
            case Field::applications:
                return std::to_string(library_.applications().size()) + " applications";
            case Field::selectedApplicationID:
                return "selected " + library_.selectedApplicationID().value_or("nothing");
            case Field::searchText:
                return "search " + library_.searchText();
            case Field::isScanning:
                return library_.isScanning() ? "scanning" : "idle";
        }
        return {};
    }

    AppLibrary& library_;
};

TEST_F(AppLibraryTest, TellsOfEveryAssignmentBeforeAndAfterIt) {
    Recorder recorder(*library);
    library->setSearchText("a");
    library->setSearchText("a");
    library->setSelectedApplicationID("/Applications/A.app");
    EXPECT_THAT(recorder.notes, ElementsAre("will search ", "did search a", "will search a", "did search a",
                                            "will selected nothing", "did selected /Applications/A.app"));
}

TEST_F(AppLibraryTest, TellsTheStepsOfAScanInTheirOrder) {
    volume.addApplication("/Applications/A.app");
    Recorder recorder(*library);
    scan();
    EXPECT_THAT(recorder.notes, ElementsAre("will idle", "did scanning", "will 0 applications",
                                            "did 1 applications", "will selected nothing",
                                            "did selected /Applications/A.app", "will scanning", "did idle"));
}

TEST_F(AppLibraryTest, SavesAScanBeforeItSelectsAndBeforeItIsIdle) {
    volume.addApplication("/Applications/A.app");
    Recorder recorder(*library);
    std::vector<std::string> savedWhenTold;
    recorder.whenTold = [&] { savedWhenTold.push_back(savedText()); };
    scan();
    ASSERT_EQ(recorder.notes.size(), 8U);
    ASSERT_EQ(savedWhenTold.size(), 4U);
    EXPECT_EQ(savedWhenTold[0], "") << "while it scans nothing has been saved";
    EXPECT_EQ(savedWhenTold[1], "") << "the list is shown first";
    EXPECT_NE(savedWhenTold[2], "") << "when it selects";
    EXPECT_NE(savedWhenTold[3], "") << "when it is idle";
}

TEST_F(AppLibraryTest, ShowsALoadedAndARefreshedListBeforeItSavesIt) {
    volume.addApplication("/Applications/A.app");
    save({record("/Applications/A.app"), record("/Applications/Gone.app")});
    const auto before = savedText();
    Recorder recorder(*library);
    std::vector<std::string> savedWhenTold;
    recorder.whenTold = [&] { savedWhenTold.push_back(savedText()); };
    load();
    EXPECT_THAT(recorder.notes, ElementsAre("will 0 applications", "did 2 applications",
                                            "will selected nothing", "did selected /Applications/A.app"));
    ASSERT_EQ(savedWhenTold.size(), 2U);
    EXPECT_EQ(savedWhenTold[0], before) << "when the list is shown";
    const auto loaded = savedText();
    EXPECT_NE(loaded, before);
    EXPECT_EQ(savedWhenTold[1], loaded) << "when it selects";

    volume.remove("/Applications/A.app");
    savedWhenTold.clear();
    refresh();
    ASSERT_EQ(savedWhenTold.size(), 2U) << "the list, and a selection that is made anew";
    EXPECT_EQ(savedWhenTold[0], loaded);
    EXPECT_EQ(savedWhenTold[1], savedText());
    EXPECT_NE(savedText(), loaded);
}

TEST_F(AppLibraryTest, ChangesNoSelectionThatItKeeps) {
    volume.addApplication("/Applications/A.app");
    scan();
    Recorder recorder(*library);
    refresh();
    EXPECT_THAT(recorder.notes, ElementsAre("will 1 applications", "did 1 applications"));
}

TEST_F(AppLibraryTest, TellsOfADroppedApplicationAsOneChange) {
    volume.addApplication("/Applications/A.app");
    save({record("/Applications/A.app"), missing("/Applications/B.app"), missing("/Applications/B.app")});
    load();
    Recorder recorder(*library);
    pass(std::chrono::seconds(5));
    EXPECT_THAT(recorder.notes, ElementsAre("will 3 applications", "did 1 applications"));
}

TEST_F(AppLibraryTest, TellsNobodyWhoHasLeft) {
    { Recorder recorder(*library); }
    library->setSearchText("a");
}

TEST_F(AppLibraryTest, LetsObserversComeAndGoWhileTheyAreTold) {
    Recorder first(*library);
    auto second = std::make_unique<Recorder>(*library);
    std::unique_ptr<Recorder> late;
    first.whenTold = [&] {
        second.reset();
        if (!late) late = std::make_unique<Recorder>(*library);
    };
    library->setSearchText("a");
    EXPECT_THAT(late->notes, IsEmpty());
    library->setSearchText("b");
    EXPECT_THAT(late->notes, ElementsAre("will search a", "did search b"));
}

TEST_F(AppLibraryTest, LetsAnObserverChangeTheLibrary) {
    Recorder recorder(*library);
    recorder.whenTold = [&] {
        recorder.whenTold = nullptr;
        library->setSelectedApplicationID("/Applications/A.app");
    };
    library->setSearchText("a");
    EXPECT_THAT(recorder.notes, ElementsAre("will search ", "did search a", "will selected nothing",
                                            "did selected /Applications/A.app"));
}

}  // namespace
}  // namespace orvane
