#pragma once

#include <string_view>

namespace orvane {

/// Comparison and search of text as the user's language has it. Thread-safe, never blocks.
class LocalizedText {
  public:
    virtual ~LocalizedText() = default;

    /// Below, equal to or above 0 as `a` sorts before, with or after `b`, without regard to case.
    virtual int localizedCaseInsensitiveCompare(std::string_view a, std::string_view b) const = 0;

    /// Whether `text` contains `term`, without regard to case, by whole characters as a person sees them. An
    /// empty term is contained in nothing. A term that is not valid UTF-8 is looked for byte by byte.
    virtual bool localizedCaseInsensitiveContains(std::string_view text, std::string_view term) const = 0;
};

}  // namespace orvane
