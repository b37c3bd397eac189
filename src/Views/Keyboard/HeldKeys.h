#pragma once

#include "Views/Keyboard/KeyFilter.h"

namespace orvane {

/// Sees to it that a key that is held presses nothing in any window of the program: no button, no entry of a
/// menu, no command. Its repetitions move, and write in a text field, and that is all.
class HeldKeys : public KeyFilter {
  public:
    using KeyFilter::KeyFilter;

  private:
    bool keeps(const QKeyEvent& press) override;
    bool keepsFromCommands(const QKeyEvent& stroke) override;
    void cameUp(const QKeyEvent& release) override;
    bool isRepetition(const QKeyEvent& stroke) const;

    int lastReleased_ = 0;
    quint64 lastReleasedAt_ = 0;
};

}  // namespace orvane
