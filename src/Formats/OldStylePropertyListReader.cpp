#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Formats/PropertyListReaders.h"
#include "Text/UTF8.h"
#include "Text/UTF8Builder.h"

namespace orvane {

namespace {

constexpr std::string_view lineSeparator = "\u2028";
constexpr std::string_view paragraphSeparator = "\u2029";

/// What a byte above ASCII stands for that is written by its octal number: a letter of NeXTSTEP's.
constexpr std::array<char16_t, 128> nextStepLetters{
    0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7, 0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC,
    0x00CD, 0x00CE, 0x00CF, 0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9, 0x00DA, 0x00DB,
    0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7, 0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192,
    0x00A7, 0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x00AE, 0x2013, 0x2020, 0x2021,
    0x00B7, 0x00A6, 0x00B6, 0x2022, 0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF, 0x00B9,
    0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD,
    0x02DB, 0x02C7, 0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5,
    0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
    0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB,
    0x0131, 0x00FC, 0x00FD, 0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD};

bool isOneOf(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

bool isOctalDigit(char c) {
    return c >= '0' && c <= '7';
}

bool isHexDigit(char c) {
    return isOneOf(c, "0123456789ABCDEFabcdef");
}

/// What a text may be made of that stands without quotes.
bool isBare(char c) {
    return (c >= '0' && c <= '9') || (lowercasedASCII(c) >= 'a' && lowercasedASCII(c) <= 'z') ||
           isOneOf(c, "_$/:.-");
}

/// Tells the list's events from the first character to the last, each of which it looks at a fixed number of
/// times, with a stack of its own. Its text is valid UTF-8.
class OldStyleReader {
  public:
    OldStyleReader(std::string_view text, PropertyListHandler& handler)
        : text_(text), rest_(text), handler_(handler) {}

    bool read() {
        if (!skipBlanks()) return beginLines() && readOpen();
        if (!isString()) return value() && readOpen() && !skipBlanks();
        const auto string = takeString();
        if (!string) return false;
        if (!skipBlanks()) {
            handler_.leaf(*string);
            return true;
        }
        // More than a text: a dictionary without its braces, from the beginning.
        rest_ = text_;
        return beginLines() && readOpen();
    }

  private:
    /// `lines` is a dictionary that ends with the list, at what is no key.
    enum class Kind { array, dictionary, lines };
    struct Container {
        Kind kind = Kind::array;
        /// Whether what stands between two values, or behind the last, comes next.
        bool hasValue = false;
    };

    bool beginLines() { return beginValue() && begin(Kind::lines); }

    bool readOpen() {
        while (!open_.empty()) {
            if (!step()) return false;
        }
        return true;
    }

    /// Goes on with the innermost open container: to its next value, or to its end.
    bool step() {
        auto& container = open_.back();
        skipBlanks();
        if (std::exchange(container.hasValue, false)) {
            if (container.kind != Kind::array) return take(';');
            return take(',') || end();
        }
        if (container.kind == Kind::array) return isValue() ? value() : end();
        return isString() ? entry() : end();
    }

    /// A key and its value, which is the key itself where there is no other.
    bool entry() {
        const auto key = takeString();
        if (!key || !skipBlanks()) return false;
        handler_.key(*key);
        if (take('=')) return skipBlanks() && value();
        if (rest_.front() != ';' || !beginValue()) return false;
        handler_.leaf(*key);
        return true;
    }

    bool value() {
        const char first = rest_.front();
        if (first == '{') return take(first) && beginValue() && begin(Kind::dictionary);
        if (first == '(') return take(first) && beginValue() && begin(Kind::array);
        if (first == '<') return take(first) && beginValue() && data();
        if (!isString() || !beginValue()) return false;
        const auto string = takeString();
        if (string) handler_.leaf(*string);
        return string.has_value();
    }

    bool beginValue() {
        if (!open_.empty()) open_.back().hasValue = true;
        return ++objects_ <= PropertyListLimits::objects;
    }

    bool begin(Kind kind) {
        open_.push_back({kind});
        if (open_.size() > PropertyListLimits::depth) return false;
        if (kind == Kind::array) {
            handler_.beginArray();
        } else {
            handler_.beginDictionary(PropertyListHandler::Repeated::lastCounts);
        }
        return true;
    }

    bool end() {
        const auto kind = open_.back().kind;
        if (kind != Kind::lines && !take(kind == Kind::array ? ')' : '}')) return false;
        open_.pop_back();
        handler_.endContainer();
        return true;
    }

    /// Pairs of hexadecimal digits, blanks between them.
    bool data() {
        while (!rest_.empty() && rest_.front() != '>') {
            if (isHexDigit(rest_.front())) {
                if (rest_.size() < 2 || !isHexDigit(rest_[1])) return false;
                rest_.remove_prefix(2);
            } else if (isOneOf(rest_.front(), " \t\r\n")) {
                rest_.remove_prefix(1);
            } else if (!takeSeparator()) {
                return false;
            }
        }
        if (!take('>')) return false;
        handler_.leaf(PropertyListHandler::Other{});
        return true;
    }

    bool isString() const {
        return !rest_.empty() && (isOneOf(rest_.front(), "\"'") || isBare(rest_.front()));
    }
    bool isValue() const { return isString() || (!rest_.empty() && isOneOf(rest_.front(), "{(<")); }

    /// A text that begins here; valid until the next one is taken. Absent when its quote does not end.
    std::optional<std::string_view> takeString() {
        if (isOneOf(rest_.front(), "\"'")) return takeQuoted();
        const auto* const end = std::find_if_not(rest_.begin(), rest_.end(), isBare);
        return takePrefix(static_cast<std::size_t>(end - rest_.begin()));
    }

    std::optional<std::string_view> takeQuoted() {
        const std::array<char, 2> special{takePrefix(1).front(), '\\'};
        UTF8Builder string;
        while (true) {
            const auto length = rest_.find_first_of(special.data(), 0, special.size());
            if (length == std::string_view::npos) return std::nullopt;
            string.append(takePrefix(length));
            if (take(special.front())) break;
            take('\\');
            if (rest_.empty()) return std::nullopt;
            unescape(string);
        }
        string_ = string.take();
        return string_;
    }

    /// What stands behind a backslash.
    void unescape(UTF8Builder& string) {
        constexpr std::string_view letters = "abfnrtv";
        constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
        const char first = rest_.front();
        if (isOctalDigit(first)) {
            const auto byte = static_cast<unsigned char>(takeNumber(isOctalDigit, 3, 8));
            string.append(byte < 0x80 ? static_cast<char16_t>(byte) : nextStepLetters.at(byte - 0x80));
        } else if (take('U')) {
            string.append(static_cast<char16_t>(takeNumber(isHexDigit, 4, 16)));
        } else if (const auto letter = letters.find(first); letter != std::string_view::npos) {
            rest_.remove_prefix(1);
            string.append(meanings.substr(letter, 1));
        } else {
            // Anything else stands for itself.
            string.append(takePrefix(1));
        }
    }

    /// As many digits as there are, up to a number of them; 0 for none.
    unsigned takeNumber(bool (*isDigit)(char), std::size_t most, int base) {
        const auto digits = rest_.substr(0, most);
        const auto* const end = std::find_if_not(digits.begin(), digits.end(), isDigit);
        unsigned number = 0;
        std::from_chars(digits.data(), end, number, base);
        takePrefix(static_cast<std::size_t>(end - digits.begin()));
        return number;
    }

    /// Whether anything comes after the blanks and comments that begin here.
    bool skipBlanks() {
        while (!rest_.empty()) {
            if (isOneOf(rest_.front(), " \t\n\v\f\r")) {
                rest_.remove_prefix(1);
            } else if (rest_.starts_with("//")) {
                skipLine();
            } else if (rest_.starts_with("/*")) {
                // One that does not end goes on to the end of the list.
                const auto end = rest_.find("*/", 2);
                takePrefix(end == std::string_view::npos ? rest_.size() : end + 2);
            } else if (!takeSeparator()) {
                return true;
            }
        }
        return false;
    }

    void skipLine() {
        while (!rest_.empty() && !isOneOf(rest_.front(), "\n\r") && !takeSeparator()) rest_.remove_prefix(1);
    }

    bool take(char expected) {
        if (!rest_.starts_with(expected)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool takeSeparator() {
        if (!rest_.starts_with(lineSeparator) && !rest_.starts_with(paragraphSeparator)) return false;
        rest_.remove_prefix(lineSeparator.size());
        return true;
    }

    std::string_view takePrefix(std::size_t length) {
        const auto prefix = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return prefix;
    }

    const std::string_view text_;
    std::string_view rest_;
    PropertyListHandler& handler_;
    std::size_t objects_ = 0;
    std::vector<Container> open_;
    std::string string_;
};

}  // namespace

bool readOldStylePropertyList(std::string_view text, PropertyListHandler& handler) {
    if (text.empty() || !isValidUTF8(text)) return false;
    return OldStyleReader(text, handler).read();
}

}  // namespace orvane
