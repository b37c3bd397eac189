#include "Text/CharacterFolding.h"

#include <unicode/stringoptions.h>
#include <unicode/utext.h>

#include <stdexcept>

#include "Text/UTF8.h"

namespace orvane {

namespace {

/// Half of a surrogate pair alone: what a character with ill-formed bytes becomes.
constexpr UChar illFormed = 0xDFFF;

bool isASCII(char unit) {
    return static_cast<unsigned char>(unit) < 0x80;
}

std::uint32_t foldOptions(const icu::Locale& locale) {
    const std::string_view language = locale.getLanguage();
    const bool hasDotlessI = language == "tr" || language == "az";
    return hasDotlessI ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
}

icu::UnicodeString decoded(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

void require(UErrorCode status) {
    if (U_FAILURE(status) != 0) throw std::runtime_error(std::string("ICU: ") + u_errorName(status));
}

}  // namespace

/// The ends of one text's characters. Nothing is set up until the first one that has to be looked for.
class CharacterFolding::Characters {
  public:
    Characters(const icu::BreakIterator& prototype, std::string_view text)
        : prototype_(prototype), text_(text) {}
    ~Characters() { utext_close(&source_); }
    Characters(const Characters&) = delete;
    Characters& operator=(const Characters&) = delete;

    /// The end of the character that begins at `start`.
    std::size_t end(std::size_t start) {
        // ASCII before ASCII is a character by itself, save for the pair that ends a line.
        const bool isLast = start + 1 == text_.size();
        if (isASCII(text_[start]) && text_[start] != '\r' && (isLast || isASCII(text_[start + 1]))) {
            return start + 1;
        }
        if (!iterator_) open();
        return static_cast<std::size_t>(iterator_->following(static_cast<std::int32_t>(start)));
    }

  private:
    void open() {
        UErrorCode status = U_ZERO_ERROR;
        iterator_.reset(prototype_.clone());
        utext_openUTF8(&source_, text_.data(), static_cast<std::int64_t>(text_.size()), &status);
        iterator_->setText(&source_, status);
        require(status);
    }

    const icu::BreakIterator& prototype_;
    std::string_view text_;
    UText source_ = UTEXT_INITIALIZER;
    std::unique_ptr<icu::BreakIterator> iterator_;
};

CharacterFolding::CharacterFolding(const icu::Locale& locale) : foldOptions_(orvane::foldOptions(locale)) {
    UErrorCode status = U_ZERO_ERROR;
    decomposition_ = icu::Normalizer2::getNFDInstance(status);
    // Taken apart, a dotted capital I would fold to a dotless one and a dot.
    beforeFolding_ = foldsASCIIToASCII() ? decomposition_ : icu::Normalizer2::getNFCInstance(status);
    changing_.applyPattern(icu::UnicodeString(u"[[:NFD_QC=No:][:Changes_When_Casefolded:]]"), status);
    changing_.freeze();
    boundaries_.reset(icu::BreakIterator::createCharacterInstance(locale, status));
    require(status);
}

bool CharacterFolding::anyCharacter(std::string_view text,
                                    FunctionRef<bool(std::u16string_view)> visit) const {
    Characters characters(*boundaries_, text);
    icu::UnicodeString buffer;
    std::size_t end = 0;
    for (std::size_t start = 0; start < text.size(); start = end) {
        end = characters.end(start);
        if (end - start == 1 && isASCII(text[start]) && foldsASCIIToASCII()) {
            const auto letter = static_cast<char16_t>(lowercasedASCII(text[start]));
            if (visit({&letter, 1})) return true;
            continue;
        }
        fold(text.substr(start, end - start), buffer);
        if (visit({buffer.getBuffer(), static_cast<std::size_t>(buffer.length())})) return true;
    }
    return false;
}

std::u16string CharacterFolding::folded(std::string_view text) const {
    std::u16string result;
    anyCharacter(text, [&](std::u16string_view character) {
        result += character;
        return false;
    });
    return result;
}

icu::UnicodeString CharacterFolding::caseFolded(std::string_view text) const {
    return decoded(text).foldCase(foldOptions_);
}

void CharacterFolding::fold(std::string_view character, icu::UnicodeString& result) const {
    if (!isValidUTF8(character)) {
        result = illFormed;
        return;
    }
    result = decoded(character);
    const bool isOneCodePoint = result.countChar32() == 1;
    if (isOneCodePoint && !changing_.contains(result.char32At(0))) return;
    UErrorCode status = U_ZERO_ERROR;
    auto folded = beforeFolding_->normalize(result, status).foldCase(foldOptions_);
    result = decomposition_->normalize(folded, status);
    require(status);
}

}  // namespace orvane
