#include "Platform/Machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Gives a variable of the environment a value, or none, for as long as this lives.
class Environment {
  public:
    Environment(const char* name, const char* value) : name_(name) {
        if (const char* const before = std::getenv(name)) before_ = before;
        set(value);
    }
    ~Environment() { set(before_ ? before_->c_str() : nullptr); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    void set(const char* value) const {
        if (value != nullptr) {
            ::setenv(name_, value, 1);
        } else {
            ::unsetenv(name_);
        }
    }

    const char* name_;
    std::optional<std::string> before_;
};

std::string homeOf(const tl::expected<Machine, std::string>& machine) {
    return machine ? machine->fileManager->homeDirectoryForCurrentUser().path() : "error: " + machine.error();
}

std::string applicationSupportOf(const tl::expected<Machine, std::string>& machine) {
    return machine ? machine->fileManager->applicationSupportDirectory().path() : "error: " + machine.error();
}

class MachineFor : public testing::Test {
  protected:
    tl::expected<Machine, std::string> make(std::optional<std::string> home = std::nullopt) const {
        return makeMachine({.root = mac_.machinePath(""), .home = std::move(home), .rootPart = {}});
    }

    std::string complaint(std::optional<std::string> home = std::nullopt) const {
        const auto machine = make(std::move(home));
        EXPECT_FALSE(machine);
        if (machine) return {};
        EXPECT_EQ(machine.error().find('\n'), std::string::npos) << machine.error();
        return machine.error();
    }

