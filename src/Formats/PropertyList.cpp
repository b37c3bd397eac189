#include "Formats/PropertyList.h"

#include <algorithm>
#include <vector>

#include "Formats/PropertyListReaders.h"

namespace orvane {

namespace {

/// Keeps the texts that are asked for of the outermost dictionary.
class TextKeeper final : public PropertyListHandler {
  public:
    explicit TextKeeper(std::initializer_list<AskedText> asked) {
        for (const auto& each : asked) open_.push_back(&each);
    }

    void beginArray() override { begin(); }
    void beginDictionary(Repeated repeated) override {
        if (depth_ == 0) repeated_ = repeated;
        begin();
    }
    void endContainer() override { --depth_; }
    void key(std::string_view key) override {
        if (depth_ != 1) return;
        const auto asked =
            std::find_if(open_.begin(), open_.end(), [&](const auto* each) { return each->key == key; });
        current_ = asked != open_.end() ? *asked : nullptr;
    }
    void leaf(const Leaf& leaf) override { value(std::get_if<std::string_view>(&leaf)); }

  private:
    void begin() {
        value(nullptr);
        ++depth_;
    }

    /// The value of the current key, if it is text.
    void value(const std::string_view* text) {
        if (depth_ != 1 || current_ == nullptr) return;
        current_->text.reset();
        if (text != nullptr) current_->text.emplace(*text);
        // A text that is named a hundred thousand times is copied once.
        if (repeated_ == Repeated::firstCounts) std::erase(open_, current_);
        current_ = nullptr;
    }

    std::size_t depth_ = 0;
    Repeated repeated_ = Repeated::lastCounts;
    /// What may still come, and what of it comes next.
    std::vector<const AskedText*> open_;
    const AskedText* current_ = nullptr;
};

}  // namespace

bool readPropertyList(std::string_view bytes, PropertyListHandler& handler) {
    if (bytes.size() > PropertyListLimits::bytes) return false;
    return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes, handler)
                                       : readXMLPropertyList(bytes, handler);
}

void readPropertyListTexts(std::string_view bytes, std::initializer_list<AskedText> asked) {
    for (const auto& each : asked) each.text.reset();
    TextKeeper keeper(asked);
    if (readPropertyList(bytes, keeper)) return;
    for (const auto& each : asked) each.text.reset();
}

}  // namespace orvane
