#include "Platform/Bundle.h"

#include <utility>

namespace orvane {

Bundle::Bundle(FileURL url, std::optional<PropertyList> information, std::optional<FileURL> iconFile)
    : url_(std::move(url)), information_(std::move(information)), iconFile_(std::move(iconFile)) {}

std::optional<std::string> Bundle::string(std::string_view key) const {
    const auto* text = information_ ? information_->string(key) : nullptr;
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<std::string> Bundle::bundleIdentifier() const {
    return string("CFBundleIdentifier");
}

}  // namespace orvane
