#include "support/pass1.h"

namespace orvo {
namespace {

class Components : public Pass1Test {};

struct ListCase {
    const char* type;
    const char* shape;
    const char* header = "";
};

TEST_F(Components, ListsAreChainedInTheirOrder) {
    constexpr ListCase cases[] = {
        {"SEQUENCE { }", "SEQ{}"},
        {"SET { a INTEGER OPTIONAL, b NULL }", "SET{a? INTEGER, b NULL}"},
        {"SEQUENCE { a INTEGER DEFAULT 5, b B DEFAULT {x, y}, c C DEFAULT N.v }",
         "SEQ{a=5 INTEGER, b={ x , y } SYNONYM(B), c=M2 . v SYNONYM(C)}"},
        {"SEQUENCE { COMPONENTS OF B, a NULL }", "SEQ{COMPOF SYNONYM(B), a NULL}"},
        {"SEQUENCE { ... }", "SEQ{...}"},
        {"SEQUENCE { a NULL, ..., b NULL, ..., c NULL }", "SEQ{a NULL, ..., b NULL, ..., c NULL}"},
        {"SEQUENCE { a NULL, ..., [[ b NULL, c REAL OPTIONAL ]], d NULL }",
         "SEQ{a NULL, ..., [[b NULL, c? REAL]], d NULL}"},
        {"SEQUENCE { ..., [[ 2: a NULL DEFAULT NULL ]], [[ 3 b V DEFAULT v ]] }",
         "SEQ{..., [[a=NULL NULL]], [[b=v SYNONYM(V)]]}"},
        {"SEQUENCE { a < Ch, b c < Ch }",
         "SEQ{a SELECTION(a < SYNONYM(Ch)), b SELECTION(c < SYNONYM(Ch))}"},
        {"SEQUENCE { a SEQUENCE { b NULL }, c SET OF CHOICE { d NULL, e NULL }, f NULL }",
         "SEQ{a SEQ{b NULL}, c SETOF(CHOICE{d NULL, e NULL}), f NULL}"},
        {"CHOICE { a NULL, ..., b REAL }", "CHOICE{a NULL, ..., b REAL}"},
        {"CHOICE { a NULL, ..., [[ 4: b NULL, c NULL ]], d NULL, [[ e NULL ]] }",
         "CHOICE{a NULL, ..., b NULL, c NULL, d NULL, e NULL}"}};
    for (const ListCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

TEST_F(Components, ImpliedExtensibilityAddsAMarkerToListsWithoutOne) {
    constexpr ListCase cases[] = {
        {"SEQUENCE { }", "SEQ{...}"},
        {"SET { a NULL }", "SET{a NULL, ...}"},
        {"SEQUENCE { ..., a NULL }", "SEQ{..., a NULL}"},
        {"CHOICE { a CHOICE { b NULL } }", "CHOICE{a CHOICE{b NULL, ...}, ...}"},
        {"ENUMERATED { a, b(5) }", "ENUM{a, b=5, ...}"},
        {"ENUMERATED { a, ..., b }", "ENUM{a, ..., b}"}};
    for (const ListCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type, "EXTENSIBILITY IMPLIED"), row.shape);
    }
}

TEST_F(Components, StatusTellsTheRoleOfANode) {
    parseBody("T ::= SEQUENCE { COMPONENTS OF B, a A OPTIONAL, b B DEFAULT v, ..., [[ c C ]] }\n"
              "U ::= CHOICE { a A, ... }");
    const int32_t sequence[] = {TCS_COMPOF, TCS_OPTIONAL, TCS_OPTIONAL, 0, TCS_EXTADDGRP};
    TNode node = typeAt(TNodeNr{typeAt(head("T")).ref});
    for (const int32_t status : sequence) {
        EXPECT_EQ(node.compStatus, status);
        if (node.next != 0) node = typeAt(TNodeNr{node.next});
    }
    node = typeAt(TNodeNr{typeAt(head("U")).ref});
    EXPECT_EQ(node.compStatus, TCS_CHOICE);
    EXPECT_EQ(typeAt(TNodeNr{node.next}).compStatus, 0);
}

TEST_F(Components, MarkerWithoutACommaIsAcceptedWithAWarning) {
    for (const char* list : {"SEQUENCE { a INTEGER\n... }", "SET { a INTEGER OPTIONAL\n..., b B }",
                             "CHOICE { a INTEGER\n... , b B}"}) {
        SCOPED_TRACE(list);
        parseBody(std::string("T ::= ") + list);
        EXPECT_EQ(errors(), "3: A comma was expected before the extensionmarker\n");
        EXPECT_NE(describe(head("T")).find(", ..."), std::string::npos);
    }
}

TEST_F(Components, DefaultsAreChainedInTheModule) {
    parseBody("T ::= SEQUENCE { a INTEGER DEFAULT 1, b SEQUENCE { c NULL DEFAULT NULL } }");
    const VNode first = valueAt(module->firstDefVal);
    EXPECT_EQ(first.valStatus, VST_DEFAULT);
    EXPECT_EQ(first.govType, typeAt(head("T")).ref);
    EXPECT_EQ(VNodeNr{first.next}, module->lastDefVal);
}

TEST_F(Components, MistakesAreReportedWhereTheyStand) {
    constexpr ListCase cases[] = {
        {"SEQUENCE { a NULL, }", "2: } is not allowed after:\n"},
        {"SEQUENCE { NULL }", "2: NULL is not allowed after:\n"},
        {"SEQUENCE { a NULL, B }", "2: typeid is not allowed after:\n2: } is not allowed after:\n"},
        {"SEQUENCE { a NULL, ..., [[ ... ]] }",
         "2: valueid is expected after:\n2: } is expected after:\n"},
        {"SEQUENCE { a NULL, ..., [[ b NULL }", "2: is expected after:\n"},
        {"SEQUENCE { COMPONENTS B }", "2: OF is expected after:\n"},
        {"CHOICE { ... }", "2: valueid is expected after:\n"},
        {"CHOICE { a NULL OPTIONAL }", "2: } is expected after:\n"}};
    for (const ListCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

} // namespace
} // namespace orvo
