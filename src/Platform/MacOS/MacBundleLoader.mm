#include "Platform/MacOS/MacBundleLoader.h"

#import <AppKit/AppKit.h>

#include <utility>
#include <vector>

#include "Platform/MacOS/FoundationValues.h"
#include "Platform/Posix/BundleLoader.h"
#include "Text/Language.h"

namespace orvane {

namespace {

/// The languages that the user has set, best first.
std::vector<Language> preferredLanguages() {
    return asked(std::vector<Language>(), [] {
        std::vector<Language> languages;
        for (NSString* each in [NSLocale preferredLanguages]) {
            if (auto language = Language::named(textOf(each).value_or(""))) {
                languages.push_back(*std::move(language));
            }
        }
        return languages;
    });
}

class MacBundleLoader final : public BundleLoader {
  public:
    explicit MacBundleLoader(const FileManager& fileManager)
        : files_(makeBundleLoader(fileManager, preferredLanguages())) {}

    std::optional<Bundle> bundle(const FileURL& url) const override { return files_->bundle(url); }
    std::optional<FileURL> iconFile(const FileURL& url) const override { return files_->iconFile(url); }

    std::optional<std::string> iconImage(const FileURL& url, int pixels) const override {
        const auto path = url.fileSystemPath();
        if (!path) return std::nullopt;
        return asked(std::optional<std::string>(), [&] {
            NSString* const file = [urlOf(*path, true) path];
            NSImage* const icon = file == nil ? nil : [[NSWorkspace sharedWorkspace] iconForFile:file];
            NSRect place{{0, 0}, {static_cast<CGFloat>(pixels), static_cast<CGFloat>(pixels)}};
            const CGImageRef drawn = [icon CGImageForProposedRect:&place context:nil hints:nil];
            if (drawn == nullptr) return std::optional<std::string>();
            NSBitmapImageRep* const bitmap = [[[NSBitmapImageRep alloc] initWithCGImage:drawn] autorelease];
            NSData* const png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
            if (png == nil) return std::optional<std::string>();
            return std::optional(std::string(static_cast<const char*>([png bytes]), [png length]));
        });
    }

  private:
    const std::unique_ptr<BundleLoader> files_;
};

}  // namespace

std::unique_ptr<BundleLoader> makeMacBundleLoader(const FileManager& fileManager) {
    return std::make_unique<MacBundleLoader>(fileManager);
}

}  // namespace orvane
