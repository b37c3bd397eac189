#include "Platform/Bundle.h"

#include <array>
#include <span>

#include "Formats/PropertyList.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

/// What a bundle says, first that which it may say in several languages.
constexpr std::size_t localizable = 5;
std::array<AskedText, 7> textsOf(Bundle& bundle) {
    return {{{"CFBundleDisplayName", bundle.displayName},
             {"CFBundleName", bundle.name},
             {"CFBundleShortVersionString", bundle.shortVersion},
             {"CFBundleVersion", bundle.version},
             {"NSHumanReadableCopyright", bundle.copyright},
             {"CFBundleIdentifier", bundle.identifier},
             {"CFBundleDevelopmentRegion", bundle.developmentRegion}}};
}

}  // namespace

Bundle Bundle::fromInformation(std::string_view propertyList) {
    Bundle bundle;
    replacePropertyListTexts(propertyList, textsOf(bundle));
    return bundle;
}

void Bundle::localize(std::string_view strings) {
    const auto texts = textsOf(*this);
    replacePropertyListTexts(strings, std::span(texts).first(localizable));
}

void Bundle::localize(std::string_view table, std::string_view language) {
    const auto texts = textsOf(*this);
    replacePropertyListTexts(table, language, std::span(texts).first(localizable));
}

std::string Bundle::nameOrFileName(const FileURL& url) const {
    if (displayName) return *displayName;
    return name ? *name : repairedUTF8(url.deletingPathExtension().lastPathComponent());
}

}  // namespace orvane
