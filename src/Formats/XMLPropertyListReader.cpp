#include <expat.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Formats/DoubleText.h"
#include "Formats/PropertyListReaders.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

constexpr std::string_view blanks = " \t\r\n";

enum class Element { plist, dictionary, array, key, string, integer, real, yes, no, date, data };

std::optional<Element> elementNamed(std::string_view name) {
    // The commonest first.
    static constexpr std::array<std::pair<std::string_view, Element>, 11> elements{{
        {"key", Element::key},
        {"string", Element::string},
        {"true", Element::yes},
        {"false", Element::no},
        {"dict", Element::dictionary},
        {"array", Element::array},
        {"integer", Element::integer},
        {"data", Element::data},
        {"date", Element::date},
        {"real", Element::real},
        {"plist", Element::plist},
    }};
    for (const auto& [elementName, element] : elements) {
        if (elementName == name) return element;
    }
    return std::nullopt;
}

/// Whether the name of an encoding is that of one of Unicode's, in letters of either case.
bool isUnicode(std::string_view encoding) {
    return equalsIgnoringCase(encoding.substr(0, 4), "utf-");
}

void skipBlanks(std::string_view& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    text.remove_prefix(first == std::string_view::npos ? text.size() : first);
}

bool skip(std::string_view& text, char expected) {
    if (!text.starts_with(expected)) return false;
    text.remove_prefix(1);
    return true;
}

/// The whole text as a number; from_chars takes no sign of plus.
template <typename Number>
std::optional<Number> number(std::string_view text, int base) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base);
    if (result.ec != std::errc{} || result.ptr != end) return std::nullopt;
    return value;
}

/// Takes as many digits as asked for.
std::optional<unsigned> digits(std::string_view& text, std::size_t count) {
    const auto value = number<unsigned>(text.substr(0, count), 10);
    if (text.size() < count) return std::nullopt;
    text.remove_prefix(count);
    return value;
}

/// Takes a day that the calendar has.
bool skipDay(std::string_view& text) {
    const auto year = digits(text, 4);
    if (!year || !skip(text, '-')) return false;
    const auto month = digits(text, 2);
    if (!month || !skip(text, '-')) return false;
    const auto day = digits(text, 2);
    if (!day) return false;
    const auto date =
        std::chrono::year(static_cast<int>(*year)) / std::chrono::month(*month) / std::chrono::day(*day);
    return date.ok();
}

bool skipTimeOfDay(std::string_view& text) {
    const auto hour = digits(text, 2);
    if (!hour || *hour > 23 || !skip(text, ':')) return false;
    const auto minute = digits(text, 2);
    if (!minute || *minute > 59 || !skip(text, ':')) return false;
    const auto second = digits(text, 2);
    return second && *second <= 60;
}

using Leaf = PropertyListHandler::Leaf;

/// How the values of a property list are written. Absent for a text that is none; blanks may come before a
/// number, never after it.

/// Decimal, or hexadecimal after "0x"; from the smallest signed to the largest unsigned number of 64 bits.
std::optional<Leaf> integerFromText(std::string_view text) {
    skipBlanks(text);
    const bool isNegative = skip(text, '-');
    if (!isNegative) skip(text, '+');
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal) text.remove_prefix(2);
    const auto magnitude = number<std::uint64_t>(text, isHexadecimal ? 16 : 10);
    constexpr std::uint64_t smallest = std::uint64_t{1} << 63;
    if (!magnitude || (isNegative && *magnitude > smallest)) return std::nullopt;
    if (isNegative) return static_cast<std::int64_t>(0 - *magnitude);
    return *magnitude < smallest ? Leaf(static_cast<std::int64_t>(*magnitude))
                                 : Leaf(PropertyListHandler::Other{});
}

/// With fraction and exponent; "nan", "inf" and "infinity" in any case.
std::optional<Leaf> realFromText(std::string_view text) {
    skipBlanks(text);
    if (skip(text, '+') && text.starts_with('-')) return std::nullopt;
    double value = 0;
    const auto* const end = text.data() + text.size();
    const auto parsed = doubleFromChars(text.data(), end, value);
    if (parsed.ec != std::errc{} || parsed.ptr != end) return std::nullopt;
    return value;
}

/// "2020-01-02T03:04:05Z", a date that the calendar has.
std::optional<Leaf> dateFromText(std::string_view text) {
    const bool isDate = skipDay(text) && skip(text, 'T') && skipTimeOfDay(text) && text == "Z";
    return isDate ? std::optional<Leaf>(PropertyListHandler::Other{}) : std::nullopt;
}

