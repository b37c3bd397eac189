// Python's own reader and ours read the same from random property lists, in both formats.
#include <algorithm>
#include <stdexcept>

#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/RandomPropertyLists.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

using nlohmann::json;

/// The mistake: integers of 32 bits.
json inFewerBits(json tree) {
    if (tree.is_number_integer()) return static_cast<std::int32_t>(tree.get<std::int64_t>());
    if (tree.is_structured()) {
        for (auto& each : tree) each = inFewerBits(each);
    }
    return tree;
}

ProofOutcome compare(const ProofTask& task) {
    ProofOutcome outcome;
    outcome.unit = "lists";
    // At once in memory: no more than that many values, each in both formats.
    constexpr std::uint64_t batch = 500;
    for (auto seed = task.seed; outcome.trials < task.rounds; ++seed) {
        const auto lists = randomPropertyLists(seed, std::min(batch, (task.rounds + 1) / 2));
        if (!lists.is_array()) throw std::runtime_error("Python gave no lists");
        for (const auto& row : lists) {
            auto list = sayablePropertyList(bytesFromBase64(row.at("base64").get<std::string>()));
            if (list && task.isWrong) list = inFewerBits(*list);
            ++outcome.trials;
            if (list == row.at("value")) continue;
            ++outcome.failures;
            outcome.note = row.at("base64");
            if (task.isWrong) return outcome;
        }
    }
    return outcome;
}

const ProofHarness listsOfPython("ListsOfPython", compare);

}  // namespace
}  // namespace orvane::test
