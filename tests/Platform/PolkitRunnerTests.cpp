#include "Platform/Linux/PolkitRunner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Platform/Linux/PlannedPlace.h"
#include "Platform/Linux/RemovalOrder.h"
#include "Platform/Linux/SealedMemory.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/EnvironmentVariable.h"
#include "tests/Fixtures/SystemCallCues.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

using Item = PrivilegedRequest::Item;
using Kind = Item::Kind;

/// The runner with a program of the test's in the place of the part that runs as root. Whoever runs this
/// test, that part is not installed, and the one beside the program is used.
class PolkitRunnerTest : public testing::Test {
  protected:
    PolkitRunnerTest() { makeProgram(""); }
    void SetUp() override {
        if (fs::exists(installedRootPart())) GTEST_SKIP() << "Orvane is installed on this machine";
    }

    /// Makes the program that is run: it writes its arguments and its input down, then runs these shell
    /// commands.
    void makeProgram(const std::string& commands) const {
        tools_.makeFile("program", "#!/bin/sh\nprintf '%s\\0' \"$@\" >'" + log() + "'\ncat >'" +
                                       tools_.path("input") + "'\n" + commands + "\n");
        ::chmod(program().c_str(), 0755);
    }

    PrivilegedOutcome run(const PrivilegedRequest& request) const { return runWith(program(), request); }
    PrivilegedOutcome runWith(const std::string& path, const PrivilegedRequest& request) const {
        return makePrivilegedRunner(volume_.volume(), test::TestVolume::home(), path)->run(request);
    }
    PrivilegedOutcome remove(const std::vector<std::string>& sources) const {
        PrivilegedRequest request{RemovalMode::permanent, {}};
        for (const auto& source : sources) request.items.push_back({Kind::item, source, "", {}});
        return run(request);
    }
    PrivilegedOutcome moveToTrash(const std::string& source, const std::string& destination) const {
        return run({RemovalMode::trash, {{Kind::item, source, destination, {}}}});
    }
    /// A request that reaches the program, for tests of how it is run.
    PrivilegedRequest anyRequest() const {
        volume_.makeFile(list);
        return {RemovalMode::permanent, {{Kind::item, list, "", {}}}};
    }

    /// What the program was given; nothing when it was not run.
    std::vector<std::string> arguments() const {
        std::istringstream stream(test::readFile(log()));
        std::vector<std::string> arguments;
        for (std::string argument; std::getline(stream, argument, '\0');) arguments.push_back(argument);
        return arguments;
    }
    bool wasRun() const { return fs::exists(log()); }
    RemovalOrder order() const { return decodedOrder(test::readFile(tools_.path("input"))).value(); }
    std::vector<std::string> orderedSources() const {
        std::vector<std::string> sources;
        if (!wasRun()) return sources;
        for (const auto& item : order().request.items) sources.push_back(item.source);
        return sources;
    }

    FileIdentity identity(const std::string& path) const {
        struct stat status {};
        EXPECT_EQ(::lstat(volume_.machinePath(path).c_str(), &status), 0) << path;
        return {status.st_dev, status.st_ino};
    }

    std::string program() const { return tools_.path("program"); }
    std::string log() const { return tools_.path("arguments"); }

    static constexpr const char* caches = "/Users/sample/Library/Caches";
    static constexpr const char* list = "/Library/LaunchAgents/a.plist";
    static constexpr const char* notPlanned =
        "Administrator rights are not used for it: it lies in none of the places where applications keep "
        "their files.";
    static constexpr const char* moved = "The folder that it lies in is no longer the one that was shown.";

    test::TemporaryDirectory tools_;
    test::TestVolume volume_;
};

TEST_F(PolkitRunnerTest, WhereAnythingCannotBeLookedAtNobodyIsAskedAndItIsSaid) {
    const auto request = anyRequest();
    PrivilegedOutcome outcome;
    const auto failures = test::onEachFailure(
        {SYS_openat2, SYS_memfd_create, SYS_pwrite64, SYS_readlink, SYS_readlinkat}, EIO,
        [&] { outcome = run(request); },
        [&] {
            EXPECT_FALSE(wasRun());
            EXPECT_TRUE(!outcome.launchError.empty() ||
                        (outcome.reasons.size() == 1 && !outcome.reasons[0].empty()));
        });
    EXPECT_GT(failures, 3U);
    EXPECT_TRUE(wasRun());
}

