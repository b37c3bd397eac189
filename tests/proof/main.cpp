// OrvaneProof HARNESS [OPTION…] --rounds N --seed S [--wrong] [--as-user]: one harness; its outcome is a line
// of JSON on standard output. OrvaneProof --run PROGRAM [ARGUMENT…]: a program in private mounts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <span>

#include "tests/Fixtures/PrivateMounts.h"
#include "tests/Fixtures/UnprivilegedUser.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

std::map<std::string, ProofHarness::Run>& harnesses() {
    static std::map<std::string, ProofHarness::Run> all;
    return all;
}

void print(const ProofOutcome& outcome) {
    const nlohmann::ordered_json line{{"trials", outcome.trials}, {"failures", outcome.failures},
                                      {"unit", outcome.unit},     {"figure", outcome.figure},
                                      {"note", outcome.note},     {"skipped", outcome.skipped}};
    std::cout << line.dump() << std::endl;
}

int misuse(const std::string& what) {
    std::cerr << "OrvaneProof: " << what << '\n';
    return 2;
}

/// As root or as a user without rights, in mounts of its own.
int runInPrivateMounts(bool isAsUser, FunctionRef<void()> body) {
    inPrivateMounts([&] {
        if (isAsUser) {
            asUnprivilegedUser(body);
        } else {
            body();
        }
    });
    if (testing::Test::IsSkipped()) print(notHere("this user cannot have mounts of its own here"));
    return testing::Test::HasFailure() ? 1 : 0;
}

int run(std::span<char*> arguments) {
    ProofTask task;
    bool isAsUser = false;
    std::string name;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--run" && hasValue) {
            return runInPrivateMounts(isAsUser, [&] {
                ::execv(arguments[i + 1], &arguments[i + 1]);
                throw std::runtime_error(std::string(arguments[i + 1]) + " cannot be run");
            });
        }
        if (argument == "--wrong") {
            task.isWrong = true;
        } else if (argument == "--as-user") {
            isAsUser = true;
        } else if (argument == "--rounds" && hasValue) {
            task.rounds = std::stoull(arguments[++i]);
        } else if (argument == "--seed" && hasValue) {
            task.seed = std::stoull(arguments[++i]);
        } else if (name.empty()) {
            name = argument;
        } else {
            task.options.push_back(argument);
        }
    }
    const auto harness = harnesses().find(name);
    if (harness == harnesses().end()) return misuse("there is no harness “" + name + "”");
    return runInPrivateMounts(isAsUser, [&] { print(harness->second(task)); });
}

}  // namespace

bool ProofTask::has(const std::string& option) const {
    return std::ranges::find(options, option) != options.end();
}

ProofHarness::ProofHarness(std::string name, Run run) {
    harnesses().emplace(std::move(name), std::move(run));
}

}  // namespace orvane::test

int main(int count, char** arguments) {
    try {
        // The array ends with a null, which a program that is started needs.
        return orvane::test::run(std::span(arguments + 1, static_cast<std::size_t>(count - 1)));
    } catch (const std::exception& error) {
        return orvane::test::misuse(error.what());
    }
}
