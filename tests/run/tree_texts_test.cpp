#include <gtest/gtest.h>

#include "support/run.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

TEST(TreeTexts, ReferencesParametersAndFieldsReadAsWritten) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS IMPLICIT TAGS ::= BEGIN\n"
                           "IMPORTS X FROM N;\n"
                           "I ::= INTEGER { one(1), two(2) } (0..5 | 7, ...)\n"
                           "P {INTEGER : n, Type} ::= SEQUENCE { f Type, g INTEGER (1..n) }\n"
                           "U ::= P {5, BOOLEAN}\n"
                           "C ::= CLASS { &id INTEGER UNIQUE, &Type, &val &Type OPTIONAL }\n"
                           "      WITH SYNTAX { &Type ID &id [VALUE &val] }\n"
                           "Os C ::= { { BOOLEAN ID 1 } | { INTEGER ID 2 VALUE 7 }, ... }\n"
                           "S ::= SEQUENCE { id C.&id ({Os}), v C.&Type ({Os}{@id}),\n"
                           "                 l SEQUENCE SIZE (1..MAX) OF I OPTIONAL, x X }\n"
                           "O ::= TYPE-IDENTIFIER.&Type\n"
                           "END\n"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN\nX ::= [1] OCTET STRING (SIZE (4))\nEND\n"}});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.types(), "I P U C Os S O");
    EXPECT_EQ(tree.named("I"), "one(1) two(2)");
    EXPECT_EQ(tree.constraint("I"), "(0..5 | 7, ...)");
    EXPECT_EQ(tree.kind("U"), "P {5, BOOLEAN}");
    EXPECT_EQ(tree.components("U"), "f g");
    EXPECT_EQ(tree.actualKind("U.f"), "BOOLEAN");
    EXPECT_EQ(tree.constraint("U.g"), "(1..n)");
    EXPECT_EQ(tree.components("C"), "id Type val");
    EXPECT_EQ(tree.kind("C.val"), "&Type");
    EXPECT_EQ(tree.constraint("Os"), "({Type BOOLEAN, id 1} | {Type INTEGER, id 2, val 7}, ...)");
    EXPECT_EQ(tree.kind("S.id"), "C.&id");
    EXPECT_EQ(tree.actualKind("S.id"), "INTEGER");
    EXPECT_EQ(tree.constraint("S.v"), "({Os} {@id})");
    EXPECT_EQ(tree.constraint("S.l"), "(SIZE (1..MAX))");
    EXPECT_EQ(tree.presence("S.l"), "OPTIONAL");
    EXPECT_EQ(tree.kind("S.x"), "N.X");
    EXPECT_EQ(tree.constraint("S.x"), "");
    EXPECT_EQ(tree.finalTags("S.x"), "[1] [UNIVERSAL 4]");
    EXPECT_EQ(tree.kind("O"), "TYPE-IDENTIFIER.&Type");
    EXPECT_EQ(tree.actualKind("O"), "Open type");
}

/// The component stands in a module that M names nowhere: its number must not be made up after the
/// module nodes were written.
TEST(TreeTexts, StepsThroughComponentsOfAThirdModuleKeepTheirNames) {
    const RunResult run = compile(
        {{"aa.asn", "AA DEFINITIONS ::= BEGIN\n"
                    "IMPORTS T2 FROM BB Os, CL FROM DD;\n"
                    "T ::= SEQUENCE { COMPONENTS OF T2, v CL.&Type ({Os}{@id}),\n"
                    "                 i INTEGER, w ANY DEFINED BY i }\n"
                    "END\n"},
         {"bb.asn", "BB DEFINITIONS ::= BEGIN\nIMPORTS T3 FROM CC;\n"
                    "T2 ::= SEQUENCE { COMPONENTS OF T3 }\nEND\n"},
         {"cc.asn", "CC DEFINITIONS ::= BEGIN\nIMPORTS Os, CL FROM DD;\n"
                    "T3 ::= SEQUENCE { id CL.&id ({Os}) }\nEND\n"},
         {"dd.asn", "DD DEFINITIONS ::= BEGIN\n"
                    "CL ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { &Type ID &id }\n"
                    "Os CL ::= { { BOOLEAN ID 1 } }\nEND\n"}});
    ASSERT_EQ(run.status, 0) << run.diagnostics("aa");
    const TreeFacts tree(run, "aa");
    EXPECT_EQ(tree.components("T"), "COMPONENTS-OF v i w");
    EXPECT_EQ(tree.constraint("T.v"), "({DD.Os} {@id})");
    EXPECT_EQ(tree.kind("T.w"), "ANY DEFINED BY i");
}

} // namespace
} // namespace orvo::test