TEST_F(PolkitRunnerTest, TheOrderNamesTheVolumeTheHomeAndEachItemWithItsFolder) {
    volume_.makeDirectory("/Users/sample/.Trash");
    volume_.makeFile("/Library/LaunchDaemons/d.plist");

    const auto outcome = run({RemovalMode::trash,
                              {{Kind::daemon, "/Library/LaunchDaemons/d.plist",
                                "/Users/sample/.Trash/d 2.plist", identity("/Library/LaunchDaemons")}}});

    EXPECT_EQ(outcome.launchError, "");
    EXPECT_EQ(outcome.terminationStatus, 0);
    const RemovalOrder expected{fs::canonical(volume_.machinePath("/")),
                                identity("/"),
                                "/Users/sample",
                                {RemovalMode::trash,
                                 {{Kind::daemon, "/Library/LaunchDaemons/d.plist",
                                   "/Users/sample/.Trash/d 2.plist", identity("/Library/LaunchDaemons")}}}};
    EXPECT_EQ(order(), expected);
    EXPECT_THAT(arguments(), ElementsAre("move 1 item to the Trash: “d.plist”"));
}

TEST_F(PolkitRunnerTest, HostileNamesAreInTheOrderOnlyAsTheyAreInTheArgumentOnlyCleaned) {
    const auto path = std::string(caches) + "/-it's \"a\"\n$(name)\t\xff";
    volume_.makeFile(path);
    remove({path});
    EXPECT_THAT(orderedSources(), ElementsAre(path));
    EXPECT_THAT(arguments(), ElementsAre("delete 1 item permanently: “-it's ?a?\?\?(name)?\uFFFD”"));
}

TEST_F(PolkitRunnerTest, TenThousandLongNamesAreOneOrder) {
    volume_.makeDirectory(caches);
    std::vector<std::string> sources;
    for (int i = 0; i < 10'000; ++i) {
        sources.push_back(std::string(caches) + "/" + std::string(240, 'x') + std::to_string(i));
    }
    EXPECT_EQ(remove(sources).terminationStatus, 0);
    EXPECT_EQ(orderedSources(), sources);
}

TEST_F(PolkitRunnerTest, WhatNoPlanCanHoldIsLeftOutWithTheReasonAndTheRestIsOrdered) {
    const std::vector<std::string> strange{"/etc/passwd",
                                           "/Library/a",
                                           "/System/Applications/Mail.app",
                                           "/Applications/notes.txt",
                                           "/Applications/Utilities/Foo.app",
                                           "/Applications",
                                           "/Library/LaunchAgents/a.txt",
                                           "/Library/LaunchAgents/b/a.plist",
                                           "/Users/sample/Applications/Utilities/Foo.app",
                                           "/Users/sample/Library/LaunchAgents/b/a.plist",
                                           "/Users/other/Library/Caches/x",
                                           "/Users/sample/Documents/x",
                                           "/Users/sample/Library/Caches",
                                           "/Users/sample/Library/Caches/../../x",
                                           "/Users/sample/Library/Group Containers/a/b"};
    volume_.makeFile(list);
    auto sources = strange;
    sources.push_back(list);

    const auto outcome = remove(sources);

    EXPECT_THAT(orderedSources(), ElementsAre(list));
    ASSERT_THAT(outcome.reasons, SizeIs(sources.size()));
    for (std::size_t i = 0; i < strange.size(); ++i) EXPECT_EQ(outcome.reasons[i], notPlanned) << strange[i];
    EXPECT_EQ(outcome.reasons.back(), "");
}

TEST_F(PolkitRunnerTest, WhateverAPlanHoldsIsOrdered) {
    const std::vector<std::string> planned{"/Applications/Foo.app",
                                           "/Applications/Foo.APP",
                                           "/Users/sample/Applications/Foo.app",
                                           list,
                                           "/Users/sample/Library/LaunchAgents/a.plist",
                                           "/Users/sample/Library/Group Containers/x",
                                           "/Users/sample/Library/Caches/x",
                                           "/Users/sample/Library/Preferences/x.plist",
                                           "/Users/sample/Library/Saved Application State/x.savedState",
                                           "/Users/sample/Library/HTTPStorages/x",
                                           "/Users/sample/Library/WebKit/x",
                                           "/Users/sample/Library/Containers/x",
                                           "/Users/sample/Library/Application Support/x/y",
                                           "/Users/sample/Library/Logs/x"};
    for (const auto& path : planned) volume_.makeFile(path);
    remove(planned);
    EXPECT_EQ(orderedSources(), planned);
}

