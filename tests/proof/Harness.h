#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvane::test {

/// What a harness is asked to do.
struct ProofTask {
    /// How often it tries to break the promise. The wrong variant ends with its first failure.
    std::uint64_t rounds = 0;
    /// The same seed makes the same choices; what races is another matter.
    std::uint64_t seed = 0;
    /// Tries it on something that does not keep the promise, which has to be found out.
    bool isWrong = false;
    /// What the promise's line in promises.py has after the name.
    std::vector<std::string> options;

    bool has(const std::string& option) const;
};

/// What came of it: one line of JSON on standard output.
struct ProofOutcome {
    /// Only what could have failed.
    std::uint64_t trials = 0;
    std::uint64_t failures = 0;
    std::string unit = "rounds";
    /// What was measured, where that is no count of failures: "1.31 × rm".
    std::string figure;
    std::string note;
    /// Why it cannot be tried here; empty where it can.
    std::string skipped;
};
/// The outcome where it cannot be tried.
inline ProofOutcome notHere(std::string reason) {
    ProofOutcome outcome;
    outcome.skipped = std::move(reason);
    return outcome;
}

/// A harness of OrvaneProof, by its name: one object at the end of its source is all that it takes. It runs
/// in private mounts (inPrivateMounts), so its folder for temporary files is empty and in memory and nothing
/// else can be written to; what it throws, or expects in vain, is a failure.
class ProofHarness {
  public:
    using Run = std::function<ProofOutcome(const ProofTask&)>;
    ProofHarness(std::string name, Run run);
};

}  // namespace orvane::test
