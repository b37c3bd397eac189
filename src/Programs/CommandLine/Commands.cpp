#include "Programs/CommandLine/Commands.h"

#include <algorithm>
#include <asio/post.hpp>
#include <chrono>
#include <memory>
#include <optional>

#include "Platform/MacDisks.h"
#include "Programs/CommandLine/ApplicationArgument.h"
#include "Programs/CommandLine/Console.h"
#include "Programs/CommandLine/Documents.h"
#include "Programs/CommandLine/Tables.h"

namespace orvane::commandline {
namespace {

constexpr int done = 0;
constexpr int itemFailed = 1;
constexpr int misuse = 2;

/// For all disks together. One that spins up takes some seconds.
constexpr std::chrono::seconds patienceWithDisks{10};

int written(const std::string& text) {
    return print(text) ? done : itemFailed;
}

std::string lineOf(const Json& document) {
    return document.dump() + "\n";
}

int written(const Json& document) {
    return written(lineOf(document));
}

/// Scans on top of what is saved, so that an application that has vanished since stays listed; scans once,
/// not twice, where nothing is saved yet.
Task<void> rescan(CommandLineProgram& program) {
    auto saved = co_await program.catalog().load();
    if (!saved.empty()) co_await program.library().loadCatalog();
    co_await program.library().scan();
}

/// Has the library list the application, so that its saved list knows it to be gone once it is.
Task<void> listInLibrary(CommandLineProgram& program, std::string id) {
    auto& library = program.library();
    co_await library.loadCatalog();
    const auto& listed = library.applications();
    if (std::ranges::find(listed, id, &InstalledApplication::id) == listed.end()) co_await library.scan();
}

/// What `list` answers, made as soon as the library has its list, which it saves meanwhile.
class ListAnswer final : public AppLibrary::Observer, public std::enable_shared_from_this<ListAnswer> {
  public:
    ListAnswer(CommandLineProgram& program, bool isDocument) : program_(program), isDocument_(isDocument) {
        program.library().addObserver(*this);
    }
    ~ListAnswer() override { program_.library().removeObserver(*this); }
    ListAnswer(const ListAnswer&) = delete;
    ListAnswer& operator=(const ListAnswer&) = delete;

    const std::string& text() {
        if (!text_) {
            const auto applications = program_.library().filteredApplications();
            text_ = isDocument_ ? lineOf(listDocument(applications.shown)) : listTable(applications.shown);
        }
        return *text_;
    }

  private:
    void libraryDidChange(AppLibrary::Field field) override {
        if (field != AppLibrary::Field::applications) return;
        text_.reset();
        asio::post(program_.mainExecutor(), [weak = weak_from_this()] {
            if (const auto answer = weak.lock()) answer->text();
        });
    }

