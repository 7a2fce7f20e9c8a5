// 64-bit numbers as word pairs. All arithmetic runs on the unsigned native form, where it is modulo
// 2^64 by definition; only comparisons, the arithmetic shift and the text conversions look at
// signs.

#include "lex/i64.h"

#include <algorithm>
#include <charconv>

namespace orvo {

namespace {

uint64_t bitsOf(I64 v) {
    return static_cast<uint64_t>(i64native(v));
}
I64 ofBits(uint64_t bits) {
    return i64of(static_cast<int64_t>(bits));
}
uint64_t negated(uint64_t bits) {
    return ~bits + 1;
}
/// The magnitude; that of the smallest value is 2^63.
uint64_t magnitudeOf(int64_t v) {
    const auto bits = static_cast<uint64_t>(v);
    return v < 0 ? negated(bits) : bits;
}
int orderOf(int64_t a, int64_t b) {
    return a < b ? -1 : static_cast<int>(a > b);
}

I64 divide(I64 a, int64_t divisor) {
    if (divisor == 0) return i64max();
    const int64_t dividend = i64native(a);
    const uint64_t quotient = magnitudeOf(dividend) / magnitudeOf(divisor);
    return ofBits((dividend < 0) != (divisor < 0) ? negated(quotient) : quotient);
}

int32_t remainder(I64 a, int64_t divisor) {
    if (divisor == 0) return INT32_MAX;
    const int64_t dividend = i64native(a);
    const uint64_t rest = magnitudeOf(dividend) % magnitudeOf(divisor);
    return static_cast<int32_t>(static_cast<uint32_t>(dividend < 0 ? negated(rest) : rest));
}

} // namespace

bool i64tol(I64 v, int32_t& out) {
    const int64_t native = i64native(v);
    const bool fits = native >= INT32_MIN && native <= INT32_MAX;
    out = fits ? static_cast<int32_t>(native) : INT32_MAX;
    return fits;
}

bool i64toul(I64 v, uint32_t& out) {
    out = v.high == 0 ? v.low : UINT32_MAX;
    return v.high == 0;
}

I64 i64add(I64 a, I64 b) {
    return ofBits(bitsOf(a) + bitsOf(b));
}
I64 i64addl(I64 a, int32_t b) {
    return i64add(a, i64ltosint64(b));
}
I64 i64addul(I64 a, uint32_t b) {
    return i64add(a, i64ultosint64(b));
}
I64 i64sub(I64 a, I64 b) {
    return ofBits(bitsOf(a) - bitsOf(b));
}
I64 i64subl(I64 a, int32_t b) {
    return i64sub(a, i64ltosint64(b));
}
I64 i64subul(I64 a, uint32_t b) {
    return i64sub(a, i64ultosint64(b));
}
I64 i64mul32(uint32_t a, uint32_t b) {
    return ofBits(uint64_t{a} * b);
}
I64 i64mul(I64 a, I64 b) {
    return ofBits(bitsOf(a) * bitsOf(b));
}
I64 i64mull(I64 a, int32_t b) {
    return i64mul(a, i64ltosint64(b));
}
I64 i64mulul(I64 a, uint32_t b) {
    return i64mul(a, i64ultosint64(b));
}
I64 i64divl(I64 a, int32_t b) {
    return divide(a, b);
}
I64 i64divul(I64 a, uint32_t b) {
    return divide(a, b);
}
int32_t i64modl(I64 a, int32_t b) {
    return remainder(a, b);
}
int32_t i64modul(I64 a, uint32_t b) {
    return remainder(a, b);
}
I64 i64neg(I64 v) {
    return ofBits(negated(bitsOf(v)));
}

bool i64iszero(I64 v) {
    return v == I64{};
}
bool i64ismax(I64 v) {
    return v == i64max();
}
bool i64ismin(I64 v) {
    return v == i64min();
}
bool i64ispos(I64 v) {
    return i64native(v) > 0;
}
bool i64isneg(I64 v) {
    return v.high < 0;
}
int i64cmp(I64 a, I64 b) {
    return orderOf(i64native(a), i64native(b));
}
int i64cmpl(I64 a, int32_t b) {
    return orderOf(i64native(a), b);
}
int i64cmpul(I64 a, uint32_t b) {
    return orderOf(i64native(a), b);
}

I64 i64shiftl(I64 v, uint32_t count) {
    return count < 64 ? ofBits(bitsOf(v) << count) : I64{};
}
I64 i64shiftr(I64 v, uint32_t count) {
    return i64of(i64native(v) >> std::min(count, 63U));
}
I64 i64ushiftr(I64 v, uint32_t count) {
    return count < 64 ? ofBits(bitsOf(v) >> count) : I64{};
}

bool i64strtosint64(std::string_view text, I64& out) {
    out = i64max();
    const bool negative = text.starts_with('-');
    const std::string_view digits = text.substr(negative ? 1 : 0);
    // from_chars would take "-0" and leading zeroes
    if (digits.starts_with('0') ? text != "0" : digits.starts_with('-')) return false;
    int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return false;
    out = i64of(value);
    return true;
}

std::string i64tostr(I64 v) {
    return std::to_string(i64native(v));
}

char* i64tostr(I64 v, char* buffer, size_t size) {
    if (buffer == nullptr || size == 0) return nullptr;
    const auto [stop, error] = std::to_chars(buffer, buffer + (size - 1), i64native(v));
    if (error != std::errc()) return nullptr;
    *stop = '\0';
    return buffer;
}

} // namespace orvo
