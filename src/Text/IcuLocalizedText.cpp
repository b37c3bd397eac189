#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <tl/expected.hpp>
#include <utility>

#include "Text/CharacterFolding.h"
#include "Text/CharacterMatcher.h"
#include "Text/LocalizedText.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

bool isASCII(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char unit) { return (unit & 0x80) != 0; });
}

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    for (char& letter : result) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return result;
}

bool containsBytes(std::string_view text, std::string_view term) {
    return ::memmem(text.data(), text.size(), term.data(), term.size()) != nullptr;
}

class IcuLocalizedText final : public LocalizedText {
  public:
    IcuLocalizedText(const icu::Locale& locale, std::unique_ptr<icu::Collator> collator)
        : folding_(locale), collator_(std::move(collator)) {
        collator_->setStrength(icu::Collator::SECONDARY);
    }

    int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) const override {
        UErrorCode status = U_ZERO_ERROR;
        // Below the strength of case, ASCII letters compare as their folded forms do.
        if (folding_.foldsASCIIToASCII() && isASCII(a) && isASCII(b)) {
            return constCollator().compareUTF8(piece(a), piece(b), status);
        }
        return constCollator().compare(folding_.caseFolded(a), folding_.caseFolded(b), status);
    }

    bool localizedCaseInsensitiveContains(std::string_view text, std::string_view term) const override {
        if (term.empty()) return false;
        if (!isValidUTF8(term)) return containsBytes(text, term);
        // In ASCII every letter is a character by itself, save for the pair that ends a line.
        const bool hasLineEnd = term.find_first_of("\r\n") != std::string_view::npos;
        if (folding_.foldsASCIIToASCII() && !hasLineEnd && isASCII(term) && isASCII(text)) {
            return containsBytes(asciiLowercased(text), asciiLowercased(term));
        }
        CharacterMatcher matcher(folding_.folded(term));
        return folding_.anyCharacter(text,
                                     [&](std::u16string_view character) { return matcher.feed(character); });
    }

  private:
    static icu::StringPiece piece(std::string_view text) {
        return {text.data(), static_cast<std::int32_t>(text.size())};
    }

    /// A collator that is only read is safe to share.
    const icu::Collator& constCollator() const { return *collator_; }

    CharacterFolding folding_;
    std::unique_ptr<icu::Collator> collator_;
};

std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

icu::Locale icuLocale(const std::string& name) {
    const auto language = std::string_view(name).substr(0, name.find_first_of(".@"));
    if (language.empty() || language == "C" || language == "POSIX") return icu::Locale::getUS();
    return icu::Locale::createCanonical(name.c_str());
}

tl::expected<std::unique_ptr<icu::Collator>, UErrorCode> collatorFor(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status) != 0) return tl::unexpected(status);
    return collator;
}

}  // namespace

std::unique_ptr<LocalizedText> makeLocalizedText(const std::string& locale) {
    auto language = icuLocale(locale.empty() ? environmentLocale() : locale);
    auto collator = collatorFor(language);
    if (!collator) {
        // The environment can hold anything.
        language = icu::Locale::getUS();
        collator = collatorFor(language);
    }
    if (!collator) throw std::runtime_error(std::string("ICU: ") + u_errorName(collator.error()));
    return std::make_unique<IcuLocalizedText>(language, std::move(*collator));
}

}  // namespace orvane
