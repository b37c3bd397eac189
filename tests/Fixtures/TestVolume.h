#pragma once

#include <memory>
#include <string>

#include "Platform/FileManager.h"
#include "Platform/Posix/Volume.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

/// A throw-away Mac volume with an empty home, and a folder of this machine beside it that is outside of it.
/// Paths are the Mac's own: "/Users/sample" is the home.
class TestVolume {
  public:
    /// In the machine's folder for temporary files, or in another folder.
    explicit TestVolume(const std::string& parent = {});

    /// The machine's folder that is the volume's root, for making trees and looking at them.
    std::string machinePath(const std::string& path) const { return directory_.path("root/" + path); }
    /// A folder beside the root.
    std::string outside(const std::string& relative = {}) const {
        return directory_.path("outside/" + relative);
    }

    std::string makeDirectory(const std::string& path) const;
    std::string makeFile(const std::string& path, const std::string& contents = "x") const;
    std::string makeLink(const std::string& path, const std::string& target) const;
    std::string makeFIFO(const std::string& path) const;
    std::string makeOutsideFile(const std::string& relative, const std::string& contents = "x") const;

    /// Everything, inside and outside, as text to compare.
    std::string listing() const { return directory_.listing(); }
    bool contains(const std::string& path) const;

    /// Gives the whole tree, root and outside, to the user that `asUnprivilegedUser` runs as.
    void giveEverythingToUnprivilegedUser() const;

    static std::string home() { return "/Users/sample"; }
    /// Where its Trash lies, once there is one.
    static std::string trash() { return home() + "/.Trash"; }
    static FileURL url(const std::string& path) { return FileURL::fromPath(path, false); }
    FileManager& files() const { return *files_; }
    const std::shared_ptr<const Volume>& volume() const { return volume_; }

  private:
    TemporaryDirectory directory_;
    std::shared_ptr<const Volume> volume_;
    std::unique_ptr<FileManager> files_;
};

inline FileURL url(const std::string& path) {
    return TestVolume::url(path);
}

}  // namespace orvane::test
