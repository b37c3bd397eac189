#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/Fixtures/Paths.h"
#include "tests/Fixtures/RunProgram.h"
#include "tests/Fixtures/TemporaryDirectory.h"

namespace orvane::test {

using nlohmann::json;

/// The real program on a small Mac volume of its own.
class CommandLineTest : public testing::Test {
  protected:
    CommandLineTest() {
        volume.makeDirectory("Users/sample/Library");
        volume.makeDirectory("Users/sample/.Trash");
        volume.makeDirectory("Users/Shared");
    }

    std::vector<std::string> command(std::vector<std::string> arguments) const {
        std::vector<std::string> whole{binaryDirectory() + "/orvane-cli", "--root", volume.path()};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        return whole;
    }

    ProgramResult run(std::vector<std::string> arguments, const ProgramOptions& options = {}) const {
        return runProgram(command(std::move(arguments)), options);
    }

    /// The one JSON document that a command writes.
    json document(std::vector<std::string> arguments) const {
        const auto result = run(std::move(arguments));
        EXPECT_EQ(result.status, 0) << result.error;
        return json::parse(result.output);
    }

    /// A bundle with an information dictionary; gives back its path on the volume.
    std::string makeApplication(const std::string& path, const std::string& identifier) const {
        volume.makeFile(
            path + "/Contents/Info.plist",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
            "<key>CFBundleIdentifier</key><string>" +
                identifier +
                "</string><key>CFBundleShortVersionString</key><string>1.0</string></dict></plist>");
        volume.makeFile(path + "/Contents/MacOS/program", std::string(10'000, 'x'));
        return path;
    }

    static void expectMisuse(const ProgramResult& result) {
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
        EXPECT_TRUE(result.error.starts_with("orvane-cli: ")) << result.error;
    }

    TemporaryDirectory volume;
    const std::string home = "/Users/sample";
};

}  // namespace orvane::test
