#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "Platform/PrivilegedScript.h"
#include "Text/FunctionRef.h"
#include "tests/AppleScript/RecordedTools.h"

namespace orvane::test {

/// A batch with names that mean something to a shell, to the script's language or to a tool, and who asks for
/// it.
struct ScriptBatch {
    PrivilegedRequest request;
    std::string user;
};

/// The same batches for the same seed.
class ScriptBatches {
  public:
    explicit ScriptBatches(std::uint64_t seed) : random_(seed) {}
    ScriptBatch next();

  private:
    std::size_t below(std::size_t count) { return random_() % count; }
    bool chance(std::size_t oneIn) { return below(oneIn) == 0; }
    template <typename Pieces>
    std::string joined(const Pieces& pieces, std::size_t most);
    std::string name();
    std::string user();

    std::mt19937_64 random_;
};

/// What is called for a batch, whoever does it.
std::vector<std::vector<std::string>> expectedCalls(const ScriptBatch& batch);

/// The text that the program itself builds for a batch.
std::string builtText(const ScriptBatch& batch);

/// The arguments of the Mac's script runner for a batch, with another script.
std::vector<std::string> argumentsWith(const std::string& script, const ScriptBatch& batch);

struct ScriptRun {
    /// Every command text that the script gave to a shell, and what came of the last.
    std::vector<std::string> commandTexts;
    ShellRun shell;
    /// How the script ended: its result, or its error.
    std::string said;
    int errorNumber = 0;
};

/// Runs the script in these arguments of the Mac's script runner, and its command by `runShell`.
ScriptRun runScript(const ScriptBatch& batch, const std::vector<std::string>& arguments,
                    FunctionRef<ShellRun(const std::string&)> runShell);

/// How the script and a text come to the same for a batch, by a shell each: the script's is given it as an
/// argument, the other reads it. Empty where they do; else what differs. Where RecordedTools are entered.
std::string difference(const ScriptBatch& batch, const std::string& script, const std::string& text);

}  // namespace orvane::test
