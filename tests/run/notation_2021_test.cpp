// Notation of X.680 to X.683 (02/2021): by clause a legal module, what its tree holds, and the
// nearest illegal one with its message.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(Notation2021, WordsCommentsAndNumbers) {
    // 12.1, 12.6: byte order mark, NO-BREAK SPACE, nested comments in which `--` means nothing.
    const RunResult run = compile(
        {{"m.asn", "\xEF\xBB\xBFM DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                   "/* a -- b /* \"c */ \xFF */ T\xC2\xA0::= UTF8String -- ends here\vU ::= T\n"
                   "s UTF8String ::= \"\xC3\xA9  \n  x\" b BIT STRING ::= '01\n10'B\n"
                   "r REAL ::= 3.14E-2 q REAL ::= -2.50 n INTEGER ::= 99999999999999999999\n"
                   "w REAL ::= NOT-A-NUMBER i INTEGER (1..5) ::= 3\nEND\n"}},
        edition);
    EXPECT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.types(), "T U");
    EXPECT_EQ(tree.finalTags("T"), "[UNIVERSAL 12]");
    EXPECT_EQ(tree.value("s").node().valCode, 42);
    // The line end with its white space is none of the characters (12.14.1).
    EXPECT_EQ(tree.valueText("s"), "\"\\u00e9x\"");
    // A comment that is not closed hides the rest (12.6.4).
    EXPECT_EQ(compileBody("T ::= NULL\n/* /* */\nU ::= 5", edition).diagnostics("m"),
              listed(3, "L Invalid end character in: /*"));
    expectRows(R"(
v IA5String ::= "é" --! Character that the type does not have ; IA5String value syntax
v REAL ::= 1.0E40000 --! Mantissa beyond 64 bits or exponent beyond 16 bits: 1.0E40000
)",
               {edition});
}

TEST(Notation2021, ModuleHeadersAndSymbolLists) {
    const std::vector<SourceFile> others = {
        {"n.asn", "N { iso 1 3 } DEFINITIONS ::= BEGIN Q ::= NULL P {A} ::= A END\n"},
        {"o.asn", "O DEFINITIONS ::= BEGIN EXPORTS X; IMPORTS X FROM R; END\n"},
        {"r.asn", "R DEFINITIONS ::= BEGIN X ::= BOOLEAN END\n"}};
    std::vector<SourceFile> files = others;
    files.insert(
        files.begin(),
        {"m.asn", R"(M { iso 1 2 } "/ISO/a" DEFINITIONS XER INSTRUCTIONS AUTOMATIC TAGS ::= BEGIN
EXPORTS ALL;
IMPORTS P{}, Q FROM N { iso 1 3 } WITH DESCENDANTS X FROM O;
T ::= [NAME AS "x"] SEQUENCE { a [TAG: 7] INTEGER, b [PER: x [[ y ]] ] Q, c P {NULL}, d X }
ENCODING-CONTROL XER GLOBAL-DEFAULTS MODIFIED-ENCODINGS { # }
END)"});
    const RunResult run = compile(files, edition);
    EXPECT_EQ(run.diagnostics("m"), listed(4, "W Encoding instructions passed over"));
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.kind("T.d"), "R.X"); // the definition, not the module that hands it on
    EXPECT_EQ(tree.finalTags("T.a"), "[7]");
    expectRows(R"(
IMPORTS Q FROM N WITH SUCCESSORS; T ::= Q --! WITH SUCCESSORS and WITH DESCENDANTS need an object identifier: SUCCESSORS
T ::= [ABC: x] NULL --! Unknown encoding reference: ABC ; W Encoding instructions passed over
)",
               {.options = edition, .others = others});
    EXPECT_EQ(
        compile({{"m.asn", "M { 1 2 3 } \"ISO\" DEFINITIONS\nFOO INSTRUCTIONS ::= BEGIN END"}},
                edition)
            .diagnostics("m"),
        listed({{1, "Invalid OID-IRI value"}, {2, "Unknown encoding reference: FOO"}}));
}

