#include "Programs/CommandLine/ApplicationArgument.h"

#include <unordered_map>
#include <utility>
#include <vector>

#include "Programs/CommandLine/Console.h"

namespace orvane::commandline {
namespace {

using Found = tl::expected<InstalledApplication, std::string>;

/// A bundle path may be given as a shell completes it, with a slash at its end.
std::string withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    return std::string(path);
}

template <typename Predicate>
std::vector<const InstalledApplication*> allWhere(const std::vector<InstalledApplication>& applications,
                                                  Predicate predicate) {
    std::vector<const InstalledApplication*> found;
    for (const auto& application : applications) {
        if (predicate(application)) found.push_back(&application);
    }
    return found;
}

/// The one that is meant; an empty error when there is none.
Found search(const std::vector<InstalledApplication>& applications, const LocalizedText& localizedText,
             const std::string& text) {
    const auto byPath = allWhere(applications, [&](const auto& a) { return names(text, a.url); });
    if (!byPath.empty()) return *byPath.front();

    auto byName = allWhere(applications, [&](const auto& a) { return a.name == text; });
    if (byName.empty()) {
        byName = allWhere(applications, [&](const auto& a) {
            return localizedText.localizedCaseInsensitiveCompare(a.name, text) == 0;
        });
    }
    if (byName.empty()) return tl::unexpected(std::string());
    if (byName.size() == 1) return *byName.front();

    std::string line = "several applications are named '" + text + "'; give one of these paths:";
    for (const auto* application : byName) line += " '" + application->id() + "'";
    return tl::unexpected(std::move(line));
}

}  // namespace

bool names(std::string_view text, const FileURL& url) {
    if (withoutTrailingSlashes(text) == url.path()) return true;
    if (text.find(':') == std::string_view::npos) return false;
    const auto given = FileURL::fromString(text);
    return given && (*given == url ||
                     (given->fileSystemPath() && url.fileSystemPath() && given->path() == url.path()));
}

Task<Found> findApplication(CommandLineProgram& program, std::string text) {
    if (text.empty()) co_return tl::unexpected(std::string("APP is empty"));
    auto& catalog = program.catalog();
    Progress progress(program.mainExecutor(), "Looking for applications…");
    auto known = co_await catalog.load();
    known = co_await catalog.updateAvailability(std::move(known));
    auto found = search(known, program.localizedText(), text);
    if (!found && found.error().empty()) {
        auto discovered = co_await program.scanner().scan();
        const auto saved = std::make_shared<const std::vector<InstalledApplication>>(std::move(known));
        known = co_await catalog.merge(std::move(discovered), saved);
        found = search(known, program.localizedText(), text);
    }
    if (!found && found.error().empty()) co_return tl::unexpected("no application is named '" + text + "'");
    co_return found;
}

std::vector<std::string> applicationWords(const std::vector<InstalledApplication>& applications) {
    std::unordered_map<std::string_view, std::size_t> bearers;
    for (const auto& application : applications) ++bearers[application.name];
    std::vector<std::string> words;
    for (const auto& application : applications) {
        const auto& name = application.name;
        const bool isOption = name.starts_with('-');
        const bool isFile = name.starts_with('/') || name.starts_with("file:");
        const bool isText = !name.empty() && name.find('\0') == std::string::npos;
        if (isText && !isOption && !isFile && bearers[name] == 1) {
            words.push_back(name);
        } else if (const auto path = application.url.fileSystemPath()) {
            words.emplace_back(*path);
        }
    }
    return words;
}

}  // namespace orvane::commandline
