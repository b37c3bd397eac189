#include "Platform/Linux/SealedMemory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "tests/Fixtures/SystemCallCues.h"

namespace orvane::test {
namespace {

TEST(SealedMemory, HoldsTheTextAndNobodyCanChangeIt) {
    const auto memory = sealedMemory("text");
    ASSERT_TRUE(memory);
    EXPECT_EQ(::pwrite(memory->get(), "TEXT", 4, 0), -1);
    EXPECT_EQ(::ftruncate(memory->get(), 2), -1);
    EXPECT_EQ(textInMemory(memory->get(), 4), "text");
    EXPECT_EQ(readToEnd(memory->get(), 10), "text");
    EXPECT_EQ(textInMemory(memory->get(), 4), "text") << "wherever others have read it to";
}

TEST(SealedMemory, OfWhatIsLongerOnlySoMuchIsReadThatItShows) {
    EXPECT_EQ(readToEnd(sealedMemory("text")->get(), 3), "text");
    EXPECT_EQ(readToEnd(sealedMemory("text")->get(), 2), "tex");
    EXPECT_EQ(textInMemory(sealedMemory("text")->get(), 3).error(), std::errc::no_such_file_or_directory);
}

TEST(SealedMemory, WhatIsNoFileHoldsNoText) {
    const FileDescriptor folder(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    EXPECT_EQ(textInMemory(folder.get(), 1U << 20U).error(), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(textInMemory(-1, 1));
    EXPECT_FALSE(readToEnd(folder.get(), 1));
}

TEST(SealedMemory, ACallThatFailsLeavesNothingHalfDone) {
    Result<FileDescriptor> made;
    const auto isTold = [&] { EXPECT_EQ(made.error(), std::errc::io_error); };
    EXPECT_EQ(
        onEachFailure(
            {SYS_memfd_create, SYS_pwrite64, SYS_fcntl}, EIO, [&] { made = sealedMemory("text"); }, isTold),
        3U);
    EXPECT_EQ(textInMemory(made->get(), 4), "text");
    EXPECT_EQ(onEachFailure(
                  {SYS_memfd_create, SYS_ftruncate}, EIO, [&] { made = sharedMemory(4); }, isTold),
              2U);
    EXPECT_EQ(textInMemory(made->get(), 4), std::string(4, '\0'));

    Result<std::string> got;
    const auto memory = sealedMemory("text");
    const auto isNotGot = [&] { EXPECT_EQ(got.error(), std::errc::io_error); };
    EXPECT_EQ(onEachFailure(
                  {SYS_pread64}, EIO, [&] { got = textInMemory(memory->get(), 4); }, isNotGot),
              1U);
    EXPECT_EQ(onEachFailure(
                  {SYS_read}, EIO, [&] { got = readToEnd(memory->get(), 4); }, isNotGot),
              2U);
}

TEST(SealedMemory, WhatWasInterruptedGoesOn) {
    std::size_t calls = 0;
    const auto interruptFirst = [&](const PendingCall&) { return calls++ == 0 ? failWith(EINTR) : proceed; };
    Result<FileDescriptor> made;
    onCue({SYS_pwrite64}, interruptFirst, [&] { made = sealedMemory("text"); });
    Result<std::string> got;
    calls = 0;
    onCue({SYS_pread64}, interruptFirst, [&] { got = textInMemory(made->get(), 4); });
    EXPECT_EQ(got, "text");
    calls = 0;
    onCue({SYS_read}, interruptFirst, [&] { got = readToEnd(made->get(), 4); });
    EXPECT_EQ(got, "text");
}

TEST(SealedMemory, WhatEndsBeforeItsLengthHoldsNoText) {
    Result<std::string> got;
    const auto memory = sealedMemory("text");
    onCue(
        {SYS_pread64}, [](const PendingCall&) { return answer(0); },
        [&] { got = textInMemory(memory->get(), 4); });
    EXPECT_EQ(got.error(), std::errc::no_such_file_or_directory);
}

}  // namespace
}  // namespace orvane::test
