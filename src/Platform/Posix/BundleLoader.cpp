#include "Platform/Posix/BundleLoader.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Formats/PropertyList.h"
#include "Platform/Posix/LocalizedInformation.h"

namespace orvane {

namespace {

/// Where a bundle keeps its information and its resources: by the first of these folders that it has.
struct Layout {
    std::string_view folder;
    std::string_view information;
    std::string_view resources;
};
constexpr std::array<Layout, 3> layouts{{
    {"Contents", "Contents/Info.plist", "Contents/Resources"},
    {"Resources", "Resources/Info.plist", "Resources"},
    {"Support Files", "Support Files/Info.plist", "Support Files/Resources"},
}};
/// A bundle with none of them keeps everything in itself.
constexpr Layout flat{"", "Info.plist", ""};

constexpr std::string_view iconExtension = ".icns";

/// The names that an icon may have in the resources, most likely first. A name that leads elsewhere is none.
std::vector<std::string> iconFileNames(std::string_view information) {
    std::optional<std::string> file;
    std::optional<std::string> name;
    readPropertyListTexts(information, {{"CFBundleIconFile", file}, {"CFBundleIconName", name}});
    std::vector<std::string> names;
    if (file && !file->ends_with(iconExtension)) names.push_back(*file + std::string(iconExtension));
    if (file) names.push_back(*file);
    if (name) names.push_back(*name + std::string(iconExtension));
    std::erase_if(names, [](const std::string& each) {
        return each.empty() || each == iconExtension || each == "." || each == ".." ||
               each.find('/') != std::string::npos;
    });
    return names;
}

class FileBundleLoader final : public BundleLoader {
  public:
    FileBundleLoader(const FileManager& fileManager, std::vector<Language> languages)
        : fileManager_(fileManager), languages_(std::move(languages)) {}

    std::optional<Bundle> bundle(const FileURL& url) const override {
        if (!isFolder(url)) return std::nullopt;
        const auto layout = layoutOf(url);
        auto bundle = Bundle::fromInformation(informationAt(url, layout));
        localize(bundle, resourcesOf(url, layout), fileManager_, languages_);
        return bundle;
    }

    std::optional<FileURL> iconFile(const FileURL& url) const override {
        if (!isFolder(url)) return std::nullopt;
        const auto layout = layoutOf(url);
        const auto resources = resourcesOf(url, layout);
        for (const auto& name : iconFileNames(informationAt(url, layout))) {
            auto file = resources.appendingPathComponent(name);
            if (fileManager_.fileExists(file)) return file;
        }
        return std::nullopt;
    }

  private:
    /// Links followed. A folder that may not be entered is one all the same.
    bool isFolder(const FileURL& url) const {
        const auto values = fileManager_.resourceValues(url);
        if (!values) return false;
        return values->isDirectory ||
               (values->isSymbolicLink && fileManager_.fileExists(url.appendingPathComponent(".")));
    }

    Layout layoutOf(const FileURL& url) const {
        for (const auto& layout : layouts) {
            if (isFolder(url.appendingPathComponent(layout.folder))) return layout;
        }
        return flat;
    }

    static FileURL resourcesOf(const FileURL& url, const Layout& layout) {
        return layout.resources.empty() ? url : url.appendingPathComponent(layout.resources, true);
    }

    /// The bytes of its information; none where it has none that can be read.
    std::string informationAt(const FileURL& url, const Layout& layout) const {
        return fileManager_
            .contents(url.appendingPathComponent(layout.information), PropertyListLimits::bytes)
            .value_or(std::string());
    }

    const FileManager& fileManager_;
    const std::vector<Language> languages_;
};

}  // namespace

std::unique_ptr<BundleLoader> makeBundleLoader(const FileManager& fileManager,
                                               std::vector<Language> languages) {
    return std::make_unique<FileBundleLoader>(fileManager, std::move(languages));
}

}  // namespace orvane
