#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane {

/// What a property list may cost who reads it. One that exceeds any of these is none.
struct PropertyListLimits {
    static constexpr std::size_t bytes = std::size_t{16} << 20;
    /// Of a list in old style, each character of which is looked at by itself.
    static constexpr std::size_t oldStyleBytes = std::size_t{1} << 20;
    /// Of XML that says it is in another encoding than UTF-8 or UTF-16, each character of which is converted.
    static constexpr std::size_t otherEncodingBytes = std::size_t{8} << 20;
    /// Containers within each other.
    static constexpr std::size_t depth = 512;
    /// Met on the way through the whole list, keys too; one that several containers refer to is met at each
    /// reference.
    static constexpr std::size_t objects = 150'000;
    /// Of XML: lines, references, comments, instructions and ends of sections together.
    static constexpr std::size_t parts = 800'000;
    /// Of XML, in the whole list: a list needs one.
    static constexpr std::size_t attributes = 1'000;
    /// In bytes, of a text that is asked for by its key.
    static constexpr std::size_t askedText = std::size_t{1} << 20;
};

/// Hears what a property list holds, from its beginning to its end: a dictionary's keys before their values,
/// a container's contents before its end. Keeps of it what it wants. Texts are valid UTF-8 and pass away with
/// the call; of one that is longer than a text that is asked for may be, a beginning that is too long as well
/// is enough.
class PropertyListHandler {
  public:
    /// A value of which nobody asks more than that it is one: a date, data, an archive's reference, an
    /// integer above the largest signed one.
    struct Other {};
    using Leaf = std::variant<std::string_view, bool, std::int64_t, double, Other>;

    /// Which value counts where a dictionary has several of one key; the formats differ.
    enum class Repeated { firstCounts, lastCounts };

    virtual ~PropertyListHandler() = default;

    virtual void beginArray() = 0;
    virtual void beginDictionary(Repeated repeated) = 0;
    virtual void endContainer() = 0;
    virtual void key(std::string_view key) = 0;
    virtual void leaf(const Leaf& leaf) = 0;
};

/// Reads a property list, in XML, binary or old-style text, from bytes of unknown origin. False for anything
/// that is not one as a whole, or that exceeds the limits, or declares entities; what was heard until then
/// means nothing. Text is UTF-8, or UTF-16 by its byte-order mark.
/// Time and memory are bounded by the size of the bytes and by the limits, but for what the handler does.
bool readPropertyList(std::string_view bytes, PropertyListHandler& handler);

/// Where the text goes that a dictionary has under a key.
struct AskedText {
    std::string_view key;
    std::optional<std::string>& text;
};

/// Fills in what is asked of a property list that is a dictionary. A text is absent where the list is none,
/// has no such key, or has a value of another type there, or a text longer than the limit.
void readPropertyListTexts(std::string_view bytes, std::initializer_list<AskedText> asked);

/// The same, but a text under whose key the list has nothing stays as it is.
void replacePropertyListTexts(std::string_view bytes, std::span<const AskedText> asked);
/// The same, of the dictionary that the list has under a key.
void replacePropertyListTexts(std::string_view bytes, std::string_view dictionary,
                              std::span<const AskedText> asked);

/// The keys under which a property list has dictionaries, each at most once, without those of more bytes than
/// `longest`; the first of them only, where there are more than `most`.
std::vector<std::string> propertyListDictionaries(std::string_view bytes, std::size_t longest,
                                                  std::size_t most);

}  // namespace orvane
