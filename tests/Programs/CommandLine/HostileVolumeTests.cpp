#include <filesystem>
#include <functional>

#include "tests/Programs/CommandLine/CommandLineTest.h"

namespace orvane::test {
namespace {

namespace fs = std::filesystem;

/// A binary property list of `objects`, each written out as its bytes; object 0 is the root, references take
/// one byte.
std::string binaryPropertyList(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += static_cast<char>(bytes.size() >> 8);
        offsets += static_cast<char>(bytes.size() & 0xff);
        bytes += object;
    }
    const auto table = bytes.size();
    bytes += offsets;
    std::string trailer(32, '\0');
    trailer[6] = 2;
    trailer[7] = 1;
    trailer[15] = static_cast<char>(objects.size());
    trailer[30] = static_cast<char>(table >> 8);
    trailer[31] = static_cast<char>(table & 0xff);
    return bytes + trailer;
}

/// Thirty arrays, each naming the next one twice.
std::string explodingPropertyList() {
    std::vector<std::string> objects;
    for (char next = 1; next < 30; ++next) objects.push_back({'\xa2', next, next});
    objects.emplace_back("\xa0");
    return binaryPropertyList(objects);
}

/// An array whose one element is itself.
std::string cyclicPropertyList() {
    return binaryPropertyList({std::string("\xa1\x00", 2)});
}

class HostileVolume : public CommandLineTest {
  protected:
    HostileVolume() { outside.makeFile("treasure/gold", "gold"); }

    /// What an application of that name leaves behind; its bundle has the information given.
    void makeBundle(const std::string& name, const std::string& information) const {
        volume.makeFile("/Applications/" + name + ".app/Contents/Info.plist", information);
    }

    void makeBadBundles() const {
        makeApplication("/Applications/Good.app", "com.example.good");
        volume.makeFile("/Applications/File.app");
        volume.makeLink("/Applications/Dangling.app", "nowhere");
        volume.makeLink("/Applications/Outside.app", outside.path("treasure"));
        volume.makeLink("/Applications/DotDot.app",
                        "../../../../../../../../../.." + outside.path("treasure"));
        volume.makeLink("/Applications/Loop.app", "Loop.app");
        volume.makeFIFO("/Applications/FIFO.app");
        volume.makeFIFO("/Applications/FIFOInside.app/Contents/Info.plist");
        volume.makeLink("/Applications/LinkedOut.app/Contents/Info.plist", outside.path("treasure/gold"));
        volume.makeLink("/Applications/DanglingInside.app/Contents/Info.plist", "nowhere");
        volume.makeDirectory("/Applications/FolderInside.app/Contents/Info.plist");
        makeBundle("Empty", "");
        makeBundle("Truncated", "<?xml version=\"1.0\"?><plist><dict><key>CFBundleName</key><str");
        makeBundle("Cyclic", cyclicPropertyList());
        makeBundle("Exploding", explodingPropertyList());
        makeBundle("Huge", "<plist><dict>" + std::string(20 << 20, ' ') + "</dict></plist>");
    }

    void makeBadLaunchItems() const {
        const auto folder = home + "/Library/LaunchAgents";
        volume.makeFile(folder + "/mentions.plist", "not a property list, but com.example.good is in it");
        volume.makeFIFO(folder + "/fifo.plist");
        volume.makeLink(folder + "/dangling.plist", "nowhere");
        volume.makeLink(folder + "/out.plist", outside.path("treasure/gold"));
        volume.makeDirectory(folder + "/folder.plist");
        volume.makeFile(folder + "/bytes.plist", "com.example.good \xff");
        volume.makeFile(folder + "/huge.plist", "com.example.good" + std::string(20 << 20, ' '));
        volume.makeFile(folder + "/CAPITALS.PLIST", "com.example.good");
    }