TEST(Notation2021, MarkersRootsAndGroups) {
    Frame frame = {.options = edition, .defaults = "AUTOMATIC TAGS "};
    const TreeFacts tree(expectMarked(R"(
A ::= SEQUENCE { a INTEGER, ... ! 5, [[ 2: b NULL ]], [[ 3: c NULL, d BOOLEAN ]], ..., e NULL }
B ::= CHOICE { a NULL, ..., [[ 2: b INTEGER, c BOOLEAN ]], ... } E ::= SEQUENCE { ..., ... }
C ::= SEQUENCE { x INTEGER, COMPONENTS OF A, y NULL } D ::= ENUMERATED { a, b, ... ! INTEGER : 7, c }
F ::= SEQUENCE OF item INTEGER v F ::= { item 5, item 7 }
)",
                                      frame),
                         "m");
    // 25.3: the roots a, e are 0 and 1, the additions b, c, d follow.
    expectFacts("A.a: [0] ; A.e: [1] ; A.b: [2] ; A.d: [4] ; B.c: [2]",
                [&](const std::string& path) { return tree.finalTags(path); });
    EXPECT_EQ(tree.node("A").fieldSize, 6); // five components and 1 for the markers
    EXPECT_EQ(tree.node("C").fieldSize, 4); // x, a and e of both roots, y (25.5)
    EXPECT_EQ(tree.named("D"), "a(0) b(1) ... c(2)");
    EXPECT_EQ(tree.node("F").typeCode, 8);
    expectRows(R"(
T ::= SEQUENCE { ..., ..., a NULL, ... } --! Duplicate extension marker in a component list.
T ::= CHOICE { a NULL, ..., ..., b NULL } --! Duplicate extension marker in a component list.
T ::= SEQUENCE { a NULL, ..., [[ 3: b NULL ]], [[ 2: c NULL ]] } --! Version number of a group below 2 or not ascending
T ::= SEQUENCE { a NULL, ..., [[ 2: b NULL ]], [[ c NULL ]] } --! W Groups with and without version number
T ::= SEQUENCE { a NULL, ..., b [5] NULL } --! Tag in an addition of an automatically tagged list: b
)",
               frame);
    frame.options = lenient;
    expectRows("T ::= SEQUENCE { a NULL, ..., b [5] NULL } --! "
               "W Tag in an addition of an automatically tagged list: b",
               frame);
}