    TestVolume mac_;
};

TEST_F(MachineFor, HasEveryService) {
    const auto machine = make();
    ASSERT_TRUE(machine) << machine.error();
    EXPECT_TRUE(machine->fileManager && machine->bundleLoader && machine->workspace &&
                machine->privilegedRunner && machine->localizedText && machine->clock);
    mac_.makeFile("/Applications/Foo.app/Contents/file");
    EXPECT_TRUE(machine->fileManager->fileExists(TestVolume::url("/Applications/Foo.app")));
}

TEST_F(MachineFor, ARootAloneHasTheHomeOfItsOnlyUser) {
    mac_.makeDirectory("/Users/Shared");
    mac_.makeDirectory("/Users/Guest");
    mac_.makeDirectory("/Users/.hidden");
    mac_.makeFile("/Users/file");
    mac_.makeLink("/Users/link", "sample");
    EXPECT_EQ(homeOf(make()), "/Users/sample");
    EXPECT_EQ(applicationSupportOf(make()), "/Users/sample/Library/Application Support");
}

TEST_F(MachineFor, SeveralUsersAreNamedInOrder) {
    mac_.makeDirectory("/Users/second");
    mac_.makeDirectory("/Users/Another");
    EXPECT_THAT(complaint(), HasSubstr("--home: '/Users/Another' '/Users/sample' '/Users/second'"));
    EXPECT_EQ(homeOf(make("/Users/second")), "/Users/second");
}

TEST_F(MachineFor, ARootWithoutUsersAsksForAHome) {
    const TemporaryDirectory empty;
    const auto machine = makeMachine({.root = empty.path(), .home = {}, .rootPart = {}});
    ASSERT_FALSE(machine);
    EXPECT_THAT(machine.error(), AllOf(HasSubstr("/Users"), HasSubstr("--home")));
}

TEST_F(MachineFor, AHomeIsAFolderInsideTheRoot) {
    mac_.makeFile("/file");
    mac_.makeLink("/escape", mac_.outside());
    EXPECT_THAT(complaint("Users/sample"), HasSubstr("not an absolute path"));
    EXPECT_THAT(complaint(""), HasSubstr("not an absolute path"));
    EXPECT_THAT(complaint("/Users/nobody"), HasSubstr("No such file or directory"));
    EXPECT_THAT(complaint("/file"), HasSubstr("Not a directory"));
    EXPECT_THAT(complaint("/escape"), HasSubstr("No such file or directory"));
    EXPECT_THAT(complaint(mac_.outside()), HasSubstr("No such file or directory"));
}

TEST_F(MachineFor, AHomeMayEndInSlashes) {
    EXPECT_EQ(homeOf(make("/Users/sample//")), "/Users/sample");
    EXPECT_EQ(applicationSupportOf(make("/Users/sample/")), "/Users/sample/Library/Application Support");
}

TEST_F(MachineFor, AHomeIsUsedInItsShortestForm) {
    EXPECT_EQ(homeOf(make("//Users/./sample")), "/Users/sample");
    EXPECT_EQ(homeOf(make("/Users/nobody/../sample/")), "/Users/sample");
    EXPECT_EQ(homeOf(make("/../../Users/sample")), "/Users/sample");
}

TEST_F(MachineFor, HomesThatCannotBeListedAreSaidToBeSo) {
    mac_.giveEverythingToUnprivilegedUser();
    asUnprivilegedUser([&] {
        std::filesystem::permissions(mac_.machinePath("Users"), std::filesystem::perms::none);
        EXPECT_THAT(complaint(), AllOf(HasSubstr("cannot be listed"), HasSubstr("Permission denied")));
        std::filesystem::permissions(mac_.machinePath("Users"), std::filesystem::perms::owner_all);
    });
}

TEST_F(MachineFor, ARootThatIsNoFolderIsNamed) {
    const auto file = mac_.makeFile("/file");
    for (const auto& root : {file, mac_.machinePath("missing"), std::string()}) {
        const auto machine = makeMachine({.root = root, .home = {}, .rootPart = {}});
        ASSERT_FALSE(machine);
        EXPECT_THAT(machine.error(), HasSubstr("the root '" + root + "' cannot be used"));
    }
}

TEST_F(MachineFor, AComplaintIsOneLineWhateverTheNames) {
    mac_.makeDirectory("/Users/two\nlines\x1B[31m");
    EXPECT_THAT(complaint(), AllOf(HasSubstr("'/Users/two?lines?[31m'"), HasSubstr("'/Users/sample'")));
    EXPECT_THAT(complaint("/no\nhome"), Not(HasSubstr("\n")));
}

TEST_F(MachineFor, AHomeAloneLiesOnTheMachinesOwnRoot) {
    const auto home = mac_.machinePath("Users/sample");
    const Environment data("XDG_DATA_HOME", "/elsewhere");
    const auto machine = makeMachine({.root = {}, .home = home, .rootPart = {}});
    EXPECT_EQ(homeOf(machine), home);
    EXPECT_EQ(applicationSupportOf(machine), home + "/Library/Application Support");
}

TEST_F(MachineFor, WithoutOptionsTheHomeIsTheUsersOwn) {
    const auto home = mac_.machinePath("Users/sample");
    const Environment own("HOME", home.c_str());
    {
        const Environment data("XDG_DATA_HOME", nullptr);
        EXPECT_EQ(homeOf(makeMachine({})), home);
        EXPECT_EQ(applicationSupportOf(makeMachine({})), home + "/.local/share");
    }
    const Environment data("XDG_DATA_HOME", "/data");
    EXPECT_EQ(applicationSupportOf(makeMachine({})), "/data");
}

TEST_F(MachineFor, ARelativeDataFolderDoesNotCount) {
    const auto home = mac_.machinePath("Users/sample");
    const Environment own("HOME", home.c_str());
    for (const char* relative : {"data", ""}) {
        const Environment data("XDG_DATA_HOME", relative);
        EXPECT_EQ(applicationSupportOf(makeMachine({})), home + "/.local/share");
    }
}

TEST_F(MachineFor, AnOwnHomeThatIsMissingIsNamed) {
    const Environment own("HOME", "/no/such/home");
    EXPECT_EQ(homeOf(makeMachine({})),
              "error: the home '/no/such/home' cannot be used: No such file or directory");
}

TEST_F(MachineFor, WithoutAnAbsoluteHomeTheUserDatabaseKnowsIt) {
    const passwd* const user = ::getpwuid(::geteuid());
    if (user == nullptr || !std::filesystem::is_directory(user->pw_dir)) {
        GTEST_SKIP() << "the user of these tests has no home";
    }
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
        const Environment own("HOME", value);
        EXPECT_EQ(homeOf(makeMachine({})), user->pw_dir);
    }
}

TEST_F(MachineFor, AKernelThatCannotStayInsideARootIsNotTrustedWithOne) {
    inChildProcess([&] {
        forbidSystemCall(SYS_openat2, ENOSYS);
        EXPECT_THAT(complaint(), HasSubstr("cannot be used: Function not implemented"));
    });
}

}  // namespace
}  // namespace orvane::test
