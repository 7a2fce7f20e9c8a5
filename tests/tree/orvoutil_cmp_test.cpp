#include "tree/orvoutil_cmp.h"

#include <gtest/gtest.h>

#include <vector>

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
        return compareValue(&a, left, &a, vNode);
    }
    VNodeNr comp(std::string_view name, int64_t number) {
        return component(newNumber(number), name, integer);
    }
    /// A SEQUENCE OF or SET OF INTEGER.
    VNodeNr list(uint8_t code, const std::vector<int64_t>& numbers) {
        VNodeNr next;
        for (size_t i = numbers.size(); i-- != 0;) {
            const VNodeNr nr = component(newNumber(numbers[i]), "", integer);
            vNode.next = next.nr;
            writeCurrent<KIND_VNODE>();
            next = nr;
        }
        return newStru(code, next);
    }
    TNodeNr integer;
};

TEST_F(Comparisons, ElementsOfASetOfAreMatched) {
    constexpr uint8_t so = TYP_SETOF, qo = TYP_SEQOF;
    const struct {
        uint8_t code;
        std::vector<int64_t> x, y;
        int order;
    } cases[] = {{so, {1, 1, 2}, {1, 2, 2}, -1},
                 {so, {1, 2}, {2, 1}, 0},
                 {qo, {1, 2}, {2, 1}, -1},
                 {qo, {1, 2}, {1, 2}, 0},
                 {so, {1, 2}, {1, 2, 2}, -1},
                 {qo, {1}, {1, 2}, -1},
                 {so, {}, {}, 0},
                 {so, {}, {1}, -1}};
    for (const auto& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.x) + testing::PrintToString(row.y));
        EXPECT_EQ(compare(list(row.code, row.x), list(row.code, row.y)), row.order);
    }
    std::vector<int64_t> up, down;
    for (int64_t i = 0; i < 5000; ++i) up.push_back(i), down.push_back(4999 - i);
    EXPECT_EQ(compare(list(so, up), list(so, down)), 0);
}

TEST_F(Comparisons, AMatchMayBeOneWhoseListRunsOut) {
    const TNodeNr seq = newType(TYP_SEQ);
    const auto element = [&](std::initializer_list<VNodeNr> values) {
        return component(newStru(TYP_SEQ, chain(values)), "", seq);
    };
    const VNodeNr x = newStru(TYP_SETOF, chain({element({comp("a", 1), comp("b", 2)})}));
    EXPECT_EQ(compare(x, newStru(TYP_SETOF, chain({element({comp("a", 1)})}))), 0);
    EXPECT_EQ(compare(x, newStru(TYP_SETOF, chain({element({comp("a", 2)})}))), -1);
}

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