TEST_F(PolkitRunnerTest, OnlyAListOfTheDaemonsFolderIsADaemon) {
    volume_.makeFile(list);
    volume_.makeFile("/Library/LaunchDaemons/d.plist");
    run({RemovalMode::permanent, {{Kind::daemon, list, "", {}}}});
    EXPECT_FALSE(wasRun());
    remove({"/Library/LaunchDaemons/d.plist"});
    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, AFolderThatIsNotTheOneThatWasShownIsRefused) {
    volume_.makeFile(list);
    const auto shown = identity("/Library/LaunchAgents");
    fs::rename(volume_.machinePath("/Library/LaunchAgents"), volume_.machinePath("/Library/former"));
    volume_.makeFile(list);

    const auto outcome = run({RemovalMode::permanent, {{Kind::item, list, "", shown}}});

    EXPECT_FALSE(wasRun());
    EXPECT_THAT(outcome.reasons, ElementsAre(moved));
}

TEST_F(PolkitRunnerTest, AFolderThatIsNotThereIsSaidToBeGone) {
    volume_.makeDirectory("/Users/sample/Library");
    volume_.makeLink(caches, "/nowhere");
    const auto outcome = remove({std::string(caches) + "/x", "/Users/sample/Library/Logs/x"});
    EXPECT_THAT(outcome.reasons, ElementsAre("No such file or directory", "No such file or directory"));
    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, NoLinkInAnIdentifierLeadsAnywhere) {
    volume_.makeFile("/Users/sample/Documents/precious");
    volume_.makeDirectory(caches);
    volume_.makeLink(std::string(caches) + "/link", "/Users/sample/Documents");
    volume_.makeLink(std::string(caches) + "/out", volume_.outside());

    remove({std::string(caches) + "/link/precious", std::string(caches) + "/out/precious"});

    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, ALinkThatIsTheItemIsOrderedAsTheLink) {
    volume_.makeDirectory("/Users/sample/Documents");
    volume_.makeLink(std::string(caches) + "/link", "/Users/sample/Documents");
    remove({std::string(caches) + "/link"});
    EXPECT_THAT(orderedSources(), ElementsAre(std::string(caches) + "/link"));
}

TEST_F(PolkitRunnerTest, AFixedFolderMayLeadToAnotherDiskOfTheUsers) {
    volume_.makeFile("/Volumes/Data/Caches/x");
    volume_.makeDirectory("/Users/sample/Library");
    volume_.makeLink(caches, "/Volumes/Data/Caches");
    remove({std::string(caches) + "/x"});
    EXPECT_EQ(order().request.items.at(0).folder, identity("/Volumes/Data/Caches"));
}

TEST_F(PolkitRunnerTest, ALinkedHomeIsOrderedByItsRealPath) {
    volume_.makeFile("/Volumes/Data/home/Library/Caches/x");
    volume_.makeLink("/Users/linked", "/Volumes/Data/home");
    makePrivilegedRunner(volume_.volume(), "/Users/linked", program())
        ->run({RemovalMode::trash,
               {{Kind::item, "/Users/linked/Library/Caches/x", "/Users/linked/.Trash/x", {}}}});
    EXPECT_EQ(order().home, "/Volumes/Data/home");
    EXPECT_THAT(orderedSources(), ElementsAre("/Volumes/Data/home/Library/Caches/x"));
    EXPECT_EQ(order().request.items[0].destination, "/Volumes/Data/home/.Trash/x");
}

TEST_F(PolkitRunnerTest, ATrashMayLieDirectlyInTheRoot) {
    EXPECT_EQ(nameInTrash("/", "/.Trash/a"), "a");
    EXPECT_EQ(nameInTrash("/", "/.Trash/a/b"), "");
    EXPECT_EQ(nameInTrash("/Users/sample", "/.Trash/a"), "");
    EXPECT_EQ(nameInTrash("/Users/sample", "/Users/sample/.Trash"), "");
}

