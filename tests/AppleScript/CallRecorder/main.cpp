#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

// In the place of a tool: writes down how it was called, and ends in a way that follows from that, for better
// or worse. Tens of thousands of calls are made in a test, so it starts without the C library, whose own
// start takes longer than all that is done here.

namespace {

constexpr std::size_t mostBytes = 1 << 16;
constexpr int nothingWasWritten = 99;

char record[mostBytes];

[[noreturn]] void end(int status) {
    for (;;) ::syscall(SYS_exit_group, status);
}

void write(int file, const char* bytes, std::size_t size) {
    if (::syscall(SYS_write, file, bytes, size) != static_cast<long>(size)) end(nothingWasWritten);
}

}  // namespace

/// `stack` is as the kernel leaves it: the number of arguments, then they, each ended by a zero byte.
extern "C" [[noreturn]] void recordCall(const char* const* stack) {
    constexpr std::size_t lengthOfCount = sizeof(std::uint32_t);
    const auto count = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(stack[0]));
    std::size_t size = 0;
    std::size_t last = 0;
    for (std::size_t i = 0; i < lengthOfCount; ++i) record[size++] = static_cast<char>(count >> (8 * i));
    std::uint32_t hash = 2166136261;
    for (std::uint32_t i = 1; i <= count; ++i) {
        last = size;
        const auto* const argument = stack[i];
        for (std::size_t at = 0;; ++at) {
            if (size == mostBytes) end(nothingWasWritten);
            record[size++] = argument[at];
            hash = (hash ^ static_cast<unsigned char>(argument[at])) * 16777619;
            if (argument[at] == '\0') break;
        }
    }
    const auto calls = ::syscall(SYS_openat, AT_FDCWD, "/calls", O_WRONLY | O_APPEND | O_CLOEXEC, 0);
    if (calls < 0) end(nothingWasWritten);
    write(static_cast<int>(calls), record, size);

    constexpr int ways = 3;
    const auto way = (hash >> 8) % ways;
    record[size - 1] = '\n';
    if (way != 0) write(static_cast<int>(way), record + last, size - last);
    end(way == STDERR_FILENO ? static_cast<int>(1 + (hash >> 12) % 90) : 0);
}

asm(".globl _start\n"
    "_start:\n"
#if defined(__x86_64__)
    "    mov %rsp, %rdi\n"
    "    call recordCall\n"
#elif defined(__aarch64__)
    "    mov x0, sp\n"
    "    bl recordCall\n"
#else
#error "how a program starts on this processor is to be said here"
#endif
);
