#include "Formats/PropertyList.h"

#include <algorithm>
#include <utility>

#include "Formats/PropertyListReaders.h"
#include "Text/UTF8Builder.h"

namespace orvane {

namespace {

/// Keeps the texts that are asked for of the outermost dictionary, or of one that it has under a key.
class TextKeeper final : public PropertyListHandler {
  public:
    TextKeeper(std::optional<std::string_view> dictionary, std::span<const AskedText> asked)
        : dictionary_(dictionary), isInside_(!dictionary) {
        for (const auto& each : asked) values_.push_back({each.key, false, std::nullopt});
    }

    void beginArray() override { begin(); }
    void beginDictionary(Repeated repeated) override {
        if (depth_ == 0) repeated_ = repeated;
        begin();
    }
    void endContainer() override { --depth_; }
    void key(std::string_view key) override {
        if (depth_ == 1 && dictionary_) enter(key == *dictionary_);
        if (depth_ != textDepth() || !isInside_) return;
        const auto found = std::find_if(values_.begin(), values_.end(),
                                        [&](const Value& value) { return value.key == key; });
        const bool counts = found != values_.end() && (!found->isThere || repeated_ == Repeated::lastCounts);
        current_ = counts ? &*found : nullptr;
    }
    void leaf(const Leaf& leaf) override { value(std::get_if<std::string_view>(&leaf)); }

    /// Replaces what was found, in the order in which it was asked for.
    void replace(std::span<const AskedText> asked) {
        auto value = values_.begin();
        for (const auto& each : asked) {
            if (value->isThere) each.text = std::move(value->text);
            ++value;
        }
    }

  private:
    struct Value {
        std::string_view key;
        bool isThere = false;
        /// Absent for a value of another type.
        std::optional<std::string> text;
    };

    /// Where the keys are that are asked for: so many containers are open around them.
    std::size_t textDepth() const { return dictionary_ ? 2 : 1; }

    /// Comes to a key of the outermost dictionary, which may be that of the dictionary that is asked for.
    void enter(bool isAsked) {
        isInside_ = isAsked && (!wasInside_ || repeated_ == Repeated::lastCounts);
        if (!isInside_) return;
        wasInside_ = true;
        for (auto& each : values_) each = {each.key, false, std::nullopt};
    }

    void begin() {
        value(nullptr);
        ++depth_;
    }

    /// The value of the current key, if it is text. One that is named a hundred thousand times is copied once
    /// where the first counts; where the last does, each stands in the bytes by itself.
    void value(const std::string_view* text) {
        if (depth_ != textDepth() || current_ == nullptr) return;
        current_->isThere = true;
        current_->text.reset();
        const bool isTaken = text != nullptr && text->size() <= PropertyListLimits::askedText;
        if (isTaken) current_->text.emplace(*text);
        current_ = nullptr;
    }

    const std::optional<std::string_view> dictionary_;
    bool isInside_;
    bool wasInside_ = false;
    std::size_t depth_ = 0;
    Repeated repeated_ = Repeated::lastCounts;
    std::vector<Value> values_;
    /// What comes next.
    Value* current_ = nullptr;
};

/// Keeps the keys under which the outermost dictionary has others.
class DictionaryKeeper final : public PropertyListHandler {
  public:
    DictionaryKeeper(std::size_t longest, std::size_t most) : longest_(longest), most_(most) {}

    void beginArray() override { ++depth_; }
    void beginDictionary(Repeated /*repeated*/) override {
        if (++depth_ == 2 && !key_.empty() && keys_.size() < most_) keys_.push_back(std::exchange(key_, {}));
    }
    void endContainer() override { --depth_; }
    void key(std::string_view key) override {
        if (depth_ == 1) key_ = key.size() <= longest_ ? key : std::string_view();
    }
    void leaf(const Leaf& /*leaf*/) override {}

    std::vector<std::string> take() {
        std::sort(keys_.begin(), keys_.end());
        keys_.erase(std::unique(keys_.begin(), keys_.end()), keys_.end());
        return std::exchange(keys_, {});
    }

  private:
    const std::size_t longest_;
    const std::size_t most_;
    std::size_t depth_ = 0;
    std::string key_;
    std::vector<std::string> keys_;
};

bool startsAsUTF16(std::string_view bytes) {
    return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE");
}

/// What follows the mark, as UTF-8, to the first such character or to the end; half of a unit at the end is
/// none.
std::string textFromMarkedUTF16(std::string_view bytes, std::optional<char16_t> last) {
    const bool isBigEndian = bytes.starts_with('\xFE');
    UTF8Builder text;
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        const auto unit = static_cast<char16_t>(isBigEndian ? first << 8U | second : second << 8U | first);
        text.append(unit);
        if (unit == last) break;
    }
    return text.take();
}

/// Whether text is XML. It begins with an angle, as otherwise only data in old style does.
bool isXML(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || text[first] != '<') return false;
    const auto inside = text.substr(first + 1, text.find('>', first) - first - 1);
    return inside.find_first_not_of("0123456789ABCDEFabcdef \t\r\n") != std::string_view::npos;
}

bool readTextPropertyList(std::string_view bytes, PropertyListHandler& handler) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    const bool isUTF16 = startsAsUTF16(bytes);
    // No first tag ends later than a list in old style.
    const auto head = bytes.substr(0, PropertyListLimits::oldStyleBytes);
    if (isUTF16 ? isXML(textFromMarkedUTF16(head, u'>')) : isXML(head)) {
        return readXMLPropertyList(bytes, handler);
    }
    if (bytes.size() > PropertyListLimits::oldStyleBytes) return false;
    if (!isUTF16) return readOldStylePropertyList(bytes, handler);
    return readOldStylePropertyList(textFromMarkedUTF16(bytes, std::nullopt), handler);
}

void replaceTexts(std::string_view bytes, std::optional<std::string_view> dictionary,
                  std::span<const AskedText> asked) {
    TextKeeper keeper(dictionary, asked);
    if (readPropertyList(bytes, keeper)) keeper.replace(asked);
}

}  // namespace

bool readPropertyList(std::string_view bytes, PropertyListHandler& handler) {
    if (bytes.size() > PropertyListLimits::bytes) return false;
    return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes, handler)
                                       : readTextPropertyList(bytes, handler);
}

void readPropertyListTexts(std::string_view bytes, std::initializer_list<AskedText> asked) {
    for (const auto& each : asked) each.text.reset();
    replaceTexts(bytes, std::nullopt, {asked.begin(), asked.size()});
}

void replacePropertyListTexts(std::string_view bytes, std::span<const AskedText> asked) {
    replaceTexts(bytes, std::nullopt, asked);
}

void replacePropertyListTexts(std::string_view bytes, std::string_view dictionary,
                              std::span<const AskedText> asked) {
    replaceTexts(bytes, dictionary, asked);
}

std::vector<std::string> propertyListDictionaries(std::string_view bytes, std::size_t longest,
                                                  std::size_t most) {
    DictionaryKeeper keeper(longest, most);
    return readPropertyList(bytes, keeper) ? keeper.take() : std::vector<std::string>();
}

}  // namespace orvane
