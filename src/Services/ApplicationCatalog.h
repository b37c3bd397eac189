#pragma once

#include <memory>
#include <vector>

#include "Models/InstalledApplication.h"
#include "Platform/FileManager.h"
#include "Services/Actor.h"
#include "Text/LocalizedText.h"

namespace orvane {

/// A list that nobody changes any more: whoever holds it reads it, on any thread, without a copy. Never null.
using SharedApplications = std::shared_ptr<const std::vector<InstalledApplication>>;

/// The list of every application seen so far, in one file, `applications.json`. Keeps nothing but the file,
/// which only this class writes. The platform services outlive it.
class ApplicationCatalog : private Actor {
  public:
    ApplicationCatalog(const asio::any_io_executor& pool, FileManager& fileManager,
                       const LocalizedText& localizedText);

    /// The saved list; empty when there is no file, or anything in it is not as it should be. On the actor.
    Task<std::vector<InstalledApplication>> load();

    /// Replaces the file. A failure leaves the old one as it was and is not reported. On the actor.
    Task<void> save(SharedApplications applications);

    /// The same list with `isInstalled` as the disk has it now. On the actor.
    Task<std::vector<InstalledApplication>> updateAvailability(
        std::vector<InstalledApplication> applications);

    /// The discovered records, then the saved ones that were not discovered, marked not installed; sorted by
    /// name, stably. Paths are compared in their standardized form. On the actor.
    Task<std::vector<InstalledApplication>> merge(std::vector<InstalledApplication> discovered,
                                                  SharedApplications saved);

    /// Where the catalog is kept.
    FileURL fileURL() const;

  private:
    FileURL folderURL() const;

    const asio::any_io_executor pool_;
    FileManager& fileManager_;
    const LocalizedText& localizedText_;
};

}  // namespace orvane
