#include "Text/Language.h"

#include <unicode/localematcher.h>
#include <unicode/locid.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>
#include <utility>

#include "Text/UTF8.h"

namespace orvane {

namespace {

struct Alias {
    std::string_view name;
    std::string_view tag;
};

/// The names that localizations had before they had tags.
constexpr std::array<Alias, 56> englishNames{{
    {"english", "en"},    {"french", "fr"},     {"german", "de"},     {"italian", "it"},
    {"dutch", "nl"},      {"swedish", "sv"},    {"spanish", "es"},    {"danish", "da"},
    {"portuguese", "pt"}, {"norwegian", "nb"},  {"hebrew", "he"},     {"japanese", "ja"},
    {"arabic", "ar"},     {"finnish", "fi"},    {"greek", "el"},      {"icelandic", "is"},
    {"maltese", "mt"},    {"turkish", "tr"},    {"croatian", "hr"},   {"chinese", "zh"},
    {"urdu", "ur"},       {"hindi", "hi"},      {"thai", "th"},       {"korean", "ko"},
    {"lithuanian", "lt"}, {"polish", "pl"},     {"hungarian", "hu"},  {"estonian", "et"},
    {"latvian", "lv"},    {"sami", "se"},       {"faroese", "fo"},    {"farsi", "fa"},
    {"persian", "fa"},    {"russian", "ru"},    {"irish", "ga"},      {"albanian", "sq"},
    {"romanian", "ro"},   {"czech", "cs"},      {"slovak", "sk"},     {"slovenian", "sl"},
    {"yiddish", "yi"},    {"serbian", "sr"},    {"macedonian", "mk"}, {"bulgarian", "bg"},
    {"ukrainian", "uk"},  {"belarusian", "be"}, {"catalan", "ca"},    {"welsh", "cy"},
    {"basque", "eu"},     {"galician", "gl"},   {"indonesian", "id"}, {"malay", "ms"},
    {"vietnamese", "vi"}, {"armenian", "hy"},   {"georgian", "ka"},   {"afrikaans", "af"},
}};

/// What languages were called once, or are called as well.
constexpr std::array<Alias, 6> otherTags{{
    {"iw", "he"},
    {"in", "id"},
    {"ji", "yi"},
    {"no", "nb"},
    {"tl", "fil"},
    {"mo", "ro"},
}};

/// The scripts that locales name behind an at sign.
constexpr std::array<Alias, 3> modifiers{{
    {"latin", "Latn"},
    {"cyrillic", "Cyrl"},
    {"devanagari", "Deva"},
}};

template <std::size_t size>
std::string_view tagOf(const std::array<Alias, size>& aliases, std::string_view name) {
    const auto* found = std::find_if(aliases.begin(), aliases.end(),
                                     [&](const Alias& each) { return equalsIgnoringCase(name, each.name); });
    return found != aliases.end() ? found->tag : std::string_view();
}

bool isLetter(char c) {
    return lowercasedASCII(c) >= 'a' && lowercasedASCII(c) <= 'z';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool areAll(std::string_view text, bool (*isOne)(char)) {
    return std::all_of(text.begin(), text.end(), isOne);
}

std::string lowercased(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = lowercasedASCII(c);
    return result;
}

std::string uppercased(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (isLetter(c)) c = static_cast<char>(lowercasedASCII(c) - 'a' + 'A');
    }
    return result;
}

/// Takes the text up to the next separator.
std::string_view takeSubtag(std::string_view& tag) {
    const auto end = tag.find_first_of("-_");
    const auto subtag = tag.substr(0, end);
    tag.remove_prefix(end == std::string_view::npos ? tag.size() : end + 1);
    return subtag;
}

std::optional<Language> fromTag(std::string_view tag) {
    const auto first = takeSubtag(tag);
    if (first.size() < 2 || first.size() > 3 || !areAll(first, isLetter)) return std::nullopt;
    const auto other = tagOf(otherTags, first);
    Language language{other.empty() ? lowercased(first) : std::string(other), {}, {}};
    auto next = takeSubtag(tag);
    if (next.size() == 4 && areAll(next, isLetter)) {
        language.script = uppercased(next.substr(0, 1)) + lowercased(next.substr(1));
        next = takeSubtag(tag);
    }
    const bool isRegion =
        (next.size() == 2 && areAll(next, isLetter)) || (next.size() == 3 && areAll(next, isDigit));
    if (isRegion) language.region = equalsIgnoringCase(next, "uk") ? "GB" : uppercased(next);
    return language;
}

icu::Locale icuLocaleOf(const Language& language) {
    return {(language.script.empty() ? language.language : language.language + "_" + language.script).c_str(),
            language.region.c_str()};
}

/// The script that a language is written in, in its region, where its name leaves that open.
std::string scriptOf(const Language& language) {
    if (!language.script.empty()) return language.script;
    UErrorCode status = U_ZERO_ERROR;
    auto locale = icuLocaleOf(language);
    locale.addLikelySubtags(status);
    return U_SUCCESS(status) != 0 ? locale.getScript() : std::string();
}

struct Localization {
    Language language;
    /// A name of old comes after a tag of the same language.
    bool hasOldName = false;
    std::string name;
};

std::vector<Localization> localizationsIn(const Language& wanted, const std::vector<std::string>& names) {
    std::vector<Localization> found;
    const auto script = scriptOf(wanted);
    for (const auto& name : names) {
        auto language = Language::named(name);
        if (!language || language->language != wanted.language || scriptOf(*language) != script) continue;
        found.push_back({*std::move(language), !tagOf(englishNames, name).empty(), name});
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return std::tie(a.hasOldName, a.name) < std::tie(b.hasOldName, b.name);
    });
    return found;
}

/// The one that a person who wants a language can best do with; of at least one.
Language closest(const Language& wanted, const std::vector<Localization>& localizations) {
    UErrorCode status = U_ZERO_ERROR;
    icu::LocaleMatcher::Builder builder;
    for (const auto& each : localizations) builder.addSupportedLocale(icuLocaleOf(each.language));
    builder.setNoDefaultLocale();
    const auto matcher = builder.build(status);
    const auto result = matcher.getBestMatchResult(icuLocaleOf(wanted), status);
    const auto index = U_SUCCESS(status) != 0 ? std::max(result.getSupportedIndex(), 0) : 0;
    return localizations[static_cast<std::size_t>(index)].language;
}

std::string_view environmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string_view messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto value = environmentValue(name); !value.empty()) return value;
    }
    return "C";
}