/// Makes the list's events of expat's. The first thing that a list cannot hold stops the parser.
class XMLReader {
  public:
    explicit XMLReader(PropertyListHandler& handler)
        : parser_(XML_ParserCreate(nullptr), XML_ParserFree), handler_(handler) {
        XML_SetUserData(parser_.get(), this);
        XML_SetElementHandler(parser_.get(), onStart, onEnd);
        XML_SetCharacterDataHandler(parser_.get(), onText);
        XML_SetCommentHandler(parser_.get(), onComment);
        XML_SetProcessingInstructionHandler(parser_.get(), onInstruction);
        XML_SetSkippedEntityHandler(parser_.get(), onSkippedEntity);
        XML_SetStartDoctypeDeclHandler(parser_.get(), onDoctype);
        XML_SetXmlDeclHandler(parser_.get(), onDeclaration);
        XML_SetDefaultHandlerExpand(parser_.get(), onAnythingElse);
    }

    bool read(std::string_view bytes) {
        size_ = bytes.size();
        // In pieces, so that a tag of a million attributes is refused before it has been read.
        while (bytes.size() > pieceSize) {
            if (!parse(bytes.substr(0, pieceSize), XML_FALSE) || ++silentPieces_ > mostSilentPieces)
                return false;
            bytes.remove_prefix(pieceSize);
        }
        return parse(bytes, XML_TRUE) && hasRoot_;
    }

  private:
    static constexpr std::size_t pieceSize = std::size_t{64} << 10U;
    static constexpr int mostSilentPieces = 4;

    struct Container {
        bool isDictionary = false;
        /// Whether a key's value comes next.
        bool hasKey = false;
    };

    bool parse(std::string_view bytes, XML_Bool isLast) {
        const auto status = XML_Parse(parser_.get(), bytes.data(), static_cast<int>(bytes.size()), isLast);
        return status == XML_STATUS_OK && !isRefused_;
    }

    static void onStart(void* reader, const XML_Char* name, const XML_Char** /*attributes*/) {
        check(reader,
              [&](XMLReader& self) { return self.countAttributes() && self.start(elementNamed(name)); });
    }
    static void onEnd(void* reader, const XML_Char* /*name*/) {
        check(reader, [](XMLReader& self) { return self.end(); });
    }
    static void onText(void* reader, const XML_Char* text, int length) {
        check(reader, [&](XMLReader& self) {
            return self.countPart() && self.text({text, static_cast<std::size_t>(length)});
        });
    }
    // A text is one piece: nothing may cut it in two.
    static void onComment(void* reader, const XML_Char* /*text*/) {
        check(reader, [](XMLReader& self) { return self.countPart() && !self.leaf_; });
    }
    static void onInstruction(void* reader, const XML_Char* /*target*/, const XML_Char* /*text*/) {
        check(reader, [](XMLReader& self) { return self.countPart() && !self.leaf_; });
    }
    // Blanks around the list, the document type; in the list, the ends of a section.
    static void onAnythingElse(void* reader, const XML_Char* /*text*/, int /*length*/) {
        check(reader, [](XMLReader& self) { return !self.hasStarted_ || self.countPart(); });
    }
    // An entity that the document type, which is never fetched, might have declared.
    static void onSkippedEntity(void* reader, const XML_Char* /*name*/, int /*isParameter*/) {
        check(reader, [](const XMLReader& /*self*/) { return false; });
    }
    static void onDoctype(void* reader, const XML_Char* /*name*/, const XML_Char* /*system*/,
                          const XML_Char* /*publicName*/, int hasInternalSubset) {
        check(reader, [&](const XMLReader& /*self*/) { return hasInternalSubset == 0; });
    }

    static void onDeclaration(void* reader, const XML_Char* /*version*/, const XML_Char* encoding,
                              int /*isStandalone*/) {
        check(reader, [&](const XMLReader& self) {
            return self.size_ <= PropertyListLimits::otherEncodingBytes || encoding == nullptr ||
                   isUnicode(encoding);
        });
    }

    /// Lets an event pass only as long as all is well: expat may report one more after it was told to stop.
    template <typename Event>
    static void check(void* reader, Event isAllowed) {
        auto& self = *static_cast<XMLReader*>(reader);
        self.silentPieces_ = 0;
        if (self.isRefused_ || isAllowed(self)) return;
        self.isRefused_ = true;
        XML_StopParser(self.parser_.get(), XML_FALSE);
    }

