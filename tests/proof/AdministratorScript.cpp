// Batches with hostile names come to the same tools, arguments, words and status through the Mac's
// AppleScript and a shell, and through the program's own text and a shell. The wrong variant's script does
// not quote.
#include <iostream>
#include <stdexcept>

#include "tests/AppleScript/ScriptBatches.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

std::string withoutQuotes(std::string script) {
    const std::string quoted = "(quoted form of sourcePath)";
    for (auto at = script.find(quoted); at != std::string::npos; at = script.find(quoted)) {
        script.replace(at, quoted.size(), "sourcePath");
    }
    if (script == privilegedAppleScript()) throw std::logic_error("the script quotes in another way");
    return script;
}

ProofOutcome run(const ProofTask& task) {
    RecordedTools().enter();
    const auto script = task.isWrong ? withoutQuotes(std::string(privilegedAppleScript()))
                                     : std::string(privilegedAppleScript());
    ScriptBatches batches(task.seed);
    ProofOutcome outcome;
    outcome.unit = "batches";
    while (outcome.trials < task.rounds && !(task.isWrong && outcome.failures > 0)) {
        const auto batch = batches.next();
        if (const auto what = difference(batch, script, builtText(batch)); !what.empty()) {
            ++outcome.failures;
            if (!task.isWrong) std::cout << "batch " << outcome.trials << ": " << what << std::endl;
        }
        ++outcome.trials;
    }
    return outcome;
}

const ProofHarness administratorScript("AdministratorScript", run);

}  // namespace
}  // namespace orvane::test
