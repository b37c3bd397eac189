#pragma once

#include <optional>

#include "Platform/FileManager.h"

namespace orvane::test {

// What an entry remover does, to one entry alone.

inline Result<void> trashItem(FileManager& files, const FileURL& url,
                              const std::optional<FileIdentity>& folder = {}) {
    const auto remover = files.makeEntryRemover();
    return remover->look(url).and_then([&](const EntryFacts&) { return remover->moveToTrash(folder); });
}

inline Result<void> removeItem(FileManager& files, const FileURL& url,
                               const std::optional<FileIdentity>& folder = {}, Together together = alone) {
    const auto remover = files.makeEntryRemover();
    return remover->look(url).and_then([&](const EntryFacts&) { return remover->remove(folder, together); });
}

}  // namespace orvane::test
