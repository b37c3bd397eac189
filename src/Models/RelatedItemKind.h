#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string_view>

namespace orvane {

/// The kinds of file that belong to an application, in the order in which they are listed.
enum class RelatedItemKind {
    application,
    applicationSupport,
    cache,
    preference,
    savedState,
    container,
    webData,
    launchAgent,
    launchDaemon,
    other,
};

/// Every kind, in declaration order.
inline constexpr std::array allRelatedItemKinds{
    RelatedItemKind::application, RelatedItemKind::applicationSupport, RelatedItemKind::cache,
    RelatedItemKind::preference,  RelatedItemKind::savedState,         RelatedItemKind::container,
    RelatedItemKind::webData,     RelatedItemKind::launchAgent,        RelatedItemKind::launchDaemon,
    RelatedItemKind::other,
};

/// The raw value, which is the title that is shown ("Application Support").
std::string_view rawValue(RelatedItemKind kind);
/// The kind with that raw value; absent for any other text.
std::optional<RelatedItemKind> relatedItemKindFromRawValue(std::string_view rawValue);
/// The name of the symbol image that stands for the kind.
std::string_view symbol(RelatedItemKind kind);

}  // namespace orvane

template <>
struct std::hash<orvane::RelatedItemKind> {
    std::size_t operator()(orvane::RelatedItemKind kind) const noexcept {
        return std::hash<std::string_view>{}(orvane::rawValue(kind));
    }
};