TEST_F(PolkitRunnerTest, AMissingTrashIsMadeForTheUserAlone) {
    volume_.makeFile(list);
    moveToTrash(list, "/Users/sample/.Trash/a.plist");
    EXPECT_THAT(orderedSources(), ElementsAre(list));
    EXPECT_EQ(fs::status(volume_.machinePath("Users/sample/.Trash")).permissions(), fs::perms::owner_all);
}

TEST_F(PolkitRunnerTest, ATrashThatLeadsElsewhereIsAnErrorBeforeAnythingIsRun) {
    volume_.makeFile(list);
    volume_.makeDirectory("/Elsewhere");
    volume_.makeLink("/Users/sample/.Trash", "/Elsewhere");

    const auto outcome = moveToTrash(list, "/Users/sample/.Trash/a.plist");

    EXPECT_EQ(outcome.launchError, "The Trash cannot be used: Not a directory");
    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, AHomeThatHasGoneIsSaidAndNothingRuns) {
    const auto request = anyRequest();
    fs::rename(volume_.machinePath(test::TestVolume::home()), volume_.machinePath("/moved"));
    EXPECT_EQ(run(request).launchError, "The home cannot be used: No such file or directory");
    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, AHomeThatGoesElsewhereWhileItIsLookedForIsSaidAndNothingRuns) {
    const auto request = anyRequest();
    PrivilegedOutcome outcome;
    const auto runAndOnceItIsOpen = [&](FunctionRef<test::CallOutcome()> then) {
        test::onCue(
            {SYS_readlink, SYS_readlinkat}, [&](const auto&) { return then(); },
            [&] { outcome = run(request); });
    };
    runAndOnceItIsOpen([] { return test::failWith(EIO); });
    EXPECT_EQ(outcome.launchError, "The home cannot be used: Input/output error");
    runAndOnceItIsOpen([&] {
        fs::rename(volume_.machinePath(test::TestVolume::home()), volume_.outside("home"));
        return test::proceed;
    });
    EXPECT_EQ(outcome.launchError, "The home cannot be used: No such file or directory");
    EXPECT_FALSE(wasRun());
}

TEST_F(PolkitRunnerTest, ThePartsReasonsComeToTheirItems) {
    for (const auto* const name : {"a", "b", "c"}) volume_.makeFile(std::string(caches) + "/" + name);
    makeProgram(
        "echo '2: why not' >&2; echo '2: and again' >&2; echo '9: x' >&2; echo '0: x' >&2; echo odd >&2");
    const auto outcome = remove(
        {std::string(caches) + "/a", "/etc/x", std::string(caches) + "/b", std::string(caches) + "/c"});
    EXPECT_THAT(outcome.reasons, ElementsAre("", notPlanned, "why not", ""));
}

TEST_F(PolkitRunnerTest, TheInputCanNeitherGrowNorShrinkNorChangeNorBeUnsealed) {
    const auto memory = sealedMemory("text");
    ASSERT_TRUE(memory);
    EXPECT_EQ(::fcntl(memory->get(), F_GET_SEALS), F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL);
    EXPECT_LT(::write(memory->get(), "x", 1), 0);
    EXPECT_NE(::ftruncate(memory->get(), 0), 0);
    EXPECT_NE(::ftruncate(memory->get(), 100), 0);
    makeProgram(
        "true >/proc/self/fd/0 || true; : >>/proc/self/fd/0; printf x 2>/dev/null >>/proc/self/fd/0 && exit "
        "8; exit 0");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 0);
}

TEST_F(PolkitRunnerTest, OnlyAHarmlessLanguageComesAlongAndItStartsAtTheRoot) {
    const test::EnvironmentVariable path("PATH", "/usr/bin:/bin:/nowhere");
    const test::EnvironmentVariable odd("ORVANE_ODD", "x");
    const auto surroundings = tools_.path("surroundings");
    makeProgram("{ pwd; tr '\\0' '\\n' </proc/$$/environ; } >'" + surroundings + "'");
    for (const auto& [language, comesAlong] : std::vector<std::pair<std::string, bool>>{
             {"de_DE.UTF-8", true}, {"a..b", false}, {"%s", false}, {"/x", false}}) {
        const test::EnvironmentVariable lang("LANG", language);
        run(anyRequest());
        const auto seen = test::readFile(surroundings);
        EXPECT_THAT(seen, testing::StartsWith("/\n"));
        EXPECT_EQ(seen.find("LANG=" + language + "\n") != std::string::npos, comesAlong) << language;
        EXPECT_THAT(seen, testing::Not(HasSubstr("ORVANE_ODD")));
        EXPECT_THAT(seen, testing::Not(HasSubstr("nowhere")));
        // Where nobody has to be asked, root says itself who asks.
        EXPECT_EQ(seen.find("PKEXEC_UID=0\n") != std::string::npos, ::geteuid() == 0);
    }
}

