#include <gmock/gmock.h>
#include <sys/mount.h>

#include "Models/FileURL.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

using testing::HasSubstr;

ProgramResult runDisks(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {binaryDirectory() + "/orvane-cli", "disks"});
    return runProgram(arguments);
}

/// Whatever disks the machine of the test may have, this one is among them.
json entryOf(const json& document, const std::string& root) {
    for (const auto& disk : document.at("disks")) {
        if (disk.at("root") == root) return disk;
    }
    return nullptr;
}

struct Disks : CommandLineTest {
    void TestBody() override {}
    Disks() {
        EXPECT_EQ(::mount("tmpfs", volume.path().c_str(), "tmpfs", 0, "size=8m"), 0);
        for (const auto* folder : {"Applications", "Library", "Users/anna", "Users/ben\n", "Users/Shared"})
            volume.makeDirectory(folder);
    }
};

PRIVATE_MOUNTS_TEST(Disks, AreToldToPrograms) {
    const auto result = runDisks({"--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    const auto disk = entryOf(json::parse(result.output), volume.path());
    ASSERT_FALSE(disk.is_null()) << result.output;
    EXPECT_EQ(disk.at("url"), FileURL::fromPath(volume.path(), true).absoluteString());
    EXPECT_EQ(disk.at("capacity"), 8 << 20);
    EXPECT_EQ(disk.at("isReadOnly"), false);
    EXPECT_EQ(disk.at("homes"),
              json::parse(R"([{"path":"/Users/anna","isOwn":true},{"path":"/Users/ben\n","isOwn":true}])"));
}

PRIVATE_MOUNTS_TEST(Disks, AreToldToPeopleInOneLineEach) {
    ASSERT_EQ(::mount("", volume.path().c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
    const auto result = runDisks({});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, "");
    EXPECT_THAT(result.output, HasSubstr(volume.path() + "  8.4 MB • "));
    EXPECT_THAT(result.output, HasSubstr(" free • Read-only  /Users/anna, /Users/ben\\n\n"));
}

TEST(DisksCommand, TakesNoVolume) {
    for (const auto* option : {"--root", "--home"}) {
        const auto result = runProgram({binaryDirectory() + "/orvane-cli", option, "/", "disks"});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error,
                  "orvane-cli: disks looks at all of this machine: it takes neither --root nor --home\n");
    }
}

}  // namespace
}  // namespace orvane::test
