#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>

#include "Models/FileIdentity.h"
#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/Volume.h"
#include "Platform/Posix/WayUp.h"
#include "Platform/Result.h"
#include "Text/FunctionRef.h"

namespace orvane {

/// A folder that stays open from one use to the next, with the way up from it.
class KeptFolder {
  public:
    using Opener = FunctionRef<Result<FileDescriptor>()>;

    /// Makes it the folder that a path leads to now, which `opener` opens. It stays the one that it is where
    /// the same path still leads to that very folder, of the same owner, through no link: then what lies
    /// above it is what it was, too. After an error it is none.
    Result<void> open(const Volume& volume, std::string_view path, Opener opener);

    int descriptor() const { return descriptor_.get(); }
    FileIdentity identity() const;
    /// Whether the way to it was seen to go through no link.
    bool isReachedDirectly() const { return isReachedDirectly_; }
    WayUp& wayUp() { return wayUp_; }

  private:
    /// Whether its path leads to it through no link.
    bool isWhereItWas(const Volume& volume) const;

    std::string path_;
    FileDescriptor descriptor_;
    struct stat status_ {};
    bool isReachedDirectly_ = false;
    WayUp wayUp_{-1};
};

}  // namespace orvane
