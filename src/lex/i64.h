#pragma once

// Signed 64-bit integers as a pair of words, high word first: the form in which token records, tree
// records and the tree file hold every ASN.1 number.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo {

struct I64 {
    int32_t high = 0;
    uint32_t low = 0;
    friend constexpr bool operator==(const I64&, const I64&) = default;
};
static_assert(sizeof(I64) == 8 && alignof(I64) == 4);

/// The pair as a native integer, and back.
constexpr int64_t i64native(I64 v) {
    return static_cast<int64_t>((static_cast<uint64_t>(static_cast<uint32_t>(v.high)) << 32) | v.low);
}
constexpr I64 i64of(int64_t v) {
    const auto bits = static_cast<uint64_t>(v);
    return {static_cast<int32_t>(static_cast<uint32_t>(bits >> 32)), static_cast<uint32_t>(bits)};
}

}  // namespace orvo
