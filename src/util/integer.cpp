#include "util/integer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace orvo {

namespace {

bool isNegative(std::string_view text) {
    return text.starts_with('-');
}

/// Digits without leading zeros.
std::strong_ordering compareDigits(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? a.size() <=> b.size() : a.compare(b) <=> 0;
}

/// Digits plus one; minus one for digits of a number above 0.
std::string stepped(std::string digits, bool up) {
    const char last = up ? '9' : '0';
    size_t at = digits.size();
    while (at != 0 && digits[at - 1] == last) digits[--at] = up ? '0' : '9';
    if (at == 0) return '1' + digits;
    digits[at - 1] = static_cast<char>(digits[at - 1] + (up ? 1 : -1));
    return digits;
}

} // namespace

std::strong_ordering compareIntegers(int64_t a, std::string_view textA, int64_t b,
                                     std::string_view textB) {
    if (a != b || (textA.empty() && textB.empty())) return a <=> b;
    // Both lie at the same end of what 64 bits hold: the one with the longer text further out.
    return a > 0 ? compareDigits(textA, textB) : compareDigits(textB, textA);
}

Integer Integer::of(std::string_view text) {
    const bool negative = isNegative(text);
    std::string_view digits = text.substr(negative ? 1 : 0);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    std::string whole(negative ? "-" : "");
    whole += digits.empty() ? "0" : digits;
    Integer number;
    if (std::from_chars(whole.data(), whole.data() + whole.size(), number.nearest_).ec ==
        std::errc())
        return number;
    number.nearest_ = negative ? INT64_MIN : INT64_MAX;
    number.beyond_ = std::move(whole);
    return number;
}

Integer Integer::of(int64_t nearest, std::string_view beyond) {
    Integer number(nearest);
    number.beyond_ = beyond;
    return number;
}

std::string Integer::text() const {
    return beyond_.empty() ? std::to_string(nearest_) : beyond_;
}

bool Integer::isUnsigned64(uint64_t& word) const {
    if (nearest_ < 0) return false;
    word = static_cast<uint64_t>(nearest_);
    if (beyond_.empty()) return true;
    return std::from_chars(beyond_.data(), beyond_.data() + beyond_.size(), word).ec == std::errc();
}

Integer Integer::negated() const {
    if (beyond_.empty() && nearest_ != INT64_MIN) return Integer(-nearest_);
    const std::string own = text();
    return of(isNegative(own) ? own.substr(1) : '-' + own);
}

Integer Integer::next() const {
    if (beyond_.empty() && nearest_ < INT64_MAX) return Integer(nearest_ + 1);
    const std::string own = text();
    return isNegative(own) ? of('-' + stepped(own.substr(1), false)) : of(stepped(own, true));
}

Integer Integer::previous() const {
    if (beyond_.empty() && nearest_ > INT64_MIN) return Integer(nearest_ - 1);
    const std::string own = text();
    return isNegative(own) ? of('-' + stepped(own.substr(1), true)) : of(stepped(own, false));
}

// ---- numbers with exponents ---------------------------------------------------------------------

namespace {

/// A natural number, the lowest word first.
using Words = std::vector<uint32_t>;

void multiply(Words& words, uint32_t factor) {
    uint64_t carry = 0;
    for (uint32_t& word : words) {
        carry += uint64_t{word} * factor;
        word = static_cast<uint32_t>(carry);
        carry >>= 32;
    }
    if (carry != 0) words.push_back(static_cast<uint32_t>(carry));
}

Words scaled(uint64_t number, int64_t two, int64_t five) {
    Words words = {static_cast<uint32_t>(number), static_cast<uint32_t>(number >> 32)};
    if (words.back() == 0) words.pop_back();
    constexpr uint32_t mostFives = 1220703125; // 5^13
    for (; five >= 13; five -= 13) multiply(words, mostFives);
    for (; five > 0; --five) multiply(words, 5);
    multiply(words, uint32_t{1} << (two % 32));
    words.insert(words.begin(), static_cast<size_t>(two / 32), 0);
    return words;
}

std::strong_ordering compareWords(const Words& a, const Words& b) {
    if (a.size() != b.size()) return a.size() <=> b.size();
    return std::lexicographical_compare_three_way(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

uint64_t magnitudeOf(int64_t number) {
    const auto bits = static_cast<uint64_t>(number);
    return number < 0 ? ~bits + 1 : bits;
}

/// Of numbers above 0: exact arithmetic only where logarithms are too near to tell.
std::strong_ordering compareMagnitudes(uint64_t a, uint64_t b, int64_t two, int64_t five) {
    const double distance = std::log2(static_cast<double>(a)) - std::log2(static_cast<double>(b)) +
                            static_cast<double>(two) + static_cast<double>(five) * std::log2(5.0);
    constexpr double doubtful = 1e-6; // far more than the logarithms lose
    if (distance < -doubtful) return std::strong_ordering::less;
    if (distance > doubtful) return std::strong_ordering::greater;
    return compareWords(scaled(a, std::max<int64_t>(two, 0), std::max<int64_t>(five, 0)),
                        scaled(b, std::max<int64_t>(-two, 0), std::max<int64_t>(-five, 0)));
}

} // namespace

std::strong_ordering compareScaled(int64_t a, int32_t twoA, int32_t fiveA, int64_t b, int32_t twoB,
                                   int32_t fiveB) {
    const int signA = (a > 0) - (a < 0), signB = (b > 0) - (b < 0);
    if (signA != signB || signA == 0) return signA <=> signB;
    const int64_t two = int64_t{twoA} - twoB, five = int64_t{fiveA} - fiveB;
    const uint64_t left = magnitudeOf(a), right = magnitudeOf(b);
    return signA > 0 ? compareMagnitudes(left, right, two, five)
                     : compareMagnitudes(right, left, -two, -five);
}

} // namespace orvo
