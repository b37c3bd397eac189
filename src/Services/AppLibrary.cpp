#include "Services/AppLibrary.h"

#include <algorithm>
#include <asio/bind_cancellation_slot.hpp>
#include <asio/co_spawn.hpp>
#include <asio/this_coro.hpp>
#include <chrono>
#include <exception>
#include <utility>

namespace orvane {

namespace {

/// How long a missing application stays listed.
constexpr std::chrono::seconds missingApplicationDelay{5};

}  // namespace

std::shared_ptr<AppLibrary> AppLibrary::make(asio::any_io_executor mainExecutor, ApplicationScanner& scanner,
                                             ApplicationCatalog& catalog, const LocalizedText& localizedText,
                                             Clock& clock) {
    return std::shared_ptr<AppLibrary>(
        new AppLibrary(std::move(mainExecutor), scanner, catalog, localizedText, clock));
}

AppLibrary::AppLibrary(asio::any_io_executor mainExecutor, ApplicationScanner& scanner,
                       ApplicationCatalog& catalog, const LocalizedText& localizedText, Clock& clock)
    : mainExecutor_(std::move(mainExecutor)),
      scanner_(scanner),
      catalog_(catalog),
      localizedText_(localizedText),
      clock_(clock) {}

void AppLibrary::setSelectedApplicationID(std::optional<std::string> id) {
    publish(Field::selectedApplicationID, selectedApplicationID_, std::move(id));
}

void AppLibrary::setSearchText(std::string text) {
    publish(Field::searchText, searchText_, std::move(text));
}

FilteredApplications AppLibrary::filteredApplications() const {
    const auto matches = [this](const std::string& text) {
        return localizedText_.localizedCaseInsensitiveContains(text, searchText_);
    };
    FilteredApplications filtered{.list = applications_, .shown = {}};
    filtered.shown.reserve(applications_->size());
    for (const auto& application : *applications_) {
        const auto& identifier = application.bundleIdentifier;
        const bool isShown =
            searchText_.empty() || matches(application.name) || (identifier && matches(*identifier));
        if (isShown) filtered.shown.push_back(&application);
    }
    return filtered;
}

const InstalledApplication* AppLibrary::selectedApplication() const {
    if (!selectedApplicationID_) return nullptr;
    const auto selected =
        std::ranges::find(*applications_, *selectedApplicationID_, &InstalledApplication::id);
    return selected == applications_->end() ? nullptr : &*selected;
}

Task<void> AppLibrary::scan() {
    const auto self = shared_from_this();
    publish(Field::isScanning, isScanning_, true);
    auto discovered = co_await scanner_.scan();
    auto merged = co_await catalog_.merge(std::move(discovered), applications_);
    publishApplications(std::move(merged));
    co_await catalog_.save(applications_);
    selectFirstAvailableApplication();
    publish(Field::isScanning, isScanning_, false);
    scheduleMissingApplicationRemoval();
}

Task<void> AppLibrary::loadCatalog() {
    const auto self = shared_from_this();
    if (!applications_->empty()) co_return;
    auto loaded = co_await catalog_.load();
    if (loaded.empty()) {
        co_await scan();
        co_return;
    }
    auto refreshed = co_await catalog_.updateAvailability(std::move(loaded));
    publishApplications(std::move(refreshed));
    co_await catalog_.save(applications_);
    selectFirstAvailableApplication();
    scheduleMissingApplicationRemoval();
}

Task<void> AppLibrary::updateSavedAvailability() {
    const auto self = shared_from_this();
    auto refreshed = co_await catalog_.updateAvailability(*applications_);
    publishApplications(std::move(refreshed));
    co_await catalog_.save(applications_);
    selectFirstAvailableApplication();
    scheduleMissingApplicationRemoval();
}

void AppLibrary::addObserver(Observer& observer) {
    observers_.push_back(&observer);
}

void AppLibrary::removeObserver(Observer& observer) {
    std::ranges::replace(observers_, &observer, nullptr);
    if (publishDepth_ == 0) std::erase(observers_, nullptr);
}

template <typename T>
void AppLibrary::publish(Field field, T& member, T value) {
    // Whoever comes in the middle of a change is not told of its end; whoever has left is told nothing more.
    const auto tell = [this, field, count = observers_.size()](void (Observer::*notification)(Field)) {
        for (std::size_t i = 0; i < count; ++i) {
            if (auto* observer = observers_[i]) (observer->*notification)(field);
        }
    };
    ++publishDepth_;
    tell(&Observer::libraryWillChange);
    member = std::move(value);
    tell(&Observer::libraryDidChange);
    if (--publishDepth_ == 0) std::erase(observers_, nullptr);
}

void AppLibrary::publishApplications(std::vector<InstalledApplication> applications) {
    publish(Field::applications, applications_,
            std::make_shared<const std::vector<InstalledApplication>>(std::move(applications)));
}

void AppLibrary::selectFirstAvailableApplication() {
    const auto* selected = selectedApplication();
    if (selected != nullptr && selected->isInstalled) return;

    const auto firstID = [this](auto isWanted) -> std::optional<std::string> {
        const auto found = std::ranges::find_if(*applications_, isWanted);
        return found == applications_->end() ? std::nullopt : std::optional(found->id());
    };
    auto id = firstID([](const auto& a) { return a.isInstalled && !a.isSystemApplication; });
    if (!id) id = firstID([](const auto& a) { return a.isInstalled; });
    if (!id) id = firstID([](const auto&) { return true; });
    setSelectedApplicationID(std::move(id));
}

void AppLibrary::scheduleMissingApplicationRemoval() {
    std::vector<std::string> missingIDs;
    for (const auto& application : *applications_) {
        if (!application.isInstalled) {
            missingIDs.push_back(application.id());
        } else if (const auto task = missingRemovalTasks_.extract(application.id())) {
            task.mapped()->emit(asio::cancellation_type::terminal);
        }
    }
    for (const auto& id : missingIDs) {
        if (missingRemovalTasks_.contains(id)) continue;
        // The task keeps its own signal alive: the map lets go of it before the task has ended.
        const auto signal = std::make_shared<asio::cancellation_signal>();
        missingRemovalTasks_.emplace(id, signal);
        auto completion =
            asio::bind_cancellation_slot(signal->slot(), [signal](const std::exception_ptr& error) {
                if (error) std::rethrow_exception(error);
            });
        asio::co_spawn(mainExecutor_, removeAfterDelay(weak_from_this(), clock_, id), std::move(completion));
    }
}

Task<void> AppLibrary::removeAfterDelay(std::weak_ptr<AppLibrary> library, Clock& clock, std::string id) {
    co_await asio::this_coro::throw_if_cancelled(false);
    co_await clock.sleep(missingApplicationDelay);
    const auto cancellation = co_await asio::this_coro::cancellation_state;
    if (cancellation.cancelled() != asio::cancellation_type::none) co_return;
    if (const auto strong = library.lock()) co_await strong->removeMissingApplication(std::move(id));
}

Task<void> AppLibrary::removeMissingApplication(std::string id) {
    auto remaining = *applications_;
    // A record that names no file, and so is never there, can have the id of an installed application.
    const auto count = std::erase_if(remaining, [&](const auto& application) {
        return application.id() == id && !application.isInstalled;
    });
    if (count > 0) publishApplications(std::move(remaining));
    missingRemovalTasks_.erase(id);
    if (count == 0) co_return;
    co_await catalog_.save(applications_);
    selectFirstAvailableApplication();
}

}  // namespace orvane
