#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/AppleScript/AppleScript.h"
#include "tests/AppleScript/ScriptBatches.h"
#include "tests/Fixtures/PrivateMounts.h"

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::Gt;

using Kind = PrivilegedRequest::Item::Kind;

std::string allReplaced(std::string text, const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

TEST(PrivilegedScriptRun, GivesOneShellTheTextThatIsBuiltHere) {
    ScriptBatches batches(1);
    for (int i = 0; i < 1000; ++i) {
        const auto batch = batches.next();
        const auto run =
            runScript(batch, scriptArguments(batch.request), [](const std::string&) { return ShellRun{}; });

        ASSERT_THAT(run.commandTexts, ElementsAre(builtText(batch))) << i;
        ASSERT_EQ(run.errorNumber, 0) << i << ": " << run.said;
    }
}

TEST(PrivilegedScriptRun, ComesToTheSameAsTheTextThatIsBuiltHere) {
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        ScriptBatches batches(2);
        for (int i = 0; i < 200; ++i) {
            const auto batch = batches.next();
            ASSERT_EQ(difference(batch, std::string(privilegedAppleScript()), builtText(batch)), "")
                << "batch " << i;
        }
    });
}

/// Whether a changed script, or a changed text of our own, comes to something else for one of many batches.
bool isFoundOut(const std::string& script, FunctionRef<std::string(const ScriptBatch&)> text) {
    ScriptBatches batches(7);
    for (int i = 0; i < 60; ++i) {
        const auto batch = batches.next();
        if (!difference(batch, script, text(batch)).empty()) return true;
    }
    return false;
}

const auto textAsBuilt = [](const ScriptBatch& batch) { return builtText(batch); };

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
        EXPECT_FALSE(isFoundOut(script, textAsBuilt));
        for (const auto& [right, wrong] : mistakes) {
            const auto changed = allReplaced(script, right, wrong);
            ASSERT_NE(changed, script) << right;
            EXPECT_TRUE(isFoundOut(changed, textAsBuilt)) << right << " as " << wrong;
        }
    });
}

TEST(PrivilegedScriptRun, AMistakeOfTheTextThatIsBuiltHereIsFoundOut) {
    const RecordedTools tools;
    inPrivateMounts([&] {
        tools.enter();
        const std::string script(privilegedAppleScript());
        EXPECT_TRUE(isFoundOut(script, [](const ScriptBatch& batch) {
            return allReplaced(builtText(batch), R"('\'')", R"(\')");
        }));
        EXPECT_TRUE(isFoundOut(script, [](const ScriptBatch& batch) {
            return commandText(batch.request, batch.user, {.group = "wheel"});
        }));
        EXPECT_TRUE(isFoundOut(script, [](const ScriptBatch& batch) {
            return allReplaced(builtText(batch), "; ", " && ") + ":";
        }));
    });
}

TEST(PrivilegedScriptRun, SaysWhatTheLastToolSaidWhenItFails) {
    const auto end = ShellRun{{}, 77, "", "rm: no\nrm: no\n"};
    const ScriptBatch batch{{RemovalMode::permanent, {{Kind::item, "/a", ""}}}, "anna"};
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
        ScriptBatches batches(5);
        int failures = 0;
        for (int i = 0; i < 30; ++i) {
            const auto batch = batches.next();
            auto command = scriptArguments(batch.request);
            const auto expected = runScript(batch, command, [](const std::string& text) {
                return runRecorded(text, ShellInput::argument);
            });
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
