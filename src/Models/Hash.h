#pragma once

#include <cstddef>
#include <functional>
#include <optional>

namespace orvane {

/// Mixes one more value into a hash.
template <typename T>
void hashCombine(std::size_t& seed, const T& value) {
    seed ^= std::hash<T>{}(value) + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2);
}

/// An optional mixes its presence first, then its value.
template <typename T>
void hashCombine(std::size_t& seed, const std::optional<T>& value) {
    hashCombine(seed, value.has_value());
    if (value) hashCombine(seed, *value);
}

/// Hashes values in the order given.
template <typename... Ts>
std::size_t hashOf(const Ts&... values) {
    std::size_t seed = 0;
    (hashCombine(seed, values), ...);
    return seed;
}

}  // namespace orvane
