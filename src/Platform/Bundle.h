#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Formats/PropertyList.h"
#include "Models/FileURL.h"

namespace orvane {

/// What a bundle says of itself: a snapshot of its information dictionary. A plain value.
class Bundle {
  public:
    /// Without information it says nothing.
    explicit Bundle(std::optional<PropertyList> information);

    /// The value of a key of the information dictionary; absent when there is none or it is not text.
    std::optional<std::string> string(std::string_view key) const;
    /// The bundle's identifier; absent when it declares none.
    std::optional<std::string> bundleIdentifier() const;

  private:
    std::optional<PropertyList> information_;
};

/// Opens bundles. Thread-safe; calls block on the disk.
class BundleLoader {
  public:
    virtual ~BundleLoader() = default;

    /// Any existing folder opens as a bundle, one without information too; anything else does not.
    virtual std::optional<Bundle> bundle(const FileURL& url) const = 0;
    /// The icon file of the bundle at a URL, if it names one and that exists in its resources. Looked for at
    /// each call, and at no other.
    virtual std::optional<FileURL> iconFile(const FileURL& url) const = 0;
};

}  // namespace orvane
