#include "Models/RelatedItemKind.h"

#include <cstddef>

namespace orvane {

namespace {

struct Description {
    RelatedItemKind kind;
    std::string_view title;
    std::string_view symbol;
};

constexpr std::array descriptions{
    Description{RelatedItemKind::application, "Application", "app.fill"},
    Description{RelatedItemKind::applicationSupport, "Application Support", "folder.fill"},
    Description{RelatedItemKind::cache, "Cache", "internaldrive.fill"},
    Description{RelatedItemKind::preference, "Preferences", "gearshape.fill"},
    Description{RelatedItemKind::savedState, "Saved State", "clock.arrow.circlepath"},
    Description{RelatedItemKind::container, "Container", "shippingbox.fill"},
    Description{RelatedItemKind::webData, "Web Data", "globe"},
    Description{RelatedItemKind::launchAgent, "Launch Agent", "bolt.horizontal.fill"},
    Description{RelatedItemKind::launchDaemon, "Launch Daemon", "server.rack"},
    Description{RelatedItemKind::other, "Other Data", "doc.fill"},
};

constexpr bool describesEveryKindInOrder() {
    if (descriptions.size() != allRelatedItemKinds.size()) return false;
    for (std::size_t i = 0; i < descriptions.size(); ++i) {
        if (descriptions[i].kind != allRelatedItemKinds[i]) return false;
        if (static_cast<std::size_t>(descriptions[i].kind) != i) return false;
    }
    return true;
}
static_assert(describesEveryKindInOrder());

const Description& description(RelatedItemKind kind) {
    return descriptions.at(static_cast<std::size_t>(kind));
}

}  // namespace

std::string_view rawValue(RelatedItemKind kind) {
    return description(kind).title;
}

std::optional<RelatedItemKind> relatedItemKindFromRawValue(std::string_view rawValue) {
    for (const auto& each : descriptions) {
        if (each.title == rawValue) return each.kind;
    }
    return std::nullopt;
}

std::string_view symbol(RelatedItemKind kind) {
    return description(kind).symbol;
}

}  // namespace orvane
