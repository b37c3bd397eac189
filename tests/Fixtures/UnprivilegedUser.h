#pragma once

#include <sys/types.h>

#include <string>

#include "Text/FunctionRef.h"

namespace orvane::test {

/// Runs `body` in a forked child, so that what it does to the process (limits, mounts, rights) ends with it,
/// and fails the test when an expectation in it fails (the child prints which), when it throws or is killed.
/// A child that skips skips the test, for its reason.
void inChildProcess(FunctionRef<void()> body);

/// The same as a user without rights: root's child becomes the user below, anybody else's stays who it is.
void asUnprivilegedUser(FunctionRef<void()> body);

/// Whether a forked child gets through `body` without throwing; whatever it says is nobody's failure.
bool succeedsInChildProcess(FunctionRef<void()> body);

/// The user that the body above runs as.
uid_t unprivilegedUser();

bool isRoot();

/// Gives an entry, not what lies in it, to that user; a link itself, not its target.
void giveToUnprivilegedUser(const std::string& path);

}  // namespace orvane::test
