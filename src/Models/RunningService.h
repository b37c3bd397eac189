#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Models/Hash.h"

namespace orvane {

/// One running process that belongs to an application. A plain value with memberwise equality.
struct RunningService {
    std::int32_t processIdentifier = 0;
    /// Valid UTF-8.
    std::string name;
    /// Empty when unknown.
    std::string executablePath;

    std::int32_t id() const { return processIdentifier; }

    friend bool operator==(const RunningService&, const RunningService&) = default;
};

}  // namespace orvane

template <>
struct std::hash<orvane::RunningService> {
    std::size_t operator()(const orvane::RunningService& s) const noexcept {
        return orvane::hashOf(s.processIdentifier, s.name, s.executablePath);
    }
};
