#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace orvane {

/// Comparison and search of text as the user's language has it. Thread-safe, never blocks. Bytes that are not
/// valid UTF-8 count as U+FFFD, but are found by no valid term.
class LocalizedText {
  public:
    virtual ~LocalizedText() = default;

    /// Below, equal to or above 0 as `a` sorts before, with or after `b`, without regard to case.
    virtual int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) const = 0;

    /// Whether `text` contains `term`, without regard to case, by whole characters as a person sees them. An
    /// empty term is contained in nothing. A term that is not valid UTF-8 is looked for byte by byte. Takes
    /// time linear in both.
    virtual bool localizedCaseInsensitiveContains(std::string_view text, std::string_view term) const = 0;
};

/// Text in the language of a locale ("de_DE.UTF-8"); without one, of the environment's: the first of LC_ALL,
/// LC_COLLATE, LC_CTYPE and LANG that is set. No locale, one that is malformed, "C" and "POSIX" mean American
/// English. Throws std::runtime_error when the text library lacks its data.
std::unique_ptr<LocalizedText> makeLocalizedText(const std::string& locale = {});

}  // namespace orvane
