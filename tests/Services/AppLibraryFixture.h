#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Services/AppLibrary.h"
#include "tests/Fixtures/ApplicationVolume.h"
#include "tests/Fixtures/GatedText.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/ManualClock.h"

namespace orvane {

/// A library on a volume of its own, with the real scanner and catalog, whose clock the test moves.
class AppLibraryTest : public testing::Test {
  protected:
    void TearDown() override { gate.setOpen(true); }

    static InstalledApplication record(const std::string& path) {
        InstalledApplication application;
        application.url = FileURL::fromPath(path, true);
        application.name = application.url.deletingPathExtension().lastPathComponent();
        application.version = "saved";
        application.isSystemApplication = path.starts_with("/System/");
        application.isInstalled = true;
        return application;
    }

    static InstalledApplication missing(const std::string& path) {
        auto application = record(path);
        application.isInstalled = false;
        return application;
    }

    /// Paths, each with "?" behind it when the application is missing.
    static std::vector<std::string> marked(const std::vector<InstalledApplication>& applications) {
        std::vector<std::string> paths;
        for (const auto& application : applications) {
            paths.push_back(application.id() + (application.isInstalled ? "" : "?"));
        }
        return paths;
    }

    static std::vector<std::string> marked(const FilteredApplications& applications) {
        std::vector<InstalledApplication> shown;
        for (const auto* application : applications.shown) shown.push_back(*application);
        return marked(shown);
    }

    std::vector<std::string> listed() const { return marked(library->applications()); }
    /// What the catalog's file holds.
    std::vector<std::string> saved() { return marked(mainLoop.run(catalog.load())); }
    /// The same as bytes, without asking the catalog; empty where there is no file.
    std::string savedText() const {
        return volume.files().contents(catalog.fileURL(), std::size_t{1} << 20U).value_or(std::string());
    }
    void save(std::vector<InstalledApplication> applications) {
        mainLoop.run(
            catalog.save(std::make_shared<const std::vector<InstalledApplication>>(std::move(applications))));
    }

    void scan() { mainLoop.run(library->scan()); }
    void load() { mainLoop.run(library->loadCatalog()); }
    void refresh() { mainLoop.run(library->updateSavedAvailability()); }

    /// Lets time pass, and everything happen that this brings about.
    void pass(std::chrono::nanoseconds duration) {
        clock.advance(duration);
        mainLoop.drain();
        // The catalog works in turn: once it has answered this, it has done what was asked of it before.
        mainLoop.run(catalog.load());
        mainLoop.drain();
    }

    const test::ApplicationVolume volume;
    test::MainLoop mainLoop;
    test::ManualClock clock{mainLoop.executor()};
    /// Closed, it stops the catalog in the middle of a merge.
    test::GatedText gate{volume.localizedText()};
    asio::thread_pool pool{2};
    ApplicationScanner scanner{pool.get_executor(), volume.files(), volume.bundleLoader(),
                               volume.localizedText()};
    ApplicationCatalog catalog{pool.get_executor(), volume.files(), gate};
    std::shared_ptr<AppLibrary> library =
        AppLibrary::make(mainLoop.executor(), scanner, catalog, volume.localizedText(), clock);
};

}  // namespace orvane
