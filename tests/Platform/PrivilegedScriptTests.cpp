#include "Platform/PrivilegedScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/Fixtures/StandInTools.h"

namespace orvane {
namespace {

using testing::ElementsAre;

using Kind = PrivilegedRequest::Item::Kind;

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
