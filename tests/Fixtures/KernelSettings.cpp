#include "tests/Fixtures/KernelSettings.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <system_error>

#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {

namespace {

void require(bool isDone, const char* what) {
    if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

bool changeFlags(const std::string& path, int set, int clear) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    int flags = 0;
    if (!file || ::ioctl(file.get(), FS_IOC_GETFLAGS, &flags) != 0) return false;
    flags = (flags | set) & ~clear;
    return ::ioctl(file.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

}  // namespace

void forbidSystemCall(long number, int error) {
    std::array filter{
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(error)),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    sock_fprog program{.len = filter.size(), .filter = filter.data()};
    require(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "no new privileges");
    require(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0, "system call filter");
}

void limitDescriptors(unsigned limit) {
    // The address sanitizer needs descriptors when it sees an object's type for the first time: let it see
    // those of errors.
    for (const auto* const category : {&std::generic_category(), &std::system_category()}) {
        [[maybe_unused]] const volatile bool isSeen =
            std::error_code(EMFILE, *category) == std::errc::too_many_files_open;
    }
    const rlimit limits{.rlim_cur = limit, .rlim_max = limit};
    require(::setrlimit(RLIMIT_NOFILE, &limits) == 0, "descriptor limit");
}

bool mayMount() {
    return succeedsInChildProcess([] {
        enterOwnMountNamespace();
        require(::mount("tmpfs", "/tmp", "tmpfs", 0, nullptr) == 0, "mount");
    });
}

void enterOwnMountNamespace() {
    require(::unshare(CLONE_NEWNS) == 0, "mount namespace");
    require(::mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "private mounts");
}

void exchangeEntries(const std::string& a, const std::string& b) {
    require(::renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0, "exchange");
}

bool lock(const std::string& path, bool isAppendOnly) {
    return changeFlags(path, isAppendOnly ? FS_APPEND_FL : FS_IMMUTABLE_FL, 0);
}

void unlock(const std::string& path) {
    changeFlags(path, 0, FS_IMMUTABLE_FL | FS_APPEND_FL);
}

}  // namespace orvane::test
