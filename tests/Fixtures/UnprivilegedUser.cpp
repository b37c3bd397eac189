#include "tests/Fixtures/UnprivilegedUser.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace orvane::test {

namespace {

constexpr uid_t nobody = 65534;

enum Outcome : int { passed, failed, threw, skipped };

Outcome outcomeOf(FunctionRef<void()> body, bool isQuiet) {
    try {
        body();
    } catch (const std::exception& error) {
        if (!isQuiet) std::printf("The child threw: %s\n", error.what());
        return threw;
    }
    if (testing::Test::HasFailure()) return failed;
    return testing::Test::IsSkipped() ? skipped : passed;
}

/// A user without rights may have some all the same in a user namespace of its own.
void dropCapabilities() {
    __user_cap_header_struct header{.version = _LINUX_CAPABILITY_VERSION_3, .pid = 0};
    std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> none{};
    if (::syscall(SYS_capset, &header, none.data()) != 0) throw std::runtime_error("rights were kept");
}

/// Why the test that runs was skipped: what it said last.
std::string reasonOfSkip() {
    const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = result.total_part_count() - 1; i >= 0; --i) {
        if (result.GetTestPartResult(i).skipped()) return result.GetTestPartResult(i).message();
    }
    return {};
}

/// A text that a child leaves to its parent: in memory that both have, since a child may close all
/// descriptors.
class SharedText {
  public:
    SharedText() : text_(::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {
        if (text_ == MAP_FAILED) throw std::runtime_error("no shared memory");
    }
    ~SharedText() { ::munmap(text_, size); }
    SharedText(const SharedText&) = delete;
    SharedText& operator=(const SharedText&) = delete;

    void set(const std::string& text) { text.copy(static_cast<char*>(text_), size - 1); }
    std::string get() const { return static_cast<const char*>(text_); }

  private:
    static constexpr std::size_t size = 4096;
    void* text_;
};

struct Ending {
    /// What waitpid gives.
    int status = 0;
    /// Why the child skipped the test, where it did.
    std::string reason;
};

Ending run(FunctionRef<void()> body, bool isQuiet) {
    SharedText reason;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) {
        const auto outcome = outcomeOf(body, isQuiet);
        if (outcome == skipped) reason.set(reasonOfSkip());
        std::fflush(nullptr);
        ::_exit(outcome);
    }
    int status = 0;
    if (::waitpid(child, &status, 0) != child) throw std::runtime_error("the child was lost");
    return {status, reason.get()};
}

}  // namespace

void inChildProcess(FunctionRef<void()> body) {
    const auto [status, reason] = run(body, false);
    if (WIFSIGNALED(status)) ADD_FAILURE() << "the child was ended by signal " << WTERMSIG(status);
    if (!WIFEXITED(status) || WEXITSTATUS(status) == passed) return;
    if (WEXITSTATUS(status) == skipped) GTEST_SKIP() << reason;
    ADD_FAILURE() << "the child failed, as it says above";
}

void asUnprivilegedUser(FunctionRef<void()> body) {
    inChildProcess([&] {
        if (isRoot() && (::setgroups(0, nullptr) != 0 || ::setresgid(nobody, nobody, nobody) != 0 ||
                         ::setresuid(nobody, nobody, nobody) != 0)) {
            throw std::runtime_error("root could not become an unprivileged user");
        }
        dropCapabilities();
        body();
    });
}

bool succeedsInChildProcess(FunctionRef<void()> body) {
    const int status = run(body, true).status;
    return WIFEXITED(status) && WEXITSTATUS(status) == passed;
}

uid_t unprivilegedUser() {
    return isRoot() ? nobody : ::geteuid();
}

bool isRoot() {
    return ::geteuid() == 0;
}

void giveToUnprivilegedUser(const std::string& path) {
    if (!isRoot()) return;
    if (::lchown(path.c_str(), nobody, nobody) != 0) throw std::runtime_error("cannot give away " + path);
}

}  // namespace orvane::test
