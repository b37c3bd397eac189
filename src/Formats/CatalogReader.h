#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Models/InstalledApplication.h"

namespace orvane {

/// A number of a JSON text.
struct JSONNumber {
    double value = 0;
    /// Its value as an integer; absent where it is none, or is not known to be exactly one.
    std::optional<std::int64_t> integer;
};

/// The integer that a number's text in decimal or exponent notation stands for. `value` is the same text as a
/// double. Any character may be the decimal point, since that depends on the locale.
std::optional<std::int64_t> exactInteger(double value, std::string_view text);

/// Whether a text is that of a number, and of one too large for a double.
bool exceedsDouble(std::string_view text);

/// Collects the records of a catalog while its text is parsed: each function is told one event, in the order
/// of the text, and returns false to refuse the catalog. Nothing but the current record is kept of what the
/// text nests, and what nests deeper than the Mac reads is refused.
class CatalogReader {
  public:
    bool null() { return scalar(nullptr); }
    bool boolean(bool value) { return scalar(value); }
    bool number_integer(std::int64_t value);
    bool number_unsigned(std::uint64_t value);
    bool number_float(double value, const std::string& text);
    bool string(const std::string& value) { return scalar(std::string_view(value)); }
    template <typename Bytes>
    bool binary(const Bytes&) {
        return false;
    }

    bool start_object(std::size_t);
    bool key(const std::string& name);
    bool end_object();
    bool start_array(std::size_t);
    bool end_array();

    template <typename Error>
    bool parse_error(std::size_t, const std::string&, const Error& error) {
        constexpr int numberTooLarge = 406;
        stoppedAtNumber_ = error.id == numberTooLarge;
        return false;
    }

    /// Whether the parser gave up because of a number that is too large for a double, and of nothing else.
    bool stoppedAtNumber() const { return stoppedAtNumber_; }

    std::vector<InstalledApplication> takeRecords() { return std::move(records_); }

  private:
    using Scalar = std::variant<std::nullptr_t, bool, JSONNumber, std::string_view>;
    enum Field : std::size_t {
        url,
        name,
        version,
        size,
        isSystemApplication,
        isInstalled,
        bundleIdentifier,
        modifiedAt,
        ignored,
    };
    static constexpr std::size_t requiredFields = bundleIdentifier;

    bool scalar(const Scalar& value);
    bool enter();

    /// How many arrays and objects are open: the list is the first, a record the second.
    std::size_t depth_ = 0;
    Field field_ = ignored;
    std::bitset<ignored> seen_;
    bool stoppedAtNumber_ = false;
    InstalledApplication record_;
    std::vector<InstalledApplication> records_;
};

}  // namespace orvane
