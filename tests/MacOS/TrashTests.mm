#include <cerrno>
#include <filesystem>

#include "Platform/Posix/FileStatus.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/MacOS/MacFixture.h"

namespace orvane::test {
namespace {

class MacTrashTest : public MacFixture {
  protected:
    int trash(const std::string& path, std::optional<FileIdentity> folder = {}) const {
        const auto result = trashItem(*files_, url(path), folder);
        return result ? 0 : result.error().value();
    }
    std::string inTrash(const std::string& name) const { return "Users/sample/.Trash/" + name; }
};

PRIVATE_MOUNTS_TEST(MacTrashTest, MovesAnItemWithAllThatIsInIt) {
    for (const auto& name : awkwardNames) {
        directory_.makeFile("Applications/" + name + "/Contents/file", "precious");
        EXPECT_EQ(trash("Applications/" + name), 0) << name;
        EXPECT_FALSE(isThere("Applications/" + name));
        EXPECT_EQ(readFile(at(inTrash(name) + "/Contents/file")), "precious");
    }
}

PRIVATE_MOUNTS_TEST(MacTrashTest, NothingInTheTrashIsReplaced) {
    directory_.makeFile(inTrash("Foo.app/old"));
    for (int i = 0; i < 3; ++i) {
        directory_.makeFile("Applications/Foo.app/new");
        EXPECT_EQ(trash("Applications/Foo.app"), 0);
    }
    EXPECT_TRUE(isThere(inTrash("Foo.app/old")));
    EXPECT_EQ(files_->contentsOfDirectory(url("Users/sample/.Trash"), {})->size(), 4U);
}

PRIVATE_MOUNTS_TEST(MacTrashTest, ALinkGoesAsALink) {
    directory_.makeFile("elsewhere/precious");
    directory_.makeLink("Applications/link", at("elsewhere"));
    EXPECT_EQ(trash("Applications/link"), 0);
    EXPECT_TRUE(isThere("elsewhere/precious"));
    EXPECT_TRUE(std::filesystem::is_symlink(at(inTrash("link"))));
}

PRIVATE_MOUNTS_TEST(MacTrashTest, AnItemBelowALinkedFolderIsFoundByTheFoldersOwnName) {
    directory_.makeFile("elsewhere/item");
    directory_.makeLink("linked", "elsewhere");
    EXPECT_EQ(trash("linked/item"), 0);
    EXPECT_TRUE(isThere(inTrash("item")));
}

PRIVATE_MOUNTS_TEST(MacTrashTest, ItsReasonIsTheKernels) {
    directory_.makeFile("Applications/Foo.app/file");
    mac_.mishap = Mishap::failure;
    mac_.kernelError = EROFS;
    EXPECT_EQ(trash("Applications/Foo.app"), EROFS);
    mac_.kernelError = 0;
    mac_.foundationError = NSFileNoSuchFileError;
    EXPECT_EQ(trash("Applications/Foo.app"), ENOENT);
    mac_.foundationError = 3328;
    EXPECT_EQ(trash("Applications/Foo.app"), EPERM) << "no Trash on that disk";
    mac_.mishap = Mishap::failureWithoutError;
    EXPECT_EQ(trash("Applications/Foo.app"), EPERM);
    mac_.mishap = Mishap::exception;
    EXPECT_EQ(trash("Applications/Foo.app"), EPERM);
    EXPECT_TRUE(isThere("Applications/Foo.app/file"));
}

PRIVATE_MOUNTS_TEST(MacTrashTest, WhatIsNotThereIsAnError) {
    EXPECT_EQ(trash("Applications/Foo.app"), ENOENT);
    EXPECT_EQ(trash("nowhere/Foo.app"), ENOENT);
}

PRIVATE_MOUNTS_TEST(MacTrashTest, TheTrashAndWhatItLiesInAndWhatLiesInItStay) {
    directory_.makeFile(inTrash("old/file"));
    for (const auto* const path : {"Users/sample/.Trash", "Users/sample", "Users", "Users/sample/.Trash/old",
                                   "Users/sample/.Trash/old/file"}) {
        EXPECT_EQ(trash(path), EINVAL) << path;
    }
    EXPECT_TRUE(isThere(inTrash("old/file")));
}

PRIVATE_MOUNTS_TEST(MacTrashTest, WhatSomethingIsMountedOnOrInStays) {
    directory_.makeFile("Applications/Foo.app/sub/file");
    directory_.makeFile("Applications/Foo.app2/file");
    for (const auto* const place : {"Applications/Foo.app", "Applications/Foo.app/sub"}) {
        systemCallState().mounts = {at(place)};
        EXPECT_EQ(trash("Applications/Foo.app"), EBUSY) << place;
    }
    EXPECT_EQ(trash("Applications/Foo.app2"), 0) << "its name only begins like that of the mount";
}

PRIVATE_MOUNTS_TEST(MacTrashTest, AnItemOfAnotherFolderThanTheOneShownStays) {
    directory_.makeFile("Applications/Foo.app/file");
    const auto shown = files_->identity(url("Users"));
    EXPECT_EQ(trash("Applications/Foo.app", *shown), ESTALE);
    EXPECT_TRUE(isThere("Applications/Foo.app"));
    EXPECT_EQ(trash("Applications/Foo.app", *files_->identity(url("Applications"))), 0);
}

std::string* swappedFolder = nullptr;

PRIVATE_MOUNTS_TEST(MacTrashTest, AFolderThatIsExchangedMeanwhileIsNoSuccess) {
    directory_.makeFile("Applications/Foo.app/file");
    directory_.makeFile("other/Foo.app/other");
    std::string folder = at("");
    swappedFolder = &folder;
    mac_.beforeTrashing = [] {
        std::filesystem::rename(*swappedFolder + "/Applications", *swappedFolder + "/Applications.moved");
        std::filesystem::rename(*swappedFolder + "/other", *swappedFolder + "/Applications");
    };
    EXPECT_EQ(trash("Applications/Foo.app"), ESTALE);
    EXPECT_TRUE(isThere("Applications.moved/Foo.app/file"));
    EXPECT_TRUE(isThere(inTrash("Foo.app/other"))) << "what came in its place can be taken out of the Trash";
}

}  // namespace
}  // namespace orvane::test
