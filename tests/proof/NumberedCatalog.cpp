#include "tests/proof/NumberedCatalog.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "Formats/CatalogCoding.h"
#include "Platform/Posix/FileDescriptor.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

namespace {

std::string madeCatalog(std::uint64_t number) {
    constexpr int applications = 300;
    std::vector<InstalledApplication> all;
    for (int i = 0; i < applications; ++i) {
        InstalledApplication application;
        application.name = "Application " + std::to_string(i);
        application.url = FileURL::fromPath("/Applications/" + application.name + ".app", true);
        application.version = std::to_string(number);
        application.size = static_cast<std::int64_t>(number);
        all.push_back(std::move(application));
    }
    return encodeCatalog(all).value();
}

}  // namespace

const std::string& numberedCatalog(std::uint64_t number) {
    static const auto all = [] {
        std::array<std::string, 16> catalogs;
        for (std::size_t i = 0; i < catalogs.size(); ++i) catalogs.at(i) = madeCatalog(i);
        return catalogs;
    }();
    return all.at(number % all.size());
}

std::optional<std::uint64_t> numberOfCatalog(const std::string& path, std::uint64_t first,
                                             std::uint64_t last) {
    const auto found = readFile(path);
    for (auto number = last + 1; number-- > first;) {
        if (found == numberedCatalog(number)) return number;
    }
    return std::nullopt;
}

namespace {

void writeInPieces(const std::string& path, const std::string& bytes) {
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    constexpr std::size_t piece = 4096;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        if (::write(file.get(), bytes.data() + at, std::min(piece, bytes.size() - at)) < 0) return;
    }
}

}  // namespace

void overwrite(const std::string& path, const std::string& bytes) {
    writeInPieces(path, bytes);
}

void replaceWithoutFlush(const std::string& path, const std::string& bytes) {
    writeInPieces(path + ".new", bytes);
    std::rename((path + ".new").c_str(), path.c_str());
}

}  // namespace orvane::test
