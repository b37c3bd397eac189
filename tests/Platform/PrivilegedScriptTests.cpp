#include "Platform/PrivilegedScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>

#include "tests/Fixtures/StandInTools.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

using Kind = PrivilegedRequest::Item::Kind;

/// What one of the AppleScript's statements `set commandText to commandText & A & B` appends, given the
/// values of its variables: literals as they stand, `quoted form of` by our own rule.
std::string expandedAppend(std::string statement, const std::map<std::string, std::string>& values) {
    std::string appended;
    while (!statement.empty()) {
        if (statement.starts_with('"')) {
            const auto end = statement.find('"', 1);
            appended += statement.substr(1, end - 1);
            statement.erase(0, end + 1);
        } else {
            const std::string opening = "(quoted form of ";
            EXPECT_THAT(statement, StartsWith(opening));
            int depth = 0;
            std::size_t end = 0;
            do {
                depth += statement[end] == '(' ? 1 : statement[end] == ')' ? -1 : 0;
            } while (depth > 0 && ++end < statement.size());
            appended += shellQuoted(values.at(statement.substr(opening.size(), end - opening.size())));
            statement.erase(0, end + 1);
        }
        if (statement.starts_with(" & ")) statement.erase(0, 3);
    }
    return appended;
}

/// Runs the statements of the AppleScript between its `repeat` and its `end repeat` for one item.
std::string commandsOfAppleScript(RemovalMode mode, const PrivilegedRequest::Item& item,
                                  const std::string& user) {
    const std::map<std::string, std::string> values{{"sourcePath", item.source},
                                                    {"destinationPath", item.destination},
                                                    {"(system attribute \"USER\")", user}};
    const std::string append = "set commandText to commandText & ";
    std::istringstream script{std::string(privilegedAppleScript())};
    std::string commands;
    bool taken = true;
    for (std::string line; std::getline(script, line);) {
        line.erase(0, line.find_first_not_of(' '));
        if (line == "if itemKind is \"daemon\" then") taken = item.kind == Kind::daemon;
        if (line == "if requestedAction is \"trash\" then") taken = mode == RemovalMode::trash;
        if (line == "else") taken = !taken;
        if (line == "end if") taken = true;
        if (taken && line.starts_with(append)) commands += expandedAppend(line.substr(append.size()), values);
    }
    return commands;
}

std::vector<std::string> hostileNames() {
    std::vector<std::string> names{
        "-rf", "--", "it's", "''", "a\nb", "\n",  "$(touch x)",    "`touch x`", "a b",
        "*",   "~",  "#",    "!",  "\\",   "\\'", "'; touch x; '", "\"",        "\xff\xfe"};
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/') names.emplace_back(1, static_cast<char>(byte));
    }
    std::mt19937 random(42);  // NOLINT(cert-msc51-cpp): the same names on every run.
    for (int i = 0; i < 200; ++i) {
        std::string name(1 + random() % 40, 'x');
        for (auto& c : name) {
            do c = static_cast<char>(1 + random() % 255);
            while (c == '/');
        }
        names.push_back(name);
    }
    return names;
}

PrivilegedRequest hostileRequest(RemovalMode mode) {
    PrivilegedRequest request{mode, {}};
    for (const auto& name : hostileNames()) {
        const auto destination = mode == RemovalMode::trash ? "/Users/sample/.Trash/" + name : "";
        request.items.push_back(
            {name.size() % 2 == 0 ? Kind::daemon : Kind::item, "/Library/" + name, destination});
    }
    return request;
}

TEST(PrivilegedScript, VectorForOneDaemonAndTheTrash) {
    const PrivilegedRequest request{
        RemovalMode::trash,
        {{Kind::daemon, "/Library/LaunchDaemons/com.example.plist", "/Users/a/.Trash/com.example.plist"}}};

    EXPECT_THAT(scriptArguments(request),
                ElementsAre("-e", std::string(privilegedAppleScript()), "--", "trash", "daemon",
                            "/Library/LaunchDaemons/com.example.plist", "/Users/a/.Trash/com.example.plist"));
}

TEST(PrivilegedScript, EveryItemTakesThreePlacesWhenDeleting) {
    const PrivilegedRequest request{RemovalMode::permanent,
                                    {{Kind::item, "/a", ""}, {Kind::daemon, "/b", ""}}};

    EXPECT_THAT(scriptArguments(request), ElementsAre("-e", std::string(privilegedAppleScript()), "--",
                                                      "delete", "item", "/a", "", "daemon", "/b", ""));
}

TEST(PrivilegedScript, QuotesEachSingleQuoteByClosingAndReopening) {
    EXPECT_EQ(shellQuoted("it's"), R"('it'\''s')");
    EXPECT_EQ(shellQuoted(""), "''");
    EXPECT_EQ(shellQuoted("'"), R"(''\''')");
    EXPECT_EQ(shellQuoted("a b$c"), "'a b$c'");
}

