#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Looks for one text in a stream of characters, in time linear in both (Knuth, Morris and Pratt). A match
/// begins where a character of the stream begins and ends where one ends.
class CharacterMatcher {
  public:
    /// The pattern is not empty.
    explicit CharacterMatcher(std::u16string pattern);

    /// Takes the next character of the stream, one or more units; whether a match ends with it.
    bool feed(std::u16string_view character);

  private:
    void advance(char16_t unit);

    std::u16string pattern_;
    /// For each prefix of the pattern, the length of the longest shorter prefix that ends it.
    std::vector<std::size_t> borders_;
    std::size_t matched_ = 0;
    /// For the last units of the stream, as many as the pattern has: whether a character began there.
    std::vector<bool> begins_;
    std::size_t position_ = 0;
};

}  // namespace orvane
