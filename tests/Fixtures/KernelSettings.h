#pragma once

#include <sys/syscall.h>
#include <sys/types.h>

#include <cerrno>
#include <string>

namespace orvane::test {

// What the kernel can be told to do to a process, for the children of `inChildProcess`; and what tests need
// of it beyond the standard library. All throw where the kernel refuses.

/// Makes a system call fail in this process from now on.
void forbidSystemCall(long number, int error);

/// Lets this process open no descriptor from `limit` on.
void limitDescriptors(unsigned limit);

/// Whether `enterOwnMountNamespace` works, and mounting in it.
bool mayMount();
/// From now on what this process mounts is seen by nobody else, and is gone with it.
void enterOwnMountNamespace();

/// Swaps two entries in one step: at no moment is one of them missing.
void exchangeEntries(const std::string& a, const std::string& b);

/// Locks a file or folder against any change (FS_IMMUTABLE_FL), or with `isAppendOnly` against all but
/// growth; false where the file system or the user's rights do not allow it. `unlock` takes either away
/// again.
bool lock(const std::string& path, bool isAppendOnly = false);
void unlock(const std::string& path);

}  // namespace orvane::test
