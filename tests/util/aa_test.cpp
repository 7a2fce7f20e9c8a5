#include "util/aa.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace orvo {
namespace {

constexpr uint32_t copied = AA_KEY_COPY | AA_VAL_REF;

AaTable table(uint32_t flags, size_t keyLength = 0) {
    return AaTable(aaCreateContext(flags, keyLength));
}

void putNumbers(AaContext* aa, int from, int to) {
    for (int i = from; i <= to; ++i)
        ASSERT_EQ(aaPut(aa, std::to_string(i).c_str(), static_cast<AaValue>(i)), 0);
}

TEST(Aa, GrowsAtNinetyAndShrinksAtTwentyPerCent) {
    const AaTable aa = table(copied);
    putNumbers(aa.get(), 1, 56);
    EXPECT_EQ(aa->listSize, 64U);
    putNumbers(aa.get(), 57, 57);
    EXPECT_EQ(aa->listSize, 128U);
    EXPECT_EQ(aa->highThreshold, 115U);
    EXPECT_EQ(aa->lowThreshold, 25U);
    for (int i = 57; i > 26; --i) EXPECT_EQ(aaDelete(aa.get(), std::to_string(i).c_str()), 0);
    EXPECT_EQ(aa->listSize, 128U);
    EXPECT_EQ(aaDelete(aa.get(), "26"), 0);
    EXPECT_EQ(aa->listSize, 64U);
    EXPECT_EQ(aaDelete(aa.get(), "26"), -1);
    for (int i = 1; i <= 25; ++i)
        EXPECT_EQ(aaGet(aa.get(), std::to_string(i).c_str()), static_cast<AaValue>(i));
}

TEST(Aa, OnlyAWideHashLiftsTheLimitOfTheBuckets) {
    const AaTable narrow = table(copied), wide = table(copied | AA_WIDE_HASH);
    for (AaContext* aa : {narrow.get(), wide.get()}) {
        putNumbers(aa, 1, 70000);
        for (int i = 1; i <= 70000; ++i)
            ASSERT_EQ(aaGet(aa, std::to_string(i).c_str()), static_cast<AaValue>(i));
    }
    EXPECT_EQ(narrow->listSize, 65536U);
    EXPECT_EQ(narrow->highThreshold, 0U);
    EXPECT_EQ(wide->listSize, 131072U);
}

TEST(Aa, KeepsOrReplacesTheValueOfAKnownKey) {
    const AaTable replacing = table(AA_KEY_COPY | AA_VAL_COPY);
    std::string key = "key", value = "one";
    EXPECT_EQ(aaPut(replacing.get(), key.c_str(), aaPointer(value.c_str())), 0);
    key = "other", value = "two"; // the table has copies
    EXPECT_STREQ(reinterpret_cast<const char*>(aaGet(replacing.get(), "key")), "one");
    EXPECT_EQ(aaPut(replacing.get(), "key", aaGet(replacing.get(), "key")), 1);
    EXPECT_STREQ(reinterpret_cast<const char*>(aaGet(replacing.get(), "key")), "one");

    const AaTable keeping = table(copied | AA_NO_REPLACE);
    EXPECT_EQ(aaPut(keeping.get(), "key", 1), 0);
    EXPECT_EQ(aaPut(keeping.get(), "key", 2), 1);
    EXPECT_EQ(aaGet(keeping.get(), "key"), 1U);
    EXPECT_EQ(aaGet(keeping.get(), "kez"), 0U);
    EXPECT_EQ(aaGetNumEntries(keeping.get()), 1U);
}

TEST(Aa, AScanSeesEveryEntryAndHoldsBackResizing) {
    const AaTable aa = table(copied);
    putNumbers(aa.get(), 1, 50);
    aaScanBegin(aa.get(), nullptr);
    putNumbers(aa.get(), 51, 300);
    EXPECT_EQ(aa->listSize, 64U);
    std::set<AaValue> seen;
    AaValue value = 0;
    aaScanBegin(aa.get(), nullptr);
    while (aaScanNext(aa.get(), value) != nullptr) EXPECT_TRUE(seen.insert(value).second);
    EXPECT_EQ(seen.size(), 300U);
    aaScanBegin(aa.get(), "17");
    EXPECT_STREQ(static_cast<const char*>(aaScanNext(aa.get(), value)), "17");
    aaScanEnd(aa.get());
    EXPECT_EQ(aa->listSize, 512U); // 300 reaches 57, 115 and 230, not 460
}

} // namespace
} // namespace orvo
