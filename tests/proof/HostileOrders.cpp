// Orders that nobody should send, to the installed part that runs as root: made up, with bytes turned, sent
// again, carried out while folders are swapped. The wrong variant believes what it is told.
#include "tests/Programs/Elevation/HostileCaller.h"

#include <iostream>

#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

const ProofHarness hostileOrders("HostileOrders", [](const ProofTask& task) {
    if (!HostileCaller::isPossible()) return notHere("only root can give files to others");
    HostileCaller caller(InstalledRootPart::builtPrograms(), task.seed);
    if (task.isWrong) caller.askTheCredulous();
    ProofOutcome outcome;
    outcome.unit = "orders";
    while (outcome.trials < task.rounds && !(task.isWrong && outcome.failures > 0)) {
        ++outcome.trials;
        const auto harm = caller.ask();
        if (harm.empty()) continue;
        ++outcome.failures;
        std::cout << "round " << outcome.trials << ": " << caller.asked() << '\n';
        for (const auto& each : harm) std::cout << "  " << each << '\n';
    }
    // Neither all nor none: otherwise little was tried.
    if (!task.isWrong && task.rounds >= 100 && caller.carriedOut() < task.rounds / 100)
        throw std::runtime_error("hardly an order was carried out");
    outcome.note = std::to_string(caller.carriedOut()) + " carried out, " + std::to_string(caller.swaps()) +
                   " swaps meanwhile";
    return outcome;
});

}  // namespace
}  // namespace orvane::test
