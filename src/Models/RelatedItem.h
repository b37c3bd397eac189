#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Models/FileURL.h"
#include "Models/Hash.h"
#include "Models/RelatedItemKind.h"

namespace orvane {

/// One file or folder that a removal can touch. A plain value with memberwise equality.
struct RelatedItem {
    FileURL url;
    RelatedItemKind kind = RelatedItemKind::other;
    /// Space on disk, in bytes; a folder's total.
    std::int64_t size = 0;
    /// The user's own rights cannot remove it.
    bool requiresAdministrator = false;
    /// A launch item's label.
    std::optional<std::string> detail;

    const std::string& id() const { return url.path(); }

    friend bool operator==(const RelatedItem&, const RelatedItem&) = default;
};

}  // namespace orvane

template <>
struct std::hash<orvane::RelatedItem> {
    std::size_t operator()(const orvane::RelatedItem& i) const noexcept {
        return orvane::hashOf(i.url, i.kind, i.size, i.requiresAdministrator, i.detail);
    }
};
