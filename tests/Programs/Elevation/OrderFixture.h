#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

#include "Platform/Linux/RemovalOrder.h"
#include "tests/Fixtures/TestVolume.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane {

namespace test {

/// Of a path of this machine, links not followed.
inline FileIdentity identityOf(const std::string& machinePath) {
    struct stat status {};
    EXPECT_EQ(::lstat(machinePath.c_str(), &status), 0) << machinePath;
    return {status.st_dev, status.st_ino};
}

}  // namespace test

/// A volume with a user's caches and Trash, and orders for what is in the caches.
class OrderVolume {
  protected:
    static constexpr const char* caches = "/Users/sample/Library/Caches";

    OrderVolume() {
        volume_.makeDirectory(caches);
        volume_.makeDirectory("/Users/sample/.Trash");
    }

    /// A file in the caches, and its path.
    std::string made(const std::string& name) const {
        const auto path = std::string(caches) + "/" + name;
        volume_.makeFile(path);
        return path;
    }
    FileIdentity identity(const std::string& path) const {
        return test::identityOf(volume_.machinePath(path));
    }

    RemovalOrder orderToDelete(const std::vector<std::string>& sources) const {
        return orderFor(RemovalMode::permanent, sources);
    }
    RemovalOrder orderToTrash(const std::vector<std::string>& sources) const {
        return orderFor(RemovalMode::trash, sources);
    }

    RemovalOrder orderFor(RemovalMode mode, const std::vector<std::string>& sources) const {
        RemovalOrder order{
            std::filesystem::canonical(volume_.machinePath("/")), identity("/"), "/Users/sample", {mode, {}}};
        for (const auto& source : sources) {
            const auto name = source.substr(source.rfind('/') + 1);
            order.request.items.push_back({PrivilegedRequest::Item::Kind::item, source,
                                           mode == RemovalMode::trash ? "/Users/sample/.Trash/" + name : "",
                                           identity(source.substr(0, source.rfind('/')))});
        }
        return order;
    }

    test::TestVolume volume_;
};

class OrderFixture : public testing::Test, protected OrderVolume {};

}  // namespace orvane
