#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

#include "Platform/PrivilegedScript.h"
#include "tests/AppleScript/RecordedTools.h"
#include "tests/Fixtures/PrivateMounts.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::Gt;

using Kind = PrivilegedRequest::Item::Kind;

/// Batches in a test run; ORVANE_SCRIPT_BATCHES names another number of them.
constexpr int usualBatches = 400;
constexpr int parts = 4;

int batchesOfOnePart() {
    const char* const wanted = std::getenv("ORVANE_SCRIPT_BATCHES");
    return (wanted != nullptr ? std::atoi(wanted) : usualBatches) / parts;
}

/// A batch with names that mean something to a shell, to the script's language or to a tool.
struct Batch {
    PrivilegedRequest request;
    std::string user;
};

class Batches {
  public:
    explicit Batches(unsigned seed) : random_(seed) {}

    Batch next() {
        Batch batch{{chance(2) ? RemovalMode::trash : RemovalMode::permanent, {}}, user()};
        for (auto count = 1 + (chance(3) ? below(4) : 0); count > 0; --count) {
            const auto source = "/Library/" + (chance(4) ? name() + "/" : "") + name();
            const bool goesToTrash = batch.request.mode == RemovalMode::trash;
            const auto destination = goesToTrash ? "/Users/" + name() + "/.Trash/" + name() : "";
            batch.request.items.push_back({chance(3) ? Kind::daemon : Kind::item, source, destination});
        }
        return batch;
    }

  private:
    std::size_t below(std::size_t count) { return random_() % count; }
    bool chance(std::size_t oneIn) { return below(oneIn) == 0; }

    template <typename Pieces>
    std::string joined(const Pieces& pieces, std::size_t most) {
        std::string text;
        for (auto count = 1 + below(most); count > 0; --count) text += pieces[below(pieces.size())];
        return text;
    }

    /// Text that a name on the Mac's disk can be: UTF-8, no zero byte, no slash.
    std::string name() {
        static const std::array<std::string, 60> pieces{
            "a",          "B",         "é",          "é",
            "ß",          "日本",      "😀",          "👩‍👩‍👧",
            "\U0010fffd", "\u202e",    "\ufeff",     "\u2028",
            "\u0085",     "\u00a0",    " ",          "  ",
            "\t",         "\n",        "\r",         "\r\n",
            "\x01",       "\x1b[2J",   "\x7f",       "'",
            "''",         "'\\''",     "\"",         "\"\"",
            "`",          "`touch x`", "$(touch x)", "${IFS}",
            "$USER",      "$'\\n'",    "\\",         "\\\\",
            "\\\"",       "\\n",       "\\c",        "%s%n",
            "*",          "?",         "[!a]",       "~",
            "!",          "#",         ";",          "; rm -rf .; ",
            "&",          "&&",        "|",          "||",
            "<",          ">",         "2>&1",       "(",
            ")",          "{a,b}",     "=",          ","};
        static const std::array<std::string, 4> dashes{"-", "--", "-rf", "-R"};
        return (chance(6) ? dashes[below(dashes.size())] : "") + joined(pieces, 8);
    }

    std::string user() {
        static const std::array<std::string, 10> pieces{"anna", "o'hara", "'", "\"", "$HOME",
                                                        "`x`",  "\\",     " ", "\n", ";"};
        if (chance(20)) return "";
        return chance(2) ? "anna" : joined(pieces, 4);
    }

    std::mt19937 random_;
};

/// What is called for this batch, whoever does it.
std::vector<std::vector<std::string>> expectedCalls(const Batch& batch) {
    std::vector<std::vector<std::string>> calls;
    for (const auto& item : batch.request.items) {
        if (item.kind == Kind::daemon) calls.push_back({"/bin/launchctl", "bootout", "system", item.source});
        if (batch.request.mode == RemovalMode::trash) {
            calls.push_back({"/bin/mv", "--", item.source, item.destination});
            calls.push_back({"/usr/sbin/chown", "-R", batch.user + ":staff", item.destination});
        } else {
            calls.push_back({"/bin/rm", "-rf", "--", item.source});
        }
    }
    return calls;
}

