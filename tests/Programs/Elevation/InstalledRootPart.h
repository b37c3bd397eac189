#pragma once

#include <map>
#include <string>

#include "Platform/Linux/RemovalOrder.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

/// The part that runs as root, with its tools, in a folder of its own, called as the prompt calls it: by
/// whoever likes to.
class InstalledRootPart {
  public:
    /// The programs by their names, as bytes: where they lie may not be seen from private mounts.
    using Programs = std::map<std::string, std::string>;
    static Programs builtPrograms();

    explicit InstalledRootPart(const Programs& programs);

    struct Call {
        /// The order as it is handed over.
        std::string text;
        /// What the prompt has shown.
        std::string announced;
        /// The id of the user who was asked.
        std::string caller;
    };
    static Call callFor(const RemovalOrder& order, const std::string& caller) {
        return {encodedOrder(order), promptText(order), caller};
    }
    /// Its exit status, once it has ended.
    int run(const Call& call) const;

  private:
    TemporaryDirectory directory_;
};

}  // namespace orvane::test
