#include "util/integer.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvo::test {
namespace {

/// In ascending order, each the successor of the one before where `next` says so.
constexpr struct {
    const char* text;
    bool next;
} numbers[] = {
    {"-100000000000000000000", false},
    {"-99999999999999999999", true},
    {"-9223372036854775809", false},
    {"-9223372036854775808", true},
    {"-1", false},
    {"0", true},
    {"9223372036854775807", false},
    {"9223372036854775808", true},
    {"18446744073709551615", false},
    {"18446744073709551616", true},
    {"99999999999999999999", false},
    {"100000000000000000000", true},
};

TEST(Integer, OrdersAndCountsWhateverTheSize) {
    for (size_t a = 0; a < std::size(numbers); ++a) {
        const Integer number = Integer::of(numbers[a].text);
        SCOPED_TRACE(numbers[a].text);
        EXPECT_EQ(number.text(), numbers[a].text);
        EXPECT_EQ(Integer::of(number.nearest(), number.beyond()), number);
        EXPECT_EQ(number.negated().negated(), number);
        for (size_t b = 0; b < std::size(numbers); ++b) {
            const Integer other = Integer::of(numbers[b].text);
            EXPECT_EQ(number <=> other, a <=> b) << numbers[b].text;
            EXPECT_EQ(other.negated() <=> number.negated(), a <=> b) << numbers[b].text;
        }
        if (!numbers[a].next) continue;
        EXPECT_EQ(number.previous().text(), numbers[a - 1].text);
        EXPECT_EQ(number.previous().next(), number);
    }
    EXPECT_EQ(Integer::of("-000").text(), "0");
    uint64_t word = 0;
    EXPECT_TRUE(Integer::of("18446744073709551615").isUnsigned64(word));
    EXPECT_EQ(word, UINT64_MAX);
    EXPECT_FALSE(Integer::of("18446744073709551616").isUnsigned64(word));
    EXPECT_FALSE(Integer(-1).isUnsigned64(word));
}

TEST(Integer, ComparesProductsWithPowersOf2And5) {
    const auto less = std::strong_ordering::less;
    EXPECT_EQ(compareScaled(5, 0, 0, 1, 0, 1), std::strong_ordering::equal);
    EXPECT_EQ(compareScaled(-1, 64, 27, -1, 64, 27), std::strong_ordering::equal);
    EXPECT_EQ(compareScaled(INT64_MIN, 0, 0, -1, 63, 0), std::strong_ordering::equal);
    EXPECT_EQ(compareScaled(INT64_MAX, 0, 0, 1, 63, 0), less);
    EXPECT_EQ(compareScaled(INT64_MAX - 1, -32767, -32767, INT64_MAX, -32767, -32767), less);
    // 2^65 = 36893488147419103232, 5^28 = 37252902984619140625
    EXPECT_EQ(compareScaled(1, 65, 0, 1, 0, 28), less);
    EXPECT_EQ(compareScaled(-1, 0, 28, -1, 65, 0), less);
    EXPECT_EQ(compareScaled(0, 0, 0, 1, -32767, -32767), less);
    EXPECT_EQ(compareScaled(-1, 32767, 0, 0, 0, 0), less);
}

} // namespace
} // namespace orvo::test
