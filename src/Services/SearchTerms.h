#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// The file name of the application's bundle, without its extension. Absent for a URL that names no bundle
/// (no file at all, the root, a home, a plain folder, as a catalog can have it): nothing is looked for by the
/// text that stands in a bundle's place.
std::optional<std::string> bundleName(const InstalledApplication& application);

/// What a text has to mention to belong to an application: its identifier, as it is, or its bundle's name.
/// Immutable; the text services outlive it.
class SearchTerms {
  public:
    SearchTerms(const InstalledApplication& application, const LocalizedText& localizedText);

    /// Whether the text contains any term, without regard to case.
    bool areMentionedIn(std::string_view text) const;
    /// The terms that the text contains, the identifier first. They live as long as this.
    std::vector<std::string_view> mentionedIn(std::string_view text) const;

  private:
    bool isMentioned(const std::string& term, std::string_view text) const;

    const LocalizedText& localizedText_;
    std::vector<std::string> terms_;
};

}  // namespace orvane
