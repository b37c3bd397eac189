#include <gtest/gtest.h>

#include "Models/FileSizeFormatter.h"
#include "tests/Fixtures/FoundationData.h"

namespace orvane::test {
namespace {

using nlohmann::json;

TEST(Foundation, ByteCounts) {
    forEachRow("byte-counts.json", [](const json& row) {
        const auto text = FileSizeFormatter::shared().string(row.at("bytes").get<std::int64_t>());
        return differences({{"text", row.at("text"), text}});
    });
}

}  // namespace
}  // namespace orvane::test
