#pragma once

#include <vector>

#include "Models/FileIdentity.h"
#include "Platform/Result.h"

namespace orvane {

/// The way from an open folder up to the machine's root. It is gone once, when it is asked for.
class WayUp {
  public:
    /// The folder stays open for as long as this is used.
    explicit WayUp(int folder) : folder_(folder) {}

    int folder() const { return folder_; }
    /// Whether the folder is `other` or lies in it, told by identity.
    Result<bool> passes(const FileIdentity& other);

  private:
    int folder_;
    /// From the folder to the root; empty before the way has been gone.
    std::vector<FileIdentity> folders_;
};

}  // namespace orvane
