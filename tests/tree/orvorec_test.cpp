#include "tree/orvorec.h"

#include <gtest/gtest.h>

#include <string>

#include "support/store.h"

namespace orvo {
namespace {

using Store = StoreTest;
using StoreDeathTest = StoreTest;

TEST_F(StoreDeathTest, WhatWasNeverWrittenCanNotBeRead) {
    writeRec(&a, TNodeNr{1000});
    constexpr struct {
        bool module;
        uint32_t nr;
    } cases[] = {{true, 999}, {true, 1001}, {true, 0}, {false, 1000}, {true, 4000000000}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.nr);
        EXPECT_EXIT(findRPos(row.module ? &a : nullptr, KIND_TNODE, row.nr),
                    testing::ExitedWithCode(2), "Can not read record from syntax tree");
    }
}

TEST_F(StoreDeathTest, WhatCanNotBeARecordCanNotBeWritten) {
    const auto dies = testing::ExitedWithCode(2);
    const char* message = "Can not write record into syntax tree";
    EXPECT_EXIT(writeRecKind(&a, KIND_STRI8, 1), dies, message);
    EXPECT_EXIT(writeRec(&a, TNodeNr{0}), dies, message);
    EXPECT_EXIT(writeRec(&a, TNodeNr{maxRecNr + 1}), dies, message);
    EXPECT_EXIT(writeRec(nullptr, TNodeNr{1}), dies, message);
    a.nextRecNr[KIND_TNODE] = maxRecNr + 1;
    EXPECT_EXIT(newRec<KIND_TNODE>(), dies, message);
}

// ---- strings ------------------------------------------------------------------------------------

TEST_F(Store, StringsTakenBackGiveTheirNumbersAway) {
    putStri(&a, "kept");
    putStri16(&a, u"kept");
    const char* shared = getStri(&a, putStri(&a, "gone")).data();
    putStri(&a, "gone too");
    dropStriFrom(&a, 2, 2, 1);
    EXPECT_FALSE(findStri(&a, "gone"));
    EXPECT_EQ(putStri(&a, "new").nr, 2U);
    EXPECT_EQ(putStri(&a, "gone").nr, 3U);
    EXPECT_EQ(getStri(&a, 3).data(), shared);
    EXPECT_EQ(putStri(&a, "kept").nr, 1U);
    EXPECT_EQ(putStri16(&a, u"kept").nr, 1U);
    for (uint32_t nr = 4; nr <= 1000; ++nr) EXPECT_EQ(putStri(&a, std::to_string(nr)).nr, nr);
    dropStriFrom(&a, 600, 1, 1);
    for (uint32_t nr = 4; nr <= 1000; ++nr)
        EXPECT_EQ(findStri(&a, std::to_string(nr)).nr, nr < 600 ? nr : 0U);
    EXPECT_EQ(putStri(&a, "1000").nr, 600U);
}

TEST_F(StoreDeathTest, StringsThatAreNotThere) {
    putStri(&a, "one");
    const auto dies = testing::ExitedWithCode(2);
    for (const int64_t nr : {int64_t{0}, int64_t{2}, int64_t{-2}, int64_t{maxRecNr} + 1, INT64_MAX})
        EXPECT_EXIT(static_cast<void>(getStri(&a, nr)), dies,
                    "Can not read record from syntax tree");
    EXPECT_EXIT(putStri(&a, std::string_view()), dies, "Can not write record into syntax tree");
    EXPECT_EXIT(putStri(nullptr, "x"), dies, "Can not write record into syntax tree");
}

} // namespace
} // namespace orvo