TEST(PrivilegedScript, DaemonToTheTrashIsUnloadedMovedAndGivenToTheUser) {
    const PrivilegedRequest request{RemovalMode::trash,
                                    {{Kind::daemon, "/L/d.plist", "/Users/a/.Trash/d.plist"}}};

    EXPECT_EQ(commandText(request, "anna"),
              "/bin/launchctl bootout system '/L/d.plist' 2>/dev/null || true; "
              "/bin/mv -- '/L/d.plist' '/Users/a/.Trash/d.plist'; "
              "/usr/sbin/chown -R 'anna':staff '/Users/a/.Trash/d.plist'; ");
}

TEST(PrivilegedScript, DeletingIsRemovalOnlyWithDaemonsUnloadedFirst) {
    const PrivilegedRequest request{RemovalMode::permanent,
                                    {{Kind::item, "/a b", ""}, {Kind::daemon, "/d", ""}}};

    EXPECT_EQ(commandText(request, "anna"),
              "/bin/rm -rf -- '/a b'; "
              "/bin/launchctl bootout system '/d' 2>/dev/null || true; /bin/rm -rf -- '/d'; ");
}

TEST(PrivilegedScript, NothingToDoIsNoText) {
    EXPECT_EQ(commandText({RemovalMode::trash, {}}, "anna"), "");
}

TEST(PrivilegedScript, AppleScriptBuildsTheSameText) {
    const std::string user = "o'hara";
    for (const auto mode : {RemovalMode::trash, RemovalMode::permanent}) {
        for (const auto kind : {Kind::daemon, Kind::item}) {
            const PrivilegedRequest::Item item{kind, "/a'b", "/c d"};
            EXPECT_EQ(commandsOfAppleScript(mode, item, user), commandText({mode, {item}}, user));
        }
    }
}

TEST(PrivilegedScript, AppleScriptWalksTheVectorThreeValuesAtATime) {
    const std::string script(privilegedAppleScript());
    for (const auto* const line :
         {"on run argv\n", "set requestedAction to item 1 of argv\n", "set commandText to \"\"\n",
          "set argumentIndex to 2\n", "repeat while argumentIndex is less than or equal to (count of argv)\n",
          "set itemKind to item argumentIndex of argv\n",
          "set sourcePath to item (argumentIndex + 1) of argv\n",
          "set destinationPath to item (argumentIndex + 2) of argv\n",
          "set argumentIndex to argumentIndex + 3\n",
          "do shell script commandText with administrator privileges\n"}) {
        const auto first = script.find(line);
        EXPECT_NE(first, std::string::npos) << line;
        EXPECT_EQ(script.find(line, first + 1), std::string::npos) << line << " is there twice";
    }
}

class PrivilegedScriptInShell : public testing::TestWithParam<std::string> {};

TEST_P(PrivilegedScriptInShell, CarriesHostileNamesToTheToolsUnharmed) {
    const std::string user = "o'hara $USER";
    for (const auto mode : {RemovalMode::trash, RemovalMode::permanent}) {
        const test::StandInTools standIns;
        const auto request = hostileRequest(mode);
        std::vector<std::vector<std::string>> expected;
        for (const auto& item : request.items) {
            if (item.kind == Kind::daemon)
                expected.push_back({"launchctl", "bootout", "system", item.source});
            if (mode == RemovalMode::trash) {
                expected.push_back({"mv", "--", item.source, item.destination});
                expected.push_back({"chown", "-R", user + ":staff", item.destination});
            } else {
                expected.push_back({"rm", "-rf", "--", item.source});
            }
        }

        const auto text = commandText(request, user, standIns.tools("staff"));
        EXPECT_EQ(test::runInShell(GetParam(), text), 0);
        EXPECT_EQ(standIns.calls(), expected);
    }
}

TEST_P(PrivilegedScriptInShell, AFailingCommandStopsNoneAfterIt) {
    const test::StandInTools standIns;
    standIns.addBehaviour("launchctl", "exit 1");
    standIns.addBehaviour("mv", "exit 1");
    const PrivilegedRequest request{RemovalMode::trash,
                                    {{Kind::daemon, "/a", "/t/a"}, {Kind::item, "/b", "/t/b"}}};

    EXPECT_EQ(test::runInShell(GetParam(), commandText(request, "anna", standIns.tools(""))), 0);
    EXPECT_EQ(standIns.calls().size(), 5u);
}

TEST_P(PrivilegedScriptInShell, TheLastCommandDecidesTheStatus) {
    const test::StandInTools standIns;
    standIns.addBehaviour("rm", "exit 3");
    const PrivilegedRequest request{RemovalMode::permanent, {{Kind::item, "/a", ""}, {Kind::item, "/b", ""}}};

    EXPECT_EQ(test::runInShell(GetParam(), commandText(request, "anna", standIns.tools(""))), 3);
}

INSTANTIATE_TEST_SUITE_P(Shells, PrivilegedScriptInShell, testing::Values("/bin/sh", "/bin/bash --posix"));

}  // namespace
}  // namespace orvane
