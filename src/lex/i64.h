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
    return static_cast<int64_t>((static_cast<uint64_t>(static_cast<uint32_t>(v.high)) << 32) |
                                v.low);
}
constexpr I64 i64of(int64_t v) {
    const auto bits = static_cast<uint64_t>(v);
    return {static_cast<int32_t>(static_cast<uint32_t>(bits >> 32)), static_cast<uint32_t>(bits)};
}

// Sums, differences and products are modulo 2^64.

constexpr I64 i64make(int32_t high, uint32_t low) {
    return {high, low};
}
constexpr I64 i64ltosint64(int32_t v) {
    return i64of(v);
}
constexpr I64 i64ultosint64(uint32_t v) {
    return i64of(v);
}
constexpr int32_t i64hi(I64 v) {
    return v.high;
}
constexpr uint32_t i64lo(I64 v) {
    return v.low;
}
constexpr I64 i64max() {
    return {INT32_MAX, UINT32_MAX};
}
constexpr I64 i64min() {
    return {INT32_MIN, 0};
}

/// The value as a signed 32-bit number; false and 2147483647 when it is none.
bool i64tol(I64 v, int32_t& out);
/// The low word when the high word is 0; else false and 4294967295.
bool i64toul(I64 v, uint32_t& out);

I64 i64add(I64 a, I64 b);
I64 i64addl(I64 a, int32_t b);
I64 i64addul(I64 a, uint32_t b);
I64 i64sub(I64 a, I64 b);
I64 i64subl(I64 a, int32_t b);
I64 i64subul(I64 a, uint32_t b);
/// The exact product of unsigned numbers, as 64 unsigned bits.
I64 i64mul32(uint32_t a, uint32_t b);
I64 i64mul(I64 a, I64 b);
I64 i64mull(I64 a, int32_t b);
I64 i64mulul(I64 a, uint32_t b);
/// Quotient, truncated toward zero; the largest value for divisor 0.
I64 i64divl(I64 a, int32_t b);
I64 i64divul(I64 a, uint32_t b);
/// Remainder with the sign of the dividend, as its low 32 bits; 2147483647 for divisor 0.
int32_t i64modl(I64 a, int32_t b);
int32_t i64modul(I64 a, uint32_t b);
/// Negation; the smallest value stays the smallest.
I64 i64neg(I64 v);

bool i64iszero(I64 v);
bool i64ismax(I64 v);
bool i64ismin(I64 v);
bool i64ispos(I64 v); // greater than 0
bool i64isneg(I64 v);
/// -1, 0 or 1.
int i64cmp(I64 a, I64 b);
int i64cmpl(I64 a, int32_t b);
int i64cmpul(I64 a, uint32_t b);

/// Shifts. Counts of 64 and more shift everything out (the arithmetic one leaves the sign).
I64 i64shiftl(I64 v, uint32_t count);
I64 i64shiftr(I64 v, uint32_t count);
I64 i64ushiftr(I64 v, uint32_t count);

/// A decimal text without blanks, leading zeroes, "+" or "-0". False and the largest value when it
/// is none or outside the range.
bool i64strtosint64(std::string_view text, I64& out);
/// The decimal text.
std::string i64tostr(I64 v);
/// The same, NUL-terminated, in a buffer of `size` bytes; null when there is none or it is too
/// small.
char* i64tostr(I64 v, char* buffer, size_t size);

} // namespace orvo
