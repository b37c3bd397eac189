#include "tests/proof/fuzz/PropertyListEcho.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include <variant>

#include "Text/UTF8.h"
#include "tests/proof/fuzz/Targets.h"

namespace orvane::test {

namespace {

constexpr std::size_t longest = std::size_t{1} << 20U;

template <typename Number>
std::string asText(Number number) {
    std::array<char, 64> digits{};
    return {digits.data(), std::to_chars(digits.begin(), digits.end(), number).ptr};
}

bool isCharacterOfXML(unsigned char c) {
    return c >= 0x20 || c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

void PropertyListEcho::beginDictionary(Repeated /*repeated*/) {
    begin(Open::dictionary);
}

void PropertyListEcho::begin(Open container) {
    value();
    open_.push_back(container);
    promise(open_.size() <= PropertyListLimits::depth, "no list nests deeper than the limit");
    xml_ += container == Open::array ? "<array>" : "<dict>";
}

void PropertyListEcho::endContainer() {
    promise(!open_.empty() && open_.back() != Open::key, "what ends has begun, and no key lacks its value");
    xml_ += open_.back() == Open::array ? "</array>" : "</dict>";
    open_.pop_back();
}

void PropertyListEcho::key(std::string_view key) {
    promise(!open_.empty() && open_.back() == Open::dictionary, "keys are those of a dictionary");
    open_.push_back(Open::key);
    write("key", key);
}

void PropertyListEcho::value() {
    promise(++objects_ <= PropertyListLimits::objects, "no list holds more than the limit");
    if (open_.empty()) promise(!std::exchange(hasRoot_, true), "a list has one root");
    if (open_.empty() || open_.back() == Open::array) return;
    promise(open_.back() == Open::key, "a value in a dictionary has a key");
    open_.pop_back();
}

void PropertyListEcho::leaf(const Leaf& leaf) {
    value();
    if (const auto* text = std::get_if<std::string_view>(&leaf)) return write("string", *text);
    if (const auto* integer = std::get_if<std::int64_t>(&leaf)) return write("integer", asText(*integer));
    if (const auto* real = std::get_if<double>(&leaf)) return write("real", asText(*real));
    if (const auto* boolean = std::get_if<bool>(&leaf)) return write(*boolean ? "true" : "false", "");
    write("data", "");
}

void PropertyListEcho::write(std::string_view element, std::string_view text) {
    promise(isValidUTF8(text), "texts are valid UTF-8");
    isSayable_ =
        isSayable_ && xml_.size() + text.size() < longest && std::ranges::all_of(text, isCharacterOfXML) &&
        text.find("\uFFFE") == std::string_view::npos && text.find("\uFFFF") == std::string_view::npos;
    if (!isSayable_) return;
    (((xml_ += '<') += element) += '>');
    for (const char c : text) {
        if (c == '<' || c == '&' || c == '>' || c == '\r') {
            (xml_ += "&#") += asText(static_cast<int>(c)) += ';';
        } else {
            xml_ += c;
        }
    }
    (((xml_ += "</") += element) += '>');
}

std::optional<std::string> PropertyListEcho::xml() const {
    promise(hasRoot_ && open_.empty(), "a list that was read was told to its end");
    return isSayable_ ? std::optional(xml_) : std::nullopt;
}

}  // namespace orvane::test
