#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <random>
#include <set>

#include "Platform/Linux/SealedMemory.h"
#include "Platform/Posix/Process.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Programs/Elevation/OrderFixture.h"

namespace orvane {
namespace {

namespace fs = std::filesystem;

using Kind = PrivilegedRequest::Item::Kind;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int rounds = 400;
#else
constexpr int rounds = 10'000;
#endif

/// What tells an entry of the disk from any other, its contents and its owner included.
struct Look {
    ino_t inode = 0;
    mode_t mode = 0;
    uid_t owner = 0;
    gid_t group = 0;
    off_t size = 0;
    std::string contents;
    friend bool operator==(const Look&, const Look&) = default;
};
using Disk = std::map<std::string, Look>;

/// The part and its tools, by their names, as bytes: where they lie may not be seen from private mounts.
using Programs = std::map<std::string, std::string>;
Programs builtPrograms() {
    Programs programs;
    for (const auto* const name : {"orvane-remove-as-root", "orvane-root-tool"}) {
        programs[name] = test::readFile(test::binaryDirectory() + "/" + name);
    }
    return programs;
}

/// A whole scratch machine: a Mac's disk with two users, and beside it files that no order may reach. The
/// root part is installed on it, and called as the prompt calls it, by users who ask for whatever they like.
class HostileCaller : protected OrderVolume {
  public:
    explicit HostileCaller(const Programs& programs);

    void asksForManyThings();
    void changesFilesItself();

  private:
    static constexpr uid_t anna = 20001;
    static constexpr uid_t otto = 20002;

    /// The items that a plan for Anna's home can hold; nothing else may ever change.
    static const std::vector<std::string>& planned() {
        static const std::vector<std::string> paths{
            "/Applications/Foo.app",
            "/Users/sample/Applications/Own.APP",
            "/Library/LaunchAgents/a.plist",
            "/Library/LaunchDaemons/d.plist",
            "/Users/sample/Library/LaunchAgents/u.plist",
            "/Users/sample/Library/Caches/org.example.foo",
            "/Users/sample/Library/Caches/-it's \"a\"\n$(touch x)",
            "/Users/sample/Library/Preferences/org.example.foo.plist",
            "/Users/sample/Library/Application Support/a/b",
            "/Users/sample/Library/Group Containers/TEAM.foo",
            "/Users/sample/Library/Caches/link",
            "/Users/sample/Library/Caches/hard",
        };
        return paths;
    }
    static const std::vector<std::string>& forbidden() {
        static const std::vector<std::string> paths{
            "/etc/passwd",
            "/etc",
            "/",
            "/Users",
            "/Users/sample",
            "/Users/other",
            "/Users/other/Library/Caches/x",
            "/Users/other/.Trash/old",
            "/Users/sample/.Trash",
            "/Users/sample/.Trash/old",
            "/Users/sample/Library",
            "/Users/sample/Library/Caches",
            "/Users/sample/Library/Caches/link/Library",
            "/Users/sample/Library/Caches/out/precious",
            "/Users/sample/Documents/letter",
            "/System/Applications/Mail.app",
            "/Applications",
            "/Applications/readme.txt",
            "/Applications/Utilities/Util.app",
            "/Library/LaunchDaemons",
            "/Library/LaunchAgents/notes.txt",
            "/Library/precious",
        };
        return paths;
    }

    void build() {
        for (const auto& entry : fs::directory_iterator(volume_.machinePath("/"))) fs::remove_all(entry);
        fs::remove_all(volume_.outside());
        volume_.makeDirectory(caches);
        volume_.makeDirectory("/Users/sample/.Trash");
        volume_.makeOutsideFile("precious");
        volume_.makeFile("/etc/passwd");
        for (const auto& path : planned()) {
            if (path.ends_with("/link")) {
                volume_.makeLink(path, "/Users/other");
            } else if (path.ends_with("/hard")) {
                volume_.makeDirectory(caches);
                fs::create_hard_link(volume_.machinePath("/etc/passwd"), volume_.machinePath(path));
            } else if (path.find("/Caches/") != std::string::npos || path.find(".") == std::string::npos) {
                volume_.makeFile(path + "/deep/file", path);
            } else {
                volume_.makeFile(path, path);
            }
        }
        volume_.makeLink(std::string(caches) + "/out", volume_.outside());
        for (const auto* const path :
             {"/Users/other/Library/Caches/x", "/Users/other/.Trash/old", "/Users/sample/.Trash/old",
              "/Users/sample/Documents/letter", "/System/Applications/Mail.app/Contents/file",
              "/Applications/readme.txt", "/Applications/Utilities/Util.app/file",
              "/Library/LaunchAgents/notes.txt", "/Library/precious"}) {
            volume_.makeFile(path, path);
        }
        give("/Users/sample", anna);
        give("/Users/other", otto);
        // Something of root's in Anna's Library, which only root can remove.
        ::lchown(volume_.machinePath(planned()[5]).c_str(), 0, 0);
        before_ = disk();
    }