bool isUntranslated(std::string_view locale) {
    return locale == "C" || locale == "POSIX";
}

}  // namespace

std::optional<Language> Language::named(std::string_view name) {
    if (const auto tag = tagOf(englishNames, name); !tag.empty()) return fromTag(tag);
    const auto end = name.find_first_of(".@");
    auto language = fromTag(name.substr(0, end));
    const auto sign = name.find('@');
    if (language && language->script.empty() && sign != std::string_view::npos) {
        language->script = tagOf(modifiers, name.substr(sign + 1));
    }
    return language;
}

std::vector<Language> environmentLanguages() {
    const auto locale = messagesLocale();
    auto names = isUntranslated(locale) ? std::string_view() : environmentValue("LANGUAGE");
    if (names.empty()) names = locale;
    std::vector<Language> languages;
    while (!names.empty()) {
        const auto end = names.find(':');
        const auto name = names.substr(0, end);
        names.remove_prefix(end == std::string_view::npos ? names.size() : end + 1);
        // What comes after the language that a program is written in is never asked for.
        if (isUntranslated(name)) break;
        if (auto language = Language::named(name)) languages.push_back(*std::move(language));
    }
    if (languages.empty()) languages.push_back({"en", {}, "US"});
    return languages;
}

std::vector<std::string> closestLocalizations(const std::vector<Language>& wanted,
                                              const std::vector<std::string>& names) {
    for (const auto& language : wanted) {
        const auto localizations = localizationsIn(language, names);
        if (localizations.empty()) continue;
        const auto best = closest(language, localizations);
        std::vector<std::string> result;
        for (const auto& each : localizations) {
            if (each.language == best) result.push_back(each.name);
        }
        for (const auto& each : localizations) {
            if (each.language != best && each.language.region.empty()) result.push_back(each.name);
        }
        return result;
    }
    return {};
}

}  // namespace orvane
