#pragma once

namespace orvane::maker {

// Who makes this program, and where to find them.
inline constexpr char name[] = "The Orvane Project";
inline constexpr char emailAddress[] = "orvane@example.org";
inline constexpr char sourceCodeProfile[] = "https://example.org/source/orvane";
inline constexpr char professionalProfile[] = "https://example.org/network/orvane";
/// Shown when the program's own bundle says nothing of it.
inline constexpr char copyright[] = "Copyright © 2026 The Orvane Project";

}  // namespace orvane::maker
