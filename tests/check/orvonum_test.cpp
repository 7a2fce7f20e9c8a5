#include "check/orvonum.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

RealVal real(int64_t mantissa, int16_t base, int16_t exponent) {
    return {i64of(mantissa), base, exponent};
}
RealVal special(int32_t code) {
    RealVal value;
    makeSpecialRealVal(value, code);
    return value;
}

TEST(Reals, AreOrderedByValue) {
    const RealVal minusInfinity = special(REAL_MINUS_INFINITY), zero = special(REAL_ZERO);
    const RealVal plusInfinity = special(REAL_PLUS_INFINITY);
    const struct {
        const char* what;
        RealVal a, b;
        int order;
    } cases[] = {{"-5 and -1", real(-5, 10, 0), real(-1, 10, 0), -1},
                 {"the same in two ways", real(1, 10, 2), real(10, 10, 1), 0},
                 {"bases differ", real(1, 2, 10), real(1024, 10, 0), 0},
                 {"fractions", real(1, 2, -1), real(1, 10, -1), 1},
                 {"zero and negative", zero, real(-1, 2, -300), 1},
                 {"zero mantissa", zero, real(0, 2, 32767), 0},
                 {"infinities", minusInfinity, plusInfinity, -1},
                 {"large", real(1, 10, 300), plusInfinity, -1},
                 {"beyond a double", real(1, 10, 32767), plusInfinity, 0},
                 {"below a double", real(-1, 10, 32767), minusInfinity, 0},
                 {"nearly zero", real(1, 10, -32767), zero, 0}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(compareReal(row.a, row.b), row.order);
        EXPECT_EQ(compareReal(row.b, row.a), -row.order);
    }
}

TEST(Reals, SpecialCodesDoNotWrap) {
    EXPECT_EQ(getSpecialRealVal(special(REAL_PLUS_INFINITY)), -2);
    EXPECT_TRUE(isSpecialRealVal(special(REAL_ZERO)));
    EXPECT_EQ(getSpecialRealVal(real(int64_t{1} << 33, -1, 0)), noSpecialReal);
    EXPECT_EQ(retRealVal(real(int64_t{1} << 33, -1, 0)), 0.0);
}

using RealValues = StoreTest;

TEST_F(RealValues, ComeFromThreeIntegersAndFromZero) {
    RealVal value;
    readRec(&a, newStru(TYP_SEQ, chain({newNumber(-3), newNumber(40000), newNumber(-40000)})));
    ASSERT_TRUE(getRealVal(value));
    EXPECT_EQ(i64native(value.mantissa), -3);
    EXPECT_EQ(value.base, 32767);
    EXPECT_EQ(value.exponent, -32767);
    readRec(&a, newNumber(0));
    ASSERT_TRUE(getRealVal(value));
    EXPECT_TRUE(isSpecialRealVal(value));
    const VNodeNr ref = newValueRef(newNumber(2));
    const VNodeNr shapes[] = {
        newStru(TYP_SEQ, chain({newNumber(1), newNumber(2)})),
        newStru(TYP_SEQ, chain({newNumber(1), newNumber(-2), newNumber(3)})),
        newStru(TYP_SEQ, chain({newNumber(1), newNumber(2), newNumber(3), newNumber(4)})),
        newStru(TYP_SEQ, chain({newNumber(1), ref, newString(TYP_IA5STR, "")})),
        newValue(TYP_BOOLEAN, [] {})};
    for (const VNodeNr shape : shapes) {
        SCOPED_TRACE(shape.nr);
        readRec(&a, shape);
        EXPECT_FALSE(getRealVal(value));
        EXPECT_EQ(currentRec<KIND_VNODE>().nr, shape);
    }
}

TEST_F(RealValues, AMinusSignBeforeZeroIsReported) {
    I64 number = i64of(7);
    fixNegative(number, 3);
    EXPECT_EQ(i64native(number), -7);
    number = i64of(std::numeric_limits<int64_t>::min());
    fixNegative(number, 3);
    EXPECT_EQ(i64native(number), std::numeric_limits<int64_t>::min());
    EXPECT_TRUE(a.errors.empty());
    RealVal zero = real(0, 2, 1);
    fixNegative(zero, 4);
    ASSERT_EQ(a.errors.size(), 1U);
    EXPECT_EQ(a.errors[0].code, invalidValue(TYP_INTEGER));
    EXPECT_EQ(a.errors[0].line, 4);
}

} // namespace
} // namespace orvo
