// Some file systems do not tell in a folder what its entries are. The definition of getdents64 below stands
// in for such a one: it takes the place of the C library's in this program, and forgets the types while told
// to.
#include <dirent.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>

#include "Platform/FileManager.h"
#include "tests/Fixtures/OneEntry.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/TreeVisit.h"

namespace {

std::atomic<bool> forgetsTypes = false;

}  // namespace

extern "C" ssize_t getdents64(int folder, void* buffer, std::size_t size) noexcept {
    const long length = ::syscall(SYS_getdents64, folder, buffer, size);
    auto* const bytes = static_cast<char*>(buffer);
    for (long position = 0; forgetsTypes && position < length;) {
        auto* const entry = reinterpret_cast<dirent64*>(bytes + position);
        entry->d_type = DT_UNKNOWN;
        position += entry->d_reclen;
    }
    return length;
}

namespace orvane::test {
namespace {

class WalkUnknownTypes {
  protected:
    WalkUnknownTypes() {
        mac_.makeFile("/top/folder/file");
        mac_.makeFile("/elsewhere/precious");
        mac_.makeLink("/top/link", "/elsewhere");
        mac_.makeFIFO("/top/fifo");
        forgetsTypes = true;
    }
    ~WalkUnknownTypes() { forgetsTypes = false; }

    TestVolume mac_;
};

PRIVATE_MOUNTS_TEST(WalkUnknownTypes, AreLookedUp) {
    std::vector<std::string> files;
    std::vector<std::string> others;
    visitTree(mac_, "/top", {}, [&](const WalkEntry& entry) {
        (entry.isRegularFile ? files : others).emplace_back(entry.relativePath);
    });
    EXPECT_THAT(files, testing::ElementsAre("folder/file"));
    EXPECT_THAT(others, testing::UnorderedElementsAre("folder", "link", "fifo"));

    const auto entries = mac_.files().contentsOfDirectory(TestVolume::url("/top"), {}).value();
    EXPECT_EQ(entries.size(), 3U);
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.isDirectory, entry.url.lastPathComponent() == "folder");
    }
}

PRIVATE_MOUNTS_TEST(WalkUnknownTypes, DoNotLeadARemovalThroughALink) {
    EXPECT_TRUE(removeItem(mac_.files(), TestVolume::url("/top")));
    EXPECT_FALSE(mac_.contains("/top"));
    EXPECT_TRUE(mac_.contains("/elsewhere/precious"));
}

}  // namespace
}  // namespace orvane::test
