#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/PrivilegedScript.h"
#include "Platform/ScriptRunner.h"

namespace orvane::test {

/// A script runner that does what the test tells it, and remembers what it was given. Its runs do not
/// overlap.
class FakeScriptRunner : public ScriptRunner {
  public:
    using Behaviour = std::function<ScriptOutcome(const PrivilegedRequest&)>;

    /// Without a behaviour every run succeeds and changes nothing.
    explicit FakeScriptRunner(Behaviour behaviour = [](const PrivilegedRequest&) { return ScriptOutcome{}; })
        : behaviour_(std::move(behaviour)) {}

    void setBehaviour(Behaviour behaviour) { behaviour_ = std::move(behaviour); }

    ScriptOutcome run(const std::vector<std::string>& arguments) override {
        runs_.push_back(arguments);
        return behaviour_(requestFromScriptArguments(arguments).value());
    }

    /// The argument vector of each run.
    const std::vector<std::vector<std::string>>& runs() const { return runs_; }

    /// The requests in them.
    std::vector<PrivilegedRequest> requests() const {
        std::vector<PrivilegedRequest> requests;
        for (const auto& run : runs_) requests.push_back(requestFromScriptArguments(run).value());
        return requests;
    }

  private:
    Behaviour behaviour_;
    std::vector<std::vector<std::string>> runs_;
};

}  // namespace orvane::test
