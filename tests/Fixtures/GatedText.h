#pragma once

#include <condition_variable>
#include <mutex>
#include <string_view>

#include "Text/LocalizedText.h"

namespace orvane::test {

/// Real text services that hold up whoever compares while the gate is closed. Thread-safe.
class GatedText : public LocalizedText {
  public:
    explicit GatedText(const LocalizedText& text) : text_(text) {}

    void setOpen(bool isOpen) {
        const std::scoped_lock lock(mutex_);
        isOpen_ = isOpen;
        changed_.notify_all();
    }
    bool isHoldingSomebody() const {
        const std::scoped_lock lock(mutex_);
        return waiting_ > 0;
    }

    int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) const override {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.wait(lock, [this] { return isOpen_; });
        --waiting_;
        return text_.localizedCaseInsensitiveCompare(a, b);
    }
    bool localizedCaseInsensitiveContains(std::string_view text, std::string_view term) const override {
        return text_.localizedCaseInsensitiveContains(text, term);
    }

  private:
    const LocalizedText& text_;
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    mutable int waiting_ = 0;
    bool isOpen_ = true;
};

}  // namespace orvane::test
