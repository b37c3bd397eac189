#include "tests/Fixtures/PrivateMounts.h"

#include <gtest/gtest.h>
#include <linux/close_range.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {

namespace {

void demand(bool isDone, const char* what) {
    if (!isDone) throw std::system_error(errno, std::generic_category(), what);
}

void writeSetting(const char* file, const std::string& value) {
    std::ofstream setting(file);
    setting << value;
    setting.close();
    demand(setting.good(), file);
}

/// Who may not have mounts of one's own may have them as the administrator of a user namespace in which there
/// is nobody else.
void enterOwnNamespaces() {
    const auto user = std::to_string(::geteuid());
    const auto group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWNS) == 0) return;
    demand(!isRoot() && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "mount namespace");
    writeSetting("/proc/self/uid_map", user + " " + user + " 1");
    writeSetting("/proc/self/setgroups", "deny");
    writeSetting("/proc/self/gid_map", group + " " + group + " 1");
}

/// Where programs that count the branches that they take do so (scripts/coverage). Nothing else lies in it.
void keepCountersWritable() {
    const char* const counters = std::getenv("ORVANE_COUNTERS");
    if (counters == nullptr) return;
    mount_attr attributes{};
    attributes.attr_clr = MOUNT_ATTR_RDONLY;
    demand(::mount(counters, counters, nullptr, MS_BIND, nullptr) == 0 &&
               ::mount_setattr(AT_FDCWD, counters, 0, &attributes, sizeof attributes) == 0,
           "folder of counters");
}

void enterPrivateMounts() {
    const auto temporaryFolder = std::filesystem::canonical(std::filesystem::temp_directory_path()).string();
    enterOwnNamespaces();
    mount_attr attributes{};
    attributes.attr_set = MOUNT_ATTR_RDONLY;
    attributes.propagation = MS_PRIVATE;
    demand(::mount_setattr(AT_FDCWD, "/", AT_RECURSIVE, &attributes, sizeof attributes) == 0,
           "read-only mounts");
    keepCountersWritable();
    demand(::mount("tmpfs", temporaryFolder.c_str(), "tmpfs", 0, "mode=1777") == 0, "temporary folder");
    // They lead to what was mounted before.
    demand(::close_range(STDERR_FILENO + 1, ~0U, 0) == 0, "descriptors");
    // So would the working folder, if it were the temporary one.
    demand(::chdir("/") == 0, "working folder");
}

}  // namespace

void inPrivateMounts(FunctionRef<void()> body) {
    static const bool isPossible = succeedsInChildProcess([] { enterPrivateMounts(); });
    if (!isPossible) GTEST_SKIP() << "this user cannot have mounts of its own here";
    inChildProcess([&] {
        enterPrivateMounts();
        body();
    });
}

}  // namespace orvane::test
