#include "check/orvonum_end.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

constexpr int64_t lowest = std::numeric_limits<int64_t>::min();
constexpr int64_t highest = std::numeric_limits<int64_t>::max();
using Number = std::optional<int64_t>;

class Endpoints : public StoreTest {
  protected:
    VNodeNr valueOf(Number number) { return number ? newNumber(*number) : VNodeNr{}; }
    SubNr single(int64_t number) {
        const VNodeNr value = newNumber(number);
        return newSub(SUB_SINGLE_VALUE, [&] { subRec.left = value.nr; });
    }
    /// A range for values of a type record; no number is MIN or MAX.
    SubNr range(TNodeNr type, Number lower, Number upper, uint8_t flags = SUBF_LOWER | SUBF_UPPER) {
        const VNodeNr left = valueOf(lower), right = valueOf(upper);
        return newSub(SUB_RANGE, [&] {
            subRec.typeNr = type.nr;
            subRec.subFlags = flags;
            subRec.left = left.nr;
            subRec.right = right.nr;
        });
    }
    void constrain(TNodeNr type, SubNr sub) {
        readRec(&a, type);
        tNode.constraint = static_cast<int32_t>(sub.nr);
        writeCurrent<KIND_TNODE>();
    }
    SubNr contained(TNodeNr type) {
        const VNodeNr setting = newValue(TYP_OPEN, [&] {
            vNode.refMod = REF_FORMAL;
            vNode.ref = type.nr;
        });
        return newSub(SUB_CONTAINED_SUBTYPE, [&] { subRec.left = setting.nr; });
    }
    /// A type of a kind with a constraint that `make` builds from the type's number.
    template <typename Fn> TNodeNr constrained(uint8_t kind, Fn&& make) {
        const TNodeNr type = newType(kind);
        constrain(type, make(type));
        return type;
    }
    template <typename Fn> TNodeNr constrainedRef(TNodeNr target, Fn&& make) {
        const TNodeNr type = newTypeRef(target);
        constrain(type, make(type));
        return type;
    }
    int64_t endpoint(TNodeNr type, bool upper) {
        readRec(&a, type);
        EXPECT_TRUE(getEndpoint(end, upper));
        EXPECT_EQ(currentRec<KIND_TNODE>().nr, type);
        return i64native(end.value.val.number);
    }
    void expectEnds(TNodeNr type, int64_t lower, int64_t upper) {
        EXPECT_EQ(endpoint(type, false), lower);
        EXPECT_EQ(endpoint(type, true), upper);
    }
    void expectBounds(TNodeNr type, int64_t lower, int64_t upper) {
        readRec(&a, type);
        setTNodeEndpoints();
        readRec(&a, TNodeNr{1});
        readRec(&a, type);
        EXPECT_EQ(i64native(tNode.lowerBound), lower);
        EXPECT_EQ(i64native(tNode.upperBound), upper);
    }
    Endpoint end;
};

TEST_F(Endpoints, OperatorsWidenAndNarrow) {
    const auto integer = [&](auto&& make) { return constrained(TYP_INTEGER, make); };
    expectBounds(newType(TYP_INTEGER), lowest, highest);
    expectBounds(integer([&](TNodeNr t) {
                     return newSub(SUB_UNION, {range(t, 20, 30), range(t, 1, 10)});
                 }),
                 1, 30);
    expectBounds(integer([&](TNodeNr t) {
                     return newSub(SUB_INTERSECTION, {range(t, 1, 10), range(t, 5, 20)});
                 }),
                 5, 10);
    expectBounds(integer([&](TNodeNr t) {
                     return newSub(SUB_SERIAL,
                                   {range(t, 1, 10), newSub(SUB_EXCEPTION, {}), range(t, {}, 7)});
                 }),
                 1, 7);
    expectBounds(integer([&](TNodeNr t) { return range(t, {}, 10); }), lowest, 10);
    expectBounds(integer([&](TNodeNr t) { return range(t, 1, 10, 0); }), 1, 10);
    expectBounds(integer([&](TNodeNr) {
                     return newSub(SUB_UNION, {single(7), single(-3)});
                 }),
                 -3, 7);
    expectBounds(integer([&](TNodeNr t) {
                     return newSub(SUB_UNION, {range(t, 1, 10), newSub(SUB_EXTENSION_MARKER, {})});
                 }),
                 1, 10);
    expectBounds(integer([&](TNodeNr) { return newSub(SUB_ALL_EXCEPT, {single(5)}); }), lowest,
                 highest);
}

