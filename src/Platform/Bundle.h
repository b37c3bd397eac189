#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Models/FileURL.h"

namespace orvane {

/// What a bundle says of itself in its information dictionary, in a person's language where it has it so: a
/// snapshot. Absent is what it does not say, or not as text.
struct Bundle {
    std::optional<std::string> identifier;
    std::optional<std::string> displayName;
    std::optional<std::string> name;
    std::optional<std::string> shortVersion;
    std::optional<std::string> version;
    std::optional<std::string> copyright;
    /// The language that it says all this in where it does not say it in another.
    std::optional<std::string> developmentRegion;

    /// What a person calls the bundle at a URL: its display name, else its name, else that of its folder.
    std::string nameOrFileName(const FileURL& url) const;

    /// From the bytes of the property list that is a bundle's information; one that is none says nothing.
    static Bundle fromInformation(std::string_view propertyList);

    // What a bundle is known by is the same in every language: its identifier stays.

    /// Says in a language what the property list says in it, the rest as before.
    void localize(std::string_view strings);
    /// The same, of a property list that has a dictionary for each language.
    void localize(std::string_view table, std::string_view language);
};

/// Opens bundles. Thread-safe; calls block on the disk.
class BundleLoader {
  public:
    virtual ~BundleLoader() = default;

    /// Any existing folder opens as a bundle, one without information too; anything else does not. What it
    /// says is in the languages of the person whom the loader was made for.
    virtual std::optional<Bundle> bundle(const FileURL& url) const = 0;
    /// The icon file of the bundle at a URL, if it names one and that exists in its resources. Looked for at
    /// each call, and at no other.
    virtual std::optional<FileURL> iconFile(const FileURL& url) const = 0;
    /// The icon of the bundle at a URL as the system itself draws it: an image file (PNG) of about that many
    /// pixels' side. Absent where the system draws none.
    virtual std::optional<std::string> iconImage(const FileURL& /*url*/, int /*pixels*/) const {
        return std::nullopt;
    }
};

}  // namespace orvane
