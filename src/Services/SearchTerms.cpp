#include "Services/SearchTerms.h"

#include <algorithm>
#include <utility>

#include "Models/ApplicationBundle.h"

namespace orvane {

std::optional<std::string> bundleName(const InstalledApplication& application) {
    if (!isApplicationBundle(application.url)) return std::nullopt;
    return application.url.deletingPathExtension().lastPathComponent();
}

SearchTerms::SearchTerms(const InstalledApplication& application, const LocalizedText& localizedText)
    : localizedText_(localizedText) {
    if (application.bundleIdentifier) terms_.push_back(*application.bundleIdentifier);
    if (auto name = bundleName(application)) terms_.push_back(*std::move(name));
}

bool SearchTerms::areMentionedIn(std::string_view text) const {
    return std::ranges::any_of(terms_, [&](const std::string& term) { return isMentioned(term, text); });
}

std::vector<std::string_view> SearchTerms::mentionedIn(std::string_view text) const {
    std::vector<std::string_view> mentioned;
    for (const std::string& term : terms_)
        if (isMentioned(term, text)) mentioned.push_back(term);
    return mentioned;
}

bool SearchTerms::isMentioned(const std::string& term, std::string_view text) const {
    return localizedText_.localizedCaseInsensitiveContains(text, term);
}

}  // namespace orvane
