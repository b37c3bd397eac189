// The bare work of showing a saved list: the catalog's file read and parsed, each application's bundle looked
// for, and the same bytes written back durably. It knows no rules, makes no table and sorts nothing.
//
//     orvane-list-floor ROOT CATALOG
//
// Prints how many applications are there.
#include <fcntl.h>
#include <linux/openat2.h>
#include <simdjson.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

bool isThere(int root, const std::string& path) {
    open_how how{};
    how.flags = O_PATH | O_CLOEXEC;
    how.resolve = RESOLVE_IN_ROOT | RESOLVE_NO_MAGICLINKS;
    const auto opened = static_cast<int>(::syscall(SYS_openat2, root, path.c_str(), &how, sizeof how));
    if (opened >= 0) ::close(opened);
    return opened >= 0;
}

bool writeDurably(const std::string& file, std::string_view bytes) {
    const auto beside = file + ".new";
    const int written = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (written < 0) return false;
    const auto count = ::write(written, bytes.data(), bytes.size());
    const bool isFlushed = ::fsync(written) == 0;
    ::close(written);
    if (count != static_cast<ssize_t>(bytes.size()) || !isFlushed) return false;
    if (::rename(beside.c_str(), file.c_str()) != 0) return false;
    const auto parent = std::filesystem::path(file).parent_path();
    const int folder = ::open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isDone = folder >= 0 && ::fsync(folder) == 0;
    ::close(folder);
    return isDone;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: orvane-list-floor ROOT CATALOG\n", stderr);
        return 2;
    }
    const int root = ::open(argv[1], O_PATH | O_DIRECTORY | O_CLOEXEC);
    simdjson::ondemand::parser parser;
    int installed = 0;
    try {
        const simdjson::padded_string bytes = simdjson::padded_string::load(argv[2]);
        auto document = parser.iterate(bytes);
        constexpr std::string_view scheme = "file://";
        for (auto application : document.get_array()) {
            std::string_view url = application["url"].get_string();
            url.remove_prefix(scheme.size());
            if (isThere(root, std::string(url))) ++installed;
        }
        if (!writeDurably(argv[2], {bytes.data(), bytes.size()})) {
            std::perror(argv[2]);
            return 1;
        }
    } catch (const simdjson::simdjson_error& error) {
        std::fprintf(stderr, "%s: %s\n", argv[2], error.what());
        return 1;
    }
    std::printf("%d\n", installed);
    return 0;
}
