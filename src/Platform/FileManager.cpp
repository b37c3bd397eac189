#include "Platform/FileManager.h"

namespace orvane {

std::string candidateNameInTrash(const std::string& name, std::uint64_t number) {
    if (number == 1) return name;
    const auto url = FileURL::fromPath("/" + name, false);
    const auto extension = url.pathExtension();
    const auto base = url.deletingPathExtension().lastPathComponent();
    return base + " " + std::to_string(number) + (extension.empty() ? "" : "." + extension);
}

}  // namespace orvane
