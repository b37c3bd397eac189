#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <asio/thread_pool.hpp>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Services/RemovalPlanner.h"
#include "tests/Fixtures/ApplicationVolume.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane {

/// A planner on a volume of its own, and what it finds for an application Foo.
class RemovalPlannerTest : public testing::Test {
  protected:
    using Kind = RelatedItemKind;
    /// Path, kind and whether it needs an administrator.
    using Entry = std::tuple<std::string, Kind, bool>;

    RemovalPlan plan(const InstalledApplication& application) const {
        test::MainLoop mainLoop;
        std::optional<asio::thread_pool> pool;
        if (mayStartThreads) pool.emplace(2);
        RemovalPlanner planner(pool ? pool->get_executor() : mainLoop.executor(), volume.files(), workspace,
                               volume.localizedText());
        return mainLoop.run(planner.plan(application));
    }

    std::vector<Entry> entries(const InstalledApplication& application) const {
        std::vector<Entry> entries;
        for (const auto& item : plan(application).items) {
            entries.emplace_back(item.id(), item.kind, item.requiresAdministrator);
        }
        return entries;
    }

    std::vector<std::string> paths(const InstalledApplication& application) const {
        std::vector<std::string> paths;
        for (const auto& item : plan(application).items) paths.push_back(item.id());
        return paths;
    }

    /// The process ids of an application's services when these applications run.
    std::vector<std::int32_t> services(const InstalledApplication& application,
                                       std::vector<RunningApplication> running) {
        workspace.setRunningApplications(std::move(running));
        std::vector<std::int32_t> services;
        for (const auto& service : plan(application).runningServices) services.push_back(service.id());
        return services;
    }

    static RunningApplication running(std::int32_t processIdentifier, std::optional<std::string> identifier,
                                      const std::string& executablePath = {}) {
        RunningApplication application;
        application.processIdentifier = processIdentifier;
        application.bundleIdentifier = std::move(identifier);
        if (!executablePath.empty()) application.executableURL = FileURL::fromPath(executablePath, false);
        return application;
    }

    static InstalledApplication application(const FileURL& url, std::optional<std::string> identifier) {
        InstalledApplication application;
        application.url = url;
        application.name = "Display Name";
        application.bundleIdentifier = std::move(identifier);
        application.isInstalled = true;
        return application;
    }

    /// Not in a forked child: the thread sanitizer forbids it there.
    bool mayStartThreads = true;
    const std::string library = "/Users/sample/Library/";
    const test::ApplicationVolume volume;
    test::FakeWorkspace workspace;
    const InstalledApplication foo =
        application(FileURL::fromPath("/Applications/Foo.app", true), "com.example.foo");
    const InstalledApplication anonymousFoo = application(foo.url, std::nullopt);
};

}  // namespace orvane
