#include "Platform/Bundle.h"

#include <utility>

namespace orvane {

Bundle::Bundle(std::optional<PropertyList> information) : information_(std::move(information)) {}

std::optional<std::string> Bundle::string(std::string_view key) const {
    const auto* text = information_ ? information_->string(key) : nullptr;
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return string("CFBundleIdentifier");
}

}  // namespace orvane