TEST_F(Endpoints, OfReferencesLieWithinThoseOfTheirTypes) {
    const TNodeNr t1 = constrained(TYP_INTEGER, [&](TNodeNr t) { return range(t, 0, 100); });
    const TNodeNr t2 = constrainedRef(t1, [&](TNodeNr t) { return range(t, 5, {}); });
    expectEnds(t2, 5, 100);
    EXPECT_EQ(end.flags, SUBF_UPPER);
    expectBounds(t2, lowest, highest); // what a reference stores
    expectEnds(newTypeRef(newTypeRef(t2)), 5, 100);
    expectEnds(constrainedRef(t2, [&](TNodeNr t) { return range(t, 1, 50); }), 5, 50);
    expectEnds(constrainedRef(t2, [&](TNodeNr) { return newSub(SUB_ALL_EXCEPT, {}); }), 5, 100);
    expectEnds(constrained(TYP_INTEGER, [&](TNodeNr) { return contained(t2); }), 5, 100);
}

TEST_F(Endpoints, ABoundOutsideTheParentIsNone) {
    const TNodeNr t1 =
        constrained(TYP_INTEGER, [&](TNodeNr t) { return range(t, 0, 100, SUBF_LOWER); });
    constexpr struct {
        int64_t number;
        bool inside;
    } cases[] = {{-1, false}, {0, true}, {99, true}, {100, false}, {101, false}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.number);
        const TNodeNr t2 = constrainedRef(newTypeRef(t1), [&](TNodeNr t) {
            return range(t, row.number, {}, SUBF_LOWER | SUBF_UPPER);
        });
        readRec(&a, t2);
        readRec(&a, SubNr{static_cast<uint32_t>(tNode.constraint)});
        EXPECT_EQ(getRangeEndpoint(end, false), row.inside);
        EXPECT_EQ(end.value.valCode == noEndpoint, !row.inside);
        ASSERT_TRUE(getRangeEndpoint(end, true));
        EXPECT_EQ(i64native(end.value.val.number), 100);
        EXPECT_EQ(end.flags, 0);
        EXPECT_EQ(endpoint(t2, false), row.inside ? row.number : 0);
    }
}

TEST_F(Endpoints, MinAndMaxOfStringsAreTheirFirstAndLastCharacter) {
    const TNodeNr type = newType(TYP_IA5STR);
    readRec(&a, range(type, {}, {}));
    readRec(&a, type);
    for (const bool upper : {false, true}) {
        ASSERT_TRUE(getRangeEndpoint(end, upper));
        EXPECT_EQ(end.value.valCode, TYP_IA5STR);
        EXPECT_EQ(end.value.val.str.striLen, 1);
    }
    readRec(&a, range(newType(TYP_BOOLEAN), 1, 2));
    EXPECT_FALSE(getRangeEndpoint(end, false));
}

TEST_F(Endpoints, SizesComeFromSizeConstraintsAlone) {
    const TNodeNr size = newType(TYP_INTEGER);
    const auto sized = [&](std::initializer_list<SubNr> inner) { return newSub(SUB_SIZE, inner); };
    const auto octets = [&](SubNr sub) {
        return constrained(TYP_OCTSTR, [&](TNodeNr) { return sub; });
    };
    expectBounds(newType(TYP_OCTSTR), 0, highest);
    expectBounds(octets(sized({newSub(SUB_UNION, {single(8), single(4)})})), 4, 8);
    expectBounds(
        octets(sized({newSub(SUB_UNION, {range(size, 1, 10), newSub(SUB_EXTENSION_MARKER, {})})})),
        1, 10);
    expectBounds(octets(newSub(SUB_UNION, {sized({range(size, 1, 2)}), sized({single(9)})})), 1, 9);
    expectBounds(
        octets(newSub(SUB_SERIAL, {sized({range(size, 2, {})}), sized({range(size, {}, 6)})})), 2,
        6);
    expectBounds(octets(single(5)), 0, highest);
    const TNodeNr list =
        constrained(TYP_SEQOF, [&](TNodeNr) { return sized({range(size, 0, 10)}); });
    expectBounds(list, 0, 10);
    readRec(&a, list);
    EXPECT_TRUE(getSizeEndpoint(end, false));
    readRec(&a, newType(TYP_SEQOF));
    EXPECT_FALSE(getSizeEndpoint(end, false));
    readRec(&a, newType(TYP_BOOLEAN));
    EXPECT_FALSE(getEndpoint(end, false));
}

