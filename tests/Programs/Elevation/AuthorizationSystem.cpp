#include "tests/Programs/Elevation/AuthorizationSystem.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "Platform/Linux/PolkitRunner.h"
#include "Platform/Posix/Process.h"
#include "tests/Fixtures/KernelSettings.h"
#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/UnprivilegedUser.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

constexpr const char* actions = "/usr/share/polkit-1/actions";
constexpr const char* python = "/usr/bin/python3";

/// Only what the tests use, and nothing that the bus would start by itself.
constexpr const char* busConfiguration = R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN" "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <user>messagebus</user>
  <fork/>
  <auth>EXTERNAL</auth>
  <listen>unix:path=/run/dbus/system_bus_socket</listen>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
  </policy>
  <include>/usr/share/dbus-1/system.d/org.freedesktop.PolicyKit1.conf</include>
</busconfig>
)";

/// Any password passes, and that there is none to type is no matter.
constexpr const char* trustingPAM =
    "auth sufficient pam_permit.so\naccount sufficient pam_permit.so\nsession optional pam_permit.so\n";
constexpr const char* distrustfulPAM =
    "auth required pam_deny.so\naccount sufficient pam_permit.so\nsession optional pam_permit.so\n";

void require(bool succeeded, const std::string& what) {
    if (!succeeded) throw std::system_error(errno, std::generic_category(), what);
}

void mountOn(const std::string& what, const std::string& where) {
    require(::mount(what.c_str(), where.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0,
            "mounting " + where);
}

void runOrThrow(const std::vector<std::string>& command) {
    const auto result = runProgram(command);
    if (result.status != 0) throw std::runtime_error(command.front() + ": " + result.output + result.error);
}

std::string text(const std::string& path) {
    auto contents = readFile(path);
    if (contents.empty()) throw std::runtime_error(path + " is missing");
    return contents;
}

}  // namespace

std::string AuthorizationSystem::whyImpossible() {
    if (!isRoot()) return "only root can start an authorization system of the test's own";
    const auto mayIsolate = [] {
        require(::unshare(CLONE_NEWPID) == 0, "process ids");
        enterOwnMountNamespace();
    };
    if (!mayMount() || !succeedsInChildProcess(mayIsolate)) return "this machine has no namespaces for us";
    return {};
}

void AuthorizationSystem::run(FunctionRef<void(const AuthorizationSystem&)> body) {
    inChildProcess([&] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        enterOwnMountNamespace();
        require(::unshare(CLONE_NEWPID) == 0, "process ids");
        // This one is the first of its processes, with which all the others end.
        inChildProcess([&] {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            const AuthorizationSystem system;
            body(system);
        });
    });
}

AuthorizationSystem::AuthorizationSystem() {
    install();
    directory_.makeFile("bus.conf", busConfiguration);
    directory_.makeFile("pam/polkit-1", trustingPAM);
    directory_.makeDirectory("rules");
    directory_.makeFile("shared/prompts", "");
    // A copy, because the project may lie where only root can read it.
    directory_.makeFile("shared/agent.py",
                        text(sourceDirectory() + "/tests/Programs/Elevation/authentication-agent.py"));
    ::chmod(log().c_str(), 0666);
    ::chmod(directory_.path("shared").c_str(), 0755);
    ::chmod(directory_.path().c_str(), 0755);
    mountEverything();
}

void AuthorizationSystem::install() const {
    runOrThrow({ORVANE_CMAKE, "--install", ORVANE_BUILD_DIRECTORY, "--prefix", directory_.path("usr"),
                "--component", "elevation"});
    // The rest of what is installed; only this one is used here.
    fs::create_directory(directory_.path("usr/bin"));
    fs::copy_file(binaryDirectory() + "/orvane-cli", directory_.path("usr/bin/orvane-cli"));
    const fs::path policies = directory_.path("usr/share/polkit-1/actions");
    fs::copy(fs::path(actions) / "org.freedesktop.policykit.policy", policies);
}

