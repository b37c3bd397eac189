#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/EnvironmentVariable.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Programs/Elevation/AuthorizationFixture.h"

namespace orvane {
namespace {

using test::asUnprivilegedUser;
using test::AuthorizationSystem;
using test::EnvironmentVariable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Authorization : public AuthorizationFixture {
  protected:
    struct stat lookAt(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(::lstat(volume_.machinePath(path).c_str(), &status), 0) << path;
        return status;
    }
};

TEST_F(Authorization, EveryApprovedBatchIsOnePromptAndTheDiskIsAsAsked) {
    volume_.makeFile(agent("spared"));
    volume_.makeOutsideFile("precious");
    const auto before = volume_.listing();
    std::vector<std::vector<RelatedItem>> batches;
    for (int i = 0; i < repetitions; ++i) {
        const auto number = std::to_string(i);
        const auto hostile = madeItem(agent(number + hostileName));
        const auto linkPath = agent(number + "link");
        volume_.makeLink(linkPath, volume_.outside());
        const RelatedItem link{volume_.url(linkPath), RelatedItemKind::launchAgent, 0, true, std::nullopt};
        batches.push_back(
            {hostile, link,
             madeItem("/Library/LaunchDaemons/" + number + "d.plist", RelatedItemKind::launchDaemon)});
    }

    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        for (const auto& batch : batches) {
            const auto result = deletePermanently(batch);
            EXPECT_THAT(result.failed, IsEmpty());
            EXPECT_THAT(result.removed, SizeIs(batch.size()));
        }
        EXPECT_THAT(system.prompts(), SizeIs(repetitions));
    });

    EXPECT_EQ(volume_.listing(), before);
}

TEST_F(Authorization, ThePromptTellsInOrvanesWordsWhatBecomesOfWhat) {
    auto items = madeItems(12);
    volume_.makeFile("/Applications/Foo.app/Contents/file");
    items.push_back(
        {volume_.url("/Applications/Foo.app"), RelatedItemKind::application, 1, true, std::nullopt});
    const auto hostile = madeItem(agent(hostileName));
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        deletePermanently(items);
        moveToTrash({hostile});
        const auto prompts = system.prompts();
        ASSERT_THAT(prompts, SizeIs(2));
        EXPECT_EQ(prompts[0].action, ownAction);
        EXPECT_THAT(prompts[0].message, HasSubstr("Orvane wants to remove files"));
        EXPECT_THAT(
            prompts[0].message,
            testing::EndsWith(" delete 13 items permanently: “Foo.app”, “0.plist”, “1.plist” and 10 more"));
        EXPECT_THAT(prompts[1].message,
                    testing::EndsWith(" move 1 item to the Trash: “-it's ?a?\?\?(touch x)?\uFFFD.plist”"));
        EXPECT_THAT(prompts[0].users, ElementsAre(0u)) << "an administrator's password, not the user's own";
    });
}

TEST_F(Authorization, WhatGoesToTheTrashBelongsToTheOwnerOfTheHome) {
    volume_.makeFile("/Applications/Foo.app/Contents/deep/file");
    const RelatedItem bundle{volume_.url("/Applications/Foo.app"), RelatedItemKind::application, 1, true,
                             std::nullopt};
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        // The environment is the asker's own and may say anything.
        const EnvironmentVariable user("USER", "root");
        EXPECT_THAT(moveToTrash({bundle}).failed, IsEmpty());
        EXPECT_THAT(system.prompts(), SizeIs(1));
    });
    for (const auto* const inside : {"", "/Contents", "/Contents/deep", "/Contents/deep/file"}) {
        EXPECT_EQ(lookAt(std::string("/Users/sample/.Trash/Foo.app") + inside).st_uid,
                  test::unprivilegedUser());
    }
    EXPECT_FALSE(volume_.contains("/Applications/Foo.app"));
}

TEST_F(Authorization, OnlyWhatTheUserCannotRemoveIsAskedFor) {
    const auto locked = madeItem(agent("a"));
    auto own = madeItem("/Users/sample/own");
    own.requiresAdministrator = false;
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        EXPECT_THAT(deletePermanently({locked, own}).removed, ElementsAre(own.url, locked.url));
        ASSERT_THAT(system.prompts(), SizeIs(1));
        EXPECT_THAT(system.prompts()[0].message, HasSubstr("1 item"));
    });
}

TEST_F(Authorization, WhatNoPlanCanHoldIsNotAskedForAndSaysWhy) {
    volume_.makeFile("/Library/precious");
    const auto planned = madeItem(agent("a"));
    const RelatedItem precious{volume_.url("/Library/precious"), RelatedItemKind::other, 1, true,
                               std::nullopt};
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        const auto result = deletePermanently({precious, planned});
        EXPECT_THAT(result.removed, ElementsAre(planned.url));
        ASSERT_THAT(result.failed, SizeIs(1));
        EXPECT_EQ(result.failed[0].reason,
                  "The item still exists after administrator authorization. Administrator rights are not "
                  "used for it: "
                  "it lies in none of the places where applications keep their files.");
        EXPECT_THAT(system.prompts(), SizeIs(1));
    });
    EXPECT_TRUE(volume_.contains("/Library/precious"));
}

