#include <gmock/gmock.h>
#include <linux/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <asio/use_future.hpp>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "Platform/MacOS/FoundationValues.h"
#include "Programs/ObjectGraph.h"
#include "tests/AppleScript/RecordedTools.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/MacOS/StandIns/StandIns.h"
#include "tests/MacOS/StandIns/SystemCallState.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr const char* bundle = "/Applications/Foo.app";
constexpr const char* cache = "/Users/sample/Library/Caches/org.example.foo";
constexpr const char* agent = "/Library/LaunchAgents/it's \"Foo\".plist";
constexpr const char* daemonList = "/Library/LaunchDaemons/org.example.foo.plist";
constexpr const char* trash = "/Users/sample/.Trash/";
constexpr const char* stillExists = "The item still exists after administrator authorization.";

void make(const std::string& path, const std::string& contents) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << contents;
}

void makeTool(const std::string& path, const std::string& contents) {
    make(path, contents);
    fs::permissions(path, fs::perms::owner_all);
}

std::vector<std::string> pathsOf(const std::vector<FileURL>& urls) {
    std::vector<std::string> paths;
    for (const auto& url : urls) paths.push_back(url.path());
    return paths;
}

/// This program's whole Mac, whose disk is this process's root: an application with what belongs to it, which
/// runs, and a person who uses it.
class WholeMac {
  public:
    WholeMac() {
        systemCallState() = {};
        ::setenv("USER", "sample", 1);
        mac_.home = "/Users/sample";
        mac_.applicationSupport = "/Users/sample/Library/Application Support";
        fs::create_directories(trash);
        const auto list = [](const std::string& identifier) {
            return "<plist><dict><key>CFBundleIdentifier</key><string>" + identifier +
                   "</string><key>Label</key><string>" + identifier + "</string></dict></plist>";
        };
        make(std::string(bundle) + "/Contents/Info.plist", list("org.example.foo"));
        make(std::string(cache) + "/file", "cache");
        make(agent, list("org.example.foo"));
        make(daemonList, list("org.example.foo"));
        make("/Library/LaunchDaemons/org.example.bar.plist", list("org.example.bar"));
        [mac_.applications
            addObject:[NSRunningApplication
                          applicationWithIdentifier:12
                                               name:@"Foo"
                                   bundleIdentifier:@"org.example.foo"
                                             bundle:urlOf(bundle, true)
                                         executable:urlOf(std::string(bundle) + "/Contents/MacOS/Foo",
                                                          false)]];
    }
    ~WholeMac() { [pool_ drain]; }
    WholeMac(const WholeMac&) = delete;
    WholeMac& operator=(const WholeMac&) = delete;

    /// Looks for the application, for what belongs to it, and removes all of it.
    RemovalResult remove(RemovalMode mode) {
        ObjectGraph<asio::io_context> graph(makeMachine({}).value());
        const auto applications = run(graph, graph.scanner().scan());
        EXPECT_THAT(applications, SizeIs(1));
        const auto plan = run(graph, graph.makePlanner()->plan(applications.at(0)));
        EXPECT_THAT(plan.items, SizeIs(4));
        const auto service = graph.makeRemovalService();
        const ReviewedPlan reviewed{{}, plan.folders};
        return run(graph, mode == RemovalMode::trash
                              ? service->moveToTrash(plan.items, plan.runningServices, reviewed)
                              : service->deletePermanently(plan.items, plan.runningServices, reviewed));
    }

    /// What the tools were called with that change nothing here.
    static std::string calls() { return readFile("/calls"); }
    const std::vector<pid_t>& terminated() const { return mac_.terminated; }

    /// By its name in the Trash, the contents of each file there, or an empty text for a folder.
    static std::map<std::string, std::string> inTrash() {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::directory_iterator(trash)) {
            found[entry.path().filename()] = entry.is_directory() ? "" : readFile(entry.path());
        }
        return found;
    }

  private:
    template <typename T>
    static T run(ObjectGraph<asio::io_context>& graph, Task<T> task) {
        auto result = asio::co_spawn(graph.main(), std::move(task), asio::use_future);
        graph.main().restart();
        graph.main().run();
        return result.get();
    }

    NSAutoreleasePool* const pool_ = [[NSAutoreleasePool alloc] init];
    StandInMac mac_;
};

/// Runs a body on a Mac in memory. `mv` and `rm` are this machine's, whose root is that memory; what would
/// change more than files is written down.
void onWholeMac(FunctionRef<void(WholeMac&)> body) {
    const RecordedTools tools;
    const auto mv = readFile("/bin/mv");
    const auto rm = readFile("/bin/rm");
    inPrivateMounts([&] {
        tools.enter();
        makeTool("/bin/mv", mv);
        makeTool("/bin/rm", rm);
        makeTool("/usr/sbin/chown", "#!/bin/sh\nprintf 'chown %s\\n' \"$*\" >>/calls\n");
        // It fails, as it does for a daemon that is not loaded.
        makeTool("/bin/launchctl", "#!/bin/sh\nprintf 'launchctl %s\\n' \"$*\" >>/calls\nexit 3\n");
        WholeMac mac;
        body(mac);
    });
}