    void give(const std::string& path, uid_t user) const {
        const auto machinePath = volume_.machinePath(path);
        ::lchown(machinePath.c_str(), user, user);
        for (const auto& entry : fs::recursive_directory_iterator(machinePath)) {
            if (!entry.is_symlink() && entry.is_regular_file() && entry.hard_link_count() > 1) continue;
            ::lchown(entry.path().c_str(), user, user);
        }
    }

    /// Everything there is, the volume's paths as the Mac's, what lies beside it by "outside:".
    Disk disk() const {
        Disk disk;
        const auto look = [&](const std::string& base, const std::string& prefix) {
            for (const auto& entry : fs::recursive_directory_iterator(base)) {
                struct stat status {};
                EXPECT_EQ(::lstat(entry.path().c_str(), &status), 0);
                Look found{status.st_ino, status.st_mode, status.st_uid, status.st_gid, 0, {}};
                if (S_ISREG(status.st_mode)) found.contents = test::readFile(entry.path());
                if (S_ISLNK(status.st_mode)) found.contents = fs::read_symlink(entry.path());
                disk[prefix + entry.path().string().substr(base.size())] = found;
            }
        };
        look(fs::canonical(volume_.machinePath("/")), "");
        look(volume_.outside(), "outside:/");
        return disk;
    }

    struct Call {
        std::string text;
        std::string announced;
        std::string caller;
    };