    CommandLineProgram& program_;
    const bool isDocument_;
    std::optional<std::string> text_;
};

struct Choice {
    std::vector<RelatedItem> items;
    std::vector<RelatedItem> kept;
};

/// The items of the plan, those to keep apart; the text of a keep that names none of them is the error.
tl::expected<Choice, std::string> choice(const RemovalPlan& plan, const std::vector<std::string>& keep) {
    for (const auto& text : keep) {
        const auto isNamed = [&](const auto& item) { return names(text, item.url); };
        if (std::ranges::none_of(plan.items, isNamed)) return tl::unexpected(text);
    }
    Choice choice;
    for (const auto& item : plan.items) {
        const bool isKept =
            std::ranges::any_of(keep, [&](const auto& text) { return names(text, item.url); });
        (isKept ? choice.kept : choice.items).push_back(item);
    }
    return choice;
}

enum class Confirmation { given, refused, notShown };

/// Shows what would happen and asks a person; a script has said so beforehand. What nobody could see is not
/// done.
Confirmation confirmation(const RemovalPlan& plan, const std::vector<RelatedItem>& items,
                          const RemoveOptions& options) {
    if (!options.json || !options.yes) {
        auto text = "Uninstall " + printable(plan.application.name) + "?\n" + itemTable(items);
        for (const auto& service : plan.runningServices) {
            text += printable(service.name) + " (" + std::to_string(service.processIdentifier) +
                    ") will be asked to quit.\n";
        }
        if (!write(options.json ? stderr : stdout, text)) return Confirmation::notShown;
    }
    if (options.yes) return Confirmation::given;
    const bool isConfirmed =
        confirm(options.permanently ? "Delete these items permanently? They cannot be recovered."
                                    : "Move these items to the Trash?");
    return isConfirmed ? Confirmation::given : Confirmation::refused;
}

}  // namespace

Task<int> list(CommandLineProgram& program, ListOptions options) {
    program.library().setSearchText(options.search);
    const auto answer = std::make_shared<ListAnswer>(program, options.json);
    {
        Progress progress(program.mainExecutor(), "Looking for applications…");
        if (options.rescan) {
            co_await rescan(program);
        } else {
            co_await program.library().loadCatalog();
        }
    }
    co_return written(answer->text());
}

Task<int> plan(CommandLineProgram& program, PlanOptions options) {
    const auto application = co_await findApplication(program, options.application);
    if (!application) {
        complain(application.error());
        co_return misuse;
    }
    RemovalPlan found;
    std::vector<std::string> reasons;
    {
        Progress progress(program.mainExecutor(), "Looking for what belongs to it…");
        found = co_await program.planner().plan(*application);
        if (options.why) reasons = co_await program.planner().reasons(found);
    }
    co_return options.json ? written(planDocument(found, reasons)) : written(planTable(found, reasons));
}

Task<int> remove(CommandLineProgram& program, RemoveOptions options) {
    if (!options.yes && !options.dryRun && !isTerminal(stdin)) {
        complain("remove needs --yes where there is no terminal to ask on");
        co_return misuse;
    }
    const auto application = co_await findApplication(program, options.application);
    if (!application) {
        complain(application.error());
        co_return misuse;
    }
    if (application->isSystemApplication) {
        complain("'" + application->name + "' is protected: system applications cannot be removed by Orvane");
        co_return misuse;
    }
    RemovalPlan found;
    {
        Progress progress(program.mainExecutor(), "Looking for what belongs to it…");
        found = co_await program.planner().plan(*application);
    }
    const auto chosen = choice(found, options.keep);
    if (!chosen) {
        complain("'" + chosen.error() + "' is no item of this application");
        co_return misuse;
    }
    if (options.dryRun) {
        co_return options.json ? written(dryRunDocument(chosen->items)) : written(itemTable(chosen->items));
    }
    const auto confirmed = confirmation(found, chosen->items, options);
    if (confirmed != Confirmation::given) {
        const bool isShown = confirmed != Confirmation::notShown;
        complain(isShown ? "nothing was removed"
                         : "nothing was removed: what would be removed could not be written");
        co_return isShown ? done : itemFailed;
    }

    const auto mode = options.permanently ? RemovalMode::permanent : RemovalMode::trash;
    RemovalResult result;
    {
        Progress progress(program.mainExecutor(),
                          options.permanently ? "Deleting permanently…" : "Moving to Trash…");
        co_await listInLibrary(program, application->id());
        auto& service = program.removalService();
        const ReviewedPlan reviewed{chosen->kept, found.folders};
        if (options.permanently) {
            result = co_await service.deletePermanently(chosen->items, found.runningServices, reviewed);
        } else {
            result = co_await service.moveToTrash(chosen->items, found.runningServices, reviewed);
        }
        co_await program.library().updateSavedAvailability();
    }
    const int output =
        options.json ? written(removalDocument(result, mode)) : written(removalMessage(result, mode) + "\n");
    for (const auto& failure : result.failed) complain(failure.url.path() + ": " + failure.reason);
    co_return result.failed.empty() ? output : itemFailed;
}

Task<int> complete(CommandLineProgram& program) {
    auto known = co_await program.catalog().load();
    if (known.empty()) known = co_await program.scanner().scan(BundleSizes::left);
    std::string text;
    for (const auto& word : applicationWords(known)) (text += word) += '\0';
    co_return written(text);
}

int listDisks(DisksOptions options) {
    const auto found = macDisksAmong(mountedFolders(), patienceWithDisks);
    const int output = written(options.json ? disksDocument(found).dump() + "\n" : disksTable(found.disks));
    for (const auto& folder : found.silent) complain("'" + folder + "' does not answer and was left out");
    return output;
}

Task<int> perform(CommandLineProgram& program, Command command) {
    if (auto* options = std::get_if<ListOptions>(&command))
        co_return co_await list(program, std::move(*options));
    if (auto* options = std::get_if<PlanOptions>(&command))
        co_return co_await plan(program, std::move(*options));
    if (std::holds_alternative<CompleteOptions>(command)) co_return co_await complete(program);
    co_return co_await remove(program, std::get<RemoveOptions>(std::move(command)));
}

}  // namespace orvane::commandline
