#include "tree/orvoutil_cmp.h"

#include <gtest/gtest.h>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

class Comparisons : public StoreTest {
  protected:
    Comparisons() : integer(newType(TYP_INTEGER)) {}
    static VNode rec(VNodeNr nr) {
        readRec(cMP, nr);
        return vNode;
    }
    int compare(VNodeNr x, VNodeNr y) {
        const VNode left = rec(x), right = rec(y);
        return compareValue(&a, left, &a, right);
    }
    uint64_t hash(VNodeNr x) { return hashOfValue(&a, rec(x)); }
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

TEST_F(Comparisons, SimpleValuesAreOrderedOrEqual) {
    const auto boolean = [](uint8_t truth) {
        return newValue(TYP_BOOLEAN, [&] { vNode.val.boole = truth; });
    };
    const struct {
        const char* what;
        VNodeNr x, y;
        int order;
    } cases[] = {
        {"INTEGER", newNumber(-2), newNumber(1), -1},
        {"INTEGER beyond 32 bits", newNumber(int64_t{1} << 40), newNumber(7), 1},
        {"reference", newValueRef(newValueRef(newNumber(5))), newNumber(5), 0},
        {"BOOLEAN", boolean(1), boolean(0), 1},
        {"any TRUE", boolean(1), boolean(255), 0},
        {"FALSE", boolean(0), boolean(1), -1},
        {"NULL", newValue(TYP_NULL, [] {}), newValue(TYP_NULL, [] {}), 0},
        {"bits", newString(TYP_BITSTR, "10"), newString(TYP_BITSTR, "1"), 0},
        {"unordered strings", newString(TYP_GENSTR, "b"), newString(TYP_GENSTR, "a"), 1},
        {"unordered strings, reversed", newString(TYP_GENSTR, "a"), newString(TYP_GENSTR, "b"), 1},
        {"other kinds", newNumber(1), newString(TYP_IA5STR, "1"), -1},
        {"unresolved", newValueRef({}, REF_UNRESOLVED), newNumber(1), -1}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(compare(row.x, row.y), row.order);
    }
    EXPECT_LT(compare(newString(TYP_IA5STR, "a"), newString(TYP_IA5STR, "b")), 0);
}

TEST_F(Comparisons, ComponentsAreComparedInOrderUntilOneListRunsOut) {
    const auto seq = [&](std::initializer_list<VNodeNr> values) {
        return newStru(TYP_SEQ, chain(values));
    };
    const VNodeNr ab = seq({comp("a", 1), comp("b", 2)});
    EXPECT_EQ(compare(ab, seq({comp("a", 1), comp("b", 3)})), -1);
    EXPECT_EQ(compare(ab, seq({comp("a", 1)})), 0);
    EXPECT_EQ(compare(seq({}), ab), 0);
    const VNodeNr one = newNumber(1), two = newNumber(2);
    EXPECT_EQ(compare(ab, seq({component(newValueRef(one), "a", integer),
                               component(newValueRef(two), "b", integer)})),
              0);
    const TNodeNr twin = newType(TYP_INTEGER);
    EXPECT_EQ(compare(ab, seq({component(newNumber(1), "a", twin)})), -1);
    EXPECT_EQ(compare(ab, seq({component(newNumber(1), "a", newTypeRef(integer))})), 0);
}

TEST_F(Comparisons, SetComponentsAreFoundByName) {
    const auto set = [&](std::initializer_list<VNodeNr> values) {
        return newStru(TYP_SET, chain(values));
    };
    const VNodeNr ab = set({comp("a", 1), comp("b", 2)});
    EXPECT_EQ(compare(ab, set({comp("b", 2), comp("a", 1)})), 0);
    EXPECT_EQ(compare(ab, set({comp("b", 1), comp("a", 2)})), -1);
    EXPECT_EQ(compare(ab, set({comp("a", 1), comp("c", 2)})), -1);
    EXPECT_EQ(hash(ab), hash(set({comp("b", 2), comp("a", 1)})));
}

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

TEST_F(Comparisons, ObjectIdentifiersAreEqualByTheirArcs) {
    const auto oid = [](std::initializer_list<VNodeNr> arcs) {
        return newStru(TYP_OBJID, chain(arcs));
    };
    const VNodeNr p = oid({newNumber(1), newNumber(2)});
    const VNodeNr whole = oid({newNumber(1), newNumber(2), newNumber(5)});
    const VNodeNr five = newNumber(5);
    EXPECT_EQ(compare(whole, oid({newValueRef(p), newValueRef(five)})), 0);
    EXPECT_EQ(compare(whole, p), -1);
    // What the checks stored counts, and an invalid value equals none.
    const VNodeNr stored = newString(TYP_OBJID, "1,2,5");
    EXPECT_EQ(compare(whole, stored), 0);
    EXPECT_EQ(hash(whole), hash(stored));
    readRec(&a, stored);
    vNode.val.str.striLen = 65535;
    writeCurrent<KIND_VNODE>();
    EXPECT_EQ(compare(stored, stored), -1);
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
        hash(one);
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
