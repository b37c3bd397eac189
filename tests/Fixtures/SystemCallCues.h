#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>

#include "Text/FunctionRef.h"

namespace orvane::test {

/// A system call that a thread is about to make and that the kernel has not seen yet.
struct PendingCall {
    long number = 0;
    std::array<std::uint64_t, 6> arguments{};

    /// A descriptor of the other thread. The thread sanitizer does not know that this thread is waited for:
    /// only what goes by number (syscall) or by /proc/self/fd may use it.
    int descriptor(std::size_t argument) const { return static_cast<int>(arguments[argument]); }
    /// The NUL-terminated string that an argument points to.
    std::string text(std::size_t argument) const;
    /// The name of the file or folder that an argument, a descriptor, stands for.
    std::string nameOf(std::size_t argument) const;
    /// The flags of a call that opens a file: open, openat or openat2.
    std::uint64_t openFlags() const;
};

/// What becomes of a pending call: the kernel is asked, or it is not and the caller is told something.
struct CallOutcome {
    /// Absent where the kernel is asked.
    std::optional<std::int64_t> value;
    int error = 0;
};
constexpr CallOutcome proceed{};
constexpr CallOutcome failWith(int error) {
    return {.value = -1, .error = error};
}
constexpr CallOutcome answer(std::int64_t value) {
    return {.value = value, .error = 0};
}

/// Runs `action` on a thread of its own. Whenever it is about to make one of the system calls of these
/// numbers it stops, and `director`, on the calling thread, changes what it likes on the disk and decides
/// what becomes of the call: races without luck, and errors that no disk gives on demand. What either throws
/// is thrown once the action is over.
void onCue(std::initializer_list<long> numbers, FunctionRef<CallOutcome(const PendingCall&)> director,
           FunctionRef<void()> action);

/// Runs `action` again and again, each time with the next one of the system calls of these numbers failing
/// with that error, until it makes no more of them; `check`, on the calling thread, looks at what came of
/// each failure. Gives how many there were.
std::size_t onEachFailure(std::initializer_list<long> numbers, int error, FunctionRef<void()> action,
                          FunctionRef<void()> check);

}  // namespace orvane::test
