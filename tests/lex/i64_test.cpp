#include "lex/i64.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

constexpr int64_t largest = INT64_MAX, smallest = INT64_MIN;

TEST(I64, TextIsANumberOnlyInItsShortestForm) {
    constexpr struct {
        const char* text;
        bool ok;
        int64_t value;
    } cases[] = {{"0", true, 0},
                 {"-1", true, -1},
                 {"9223372036854775807", true, largest},
                 {"-9223372036854775807", true, -largest},
                 {"-9223372036854775808", true, smallest},
                 {"9223372036854775808", false, largest},
                 {"-9223372036854775809", false, largest},
                 {"21000000000000000000", false, largest}, // wraps to a larger number than before
                 {"00", false, largest},
                 {"007", false, largest},
                 {"-0", false, largest},
                 {"-", false, largest},
                 {"--1", false, largest},
                 {"+1", false, largest},
                 {"12a", false, largest},
                 {" 1", false, largest},
                 {"", false, largest}};
    for (const auto& [text, ok, value] : cases) {
        SCOPED_TRACE(text);
        I64 out;
        EXPECT_EQ(i64strtosint64(text, out), ok);
        EXPECT_EQ(i64native(out), value);
    }
}

TEST(I64, DivisionTruncatesTowardZero) {
    constexpr struct {
        int64_t dividend;
        int32_t divisor;
        int64_t quotient;
        int32_t rest;
    } cases[] = {{7, 3, 2, 1},
                 {-7, 3, -2, -1},
                 {7, -3, -2, 1},
                 {-7, -3, 2, -1},
                 {smallest, -1, smallest, 0},
                 {smallest, 10, smallest / 10, -8},
                 {5, 0, largest, INT32_MAX}};
    for (const auto& [dividend, divisor, quotient, rest] : cases) {
        SCOPED_TRACE(std::to_string(dividend) + " / " + std::to_string(divisor));
        EXPECT_EQ(i64native(i64divl(i64of(dividend), divisor)), quotient);
        EXPECT_EQ(i64modl(i64of(dividend), divisor), rest);
    }
    EXPECT_EQ(i64divul(i64of(-8589934592), 4294967295), i64of(-2));
    EXPECT_EQ(i64modul(i64of(-8589934592), 4294967295), -2);
}

} // namespace
} // namespace orvo