TEST_F(Endpoints, OfEnumerationsAreThoseOfTheirItems) {
    const VNodeNr three = newNumber(3);
    const VNodeNr items = chain(
        {newValueRef(three), newNumber(-1), newValue(TYP_EXTENSION_MARKER, [] {}), newNumber(7)});
    expectBounds(newType(TYP_ENUM, [&] { tNode.namedVals = items.nr; }), -1, 7);
    const VNodeNr unnumbered = chain({newNumber(1), newNumber(0, TYP_ENUM)});
    readRec(&a, newType(TYP_ENUM, [&] { tNode.namedVals = unnumbered.nr; }));
    EXPECT_FALSE(getEnumEndpoint(end, false));
    EXPECT_EXIT(setTNodeEndpoints(), testing::ExitedWithCode(2),
                "Cannot obtain endpoint for a type.");
}

TEST_F(Endpoints, OfRealsAreCompared) {
    const auto real = [](int64_t mantissa) {
        return newValue(TYP_REAL, [&] { vNode.val.real = {i64of(mantissa), 10, 0}; });
    };
    const VNodeNr lower = real(-5), upper = real(12);
    const TNodeNr type = newType(TYP_REAL);
    constrain(type, newSub(SUB_RANGE, [&] {
                  subRec.typeNr = type.nr;
                  subRec.left = lower.nr;
                  subRec.right = upper.nr;
              }));
    EXPECT_EQ(endpoint(type, false), -5);
    readRec(&a, newType(TYP_REAL));
    ASSERT_TRUE(getEndpoint(end, true));
    EXPECT_TRUE(testInfinity(end, true, TYP_REAL));
    EXPECT_EQ(end.flags, SUBF_UPPER);
    expectBounds(type, lowest, highest);
}

TEST_F(Endpoints, AreForgottenWhenTheConstraintIsTakenOff) {
    const TNodeNr type = constrained(TYP_INTEGER, [&](TNodeNr t) { return range(t, 1, 5); });
    tNode.checkState = CHECK_DONE;
    writeCurrent<KIND_TNODE>();
    expectEnds(type, 1, 5);
    const auto constraint = static_cast<uint32_t>(tNode.constraint);
    constrain(type, {});
    expectEnds(type, lowest, highest);
    constrain(type, SubNr{constraint});
    expectEnds(type, 1, 5);
}

TEST_F(Endpoints, ContainedSubtypesThatDoubleSixtyTimesEnd) {
    TNodeNr type = constrained(TYP_INTEGER, [&](TNodeNr t) { return range(t, 1, 5); });
    for (int level = 0; level < 60; ++level) {
        readRec(&a, type);
        tNode.checkState = CHECK_DONE;
        writeCurrent<KIND_TNODE>();
        type = constrained(TYP_INTEGER, [&](TNodeNr) {
            return newSub(SUB_UNION, {contained(newTypeRef(type)), contained(type)});
        });
    }
    expectBounds(type, 1, 5);
}

TEST_F(Endpoints, LongChainsOfReferencesAreWalkedOnce) {
    TNodeNr type = constrained(TYP_INTEGER, [&](TNodeNr t) { return range(t, 1, 500000); });
    for (int i = 0; i < 50000; ++i) {
        type = newTypeRef(type);
        tNode.checkState = CHECK_DONE;
        writeCurrent<KIND_TNODE>();
    }
    for (int i = 2; i < 1000; ++i)
        expectEnds(constrainedRef(type, [&](TNodeNr t) { return range(t, i, {}); }), i, 500000);
}

} // namespace
} // namespace orvo
