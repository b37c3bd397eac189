#include "Views/Desktop/FollowDesktop.h"

#include "Views/Desktop/MacOS/AccessibilityWishes.h"

namespace orvane {
namespace {

class AccessibilityFollower : public QObject {
  public:
    explicit AccessibilityFollower(Desktop& desktop)
        : following_(followAccessibilityWishes([&desktop] { desktop.toolkitSays(accessibilityWishes()); })) {
        desktop.toolkitSays(accessibilityWishes());
    }

  private:
    std::shared_ptr<void> following_;
};

}  // namespace

// Light or dark is as the palette is, which Qt keeps as the Mac's.
std::unique_ptr<QObject> followDesktop(Desktop& desktop) {
    return std::make_unique<AccessibilityFollower>(desktop);
}

}  // namespace orvane
