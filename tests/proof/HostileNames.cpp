// Names of any bytes, listed, planned, trashed and deleted by the program, and by an administrator's shell.
#include <algorithm>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <stdexcept>

#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/ShellRunner.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

using nlohmann::json;

constexpr const char* identifier = "com.example.foo";
const std::string containers = TestVolume::home() + "/Library/Group Containers";
const std::string daemons = "/Library/LaunchDaemons";
const std::string canaries = TestVolume::home() + "/Documents";

class HostileNames {
  public:
    explicit HostileNames(const ProofTask& task) : task_(task), random_(task.seed) {}

    ProofOutcome run() {
        outcome_.unit = "names";
        while (outcome_.trials < task_.rounds && !(task_.isWrong && outcome_.failures > 0)) {
            if (!task_.isWrong)
                removeByTheUser(random_() % 2 == 0 ? RemovalMode::trash : RemovalMode::permanent);
            removeByTheAdministrator(random_() % 2 == 0 ? RemovalMode::trash : RemovalMode::permanent);
        }
        return outcome_;
    }

  private:
    static constexpr std::size_t namesAtOnce = 250;

    std::string bytes(std::size_t most) {
        static const std::string dear = "'\"\\$`*?[]{}()<>|&;!#~- \n\t\r\x7F%=:,\xC3\xFF\x80.";
        std::string name;
        for (auto length = 1 + random_() % most; length > 0; --length) {
            const auto c =
                random_() % 2 == 0 ? dear[random_() % dear.size()] : static_cast<char>(1 + random_() % 255);
            name += c == '/' ? '.' : c;
        }
        return name;
    }

    /// A name like the others, or one that would do something.
    std::string name() {
        static const std::vector<std::string> dear{"-rf",
                                                   "--",
                                                   "-",
                                                   "$(touch pwned)",
                                                   "`touch pwned`",
                                                   "; touch pwned;",
                                                   "\ntouch pwned\n",
                                                   "' touch pwned '",
                                                   "\"; touch pwned; \"",
                                                   "*",
                                                   "?",
                                                   "~",
                                                   "$HOME",
                                                   "${IFS}",
                                                   "\\",
                                                   "\\n",
                                                   "%00",
                                                   "%2F..",
                                                   "..%2f",
                                                   "\xE2\x80\xAE",
                                                   " ",
                                                   "\t",
                                                   "\n",
                                                   "'\\''",
                                                   "&",
                                                   "|tee pwned",
                                                   ">pwned",
                                                   "[a-z]*",
                                                   "!!",
                                                   "=ls",
                                                   "--no-preserve-root",
                                                   "..",
                                                   "file:"};
        return random_() % 4 == 0 ? dear[random_() % dear.size()] : bytes(random_() % 10 == 0 ? 200 : 20);
    }

    std::set<std::string> makeNames(const std::string& beginning, const std::string& ending) {
        std::set<std::string> names;
        while (names.size() < namesAtOnce) names.insert(beginning + name() + ending);
        return names;
    }

    void makeCanaries(const TestVolume& volume) {
        for (int i = 0; i < 20; ++i) volume.makeFile(canaries + "/a" + name());
    }

    void expect(bool holds, const std::string& what) {
        ++outcome_.trials;
        if (holds) return;
        ++outcome_.failures;
        outcome_.note = json(what).dump(-1, ' ', true, json::error_handler_t::replace);
    }

    void expectRemoved(const TestVolume& volume, RemovalMode mode, const std::string& folder,
                       const std::string& name) {
        const bool isTrashed = fs::exists(volume.machinePath(TestVolume::trash() + "/" + name + "/x"));
        expect(!volume.contains(folder + "/" + name) && isTrashed == (mode == RemovalMode::trash), name);
    }