    // Expat reports each line, reference, comment and instruction by itself.
    bool countPart() { return ++parts_ <= PropertyListLimits::parts; }
    bool countAttributes() {
        attributes_ += static_cast<std::size_t>(XML_GetSpecifiedAttributeCount(parser_.get()) / 2);
        return attributes_ <= PropertyListLimits::attributes;
    }

    bool start(std::optional<Element> element) {
        if (!element || leaf_) return false;
        const bool isFirst = !std::exchange(hasStarted_, true);
        if (element == Element::plist) return isFirst;
        if (!isExpected(*element)) return false;
        if (element != Element::key) beginValue();
        if (++objects_ > PropertyListLimits::objects) return false;
        if (element == Element::dictionary || element == Element::array) return begin(*element);
        leaf_ = element;
        text_.clear();
        return true;
    }

    /// A dictionary takes keys and values in turn, an array values only, the list itself one value.
    bool isExpected(Element element) const {
        const bool isKey = element == Element::key;
        if (open_.empty()) return !isKey && !hasRoot_;
        if (!open_.back().isDictionary) return !isKey;
        return isKey != open_.back().hasKey;
    }

    void beginValue() {
        hasRoot_ = true;
        if (!open_.empty()) open_.back().hasKey = false;
    }

    bool begin(Element element) {
        const bool isDictionary = element == Element::dictionary;
        open_.push_back({isDictionary});
        if (open_.size() > PropertyListLimits::depth) return false;
        if (isDictionary) {
            handler_.beginDictionary(PropertyListHandler::Repeated::lastCounts);
        } else {
            handler_.beginArray();
        }
        return true;
    }

    bool text(std::string_view text) {
        if (!leaf_) return text.find_first_not_of(blanks) == std::string_view::npos;
        // Nobody asks what the data are, or for the rest of a text that is too long.
        if (leaf_ != Element::data && !isTooLong()) text_ += text;
        return true;
    }

    bool isTooLong() const { return text_.size() > PropertyListLimits::askedText; }

    /// Of whatever began last: expat sees to it that they end in turn.
    bool end() {
        const auto element = std::exchange(leaf_, std::nullopt);
        if (!element) return open_.empty() ? hasRoot_ : endContainer();
        if (element == Element::key) {
            open_.back().hasKey = true;
            handler_.key(text_);
            return true;
        }
        const auto leaf = leafOf(*element);
        if (leaf) handler_.leaf(*leaf);
        return leaf.has_value();
    }

    bool endContainer() {
        if (open_.back().hasKey) return false;
        open_.pop_back();
        handler_.endContainer();
        return true;
    }

    std::optional<Leaf> leafOf(Element element) const {
        if (element == Element::string) return std::string_view(text_);
        if (isTooLong()) return std::nullopt;
        switch (element) {
            case Element::integer:
                return integerFromText(text_);
            case Element::real:
                return realFromText(text_);
            case Element::date:
                return dateFromText(text_);
            case Element::data:
                // What is not of its alphabet is passed over, so that every text is some data.
                return PropertyListHandler::Other{};
            case Element::yes:
            case Element::no:
                return text_.empty() ? std::optional<Leaf>(element == Element::yes) : std::nullopt;
            default:
                return std::nullopt;
        }
    }

    std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
    PropertyListHandler& handler_;
    std::size_t size_ = 0;
    bool isRefused_ = false;
    bool hasStarted_ = false;
    bool hasRoot_ = false;
    std::size_t objects_ = 0;
    std::size_t parts_ = 0;
    std::size_t attributes_ = 0;
    /// How many pieces have been read since expat reported anything.
    int silentPieces_ = 0;
    std::vector<Container> open_;
    /// The element that holds text and no elements, while inside one, and its text so far.
    std::optional<Element> leaf_;
    std::string text_;
};

/// Blanks before the declaration, which no other XML may have, are common in property lists.
std::string_view withoutLeadingBlanks(std::string_view bytes) {
    const auto first = bytes.find_first_not_of(blanks);
    return bytes.substr(first == std::string_view::npos ? bytes.size() : first);
}

}  // namespace

bool readXMLPropertyList(std::string_view bytes, PropertyListHandler& handler) {
    const auto document = withoutLeadingBlanks(bytes);
    // Expat would guess that this is UTF-16, which has to say so by its mark.
    const bool isUnmarkedUTF16 = document.substr(0, 2).find('\0') != std::string_view::npos;
    if (isUnmarkedUTF16) return false;
    return XMLReader(handler).read(document);
}

}  // namespace orvane
