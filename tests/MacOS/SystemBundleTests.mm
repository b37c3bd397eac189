// What our reader says of a bundle is what the system's own bundles say of it. Run by scripts/test on a Mac,
// in the languages that the option -AppleLanguages gives; and wherever else there is a Foundation, as far as
// that one knows the Mac's bundles.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "Platform/MacOS/FoundationValues.h"
#include "Platform/MacOS/MacBundleLoader.h"
#include "Platform/Posix/PosixFileManager.h"
#include "Platform/Posix/Volume.h"
#include "tests/Fixtures/FoundationData.h"
#include "tests/Fixtures/TemporaryDirectory.h"
#ifdef GNUSTEP
#include "tests/MacOS/StandIns/StandIns.h"
#endif

namespace orvane::test {
namespace {

using nlohmann::json;

struct Sample {
    std::string name;
    /// By their paths in the bundle.
    std::vector<std::pair<std::string, std::string>> files;
};

#ifdef GNUSTEP
/// GNUstep's bundles know no folder "Contents", no language as the Mac does, and lists as UTF-8 text only.
bool isKnownToTheSystem(const Sample& sample) {
    if (sample.files.size() != 1) return false;
    const auto& [path, bytes] = sample.files.front();
    return (path == "Info.plist" || path == "Resources/Info.plist") && !bytes.starts_with("bplist") &&
           !bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF");
}
constexpr std::size_t fewestSamples = 10;
using System = StandInMac;
#else
bool isKnownToTheSystem(const Sample&) {
    return true;
}
constexpr std::size_t fewestSamples = 100;
struct System {};
#endif

/// The bundles of which the Mac's answers are written down, and those with one list in "Contents" as flat
/// ones, too.
std::vector<Sample> knownBundles() {
    std::vector<Sample> samples;
    const auto rows = foundationFile("bundles.json").value();
    for (const auto& row : rows) {
        Sample sample{row.at("note"), {}};
        for (const auto& file : row.at("files")) {
            sample.files.emplace_back(file.at("path"), bytesFromBase64(file.value("base64", std::string())));
        }
        samples.push_back(sample);
        if (sample.files.size() == 1 && sample.files.front().first == "Contents/Info.plist") {
            samples.push_back({sample.name + ", flat", {{"Info.plist", sample.files.front().second}}});
        }
    }
    return samples;
}

std::string information(const std::string& developmentRegion) {
    const auto region = developmentRegion.empty() ? ""
                                                  : "<key>CFBundleDevelopmentRegion</key><string>" +
                                                        developmentRegion + "</string>";
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)"
           "<key>CFBundleIdentifier</key><string>org.example.foo</string>"
           "<key>CFBundleName</key><string>Foo</string><key>CFBundleShortVersionString</key>"
           "<string>1.2</string><key>CFBundleVersion</key><string>3</string>"
           "<key>NSHumanReadableCopyright</key><string>nobody's</string>" +
           region + "</dict></plist>";
}

/// Bundles in many languages, as folders and as a table, each value naming the language that it is in.
std::vector<Sample> bundlesInLanguages() {
    const std::vector<std::vector<std::string>> sets{
        {"en", "de", "fr"},       {"de", "pt-BR", "pt-PT"},
        {"pt", "es-419", "es"},   {"zh-Hans", "zh-Hant"},
        {"zh_TW", "zh_CN", "en"}, {"English", "German", "French"},
        {"sr", "sr-Latn", "ru"},  {"no", "da"},
        {"Base", "fr"},           {"de-CH", "de-AT", "de"},
        {"en-GB", "en-AU"},       {"ja"}};
    std::vector<Sample> samples;
    for (const auto& languages : sets) {
        for (const std::string region : {"", "en", "fr", "ja"}) {
            std::string name = "developed in '" + region + "', in";
            std::string table = R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)";
            Sample folders{"", {{"Contents/Info.plist", information(region)}}};
            Sample withTable = folders;
            for (const auto& language : languages) {
                name += " " + language;
                table += "<key>" + language + "</key><dict><key>CFBundleName</key><string>in " + language +
                         "</string></dict>";
                folders.files.emplace_back("Contents/Resources/" + language + ".lproj/InfoPlist.strings",
                                           "CFBundleName = \"in " + language +
                                               "\"; NSHumanReadableCopyright = \"in " + language + "\";");
            }
            folders.name = name;
            withTable.name = name + ", a table";
            withTable.files.emplace_back("Contents/Resources/InfoPlist.loctable", table + "</dict></plist>");
            samples.push_back(folders);
            samples.push_back(withTable);
        }
    }
    return samples;
}

json orNull(const std::optional<std::string>& text) {
    return text ? json(*text) : json();
}

json ours(const Bundle& bundle) {
    return {{"identifier", orNull(bundle.identifier)},
            {"display name", orNull(bundle.displayName)},
            {"name", orNull(bundle.name)},
            {"short version", orNull(bundle.shortVersion)},
            {"version", orNull(bundle.version)},
            {"copyright", orNull(bundle.copyright)}};
}

json theSystems(const std::string& path) {
    return asked(json("nothing"), [&] {
        // One that was never opened before: what the system knows of a path it does not read anew.
        NSBundle* const bundle = [NSBundle bundleWithPath:[urlOf(path, true) path]];
        if (bundle == nil) return json("no bundle");
        const auto value = [&](NSString* key) {
            return orNull(textOf([bundle objectForInfoDictionaryKey:key]));
        };
        return json{{"identifier", orNull(textOf([bundle bundleIdentifier]))},
                    {"display name", value(@"CFBundleDisplayName")},
                    {"name", value(@"CFBundleName")},
                    {"short version", value(@"CFBundleShortVersionString")},
                    {"version", value(@"CFBundleVersion")},
                    {"copyright", value(@"NSHumanReadableCopyright")}};
    });
}

TEST(SystemBundles, SayWhatOurReaderSays) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    [[maybe_unused]] const System system;
    const TemporaryDirectory directory;
    const auto files = makeFileManager(Volume::open("/").value(), directory.path(), directory.path());
    const auto loader = makeMacBundleLoader(*files);
    auto samples = knownBundles();
    for (auto& sample : bundlesInLanguages()) samples.push_back(std::move(sample));
    std::size_t compared = 0;
    for (const auto& sample : samples) {
        if (!isKnownToTheSystem(sample)) continue;
        SCOPED_TRACE(sample.name);
        const auto bundle = std::to_string(compared++) + "/Foo.app";
        directory.makeDirectory(bundle);
        for (const auto& [path, bytes] : sample.files) directory.makeFile(bundle + "/" + path, bytes);
        const auto read = loader->bundle(FileURL::fromPath(directory.path(bundle), true));
        EXPECT_TRUE(read);
        if (read) EXPECT_EQ(ours(*read), theSystems(directory.path(bundle)));
    }
    EXPECT_GE(compared, fewestSamples);
    [pool drain];
}

}  // namespace
}  // namespace orvane::test