    TemporaryDirectory outside;
};

TEST_F(HostileVolume, ListsEveryBundleWhateverItIs) {
    makeBadBundles();
    const auto applications = document({"list", "--json"});
    EXPECT_EQ(applications.size(), 16);
    for (const auto& application : applications) {
        if (application.at("name") == "Good") continue;
        EXPECT_EQ(application.at("version"), "Unknown") << application;
        EXPECT_FALSE(application.contains("bundleIdentifier")) << application;
    }
}

TEST_F(HostileVolume, PlansAndRemovesEveryBundleAndTouchesNothingOutside) {
    makeBadBundles();
    makeBadLaunchItems();
    const auto before = outside.listing();
    const auto applications = document({"list", "--json"});
    for (const auto& application : applications) {
        SCOPED_TRACE(application.dump());
        const std::string url = application.at("url");
        EXPECT_EQ(run({"plan", url}).status, 0);
        EXPECT_EQ(run({"remove", url, "--yes", "--permanently"}).status, 0);
    }
    EXPECT_EQ(outside.listing(), before);
    EXPECT_EQ(readFile(outside.path("treasure/gold")), "gold");
}

TEST_F(HostileVolume, FindsOnlyLaunchItemsThatAreReadableText) {
    makeBadBundles();
    makeBadLaunchItems();
    std::vector<std::string> agents;
    const auto items = document({"plan", "Good", "--json"}).at("items");
    for (const auto& item : items) {
        if (item.at("kind") == "Launch Agent") agents.push_back(item.at("id"));
    }
    EXPECT_EQ(agents, std::vector<std::string>{home + "/Library/LaunchAgents/mentions.plist"});
}

class HostileCatalog : public CommandLineTest {
  protected:
    HostileCatalog() { volume.makeFile(home + "/Documents/letter.txt", "a letter"); }

    void save(const std::string& bytes) const {
        volume.makeFile(home + "/Library/Application Support/Orvane/applications.json", bytes);
    }

    static std::string entry(const std::string& url, const std::string& name) {
        return R"({"url":")" + url + R"(","name":")" + name +
               R"(","version":"1","size":1,"isSystemApplication":false,"isInstalled":true})";
    }
};

TEST_F(HostileCatalog, LeadsToNoFileByAURLThatIsNone) {
    std::string bytes;
    int number = 0;
    for (const auto* url :
         {"Applications/Foo.app", "/Users/sample/Documents", "http://example.org/Users/sample/Documents",
          "file:", "file://", "file:///", "file://host/Users/sample/Documents",
          "file:///Users/sample/Documents/%00x", "file:///Applications/../Users/sample/Documents",
          "mailto:a@b", "/../Users/sample/Documents", " "}) {
        bytes += (bytes.empty() ? "[" : ",") + entry(url, "entry" + std::to_string(++number));
    }
    save(bytes + "]");
    const auto count = document({"list", "--json"}).size();
    ASSERT_EQ(count, static_cast<std::size_t>(number));
    for (int index = 1; index <= number; ++index) {
        const auto name = "entry" + std::to_string(index);
        SCOPED_TRACE(name);
        const auto result = run({"remove", name, "--yes", "--permanently"});
        EXPECT_TRUE(result.status == 0 || result.status == 1) << result.error;
        ASSERT_EQ(readFile(volume.path(home + "/Documents/letter.txt")), "a letter");
    }
    EXPECT_TRUE(fs::exists(volume.path(home + "/Library")));
}

TEST_F(HostileCatalog, LeadsToNoFileByAnIdentifierThatClimbs) {
    makeApplication("/Applications/Foo.app", "../../Documents");
    volume.makeDirectory(home + "/Library/Caches");
    const auto result = run({"remove", "Foo", "--yes", "--permanently"});
    EXPECT_EQ(result.status, 1) << result.output << result.error;
    EXPECT_EQ(readFile(volume.path(home + "/Documents/letter.txt")), "a letter");
    EXPECT_FALSE(fs::exists(volume.path("/Applications/Foo.app")));
}

