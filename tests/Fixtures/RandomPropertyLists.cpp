#include "tests/Fixtures/RandomPropertyLists.h"

#include <cmath>

#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/PropertyListTree.h"
#include "tests/Fixtures/RunProgram.h"

namespace orvane::test {

namespace {

using nlohmann::json;

json sayable(const json& tree) {
    if (tree.is_number_float()) return std::isfinite(tree.get<double>()) ? tree : json();
    if (!tree.is_structured()) return tree;
    auto result = tree;
    for (auto& each : result) each = sayable(each);
    return result;
}

}  // namespace

json randomPropertyLists(std::uint64_t seed, std::uint64_t count) {
    const auto output =
        runProgram({"/usr/bin/python3", "-B", sourceDirectory() + "/tests/Formats/random-property-lists.py",
                    std::to_string(seed), std::to_string(count)})
            .output;
    return json::parse(output, nullptr, false);
}

std::optional<json> sayablePropertyList(const std::string& bytes) {
    const auto list = propertyListTree(bytes);
    return list ? std::optional(sayable(*list)) : std::nullopt;
}

}  // namespace orvane::test
