#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "Platform/FileManager.h"
#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeVisit.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The tree in which the facts were measured: the names of entries say whose they are, "his" being the
/// unprivileged user's.
class DeletableTree {
  public:
    DeletableTree() {
        makeFolder("mine", 0755, true);
        makeFolder("theirs", 0755, false);
        makeFolder("sticky", 01777, false);
        makeFolder("stickymine", 01777, true);
        makeFolder("mine500", 0500, true);
        makeFolder("othersinmine", 0755, true);
        mac_.makeFile("/minedeep/folder/locked/f");
        for (const std::string path : {"/minedeep", "/minedeep/folder", "/minedeep/folder/locked"}) {
            give(path, true);
        }
        change("/minedeep/folder/locked", 0500);
        // The folder of them all is root's, but the way to it has to be open.
        change("/", 0755);
        change("/..", 0755);
    }

    const FileManager& files() const { return mac_.files(); }

  private:
    void makeFolder(const std::string& name, mode_t mode, bool isHis) {
        const auto folder = "/" + name;
        mac_.makeFile(folder + "/mine.txt");
        mac_.makeFile(folder + "/theirs.txt");
        mac_.makeDirectory(folder + "/emptymine");
        mac_.makeFile(folder + "/fulltheirs/file");
        mac_.makeLink(folder + "/link", "theirs.txt");
        mac_.makeLink(folder + "/dangling", "nothing");
        give(folder + "/mine.txt", true);
        give(folder + "/emptymine", true);
        give(folder, isHis);
        change(folder, mode);
    }

    void give(const std::string& path, bool isHis) {
        if (isHis) giveToUnprivilegedUser(mac_.machinePath(path));
    }

    void change(const std::string& path, mode_t mode) {
        ASSERT_EQ(::chmod(mac_.machinePath(path).c_str(), mode), 0) << path;
    }

    TestVolume mac_;
};

class WalkedTree {
  public:
    WalkedTree() {
        for (const std::string file :
             {"file.txt", ".dot", ".hidden/in/f", "Doc.rtfd/f", "Foo.framework/Versions/f",
              "Plug.bundle/in/f", "Sub.app/Contents/f", "X.APP/f", "plain/.h", "plain/deep/f", "unreadable/f",
              "x.kext/f", "x.plugin/f"}) {
            mac_.makeFile("/top/" + file);
        }
        mac_.makeLink("/top/linkfile", "file.txt");
        mac_.makeLink("/top/linkdir", "plain");
        mac_.makeLink("/top/dangling", "nothing");
        mac_.makeFIFO("/top/fifo");
        mac_.giveEverythingToUnprivilegedUser();
        fs::permissions(mac_.machinePath("/top/unreadable"), fs::perms::none);
    }

    json listing(ListingOptions options) const {
        std::vector<std::string> names;
        const auto entries = mac_.files().contentsOfDirectory(url("/top"), options).value();
        for (const auto& entry : entries) names.push_back(entry.url.lastPathComponent());
        std::sort(names.begin(), names.end());
        return names;
    }

    json walk(const std::string& path, WalkOptions options = {}) const {
        std::vector<std::string> visited;
        visitTree(mac_, path, options,
                  [&](const WalkEntry& entry) { visited.emplace_back(entry.relativePath); });
        std::sort(visited.begin(), visited.end());
        return visited;
    }

  private:
    TestVolume mac_;
};

TEST(Foundation, FilesThatAUserMayDelete) {
    if (!isRoot()) GTEST_SKIP() << "only root can make files of two users";
    const DeletableTree tree;
    const auto facts = foundationFile("files.json");
    if (!facts) GTEST_SKIP() << "no such facts in the folder that ORVANE_FOUNDATION names";
    asUnprivilegedUser([&] {
        const auto result = tally(facts->at("deletable"), [&](const json& row) {
            const auto path = "/" + row.at("path").get<std::string>();
            return differences({{"exists", row.at("exists"), tree.files().fileExists(url(path))},
                                {"deletable", row.at("deletable"), tree.files().isDeletableFile(url(path))}});
        });
        EXPECT_GT(result.agreed, 0U);
        EXPECT_EQ(result.agreed + result.notBinding, result.rows);
        for (const auto& disagreement : result.disagreements) ADD_FAILURE() << disagreement;
    });
}

TEST(Foundation, ListingsAndWalks) {
    const WalkedTree tree;
    const auto facts = foundationFile("files.json");
    if (!facts) GTEST_SKIP() << "no such facts in the folder that ORVANE_FOUNDATION names";
    asUnprivilegedUser([&] {
        EXPECT_EQ(tree.listing({}), facts->at("list"));
        EXPECT_EQ(tree.listing({.skipsHiddenFiles = true}), facts->at("list skipping hidden"));
        EXPECT_EQ(tree.walk("/top"), facts->at("walk"));
        EXPECT_EQ(tree.walk("/top", {.skipsHiddenFiles = true}), facts->at("walk skipping hidden"));
        EXPECT_EQ(tree.walk("/top/file.txt"), facts->at("walk of a file"));
        EXPECT_EQ(tree.walk("/top/linkdir"), facts->at("walk of a link to a folder"));
        EXPECT_EQ(tree.walk("/top/nothing"), facts->at("walk of nothing"));
    });
}

/// The facts of this name were measured where a package is nothing special. On the Mac its contents are
/// skipped.
TEST(Foundation, WalksThatSkipPackages) {
    const WalkedTree tree;
    const auto facts = foundationFile("files.json");
    if (!facts) GTEST_SKIP() << "no such facts in the folder that ORVANE_FOUNDATION names";
    asUnprivilegedUser([&] {
        json expected = json::array();
        for (const std::string path : facts->at("walk skipping hidden and packages")) {
            const auto folder = path.substr(0, path.find('/'));
            const bool isPackage = folder == "Doc.rtfd" || folder == "Plug.bundle" || folder == "Sub.app" ||
                                   folder == "X.APP" || folder == "x.kext" || folder == "x.plugin";
            if (!isPackage || path == folder) expected.push_back(path);
        }
        EXPECT_EQ(tree.walk("/top", {.skipsHiddenFiles = true, .skipsPackageDescendants = true}), expected);
    });
}

}  // namespace
}  // namespace orvane::test
