#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <string>
#include <vector>

#include "Services/ApplicationScanner.h"
#include "tests/Fixtures/ApplicationVolume.h"
#include "tests/Fixtures/MainLoop.h"

namespace orvane {

/// A scanner on a volume of its own.
class ApplicationScannerTest : public testing::Test {
  protected:
    std::vector<InstalledApplication> scan() { return mainLoop.run(scanner.scan()); }

    /// The only application of the volume.
    InstalledApplication scanned() {
        const auto applications = scan();
        EXPECT_EQ(applications.size(), 1U);
        return applications.empty() ? InstalledApplication() : applications.front();
    }

    static std::vector<std::string> paths(const std::vector<InstalledApplication>& applications) {
        std::vector<std::string> paths;
        for (const auto& application : applications) paths.push_back(application.id());
        return paths;
    }

    static std::vector<std::string> names(const std::vector<InstalledApplication>& applications) {
        std::vector<std::string> names;
        for (const auto& application : applications) names.push_back(application.name);
        return names;
    }

    const test::ApplicationVolume volume;
    test::MainLoop mainLoop;
    asio::thread_pool pool{2};
    ApplicationScanner scanner{pool.get_executor(), volume.files(), volume.bundleLoader(),
                               volume.localizedText()};
};

}  // namespace orvane
