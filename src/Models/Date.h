#pragma once

#include <compare>

namespace orvane {

/// A moment as the Mac's catalog stores it: seconds since 2001-01-01 00:00:00 UTC, with fraction.
/// A plain double, so that every value that a catalog can hold survives being read and written again.
struct Date {
    double timeIntervalSinceReferenceDate = 0;

    /// The reference date in Unix time, in seconds.
    static constexpr double referenceDateUnixTime = 978'307'200;

    static constexpr Date fromUnixTime(double seconds) { return Date{seconds - referenceDateUnixTime}; }

    friend constexpr auto operator<=>(const Date&, const Date&) = default;
};

}  // namespace orvane
