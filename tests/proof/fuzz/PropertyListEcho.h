#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Formats/PropertyList.h"

namespace orvane::test {

/// Hears a property list, demands that it is told in order and within the limits, and writes it as XML.
class PropertyListEcho final : public PropertyListHandler {
  public:
    void beginArray() override { begin(Open::array); }
    void beginDictionary(Repeated repeated) override;
    void endContainer() override;
    void key(std::string_view key) override;
    void leaf(const Leaf& leaf) override;

    /// What was told, once all has been; absent where XML cannot say it, or where it is long.
    std::optional<std::string> xml() const;

  private:
    enum class Open { array, dictionary, key };

    void begin(Open container);
    void value();
    void write(std::string_view element, std::string_view text);

    std::string xml_;
    bool isSayable_ = true;
    bool hasRoot_ = false;
    std::size_t objects_ = 0;
    std::vector<Open> open_;
};

}  // namespace orvane::test
