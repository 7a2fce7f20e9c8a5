#include "tree/orvorec.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/store.h"

namespace orvo {
namespace {

using Store = StoreTest;
using StoreDeathTest = StoreTest;

TNodeNr newType(uint32_t line) {
    const TNodeNr nr = newRec<KIND_TNODE>();
    tNode.line = line;
    return nr;
}

TEST_F(Store, RecordsStayWhereTheyAreWhileAKindGrows) {
    std::vector<void*> places;
    for (uint32_t nr = 1; nr <= 3000; ++nr) places.push_back(findWPos(&a, KIND_TNODE, nr));
    for (uint32_t nr = 1; nr <= 3000; ++nr) {
        tNode = {};
        tNode.line = nr;
        writeRec(&a, TNodeNr{nr});
    }
    for (uint32_t nr = 1; nr <= 3000; ++nr) {
        EXPECT_EQ(findRPos(&a, KIND_TNODE, nr), places[nr - 1]);
        readRec(&a, TNodeNr{nr});
        EXPECT_EQ(tNode.line, nr);
    }
}

TEST_F(Store, APendingRecordLivesInTheBufferAlone) {
    const TNodeNr first = newType(1);
    EXPECT_FALSE(recExists(&a, KIND_TNODE, first.nr));
    readRec(&a, first); // nothing to copy: this is what the buffer holds
    EXPECT_EQ(tNode.line, 1U);
    const TNodeNr second = newType(2);
    EXPECT_EQ(second.nr, first.nr + 1);
    EXPECT_TRUE(recExists(&a, KIND_TNODE, first.nr));
    readRec(&a, first);
    EXPECT_TRUE(recExists(&a, KIND_TNODE, second.nr));
    EXPECT_EQ(recState.writePend[KIND_TNODE].nr, 0U);
    EXPECT_EQ(tNode.line, 1U);
}

TEST_F(Store, AChangedBufferIsLostUnlessItIsWritten) {
    const TNodeNr first = newType(1);
    newType(2);
    readRec(&a, first);
    tNode.line = 77;
    readRec(&a, first); // the same record: the buffer stays as it is
    EXPECT_EQ(tNode.line, 77U);
    readRec(&a, TNodeNr{2});
    readRec(&a, first);
    EXPECT_EQ(tNode.line, 1U);
    makePending(&a, first);
    tNode.line = 78;
    readRec(&a, TNodeNr{2});
    readRec(&a, first);
    EXPECT_EQ(tNode.line, 78U);
}

TEST_F(Store, PendingRecordsAreWrittenWhereTheyBelong) {
    const TNodeNr inA = newType(1);
    changeCMP(&b);
    EXPECT_TRUE(recExists(&a, KIND_TNODE, inA.nr));
    const TNodeNr inB = newType(2);
    EXPECT_EQ(inB.nr, 1U);
    EXPECT_EQ(recState.currTPtr[KIND_TNODE], &b);
    changeCMP(&a);
    readRec(&a, inA);
    EXPECT_EQ(tNode.line, 1U);
    readRec(&b, inB); // the same number in another module
    EXPECT_EQ(tNode.line, 2U);
    EXPECT_EQ(recState.currTPtr[KIND_TNODE], &b);
}

TEST_F(Store, GuardsPutBackRecordAndModule) {
    const TNodeNr inA = newType(1);
    {
        const KeepRec<KIND_TNODE> keep;
        const CurrentModule other(&b);
        newType(2);
        EXPECT_EQ(cMP, &b);
    }
    EXPECT_EQ(cMP, &a);
    EXPECT_EQ(currentRec<KIND_TNODE>(), (TNodeRef{&a, inA}));
    EXPECT_EQ(tNode.line, 1U);
    initAnyPassVars();
    const KeepRec<KIND_TNODE> nothing; // no record: nothing to read back
    EXPECT_FALSE(currentRec<KIND_TNODE>());
}

TEST_F(Store, WalksRestoreTheCurrentRecordAndEndOnACycle) {
    for (uint32_t nr = 1; nr <= 3; ++nr) {
        newType(nr);
        tNode.next = nr % 3 + 1;
        newRec<KIND_VNODE>();
        vNode.next = nr < 3 ? nr + 1 : 0;
    }
    std::vector<uint32_t> lines;
    forEachTNodeByMod(&a, TNodeNr{2}, [&] { lines.push_back(tNode.line); });
    EXPECT_EQ(lines, (std::vector<uint32_t>{2, 3, 1, 2}));
    EXPECT_EQ(tNode.line, 3U);
    size_t values = 0;
    forEachVNode(VNodeNr{1}, [&] { ++values; });
    EXPECT_EQ(values, 3U);
    EXPECT_EQ(currentRec<KIND_VNODE>().nr.nr, 3U);
}

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

TEST_F(Store, NumbersStringsPerModuleAndSharesTheirCopies) {
    EXPECT_EQ(putStri(&a, "one").nr, 1U);
    EXPECT_EQ(putStri(&a, "two").nr, 2U);
    EXPECT_EQ(putStri(&a, "one").nr, 1U);
    EXPECT_EQ(putStri(&b, "two").nr, 1U);
    EXPECT_EQ(getStri(&a, 2).data(), getStri(&b, 1).data());
    EXPECT_EQ(getStri(&a, -2), "two");
    EXPECT_EQ(a.nextRecNr[KIND_STRI8], 3U);
    EXPECT_EQ(recState.currTPtr[KIND_STRI8], &b);
    EXPECT_EQ(findStri(&a, "two").nr, 2U);
    EXPECT_FALSE(findStri(&b, "one"));
    EXPECT_EQ(b.nextRecNr[KIND_STRI8], 2U);
}

TEST_F(Store, WidthsHaveNumbersOfTheirOwn) {
    putStri(&a, "x");
    EXPECT_EQ(putStri16(&a, u"\x0100z").nr, 1U);
    EXPECT_EQ(putStri16(&a, u"\x0200z").nr, 2U);
    EXPECT_EQ(putStri32(&a, U"\x00010000").nr, 1U);
    EXPECT_EQ(getStri16(&a, -1), u"\x0100z");
    EXPECT_EQ(getStri32(&a, 1), U"\x00010000");
}

TEST_F(Store, TextsEndAtTheirFirstNulAndMayBeLongOrEmpty) {
    const std::string text("ab\0cd", 5), longText(100000, 'l');
    EXPECT_EQ(getStri(&a, putStri(&a, text)), "ab");
    EXPECT_EQ(getStri(&a, putStri(&a, std::string_view(text).substr(0, 1))), "a");
    EXPECT_EQ(getStri(&a, putStri(&a, longText)), longText);
    EXPECT_EQ(getStri(&a, putStri(&a, "")), "");
    EXPECT_EQ(getStri(&a, 2).data()[1], '\0');
    EXPECT_EQ(a.nextRecNr[KIND_STRI8], 5U);
}

TEST_F(Store, TheScratchNumberIsTheScratchCharacter) {
    tempChar[0] = 'q';
    tempChar16[0] = u'\x3042';
    tempChar32[0] = 0;
    EXPECT_EQ(getStri(&a, scratchStri), "q");
    EXPECT_EQ(getStri16(&a, -int64_t{scratchStri}), u"\x3042");
    EXPECT_EQ(getStri32(&a, scratchStri), std::u32string(1, U'\0'));
}

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
}

TEST_F(StoreDeathTest, StringsThatAreNotThere) {
    putStri(&a, "one");
    const auto dies = testing::ExitedWithCode(2);
    for (const int64_t nr : {int64_t{0}, int64_t{2}, int64_t{-2}, int64_t{maxRecNr} + 1, INT64_MAX})
        EXPECT_EXIT((void)getStri(&a, nr), dies, "Can not read record from syntax tree");
    EXPECT_EXIT(putStri(&a, std::string_view()), dies, "Can not write record into syntax tree");
    EXPECT_EXIT(putStri(nullptr, "x"), dies, "Can not write record into syntax tree");
}

} // namespace
} // namespace orvo
