#pragma once

// Integers of any size. Nearly all fit in 64 bits: a number is the nearest one of 64 bits and,
// where that is not the number itself, its decimal text.

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo {

/// The order of two numbers in that form; the texts of those that fit are empty.
[[nodiscard]] std::strong_ordering compareIntegers(int64_t a, std::string_view textA, int64_t b,
                                                   std::string_view textB);

class Integer {
  public:
    Integer() = default;
    explicit Integer(int64_t number) : nearest_(number) {}
    /// The number of a decimal text, `-` and digits; leading zeros do not count.
    static Integer of(std::string_view text);
    /// The parts as nearest() and beyond() gave them.
    static Integer of(int64_t nearest, std::string_view beyond);

    [[nodiscard]] int64_t nearest() const { return nearest_; }
    /// The text of a number beyond 64 bits, else empty.
    [[nodiscard]] const std::string& beyond() const { return beyond_; }
    [[nodiscard]] std::string text() const;
    /// 0 to 2^64 - 1; sets `word`.
    [[nodiscard]] bool isUnsigned64(uint64_t& word) const;
    [[nodiscard]] Integer negated() const;
    [[nodiscard]] Integer next() const;
    [[nodiscard]] Integer previous() const;

    friend bool operator==(const Integer&, const Integer&) = default;
    friend std::strong_ordering operator<=>(const Integer& a, const Integer& b) {
        return compareIntegers(a.nearest_, a.beyond_, b.nearest_, b.beyond_);
    }

  private:
    int64_t nearest_ = 0;
    std::string beyond_;
};

struct IntegerHash {
    size_t operator()(const Integer& number) const {
        const size_t hash = std::hash<int64_t>{}(number.nearest());
        return number.beyond().empty() ? hash : hash ^ std::hash<std::string>{}(number.beyond());
    }
};

/// The order of a * 2^twoA * 5^fiveA and b * 2^twoB * 5^fiveB, exact whatever the exponents.
[[nodiscard]] std::strong_ordering compareScaled(int64_t a, int32_t twoA, int32_t fiveA, int64_t b,
                                                 int32_t twoB, int32_t fiveB);

} // namespace orvo
