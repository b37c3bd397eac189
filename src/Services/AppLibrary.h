#pragma once

#include <asio/any_io_executor.hpp>
#include <asio/cancellation_signal.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Platform/Clock.h"
#include "Services/ApplicationCatalog.h"
#include "Services/ApplicationScanner.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// Some applications of a list, which they keep.
struct FilteredApplications {
    SharedApplications list;
    /// In the order of the list, into which they point.
    std::vector<const InstalledApplication*> shown;
};

/// The observable state of the program: the known applications, the selection, the search text, whether a
/// scan runs. Confined to the main executor: every call comes from there and every coroutine runs there,
/// suspended while the scanner and the catalog work. Held by shared pointers; its five-second timers hold it
/// weakly.
class AppLibrary : public std::enable_shared_from_this<AppLibrary> {
  public:
    enum class Field { applications, selectedApplicationID, searchText, isScanning };

    /// Told of every assignment to a published field, before and after the value changes. Removed before it
    /// ends. May add and remove observers while it is told: one that is added is told from the next change
    /// on, one that is removed is told nothing more.
    class Observer {
      public:
        virtual ~Observer() = default;
        virtual void libraryWillChange(Field) {}
        virtual void libraryDidChange(Field) {}
    };

    /// The scanner, the catalog, the text and the clock outlive the library and its pending coroutines.
    static std::shared_ptr<AppLibrary> make(asio::any_io_executor mainExecutor, ApplicationScanner& scanner,
                                            ApplicationCatalog& catalog, const LocalizedText& localizedText,
                                            Clock& clock);

    /// Valid until the next change of the list.
    const std::vector<InstalledApplication>& applications() const { return *applications_; }
    const std::optional<std::string>& selectedApplicationID() const { return selectedApplicationID_; }
    void setSelectedApplicationID(std::optional<std::string> id);
    const std::string& searchText() const { return searchText_; }
    void setSearchText(std::string text);
    bool isScanning() const { return isScanning_; }

    /// The applications whose name or identifier contains the search text; all of them when it is empty.
    FilteredApplications filteredApplications() const;
    /// The application with the selected id; null when none is. Valid until the next change of the list.
    const InstalledApplication* selectedApplication() const;

    /// Finds the installed applications, merges them into the list, saves it, keeps a sensible one selected.
    /// Two scans may overlap; neither fails.
    Task<void> scan();
    /// Shows the saved catalog with its availability refreshed, or scans when there is none. Once the list
    /// holds something this does nothing.
    Task<void> loadCatalog();
    /// Refreshes which applications are installed and saves that.
    Task<void> updateSavedAvailability();

    void addObserver(Observer& observer);
    void removeObserver(Observer& observer);

  private:
    AppLibrary(asio::any_io_executor mainExecutor, ApplicationScanner& scanner, ApplicationCatalog& catalog,
               const LocalizedText& localizedText, Clock& clock);

    template <typename T>
    void publish(Field field, T& member, T value);
    void publishApplications(std::vector<InstalledApplication> applications);
    void selectFirstAvailableApplication();
    void scheduleMissingApplicationRemoval();
    static Task<void> removeAfterDelay(std::weak_ptr<AppLibrary> library, Clock& clock, std::string id);
    Task<void> removeMissingApplication(std::string id);

    asio::any_io_executor mainExecutor_;
    ApplicationScanner& scanner_;
    ApplicationCatalog& catalog_;
    const LocalizedText& localizedText_;
    Clock& clock_;

    /// Replaced whole, so that the catalog reads it while the views do.
    SharedApplications applications_ = std::make_shared<const std::vector<InstalledApplication>>();
    std::optional<std::string> selectedApplicationID_;
    std::string searchText_;
    bool isScanning_ = false;
    /// One pending removal per missing application, by id.
    std::map<std::string, std::shared_ptr<asio::cancellation_signal>> missingRemovalTasks_;
    /// Null for one that left while a change was told.
    std::vector<Observer*> observers_;
    int publishDepth_ = 0;
};

}  // namespace orvane
