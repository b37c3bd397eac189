#include "Platform/Bundle.h"

#include "Formats/PropertyList.h"
#include "Text/UTF8.h"

namespace orvane {

Bundle Bundle::fromInformation(std::string_view propertyList) {
    Bundle bundle;
    readPropertyListTexts(propertyList, {{"CFBundleIdentifier", bundle.identifier},
                                         {"CFBundleDisplayName", bundle.displayName},
                                         {"CFBundleName", bundle.name},
                                         {"CFBundleShortVersionString", bundle.shortVersion},
                                         {"CFBundleVersion", bundle.version},
                                         {"NSHumanReadableCopyright", bundle.copyright}});
    return bundle;
}

std::string Bundle::nameOrFileName(const FileURL& url) const {
    if (displayName) return *displayName;
    return name ? *name : repairedUTF8(url.deletingPathExtension().lastPathComponent());
}

}  // namespace orvane
