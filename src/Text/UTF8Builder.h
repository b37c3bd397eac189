#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvane {

/// Puts a text in UTF-8 together, of units of UTF-16 and of pieces that are UTF-8 already. Half of a
/// surrogate pair that is alone becomes U+FFFD.
class UTF8Builder {
  public:
    void append(char16_t unit);
    void append(std::string_view utf8);

    /// Ends the text and gives it.
    std::string take();
    /// Whether a half was alone in the text that was taken last.
    bool hadLoneSurrogate() const { return hadLoneSurrogate_; }

  private:
    void appendCodePoint(char32_t codePoint);
    void replaceHalf();

    std::string text_;
    /// The first half of a pair whose second may come next.
    char16_t high_ = 0;
    bool hadLoneSurrogate_ = false;
};

}  // namespace orvane
