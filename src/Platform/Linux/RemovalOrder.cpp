#include "Platform/Linux/RemovalOrder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <vector>

#include "Models/ApplicationBundle.h"
#include "Platform/PrivilegedScript.h"
#include "Text/UTF8.h"

namespace orvane {

namespace {

using Item = PrivilegedRequest::Item;

constexpr std::string_view heading = "orvane removal order 2";

/// Takes the fields of an order off its text, one after the other. After the first that is not as it must be
/// there are none.
class OrderReader {
  public:
    explicit OrderReader(std::string_view text) : rest_(text) {}

    bool isAtEnd() const { return isValid_ && rest_.empty(); }
    bool isValid() const { return isValid_; }

    std::string_view text() {
        const auto end = rest_.find('\0');
        if (!isValid_ || end == std::string_view::npos) {
            isValid_ = false;
            return {};
        }
        const auto field = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return field;
    }

    std::uint64_t number() {
        const auto field = text();
        std::uint64_t value = 0;
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
        // As it is written, and no other way: one order has one form.
        expect(error == std::errc() && end == field.data() + field.size() && std::to_string(value) == field);
        return value;
    }

    FileIdentity identity() {
        const auto device = number();
        return {device, number()};
    }

    template <typename Value>
    Value oneOf(std::string_view (*word)(Value), Value first, Value second) {
        const auto field = text();
        expect(field == word(first) || field == word(second));
        return field == word(first) ? first : second;
    }

    void expect(bool holds) { isValid_ = isValid_ && holds; }

