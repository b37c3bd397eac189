// The power of a disk is cut while a catalog is saved to it, or once it is said to be saved: a catalog that
// was said to be saved, or a later one, is there when the disk is mounted again. The disk is a loop-mounted
// ext4, which stops at once and writes nothing more (EXT4_IOC_SHUTDOWN). The wrong variant does not flush.
#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <random>
#include <system_error>
#include <thread>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/proof/Harness.h"
#include "tests/proof/NumberedCatalog.h"

namespace orvane::test {
namespace {

// Of <linux/ext4.h>, which this machine's headers do not have.
constexpr unsigned long ext4Shutdown = _IOR('X', 125, __u32);
constexpr __u32 writingNoJournal = 2;

void demand(bool isDone, const char* what) {
    if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

/// A disk in memory that can be mounted.
class LoopDisk {
  public:
    LoopDisk() : image_(directory_.makeFile("image", "")), place_(directory_.makeDirectory("disk")) {
        std::filesystem::resize_file(image_, std::uintmax_t{16} << 20);
        const auto made = runProgram({"/usr/sbin/mkfs.ext4", "-q", "-F", image_});
        if (made.status != 0) throw std::runtime_error("mkfs.ext4: " + made.error);
    }
    ~LoopDisk() { ::umount2(place_.c_str(), MNT_DETACH); }
    LoopDisk(const LoopDisk&) = delete;
    LoopDisk& operator=(const LoopDisk&) = delete;

    /// Whether the machine lets it be one. It is free again when this object is gone.
    bool attach() {
        const FileDescriptor control(::open("/dev/loop-control", O_RDWR | O_CLOEXEC));
        // Another program may be faster.
        for (int attempt = 0; control && attempt < 20; ++attempt) {
            const int number = ::ioctl(control.get(), LOOP_CTL_GET_FREE);
            if (number < 0) return false;
            device_ = "/dev/loop" + std::to_string(number);
            loop_ = FileDescriptor(::open(device_.c_str(), O_RDWR | O_CLOEXEC));
            const FileDescriptor image(::open(image_.c_str(), O_RDWR | O_CLOEXEC));
            loop_config configuration{};
            configuration.fd = static_cast<__u32>(image.get());
            configuration.info.lo_flags = LO_FLAGS_AUTOCLEAR;
            if (loop_ && ::ioctl(loop_.get(), LOOP_CONFIGURE, &configuration) == 0) return true;
        }
        return false;
    }
    bool mount() const { return ::mount(device_.c_str(), place_.c_str(), "ext4", 0, nullptr) == 0; }
    void unmount() const { demand(::umount(place_.c_str()) == 0, "unmounting"); }
    void cutPower() const {
        const FileDescriptor root(::open(place_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        auto how = writingNoJournal;
        demand(::ioctl(root.get(), ext4Shutdown, &how) == 0, "EXT4_IOC_SHUTDOWN");
    }
    const std::string& place() const { return place_; }

  private:
    const TemporaryDirectory directory_;
    const std::string image_;
    const std::string place_;
    std::string device_;
    FileDescriptor loop_;
};

class PowerCuts {
  public:
    PowerCuts(const ProofTask& task, const LoopDisk& disk) : task_(task), random_(task.seed), disk_(disk) {}

    ProofOutcome run() {
        ProofOutcome outcome;
        outcome.unit = "cuts";
        std::uint64_t whileSaving = 0;
        demand(disk_.mount(), "mounting");
        auto number = prepare();
        while (outcome.trials < task_.rounds && !(task_.isWrong && outcome.failures > 0)) {
            ++outcome.trials;
            // What does not flush is not told that the disk is gone: it would go on for ever.
            const bool isWhileSaving = !task_.isWrong && random_() % 2 == 0;
            whileSaving += isWhileSaving ? 1 : 0;
            const auto known = saveAndCut(number, isWhileSaving);
            disk_.unmount();
            demand(disk_.mount(), "mounting");
            if (const auto found = numberOfCatalog(path(), known, known + 1)) {
                number = *found;
                continue;
            }
            ++outcome.failures;
            std::cout << "catalog " << known << " was saved and is gone after cut " << outcome.trials << '\n';
            number = prepare();
        }
        disk_.unmount();
        outcome.note = std::to_string(whileSaving) + " during a save, the others after one";
        return outcome;
    }

  private:
    std::string path() const { return disk_.place() + "/Library/applications.json"; }

    std::uint64_t prepare() const {
        std::filesystem::create_directories(disk_.place() + "/Library");
        overwrite(path(), numberedCatalog(0));
        ::sync();
        return 0;
    }

    /// The number of the last catalog that was said to be saved.
    std::uint64_t saveAndCut(std::uint64_t number, bool isWhileSaving) {
        const auto volume = Volume::open(disk_.place()).value();
        const auto files = makeFileManager(volume, "/Users/sample", "/Library");
        const auto save = [&] {
            const auto bytes = numberedCatalog(number + 1);
            if (task_.isWrong) {
                replaceWithoutFlush(path(), bytes);
            } else if (!files->writeAtomically(bytes,
                                               FileURL::fromPath("/Library/applications.json", false))) {
                return false;
            }
            ++number;
            return true;
        };
        for (auto saves = 1 + random_() % 3; saves > 0; --saves) {
            if (!save()) throw std::runtime_error("the disk refuses a save");
        }
        if (!isWhileSaving) {
            disk_.cutPower();
            return number;
        }
        std::thread saver([&] {
            while (save()) {
            }
        });
        std::this_thread::sleep_for(std::chrono::microseconds(random_() % 5000));
        disk_.cutPower();
        saver.join();
        return number;
    }

    const ProofTask& task_;
    std::mt19937_64 random_;
    const LoopDisk& disk_;
};

const ProofHarness powerCuts("PowerCuts", [](const ProofTask& task) {
    LoopDisk disk;
    if (!disk.attach()) return notHere("this machine has no loop devices for us");
    return PowerCuts(task, disk).run();
});

}  // namespace
}  // namespace orvane::test
