#pragma once

#include <string>
#include <string_view>

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Result.h"

namespace orvane {

/// A file in memory that holds the text and that nobody can change any more, this process included; read from
/// its beginning.
Result<FileDescriptor> sealedMemory(std::string_view text);

/// A file in memory of that length, all zeros, that is written to by whoever has it.
Result<FileDescriptor> sharedMemory(std::size_t length);

/// All that such a file holds, wherever others have read it to; ENOENT for what is no such file of that
/// length at most.
Result<std::string> textInMemory(int file, std::size_t limit);

/// What an open file holds from where it stands to its end, at most `limit` bytes and one more, which shows
/// that it is more.
Result<std::string> readToEnd(int file, std::size_t limit);

}  // namespace orvane