struct ScriptRun {
    /// Every command text that the script gave to a shell, and what came of the last.
    std::vector<std::string> commandTexts;
    ShellRun shell;
    /// How the script ended: its result, or its error.
    std::string said;
    int errorNumber = 0;
};

/// Runs the script with the Mac's script runner's arguments for a batch, and its command by `runShell`.
ScriptRun runScript(const Batch& batch, const std::vector<std::string>& arguments,
                    FunctionRef<ShellRun(const std::string&)> runShell) {
    ScriptRun run;
    const auto variable = [&](const std::string& name) { return name == "USER" ? batch.user : ""; };
    const auto shell = [&](const std::string& command) {
        run.commandTexts.push_back(command);
        run.shell = runShell(command);
        return AppleScriptSystem::ShellEnd{run.shell.status, run.shell.output, run.shell.errors};
    };
    try {
        run.said = std::get<std::string>(runScriptRunner(arguments, {variable, shell}).held);
    } catch (const AppleScriptError& error) {
        run.said = error.what();
        run.errorNumber = error.number;
    }
    return run;
}

const auto runByArgument = [](const std::string& commandText) {
    return runRecorded(commandText, ShellInput::argument);
};

std::string allReplaced(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

TEST(PrivilegedScriptRun, GivesOneShellTheTextThatIsBuiltHere) {
    Batches batches(1);
    for (int i = 0; i < 1000; ++i) {
        const auto batch = batches.next();
        const auto run =
            runScript(batch, scriptArguments(batch.request), [](const std::string&) { return ShellRun{}; });

        ASSERT_THAT(run.commandTexts, ElementsAre(commandText(batch.request, batch.user))) << i;
        ASSERT_EQ(run.errorNumber, 0) << i << ": " << run.said;
    }
}

class PrivilegedScriptRunPart : public testing::TestWithParam<unsigned> {};

TEST_P(PrivilegedScriptRunPart, ComesToTheSameAsTheTextThatIsBuiltHere) {
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        Batches batches(GetParam());
        int failures = 0;
        int sayings = 0;
        for (int i = 0; i < batchesOfOnePart(); ++i) {
            const auto batch = batches.next();
            const auto script = runScript(batch, scriptArguments(batch.request), runByArgument);
            const auto text = commandText(batch.request, batch.user);
            const auto built = runRecorded(text, ShellInput::standardInput);

            ASSERT_THAT(script.commandTexts, ElementsAre(text)) << "batch " << i;
            ASSERT_EQ(built.calls, expectedCalls(batch)) << "batch " << i;
            ASSERT_EQ(script.shell, built) << "batch " << i;
            ASSERT_EQ(script.errorNumber, built.status) << "batch " << i;
            failures += built.status != 0 ? 1 : 0;
            sayings += built.errors.empty() ? 0 : 1;
        }
        // The tools do say and fail something.
        EXPECT_THAT(failures, Gt(batchesOfOnePart() / 10));
        EXPECT_THAT(sayings, Gt(failures));
    });
}

INSTANTIATE_TEST_SUITE_P(Seeds, PrivilegedScriptRunPart, testing::Range(1U, 1U + parts));

/// Whether a changed script, or a changed text of our own, comes to something else for one of many batches.
bool isFoundOut(const std::string& script, FunctionRef<std::string(const Batch&)> builtText) {
    Batches batches(7);
    for (int i = 0; i < 60; ++i) {
        const auto batch = batches.next();
        auto arguments = scriptArguments(batch.request);
        arguments.at(1) = script;
        const auto run = runScript(batch, arguments, runByArgument);
        const auto built = runRecorded(builtText(batch), ShellInput::standardInput);
        if (run.shell != built || run.errorNumber != built.status) return true;
    }
    return false;
}

const auto builtText = [](const Batch& batch) { return commandText(batch.request, batch.user); };

