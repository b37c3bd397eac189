#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::test {

/// Puts together binary property lists, well-formed or not: objects are bytes, references are four bytes
/// wide.
class BinaryPropertyListWriter {
  public:
    /// Gives the object's index back.
    std::size_t add(std::string_view object);
    std::size_t addText(std::string_view ascii);
    std::size_t addArray(const std::vector<std::size_t>& elements);
    /// Keys and values in turn.
    std::size_t addDictionary(const std::vector<std::size_t>& keysAndValues);
    /// An object that begins somewhere inside what was written.
    std::size_t addOffset(std::uint64_t offset);

    /// Where the next object will begin.
    std::uint64_t end() const { return bytes_.size(); }
    std::string written(std::size_t topObject) const;

    /// What a list of that many bytes, letters, references or pairs begins with.
    static std::string head(unsigned type, std::size_t count);
    static std::string bigEndian(std::uint64_t value, std::size_t size);

  private:
    std::string bytes_ = "bplist00";
    std::vector<std::uint64_t> offsets_;
};

}  // namespace orvane::test