TEST_F(Authorization, SurroundingsThatThePromptWouldRefuseAreLeftBehind) {
    const auto items = madeItems(1);
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        const EnvironmentVariable shell("SHELL", "/nowhere/\xff");
        const EnvironmentVariable terminal("TERM", "../x");
        const EnvironmentVariable language("LANG", "/%s");
        {
            const test::TemporaryDirectory vanishing;
            ASSERT_EQ(::chdir(vanishing.path().c_str()), 0);
        }
        EXPECT_THAT(deletePermanently(items).removed, SizeIs(1));
        EXPECT_THAT(system.prompts(), SizeIs(1));
    });
}

class NotRootsOwnPart : public Authorization, public testing::WithParamInterface<const char*> {};

TEST_P(NotRootsOwnPart, IsNeverGivenAnyRights) {
    const auto items = madeItems(3);
    const auto before = volume_.listing();
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        if (GetParam() == std::string("missing")) {
            system.uninstallRootPart();
        } else {
            ASSERT_EQ(::chmod(installedRootPart().c_str(), 0775), 0);
        }
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            const auto result =
                onServiceWith(test::binaryDirectory() + "/orvane-remove-as-root",
                              [&](auto& service) { return service.deletePermanently(items, {}, {}); });
            expectAllFailed(
                result, 3,
                "Administrator rights are used only by an installed Orvane (cmake --install, as root): "
                "everything of yours could change this one.");
            EXPECT_THAT(system.prompts(), IsEmpty());
        });
    });
    EXPECT_EQ(volume_.listing(), before);
}

INSTANTIATE_TEST_SUITE_P(Ways, NotRootsOwnPart, testing::Values("missing", "writable"),
                         [](const auto& way) { return way.param; });

TEST_F(Authorization, WhatWasAuthorizedRunsToItsEndWithoutTheOneWhoAskedAndHisTerminal) {
    for (const int signal : {SIGKILL, SIGINT, SIGHUP}) {
        const auto items = madeItems(2);
        const test::TemporaryDirectory directory;
        const auto started = directory.makeFIFO("started");
        const auto mayGoOn = directory.makeFIFO("go");
        AuthorizationSystem::run([&](const AuthorizationSystem& system) {
            system.replaceProgram(rootTool(), "#!/bin/sh\ncase \"$*\" in */0.plist) : >'" + started +
                                                  "'; : <'" + mayGoOn + "';; esac\nexec /mnt" + rootTool() +
                                                  " \"$@\"\n");
            system.start();
            const auto asker = startAsker([&] {
                // Whoever started the tests may have had it ignored, as nohup does.
                ::signal(signal, SIG_DFL);
                ::setpgid(0, 0);
                system.startAgent({"approve"});
                deletePermanently(items);
            });
            // Ends when the first removal has begun; writing lets it go on.
            test::readFile(started);
            // As a terminal does it: to all that belong to the one in front of it.
            ::kill(-asker, signal);
            EXPECT_TRUE(WIFSIGNALED(statusOf(asker)));
            std::ofstream(mayGoOn).close();
            mainLoop_.runUntil([&] { return !volume_.contains(agent("1")); });
        });
        EXPECT_FALSE(volume_.contains(agent("0")));
    }
}

TEST_F(Authorization, AFolderThatIsExchangedOnceRootIsAtWorkLeadsItNowhere) {
    const std::string library = "/Users/sample/Library";
    const auto item = madeItem(library + "/Caches/foo");
    volume_.makeFile("/elsewhere/foo");
    volume_.makeOutsideFile("foo");
    for (const auto* const folder : {"/Users/sample/Library", "/Users/sample/Library/Caches"}) {
        test::giveToUnprivilegedUser(volume_.machinePath(folder));
    }
    const auto caches = volume_.machinePath(library + "/Caches");
    for (const auto& target : {std::string("/elsewhere"), volume_.outside()}) {
        for (const bool isToTrash : {true, false}) {
            AuthorizationSystem::run([&](const AuthorizationSystem& system) {
                // As a program of the user's own could, at the very moment.
                system.replaceProgram(rootTool(), "#!/bin/sh\nmv '" + caches + "' '" + caches +
                                                      ".former'; ln -s '" + target + "' '" + caches +
                                                      "'\nexec /mnt" + rootTool() + " \"$@\"\n");
                system.start();
                asUnprivilegedUser([&] {
                    system.startAgent({"approve"});
                    const auto result = isToTrash ? moveToTrash({item}) : deletePermanently({item});
                    // What the link leads to on the volume is still there; outside of it nothing is.
                    EXPECT_EQ(result.failed.size(), target == "/elsewhere" ? 1U : 0U);
                    for (const auto& failure : result.failed) {
                        EXPECT_THAT(failure.reason,
                                    HasSubstr("The item still exists after administrator authorization."));
                    }
                });
            });
            std::filesystem::remove(caches);
            std::filesystem::rename(caches + ".former", caches);
        }
    }
    EXPECT_TRUE(volume_.contains("/elsewhere/foo"));
    EXPECT_TRUE(std::filesystem::exists(volume_.outside("foo")));
    EXPECT_TRUE(volume_.contains(library + "/Caches/foo"));
}

