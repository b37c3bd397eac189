#include "Platform/FileManager.h"

namespace orvane {

Result<void> FileManager::trashItem(const FileURL& url, const std::optional<FileIdentity>& folder) {
    const auto remover = makeEntryRemover();
    return remover->look(url).and_then([&](const EntryFacts&) { return remover->moveToTrash(folder); });
}

Result<void> FileManager::removeItem(const FileURL& url, const std::optional<FileIdentity>& folder,
                                     Together together) {
    const auto remover = makeEntryRemover();
    return remover->look(url).and_then([&](const EntryFacts&) { return remover->remove(folder, together); });
}

std::string candidateNameInTrash(const std::string& name, std::uint64_t number) {
    if (number == 1) return name;
    const auto url = FileURL::fromPath("/" + name, false);
    const auto extension = url.pathExtension();
    const auto base = url.deletingPathExtension().lastPathComponent();
    return base + " " + std::to_string(number) + (extension.empty() ? "" : "." + extension);
}

}  // namespace orvane