TEST(Notation2021, MacrosAreReadOver) {
    const RunResult run = compile(
        {{"m.asn",
          "M DEFINITIONS ::= BEGIN IMPORTS OPERATION, OBJECT-TYPE, far, sized, Plain{}, OCTET "
          "STRING FROM N TEXTUAL-CONVENTION FROM P;\n"
          "OBJECT-IDENTITY MACRO ::=\nBEGIN TYPE NOTATION ::= \"SYNTAX\" # END\n"
          "id OBJECT-IDENTITY STATUS current ::= { 1 3 6 }\n"
          "sysDescr OBJECT-TYPE SYNTAX NULL ACCESS read-only ::= { id 1 }\n"
          "a OPERATION ARGUMENT NULL ::= localValue 5\n"
          "b OPERATION ::= -7\n"
          "c OPERATION ::= { id 2 } k OPERATION ::= localValue 8\n"
          "d OPERATION ::= e e OPERATION ARGUMENT NULL ::= far\n"
          "f OPERATION ::= N.sized g INTEGER ::= d localValue INTEGER ::= 9\n"
          "h OPERATION ::= TRUE\n"
          "i Number ::= localValue j OPERATION ARGUMENT NULL ::= \"text\"\n"
          "DisplayString ::= TEXTUAL-CONVENTION DISPLAY-HINT \"255a\" STATUS "
          "current SYNTAX OCTET STRING (SIZE (0..255))\n"
          "Number ::= INTEGER (0..9)\nEND\n"},
         {"p.asn", "P DEFINITIONS ::= BEGIN IMPORTS TEXTUAL-CONVENTION FROM N; END\n"},
         {"n.asn", "N DEFINITIONS ::= BEGIN OPERATION MACRO ::= BEGIN END OBJECT-TYPE MACRO ::= "
                   "BEGIN END TEXTUAL-CONVENTION MACRO ::= BEGIN END\n"
                   "far OPERATION ::= 6 sized Sized ::= 3 Sized ::= INTEGER (0..7) Plain ::= NULL "
                   "END\n"}},
        lenient);
    const std::string use = "W Definition by a macro: what is read of it is its value or type: ";
    EXPECT_EQ(run.diagnostics("m"),
              listed({{1, "W Reserved word in symbol list: OCTET STRING"},
                      {1, "W Braces behind an imported name without parameters: Plain"},
                      {2, "W Macro definition passed over: OBJECT_IDENTITY"},
                      {5, use + "OBJECT_TYPE"},
                      {6, use + "OPERATION"},
                      {11, "W Value of a macro left out: h"},
                      {12, "W Value of a macro left out: j"},
                      {13, use + "TEXTUAL_CONVENTION"}}));
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.values(), "id sysDescr a b c k d e f g localValue i");
    EXPECT_EQ(tree.constraint("DisplayString"), "(SIZE (0..255))");
    expectFacts(tree, "valueText a: 5 ; valueText b: -7 ; valueText k: 8");

    // Types that a macro makes without SYNTAX are none; values of them are those of the macro.
    expectRows(R"(
T ::= NULL v T "a" ::= 5 --! Macro expected: T
X MACRO ::= BEGIN END a X ::= b b X ::= a --! W Macro definition passed over: X ; Invalid recursion in definition of value: b ; Invalid recursion in definition of value: a
)",
               {edition});
    expectMarked(R"(
X MACRO ::= BEGIN END S ::= X SYNTAX NULL E ::= X --! W Macro definition passed over: X ; W Type of a macro left out: E
T ::= X ARGUMENT a S RESULT b INTEGER o OBJECT IDENTIFIER ::= { 1 2 } t T ::= localValue 5 --! W Type of a macro left out: T
u E ::= { a 1, b 2 } v X ::= x : 5 w X ::= {} y INTEGER ::= t --! W Value of a macro left out: v ; W Value of a macro left out: u ; W Value of a macro left out: w
)",
                 {edition});
    const RunResult types = compile(
        {{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS OPERATION, Q FROM N;\nE ::= OPERATION\nT ::= "
                   "OPERATION RESULT ERRORS { e }\ne E ::= 5\nq Q ::= e S ::= INTEGER (e) END\n"},
         {"n.asn", "N DEFINITIONS ::= BEGIN EXPORTS OPERATION, Q; Q ::= OPERATION OPERATION MACRO "
                   "::= BEGIN END END\n"}},
        edition);
    EXPECT_EQ(types.diagnostics("m"), listed({{2, "W Type of a macro left out: E"},
                                              {2, use + "OPERATION"},
                                              {3, "W Type of a macro left out: T"},
                                              {5, use + "Q"}}));
    EXPECT_EQ(TreeFacts(types, "m").types(), "S");
    EXPECT_EQ(TreeFacts(types, "m").values(), "e q");
    // A macro is no type, and what was left out no value.
    for (const char* body :
         {"X MACRO ::= BEGIN END T ::= SET OF X",
          "X MACRO ::= BEGIN END a X ::= TRUE b INTEGER ::= a", "v X \"a\" ::= 5"})
        EXPECT_EQ(compileBody(body, edition).status, 1) << body;
}

