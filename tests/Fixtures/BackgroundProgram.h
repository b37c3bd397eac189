#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace orvane::test {

/// A server that a test needs. It is there when the constructor comes back: it has said a line on its
/// standard output. It is killed at the end of this object's life, or before.
class BackgroundProgram {
  public:
    /// Throws when the program ends, or is silent for a minute. Found by PATH.
    explicit BackgroundProgram(const std::vector<std::string>& command);
    ~BackgroundProgram() { kill(); }
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;

    void kill();

  private:
    pid_t process_ = 0;
};

}  // namespace orvane::test
