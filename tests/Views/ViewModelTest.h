#pragma once

#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Bundle.h"
#include "Services/AppLibrary.h"
#include "Services/ApplicationCatalog.h"
#include "Services/ApplicationScanner.h"
#include "Text/LocalizedText.h"
#include "Views/QtExecutor.h"
#include "Views/ViewServices.h"
#include "tests/Fixtures/FakePrivilegedRunner.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/ManualClock.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {

/// The program's own objects over a throw-away Mac volume, on Qt's event loop. The desktop, the
/// administrator's prompt and the time are the test's.
class ViewModelTest : public testing::Test {
  protected:
    ViewModelTest();
    ~ViewModelTest() override;

    /// An installed record; its bundle need not exist.
    static InstalledApplication application(const std::string& name);
    static FileURL bundleURL(const std::string& name);

    /// Makes a bundle that the scanner finds, with an information dictionary.
    void installBundle(const std::string& name) const;
    void removeBundle(const std::string& name) const;
    /// Saves records as the catalog that the next `load` shows. Bundles are made for the installed ones.
    void saveCatalog(const std::vector<InstalledApplication>& applications) const;

    /// Lets the event loop run until the condition holds; fails the test when it does not come to hold.
    static void waitUntil(const std::function<bool()>& condition);
    /// One turn of the event loop: what has been posted runs, what that posts may not.
    static void turn();
    /// Runs an operation of the library to its end.
    void complete(Task<void> operation);
    /// Saves the records and shows them, through the library.
    void load(const std::vector<InstalledApplication>& applications);
    /// The library's record of an application; the test ends when there is none.
    const InstalledApplication& listed(const std::string& name) const;

    TestVolume mac;
    FakeWorkspace workspace;
    FakePrivilegedRunner privilegedRunner;
    asio::thread_pool pool{2};
    QtExecutionContext mainContext;
    ManualClock clock{mainContext.get_executor()};
    std::unique_ptr<LocalizedText> localizedText = makeLocalizedText("en_US.UTF-8");
    std::unique_ptr<BundleLoader> bundleLoader;
    ApplicationScanner scanner;
    ApplicationCatalog catalog;
    std::shared_ptr<AppLibrary> library;
    ViewServices services;
};

}  // namespace orvane::test
