#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Platform/PrivilegedRunner.h"
#include "Platform/PrivilegedScript.h"

namespace orvane::test {

/// A privileged runner that does what the test tells it, and remembers what it was given. Its runs do not
/// overlap.
class FakePrivilegedRunner : public PrivilegedRunner {
  public:
    using Behaviour = std::function<PrivilegedOutcome(const PrivilegedRequest&)>;

    /// Without a behaviour every run succeeds and changes nothing.
    explicit FakePrivilegedRunner(Behaviour behaviour =
                                      [](const PrivilegedRequest&) { return PrivilegedOutcome{}; })
        : behaviour_(std::move(behaviour)) {}

    void setBehaviour(Behaviour behaviour) { behaviour_ = std::move(behaviour); }

    PrivilegedOutcome run(const PrivilegedRequest& request) override {
        requests_.push_back(request);
        return behaviour_(request);
    }

    const std::vector<PrivilegedRequest>& requests() const { return requests_; }

    /// Each of them as the Mac's script runner takes it.
    std::vector<std::vector<std::string>> runs() const {
        std::vector<std::vector<std::string>> runs;
        for (const auto& request : requests_) runs.push_back(scriptArguments(request));
        return runs;
    }

  private:
    Behaviour behaviour_;
    std::vector<PrivilegedRequest> requests_;
};

}  // namespace orvane::test
