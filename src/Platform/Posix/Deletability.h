#pragma once

#include "Platform/Posix/Volume.h"

namespace orvane {

/// Whether the kernel would let the effective user remove the entry from its folder, whatever it holds:
/// rights on the folder, ownership in a sticky one, a file system that can be written, an entry that is
/// neither locked nor mounted on. False for an entry that is not there.
bool isDeletable(const Volume::Entry& entry);

}  // namespace orvane
