#include <memory>

#include "Views/DisplayText.h"
#include "Views/SidebarModel.h"
#include "tests/Views/ViewModelTest.h"

namespace orvane::test {
namespace {

/// Notes what the library publishes.
struct Publications : AppLibrary::Observer {
    explicit Publications(AppLibrary& observed) : library(observed) { library.addObserver(*this); }
    ~Publications() override { library.removeObserver(*this); }

    void libraryDidChange(AppLibrary::Field field) override {
        if (field == AppLibrary::Field::searchText) searchTexts.push_back(library.searchText());
        if (field == AppLibrary::Field::selectedApplicationID)
            selections.push_back(library.selectedApplicationID().value_or("none"));
    }

    AppLibrary& library;
    std::vector<std::string> searchTexts;
    std::vector<std::string> selections;
};

class SidebarMirrorTest : public ViewModelTest {
  protected:
    static std::string path(const std::string& name) { return bundleURL(name).path(); }

    SidebarModel sidebar{services};
    Publications publications{*library};
};

TEST_F(SidebarMirrorTest, TakesOverSearchAndSelectionWhenItAppears) {
    load({application("Foo"), application("Bar")});
    library->setSearchText("ba");
    SidebarModel late(services);
    EXPECT_EQ(late.searchText(), "");
    EXPECT_EQ(late.selectedKey(), QString());
    late.appear();
    EXPECT_EQ(late.searchText(), "ba");
    EXPECT_EQ(late.selectedKey(), keyOfBytes(path("Foo")));
    EXPECT_EQ(late.selectedRow(), -1);
}

TEST_F(SidebarMirrorTest, ForwardsEveryKeystrokeOnTheNextTurn) {
    sidebar.setSearchText("f");
    sidebar.setSearchText("fo");
    EXPECT_EQ(library->searchText(), "");
    turn();
    EXPECT_EQ(library->searchText(), "fo");
    EXPECT_EQ(publications.searchTexts, (std::vector<std::string>{"f", "fo"}));
}

TEST_F(SidebarMirrorTest, ForwardsATextThatIsTakenBackAtOnce) {
    sidebar.setSearchText("f");
    sidebar.setSearchText("");
    turn();
    EXPECT_EQ(library->searchText(), "");
    EXPECT_EQ(publications.searchTexts, (std::vector<std::string>{"f", ""}));
}

TEST_F(SidebarMirrorTest, DoesNotForwardWhatTheLibraryHasAlready) {
    library->setSearchText("mail");
    publications.searchTexts.clear();
    sidebar.setSearchText("mail");
    turn();
    EXPECT_TRUE(publications.searchTexts.empty());
}

TEST_F(SidebarMirrorTest, DoesNotMirrorTheLibrarysSearchTextBack) {
    sidebar.setSearchText("foo");
    turn();
    library->setSearchText("bar");
    turn();
    EXPECT_EQ(sidebar.searchText(), "foo");
}

TEST_F(SidebarMirrorTest, ForwardsASelectionOnTheNextTurn) {
    load({application("Foo"), application("Bar")});
    publications.selections.clear();
    sidebar.select(1);
    EXPECT_EQ(sidebar.selectedRow(), 1);
    EXPECT_EQ(library->selectedApplicationID(), path("Foo"));
    turn();
    EXPECT_EQ(library->selectedApplicationID(), path("Bar"));
    turn();
    EXPECT_EQ(publications.selections, (std::vector<std::string>{path("Bar")}));
}

TEST_F(SidebarMirrorTest, MirrorsTheLibrarysSelectionAtOnceWithoutBouncing) {
    load({application("Foo"), application("Bar")});
    publications.selections.clear();
    library->setSelectedApplicationID(path("Bar"));
    EXPECT_EQ(sidebar.selectedRow(), 1);
    EXPECT_EQ(sidebar.selectedKey(), keyOfBytes(path("Bar")));
    turn();
    EXPECT_EQ(publications.selections, (std::vector<std::string>{path("Bar")}));
}

TEST_F(SidebarMirrorTest, KeepsTheUsersChoiceWhenTheLibraryChoosesInBetween) {
    load({application("Foo"), application("Bar"), application("Baz")});
    sidebar.select(2);
    library->setSelectedApplicationID(path("Bar"));
    turn();
    EXPECT_EQ(library->selectedApplicationID(), path("Baz"));
    EXPECT_EQ(sidebar.selectedRow(), 2);
}

TEST_F(SidebarMirrorTest, EndsOnTheLastOfSeveralChoicesOfOneTurn) {
    load({application("Foo"), application("Bar")});
    sidebar.select(1);
    sidebar.select(0);
    turn();
    EXPECT_EQ(library->selectedApplicationID(), path("Foo"));
    EXPECT_EQ(sidebar.selectedRow(), 0);
}

TEST_F(SidebarMirrorTest, ForwardsThatNothingIsSelected) {
    load({application("Foo")});
    sidebar.setSelectedKey(QString());
    turn();
    EXPECT_EQ(library->selectedApplicationID(), std::nullopt);
    EXPECT_EQ(sidebar.selectedRow(), -1);
}

TEST_F(SidebarMirrorTest, SelectsByAKeyOfAnyBytes) {
    InstalledApplication odd = application("Odd");
    odd.url = FileURL::fromPath("/Applications/\xff\x01 \xc3\xa9.app", true);
    odd.isInstalled = false;
    load({application("Foo"), odd});
    sidebar.setSelectedKey(sidebar.index(1).data(Qt::UserRole).toString());
    turn();
    EXPECT_EQ(library->selectedApplicationID(), odd.id());
    EXPECT_EQ(sidebar.selectedRow(), 1);
}

TEST_F(SidebarMirrorTest, IgnoresRowsThatAreNotThere) {
    load({application("Foo"), application("Bar")});
    sidebar.select(-1);
    sidebar.select(2);
    turn();
    EXPECT_EQ(library->selectedApplicationID(), path("Foo"));
}

TEST_F(SidebarMirrorTest, KeepsASelectionThatTheSearchHides) {
    load({application("Foo"), application("Bar")});
    library->setSearchText("bar");
    EXPECT_EQ(sidebar.count(), 1);
    EXPECT_EQ(sidebar.selectedRow(), -1);
    EXPECT_EQ(sidebar.selectedKey(), keyOfBytes(path("Foo")));
    library->setSearchText("");
    EXPECT_EQ(sidebar.selectedRow(), 0);
}

TEST_F(SidebarMirrorTest, ForwardsNothingOnceItHasGone) {
    auto other = std::make_unique<SidebarModel>(services);
    other->setSearchText("foo");
    other->setSelectedKey("x");
    other.reset();
    turn();
    EXPECT_EQ(library->searchText(), "");
    EXPECT_EQ(library->selectedApplicationID(), std::nullopt);
}

}  // namespace
}  // namespace orvane::test
