#include <filesystem>

#include "tests/Services/ApplicationScannerFixture.h"

namespace orvane {
namespace {

TEST_F(ApplicationScannerTest, MeasuresTheSpaceOfAllRegularFiles) {
    volume.addApplication("/Applications/Foo.app", {{"CFBundleName", "Foo"}});
    volume.makeFile("/Applications/Foo.app/Contents/Resources/large", std::string(100'000, 'x'));
    volume.makeFile("/Applications/Foo.app/Contents/Resources/empty", "");
    volume.makeLink("/Applications/Foo.app/Contents/link", "/Applications/Foo.app/Contents");
    volume.makeLink("/Applications/Foo.app/Contents/outside", "/Users");
    volume.makeFile("/Users/large", std::string(100'000, 'x'));
    EXPECT_EQ(scanned().size, volume.allocatedSize("/Applications/Foo.app/Contents/MacOS/main") +
                                  volume.allocatedSize("/Applications/Foo.app/Contents/Info.plist") +
                                  volume.allocatedSize("/Applications/Foo.app/Contents/Resources/large"));
}

TEST_F(ApplicationScannerTest, MeasuresAllocatedSpaceNotLength) {
    volume.makeDirectory("/Applications/Foo.app");
    const auto sparse = volume.makeFile("/Applications/Foo.app/sparse");
    std::filesystem::resize_file(sparse, 1 << 30);
    EXPECT_LT(scanned().size, 1 << 20);
}

TEST_F(ApplicationScannerTest, CountsNeitherHiddenFilesNorWhatNestedPackagesHold) {
    volume.makeFile("/Applications/Foo.app/.hidden", std::string(50'000, 'x'));
    volume.makeFile("/Applications/Foo.app/.folder/file", std::string(50'000, 'x'));
    volume.makeFile("/Applications/Foo.app/Contents/Helper.app/file", std::string(50'000, 'x'));
    volume.makeFile("/Applications/Foo.app/Contents/PlugIns/Tool.bundle/file", std::string(50'000, 'x'));
    EXPECT_EQ(scanned().size, 0);
}

TEST_F(ApplicationScannerTest, CountsWhatFrameworksHold) {
    const auto file = "/Applications/Foo.app/Contents/Frameworks/Kit.framework/Kit";
    volume.makeFile(file, std::string(50'000, 'x'));
    EXPECT_EQ(scanned().size, volume.allocatedSize(file));
}

}  // namespace
}  // namespace orvane
