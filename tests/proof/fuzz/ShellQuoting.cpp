#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "Platform/PrivilegedScript.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

namespace {

/// One word of a shell, as POSIX has it; absent for anything that could be more than one, or a command.
std::optional<std::string> unquoted(std::string_view word) {
    std::string text;
    bool isQuoted = false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] == '\'') {
            isQuoted = !isQuoted;
            continue;
        }
        if (!isQuoted && (word[i] != '\\' || ++i == word.size() || word[i] == '\n')) return std::nullopt;
        text += word[i];
    }
    return isQuoted ? std::nullopt : std::optional(text);
}

/// What the machine's shell makes of the words, each ended by a NUL.
std::string askedOfTheShell(const std::string& script) {
    char name[] = "/tmp/orvane-quoting-XXXXXX";
    const int file = ::mkstemp(name);
    promise(file >= 0 && ::write(file, script.data(), script.size()) == static_cast<ssize_t>(script.size()),
            "script");
    ::close(file);
    auto* const pipe = ::popen(("/bin/sh " + std::string(name)).c_str(), "r");
    std::string said;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) said += static_cast<char>(c);
    ::pclose(pipe);
    ::unlink(name);
    return said;
}

/// The same of many words at once: starting a shell takes longer than thousands of rounds.
void checkWithTheShell(std::string_view text, const std::string& quoted) {
    constexpr std::size_t batch = std::size_t{4} << 20U;
    static std::string script;
    static std::string expected;
    ((script += "printf '%s\\0' ") += quoted) += '\n';
    (expected += text) += '\0';
    if (script.size() < batch) return;
    promise(askedOfTheShell(script) == expected, "the machine's shell takes each text back out");
    script.clear();
    expected.clear();
}

}  // namespace

/// A quoted text is one word to a shell, and that text. The mistake: quotes in it are left alone.
void fuzzShellQuoting(std::string_view bytes, Subject subject) {
    const auto text = bytes.substr(0, bytes.find('\0'));
    const auto quoted = subject == Subject::own ? shellQuoted(text) : "'" + std::string(text) + "'";
    promise(unquoted(quoted) == text, "a quoted text is one word, and that text");
    checkWithTheShell(text, quoted);
    const PrivilegedRequest request{RemovalMode::permanent,
                                    {{PrivilegedRequest::Item::Kind::item, std::string(text), ""}}};
    promise(commandText(request, "a") == "/bin/rm -rf -- " + shellQuoted(text) + "; ",
            "a name is quoted where it is handed on");
}

}  // namespace orvane::test