TEST(PrivilegedScriptRun, AnyMistakeOfTheScriptIsFoundOut) {
    struct Mistake {
        std::string right;
        std::string wrong;
    };
    const std::vector<Mistake> mistakes{
        {"(quoted form of sourcePath)", "sourcePath"},
        {"(quoted form of sourcePath)", R"("\"" & sourcePath & "\"")"},
        {"(quoted form of destinationPath)", "destinationPath"},
        {"(quoted form of (system attribute \"USER\"))", "(system attribute \"USER\")"},
        {"is \"daemon\"", "is \"item\""},
        {"is \"trash\"", "is \"delete\""},
        {"/bin/launchctl bootout system ", "/bin/launchctl bootout user "},
        {" 2>/dev/null", ""},
        {" 2>/dev/null || true; ", " && "},
        {"/bin/mv -- ", "/bin/mv "},
        {"/bin/rm -rf -- ", "/bin/rm -rf "},
        {"/usr/sbin/chown -R ", "/usr/sbin/chown "},
        {":staff ", ":wheel "},
        {"to item 1 of argv", "to item 2 of argv"},
        {"argumentIndex to 2", "argumentIndex to 1"},
        {"argumentIndex to argumentIndex + 3", "argumentIndex to argumentIndex + 4"},
        {"item (argumentIndex + 1)", "item (argumentIndex + 2)"},
        {"(count of argv)", "2"},
    };
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        const std::string script(privilegedAppleScript());
        EXPECT_FALSE(isFoundOut(script, builtText));
        for (const auto& [right, wrong] : mistakes) {
            const auto changed = allReplaced(script, right, wrong);
            ASSERT_NE(changed, script) << right;
            EXPECT_TRUE(isFoundOut(changed, builtText)) << right << " as " << wrong;
        }
    });
}

TEST(PrivilegedScriptRun, AMistakeOfTheTextThatIsBuiltHereIsFoundOut) {
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        const std::string script(privilegedAppleScript());
        EXPECT_TRUE(isFoundOut(
            script, [](const Batch& batch) { return allReplaced(builtText(batch), R"('\'')", R"(\')"); }));
        EXPECT_TRUE(isFoundOut(script, [](const Batch& batch) {
            return commandText(batch.request, batch.user, {.group = "wheel"});
        }));
        EXPECT_TRUE(isFoundOut(
            script, [](const Batch& batch) { return allReplaced(builtText(batch), "; ", " && ") + ":"; }));
    });
}

TEST(PrivilegedScriptRun, SaysWhatTheLastToolSaidWhenItFails) {
    const auto end = ShellRun{{}, 77, "", "rm: no\nrm: no\n"};
    const Batch batch{{RemovalMode::permanent, {{Kind::item, "/a", ""}}}, "anna"};
    const auto run =
        runScript(batch, scriptArguments(batch.request), [&](const std::string&) { return end; });
    EXPECT_EQ(run.errorNumber, 77);
    EXPECT_EQ(run.said, "rm: no\rrm: no");
}

/// The program that stands in the place of the Mac's script runner, started as it is.
TEST(PrivilegedScriptRun, TheProgramInTheRunnersPlaceDoesTheSame) {
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        Batches batches(5);
        int failures = 0;
        for (int i = 0; i < 30; ++i) {
            const auto batch = batches.next();
            auto command = scriptArguments(batch.request);
            const auto expected = runScript(batch, command, runByArgument);
            command.insert(command.begin(), scriptRunner);
            const auto run = runRecordedProgram(command, "USER=" + batch.user);

            EXPECT_EQ(run.calls, expectedCalls(batch));
            if (expected.errorNumber == 0) {
                EXPECT_EQ(run.status, 0);
                EXPECT_EQ(run.output, expected.said + "\n");
                EXPECT_EQ(run.errors, "");
            } else {
                EXPECT_EQ(run.status, 1);
                EXPECT_EQ(run.output, "");
                EXPECT_EQ(run.errors, "execution error: " + expected.said + " (" +
                                          std::to_string(expected.errorNumber) + ")\n");
                ++failures;
            }
        }
        EXPECT_THAT(failures, Gt(3));
    });
}

}  // namespace
}  // namespace orvane::test
