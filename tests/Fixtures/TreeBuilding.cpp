#include "tests/Fixtures/TreeBuilding.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "Platform/Posix/FileDescriptor.h"

namespace orvane::test {

namespace fs = std::filesystem;

void makeDeepTree(const std::string& parent, int levels, const std::string& name) {
    FileDescriptor folder(::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < levels && folder; ++level) {
        if (::mkdirat(folder.get(), name.c_str(), 0755) != 0) break;
        folder = FileDescriptor(::openat(folder.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    const FileDescriptor file(::openat(folder.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    if (!file || ::write(file.get(), "x", 1) != 1)
        throw std::system_error(errno, std::generic_category(), "deep tree");
}

int makeWideDeepTree(const std::string& parent, int width, int depth) {
    int entries = 0;
    const auto makeFile = [&](const fs::path& path) {
        std::ofstream(path) << "x";
        ++entries;
    };
    for (int chain = 0; chain < width; ++chain) {
        fs::path folder(parent);
        for (int level = 0; level < depth; ++level) {
            // A file before and one after the folder leave something to read on both ways.
            makeFile(folder / ("a" + std::to_string(chain)));
            folder /= "chain" + std::to_string(chain);
            fs::create_directory(folder);
            ++entries;
            makeFile(folder.parent_path() / ("z" + std::to_string(chain)));
        }
    }
    return entries;
}

unsigned highestDescriptor() {
    unsigned highest = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        highest = std::max(highest, static_cast<unsigned>(std::stoul(entry.path().filename().string())));
    }
    return highest;
}

}  // namespace orvane::test
