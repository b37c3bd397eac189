#pragma once

#include <sys/types.h>

#include "Platform/Result.h"

namespace orvane {

// What the administrator makes on somebody's disk belongs to whoever owns the folder that it is made in: else
// that person could no longer change, replace or remove it. Other users' files are their own anyway.

/// Gives a file that this process has just made to the owner and the group of an open folder, if this is the
/// administrator. The file is open; the folder may be open for searching only.
Result<void> giveToOwnerOf(int folder, int file);

/// Makes a folder in an open one; EEXIST where the name is taken. On somebody else's disk the administrator
/// gives it to the owner of the one around it before it has its name: by its descriptor, and only while it is
/// empty, so that what somebody puts in its place meanwhile stays whose it is.
Result<void> makeFolder(int folder, const char* name, mode_t mode);

}  // namespace orvane
