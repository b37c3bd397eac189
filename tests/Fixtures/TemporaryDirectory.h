#pragma once

#include <string>

namespace orvane::test {

/// A fresh folder of this machine, removed with everything in it at the end of its life. Its path is real: no
/// link in it.
class TemporaryDirectory {
  public:
    /// In the machine's folder for temporary files, or in another folder.
    explicit TemporaryDirectory(const std::string& parent = {});
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::string& path() const { return path_; }
    /// The path of something in it; `relative` may begin with a slash.
    std::string path(const std::string& relative) const;

    /// Creates a folder with its parents; gives its path back.
    std::string makeDirectory(const std::string& relative) const;
    /// Creates a file with its parents; gives its path back.
    std::string makeFile(const std::string& relative, const std::string& contents = "x") const;
    std::string makeLink(const std::string& relative, const std::string& target) const;
    std::string makeFIFO(const std::string& relative) const;

    /// Everything in it, one line per entry in sorted order: type, mode, size, path, link target. For
    /// comparing the whole tree before and after.
    std::string listing() const;

  private:
    std::string path_;
};

std::string readFile(const std::string& path);

/// A folder whose files live in memory, for tests that make and remove a hundred thousand of them; empty
/// where the machine has none.
std::string memoryFolder();

}  // namespace orvane::test