  private:
    std::string_view rest_;
    bool isValid_ = true;
};

bool isPlainAbsolutePath(std::string_view path) {
    if (!path.starts_with('/')) return false;
    for (;;) {
        path.remove_prefix(1);
        const auto end = path.find('/');
        const auto component = path.substr(0, end);
        if (component.empty() || component == "." || component == "..") return false;
        if (end == std::string_view::npos) return true;
        path.remove_prefix(end);
    }
}

bool isPlainFolder(std::string_view path) {
    return path == "/" || isPlainAbsolutePath(path);
}

/// The order without its items.
RemovalOrder takeHeader(OrderReader& reader) {
    reader.expect(reader.text() == heading);
    RemovalOrder order;
    order.root = reader.text();
    order.rootIdentity = reader.identity();
    order.home = reader.text();
    order.request.mode = reader.oneOf(&actionWord, RemovalMode::trash, RemovalMode::permanent);
    reader.expect(isPlainFolder(order.root) && isPlainFolder(order.home));
    return order;
}

/// The fields of an item, as they stand in the order.
struct ItemFields {
    Item::Kind kind;
    std::string_view source;
    FileIdentity folder;
    std::string_view destination;
};

ItemFields takeItem(OrderReader& reader, RemovalMode mode) {
    ItemFields fields{};
    fields.kind = reader.oneOf(&kindWord, Item::Kind::item, Item::Kind::daemon);
    fields.source = reader.text();
    fields.folder = reader.identity();
    fields.destination = reader.text();
    reader.expect(isPlainAbsolutePath(fields.source));
    reader.expect(mode == RemovalMode::trash ? isPlainAbsolutePath(fields.destination)
                                             : fields.destination.empty());
    return fields;
}

Item itemOf(const ItemFields& fields) {
    return {fields.kind, std::string(fields.source), std::string(fields.destination), fields.folder};
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool isApplication(const Item& item) {
    return isApplicationBundle(FileURL::fromPath(item.source, false));
}

struct CodePointRange {
    char32_t first;
    char32_t last;
};

/// What takes no place in a line, or turns it around.
constexpr std::array invisible{
    CodePointRange{0x0, 0x1F},         CodePointRange{0x7F, 0x9F},     CodePointRange{0xAD, 0xAD},
    CodePointRange{0x61C, 0x61C},      CodePointRange{0x115F, 0x1160}, CodePointRange{0x17B4, 0x17B5},
    CodePointRange{0x180B, 0x180F},    CodePointRange{0x200B, 0x200F}, CodePointRange{0x2028, 0x202E},
    CodePointRange{0x2060, 0x206F},    CodePointRange{0x3164, 0x3164}, CodePointRange{0xFEFF, 0xFEFF},
    CodePointRange{0xFFA0, 0xFFA0},    CodePointRange{0xFFF0, 0xFFFC}, CodePointRange{0xFFFE, 0xFFFF},
    CodePointRange{0xE0000, 0x10FFFF},
};

/// Whether a character could pass for a part of the sentence around it, or of its markup.
bool misleads(char32_t character) {
    constexpr std::u32string_view markup = U"<>&$`\"\\“”„‟«»";
    if (markup.find(character) != std::u32string_view::npos) return true;
    return std::ranges::any_of(
        invisible, [&](const auto& range) { return range.first <= character && character <= range.last; });
}

/// The code point at the beginning of well-formed UTF-8, taken off it with its bytes.
std::pair<char32_t, std::string_view> takeCodePoint(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    constexpr std::array<unsigned, 5> leadBits{0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr unsigned trailBits = 0x3F;
    char32_t character = lead & leadBits[length];
    for (std::size_t i = 1; i < length; ++i) {
        character = (character << 6U) | (static_cast<unsigned char>(text[i]) & trailBits);
    }
    const auto bytes = text.substr(0, length);
    text.remove_prefix(length);
    return {character, bytes};
}

/// A name as the prompt shows it.
std::string shownName(std::string_view name) {
    constexpr int longest = 48;
    const auto repaired = repairedUTF8(name);
    std::string shown;
    int length = 0;
    for (std::string_view rest = repaired; !rest.empty();) {
        const auto [character, bytes] = takeCodePoint(rest);
        if (++length > longest) return shown + "…";
        if (misleads(character)) {
            shown += '?';
        } else {
            shown += bytes;
        }
    }
    return shown;
}

}  // namespace

std::string encodedOrder(const RemovalOrder& order) {
    std::string text;
    const auto append = [&](std::string_view field) { (text += field) += '\0'; };
    const auto appendIdentity = [&](const FileIdentity& identity) {
        append(std::to_string(identity.device));
        append(std::to_string(identity.inode));
    };
    append(heading);
    append(order.root);
    appendIdentity(order.rootIdentity);
    append(order.home);
    append(actionWord(order.request.mode));
    for (const auto& item : order.request.items) {
        append(kindWord(item.kind));
        append(item.source);
        appendIdentity(item.folder.value_or(FileIdentity{}));
        append(item.destination);
    }
    return text;
}

std::optional<RemovalOrder> decodedOrder(std::string_view text) {
    if (text.size() > largestOrder) return std::nullopt;
    OrderReader reader(text);
    auto order = takeHeader(reader);
    do {
        order.request.items.push_back(itemOf(takeItem(reader, order.request.mode)));
    } while (reader.isValid() && !reader.isAtEnd());
    if (!reader.isValid()) return std::nullopt;
    return order;
}

std::optional<RemovalOrder> headerOfOrder(std::string_view text) {
    OrderReader reader(text);
    auto order = takeHeader(reader);
    if (!reader.isValid()) return std::nullopt;
    return order;
}

std::optional<OrderedItem> itemOfOrder(std::string_view text, FunctionRef<bool(const OrderedItem&)> isMeant) {
    OrderReader reader(text);
    const auto mode = takeHeader(reader).request.mode;
    for (OrderedItem ordered{1, {}}; !reader.isAtEnd(); ++ordered.number) {
        ordered.item = itemOf(takeItem(reader, mode));
        if (!reader.isValid()) break;
        if (isMeant(ordered)) return ordered;
    }
    return std::nullopt;
}

std::string promptText(const RemovalOrder& order) {
    constexpr std::size_t shown = 3;
    const auto& items = order.request.items;
    std::vector<const Item*> inOrder;
    inOrder.reserve(items.size());
    for (const auto& item : items) inOrder.push_back(&item);
    std::stable_partition(inOrder.begin(), inOrder.end(),
                          [](const Item* item) { return isApplication(*item); });

    const auto count = std::to_string(items.size()) + (items.size() == 1 ? " item" : " items");
    auto text = order.request.mode == RemovalMode::trash ? "move " + count + " to the Trash"
                                                         : "delete " + count + " permanently";
    for (std::size_t i = 0; i < std::min(shown, inOrder.size()); ++i) {
        text += (i == 0 ? ": “" : ", “") + shownName(lastComponent(inOrder[i]->source)) + "”";
    }
    if (inOrder.size() > shown) text += " and " + std::to_string(inOrder.size() - shown) + " more";
    return text;
}

}  // namespace orvane
