#pragma once

#include <optional>

namespace orvane {

enum class ColorScheme { light, dark };

/// What a desktop, or one part of it, says of how its programs shall look. Nothing where it says nothing.
struct DesktopWishes {
    std::optional<ColorScheme> colorScheme;
    std::optional<bool> reducesMotion;
    std::optional<bool> hasHighContrast;
    /// How much larger text shall be than usual; 1 for as usual.
    std::optional<double> textScale;

    bool operator==(const DesktopWishes&) const = default;
};

/// Each wish as the first of the two says it, or else the second.
inline DesktopWishes firstSaid(const DesktopWishes& first, const DesktopWishes& second) {
    const auto either = [](const auto& one, const auto& other) { return one ? one : other; };
    return {either(first.colorScheme, second.colorScheme), either(first.reducesMotion, second.reducesMotion),
            either(first.hasHighContrast, second.hasHighContrast), either(first.textScale, second.textScale)};
}

}  // namespace orvane