TEST_F(Authorization, ADiskThatIsMountedInAnApplicationSurvivesItsRemoval) {
    volume_.makeDirectory("/Applications/Foo.app/Contents/disk");
    volume_.makeOutsideFile("precious");
    const RelatedItem bundle{volume_.url("/Applications/Foo.app"), RelatedItemKind::application, 1, true,
                             std::nullopt};
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        ASSERT_EQ(::mount(volume_.outside().c_str(),
                          volume_.machinePath("/Applications/Foo.app/Contents/disk").c_str(), nullptr,
                          MS_BIND, nullptr),
                  0);
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            for (const bool isToTrash : {true, false}) {
                const auto result = isToTrash ? moveToTrash({bundle}) : deletePermanently({bundle});
                ASSERT_THAT(result.failed, SizeIs(1));
                EXPECT_THAT(result.failed[0].reason, HasSubstr("mounted"));
            }
        });
    });
    EXPECT_TRUE(std::filesystem::exists(volume_.outside("precious")));
    EXPECT_TRUE(volume_.contains("/Applications/Foo.app"));
}

TEST_F(Authorization, RootNeedsNobodysPermissionAndRunsThePartBesideTheProgram) {
    const auto items = madeItems(1);
    const test::TemporaryDirectory directory;
    const auto part = directory.makeFile("part", "#!/bin/sh\n: >'" + directory.path("was run") + "'\n");
    ASSERT_EQ(::chmod(part.c_str(), 0755), 0);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.start();
        onServiceWith(part, [&](auto& service) { return service.deletePermanently(items, {}, {}); });
        EXPECT_THAT(system.prompts(), IsEmpty());
    });
    EXPECT_TRUE(std::filesystem::exists(directory.path("was run")));
    EXPECT_TRUE(volume_.contains(agent("0"))) << "the installed part was not asked";
}

TEST_F(Authorization, NothingToRemoveAsksForNothing) {
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        for (int i = 0; i < repetitions; ++i) {
            EXPECT_THAT(deletePermanently({}).failed, IsEmpty());
            EXPECT_THAT(moveToTrash({}).failed, IsEmpty());
        }
        // What is gone before its turn is nothing either.
        const RelatedItem gone{volume_.url("/nowhere/x"), RelatedItemKind::cache, 0, true, std::nullopt};
        EXPECT_THAT(moveToTrash({gone}).removed, SizeIs(1));
        EXPECT_THAT(system.prompts(), IsEmpty());
    });
}

TEST_F(Authorization, TheCommandLineDoesTheWholeJobBehindOnePrompt) {
    volume_.makeFile("/Applications/Foo.app/Contents/MacOS/Foo");
    volume_.makeFile("/Applications/Bar.app/Contents/MacOS/Bar");
    const auto output = volume_.outside("output");
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.start();
        const auto asker = startAsker([&] {
            system.startAgent({"approve"});
            const FileDescriptor file(::open(output.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
            ::dup2(file.get(), STDOUT_FILENO);
            ::execl(AuthorizationSystem::commandLineProgram().c_str(), "orvane-cli", "--root",
                    volume_.machinePath("").c_str(), "remove", "Foo", "--yes", nullptr);
        });
        EXPECT_EQ(statusOf(asker), 0);
        EXPECT_THAT(system.prompts(), SizeIs(1));
    });
    EXPECT_THAT(test::readFile(output), testing::EndsWith("Moved 1 item(s) to Trash.\n"));
    EXPECT_EQ(lookAt("/Users/sample/.Trash/Foo.app/Contents/MacOS/Foo").st_uid, test::unprivilegedUser());
    EXPECT_FALSE(volume_.contains("/Applications/Foo.app"));
    EXPECT_TRUE(volume_.contains("/Applications/Bar.app/Contents/MacOS/Bar"));
}

// That the prompts are counted at all: each of these would be a mistake, and is seen.

TEST_F(Authorization, ASecondPromptWouldBeCounted) {
    const auto items = madeItems(2);
    runAsUser({"approve"}, [&](const AuthorizationSystem& system) {
        deletePermanently({items[0]});
        deletePermanently({items[1]});
        EXPECT_THAT(system.prompts(), SizeIs(2));
    });
}

TEST_F(Authorization, APermissionThatIsKeptWouldBeNoticed) {
    const auto items = madeItems(2);
    AuthorizationSystem::run([&](const AuthorizationSystem& system) {
        system.keepPermissions();
        system.start();
        asUnprivilegedUser([&] {
            system.startAgent({"approve"});
            deletePermanently({items[0]});
            EXPECT_THAT(deletePermanently({items[1]}).removed, SizeIs(1));
            EXPECT_THAT(system.prompts(), SizeIs(1)) << "with Orvane's own policy there are two";
        });
    });
}

}  // namespace
}  // namespace orvane
