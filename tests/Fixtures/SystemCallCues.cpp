#include "tests/Fixtures/SystemCallCues.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <filesystem>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

#include "Platform/Posix/FileDescriptor.h"

namespace orvane::test {

namespace {

std::system_error lastError(const char* what) {
    return {errno, std::generic_category(), what};
}

/// From now on the calls of these numbers that this thread makes are told to the descriptor given back.
int announceCalls(std::initializer_list<long> numbers) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    auto toTheEnd = static_cast<std::uint8_t>(numbers.size());
    for (const long number : numbers) {
        filter.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), toTheEnd, 0));
        --toTheEnd;
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    sock_fprog program{.len = static_cast<unsigned short>(filter.size()), .filter = filter.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) throw lastError("no new privileges");
    const auto listener = static_cast<int>(
        ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
    if (listener < 0) throw lastError("system call listener");
    return listener;
}

void decide(int listener, FunctionRef<CallOutcome(const PendingCall&)> director,
            std::exception_ptr& problem) {
    seccomp_notif call{};
    if (::ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &call) != 0) return;
    PendingCall pending{.number = call.data.nr, .arguments = {}};
    for (std::size_t i = 0; i < pending.arguments.size(); ++i) pending.arguments[i] = call.data.args[i];
    auto outcome = proceed;
    try {
        if (!problem) outcome = director(pending);
    } catch (...) {
        problem = std::current_exception();
    }
    seccomp_notif_resp response{};
    response.id = call.id;
    if (!outcome.value) response.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
    response.val = outcome.error == 0 ? outcome.value.value_or(0) : 0;
    response.error = -outcome.error;
    ::ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response);
}

/// Asked of the kernel: the thread that the bytes belong to does not know that they are read.
void readArgument(std::uint64_t address, void* bytes, std::size_t count) {
    const iovec local{bytes, count};
    const iovec remote{reinterpret_cast<void*>(address), count};
    if (::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0) != static_cast<ssize_t>(count)) {
        throw lastError("argument");
    }
}

}  // namespace

std::string PendingCall::text(std::size_t argument) const {
    std::string text;
    for (char byte = 0;; text += byte) {
        readArgument(arguments[argument] + text.size(), &byte, sizeof byte);
        if (byte == 0) return text;
    }
}

std::string PendingCall::nameOf(std::size_t argument) const {
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor(argument))).filename();
}

std::uint64_t PendingCall::openFlags() const {
    if (number == SYS_openat) return arguments[2];
    if (number != SYS_openat2) return arguments[1];
    std::uint64_t flags = 0;
    readArgument(arguments[2], &flags, sizeof flags);
    return flags;
}

void onCue(std::initializer_list<long> numbers, FunctionRef<CallOutcome(const PendingCall&)> director,
           FunctionRef<void()> action) {
    std::promise<int> announced;
    std::exception_ptr problem;
    std::exception_ptr actionsProblem;
    std::thread actor([&] {
        try {
            announced.set_value(announceCalls(numbers));
        } catch (...) {
            announced.set_exception(std::current_exception());
            return;
        }
        try {
            action();
        } catch (...) {
            actionsProblem = std::current_exception();
        }
    });
    try {
        const FileDescriptor listener(announced.get_future().get());
        // The kernel hangs up when the thread has ended.
        while (true) {
            pollfd polled{listener.get(), POLLIN, 0};
            if (::poll(&polled, 1, -1) < 0 && errno != EINTR) break;
            if ((polled.revents & POLLIN) != 0) {
                decide(listener.get(), director, problem);
            } else if (polled.revents != 0) {
                break;
            }
        }
    } catch (...) {
        problem = std::current_exception();
    }
    actor.join();
    if (problem) std::rethrow_exception(problem);
    if (actionsProblem) std::rethrow_exception(actionsProblem);
}

std::size_t onEachFailure(std::initializer_list<long> numbers, int error, FunctionRef<void()> action,
                          FunctionRef<void()> check) {
    for (std::size_t failing = 0;; ++failing) {
        std::size_t calls = 0;
        long failed = 0;
        onCue(
            numbers,
            [&](const PendingCall& call) {
                if (calls++ != failing) return proceed;
                failed = call.number;
                return failWith(error);
            },
            action);
        if (calls <= failing) return failing;
        SCOPED_TRACE("call " + std::to_string(failing) + ", a system call of number " +
                     std::to_string(failed));
        check();
    }
}

}  // namespace orvane::test