    /// Runs the installed program as the prompt does; its exit status.
    int call(const Call& call) const {
        const std::vector<std::string> environment{"PKEXEC_UID=" + call.caller};
        const auto input = sealedMemory(call.text).value();
        const FileDescriptor silence(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        return waitForTermination(
            startProgram({programs_.path("libexec/orvane-remove-as-root"), call.announced},
                         {.standardInput = input.get(),
                          .standardError = silence.get(),
                          .environment = &environment,
                          .folder = "/"})
                .value());
    }

    /// An order made of what a caller could think of, most of it wrong.
    RemovalOrder randomOrder() {
        RemovalOrder order;
        order.root = oneOf({root(), root(), root(), root(), root(), std::string("/"), root() + "/Users/other",
                            root() + "/Users/sample", fs::path(root()).parent_path().string()});
        order.rootIdentity = often() ? machineIdentity(order.root) : FileIdentity{1, chance(5)};
        order.home =
            oneOf({"/Users/sample", "/Users/sample", "/Users/sample", "/Users/sample", "/Users/sample",
                   "/Users/other", "/", "/Users", "/Users/sample/Library/Caches/link"});
        order.request.mode = chance(2) == 0 ? RemovalMode::trash : RemovalMode::permanent;
        const auto count = 1 + chance(3);
        for (std::uint64_t i = 0; i < count; ++i) order.request.items.push_back(randomItem(order));
        return order;
    }

    PrivilegedRequest::Item randomItem(const RemovalOrder& order) {
        PrivilegedRequest::Item item;
        item.source = chance(10) < 8 ? oneOf(planned()) : oneOf(forbidden());
        const bool isDaemon = item.source.starts_with("/Library/LaunchDaemons/");
        item.kind = (often() ? isDaemon : !isDaemon) ? Kind::daemon : Kind::item;
        const auto folder = often() ? item.source.substr(0, item.source.rfind('/')) : oneOf(forbidden());
        item.folder = machineIdentity(root() + folder);
        if (order.request.mode == RemovalMode::trash) {
            const auto name = item.source.substr(item.source.rfind('/') + 1);
            item.destination =
                often() ? "/Users/sample/.Trash/" + name
                        : oneOf({"/Users/sample/.Trash/old", "/Users/other/.Trash/" + name,
                                 "/Users/sample/.Trash/a/" + name, "/etc/" + name, "/Users/sample/.Trash",
                                 "/Users/sample/Library/Caches/link/" + name});
        }
        return item;
    }

    Call randomCall() {
        auto order = randomOrder();
        auto text = encodedOrder(order);
        if (!often()) {
            // Bytes turned, cut, doubled.
            for (auto changes = chance(4); changes > 0 && !text.empty(); --changes) {
                const auto at = chance(text.size());
                switch (chance(3)) {
                    case 0:
                        text[at] = static_cast<char>(chance(256));
                        break;
                    case 1:
                        text.erase(at, 1 + chance(20));
                        break;
                    default:
                        text.insert(at, text.substr(chance(text.size()), chance(40)));
                }
            }
            if (const auto decoded = decodedOrder(text)) order = *decoded;
        }
        auto announced = promptText(order);
        if (!often())
            announced = oneOf(
                {"", "1 item", "delete 1 item permanently: “Foo.app”", "move 1 item to the Trash: “a”"});
        return {text, announced, oneOf({"20001", "20001", "20001", "20002", "0", "65534", "", "x"})};
    }

    /// Fails the test when anything has changed that the order does not name, or that no plan can hold.
    void audit(const Call& call, int status) {
        const auto now = disk();
        if (now == before_) return;
        ++changes_;
        ASSERT_EQ(status, 0) << "changed although it was refused";
        const auto order = decodedOrder(call.text);
        ASSERT_TRUE(order);
        ASSERT_EQ(promptText(*order), call.announced);
        std::set<std::string> mayGo;
        std::set<std::string> mayCome;
        for (const auto& item : order->request.items) {
            if (std::ranges::find(planned(), item.source) != planned().end()) mayGo.insert(item.source);
            if (!item.destination.empty()) mayCome.insert(item.destination);
        }
        for (const auto& [path, look] : before_) {
            const auto there = now.find(path);
            if (there != now.end() && there->second == look) continue;
            EXPECT_TRUE(there == now.end() && isWithin(path, mayGo))
                << path << " has changed, and was not planned";
        }
        for (const auto& [path, look] : now) {
            if (before_.contains(path)) continue;
            EXPECT_TRUE(path.starts_with("/Users/sample/.Trash/") && isWithin(path, mayCome))
                << path << " has come";
            const bool hasSecondName = path.ends_with("/hard");
            EXPECT_EQ(look.owner, hasSecondName ? 0U : anna) << path;
        }
        build();
    }

    static bool isWithin(const std::string& path, const std::set<std::string>& places) {
        return std::ranges::any_of(
            places, [&](const auto& place) { return path == place || path.starts_with(place + "/"); });
    }

    std::string root() const { return fs::canonical(volume_.machinePath("/")); }
    static FileIdentity machineIdentity(const std::string& path) {
        struct stat status {};
        if (::stat(path.c_str(), &status) != 0) return {};
        return {status.st_dev, status.st_ino};
    }
    std::uint64_t chance(std::uint64_t of) { return random_() % of; }
    bool often() { return chance(12) != 0; }
    std::string oneOf(const std::vector<std::string>& texts) { return texts[chance(texts.size())]; }

    const test::TemporaryDirectory programs_;
    Disk before_;
    std::mt19937_64 random_{20261122};
    int changes_ = 0;
};

HostileCaller::HostileCaller(const Programs& programs) {
    for (const auto& [name, bytes] : programs) {
        const auto file = programs_.makeFile("libexec/" + name, bytes);
        ::chmod(file.c_str(), 0755);
    }
    build();
}

void HostileCaller::asksForManyThings() {
    if (::lchown(volume_.machinePath("/Users/other").c_str(), otto, otto) != 0) {
        GTEST_SKIP() << "only root can give files to others";
    }
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        const auto asked = randomCall();
        const auto status = call(asked);
        // What a refused order changes is seen a few orders later as well.
        constexpr int together = 20;
        if (status == 0 || round % together == 0) audit(asked, status);
        if (testing::Test::HasFailure()) ADD_FAILURE() << "round " << round << ": " << asked.announced;
    }
    // The test is worth something only if some orders are carried out, in both ways.
    EXPECT_GT(changes_, rounds / 100);
    EXPECT_LT(changes_, rounds * 9 / 10);
}

void HostileCaller::changesFilesItself() {
    volume_.makeFile("/etc/passwd", "changed");
    EXPECT_NE(disk(), before_);
    build();
    fs::remove(volume_.outside("precious"));
    EXPECT_NE(disk(), before_);
    build();
    ::chmod(volume_.machinePath("/Library/precious").c_str(), 0600);
    EXPECT_NE(disk(), before_);
}

TEST(HostileCaller, ChangesNothingButWhatAPlanHoldsWhateverItAsksFor) {
    const auto programs = builtPrograms();
    test::inPrivateMounts([&] { HostileCaller(programs).asksForManyThings(); });
}

/// The audit itself would notice.
TEST(HostileCaller, AFileThatChangedIsNoticed) {
    const auto programs = builtPrograms();
    test::inPrivateMounts([&] { HostileCaller(programs).changesFilesItself(); });
}

}  // namespace
}  // namespace orvane
