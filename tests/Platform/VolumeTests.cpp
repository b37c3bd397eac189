#include "Platform/Posix/Volume.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

std::string read(const Volume& volume, const std::string& path) {
    const auto file = volume.openPath(path, O_RDONLY);
    if (!file) return "error: " + file.error().message();
    std::string bytes(256, '\0');
    const auto count = ::read(file->get(), bytes.data(), bytes.size());
    bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return bytes;
}

std::errc openError(const Volume& volume, std::string_view path, int flags = O_PATH) {
    const auto file = volume.openPath(path, flags);
    return file ? std::errc() : static_cast<std::errc>(file.error().value());
}

TEST(Volume, OpensThePathsOfTheMac) {
    const TestVolume mac;
    mac.makeFile("/Applications/Foo.app/Contents/Info.plist", "inside");
    EXPECT_EQ(read(*mac.volume(), "/Applications/Foo.app/Contents/Info.plist"), "inside");
    EXPECT_FALSE(mac.volume()->isMachineRoot());
}

TEST(Volume, ARootThatIsNoFolderIsAnError) {
    const TemporaryDirectory directory;
    EXPECT_EQ(Volume::open(directory.makeFile("file")).error(), std::errc::not_a_directory);
    EXPECT_EQ(Volume::open(directory.path("missing")).error(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(Volume::open("").error(), std::errc::no_such_file_or_directory);
}

TEST(Volume, AbsoluteLinksMeanWhatTheyMeanOnTheMac) {
    const TestVolume mac;
    mac.makeFile("/private/tmp/file", "inside");
    mac.makeLink("/tmp", "/private/tmp");
    EXPECT_EQ(read(*mac.volume(), "/tmp/file"), "inside");
}

TEST(Volume, AbsoluteLinksToThisMachineLeadNowhere) {
    const TestVolume mac;
    const auto secret = mac.makeOutsideFile("secret");
    mac.makeLink("/link", secret);
    mac.makeLink("/folder", mac.outside());
    EXPECT_EQ(openError(*mac.volume(), "/link"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(openError(*mac.volume(), "/folder/secret"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(::access(mac.machinePath("/link").c_str(), F_OK), 0) << "the link leads to no file at all";
}

TEST(Volume, DotDotLinksStayInside) {
    const TestVolume mac;
    mac.makeOutsideFile("secret");
    mac.makeLink("/a/link", "../../outside/secret");
    mac.makeLink("/a/folder", "../../outside");
    EXPECT_EQ(openError(*mac.volume(), "/a/link"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(openError(*mac.volume(), "/a/folder/secret"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(openError(*mac.volume(), "/../outside/secret"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(::access(mac.machinePath("/a/link").c_str(), F_OK), 0) << "the link leads to no file at all";
}

TEST(Volume, DotDotAboveTheRootIsTheRoot) {
    const TestVolume mac;
    mac.makeFile("/file", "inside");
    EXPECT_EQ(read(*mac.volume(), "/../../../file"), "inside");
}

TEST(Volume, LinksToTheProcFileSystemStayInside) {
    const TestVolume mac;
    mac.makeOutsideFile("secret");
    mac.makeLink("/link", "/proc/self/root" + mac.outside("secret"));
    mac.makeLink("/cwd", "/proc/self/cwd");
    EXPECT_EQ(openError(*mac.volume(), "/link"), std::errc::no_such_file_or_directory);
    EXPECT_EQ(openError(*mac.volume(), "/cwd"), std::errc::no_such_file_or_directory);
}

TEST(Volume, LinksInACircleAreAnError) {
    const TestVolume mac;
    mac.makeLink("/a", "/b");
    mac.makeLink("/b", "/a");
    EXPECT_EQ(openError(*mac.volume(), "/a"), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(openError(*mac.volume(), "/a", O_PATH | O_NOFOLLOW), std::errc());
}

TEST(Volume, PathsThatAreNotAbsoluteNameNothing) {
    const TestVolume mac;
    mac.makeFile("/file");
    using std::string_view_literals::operator""sv;
    constexpr auto nothing = std::errc::no_such_file_or_directory;
    for (const auto path : {""sv, "file"sv, "./file"sv, "../root/file"sv, "/file\0x"sv, "/fi\0/file"sv}) {
        EXPECT_EQ(openError(*mac.volume(), path), nothing) << path;
        EXPECT_EQ(mac.volume()->entry(path).error(), nothing) << path;
        EXPECT_EQ(mac.volume()->machinePath(path).error(), nothing) << path;
        EXPECT_FALSE(Volume::place(path)) << path;
    }
}

TEST(Volume, ASlashAtTheEndDoesNotFollowALastLink) {
    const TestVolume mac;
    mac.makeDirectory("/folder");
    mac.makeLink("/link", "folder");
    const auto link = mac.volume()->openPath("/link//", O_PATH | O_NOFOLLOW);
    ASSERT_TRUE(link);
    struct stat status {};
    ASSERT_EQ(::fstat(link->get(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    EXPECT_EQ(mac.volume()->entry("/link/")->name, "link");
}

TEST(Volume, EveryByteCanStandInAName) {
    const TestVolume mac;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '/') continue;
        const auto name = std::string("-") + static_cast<char>(byte) + "\n'\"";
        mac.makeFile("/" + name, "found");
        EXPECT_EQ(read(*mac.volume(), "/" + name), "found") << byte;
        EXPECT_EQ(mac.volume()->entry("/" + name)->name, name) << byte;
        EXPECT_EQ(mac.volume()->machinePath("/" + name).value(), mac.machinePath(name)) << byte;
    }
}

TEST(Volume, NamesAndPathsThatAreTooLongAreErrors) {
    const TestVolume mac;
    EXPECT_EQ(openError(*mac.volume(), "/" + std::string(256, 'a')), std::errc::filename_too_long);
    std::string path;
    for (int level = 0; level < 3000; ++level) path += "/a";
    EXPECT_EQ(openError(*mac.volume(), path), std::errc::filename_too_long);
    EXPECT_FALSE(mac.volume()->machinePath(path));
}

TEST(Volume, TheRootAndDotComponentsAreNoEntries) {
    const TestVolume mac;
    mac.makeDirectory("/folder");
    for (const std::string path : {"/", "//", "/.", "/..", "/folder/.", "/folder/..", "/folder/../"}) {
        EXPECT_EQ(mac.volume()->entry(path).error(), std::errc::invalid_argument) << path;
        EXPECT_EQ(mac.volume()->machinePath(path).error(), std::errc::invalid_argument) << path;
    }
}

TEST(Volume, AnEntryNeedNotExistButItsFolderMust) {
    const TestVolume mac;
    mac.makeFile("/file");
    EXPECT_EQ(mac.volume()->entry("/missing")->name, "missing");
    EXPECT_EQ(mac.volume()->entry("/missing/entry").error(), std::errc::no_such_file_or_directory);
    EXPECT_EQ(mac.volume()->entry("/file/entry").error(), std::errc::not_a_directory);
}

TEST(Volume, MachinePathResolvesTheFolderButNotTheEntry) {
    const TestVolume mac;
    mac.makeFile("/real/deep/file");
    mac.makeLink("/linked", "/real");
    mac.makeLink("/real/deep/link", mac.outside());
    const auto& volume = *mac.volume();
    EXPECT_EQ(volume.machinePath("/linked/deep/file").value(), mac.machinePath("real/deep/file"));
    EXPECT_EQ(volume.machinePath("/linked/deep/link").value(), mac.machinePath("real/deep/link"));
    EXPECT_EQ(volume.machinePath("/linked/../real/./deep//missing").value(),
              mac.machinePath("real/deep/missing"));
    EXPECT_EQ(volume.machinePath("/linked").value(), mac.machinePath("linked"));
}

TEST(Volume, MachinePathNeverLeavesTheRoot) {
    const TestVolume mac;
    mac.makeOutsideFile("secret");
    mac.makeLink("/escape", mac.outside());
    mac.makeLink("/up", "..");
    EXPECT_FALSE(mac.volume()->machinePath("/escape/secret"));
    EXPECT_EQ(mac.volume()->machinePath("/up/outside").value(), mac.machinePath("outside"));
}

TEST(Volume, AFolderMayBeCalledDeleted) {
    const TestVolume mac;
    mac.makeFile("/gone (deleted)/file");
    EXPECT_EQ(mac.volume()->machinePath("/gone (deleted)/file").value(),
              mac.machinePath("gone (deleted)/file"));
}

TEST(Volume, ARootThatWasMovedAwayHasNoMachinePaths) {
    const TemporaryDirectory directory;
    directory.makeFile("root/file");
    const auto volume = Volume::open(directory.path("root")).value();
    fs::rename(directory.path("root"), directory.path("moved"));
    EXPECT_FALSE(volume->machinePath("/file"));
    EXPECT_EQ(openError(*volume, "/file"), std::errc()) << "the folder itself is still open";
}

TEST(Volume, VolumePathStripsTheRootByWholeComponents) {
    const TestVolume mac;
    const auto& volume = *mac.volume();
    const auto root = fs::path(mac.machinePath("")).parent_path().string();
    EXPECT_EQ(volume.volumePath(root + "/Applications/Foo.app"), "/Applications/Foo.app");
    EXPECT_EQ(volume.volumePath(root), "/");
    EXPECT_EQ(volume.volumePath(root + "ling/file"), std::nullopt);
    EXPECT_EQ(volume.volumePath("/Applications"), std::nullopt);
    EXPECT_EQ(volume.volumePath("relative"), std::nullopt);
    EXPECT_EQ(volume.volumePath(""), std::nullopt);
}

TEST(Volume, ARootThatIsReachedByALinkIsKnownByItsRealName) {
    const TemporaryDirectory directory;
    directory.makeFile("root/file");
    directory.makeLink("link", "root");
    const auto volume = Volume::open(directory.path("link")).value();
    EXPECT_EQ(volume->machinePath("/file").value(), directory.path("root/file"));
    EXPECT_EQ(volume->volumePath(directory.path("root/file")), "/file");
    EXPECT_EQ(volume->volumePath(directory.path("link/file")), std::nullopt);
}

TEST(Volume, TheMachinesRootKeepsEveryPath) {
    const TemporaryDirectory directory;
    const auto file = directory.makeFile("file", "found");
    directory.makeLink("link", directory.path());
    const auto volume = Volume::open("/").value();
    EXPECT_TRUE(volume->isMachineRoot());
    EXPECT_EQ(read(*volume, file), "found");
    EXPECT_EQ(read(*volume, directory.path("link/file")), "found");
    EXPECT_EQ(volume->machinePath(directory.path("link/file")).value(), file);
    EXPECT_EQ(volume->machinePath("/entry").value(), "/entry");
    EXPECT_EQ(volume->volumePath(file), file);
    EXPECT_EQ(volume->volumePath("relative"), std::nullopt);
    EXPECT_TRUE(Volume::open("/../.").value()->isMachineRoot());
}

TEST(Volume, ClosesItsDescriptorsInAProgramThatItStarts) {
    const TestVolume mac;
    const auto folder = mac.volume()->openPath("/", O_RDONLY | O_DIRECTORY);
    EXPECT_NE(::fcntl(folder->get(), F_GETFD) & FD_CLOEXEC, 0);
    EXPECT_NE(::fcntl(mac.volume()->entry("/file")->folder.get(), F_GETFD) & FD_CLOEXEC, 0);
}

}  // namespace
}  // namespace orvane::test
