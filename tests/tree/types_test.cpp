#include "tree/types.h"

#include <gtest/gtest.h>

#include "support/store.h"
#include "tree/values.h"

namespace orvo {
namespace {

using Construction = StoreTest;

TEST_F(Construction, OptionsSetTheDefaultsOfATypeByItsCode) {
    a.options.intSize = 2;
    a.options.realSize = 12;
    a.options.listSize = 3;
    a.options.compMaskSize = 4;
    a.options.choiceSize = 5;
    a.options.nearPtr = a.options.plmBoole = true;
    constexpr struct {
        uint8_t code, sizeOpt;
        uint32_t optFlags;
    } cases[] = {
        {TYP_BOOLEAN, 0, OPTF_NEAR | OPTF_PLMBOOLE},
        {TYP_INTEGER, 2, OPTF_NEAR},
        {TYP_ENUM, 2, OPTF_NEAR},
        {TYP_REAL, 12, OPTF_NEAR},
        {TYP_BITSTR, 3, OPTF_NEAR},
        {TYP_SEQOF, 3, OPTF_NEAR},
        {TYP_NUMSTR, 3, OPTF_NEAR},
        {TYP_CHASTR, 3, OPTF_NEAR},
        {TYP_GENTIME, 0, OPTF_NEAR},
        {TYP_OBJDESCR, 3, OPTF_NEAR},
        {TYP_SEQ, 4, OPTF_NEAR | OPTF_EXTENSIONS},
        {TYP_CLASS, 4, OPTF_NEAR},
        {TYP_CHOICE, 5, OPTF_NEAR | OPTF_EXTENSIONS},
        {TYP_OBJID, 0, OPTF_NEAR},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(typeArr[row.code].name);
        addTypeArc(nullptr, 1);
        setTypeNode(row.code);
        EXPECT_EQ(tNode.sizeOpt, row.sizeOpt);
        EXPECT_EQ(tNode.optFlags, row.optFlags);
    }
    a.options.extensions = 0;
    addTypeHeadArc(1, 0, 1); // NEAR= does not concern assignments
    setTypeNode(TYP_SET);
    EXPECT_EQ(tNode.optFlags, 0U);
}

TEST_F(Construction, AnOperatorTakesOverTheNumberOfItsOperand) {
    for (uint32_t nr = 1; nr <= 8; ++nr) {
        addSubArc(1, TNodeNr{nr * 10}, nr);
        subRec.subKind = SUB_SINGLE_VALUE;
    }
    EXPECT_EQ(addAndSwap(SubNr{5}, SUB_UNION).nr, 9U);
    EXPECT_EQ(subRec.subKind, SUB_SINGLE_VALUE);
    EXPECT_EQ(currentRec<KIND_SUB>().nr.nr, 9U);
    readRec(&a, SubNr{5});
    EXPECT_EQ(subRec.subKind, SUB_UNION);
    EXPECT_EQ(subRec.left, 9U);
    EXPECT_EQ(subRec.typeNr, 50U);
    EXPECT_EQ(subRec.typeMod, 1U);
    EXPECT_EQ(subRec.line, 5U);
    readRec(&a, SubNr{9});
    EXPECT_EQ(subRec.typeNr, 50U);
    EXPECT_EQ(addAndSwap(SubNr{9}, SUB_EXCEPT).nr, 10U); // an operand not pending any more
    readRec(&a, SubNr{8});
    EXPECT_EQ(subRec.line, 8U);
}

} // namespace
} // namespace orvo
