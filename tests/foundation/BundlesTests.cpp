#include <gtest/gtest.h>

#include "Platform/Posix/BundleLoader.h"
#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {
namespace {

using nlohmann::json;

json orNull(const std::optional<std::string>& text) {
    return text ? json(*text) : json();
}

TEST(FoundationBundles, SayOfThemselvesWhatTheySayOnTheMac) {
    forEachRow("bundles.json", [](const json& row) {
        const TestVolume mac;
        mac.makeDirectory("/Foo.app");
        for (const auto& file : row.at("files")) {
            mac.makeFile("/Foo.app/" + file.at("path").get<std::string>(),
                         bytesFromBase64(file.value("base64", std::string())));
        }
        const auto loader = makeBundleLoader(mac.files(), {{"en", {}, {}}});
        const auto bundle = loader->bundle(FileURL::fromPath("/Foo.app", true));
        if (!bundle) return differences({{"bundle", row.at("bundle"), false}});
        const auto fact = [&](std::string_view key, const std::optional<std::string>& text) {
            return Fact{key, row.at(std::string(key)), orNull(text)};
        };
        return differences({{"bundle", row.at("bundle"), true},
                            {"identifier", row.at("identifier"), orNull(bundle->identifier)},
                            fact("CFBundleDisplayName", bundle->displayName),
                            fact("CFBundleName", bundle->name),
                            fact("CFBundleShortVersionString", bundle->shortVersion),
                            fact("CFBundleVersion", bundle->version)});
    });
}

}  // namespace
}  // namespace orvane::test
