#include "Platform/MacOS/FoundationValues.h"
#include "Platform/Posix/HomeFolder.h"

namespace orvane {

HomeFolder ownHomeFolder() {
    return asked(HomeFolder(), [] {
        NSFileManager* const files = [NSFileManager defaultManager];
        HomeFolder home;
        home.path = pathOf([files homeDirectoryForCurrentUser]).value_or(std::string());
        NSArray* const folders = [files URLsForDirectory:NSApplicationSupportDirectory
                                               inDomains:NSUserDomainMask];
        home.applicationSupport =
            pathOf([folders firstObject]).value_or(home.path + "/Library/Application Support");
        return home;
    });
}

}  // namespace orvane