TEST(Notation2021, SetsContentsAndRelations) {
    const Frame frame = {.options = edition, .defaults = "AUTOMATIC TAGS "};
    const TreeFacts tree(expectMarked(R"(
A ::= INTEGER (1 | 2 ^ 3 | 4 EXCEPT 5, ..., 7) C ::= VisibleString (PATTERN "[a-z]*")
B ::= OCTET STRING (SIZE (1..9)) (CONTAINING A ENCODED BY { 2 1 1 })
K ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { &Type ID &id } S K ::= { { BOOLEAN ID 1 }, ... }
E ::= SEQUENCE { id K.&id ({S}), in SEQUENCE { v OCTET STRING (CONTAINING K.&Type ({S}{@id})),
  w K.&Type ({S}{@..id}) } } F ::= REAL (WITH COMPONENTS { ..., base (10) })
)",
                                      frame),
                         "m");
    expectFacts(R"(
B: (SIZE (1..9))(CONTAINING A ENCODED BY {2 1 1}) ; C: (PATTERN "[a-z]*") ; E.in.w: ({S} {@..id})
)",
                [&](const std::string& path) { return tree.constraint(path); });
    expectRows("A ::= INTEGER (1 | 2 EXCEPT 3 EXCEPT 4) --! A second EXCEPT needs parentheses ; "
               "Invalid constraint",
               frame);
}

TEST(Notation2021, FaultsOfPublishedModulesAreWarnings) {
    const std::vector<SourceFile> files = {
        {"m.asn",
         "M DEFINITIONS ::= BEGIN\nIMPORTS A, A, BIT FROM N\nB, Hid FROM N;\n"
         "T ::= [UNIVERSAL 5] A\nU_x ::= B\nv INTEGER ::= 5\nW ::= P {S} X ::= P {{}}\n"
         "K ::= CLASS { &id INTEGER UNIQUE } S K ::= { { &id 1 } }\n"
         "P {K:Set} ::= SEQUENCE { i K.&id ({Set}) }\nQ ::= SEQUENCE OF n INTEGER q Q ::= "
         "{ 5 }\nY ::= Hid\no OBJECT IDENTIFIER ::= { 1 2 } p OBJECT IDENTIFIER ::= { o }\n"
         "r OBJECT IDENTIFIER ::= { o } s IA5String (\"a\"..\"c\") ::= \"b\"\nEND\n"},
        {"n.asn",
         "N DEFINITIONS ::= BEGIN\nEXPORTS A, B;\nA ::= NULL B ::= NULL Hid ::= NULL END\n"}};
    EXPECT_EQ(compile(files, lenient).diagnostics("m"),
              listed({{2, "W Symbol listed twice: A"},
                      {2, "W Reserved word in symbol list: BIT"},
                      {3, "W Module is named by two FROM clauses: N"},
                      {3, "W Imported symbol is not exported: Hid"},
                      {4, "W Tag class UNIVERSAL: T"},
                      {5, "W Underscore in name: U_x"},
                      {7, "W A set as actual parameter has no braces: S"},
                      {7, "W A set as actual parameter has no elements: Set"},
                      {10, "W Value without the name of the element: n"},
                      {12, "W An object identifier stands alone in braces: o"},
                      {13, "W Value range on a character string type outside FROM"}}));
    EXPECT_NE(compile(files, edition).status, 0);
}

/// A module of an older edition reads as ever, beside one of today and in front of its own header.
TEST(Notation2021, HoldsForTheModulesThatAskForIt) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nIMPORTS U FROM N;\n"
                           "T ::= SEQUENCE { u U, p PATTERN }\nPATTERN ::= NULL\nEND\n"},
                 {"n.asn", "--$STANDARD-VERSION=2021--\nN DEFINITIONS ::= BEGIN "
                           "U ::= UTF8String /* */ END\n"}});
    EXPECT_EQ(run.diagnostics("m"), "");
    EXPECT_EQ(run.diagnostics("n"), "");
    EXPECT_EQ(TreeFacts(run, "m").finalTags("T.u"), "[0]");
}

} // namespace
} // namespace orvo::test
