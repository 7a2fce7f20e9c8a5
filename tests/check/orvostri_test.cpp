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

TEST_F(Strings, LiteralsBecomeBits) {
    EXPECT_EQ(bits(TYP_BITSTR, hex("A")), "1010");
    EXPECT_EQ(bits(TYP_BITSTR, hex("F0")), "11110000");
    EXPECT_EQ(bits(TYP_OCTSTR, hex("A")), "10100000");
    EXPECT_EQ(bits(TYP_OCTSTR, bin("101")), "10100000");
    EXPECT_EQ(bits(TYP_BITSTR, bin("101")), "101");
    EXPECT_EQ(bits(TYP_OCTSTR, bin("")), "");
}

TEST_F(Strings, TrailingZerosCountInOctetStringsOnly) {
    EXPECT_TRUE(equal(TYP_BITSTR, bin("1010"), bin("101")));
    EXPECT_TRUE(equal(TYP_BITSTR, bin("0"), bin("")));
    EXPECT_TRUE(equal(TYP_BITSTR, bin("1010"), hex("A")));
    EXPECT_FALSE(equal(TYP_BITSTR, bin("0101"), bin("101")));
    EXPECT_TRUE(equal(TYP_OCTSTR, bin("1010"), bin("101")));
    EXPECT_FALSE(equal(TYP_OCTSTR, hex("A5"), hex("A500")));
}

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

TEST_F(Strings, SegmentsAreJoinedInOrder) {
    const VNodeNr inner =
        newStru(TYP_IA5STR, chain({newString(TYP_IA5STR, "cd"), newString(TYP_IA5STR, "")}));
    const VNodeNr whole = newStru(
        TYP_IA5STR, chain({newString(TYP_IA5STR, "ab"), newValueRef(inner), newValueRef(inner)}));
    RestrCharStri stri;
    EXPECT_EQ(makeRestrCharStri(&a, rec(whole), stri), 6U);
    EXPECT_EQ(stri.chars, U"abcdcd");
    EXPECT_EQ(distinctChars(&a, rec(whole)), U"abcd");
    EXPECT_EQ(order(whole, newString(TYP_IA5STR, "abcdcd")), 0);
    EXPECT_LT(order(whole, newString(TYP_IA5STR, "abd")), 0);
    EXPECT_EQ(order(whole, newString(TYP_VISSTR, "abcdcd")), 1);
}

TEST_F(Strings, WideCharactersAreOrderedByTheirNumbers) {
    const auto wide = [&](char16_t c) {
        return newValue(TYP_BMPSTR, [&] {
            vNode.val.str.striLen = 1;
            vNode.val.str.stri = putStri16(&a, std::u16string_view(&c, 1)).nr;
        });
    };
    EXPECT_LT(order(wide(0x00FF), wide(0xFF00)), 0);
    EXPECT_GT(order(newString(TYP_GENSTR, "\xFF"), newString(TYP_GENSTR, "a")), 0);
    // A NUL character ends the text of the cache, but not the string.
    EXPECT_LT(order(wide(0), wide(1)), 0);
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
