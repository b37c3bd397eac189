#include "Platform/Posix/DirectoryStack.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

#include "Platform/Posix/FileStatus.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {
namespace {

TEST(OpenAbove, IsTheFolderThatIsExpectedOrSaysWhyNot) {
    const TemporaryDirectory directory;
    const FileDescriptor folder(
        ::open(directory.makeDirectory("folder").c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const FileDescriptor file(::open(directory.makeFile("file").c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor outer(::open(directory.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const auto expected = identityOf(outer.get()).value();

    const auto above = openAbove(folder.get(), expected);
    ASSERT_TRUE(above);
    EXPECT_EQ(identityOf(above->get()).value(), expected);
    const auto another = openAbove(folder.get(), identityOf(folder.get()).value());
    EXPECT_EQ(another.error(), std::error_code(ESTALE, std::generic_category()));
    EXPECT_EQ(openAbove(file.get(), expected).error(), std::errc::not_a_directory);
}

}  // namespace
}  // namespace orvane::test
