#include "check/orvostri.h"

#include <gtest/gtest.h>

#include "support/nodes.h"
#include "support/store.h"

namespace orvo {
namespace {

class Strings : public StoreTest {
  protected:
    static VNode rec(VNodeNr nr) {
        readRec(cMP, nr);
        return vNode;
    }
    static VNode bin(std::string_view digits) { return rec(newString(TYP_BITSTR, digits)); }
    static VNode hex(std::string_view digits) { return rec(newString(TYP_OCTSTR, digits)); }
    std::string bits(uint8_t kind, const VNode& value) { return convBitString(kind, &a, value); }
    bool equal(uint8_t kind, const VNode& x, const VNode& y) {
        return equalStrings(kind, &a, x, &a, y);
    }
    int order(VNodeNr x, VNodeNr y) {
        const VNode left = rec(x), right = rec(y);
        return compareStrings(&a, left, &a, right);
    }
    uint64_t length(TNodeNr type, VNodeNr value) {
        readRec(&a, type);
        readRec(&a, value);
        return getAnyStringLength();
    }
};

TEST_F(Strings, NamedBitsAreSetAtTheirNumbers) {
    const VNodeNr bitA = newNumber(0), bitC = newNumber(2), far = newNumber(40000);
    const VNode list = rec(newStru(TYP_BITSTR, chain({newValueRef(bitC), newValueRef(bitA)})));
    EXPECT_EQ(bits(TYP_BITSTR, list), "101");
    EXPECT_EQ(lenFromNamedBits(&a, VNodeNr{list.ref}), 3U);
    const VNode beyond = rec(newStru(
        TYP_BITSTR, chain({newValueRef(bitA), newValueRef(far), newValueRef(newNumber(-1))})));
    EXPECT_EQ(bits(TYP_BITSTR, beyond), "1");
    EXPECT_EQ(lenFromNamedBits(&a, VNodeNr{beyond.ref}), 40001U);
    const VNodeNr huge = newNumber(int64_t{1} << 40);
    EXPECT_EQ(lenFromNamedBits(&a, chain({newValueRef(huge)})), 2147483647U);
    EXPECT_EXIT(bits(TYP_BITSTR, rec(newStru(TYP_BITSTR, chain({newValueRef(huge)})))),
                testing::ExitedWithCode(2), "Bit string index overflow");
}

TEST_F(Strings, LengthsCountInTheUnitOfTheType) {
    const VNodeNr names = chain({newNumber(3), newNumber(0)});
    const TNodeNr named = newTypeRef(newType(TYP_BITSTR, [&] { tNode.namedVals = names.nr; }));
    const TNodeNr plain = newType(TYP_BITSTR), octets = newType(TYP_OCTSTR);
    const TNodeNr chars = newType(TYP_IA5STR);
    const struct {
        const char* what;
        TNodeNr type;
        VNodeNr value;
        uint32_t length;
    } cases[] = {{"zeros beyond the last name", named, newString(TYP_BITSTR, "10100000"), 4},
                 {"a one beyond the last name", named, newString(TYP_BITSTR, "10101000"), 5},
                 {"shorter than the names", named, newString(TYP_BITSTR, "10"), 2},
                 {"hexadecimal", named, newString(TYP_OCTSTR, "A0"), 4},
                 {"hexadecimal, last bit set", named, newString(TYP_OCTSTR, "A1"), 8},
                 {"names", named, newStru(TYP_BITSTR, chain({newValueRef(newNumber(2))})), 3},
                 {"no name", named, newStru(TYP_BITSTR, {}), 0},
                 {"without names every zero counts", plain, newString(TYP_BITSTR, "1000"), 4},
                 {"hexadecimal digits are 4 bits", plain, newString(TYP_OCTSTR, "A0"), 8},
                 {"3 digits are 2 octets", octets, newString(TYP_OCTSTR, "A05"), 2},
                 {"9 bits are 2 octets", octets, newString(TYP_BITSTR, "100000001"), 2},
                 {"characters", chars, newValueRef(newString(TYP_IA5STR, "abc")), 3}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(length(row.type, row.value), row.length);
    }
}

TEST_F(Strings, SegmentsThatDoubleSixtyTimesEnd) {
    VNodeNr value = newString(TYP_IA5STR, "x");
    for (int level = 0; level < 60; ++level)
        value = newStru(TYP_IA5STR, chain({newValueRef(value), newValueRef(value)}));
    RestrCharStri stri;
    EXPECT_EQ(makeRestrCharStri(&a, rec(value), stri), uint64_t{1} << 60);
    EXPECT_EQ(stri.chars.size(), maxCharStri);
    EXPECT_EQ(distinctChars(&a, rec(value)), U"x");
    EXPECT_EQ(length(newType(TYP_IA5STR), value), uint64_t{1} << 60);
    value = newStru(TYP_IA5STR, {});
    for (int level = 0; level < 60; ++level)
        value = newStru(TYP_IA5STR, chain({newValueRef(value), newValueRef(value)}));
    EXPECT_EQ(makeRestrCharStri(&a, rec(value), stri), 0U);
}

TEST_F(Strings, SegmentsNestedAsDeepAsThereAreValuesEnd) {
    VNodeNr value = newString(TYP_IA5STR, "x");
    for (int level = 0; level < 100000; ++level)
        value = newStru(TYP_IA5STR, chain({newValueRef(value)}));
    RestrCharStri stri;
    EXPECT_EQ(makeRestrCharStri(&a, rec(value), stri), 1U);
    EXPECT_EQ(stri.chars, U"x");
}

} // namespace
} // namespace orvo
