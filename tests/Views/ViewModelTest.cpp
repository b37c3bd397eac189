#include "tests/Views/ViewModelTest.h"

#include <QtTest/QTest>
#include <algorithm>
#include <asio/co_spawn.hpp>
#include <exception>
#include <filesystem>
#include <stdexcept>

#include "Formats/CatalogCoding.h"
#include "Platform/Posix/BundleLoader.h"

namespace orvane::test {

ViewModelTest::ViewModelTest()
    : bundleLoader(makeBundleLoader(mac.files())),
      scanner(pool.get_executor(), mac.files(), *bundleLoader, *localizedText),
      catalog(pool.get_executor(), mac.files(), *localizedText),
      library(AppLibrary::make(mainContext.get_executor(), scanner, catalog, *localizedText, clock)),
      services{mainContext.get_executor(),
               pool.get_executor(),
               library,
               [this] {
                   return std::make_shared<RemovalPlanner>(pool.get_executor(), mac.files(), workspace,
                                                           *localizedText);
               },
               [this] {
                   return std::make_shared<AppRemovalService>(pool.get_executor(), mac.files(), workspace,
                                                              privilegedRunner);
               },
               workspace} {}

ViewModelTest::~ViewModelTest() {
    // What models leave undone ends on the pool or is dropped with the loop.
    pool.join();
}

FileURL ViewModelTest::bundleURL(const std::string& name) {
    return FileURL::fromPath("/Applications/" + name + ".app", true);
}

InstalledApplication ViewModelTest::application(const std::string& name) {
    InstalledApplication record;
    record.url = bundleURL(name);
    record.name = name;
    record.bundleIdentifier = "org.example." + name;
    record.version = "1.0";
    record.size = 12'300'000;
    record.isInstalled = true;
    return record;
}

void ViewModelTest::installBundle(const std::string& name) const {
    mac.makeFile(bundleURL(name).path() + "/Contents/Info.plist",
                 R"(<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>org.example.)" + name +
                     R"(</string><key>CFBundleShortVersionString</key><string>1.0</string></dict></plist>)");
}

void ViewModelTest::removeBundle(const std::string& name) const {
    std::filesystem::remove_all(mac.machinePath(bundleURL(name).path()));
}

void ViewModelTest::saveCatalog(const std::vector<InstalledApplication>& applications) const {
    for (const InstalledApplication& record : applications)
        if (record.isInstalled && record.url.fileSystemPath()) mac.makeDirectory(record.url.path());
    mac.makeFile(catalog.fileURL().path(), encodeCatalog(applications).value());
}

void ViewModelTest::waitUntil(const std::function<bool()>& condition) {
    // Under the thread sanitizer a sheet takes half a minute to open.
    constexpr int deadline = 120'000;
    ASSERT_TRUE(QTest::qWaitFor(condition, deadline));
}

void ViewModelTest::turn() {
    QCoreApplication::sendPostedEvents();
}

void ViewModelTest::complete(Task<void> operation) {
    bool isDone = false;
    asio::co_spawn(mainContext.get_executor(), std::move(operation),
                   [&isDone](const std::exception_ptr& error) {
                       if (error) std::rethrow_exception(error);
                       isDone = true;
                   });
    waitUntil([&isDone] { return isDone; });
}

void ViewModelTest::load(const std::vector<InstalledApplication>& applications) {
    saveCatalog(applications);
    complete(library->loadCatalog());
}

const InstalledApplication& ViewModelTest::listed(const std::string& name) const {
    const auto& all = library->applications();
    const auto found = std::ranges::find(all, name, &InstalledApplication::name);
    if (found == all.end()) throw std::runtime_error(name + " is not listed");
    return *found;
}

}  // namespace orvane::test
