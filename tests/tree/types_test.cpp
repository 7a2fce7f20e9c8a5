#include "tree/types.h"

#include <gtest/gtest.h>

#include "support/store.h"
#include "tree/values.h"

namespace orvo {
namespace {

using Construction = StoreTest;

TEST_F(Construction, HeadsFormAChainInOrderOfEntry) {
    const TNodeNr first = addTypeHeadArc(3, 0, 10);
    EXPECT_EQ(a.firstTypeHead, first);
    EXPECT_EQ(a.lastTypeHead, first);
    const TNodeNr component = addTypeArc(nullptr, 11);
    const TNodeNr second = addTypeHeadArc(4, HEAD_EXPORTED | HEAD_PARAMETERIZED, 12);
    EXPECT_EQ(a.firstTypeHead, first);
    EXPECT_EQ(a.lastTypeHead, second);
    EXPECT_EQ(tNode.compStatus, TCS_HEADER);
    EXPECT_EQ(tNode.nodeFlags, NF_ASSIGNMENT);
    EXPECT_EQ(tNode.formals, second.nr + 1);
    readRec(&a, first);
    EXPECT_EQ(tNode.next, second.nr);
    EXPECT_EQ(tNode.name, 3);
    EXPECT_EQ(tNode.formals, 0U);
    EXPECT_EQ(tNode.typeCode, TYP_NONE);
    readRec(&a, component);
    EXPECT_EQ(tNode.line, 11U);
    EXPECT_EQ(tNode.lenForm, 255);
    EXPECT_EQ(tNode.skipOpt, 255);
}

TEST_F(Construction, ValuesHaveChainsOfTheirOwn) {
    const VNodeNr head = addValHeadArc(-3, HEAD_EXPORTED, TNodeNr{7}, 10);
    const VNodeNr def1 = addValDefArc(TNodeNr{8}, 11);
    const VNodeNr def2 = addValDefArc(TNodeNr{9}, 12);
    const VNodeNr head2 = addValHeadArc(-4, HEAD_PARAMETERIZED, TNodeNr{7}, 13);
    EXPECT_EQ(vNode.formals, 1U);
    readRec(&a, head);
    EXPECT_EQ(vNode.vflags, VF_ASSIGNMENT);
    EXPECT_EQ(vNode.next, head2.nr);
    EXPECT_EQ(vNode.valStatus, VST_HEADER);
    readRec(&a, def1);
    EXPECT_EQ(vNode.next, def2.nr);
    EXPECT_EQ(vNode.valStatus, VST_DEFAULT);
    EXPECT_EQ(vNode.govType, 8U);
    EXPECT_EQ(vNode.govTypeMod, 1U);
}

TEST_F(Construction, StructuresBeginWithTheRecordThatComesNext) {
    const TNodeNr type = addTypeArc(nullptr, 1);
    setTypeNode(TYP_SEQ);
    EXPECT_EQ(tNode.ref, type.nr + 1);
    const VNodeNr value = addValArc(nullptr, 1);
    EXPECT_EQ(vNode.valStatus, VST_PLAIN);
    setValNode(TYP_CHOICE);
    EXPECT_EQ(vNode.ref, value.nr + 1);
    setValNode(TYP_NULL);
    EXPECT_EQ(vNode.valCode, TYP_NULL);
}

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

TEST_F(Construction, TagsChainInOrder) {
    const TagNr outer = addTagRec({TAG_CONTEXT, TAGMODE_EXPLICIT, 1, 99});
    const TagNr inner = addTagRec({TAG_PRIVATE, TAGMODE_IMPLICIT, 2, 99});
    flushTagRec();
    const TagNr other = addTagRec({TAG_UNIVERSAL, TAGMODE_OPEN, 3, 0});
    flushTagRec();
    readRec(&a, outer);
    EXPECT_EQ(tagRec.next, inner.nr);
    EXPECT_EQ(tagRec.tagMode, TAGMODE_EXPLICIT);
    flushTagRec(); // nothing pending: the record in the buffer is left alone
    EXPECT_EQ(tagRec.next, inner.nr);
    readRec(&a, inner);
    EXPECT_EQ(tagRec.next, 0U);
    readRec(&a, other);
    EXPECT_EQ(tagRec.tagNr, 3);
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

TEST_F(Construction, RecordsOfAnInstanceBearItsMarks) {
    const InstContext instance{70, 4};
    addTypeArc(&instance, 1);
    EXPECT_EQ(tNode.line, 70U);
    EXPECT_EQ(tNode.actParRec, 4U);
    addValArc(&instance, 1);
    EXPECT_EQ(vNode.line, 70U);
    EXPECT_EQ(vNode.actParRec, 4U);
    instState.top = &instance;
    addSubArc(1, TNodeNr{1}, 2);
    EXPECT_EQ(subRec.line, 70U);
    addSyntaxArc(3);
    EXPECT_EQ(sNode.line, 70U);
    instState = {};
    addSyntaxArc(3);
    EXPECT_EQ(sNode.line, 3U);
}

} // namespace
} // namespace orvo
