#pragma once

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uniset.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Text/FunctionRef.h"

namespace orvane {

/// Cuts text into characters as a person sees them and gives each one decomposed and case-folded, as UTF-16:
/// two characters that differ only in case, or in how they are composed, give the same. Thread-safe.
class CharacterFolding {
  public:
    /// Throws std::runtime_error when ICU lacks its data.
    explicit CharacterFolding(const icu::Locale& locale);

    /// Visits the folded characters in order until `visit` returns true; whether it did. Ill-formed bytes
    /// fold to something that no well-formed text folds to. At most 2 GiB of text.
    bool anyCharacter(std::string_view text, FunctionRef<bool(std::u16string_view)> visit) const;

    /// All characters of the text, one after the other.
    std::u16string folded(std::string_view text) const;

    /// Whether ASCII letters fold to ASCII letters: not so in languages with a dotless i.
    bool foldsASCIIToASCII() const { return foldOptions_ == U_FOLD_CASE_DEFAULT; }

    /// The whole text case-folded, ill-formed bytes as U+FFFD; nothing is decomposed.
    icu::UnicodeString caseFolded(std::string_view text) const;

  private:
    class Characters;

    void fold(std::string_view character, icu::UnicodeString& result) const;

    std::uint32_t foldOptions_;
    const icu::Normalizer2* decomposition_;
    const icu::Normalizer2* beforeFolding_;
    /// The code points that decomposing or folding changes; few, so most text is passed through.
    icu::UnicodeSet changing_;
    /// Cloned for each use: an iterator is no thread's but one's.
    std::unique_ptr<const icu::BreakIterator> boundaries_;
};

}  // namespace orvane
