#pragma once

#include <functional>
#include <memory>

#include "Views/FrontDoor/FrontDoorModel.h"
#include "tests/Views/OrvaneAppViewFixture.h"

namespace orvane::test {

/// The program's windows in every state that they have.
class WindowStatesTest : public OrvaneAppViewTest {
  protected:
    using Visit = std::function<void(const std::string& state, QQuickWindow& window)>;

    /// Opens the window as small as it can be and brings it from state to state. Each is as it will stay when
    /// it is visited.
    void visitEveryState(const Visit& visit);

    /// What is seen of a window, and of nothing else: what is below a sheet or an alert is not.
    QQuickItem& layer(QQuickWindow& seen);

  private:
    void openFrontDoor();
    void fillDisk();
    void showPane(const char* application);
    void waitUntilReady(const char* panel);
    void settle(QQuickWindow& seen);

    std::unique_ptr<FrontDoorModel> door_;
};

}  // namespace orvane::test
