#include "tests/Fixtures/StandInTools.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace orvane::test {

StandInTools::StandInTools() {
    for (const auto* const tool : {"launchctl", "mv", "chown", "rm"}) {
        // The number of arguments first, so that the log can be read back whatever bytes they hold.
        const auto file = directory_.makeFile(tool, std::string("#!/bin/sh\nprintf '%s\\0' \"$#\" ") + tool +
                                                        " \"$@\" >>'" + logFile() + "'\n");
        ::chmod(file.c_str(), 0755);
    }
}

PrivilegedTools StandInTools::tools(const std::string& group) const {
    return {directory_.path("launchctl"), directory_.path("mv"), directory_.path("chown"),
            directory_.path("rm"), group};
}

void StandInTools::addBehaviour(const std::string& tool, const std::string& commands) const {
    std::ofstream(directory_.path(tool), std::ios::app) << commands << '\n';
}

std::vector<std::vector<std::string>> StandInTools::calls() const {
    std::istringstream log(readFile(logFile()));
    std::vector<std::vector<std::string>> calls;
    for (std::string field; std::getline(log, field, '\0');) {
        auto& call = calls.emplace_back(std::stoul(field) + 1);
        for (auto& argument : call) std::getline(log, argument, '\0');
    }
    return calls;
}

std::string StandInTools::logFile() const {
    return directory_.path("calls");
}

int runInShell(const std::string& shell, const std::string& commandText) {
    const TemporaryDirectory directory;
    const auto file = directory.makeFile("text", commandText);
    const int status = std::system(("exec " + shell + " -s <" + file).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace orvane::test
