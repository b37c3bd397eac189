// What the dearest property lists of 16 MiB cost, each read in a process of its own.
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <stdexcept>

#include "Formats/PropertyList.h"
#include "tests/Fixtures/BinaryPropertyListWriter.h"
#include "tests/proof/Harness.h"

namespace orvane::test {
namespace {

using Writer = BinaryPropertyListWriter;

constexpr auto largest = PropertyListLimits::bytes;
constexpr double longestInMilliseconds = 100;
constexpr double mostInMegabytes = 64;

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    result = text;
    // Doubled, because this is compiled to be debugged.
    while (result.size() < text.size() * count) {
        result.append(result, 0, std::min(result.size(), text.size() * count - result.size()));
    }
    return result;
}

/// As often as the text fits between a list's beginning and its end.
std::string filled(const std::string& begin, const std::string& text, const std::string& end,
                   std::size_t size = largest) {
    return begin + repeated(text, (size - begin.size() - end.size()) / text.size()) + end;
}

std::string xmlFilled(const std::string& text) {
    return filled("<plist><array>", text, "</array></plist>");
}

/// A text of 16 MiB, of that type, with these letters.
std::string binaryText(unsigned type, const std::string& letters) {
    Writer writer;
    const std::size_t unit = type == 6 ? 2 : 1;
    const auto text = repeated(letters, (largest - 100) / letters.size());
    return writer.written(writer.add(Writer::head(type, text.size() / unit) + text));
}

/// Containers that name the next one so often, so deep.
std::string shared(std::size_t depth, std::size_t fan) {
    Writer writer;
    auto next = writer.addText("x");
    for (; depth > 0; --depth) next = writer.addArray(std::vector(fan, next));
    return writer.written(next);
}

/// A long text that is named as often as the limit allows, as a value or as a key.
std::string manyTimes(bool isKey) {
    Writer writer;
    const auto text = repeated("\xE9", std::size_t{8} << 20U);
    const auto index = writer.add(Writer::head(5, text.size()) + text);
    const std::vector<std::size_t> all(PropertyListLimits::objects - 2, index);
    return writer.written(isKey ? writer.addDictionary(all) : writer.addArray(all));
}

std::string wideDictionary() {
    Writer writer;
    std::vector<std::size_t> entries;
    while (entries.size() + 4 < PropertyListLimits::objects) {
        entries.push_back(writer.addText("CFBundleVersion" + std::to_string(entries.size())));
        entries.push_back(writer.addText(std::string(30, 'v')));
    }
    return writer.written(writer.addDictionary(entries));
}

struct Case {
    const char* name;
    std::function<std::string()> make;
};

const std::vector<Case>& cases() {
    static const std::vector<Case> all{
        {"XML: lines that hold nothing", [] { return xmlFilled("\n"); }},
        {"XML: a text of lines", [] { return filled("<plist><string>", "\n", "</string></plist>"); }},
        {"XML: one text", [] { return filled("<plist><string>", "x", "</string></plist>"); }},
        {"XML: a text of references", [] { return filled("<plist><string>", "&#x9;", "</string></plist>"); }},
        {"XML: a text of entities", [] { return filled("<plist><string>", "&lt;", "</string></plist>"); }},
        {"XML: sections", [] { return filled("<plist><string>", "<![CDATA[]]>", "</string></plist>"); }},
        {"XML: comments", [] { return xmlFilled("<!---->"); }},
        {"XML: instructions", [] { return xmlFilled("<?a?>"); }},
        {"XML: small values", [] { return xmlFilled("<true/>"); }},
        {"XML: values to the limit, and lines",
         [] {
             return filled("<plist><array>" + repeated("<true/>", PropertyListLimits::objects - 1), "\n",
                           "</array></plist>");
         }},
        {"XML: attributes",
         [] {
             std::string bytes = "<plist><string";
             for (std::size_t i = 0; bytes.size() < largest - 100; ++i)
                 bytes += " a" + std::to_string(i) + "=''";
             return bytes + "></string></plist>";
         }},
        {"XML: one attribute", [] { return filled("<plist><string a='", "&lt;", "'/></plist>"); }},
        {"XML: a long name", [] { return filled("<", "p", "/>"); }},
        {"XML: depth without end", [] { return filled("<plist>", "<array>", ""); }},
        {"XML: keys without values",
         [] { return filled("<plist><dict>", "<key>a</key>", "</dict></plist>"); }},
        {"XML: pairs",
         [] { return filled("<plist><dict>", "<key>CFBundleVersion</key><true/>", "</dict></plist>"); }},
        {"XML: entities of entities",
         [] {
             std::string bytes = "<!DOCTYPE plist [<!ENTITY a0 'x'>";
             for (int i = 1; i < 60; ++i) {
                 const auto name = "&a" + std::to_string(i - 1) + ";";
                 bytes += "<!ENTITY a" + std::to_string(i) + " '" + name + name + "'>";
             }
             return bytes + "]><plist><string>&a59;</string></plist>";
         }},
        {"XML: Latin-1",
         [] {
             return filled("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>", "\xE9",
                           "</string></plist>");
         }},
        {"XML: Latin-1, as long as it may be",
         [] {
             return filled("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>", "\xE9",
                           "</string></plist>", PropertyListLimits::otherEncodingBytes);
         }},
        {"XML: a text that is asked for",
         [] {
             return filled("<plist><dict><key>CFBundleName</key><string>", "é", "</string></dict></plist>");
         }},
        {"XML: data", [] { return filled("<plist><data>", "QUJD", "</data></plist>"); }},
        {"XML: attributes in many elements",
         [] {
             std::string bytes = "<plist><array>";
             for (std::size_t i = 0; bytes.size() < largest - 100; ++i)
                 bytes += "<true a" + std::to_string(i) + "=''/>";
             return bytes + "</array></plist>";
         }},
        {"XML: a long comment", [] { return filled("<!--", "x", "--><plist><true/></plist>"); }},
        {"XML: a long document type",
         [] { return filled("<!DOCTYPE plist SYSTEM '", "x", "'><plist><true/></plist>"); }},
        {"XML: lines to the limit",
         [] { return filled("<plist><string>", "xxxxxxxx\n", "</string></plist>"); }},
        {"XML: UTF-16",
         [] {
             const auto wide = [](const std::string& text) {
                 std::string units;
                 for (const char c : text) (units += '\0') += c;
                 return units;
             };
             return filled("\xFE\xFF" + wide("<plist><string>"), wide("x"), wide("</string></plist>"));
         }},
        {"XML: bad UTF-8 at the end", [] { return filled("<plist><string>", "x", "\xFF</string></plist>"); }},
        {"old style: as long as it may be",
         [] {
             return std::string("\xFE\xFF\0'", 4) +
                    repeated("\x30\x42", PropertyListLimits::oldStyleBytes / 2 - 3) + std::string("\0'", 2);
         }},
        {"old style: escapes to the limit",
         [] { return "'" + repeated("\\U3042", PropertyListLimits::oldStyleBytes / 6 - 1) + "'"; }},
        {"old style: one text", [] { return filled("\"", "x", "\""); }},
        {"old style: escapes", [] { return filled("\"", "\\n", "\""); }},
        {"old style: letters by number", [] { return filled("\"", "\\U3042", "\""); }},
        {"old style: one bare text", [] { return filled("", "x", ""); }},
        {"old style: blanks", [] { return filled("(", " \n", ")"); }},
        {"old style: comments", [] { return filled("(", "/**/", ")"); }},
        {"old style: data", [] { return filled("<", "0f ", ">"); }},
        {"old style: pairs", [] { return filled("{", "CFBundleVersion=a;", "}"); }},
        {"old style: lines", [] { return filled("", "CFBundleVersion;\n", ""); }},
        {"old style: texts", [] { return filled("(", "'',", ")"); }},
        {"old style: depth without end", [] { return filled("", "(", ""); }},
        {"old style: in UTF-16",
         [] { return filled(std::string("\xFE\xFF\0\"", 4), "\x30\x42", std::string("\0\"", 2)); }},
        {"old style: a text and then more", [] { return filled("'", "\\n", "'='';"); }},
        {"binary: one text", [] { return binaryText(5, "x"); }},
        {"binary: a text of Latin-1", [] { return binaryText(5, "\xE9"); }},
        {"binary: a text of UTF-16", [] { return binaryText(6, "\x30\x42"); }},
        {"binary: bad UTF-16 at the end",
         [] { return binaryText(6, "\x30\x42").replace(largest - 140, 2, "\xD8\x01"); }},
        {"binary: a text that is asked for",
         [] {
             Writer writer;
             const auto text = repeated("\xE9", largest - 200);
             const auto key = writer.addText("CFBundleName");
             return writer.written(
                 writer.addDictionary({key, writer.add(Writer::head(5, text.size()) + text)}));
         }},
        {"binary: shared twice", [] { return shared(500, 2); }},
        {"binary: shared by thousands", [] { return shared(400, 5'000); }},
        {"binary: deep", [] { return shared(PropertyListLimits::depth - 1, 1); }},
        {"binary: wide", [] { return wideDictionary(); }},
        {"binary: a long value, many times", [] { return manyTimes(false); }},
        {"binary: a long key, many times", [] { return manyTimes(true); }},
    };
    return all;
}

/// The mistake: it keeps every text that it hears, however often.
struct Keeper : PropertyListHandler {
    void beginArray() override {}
    void beginDictionary(Repeated /*repeated*/) override {}
    void endContainer() override {}
    void key(std::string_view key) override { texts.emplace_back(key); }
    void leaf(const Leaf& leaf) override {
        if (const auto* text = std::get_if<std::string_view>(&leaf)) texts.emplace_back(*text);
    }
    std::vector<std::string> texts;
};

struct ReadingCost {
    double milliseconds = 0;
    double megabytes = 0;
    bool isWithin() const { return milliseconds <= longestInMilliseconds && megabytes <= mostInMegabytes; }
};

/// Of the processor's time and of all memory that the process has had at once, the list's own bytes included.
ReadingCost costOf(const std::string& bytes, bool isWrong) {
    // What making the list took is not its reader's.
    ::malloc_trim(0);
    const auto child = ::fork();
    if (child == 0) {
        const rlimit enough{std::size_t{1} << 30U, std::size_t{1} << 30U};
        ::setrlimit(RLIMIT_AS, &enough);
        try {
            if (isWrong) {
                Keeper keeper;
                readPropertyList(bytes, keeper);
            } else {
                std::optional<std::string> version;
                std::optional<std::string> name;
                readPropertyListTexts(bytes, {{"CFBundleVersion", version}, {"CFBundleName", name}});
            }
        } catch (const std::bad_alloc&) {
        }
        ::_exit(0);
    }
    int status = 0;
    rusage used{};
    if (child < 0 || ::wait4(child, &status, 0, &used) != child) throw std::runtime_error("no child");
    if (status != 0) throw std::runtime_error("a child that reads has ended with " + std::to_string(status));
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return {(seconds(used.ru_utime) + seconds(used.ru_stime)) * 1e3,
            static_cast<double>(used.ru_maxrss) / 1024};
}

ProofOutcome measure(const ProofTask& task) {
    ProofOutcome outcome;
    outcome.unit = "lists";
    ReadingCost worst;
    std::string slowest;
    for (const auto& each : cases()) {
        const auto bytes = each.make();
        if (bytes.size() > largest) throw std::logic_error(std::string(each.name) + " is too large");
        // The least of some: what else the machine does is not the list's cost.
        ReadingCost cost = costOf(bytes, task.isWrong);
        for (std::uint64_t round = 1; round < task.rounds; ++round) {
            cost.milliseconds = std::min(cost.milliseconds, costOf(bytes, task.isWrong).milliseconds);
        }
        ++outcome.trials;
        worst.megabytes = std::max(worst.megabytes, cost.megabytes);
        if (cost.milliseconds > worst.milliseconds) {
            worst.milliseconds = cost.milliseconds;
            slowest = each.name;
        }
        if (cost.isWithin()) continue;
        ++outcome.failures;
        std::ostringstream note;
        note << each.name << ": " << cost.milliseconds << " ms, " << cost.megabytes << " MB; ";
        outcome.note += note.str();
    }
    std::ostringstream figure;
    figure.precision(2);
    figure << outcome.trials << " lists: at most " << std::fixed << worst.milliseconds << " ms (" << slowest
           << "), " << worst.megabytes << " MB";
    outcome.figure = figure.str();
    return outcome;
}

const ProofHarness worstPropertyLists("WorstPropertyLists", measure);

}  // namespace
}  // namespace orvane::test
