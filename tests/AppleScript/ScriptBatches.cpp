#include "tests/AppleScript/ScriptBatches.h"

#include <array>

#include "tests/AppleScript/AppleScript.h"

namespace orvane::test {
namespace {

using Kind = PrivilegedRequest::Item::Kind;

}  // namespace

ScriptBatch ScriptBatches::next() {
    ScriptBatch batch{{chance(2) ? RemovalMode::trash : RemovalMode::permanent, {}}, user()};
    for (auto count = 1 + (chance(3) ? below(4) : 0); count > 0; --count) {
        const auto source = "/Library/" + (chance(4) ? name() + "/" : "") + name();
        const bool goesToTrash = batch.request.mode == RemovalMode::trash;
        const auto destination = goesToTrash ? "/Users/" + name() + "/.Trash/" + name() : "";
        batch.request.items.push_back({chance(3) ? Kind::daemon : Kind::item, source, destination});
    }
    return batch;
}

template <typename Pieces>
std::string ScriptBatches::joined(const Pieces& pieces, std::size_t most) {
    std::string text;
    for (auto count = 1 + below(most); count > 0; --count) text += pieces[below(pieces.size())];
    return text;
}

/// Text that a name on the Mac's disk can be: UTF-8, no zero byte, no slash.
std::string ScriptBatches::name() {
    static const std::array<std::string, 60> pieces{
        "a",          "B",         "é",          "e\u0301",
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

std::string ScriptBatches::user() {
    static const std::array<std::string, 10> pieces{"anna", "o'hara", "'", "\"", "$HOME",
                                                    "`x`",  "\\",     " ", "\n", ";"};
    if (chance(20)) return "";
    return chance(2) ? "anna" : joined(pieces, 4);
}

std::vector<std::vector<std::string>> expectedCalls(const ScriptBatch& batch) {
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

std::string builtText(const ScriptBatch& batch) {
    return commandText(batch.request, batch.user);
}

std::vector<std::string> argumentsWith(const std::string& script, const ScriptBatch& batch) {
    auto arguments = scriptArguments(batch.request);
    arguments.at(1) = script;
    return arguments;
}

ScriptRun runScript(const ScriptBatch& batch, const std::vector<std::string>& arguments,
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

std::string difference(const ScriptBatch& batch, const std::string& script, const std::string& text) {
    const auto run = runScript(batch, argumentsWith(script, batch), [](const std::string& command) {
        return runRecorded(command, ShellInput::argument);
    });
    const auto built = runRecorded(text, ShellInput::standardInput);
    if (built.calls != expectedCalls(batch)) return "the text that is built calls something else";
    if (run.shell.calls != built.calls) return "the script calls something else";
    if (run.shell.errors != built.errors || run.shell.output != built.output)
        return "the tools say something else";
    if (run.shell.status != built.status || run.errorNumber != built.status) return "the status is another";
    return {};
}

}  // namespace orvane::test
