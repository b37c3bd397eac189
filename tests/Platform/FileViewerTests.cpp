#include "Platform/Linux/FileViewer.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>

#include "Platform/Linux/ProcWorkspace.h"
#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/BackgroundProgram.h"
#include "tests/Fixtures/EnvironmentVariable.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

/// A desktop session of its own: a real bus with a file manager on it, or without, and something in the place
/// of the opener.
class FileViewer : public testing::Test {
  protected:
    using Value = std::optional<std::string>;

    FileViewer() {
        makeTool("xdg-open");
        directory_.makeFile("bus.conf", R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=)" +
                                            busPath() + R"(</listen>
<policy context="default"><allow eavesdrop="true"/><allow send_destination="*"/><allow own="*"/></policy></busconfig>)");
    }

    /// A program that writes down its first argument.
    void makeTool(const std::string& name) const {
        const auto file = directory_.makeFile(
            "tools/" + name, "#!/bin/sh\nprintf '%s\\n' \"$1\" >>'" + directory_.path(name + ".log") + "'\n");
        ::chmod(file.c_str(), 0755);
    }

    std::string busPath() const { return directory_.path("bus"); }
    void startBus() {
        bus_.emplace(std::vector<std::string>{"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
                                              "--config-file=" + directory_.path("bus.conf")});
        address_.emplace("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + busPath());
    }
    void startFileManager(const std::string& manner) {
        startBus();
        fileManager_.emplace(std::vector<std::string>{
            "python3", "-B", sourceDirectory() + "/tests/Platform/file-manager-stub.py",
            directory_.path("calls"), manner});
    }

    /// Shows a file, and waits for all that follows from it.
    void show(const std::string& path) const {
        inChildProcess([&] {
            // Whoever is left to himself becomes this process's child.
            ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
            showInFileViewer(path);
            while (::waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
            }
        });
    }

    std::string shown() const { return readFile(directory_.path("calls")); }
    std::string opened() const { return readFile(directory_.path("xdg-open.log")); }

    TemporaryDirectory directory_;
    const EnvironmentVariable path_{"PATH", directory_.path("tools") + ":" + std::getenv("PATH")};
    const EnvironmentVariable noRuntimeFolder_{"XDG_RUNTIME_DIR", std::nullopt};
    const EnvironmentVariable noWayland_{"WAYLAND_DISPLAY", std::nullopt};
    const EnvironmentVariable screen_{"DISPLAY", ":4711"};
    const EnvironmentVariable noBus_{"DBUS_SESSION_BUS_ADDRESS", std::nullopt};
    std::optional<EnvironmentVariable> address_;
    std::optional<BackgroundProgram> bus_;
    std::optional<BackgroundProgram> fileManager_;
};

TEST_F(FileViewer, IsAskedToShowTheFileByItsURL) {
    startFileManager("answer");
    show("/tmp/a b'\"\\\n$(x)\xc3\xa9\xff");
    show("/-rf");
    EXPECT_EQ(shown(),
              "ShowItems file:///tmp/a%20b'%22%5C%0A$(x)%C3%A9%FF\n"
              "ShowItems file:///-rf\n");
    EXPECT_EQ(opened(), "");
}

TEST_F(FileViewer, IsGivenThePlaceOnThisMachineWithLinksFollowed) {
    startFileManager("answer");
    const TestVolume volume;
    volume.makeFile("/Volumes/Data/Foo.app/Contents/Info.plist");
    volume.makeLink("/Applications", "/Volumes/Data");
    const auto bundles = makeBundleLoader(volume.files());
    const auto workspace = makeWorkspace(volume.volume(), *bundles);

    workspace->activateFileViewerSelecting(TestVolume::url("/Applications/Foo.app"));
    MainLoop().runUntil([&] { return shown().ends_with('\n'); });

    const auto place = volume.machinePath("Volumes/Data/Foo.app");
    EXPECT_EQ(shown(), "ShowItems " + FileURL::fromPath(place, false).absoluteString() + "\n");
}

TEST_F(FileViewer, IsFoundInTheRuntimeFolder) {
    startFileManager("answer");
    address_.reset();
    const EnvironmentVariable runtimeFolder("XDG_RUNTIME_DIR", directory_.path());
    show("/tmp/a");
    EXPECT_EQ(shown(), "ShowItems file:///tmp/a\n");
}

TEST_F(FileViewer, OpensTheFolderWhereNoFileManagerIsOnTheBus) {
    startBus();
    show("/tmp/a b/\xff.app");
    show("/bin");
    EXPECT_EQ(opened(), "file:///tmp/a%20b/\nfile:///\n");
}

TEST_F(FileViewer, OpensTheFolderWhereTheFileManagerRefuses) {
    startFileManager("refuse");
    show("/tmp/a");
    EXPECT_EQ(shown(), "ShowItems file:///tmp/a\n");
    EXPECT_EQ(opened(), "file:///tmp/\n");
}

TEST_F(FileViewer, OpensTheFolderWhereTheBusIsGoneOrNone) {
    for (const auto& address : {Value(), Value(""), Value("unix:path=/nowhere/bus"), Value("nonsense")}) {
        const EnvironmentVariable bus("DBUS_SESSION_BUS_ADDRESS", address);
        show("/tmp/a");
        EXPECT_EQ(opened(), "file:///tmp/\n") << address.value_or("none");
        ::unlink(directory_.path("xdg-open.log").c_str());
    }
}

TEST_F(FileViewer, OpensTheFolderWhereNobodyCanCall) {
    startFileManager("answer");
    const EnvironmentVariable path("PATH", directory_.path("tools"));
    show("/tmp/a");
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(opened(), "file:///tmp/\n");
}

TEST_F(FileViewer, IsNeverWaitedFor) {
    startFileManager("ignore");
    showInFileViewer("/tmp/a");
    // It is back, and nobody will ever answer.
    MainLoop().runUntil([&] { return shown().ends_with('\n'); });
    EXPECT_EQ(opened(), "");
    fileManager_.reset();
    MainLoop().runUntil([&] { return opened().ends_with('\n'); });
    EXPECT_EQ(opened(), "file:///tmp/\n");
}

TEST_F(FileViewer, IsQuietlyNothingWithoutADesktop) {
    makeTool("gdbus");
    const EnvironmentVariable noScreen("DISPLAY", std::nullopt);
    testing::internal::CaptureStderr();
    show("/tmp/a");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(readFile(directory_.path("gdbus.log")) + opened(), "");
    // A runtime folder is no bus.
    directory_.makeDirectory("runtime");
    const EnvironmentVariable runtimeFolder("XDG_RUNTIME_DIR", directory_.path("runtime"));
    show("/tmp/a");
    EXPECT_EQ(readFile(directory_.path("gdbus.log")) + opened(), "");
}

TEST_F(FileViewer, IsQuietlyNothingWhereADesktopHasNeither) {
    startBus();
    const EnvironmentVariable path("PATH", directory_.path());
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    show("/tmp/a");
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace orvane::test