    static json said(const TestVolume& volume, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {binaryDirectory() + "/orvane-cli", "--root",
                                             volume.machinePath(""), "--home", TestVolume::home()});
        const auto result = runProgram(arguments);
        if (result.status != 0) throw std::runtime_error("orvane-cli: " + result.error + result.output);
        return json::parse(result.output);
    }

    static std::multiset<std::string> pathsOf(const json& items) {
        std::multiset<std::string> paths;
        for (const auto& item : items) {
            const auto text = item.is_string() ? item : item.at("url");
            paths.insert(FileURL::fromString(text.get<std::string>())->path());
        }
        return paths;
    }

    /// An application of such a name, and what it has left behind under others.
    void removeByTheUser(RemovalMode mode) {
        const TestVolume volume;
        makeCanaries(volume);
        // What holds the application's name, too, is found by it: no other name begins like this one.
        const auto application = "/Applications/Foo" + name() + ".app";
        volume.makeFile(application + "/Contents/Info.plist",
                        std::string("<plist><dict><key>CFBundleIdentifier</key><string>") + identifier +
                            "</string></dict></plist>");
        volume.makeFile(application + "/x");
        const auto names = makeNames("", std::string(".") + identifier);
        std::multiset<std::string> expected{application};
        for (const auto& each : names) {
            volume.makeFile(containers + "/" + each + "/x");
            expected.insert(containers + "/" + each);
        }
        const auto others = makeNames("", ".example.org");
        for (const auto& each : others) volume.makeFile(containers + "/" + each + "/x");

        const auto listed = said(volume, {"list", "--rescan", "--json"});
        expect(pathsOf(listed) == std::multiset{application}, application);
        const std::string url = listed.at(0).at("url");
        expect(pathsOf(said(volume, {"plan", url, "--json"}).at("items")) == expected,
               "the plan of " + application);
        std::vector<std::string> arguments{"remove", url, "--yes", "--json"};
        if (mode == RemovalMode::permanent) arguments.emplace_back("--permanently");
        expect(pathsOf(said(volume, arguments).at("removed")) == expected, "the removal of " + application);
        for (const auto& each : names) expectRemoved(volume, mode, containers, each);
        for (const auto& each : others) expect(volume.contains(containers + "/" + each + "/x"), each);
        expectNothingElse(volume, names, mode);
    }

    /// By the commands as the administrator's shell gets them.
    void removeByTheAdministrator(RemovalMode mode) {
        const TestVolume volume;
        makeCanaries(volume);
        volume.makeDirectory(TestVolume::trash());
        const auto names = makeNames("a", "");
        PrivilegedRequest request{mode, {}};
        for (const auto& each : names) {
            volume.makeFile(daemons + "/" + each + "/x");
            request.items.push_back({PrivilegedRequest::Item::Kind::daemon,
                                     daemons + "/" + each,
                                     mode == RemovalMode::trash ? TestVolume::trash() + "/" + each : "",
                                     {}});
        }
        if (task_.isWrong) {
            removeInDoubleQuotes(volume, request);
        } else {
            ShellRunner(volume, {}).run(request);
        }
        for (const auto& each : names) expectRemoved(volume, mode, daemons, each);
        expectNothingElse(volume, names, mode);
    }

    /// The mistake: double quotes, in which a shell still looks for what it knows.
    static void removeInDoubleQuotes(const TestVolume& volume, const PrivilegedRequest& request) {
        std::string commands = "cd '" + volume.machinePath(canaries) + "'\n";
        for (const auto& item : request.items) {
            const auto source = "\"" + volume.machinePath(item.source) + "\"";
            commands += request.mode == RemovalMode::permanent
                            ? "rm -rf -- " + source + "\n"
                            : "mv -T -- " + source + " \"" + volume.machinePath(item.destination) + "\"\n";
        }
        runProgram({"/bin/sh", volume.makeFile("/tmp/commands", commands)});
    }

    /// What was made beside them is all there is, and nothing came of a name.
    void expectNothingElse(const TestVolume& volume, const std::set<std::string>& names, RemovalMode mode) {
        const auto count = [&](const std::string& folder) {
            const auto path = volume.machinePath(folder);
            return fs::exists(path) ? std::distance(fs::directory_iterator(path), {}) : 0;
        };
        expect(count(canaries) >= 10 && !volume.contains(canaries + "/pwned") && !fs::exists("pwned"),
               "a canary");
        const auto trashed = count(TestVolume::trash());
        const auto most = static_cast<std::ptrdiff_t>(names.size()) + 1;
        expect(mode == RemovalMode::trash ? trashed == most || trashed == most - 1 : trashed == 0,
               "the Trash");
    }

    const ProofTask& task_;
    std::mt19937_64 random_;
    ProofOutcome outcome_;
};

const ProofHarness hostileNames("HostileNames",
                                [](const ProofTask& task) { return HostileNames(task).run(); });

}  // namespace
}  // namespace orvane::test
