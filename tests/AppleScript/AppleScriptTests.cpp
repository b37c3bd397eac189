#include "tests/AppleScript/AppleScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace orvane::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Value = AppleScriptValue;

struct AppleScriptTest : testing::Test {
    std::map<std::string, std::string> variables;
    AppleScriptSystem::ShellEnd end;
    std::vector<std::string> commands;

    /// The value of a whole script.
    Value run(const std::string& source, const std::vector<std::string>& arguments = {}) {
        const auto variable = [&](const std::string& name) { return variables[name]; };
        const auto shell = [&](const std::string& command) {
            commands.push_back(command);
            return end;
        };
        return runAppleScript(source, arguments, {variable, shell});
    }

    /// The value of these statements, whose arguments are called `argv`.
    Value statements(const std::string& statements, const std::vector<std::string>& arguments = {}) {
        return run("on run argv\n" + statements + "\nend run\n", arguments);
    }

    Value value(const std::string& expression, const std::vector<std::string>& arguments = {}) {
        return statements("set found to " + expression, arguments);
    }

    /// The number of the language's own error; 0 where there is none.
    int error(const std::string& expression, const std::vector<std::string>& arguments = {}) {
        try {
            value(expression, arguments);
        } catch (const AppleScriptError& error) {
            return error.number;
        }
        return 0;
    }

    bool refusesScript(const std::string& source) {
        try {
            run(source, {"a", "b"});
        } catch (const UnknownAppleScript&) {
            return true;
        }
        return false;
    }
    bool refuses(const std::string& lines) { return refusesScript("on run argv\n" + lines + "\nend run\n"); }
};

Value text(const std::string& text) {
    return {text};
}
Value integer(std::int64_t number) {
    return {number};
}
Value truth(bool is) {
    return {is};
}

TEST_F(AppleScriptTest, ARunHandlerIsGivenTheArguments) {
    EXPECT_EQ(run("on run given1\nset x to item 2 of given1\nend run", {"a", "b"}), text("b"));
    EXPECT_EQ(run("\n\r\n on run argv\r\tset x to 1\r\nend run\n\n"), integer(1));
}

TEST_F(AppleScriptTest, AScriptIsOneRunHandlerAndNothingElse) {
    EXPECT_FALSE(refusesScript("on run argv\nset x to 1\nend run\n"));
    EXPECT_TRUE(refusesScript(""));
    EXPECT_TRUE(refusesScript("set x to 1\n"));
    EXPECT_TRUE(refusesScript("on run argv\nset x to 1\n"));
    EXPECT_TRUE(refusesScript("on run argv\nset x to 1\nend\n"));
    EXPECT_TRUE(refusesScript("on run argv\nset x to 1\nend run\nset x to 2\n"));
    EXPECT_TRUE(refusesScript("on run {argv}\nset x to 1\nend run\n"));
    EXPECT_TRUE(refusesScript("on open argv\nset x to 1\nend open\n"));
    EXPECT_TRUE(refusesScript("on run argv\nend run\n"));
}

TEST_F(AppleScriptTest, WordsAreTheSameInCapitalLetters) {
    EXPECT_EQ(statements("SET anIndex to 1\nset Found To ANINDEX + 1"), integer(2));
    EXPECT_EQ(value("\"A\""), text("A"));
}

TEST_F(AppleScriptTest, NoWordOfTheLanguageIsAVariable) {
    for (const auto* const word : {"item", "count", "of", "the", "result", "text", "is", "my", "end"}) {
        EXPECT_TRUE(refuses(std::string("set ") + word + " to 1")) << word;
    }
    EXPECT_FALSE(refuses("set items_2 to 1"));
}

