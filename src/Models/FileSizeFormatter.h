#pragma once

#include <cstdint>
#include <string>

namespace orvane {

/// The one formatter of byte counts; every size shown goes through `shared()`. Decimal units from KB to TB,
/// one fraction digit for MB and two from GB on, trailing zeros dropped. Immutable, usable from any thread.
class FileSizeFormatter {
  public:
    static const FileSizeFormatter& shared();

    /// The display text of a count of bytes, such as "12.3 MB"; "Zero KB" for none.
    std::string string(std::int64_t byteCount) const;

  private:
    FileSizeFormatter() = default;
};

}  // namespace orvane
