#include "Text/CharacterMatcher.h"

#include <utility>

namespace orvane {

CharacterMatcher::CharacterMatcher(std::u16string pattern)
    : pattern_(std::move(pattern)), borders_(pattern_.size()), begins_(pattern_.size()) {
    std::size_t border = 0;
    for (std::size_t i = 1; i < pattern_.size(); ++i) {
        while (border > 0 && pattern_[i] != pattern_[border]) border = borders_[border - 1];
        if (pattern_[i] == pattern_[border]) ++border;
        borders_[i] = border;
    }
}

bool CharacterMatcher::feed(std::u16string_view character) {
    bool begins = true;
    for (const char16_t unit : character) {
        begins_[position_] = std::exchange(begins, false);
        position_ = position_ + 1 == pattern_.size() ? 0 : position_ + 1;
        advance(unit);
    }
    // The ring holds as many units as the pattern: its oldest is where a whole match began.
    return matched_ == pattern_.size() && begins_[position_];
}

void CharacterMatcher::advance(char16_t unit) {
    if (matched_ == pattern_.size()) matched_ = borders_[matched_ - 1];
    while (matched_ > 0 && pattern_[matched_] != unit) matched_ = borders_[matched_ - 1];
    if (pattern_[matched_] == unit) ++matched_;
}

}  // namespace orvane
