#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A language that a person reads, or that something is written in, as far as its name tells: by two or three
/// small letters, a script ("Hant") and a region ("AT", "419") where they are named, else empty.
struct Language {
    std::string language;
    std::string script;
    std::string region;

    bool operator==(const Language&) const = default;

    /// By a tag or a locale's name, in any case and with either separator ("zh-Hant-TW", "pt_BR",
    /// "sr_RS.UTF-8@latin"), or by the English name that old systems know it by ("German"). Absent for what
    /// names no language: "C", "Base".
    static std::optional<Language> named(std::string_view name);
};

/// The languages that the environment names, best first, as gettext has them: those of LANGUAGE, unless the
/// locale is "C"; else that of the locale, which is the first of LC_ALL, LC_MESSAGES and LANG that is set.
/// None of them means American English.
std::vector<Language> environmentLanguages();

/// Those of the names under which something has localizations ("de", "zh-Hant", "English") that are in the
/// first of the wanted languages that it has, closest first: that of the region, or of the region that is
/// like it, before that of the language alone. None when it has none of the languages. A language in another
/// script is another one.
std::vector<std::string> closestLocalizations(const std::vector<Language>& wanted,
                                              const std::vector<std::string>& names);

}  // namespace orvane
