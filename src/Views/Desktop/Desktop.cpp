#include "Views/Desktop/Desktop.h"

#include <algorithm>
#include <utility>

namespace orvane {

Desktop::Appearance Desktop::appearance() const {
    if (!wishes_.colorScheme) return LikeThePalette;
    return *wishes_.colorScheme == ColorScheme::dark ? Dark : Light;
}

double Desktop::textScale() const {
    return std::clamp(wishes_.textScale.value_or(1), 1.0, 1.25);
}

void Desktop::portalSays(const DesktopWishes& wishes) {
    portal_ = wishes;
    update();
}

void Desktop::toolkitSays(const DesktopWishes& wishes) {
    toolkit_ = wishes;
    update();
}

void Desktop::update() {
    const DesktopWishes before = std::exchange(wishes_, firstSaid(portal_, toolkit_));
    if (before != wishes_) emit changed();
}

}  // namespace orvane
