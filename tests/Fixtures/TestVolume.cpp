#include "tests/Fixtures/TestVolume.h"

#include <filesystem>

#include "Platform/Posix/PosixFileManager.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {

namespace fs = std::filesystem;

TestVolume::TestVolume(const std::string& parent) : directory_(parent) {
    makeDirectory(home());
    directory_.makeDirectory("outside");
    volume_ = Volume::open(directory_.path("root")).value();
    files_ = makeFileManager(volume_, home(), home() + "/Library/Application Support");
}

std::string TestVolume::makeDirectory(const std::string& path) const {
    return directory_.makeDirectory("root/" + path);
}

std::string TestVolume::makeFile(const std::string& path, const std::string& contents) const {
    return directory_.makeFile("root/" + path, contents);
}

std::string TestVolume::makeLink(const std::string& path, const std::string& target) const {
    return directory_.makeLink("root/" + path, target);
}

std::string TestVolume::makeFIFO(const std::string& path) const {
    return directory_.makeFIFO("root/" + path);
}

std::string TestVolume::makeOutsideFile(const std::string& relative, const std::string& contents) const {
    return directory_.makeFile("outside/" + relative, contents);
}

bool TestVolume::contains(const std::string& path) const {
    return fs::symlink_status(machinePath(path)).type() != fs::file_type::not_found;
}

void TestVolume::giveEverythingToUnprivilegedUser() const {
    giveToUnprivilegedUser(directory_.path());
    for (const auto& entry : fs::recursive_directory_iterator(directory_.path())) {
        giveToUnprivilegedUser(entry.path().string());
    }
}

}  // namespace orvane::test
