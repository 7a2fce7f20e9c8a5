#include "support/pass1.h"

namespace orvo {
namespace {

class Types : public Pass1Test {};

struct TypeCase {
    const char* type;
    const char* shape;
    const char* header = "";
};

TEST_F(Types, EveryFormGivesItsRecords) {
    constexpr TypeCase cases[] = {
        {"BOOLEAN", "BOOLEAN"},
        {"REAL", "REAL"},
        {"NULL", "NULL"},
        {"OCTET STRING", "OCTSTR"},
        {"OBJECT IDENTIFIER", "OBJID"},
        {"EMBEDDED PDV", "EMB_PDV"},
        {"CHARACTER STRING", "CHASTR"},
        {"EXTERNAL", "EXTERNAL"},
        {"VisibleString", "VISSTR"},
        {"ISO646String", "VISSTR"},
        {"T61String", "TELSTR"},
        {"UTCTime", "UTCTIME"},
        {"GeneralizedTime", "GENTIME"},
        {"ObjectDescriptor", "OBJDESCR"},
        {"TYPE-IDENTIFIER", "TYPE_ID"},
        {"ANY", "ANY"},
        {"SEQUENCE OF INTEGER", "SEQOF(INTEGER)"},
        {"SET OF a < Ch", "SETOF(SELECTION(a < SYNONYM(Ch)))"},
        {"SEQUENCE { a ANY DEFINED BY b, b INTEGER }", "SEQ{a ANY(b), b INTEGER}"},
        {"INSTANCE OF My-Class", "INSTANCE_OF(SYNONYM(My_Class))"},
        {"CHOICE { a NULL }", "CHOICE{a NULL}"},
        {"INTEGER (0..5) (1 | 2)", "INTEGER :: ( 0 .. 5 ) ( 1 | 2 )"},
        {"INTEGER (x < .. < y)", "INTEGER :: ( x < .. < y )"},
        {"SEQUENCE SIZE (1..10) OF INTEGER (0..9)",
         "SEQOF(INTEGER :: ( 0 .. 9 )) :: SIZE ( 1 .. 10 )"},
        {"SET (SIZE (1)) OF NULL", "SETOF(NULL) :: ( SIZE ( 1 ) )"},
        {"SEQUENCE (CONSTRAINED BY { BOOLEAN : TRUE }) OF NULL",
         "SEQOF(NULL) :: ( CONSTRAINED BY { #(BOOLEAN) : TRUE } )"},
        {"Other {5, INTEGER}", "SYNONYM(Other<{ 5 , #(INTEGER) }>)"},
        {"CL.&Type", "FIELDLIST(SYNONYM(CL).&Type)"},
        {"CL.&obj.&id", "FIELDLIST(SYNONYM(CL).&obj.&id)"},
        {"obj.&Type", "FIELDLIST(object obj.&Type)"},
        {"ABSTRACT-SYNTAX.&Type", "FIELDLIST(ABSTR_STX.&Type)"},
        {"CHARACTER STRING.&a", "FIELDLIST(CHASTR.&a)"},
        {"N.Other", "SYNONYM(M2.Other)"},
        {"N.CL.&id ({N.Set}{@a})",
         "FIELDLIST(SYNONYM(M2.CL).&id) :: ( { #(SYNONYM(M2.Set)) } { @ a } )"}};
    for (const TypeCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

TEST_F(Types, ModeOfATagFollowsTheDefaultAndTheTaggedType) {
    constexpr TypeCase cases[] = {
        {"[5] T2", "[C5/?] SYNONYM(T2)", "AUTOMATIC TAGS"},
        {"[5] INTEGER", "[C5/i] INTEGER", "AUTOMATIC TAGS"},
        {"[5] CHOICE { a NULL }", "[C5/e] CHOICE{a NULL}", "AUTOMATIC TAGS"},
        {"[5] ANY", "[C5/e] ANY", "IMPLICIT TAGS"},
        {"[5] [6] T2", "[C5/i] [C6/?] SYNONYM(T2)", "IMPLICIT TAGS"},
        {"[5] [6] T2", "[C5/e] [C6/e] SYNONYM(T2)"},
        {"[5] a < T2", "[C5/?] SELECTION(a < SYNONYM(T2))", "IMPLICIT TAGS"},
        {"[APPLICATION 1] IMPLICIT T2", "[A1/i] SYNONYM(T2)"},
        {"[UNIVERSAL 0] EXPLICIT NULL", "[U0/e] NULL", "IMPLICIT TAGS"},
        {"[PRIVATE v] NULL", "[P@v/e] NULL"},
        {"[N.v] NULL", "[C@M2.v/e] NULL"}};
    for (const TypeCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type, row.header), row.shape);
    }
}

TEST_F(Types, TagNumberOutOfRangeIsReplacedByOneThatNoTagHas) {
    constexpr TypeCase cases[] = {{"[2097151] NULL", "[C2097151/e] NULL"},
                                  {"[2097152] NULL", "[C2097152/e] NULL"},
                                  {"[3000000] NULL", "[C2097152/e] NULL"},
                                  {"[4294967296] NULL", "[C2097152/e] NULL"},
                                  {"[-5] NULL", "[C2097152/e] NULL"}};
    for (const TypeCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

TEST_F(Types, ExternalTakesTheFormOfTheStandardInForce) {
    parseSource("--$STANDARD-VERSION=1990\nM DEFINITIONS ::= BEGIN T ::= EXTERNAL END");
    EXPECT_EQ(typeAt(head("T")).typeCode, TYP_EXTERNAL_1990);
    parseBody("T ::= EXTERNAL");
    EXPECT_EQ(typeAt(head("T")).typeCode, TYP_EXTERNAL_1994);
}

TEST_F(Types, FirstComponentIsTheNextNodeAlsoBehindTypesInAConstraint) {
    parseBody("T ::= SEQUENCE (CONSTRAINED BY { NULL : NULL, REAL : 0 }) OF INTEGER");
    const TNode list = typeAt(head("T"));
    EXPECT_EQ(typeAt(TNodeNr{list.ref}).typeCode, TYP_INTEGER);
    EXPECT_EQ(typeAt(TNodeNr{list.ref}).compStatus, TCS_MULTIPLE);
}

TEST_F(Types, ReferencesWithinOneModuleSayWhoseNodesTheyAre) {
    for (const char* type : {"a < Ch", "INSTANCE OF CL", "CL.&id"}) {
        SCOPED_TRACE(type);
        parseBody(std::string("T ::= ") + type);
        EXPECT_EQ(typeAt(head("T")).refMod, REF_OWN);
    }
}

TEST_F(Types, ValueAsATypeIsReportedAndStaysUnresolved) {
    parseBody("T ::= SEQUENCE { a\n  v }");
    EXPECT_EQ(errors(), "3: Defined type syntax\n");
    const TNode component = typeAt(TNodeNr{typeAt(head("T")).ref});
    EXPECT_EQ(component.typeCode, TYP_SYNONYM);
    EXPECT_EQ(component.ref, 0U);
}

TEST_F(Types, WhatStandsBehindATypeIsChecked) {
    constexpr TypeCase cases[] = {
        {"INTEGER | NULL", "2: | is not allowed after:\n"},
        {"SEQUENCE { a INTEGER BOOLEAN }", "2: BOOLEAN is not allowed after:\n"},
        {"[5] ,", "2: , is not allowed after:\n"},
        {"SEQUENCE NULL", "2: NULL is not allowed after:\n"},
        {"SEQUENCE SIZE OF NULL", "2: ( is expected after:\n"},
        {"CHOICE NULL", "2: { is expected after:\n"},
        {"BIT NULL", "2: STRING is expected after:\n"},
        {"M2.", "3: END is not allowed after:\n"},
        {"T2 {", "4: } is expected after:\n"},
        {"CL.&id.x", "2: valueid is not allowed after:\n3: END is not allowed after:\n"}};
    for (const TypeCase& row : cases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(typeOf(row.type), row.shape);
    }
}

} // namespace
} // namespace orvo
