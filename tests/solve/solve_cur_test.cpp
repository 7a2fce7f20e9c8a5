// The replay cursor, the delimiting of values, and what trial parses take back.

#include "solve/solve_cur.h"

#include <vector>

#include "support/store.h"
#include "symtab/orvosym_imp.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

using Codes = std::vector<int32_t>;

/// A range of tokens of these codes.
DNode rangeOf(const Codes& codes) {
    DNode range = {};
    for (const int32_t code : codes) {
        const TokNr token = newToken();
        tokenAt(token).code = code;
        (range.first == 0 ? range.first : tokenAt(TokNr{range.last}).next) = token.nr;
        range.last = token.nr;
    }
    range.count = static_cast<uint16_t>(codes.size());
    return range;
}

class DeferValue : public StoreTest {
  protected:
    ~DeferValue() override { resetTokens(); }
};

constexpr int32_t ID = TOK_VALUEID, NR = TOK_NUMBER, OPEN = TOK_LBRACE, CLOSE = TOK_RBRACE;

const struct {
    const char* text;
    Codes codes;
    uint16_t count; // of the value; 0 = none is delimited
    Msg cause;
} valueCases[] = {
    {"5 }", {NR, CLOSE}, 1, Msg::None},
    {"- 5", {TOK_MINUS, NR}, 2, Msg::None},
    {"- x", {TOK_MINUS, ID}, 0, tokenExpected(TOK_NUMBER)},
    {"-", {TOK_MINUS}, 0, tokenExpected(TOK_NUMBER)},
    {"{ {1}, {2} } ,",
     {OPEN, OPEN, NR, CLOSE, TOK_COMMA, OPEN, NR, CLOSE, CLOSE, TOK_COMMA},
     9,
     Msg::None},
    {"{ { }", {OPEN, OPEN, CLOSE}, 0, Msg::None},
    {"id : { 1 } )", {ID, TOK_COLON, OPEN, NR, CLOSE, TOK_RPAREN}, 5, Msg::None},
    {"a : b : TRUE", {ID, TOK_COLON, ID, TOK_COLON, TOK_TRUE}, 5, Msg::None},
    {"Type : 5", {TOK_MARKER, TOK_COLON, NR}, 3, Msg::None},
    {"a :", {ID, TOK_COLON}, 0, Msg::None},
    {"a", {ID}, 1, Msg::None},
    {"M.a", {TOK_MODULEID, TOK_DOT, ID}, 3, Msg::None},
    {"M", {TOK_MODULEID}, 0, Msg::None},
    {"a {5} .&b.&C |",
     {ID, OPEN, NR, CLOSE, TOK_DOT, TOK_VALUEFIELDID, TOK_DOT, TOK_TYPEFIELDID, TOK_BAR},
     8,
     Msg::None},
    {"a.&b.c", {ID, TOK_DOT, TOK_VALUEFIELDID, TOK_DOT, ID}, 0, Msg::FieldNameExpected},
    {"a.", {ID, TOK_DOT}, 0, Msg::FieldNameExpected},
    {"Type", {TOK_TYPEID}, 0, Msg::None},
};

TEST_F(DeferValue, EndsOnTheLastTokenOfTheValue) {
    for (const auto& row : valueCases) {
        SCOPED_TRACE(row.text);
        inp = rangeOf(row.codes);
        inp.formals = 77;
        const uint32_t first = inp.first;
        const DNodeNr number = nextRec<KIND_DNODE>(&a);
        Cause cause;
        EXPECT_EQ(deferValue(cause), row.count != 0);
        EXPECT_EQ(cause.code, row.cause);
        if (row.count == 0) {
            EXPECT_EQ(nextRec<KIND_DNODE>(&a), number);
            continue;
        }
        const DNode value = cursorOf(&a, number);
        EXPECT_EQ(value.count, row.count);
        EXPECT_EQ(value.formals, 77U);
        EXPECT_EQ(value.first, first);
        EXPECT_EQ(value.last, inp.first);
        for (int i = 1; i < row.count; ++i) advance();
    }
}

// ---- trials

class SnapShots : public StoreTest {
  protected:
    void newValues(ModuleRec* module, int count) {
        const CurrentModule inModule(module);
        for (; count != 0; --count) addValArc(nullptr, 1);
    }
    static uint32_t values(const ModuleRec& module) { return module.nextRecNr[KIND_VNODE]; }
};

TEST_F(SnapShots, TakeBackEveryModuleThatWasTouched) {
    newValues(&a, 2);
    newValues(&b, 3);
    putStri(&a, "kept");
    {
        SnapShot trial(VNodeRef{&a, VNodeNr{1}});
        newValues(&a, 1);
        newValues(&b, 1);
        putStri(&a, "gone");
        putStri16(&b, u"gone");
        EXPECT_EQ(handleImplImports(&b, &a), 1U);
        addTypeArc(nullptr, 1);
    }
    EXPECT_EQ(values(a), 3U);
    EXPECT_EQ(values(b), 4U);
    EXPECT_EQ(nextRec<KIND_TNODE>(&a).nr, 1U);
    EXPECT_EQ(nextRec<KIND_MNODE>(&b).nr, 1U);
    EXPECT_EQ(b.modRefs.modRefFirst, nullptr);
    EXPECT_EQ(findStri(&a, "gone").nr, 0U);
    EXPECT_EQ(putStri(&a, "other").nr, 2U);
    EXPECT_EQ(nextRec<KIND_STRI16>(&b).nr, 1U);
}

// A record that was there before the failing trial must not refer to numbers that are free again.
TEST_F(SnapShots, WhatWasMadeForAnOlderRecordStays) {
    const VNodeRef older{&b, VNodeNr{1}};
    newValues(&b, 1);
    newValues(&a, 1);
    {
        SnapShot outer(VNodeRef{&a, VNodeNr{1}});
        newValues(&a, 1);
        {
            SnapShot middle(VNodeRef{&a, VNodeNr{2}});
            SnapShot inner(older);
            newValues(&b, 2);
            inner.keep();
            newValues(&b, 10);
        }
        EXPECT_EQ(values(b), 4U);
        newValues(&b, 10);
    }
    EXPECT_EQ(values(a), 2U);
    EXPECT_EQ(values(b), 4U);
    SnapShot next(VNodeRef{&a, VNodeNr{1}}); // and nothing of it binds later trials
    newValues(&b, 3);
    next.restore();
    EXPECT_EQ(values(b), 4U);
}

} // namespace
} // namespace orvo
