#include "check/orvonum.h"

#include <gtest/gtest.h>

#include "check/orvonum_end.h"
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

using EndpointsDeathTest = StoreTest;

TEST_F(EndpointsDeathTest, ItemsWithoutNumbersHaveNone) {
    const VNodeNr items = chain({newNumber(1), newValue(TYP_ENUM, [] {})});
    readRec(&a, newType(TYP_ENUM, [&] { tNode.namedVals = items.nr; }));
    EXPECT_EXIT(setTNodeEndpoints(), testing::ExitedWithCode(2),
                "Cannot obtain endpoint for a type.");
}

} // namespace
} // namespace orvo
