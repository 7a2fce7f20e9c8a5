#pragma once

// Integers of any size, and sets of them as ranges: bounds, sizes, characters, numbers of items.

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace stx {

/// What a function found, or why it found nothing: then `value` is empty and `error` says why.
template <typename T> struct Result {
    T value{};
    std::string error;
    explicit operator bool() const { return error.empty(); }
    const T& operator*() const { return value; }
    const T* operator->() const { return &value; }
};
template <typename T> Result<T> failure(std::string error) {
    return {T{}, std::move(error)};
}

/// An integer of any size.
class Integer {
  public:
    Integer() = default; // 0
    Integer(int64_t number);
    /// From a decimal such as "-12"; false where the text is none.
    [[nodiscard]] static bool parse(std::string_view decimal, Integer& number);

    /// In decimal: "-12".
    std::string text() const { return negative_ ? '-' + digits_ : digits_; }
    bool negative() const { return negative_; }
    /// The number where it fits, else none.
    std::optional<int64_t> signed64() const;
    std::optional<uint64_t> unsigned64() const;
    /// The neighbours: one more, one less.
    Integer next() const;
    Integer previous() const;

    friend bool operator==(const Integer&, const Integer&) = default;
    friend std::strong_ordering operator<=>(const Integer& a, const Integer& b);

  private:
    bool negative_ = false;
    std::string digits_ = "0"; // no leading zeros
};

/// The integers from one to another, both included; none: without bound.
struct Range {
    std::optional<Integer> lower, upper;
    friend bool operator==(const Range&, const Range&) = default;
};
/// A set of integers: its ranges in ascending order, with gaps between them. Empty: no integer.
using Ranges = std::vector<Range>;

/// All integers; those from `lower` on.
Ranges allIntegers();
Ranges rangeOf(std::optional<Integer> lower, std::optional<Integer> upper);
/// Ranges in any order, overlapping or empty, as a set.
Ranges asSet(Ranges ranges);
Ranges unionOf(const Ranges& a, const Ranges& b);
Ranges intersectionOf(const Ranges& a, const Ranges& b);
Ranges complementOf(const Ranges& a);
bool contains(const Ranges& set, const Integer& number);
/// The least and the greatest number of a set that is not empty; none: without bound.
std::optional<Integer> lowerOf(const Ranges& set);
std::optional<Integer> upperOf(const Ranges& set);
/// "1..5 | 7 | 10..MAX", "" for the empty set.
std::string rangesText(const Ranges& set);

} // namespace stx
