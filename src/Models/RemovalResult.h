#pragma once

#include <string>
#include <vector>

#include "Models/FileURL.h"

namespace orvane {

/// What a removal achieved.
struct RemovalResult {
    struct Failure {
        FileURL url;
        /// For a person to read.
        std::string reason;

        friend bool operator==(const Failure&, const Failure&) = default;
    };

    std::vector<FileURL> removed;
    std::vector<Failure> failed;
};

}  // namespace orvane
