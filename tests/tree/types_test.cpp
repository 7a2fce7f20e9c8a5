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

} // namespace
} // namespace orvo
