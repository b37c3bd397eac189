#pragma once

#include "Platform/FileManager.h"
#include "Platform/SystemFolders.h"

namespace orvane {

/// Whether the way to a file goes through a link below the fixed folder that the file lies in: one of the
/// shared folders, the home, else the root. The fixed folders themselves may be links, because people move
/// them to another disk; the way below them is made of what an identifier, a name or a catalog says, and a
/// link on it leads to what belongs to somebody else. The last component is not looked at: a link is removed
/// as a link. True where it cannot be told. Blocks on the disk.
bool leadsThroughLink(const FileManager& fileManager, const SystemFolders& folders, const FileURL& url);

}  // namespace orvane