TEST_F(PolkitRunnerTest, AProgramThatCannotBeLaunchedSaysWhy) {
    EXPECT_EQ(runWith("/nowhere/program", anyRequest()).launchError, "No such file or directory");
    EXPECT_EQ(runWith(tools_.makeFile("text", "no program"), anyRequest()).launchError, "Permission denied");
    const auto noFormat = tools_.makeFile("rubbish", "\x01\x02\x03\x04");
    ::chmod(noFormat.c_str(), 0755);
    EXPECT_EQ(runWith(noFormat, anyRequest()).launchError, "Exec format error");
}

TEST_F(PolkitRunnerTest, TheExitStatusIsTheProgramsOwn) {
    for (const int status : {0, 1, 126, 127, 255}) {
        makeProgram("exit " + std::to_string(status));
        EXPECT_EQ(run(anyRequest()).terminationStatus, status);
    }
}

TEST_F(PolkitRunnerTest, AKilledProgramIsNoSuccess) {
    makeProgram("kill -9 $$");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 128 + SIGKILL);
}

TEST_F(PolkitRunnerTest, StandardErrorComesBackAsItIs) {
    makeProgram(R"(printf ' caution \377\n\n' >&2; exit 1)");
    const auto outcome = run(anyRequest());
    EXPECT_EQ(outcome.standardError, " caution \xff\n\n");
    EXPECT_EQ(outcome.terminationStatus, 1);
}

TEST_F(PolkitRunnerTest, MoreStandardErrorThanAPipeHoldsComesBackWhole) {
    makeProgram("head -c 1000000 /dev/zero | tr '\\0' x >&2; exit 4");
    const auto outcome = run(anyRequest());
    EXPECT_EQ(outcome.standardError, std::string(1'000'000, 'x'));
    EXPECT_EQ(outcome.terminationStatus, 4);
}

TEST_F(PolkitRunnerTest, AProgramThatClosesStandardErrorIsWaitedFor) {
    makeProgram("exec 2>&-; exit 6");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 6);
}

TEST_F(PolkitRunnerTest, SomebodyLeftBehindDoesNotHoldTheRunUp) {
    const auto fifo = tools_.makeFIFO("fifo");
    makeProgram("echo said >&2; cat '" + fifo + "' >/dev/null & exit 7");

    const auto outcome = run(anyRequest());

    EXPECT_EQ(outcome.standardError, "said\n");
    EXPECT_EQ(outcome.terminationStatus, 7);
    // Lets the one left behind, who still has our pipe, come to its end.
    const FileDescriptor end(::open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
    EXPECT_TRUE(end);
}

TEST_F(PolkitRunnerTest, TheProgramGetsNoDescriptorOfOurs) {
    const FileDescriptor ours(::open("/dev/null", O_RDONLY));  // NOLINT(android-cloexec-open)
    // From 10 on a shell has some of its own.
    ASSERT_GT(ours.get(), 2);
    ASSERT_LT(ours.get(), 10);
    makeProgram("test ! -e /proc/$$/fd/" + std::to_string(ours.get()) + " && test -e /proc/$$/fd/2");
    EXPECT_EQ(run(anyRequest()).terminationStatus, 0);
}

TEST_F(PolkitRunnerTest, NoSignalIsBlockedOrBrokenPipeIgnoredInTheProgram) {
    const auto status = tools_.path("status");
    makeProgram("sed -n 's/^Sig\\(Blk\\|Ign\\):\t//p' /proc/self/status >'" + status + "'");
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);

    run(anyRequest());

    std::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::istringstream masks(test::readFile(status));
    std::uint64_t blockedThere = 1;
    std::uint64_t ignoredThere = ~std::uint64_t{0};
    masks >> std::hex >> blockedThere >> ignoredThere;
    EXPECT_EQ(blockedThere, 0u);
    EXPECT_EQ(ignoredThere & (std::uint64_t{1} << (SIGPIPE - 1)), 0u);
}

}  // namespace
}  // namespace orvane