TEST_F(HostileCatalog, IsScannedAnewWhenItCannotBeRead) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    const auto good = entry("file:///Applications/Old.app/", "Old");
    for (const std::string& bytes :
         {std::string(), std::string("["), std::string("{}"), std::string("null"), "[" + good + ",{}]",
          "[" + good + "", std::string(100'000, '['), std::string("\xff\xfe\xfd")}) {
        SCOPED_TRACE(bytes.substr(0, 40));
        save(bytes);
        const auto applications = document({"list", "--json"});
        ASSERT_EQ(applications.size(), 1);
        EXPECT_EQ(applications.at(0).at("name"), "Foo");
    }
}

TEST_F(HostileCatalog, IsReadInAnyOrderWithUnknownMembersAndAByteOrderMark) {
    save(
        "\xef\xbb\xbf [ {\"new\": [1, {}, 1e400], \"newer\": -1e999, \"new\": null, \"isInstalled\":false, "
        "\"isSystemApplication\":false, \"size\":1,"
        "\"version\":\"1\", \"name\":\"Old\", \"url\":\"file:\\/\\/\\/Applications\\/Old.app\\/\"} ]");
    const auto applications = document({"list", "--json"});
    ASSERT_EQ(applications.size(), 1);
    EXPECT_EQ(applications.at(0).at("id"), "/Applications/Old.app");
}

TEST_F(HostileCatalog, IsScannedAnewWhenItIsNoFileAndNothingElseIsTouched) {
    const TemporaryDirectory outside;
    outside.makeFile("treasure/applications.json", "[]");
    makeApplication("/Applications/Foo.app", "com.example.foo");
    const auto folder = home + "/Library/Application Support/Orvane";
    const auto file = folder + "/applications.json";
    const std::vector<std::function<void()>> hostilities{
        [&] { volume.makeFIFO(file); },
        [&] { volume.makeDirectory(file); },
        [&] { volume.makeLink(file, "applications.json"); },
        [&] { volume.makeLink(file, outside.path("treasure/applications.json")); },
        [&] { volume.makeLink(file, "/dev/full"); },
        [&] { volume.makeFile(folder); },
        [&] { volume.makeFIFO(folder); },
        [&] { volume.makeLink(folder, outside.path("treasure")); },
    };
    const auto before = outside.listing();
    for (const auto& makeHostile : hostilities) {
        fs::remove_all(volume.path(home + "/Library/Application Support"));
        volume.makeDirectory(home + "/Library/Application Support");
        makeHostile();
        SCOPED_TRACE(volume.listing());
        EXPECT_EQ(document({"list", "--json"}).size(), 1);
        EXPECT_EQ(outside.listing(), before);
    }
}

class HostilePlaces : public CommandLineTest {};

TEST_F(HostilePlaces, AnApplicationsFolderThatIsALinkOutOfTheVolumeIsEmpty) {
    const TemporaryDirectory outside;
    outside.makeDirectory("Foo.app");
    volume.makeLink("/Applications", outside.path());
    EXPECT_EQ(document({"list", "--json"}), json::array());
}

TEST_F(HostilePlaces, ATrashThatIsNoFolderTakesNothing) {
    const TemporaryDirectory outside;
    const auto trash = home + "/.Trash";
    volume.makeDirectory(home + "/Elsewhere");
    makeApplication("/Applications/Foo.app", "com.example.foo");
    const std::vector<std::function<void()>> hostilities{
        [&] { volume.makeLink(trash, "Elsewhere"); },
        [&] { volume.makeLink(trash, "nowhere"); },
        [&] { volume.makeLink(trash, outside.path()); },
        [&] { volume.makeFile(trash); },
        [&] { volume.makeFIFO(trash); },
    };
    for (const auto& makeHostile : hostilities) {
        fs::remove(volume.path(trash));
        makeHostile();
        SCOPED_TRACE(volume.listing());
        const auto result = run({"remove", "Foo", "--yes", "--json"});
        EXPECT_EQ(result.status, 1) << result.error;
        const auto removal = json::parse(result.output);
        EXPECT_EQ(removal.at("removed"), json::array());
        EXPECT_EQ(removal.at("failed").size(), 1);
        EXPECT_TRUE(fs::exists(volume.path("/Applications/Foo.app/Contents/Info.plist")));
        EXPECT_TRUE(fs::is_empty(volume.path(home + "/Elsewhere")));
        EXPECT_TRUE(fs::is_empty(outside.path()));
    }
}

TEST_F(HostilePlaces, AMissingTrashIsMade) {
    fs::remove(volume.path(home + "/.Trash"));
    makeApplication("/Applications/Foo.app", "com.example.foo");
    EXPECT_EQ(run({"remove", "Foo", "--yes"}).status, 0);
    EXPECT_TRUE(fs::exists(volume.path(home + "/.Trash/Foo.app")));
    EXPECT_EQ(fs::status(volume.path(home + "/.Trash")).permissions(), fs::perms::owner_all);
}

TEST_F(HostilePlaces, AnUnreadableApplicationsFolderContributesNothing) {
    makeApplication("/Applications/Foo.app", "com.example.foo");
    makeApplication("/System/Applications/Mail.app", "com.example.mail");
    volume.makeFile("/Users/sample/Applications", "a file in its place");
    EXPECT_EQ(document({"list", "--json"}).size(), 2);
}

}  // namespace
}  // namespace orvane::test
