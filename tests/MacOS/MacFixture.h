#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/Volume.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#include "tests/MacOS/StandIns/StandIns.h"
#include "tests/MacOS/StandIns/SystemCallState.h"

namespace orvane::test {

/// Names that a Mac's disk can hold and that programs get wrong: with a picture, with an accent of its own as
/// the Mac's older disks spell it, with what a URL or a shell would read, and one that is no UTF-8.
inline const std::string awkwardNames[] = {"Fo\xF0\x9F\xA7\xA8o.app", "Cafe\xCC\x81.app",
                                           "50% off?#1 & 'more' \"than\" \\ that.app", "line\nbreak.app",
                                           "\xFF\xFE.app"};

/// A Mac whose own disk is this machine's, with a home in a folder that goes with the test.
class MacFixture {
  protected:
    MacFixture() {
        systemCallState() = {};
        mac_.home = directory_.makeDirectory("Users/sample");
        directory_.makeDirectory("Users/sample/.Trash");
        directory_.makeDirectory("Applications");
        mac_.applicationSupport = mac_.home + "/Library/Application Support";
        files_ = makeFileManager(volume_, mac_.home, mac_.applicationSupport);
    }
    ~MacFixture() {
        systemCallState() = {};
        [pool_ drain];
    }

    std::string at(const std::string& path) const { return directory_.path(path); }
    FileURL url(const std::string& path) const { return FileURL::fromPath(at(path), false); }
    bool isThere(const std::string& path) const { return files_->entryExists(url(path)); }

    NSAutoreleasePool* const pool_ = [[NSAutoreleasePool alloc] init];
    TemporaryDirectory directory_;
    StandInMac mac_;
    const std::shared_ptr<const Volume> volume_ = Volume::open("/").value();
    std::unique_ptr<FileManager> files_;
};

}  // namespace orvane::test