TEST_F(AppleScriptTest, EscapesInATextMeanWhatTheyMeanThere) {
    EXPECT_EQ(value(R"("a\"b\\c\nd\re\tf")"), text("a\"b\\c\nd\re\tf"));
    EXPECT_EQ(value(R"("\\n$(x)`'é😀")"), text("\\n$(x)`'é😀"));
    EXPECT_EQ(value(R"("")"), text(""));
    EXPECT_TRUE(refuses(R"(set x to "\a")"));
    EXPECT_TRUE(refuses(R"(set x to "a)"));
    EXPECT_TRUE(refuses("set x to \"a\nb\""));
    EXPECT_TRUE(refuses("set x to \"\xff\""));
}

TEST_F(AppleScriptTest, IntegersEndWhereTheLanguageHasThemEnd) {
    EXPECT_EQ(value("536870911"), integer(536870911));
    EXPECT_TRUE(refuses("set x to 536870912"));
    EXPECT_TRUE(refuses("set x to 536870911 + 1"));
    EXPECT_TRUE(refuses("set x to 99999999999999999999"));
    EXPECT_TRUE(refuses("set x to 1.5"));
    EXPECT_TRUE(refuses("set x to 2nd"));
}

TEST_F(AppleScriptTest, SumsTakeATextForTheNumberThatItSays) {
    EXPECT_EQ(value("1 + 2 + 3"), integer(6));
    EXPECT_EQ(value("\"2\" + 1"), integer(3));
    EXPECT_EQ(value("(item 1 of argv) + 1", {"41"}), integer(42));
    EXPECT_EQ(error("\"a\" + 1"), -1700);
    EXPECT_EQ(error("\"\" + 1"), -1700);
    EXPECT_TRUE(refuses("set x to \" 2\" + 1"));
    EXPECT_TRUE(refuses("set x to argv + 1"));
}

TEST_F(AppleScriptTest, AmpersandJoinsToATextAndTakesLessThanPlus) {
    EXPECT_EQ(value(R"("a" & "b" & "c")"), text("abc"));
    EXPECT_EQ(value(R"("a" & 1 + 2)"), text("a3"));
    EXPECT_TRUE(refuses(R"(set x to 1 & "a")")) << "makes a list";
    EXPECT_TRUE(refuses(R"(set x to argv & "a")"));
    EXPECT_TRUE(refuses(R"(set x to "a" & argv)"));
}

TEST_F(AppleScriptTest, TextsAreTheSameWhateverTheirCase) {
    EXPECT_EQ(value(R"("Daemon" is "dAEMON")"), truth(true));
    EXPECT_EQ(value(R"("daemon" is "daemons")"), truth(false));
    EXPECT_EQ(value(R"("daemon" is "daemon ")"), truth(false));
    EXPECT_EQ(value(R"("a" & "b" is "ab")"), truth(true));
    EXPECT_TRUE(refuses(R"(set x to "é" is "É")"));
}

TEST_F(AppleScriptTest, ValuesOfTwoClassesAreNeverTheSame) {
    EXPECT_EQ(value(R"(1 is "1")"), truth(false));
    EXPECT_EQ(value("1 is 1"), truth(true));
    EXPECT_EQ(value("1 is 2"), truth(false));
    EXPECT_EQ(value("argv is 1"), truth(false));
    EXPECT_TRUE(refuses("set x to argv is argv"));
}

TEST_F(AppleScriptTest, LessThanOrEqualTo) {
    EXPECT_EQ(value("1 is less than or equal to 2"), truth(true));
    EXPECT_EQ(value("2 is less than or equal to 2"), truth(true));
    EXPECT_EQ(value("3 is less than or equal to 2"), truth(false));
    EXPECT_EQ(value("10 is less than or equal to \"9\""), truth(false)) << "as numbers: the left one is";
    EXPECT_TRUE(refuses(R"(set x to "10" is less than or equal to 9)"));
}

TEST_F(AppleScriptTest, OtherComparisonsAreRefused) {
    for (const auto* const comparison :
         {"is not", "is equal to", "is less than", "is greater than", "equals", "=", "<", "≤", "is in",
          "contains", "is less than or equal", "is 1 is"}) {
        EXPECT_TRUE(refuses("set x to 1 " + std::string(comparison) + " 2")) << comparison;
    }
}

TEST_F(AppleScriptTest, ItemsAreCountedFromOne) {
    EXPECT_EQ(value("item 1 of argv", {"a", "b"}), text("a"));
    EXPECT_EQ(value("item (1 + 1) of argv", {"a", "b"}), text("b"));
    EXPECT_EQ(statements("set n to 2\nset found to item n of argv", {"a", "b"}), text("b"));
    EXPECT_EQ(value("item 1 of argv & \"x\"", {"a"}), text("ax"));
    EXPECT_EQ(error("item 3 of argv", {"a", "b"}), -1728);
    EXPECT_EQ(error("item 0 of argv", {"a", "b"}), -1728);
    EXPECT_TRUE(refuses(R"(set x to item "1" of argv)")) << "asks by name";
    EXPECT_TRUE(refuses(R"(set x to item 1 of "abc")")) << "asks for a letter";
}

TEST_F(AppleScriptTest, TheCountOfAListIsThatOfItsItems) {
    EXPECT_EQ(value("(count of argv)"), integer(0));
    EXPECT_EQ(value("(count of argv)", {"a", ""}), integer(2));
    EXPECT_TRUE(refuses(R"(set x to (count of "abc"))"));
    EXPECT_TRUE(refuses("set x to count of argv")) << "who can say where it ends?";
}

TEST_F(AppleScriptTest, QuotedFormIsOneWordToAShell) {
    EXPECT_EQ(value("quoted form of (item 1 of argv)", {"a b"}), text("'a b'"));
    EXPECT_EQ(value("quoted form of (item 1 of argv)", {""}), text("''"));
    EXPECT_EQ(value("quoted form of (item 1 of argv)", {"it's"}), text(R"('it'\''s')"));
    EXPECT_EQ(value("quoted form of (item 1 of argv)", {"''"}), text(R"(''\'''\''')"));
    EXPECT_EQ(value("\"x\" & (quoted form of \"a\") & \"y\""), text("x'a'y"));
    EXPECT_EQ(error("quoted form of 5"), -1728);
}

TEST_F(AppleScriptTest, SystemAttributeIsAVariableOfTheEnvironment) {
    variables["USER"] = "o'hara";
    EXPECT_EQ(value("(system attribute \"USER\")"), text("o'hara"));
    EXPECT_EQ(value("quoted form of (system attribute \"USER\")"), text(R"('o'\''hara')"));
    EXPECT_EQ(value("(system attribute \"NOBODY\")"), text(""));
    EXPECT_TRUE(refuses("set x to system attribute \"USER\"")) << "who can say where it ends?";
    EXPECT_TRUE(refuses("set x to (system attribute 1)"));
    variables["USER"] = "é";
    EXPECT_TRUE(refuses("set x to (system attribute \"USER\")"));
}

TEST_F(AppleScriptTest, AVariableHasToBeSet) {
    EXPECT_EQ(statements("set a to 1\nset a to a + 1\nset b to a"), integer(2));
    EXPECT_EQ(error("nothing"), -2753);
}

TEST_F(AppleScriptTest, IfTakesOneOfTwoWays) {
    const auto taken = [&](const std::string& condition) {
        return statements("if " + condition + " then\nset x to \"yes\"\nelse\nset x to \"no\"\nend if");
    };
    EXPECT_EQ(taken("1 is 1"), text("yes"));
    EXPECT_EQ(taken("1 is 2"), text("no"));
    EXPECT_EQ(statements("set x to 1\nif x is 2 then\nset x to 3\nend if\nset y to x"), integer(1));
    EXPECT_THROW(taken("1"), AppleScriptError);
    EXPECT_TRUE(refuses("if \"true\" then\nset x to 1\nend if"));
    EXPECT_TRUE(refuses("if 1 is 1 then set x to 1"));
    EXPECT_TRUE(refuses("if 1 is 2 then\nset x to 1\nelse if 1 is 1 then\nset x to 2\nend if"));
    EXPECT_TRUE(refuses("if 1 is 1\nset x to 1\nend if"));
    EXPECT_TRUE(refuses("if 1 is 1 then\nset x to 1\nend"));
    EXPECT_TRUE(refuses("if 1 is 1 then\nset x to 1\nelse\nset x to 2\nelse\nset x to 3\nend if"));
}

TEST_F(AppleScriptTest, RepeatWhileAsksBeforeEachRound) {
    const std::string rounds = "set x to \"\"\nset n to 1\nrepeat while n is less than or equal to ";
    const std::string body = "\nset x to x & n\nset n to n + 1\nend repeat\nset found to x";
    EXPECT_EQ(statements(rounds + "3" + body), text("123"));
    EXPECT_EQ(statements(rounds + "0" + body), text(""));
    EXPECT_TRUE(refuses("repeat while 1 is 1\nset x to 1\nend repeat"));
    EXPECT_TRUE(refuses("repeat 3 times\nset x to 1\nend repeat"));
    EXPECT_TRUE(refuses("repeat\nset x to 1\nend repeat"));
    EXPECT_TRUE(refuses("repeat while 1 is 2\nset x to 1\nend if"));
}

TEST_F(AppleScriptTest, ACommandGoesToTheShellAsItIs) {
    const std::string hostile = "'\"\\\n\r`$(x)é😀";
    statements("do shell script (item 1 of argv) & \"; \" with administrator privileges", {hostile});
    EXPECT_THAT(commands, ElementsAre(hostile + "; "));
}

TEST_F(AppleScriptTest, WhatACommandSaysHasTheMacsLineEndings) {
    end.output = "a\nb\n\n";
    EXPECT_EQ(statements("do shell script \"x\" with administrator privileges"), text("a\rb\r"));
    end.output = "";
    EXPECT_EQ(statements("do shell script \"x\" with administrator privileges"), text(""));
}

TEST_F(AppleScriptTest, AFailedCommandIsAnErrorWithItsStatusAndItsWords) {
    end = {3, "out", "no\nway\n"};
    try {
        statements("do shell script \"x\" with administrator privileges\nset never to 1");
        FAIL() << "no error";
    } catch (const AppleScriptError& error) {
        EXPECT_EQ(error.number, 3);
        EXPECT_STREQ(error.what(), "no\rway");
    }
    end = {1, "", ""};
    EXPECT_THROW(
        {
            try {
                statements("do shell script \"x\" with administrator privileges");
            } catch (const AppleScriptError& error) {
                EXPECT_STREQ(error.what(), "The command exited with a non-zero status.");
                throw;
            }
        },
        AppleScriptError);
}

TEST_F(AppleScriptTest, OnlyATextIsACommandAndOnlyTheAdministratorRunsIt) {
    EXPECT_TRUE(refuses("do shell script \"x\""));
    EXPECT_TRUE(refuses("do shell script \"x\" with administrator privileges without altering line endings"));
    EXPECT_TRUE(refuses("do shell script \"x\" user name \"root\" with administrator privileges"));
    EXPECT_THROW(statements("do shell script 1 with administrator privileges"), AppleScriptError);
    EXPECT_THAT(commands, IsEmpty());
}

TEST_F(AppleScriptTest, WhatIsNotKnownIsRefusedBeforeAnythingRuns) {
    const std::string runs = "do shell script \"x\" with administrator privileges\n";
    for (const auto* const line : {"return 1",
                                   "display dialog 1",
                                   "tell me\nend tell",
                                   "set x to y of z",
                                   "copy 1 to x",
                                   "-- remark",
                                   "# remark",
                                   "(* remark *)",
                                   "set x to {1}",
                                   "set x to 1 - 1",
                                   "set x to -1",
                                   "set x to 2 * 3",
                                   "set x to not true",
                                   "set x to 1 as text",
                                   "set {a, b} to argv",
                                   "set x to my y",
                                   "set x to |y|",
                                   "set x to first item of argv",
                                   "set x to (1",
                                   "set x to 1)",
                                   "set x to 1 2",
                                   "set x to",
                                   "set 1 to x",
                                   "set x to item 1 of item 1 of argv",
                                   "set x to quoted form of quoted form of \"a\"",
                                   "end",
                                   "else"}) {
        EXPECT_TRUE(refuses(runs + line)) << line;
    }
    EXPECT_THAT(commands, IsEmpty());
}

TEST_F(AppleScriptTest, ArgumentsAreText) {
    EXPECT_THROW(value("1", {"\xff"}), UnknownAppleScript);
}

TEST_F(AppleScriptTest, TheScriptRunnerTakesItsOptionsAndGivesTheRestToTheScript) {
    const auto variable = [](const std::string&) { return std::string(); };
    const auto shell = [](const std::string&) { return AppleScriptSystem::ShellEnd{}; };
    const AppleScriptSystem system{variable, shell};
    const std::string source = "on run argv\nset x to (count of argv)\nend run";

    EXPECT_EQ(runScriptRunner({"-e", source, "--"}, system), integer(0));
    EXPECT_EQ(runScriptRunner({"-e", source, "--", "-e", "--"}, system), integer(2));
    EXPECT_THROW(runScriptRunner({"-e", source, "trash"}, system), UnknownAppleScript);
    EXPECT_THROW(runScriptRunner({"-e", source}, system), UnknownAppleScript);
    EXPECT_THROW(runScriptRunner({"-l", source, "--"}, system), UnknownAppleScript);
}

}  // namespace
}  // namespace orvane::test