void AuthorizationSystem::mountEverything() const {
    require(::mount("proc", "/proc", "proc", 0, nullptr) == 0, "mounting /proc");
    fs::create_directories("/run/dbus");
    require(::mount("tmpfs", "/run/dbus", "tmpfs", 0, "mode=755") == 0, "mounting /run/dbus");
    mountOn(directory_.path("usr/share/polkit-1/actions"), actions);
    mountOn(directory_.path("usr"), "/mnt");
    // A prefix other than /usr may hold nothing yet.
    const auto programs = fs::path(installedRootPart()).parent_path().parent_path();
    if (fs::exists(programs)) {
        mountOn(directory_.path("usr/libexec"), programs);
    } else {
        mountOn(directory_.path("usr"), programs.parent_path());
    }
    mountOn(directory_.path("rules"), "/etc/polkit-1/rules.d");
    mountOn(directory_.path("rules"), "/usr/share/polkit-1/rules.d");
    mountOn(directory_.path("pam"), "/etc/pam.d");
}

void AuthorizationSystem::startBus() const {
    // It goes to the background when it can be called.
    runOrThrow({"/usr/bin/dbus-daemon", "--config-file=" + directory_.path("bus.conf"), "--nopidfile"});
}

void AuthorizationSystem::startAuthority() const {
    if (!startProgram({"/usr/lib/polkit-1/polkitd", "--no-debug"})) throw std::runtime_error("no polkitd");
    runOrThrow({python, directory_.path("shared/agent.py"), "0", log()});
}

void AuthorizationSystem::uninstallRootPart() const {
    fs::remove_all(directory_.path("usr/libexec/orvane"));
    fs::remove(directory_.path("usr/share/polkit-1/actions/org.example.orvane.policy"));
}

void AuthorizationSystem::keepPermissions() const {
    const auto policy = directory_.path("usr/share/polkit-1/actions/org.example.orvane.policy");
    auto changed = text(policy);
    for (auto at = changed.find("auth_admin<"); at != std::string::npos; at = changed.find("auth_admin<"))
        changed.replace(at, std::string("auth_admin<").size(), "auth_admin_keep<");
    std::ofstream(policy) << changed;
}

void AuthorizationSystem::letNoPasswordPass() const {
    directory_.makeFile("pam/polkit-1", distrustfulPAM);
}

void AuthorizationSystem::addRule(const std::string& result) const {
    directory_.makeFile("rules/10-orvane.rules",
                        "polkit.addRule(function(action, subject) {\n"
                        "    if (action.id == 'org.example.orvane.remove') return polkit.Result." +
                            result + ";\n});\n");
}

void AuthorizationSystem::replaceProgram(const std::string& path, const std::string& script) const {
    const fs::path original = directory_.path("usr/" + path);
    fs::create_directories(original.parent_path());
    fs::copy_file(path, original);
    const auto replacement = directory_.makeFile("replaced/" + path, script);
    ::chmod(replacement.c_str(), 0755);
    mountOn(replacement, path);
}

void AuthorizationSystem::breakProgram(const std::string& path) {
    mountOn("/dev/null", path);
}

void AuthorizationSystem::startAgent(const std::vector<std::string>& answers) const {
    auto command = std::string("exec ") + python + " '" + directory_.path("shared/agent.py") + "' " +
                   std::to_string(::getpid()) + " '" + log() + "'";
    for (const auto& answer : answers) command += " " + answer;
    std::FILE* const agent = ::popen(command.c_str(), "re");
    if (agent == nullptr || std::fgetc(agent) != 'r') throw std::runtime_error("no authentication agent");
}

std::vector<Prompt> AuthorizationSystem::prompts() const {
    std::vector<Prompt> prompts;
    std::istringstream lines(readFile(log()));
    for (std::string line; std::getline(lines, line);) {
        const auto entry = nlohmann::json::parse(line);
        if (entry.contains("taken away")) {
            prompts.at(prompts.size() - 1).isTakenAway = true;
            continue;
        }
        prompts.push_back({entry.at("action"), entry.at("message"), entry.at("users"), false});
    }
    return prompts;
}

}  // namespace orvane::test
