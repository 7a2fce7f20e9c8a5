#include "tree/orvoutil_cmp.h"

#include <gtest/gtest.h>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

class Comparisons : public StoreTest {
  protected:
    Comparisons() : integer(newType(TYP_INTEGER)) {}
    int compare(VNodeNr x, VNodeNr y) {
        readRec(&a, x);
        const VNode left = vNode;
        readRec(&a, y);
        const VNode right = vNode;
        return compareValue(&a, left, &a, right);
    }
    VNodeNr comp(std::string_view name, int64_t number) {
        return component(newNumber(number), name, integer);
    }
    TNodeNr integer;
};

TEST_F(Comparisons, TwoAnyValuesAreReportedAndDiffer) {
    const VNodeNr any = newValue(TYP_ANY, [] { vNode.line = 7; });
    EXPECT_EQ(compare(any, any), -1);
    ASSERT_EQ(a.errors.size(), 1U);
    EXPECT_EQ(a.nbWarnings, 1);
    EXPECT_EQ(a.errors[0].line, 7);
    EXPECT_EQ(a.errors[0].code, Msg::None);
    EXPECT_EQ(a.errors[0].detail, "Comparison of two ANY values not yet implemented, sorry.");
}

TEST_F(Comparisons, ValuesThatReferTwiceToTheNextLevelEnd) {
    for (const uint8_t code : {TYP_SEQ, TYP_SEQOF, TYP_SET, TYP_SETOF}) {
        SCOPED_TRACE(typeArr[code].name);
        const TNodeNr type = newType(code);
        const auto build = [&](int64_t leaf) {
            VNodeNr value = newStru(code, chain({component(newNumber(leaf), "n", integer)}));
            for (int level = 0; level < 60; ++level)
                value = newStru(code, chain({component(newValueRef(value), "l", type),
                                             component(newValueRef(value), "r", type)}));
            return value;
        };
        const VNodeNr one = build(1);
        EXPECT_EQ(compare(one, build(1)), 0);
        EXPECT_EQ(compare(one, build(2)), -1);
    }
}

TEST_F(Comparisons, ValuesNestedAsDeepAsThereAreValuesEnd) {
    const TNodeNr type = newType(TYP_SEQ);
    const auto build = [&](int64_t leaf) {
        VNodeNr value = newStru(TYP_SEQ, chain({comp("n", leaf)}));
        for (int level = 0; level < 50000; ++level)
            value = newStru(TYP_SEQ, chain({component(newValueRef(value), "l", type)}));
        return value;
    };
    const VNodeNr one = build(1);
    EXPECT_EQ(compare(one, build(1)), 0);
    EXPECT_EQ(compare(one, build(2)), -1);
}

} // namespace
} // namespace orvo