/// Makes an entry one that nobody can move or remove.
void mountOver(const char* path) {
    // The function is not declared here, where the header of that name is the Mac's.
    ASSERT_EQ(::syscall(SYS_mount, path, path, nullptr, MS_BIND, nullptr), 0);
}

TEST(MacWholeJob, AnApplicationGoesToTheTrashWithAllThatBelongsToIt) {
    onWholeMac([](WholeMac& mac) {
        const auto result = mac.remove(RemovalMode::trash);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache, agent, daemonList));
        EXPECT_THAT(result.failed, IsEmpty());
        EXPECT_THAT(mac.terminated(), ElementsAre(12));
        EXPECT_THAT(WholeMac::inTrash(), SizeIs(4));
        EXPECT_EQ(WholeMac::calls(), "chown -R sample:staff /Users/sample/.Trash/it's \"Foo\".plist\n"
                                     "launchctl bootout system /Library/LaunchDaemons/org.example.foo.plist\n"
                                     "chown -R sample:staff /Users/sample/.Trash/org.example.foo.plist\n");
        EXPECT_TRUE(fs::exists("/Library/LaunchDaemons/org.example.bar.plist"));
    });
}

TEST(MacWholeJob, AnApplicationIsDeletedWithAllThatBelongsToIt) {
    onWholeMac([](WholeMac& mac) {
        const auto result = mac.remove(RemovalMode::permanent);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache, agent, daemonList));
        EXPECT_THAT(result.failed, IsEmpty());
        for (const auto* const path : {bundle, cache, agent, daemonList}) EXPECT_FALSE(fs::exists(path));
        EXPECT_THAT(WholeMac::inTrash(), IsEmpty());
        EXPECT_EQ(WholeMac::calls(),
                  "launchctl bootout system /Library/LaunchDaemons/org.example.foo.plist\n");
        EXPECT_TRUE(fs::exists("/Library/LaunchDaemons/org.example.bar.plist"));
    });
}

TEST(MacWholeJob, ADismissedPromptLeavesWhatIsTheMachines) {
    onWholeMac([](WholeMac& mac) {
        ::setenv("ORVANE_PROMPT", "dismissed", 1);
        const auto result = mac.remove(RemovalMode::trash);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache));
        ASSERT_THAT(result.failed, SizeIs(2));
        for (const auto& failure : result.failed) {
            EXPECT_EQ(failure.reason, "execution error: User canceled. (-128)");
            EXPECT_TRUE(fs::exists(failure.url.path()));
        }
        EXPECT_EQ(WholeMac::calls(), "");
    });
}

TEST(MacWholeJob, AnItemThatCannotBeMovedIsTheOnlyOneThatFails) {
    onWholeMac([](WholeMac& mac) {
        mountOver(agent);
        const auto result = mac.remove(RemovalMode::trash);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache, daemonList));
        ASSERT_THAT(result.failed, SizeIs(1));
        EXPECT_EQ(result.failed[0].url.path(), agent);
        EXPECT_EQ(result.failed[0].reason, stillExists);
        EXPECT_TRUE(fs::exists(agent));
    });
}

TEST(MacWholeJob, WhatTheLastToolSaysIsWhyAllOfThemFail) {
    onWholeMac([](WholeMac& mac) {
        mountOver(daemonList);
        const auto result = mac.remove(RemovalMode::permanent);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache));
        ASSERT_THAT(result.failed, SizeIs(2));
        for (const auto& failure : result.failed) {
            EXPECT_THAT(failure.reason, HasSubstr("execution error: /bin/rm: cannot remove"));
        }
        EXPECT_TRUE(fs::exists(daemonList));
    });
}

TEST(MacWholeJob, NothingInTheTrashIsReplacedWhereTheMacHidesIt) {
    onWholeMac([](WholeMac& mac) {
        make(std::string(trash) + "org.example.foo.plist", "precious");
        make(std::string(trash) + "it's \"Foo\".plist", "precious");
        struct stat status {};
        ASSERT_EQ(::stat(trash, &status), 0);
        systemCallState().hiddenFolders.insert({status.st_dev, status.st_ino});
        const auto result = mac.remove(RemovalMode::trash);
        EXPECT_THAT(pathsOf(result.removed), ElementsAre(bundle, cache, agent, daemonList));
        systemCallState() = {};
        const auto found = WholeMac::inTrash();
        EXPECT_THAT(found, SizeIs(6));
        EXPECT_EQ(found.at("org.example.foo.plist"), "precious");
        EXPECT_EQ(found.at("it's \"Foo\".plist"), "precious");
    });
}

}  // namespace
}  // namespace orvane::test
