#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Models/Date.h"
#include "Models/FileURL.h"
#include "Models/Hash.h"

namespace orvane {

/// One application bundle, installed or formerly installed. A plain value with memberwise equality. Its texts
/// are valid UTF-8: what enters from a disk is made so where it enters; paths alone stay bytes.
struct InstalledApplication {
    FileURL url;
    /// Display name.
    std::string name;
    /// Absent when the bundle declares none.
    std::optional<std::string> bundleIdentifier;
    std::string version;
    /// Space on disk, in bytes.
    std::int64_t size = 0;
    /// Last modification of the bundle; absent when unknown.
    std::optional<Date> modifiedAt;
    /// A system application; its removal is refused.
    bool isSystemApplication = false;
    /// The bundle existed at the last scan or availability check.
    bool isInstalled = false;

    /// The identity: everything that selects or looks up an application uses this path.
    const std::string& id() const { return url.path(); }

    friend bool operator==(const InstalledApplication&, const InstalledApplication&) = default;
};

}  // namespace orvane

template <>
struct std::hash<orvane::InstalledApplication> {
    std::size_t operator()(const orvane::InstalledApplication& a) const noexcept {
        std::optional<double> modifiedAt;
        if (a.modifiedAt) modifiedAt = a.modifiedAt->timeIntervalSinceReferenceDate;
        return orvane::hashOf(a.url, a.name, a.bundleIdentifier, a.version, a.size, modifiedAt,
                              a.isSystemApplication, a.isInstalled);
    }
};
