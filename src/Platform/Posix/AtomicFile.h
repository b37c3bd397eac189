#pragma once

#include <string_view>

#include "Platform/Posix/Volume.h"
#include "Platform/Result.h"

namespace orvane {

/// Replaces a file's contents durably: whatever happens meanwhile, the old contents are there or the new ones
/// are. A file keeps its mode (and, when the administrator writes it, its owner); a new one is the user's
/// alone, and one that the administrator makes is the folder's owner's. What a crash left of earlier saves in
/// the same folder is cleared away. A link is replaced by a file and never written through: whoever planted
/// it does not choose what gets overwritten.
Result<void> replaceFile(const Volume::Entry& place, std::string_view bytes);

}  // namespace orvane
