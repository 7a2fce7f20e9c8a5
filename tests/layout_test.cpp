#include <gtest/gtest.h>

#include <set>

#include "diag/orvomsg.h"
#include "tree/orvodef.h"

namespace orvo {
namespace {

TEST(Codes, NumbersOfTheMessageTableAreDistinct) {
    std::set<int> seen;
    for (const MessageText& row : errorList)
        EXPECT_TRUE(seen.insert(static_cast<int>(row.code)).second) << static_cast<int>(row.code);
}

TEST(Codes, NegationOfAnyWordIsDefined) {
    EXPECT_EQ(magnitude(INT32_MIN), 2147483648U);
    EXPECT_EQ(minus(2147483648U), INT32_MIN);
    EXPECT_EQ(deferredText(-7).nr, 7U);
    EXPECT_FALSE(deferredText(7));
}

} // namespace
} // namespace orvo
