#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "Models/RelatedItem.h"
#include "Models/RemovalResult.h"
#include "tests/Fixtures/FakePrivilegedRunner.h"
#include "tests/Fixtures/FakeWorkspace.h"
#include "tests/Fixtures/MainLoop.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane {

inline void PrintTo(const RemovalResult::Failure& failure, std::ostream* stream) {
    *stream << failure.url.path() << ": " << failure.reason;
}

/// A disk with a home and its Trash, the real file manager on it, and a desktop and a script runner of the
/// test's own.
class RemovalFixture : public testing::Test {
  protected:
    static constexpr const char* isProtected =
        "Orvane does not remove this folder, because other applications use it.";
    static constexpr const char* stillExists = "The item still exists after administrator authorization.";

    RemovalFixture() {
        volume_.makeDirectory("/Applications");
        volume_.makeDirectory("/Users/sample/.Trash");
    }

    static FileURL url(const std::string& path) { return FileURL::fromPath(path, false); }

    static RelatedItem item(const std::string& path, RelatedItemKind kind = RelatedItemKind::other,
                            bool requiresAdministrator = false) {
        return {url(path), kind, 1, requiresAdministrator, std::nullopt};
    }

    /// A file at that path, and the item that it is.
    RelatedItem madeItem(const std::string& path, RelatedItemKind kind = RelatedItemKind::other,
                         bool requiresAdministrator = false) const {
        volume_.makeFile(path);
        return item(path, kind, requiresAdministrator);
    }
    RelatedItem madeAdministratorItem(const std::string& path) const {
        return madeItem(path, RelatedItemKind::other, true);
    }

    /// What the commands of a request do when all goes well.
    PrivilegedOutcome carryOut(const PrivilegedRequest& request) const {
        for (const auto& item : request.items) {
            if (request.mode == RemovalMode::trash) {
                std::filesystem::rename(volume_.machinePath(item.source),
                                        volume_.machinePath(item.destination));
            } else {
                std::filesystem::remove_all(volume_.machinePath(item.source));
            }
        }
        return {};
    }

    test::TestVolume volume_;
    test::FakeWorkspace workspace_;
    test::FakePrivilegedRunner runner_;
    test::MainLoop mainLoop_;
};

}  // namespace orvane
