#include "Platform/MacOS/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include "Platform/MacOS/FoundationValues.h"

namespace orvane {

namespace {

/// The executable's path, as it is compared.
std::optional<std::string> executablePath(NSRunningApplication* application) {
    return pathOf([application executableURL]);
}

class MacWorkspace final : public Workspace {
  public:
    std::vector<RunningApplication> runningApplications() const override {
        return asked(std::vector<RunningApplication>(), [] {
            std::vector<RunningApplication> applications;
            for (NSRunningApplication* each in [[NSWorkspace sharedWorkspace] runningApplications]) {
                // It can have ended since, and then has no id any more.
                const auto identifier = [each processIdentifier];
                if (identifier <= 0 || [each bundleURL] == nil) continue;
                RunningApplication application;
                application.processIdentifier = identifier;
                application.localizedName = textOf([each localizedName]);
                application.bundleIdentifier = textOf([each bundleIdentifier]);
                if (const auto path = executablePath(each)) {
                    application.executableURL = FileURL::fromPath(*path, false);
                }
                applications.push_back(std::move(application));
            }
            return applications;
        });
    }

    void terminate(const RunningService& service) override {
        if (service.executablePath.empty()) return;
        asked(false, [&] {
            NSRunningApplication* const application =
                [NSRunningApplication runningApplicationWithProcessIdentifier:service.processIdentifier];
            if (application == nil || executablePath(application) != service.executablePath) return false;
            return static_cast<bool>([application terminate]);
        });
    }

    void activateFileViewerSelecting(const FileURL& url) override {
        const auto path = url.fileSystemPath();
        if (!path) return;
        asked(false, [&] {
            NSURL* const file = urlOf(*path, false);
            if (file != nil) [[NSWorkspace sharedWorkspace] activateFileViewerSelectingURLs:@[ file ]];
            return file != nil;
        });
    }
};

}  // namespace

std::unique_ptr<Workspace> makeWorkspace() {
    return std::make_unique<MacWorkspace>();
}

}  // namespace orvane
