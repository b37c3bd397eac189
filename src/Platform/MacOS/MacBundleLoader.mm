#include "Platform/MacOS/MacBundleLoader.h"

#import <AppKit/AppKit.h>

#include "Platform/MacOS/FoundationValues.h"
#include "Platform/Posix/BundleLoader.h"

namespace orvane {

namespace {

/// Puts the text of a key, where the bundle has one, in the place of another.
void localize(std::optional<std::string>& text, NSDictionary* localized, NSString* key) {
    if (auto own = textOf([localized objectForKey:key])) text = std::move(own);
}

class MacBundleLoader final : public BundleLoader {
  public:
    explicit MacBundleLoader(const FileManager& fileManager) : files_(makeBundleLoader(fileManager)) {}

    // What a bundle is stands in its file, read anew at each call: the system's own bundles stay as they were
    // when they were opened first, whatever has taken their place.

    std::optional<Bundle> bundle(const FileURL& url) const override {
        auto bundle = files_->bundle(url);
        const auto path = url.fileSystemPath();
        if (!bundle || !path) return bundle;
        return asked(bundle, [&] {
            auto shown = *bundle;
            NSDictionary* const texts = [[NSBundle bundleWithURL:urlOf(*path, true)] localizedInfoDictionary];
            localize(shown.displayName, texts, @"CFBundleDisplayName");
            localize(shown.name, texts, @"CFBundleName");
            localize(shown.copyright, texts, @"NSHumanReadableCopyright");
            return std::optional(std::move(shown));
        });
    }

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
