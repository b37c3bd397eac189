#include "tests/Fixtures/TemporaryDirectory.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace orvane::test {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory(const std::string& parent) {
    const auto folder = fs::canonical(parent.empty() ? fs::temp_directory_path() : fs::path(parent));
    std::string pattern = (folder / "orvane-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    // Tests take permissions away; give them back, so that the tree can go.
    for (auto it =
             fs::recursive_directory_iterator(path_, fs::directory_options::skip_permission_denied, ignored);
         it != fs::recursive_directory_iterator(); it.increment(ignored)) {
        if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(path_, ignored);
}

std::string TemporaryDirectory::path(const std::string& relative) const {
    return relative.starts_with('/') ? path_ + relative : path_ + "/" + relative;
}

std::string TemporaryDirectory::makeDirectory(const std::string& relative) const {
    fs::create_directories(path(relative));
    return path(relative);
}

std::string TemporaryDirectory::makeFile(const std::string& relative, const std::string& contents) const {
    const auto file = path(relative);
    fs::create_directories(fs::path(file).parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return file;
}

std::string TemporaryDirectory::makeLink(const std::string& relative, const std::string& target) const {
    const auto link = path(relative);
    fs::create_directories(fs::path(link).parent_path());
    fs::create_symlink(target, link);
    return link;
}

std::string TemporaryDirectory::makeFIFO(const std::string& relative) const {
    const auto fifo = path(relative);
    fs::create_directories(fs::path(fifo).parent_path());
    if (::mkfifo(fifo.c_str(), 0600) != 0) throw std::runtime_error("no FIFO");
    return fifo;
}

std::string TemporaryDirectory::listing() const {
    std::vector<std::string> lines;
    for (const auto& entry : fs::recursive_directory_iterator(path_)) {
        struct stat status {};
        ::lstat(entry.path().c_str(), &status);
        std::string line = std::to_string(status.st_mode);
        if (S_ISREG(status.st_mode)) line += " " + std::to_string(status.st_size);
        line += " " + entry.path().string().substr(path_.size());
        if (S_ISLNK(status.st_mode)) line += " -> " + fs::read_symlink(entry.path()).string();
        lines.push_back(std::move(line));
    }
    std::sort(lines.begin(), lines.end(),
              [](const auto& a, const auto& b) { return a.substr(a.find('/')) < b.substr(b.find('/')); });
    std::string text;
    for (const auto& line : lines) text += line + "\n";
    return text;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string memoryFolder() {
    const std::string folder = "/dev/shm";
    return ::access(folder.c_str(), W_OK | X_OK) == 0 ? folder : std::string();
}

}  // namespace orvane::test
