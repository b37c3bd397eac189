#include <expat.h>

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Formats/PropertyListReaders.h"
#include "Formats/PropertyListText.h"

namespace orvane {

namespace {

constexpr std::string_view blanks = " \t\r\n";

enum class Element { plist, dictionary, array, key, string, integer, real, yes, no, date, data };

std::optional<Element> elementNamed(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, Element>, 11> elements{{
        {"plist", Element::plist},
        {"dict", Element::dictionary},
        {"array", Element::array},
        {"key", Element::key},
        {"string", Element::string},
        {"integer", Element::integer},
        {"real", Element::real},
        {"true", Element::yes},
        {"false", Element::no},
        {"date", Element::date},
        {"data", Element::data},
    }};
    for (const auto& [elementName, element] : elements) {
        if (elementName == name) return element;
    }
    return std::nullopt;
}

/// Builds the list from expat's events. The first thing that a list cannot hold stops the parser.
class XMLReader {
  public:
    XMLReader() : parser_(XML_ParserCreate(nullptr), XML_ParserFree) {
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onText);
        XML_SetCommentHandler(parser_.get(), onComment);
        XML_SetProcessingInstructionHandler(parser_.get(), onInstruction);
        XML_SetSkippedEntityHandler(parser_.get(), onSkippedEntity);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
    }

    std::optional<PropertyList> read(std::string_view bytes) {
        const auto status = XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE);
        return status == XML_STATUS_OK && !isRefused_ ? std::move(root_) : std::nullopt;
    }

  private:
    struct Container {
        bool isDictionary = false;
        PropertyList::Dictionary entries;
        PropertyList::Array elements;
        /// The key whose value comes next.
        std::optional<std::string> key;
    };

    static void onStart(void* reader, const XML_Char* name, const XML_Char** /*attributes*/) {
        check(reader, [&](XMLReader& self) { return self.start(elementNamed(name)); });
    }
    static void onEnd(void* reader, const XML_Char* name) {
        check(reader, [&](XMLReader& self) { return self.end(elementNamed(name)); });
    }
    static void onText(void* reader, const XML_Char* text, int length) {
        check(reader, [&](XMLReader& self) { return self.text({text, static_cast<std::size_t>(length)}); });
    }
    // A text is one piece: nothing may cut it in two.
    static void onComment(void* reader, const XML_Char* /*text*/) {
        check(reader, [](const XMLReader& self) { return !self.leaf_; });
    }
    static void onInstruction(void* reader, const XML_Char* /*target*/, const XML_Char* /*text*/) {
        check(reader, [](const XMLReader& self) { return !self.leaf_; });
    }
    // An entity that the document type, which is never fetched, might have declared.
    static void onSkippedEntity(void* reader, const XML_Char* /*name*/, int /*isParameter*/) {
        check(reader, [](const XMLReader& /*self*/) { return false; });
    }
    static void onDoctype(void* reader, const XML_Char* /*name*/, const XML_Char* /*system*/,
                          const XML_Char* /*publicName*/, int hasInternalSubset) {
        check(reader, [&](const XMLReader& /*self*/) { return hasInternalSubset == 0; });
    }

    /// Lets an event pass only as long as all is well: expat may report one more after it was told to stop.
    template <typename Event>
    static void check(void* reader, Event isAllowed) {
        auto& self = *static_cast<XMLReader*>(reader);
        if (self.isRefused_ || isAllowed(self)) return;
        self.isRefused_ = true;
        XML_StopParser(self.parser_.get(), XML_FALSE);
    }

    bool start(std::optional<Element> element) {
        if (!element || leaf_) return false;
        const bool isFirst = !std::exchange(hasStarted_, true);
        if (element == Element::plist) return isFirst;
        if (!isExpected(*element)) return false;
        if (element == Element::dictionary || element == Element::array) {
            open_.emplace_back().isDictionary = element == Element::dictionary;
            return open_.size() <= PropertyList::maximumDepth;
        }
        leaf_ = element;
        text_.clear();
        return true;
    }

    /// A dictionary takes keys and values in turn, an array values only, the list itself one value.
    bool isExpected(Element element) const {
        const bool isKey = element == Element::key;
        if (open_.empty()) return !isKey && !root_;
        if (!open_.back().isDictionary) return !isKey;
        return isKey != open_.back().key.has_value();
    }

    bool text(std::string_view text) {
        if (!leaf_) return text.find_first_not_of(blanks) == std::string_view::npos;
        text_ += text;
        return true;
    }

    bool end(std::optional<Element> element) {
        if (element == Element::plist) return root_.has_value();
        if (!leaf_) return endContainer();
        leaf_.reset();
        if (element != Element::key) return add(leafObject(*element));
        open_.back().key = std::move(text_);
        return true;
    }

    bool endContainer() {
        auto container = std::move(open_.back());
        open_.pop_back();
        if (container.key) return false;
        return add(container.isDictionary ? builder_.object(std::move(container.entries))
                                          : builder_.object(std::move(container.elements)));
    }

    std::optional<PropertyList> leafObject(Element element) {
        switch (element) {
            case Element::string:
                return builder_.object(std::move(text_));
            case Element::integer:
                return integerObject();
            case Element::real:
                return optionalObject(realFromText(text_));
            case Element::date:
                return optionalObject(dateFromText(text_));
            case Element::data:
                return builder_.object(PropertyList::Data{dataFromText(text_)});
            case Element::yes:
            case Element::no:
                return text_.empty() ? builder_.object(element == Element::yes) : std::nullopt;
            default:
                return std::nullopt;
        }
    }

    std::optional<PropertyList> integerObject() {
        const auto integer = integerFromText(text_);
        if (!integer) return std::nullopt;
        const auto magnitude = integer->magnitude;
        if (integer->isNegative) return builder_.object(static_cast<std::int64_t>(0 - magnitude));
        const auto value = static_cast<std::int64_t>(magnitude);
        return value >= 0 ? builder_.object(value) : builder_.object(magnitude);
    }

    template <typename T>
    std::optional<PropertyList> optionalObject(const std::optional<T>& value) {
        return value ? builder_.object(*value) : std::nullopt;
    }

    bool add(std::optional<PropertyList> object) {
        if (!object) return false;
        if (open_.empty()) {
            root_ = std::move(object);
        } else if (open_.back().isDictionary) {
            // Of a key that is there twice the last value counts.
            open_.back().entries.insert_or_assign(*std::exchange(open_.back().key, {}), *std::move(object));
        } else {
            open_.back().elements.push_back(*std::move(object));
        }
        return true;
    }

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    PropertyListBuilder builder_;
    bool isRefused_ = false;
    bool hasStarted_ = false;
    std::vector<Container> open_;
    /// The element that holds text and no elements, while inside one, and its text so far.
    std::optional<Element> leaf_;
    std::string text_;
    std::optional<PropertyList> root_;
};

/// Blanks before the declaration, which no other XML may have, are common in property lists.
std::string_view withoutLeadingBlanks(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    const auto first = bytes.find_first_not_of(blanks);
    return bytes.substr(first == std::string_view::npos ? bytes.size() : first);
}

}  // namespace

std::optional<PropertyList> readXMLPropertyList(std::string_view bytes) {
    const auto document = withoutLeadingBlanks(bytes);
    // Expat would guess that this is UTF-16, which has to say so by its mark.
    const bool isUnmarkedUTF16 = document.substr(0, 2).find('\0') != std::string_view::npos;
    if (isUnmarkedUTF16) return std::nullopt;
    return XMLReader().read(document);
}

}  // namespace orvane
