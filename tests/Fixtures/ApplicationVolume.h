#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "Models/FileURL.h"
#include "Platform/Bundle.h"
#include "Text/LocalizedText.h"
#include "tests/Fixtures/TestVolume.h"

namespace orvane::test {

/// A volume to put applications on, with the real services that read them.
class ApplicationVolume : public TestVolume {
  public:
    ApplicationVolume();

    BundleLoader& bundleLoader() const { return *bundleLoader_; }
    LocalizedText& localizedText() const { return *localizedText_; }

    /// Makes a bundle with an executable. With keys it declares them in its information dictionary, each as
    /// text; without any it has no dictionary.
    FileURL addApplication(const std::string& path,
                           const std::map<std::string, std::string>& information = {}) const;
    /// Makes a bundle whose Info.plist holds these bytes.
    FileURL addApplicationWithInfo(const std::string& path, const std::string& infoPlist) const;
    void remove(const std::string& path) const;

    /// What the file system says that one entry occupies, in bytes.
    std::int64_t allocatedSize(const std::string& path) const;

  private:
    std::unique_ptr<BundleLoader> bundleLoader_;
    std::unique_ptr<LocalizedText> localizedText_;
};

/// An XML property list: a dictionary of these texts.
std::string propertyListText(const std::map<std::string, std::string>& dictionary);

}  // namespace orvane::test
