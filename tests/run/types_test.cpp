#include <gtest/gtest.h>

#include "support/cases.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

struct Case {
    const char* body;
    std::vector<Finding> findings;
    std::vector<std::string> options = {};
};

void expectFindings(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(compileBody(row.body, row.options).diagnostics("m"), listed(row.findings));
    }
}

TEST(ComponentLists, HaveOneMarkerAndDistinctIdentifiers) {
    const std::string marker = "Duplicate extension marker in a component list.";
    const auto twice = [](const char* name) {
        return std::string("Non-distinct identifier: ") + name;
    };
    expectFindings({
        {"T ::= SEQUENCE { a NULL, ..., b NULL,\n ..., c NULL,\n ... }",
         {{3, marker}, {4, marker}}},
        {"T ::= CHOICE { a NULL, ..., b BOOLEAN, ... }", {{2, marker}}},
        {"T ::= SEQUENCE { a SEQUENCE { b NULL, ... }, COMPONENTS OF U, ... }\n"
         "U ::= SEQUENCE { c NULL, ..., d NULL }",
         {}},
        {"T ::= SEQUENCE { a NULL,\n a BOOLEAN,\n a REAL, [[ b NULL,\n a INTEGER ]] }",
         {{3, twice("a")}, {4, twice("a")}, {5, twice("a")}}},
        {"T ::= SEQUENCE {\n COMPONENTS OF U, a NULL,\n COMPONENTS OF U }\n"
         "U ::= SEQUENCE { a NULL, ..., b NULL }",
         {{3, twice("a")}, {4, twice("a")}}},
        {"T ::= SEQUENCE { COMPONENTS OF U, b NULL, c SEQUENCE { a NULL, b NULL } }\n"
         "U ::= SEQUENCE { a NULL, ..., b NULL }",
         {}},
        {"T ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF T, c NULL OPTIONAL } OPTIONAL }", {}},
        {"T ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF T,\n a BOOLEAN } OPTIONAL,\n"
         " d SET OF SEQUENCE { b BOOLEAN,\n COMPONENTS OF T }, ..., e BOOLEAN }",
         {{3, twice("a")}, {5, twice("b")}}},
        {"T ::= SEQUENCE { COMPONENTS OF U, x NULL }\n"
         "U ::= SEQUENCE { y SEQUENCE { x BOOLEAN,\n COMPONENTS OF V, z REAL } OPTIONAL }\nV ::= T",
         {{4, twice("x")}}},
        {"T ::= SET { a [0] NULL,\n b [1] SET { c [0] NULL, COMPONENTS OF T } OPTIONAL }",
         {{3, "Non-distinct tag: [0]"}}},
        {"C ::= CLASS { &a NULL, &A,\n &a BOOLEAN }", {{3, twice("a")}}},
        {"T ::= SEQUENCE { aaaaaaaabb NULL, aaaaaaaacc NULL }",
         {{2, twice("aaaaaaaacc")}},
         {"-NAMELEN=8"}},
        {"T ::= SEQUENCE { aaaaaaaabb NULL, aaaaaaaacc NULL }", {}, {"-NAMELEN=9"}},
    });
}

TEST(ComponentLists, AdmitNoClasses) {
    const std::string c = "C ::= CLASS { &id INTEGER, &Type, &obj C OPTIONAL }\n";
    const std::string no = "Object class not allowed", field = "Invalid ObjectClassFieldType";
    const std::string body[] = {
        c + "T ::= SEQUENCE { a C,\n b CHOICE { c D } }\nD ::= C\nU ::= SET OF TYPE-IDENTIFIER",
        c + "T ::= SEQUENCE { a C.&id, b C.&Type, c SEQUENCE OF C.&Type }",
        c + "T ::= SEQUENCE { a C.&obj }\nU ::= C.&obj",
        c + "T ::= INSTANCE OF C\nU ::= INSTANCE OF TYPE-IDENTIFIER\nV ::= INSTANCE OF X\n"
            "W ::= INSTANCE OF ABSTRACT-SYNTAX\nX ::= TYPE-IDENTIFIER"};
    expectFindings({{body[0].c_str(), {{3, no}, {4, no}, {6, no}}},
                    {body[1].c_str(), {}},
                    {body[2].c_str(), {{3, field}, {4, field}}},
                    {body[3].c_str(), {{3, "TYPE-IDENTIFIER expected"}}}});
}

TEST(ClassFields, FollowTheRulesOfTheirSort) {
    const std::string link = "Invalid link field", unique = "Invalid UNIQUE field",
                      optionality = "Invalid optionality specification";
    const auto recursion = [](const char* name) {
        return std::string("Invalid recursion in definition of type: ") + name;
    };
    expectFindings({
        {"C ::= CLASS { &id INTEGER UNIQUE,\n &a INTEGER UNIQUE DEFAULT 5,\n"
         " &c C UNIQUE OPTIONAL,\n &d INTEGER UNIQUE OPTIONAL }",
         {{3, unique}, {4, unique}}},
        {"C ::= CLASS { &T OPTIONAL, &U DEFAULT INTEGER, &W, &a &T,\n &b &T OPTIONAL,\n"
         " &C &T,\n &D &T OPTIONAL, &e &U, &f &U DEFAULT 5, &G &W }",
         {{2, optionality}, {4, optionality}}},
        {"C ::= CLASS { &Type, &id INTEGER, &v &Type }\n"
         "D ::= CLASS { &a C.&Type,\n &B C.&Type,\n &c T, &d C.&id, &E C.&id, &F C.&Type OPTIONAL "
         "}\n"
         "T ::= C.&Type",
         {{3, "Invalid class field type: a"},
          {4, "Invalid class field type: B"},
          {5, "Invalid class field type: c"},
          {5, "Invalid class field type: F"}}},
        {"A ::= CLASS { &b B }\nB ::= CLASS { &A A }\nE ::= CLASS { &b B }",
         {{2, recursion("b")}, {2, link}, {3, recursion("A")}, {3, link}, {4, link}}},
        {"A ::= CLASS { &a A OPTIONAL, &B B, &b B }\nB ::= CLASS { &a A OPTIONAL }", {}},
    });
}

TEST(Defaults, AreValidForWhatTheyStandFor) {
    const std::string invalid = "Invalid default value";
    expectFindings({
        {"T ::= SEQUENCE { a INTEGER (1..5) DEFAULT 9,\n b BOOLEAN DEFAULT TRUE }",
         {{2, "Value out of range constraint(s)"}, {2, invalid}}},
        {"C ::= CLASS { &T DEFAULT INTEGER (5..1),\n &id INTEGER (0..3) DEFAULT 4,\n"
         " &U DEFAULT INTEGER (1..5), &V DEFAULT X, &S INTEGER (0..3) DEFAULT {1 | 2}, &a &U,\n"
         " &b &U DEFAULT 5 }\nX ::= SET { a NULL }",
         {{2, "Invalid range constraint(s)"},
          {2, invalid},
          {3, "Value out of range constraint(s)"},
          {3, invalid}}},
    });
}

TEST(Any, IsClassifiedByAnEarlierComponent) {
    const std::string old = "W ANY without DEFINED BY is deprecated",
                      place = "ANY DEFINED BY allowed only within SEQUENCE/SET",
                      none = "Classifier for ANY not found",
                      order = "Classifier and ANY in reverse order",
                      bad = "Classifier for ANY is invalid";
    expectFindings({
        {"T ::= SEQUENCE { a ANY,\n b SEQUENCE OF ANY, c CHOICE { d [0] ANY },\n e [1] ANY "
         "OPTIONAL }\n"
         "U ::= ANY\nC ::= CLASS { &a ANY }\nv ANY ::= INTEGER : 5\n"
         "V ::= SET { x [0] ANY, y SEQUENCE { ..., [[ z ANY ]] } }",
         {{2, old}, {4, old}, {8, old}, {8, old}}},
        {"T ::= ANY DEFINED BY id\nU ::= SEQUENCE OF ANY DEFINED BY id\n"
         "V ::= CHOICE { id INTEGER, a [0] ANY DEFINED BY id }",
         {{2, place}, {3, place}, {4, place}}},
        {"T ::= SEQUENCE { id INTEGER,\n a ANY DEFINED BY di }\n"
         "U ::= SEQUENCE { s SEQUENCE { a ANY DEFINED BY id }, id INTEGER }",
         {{3, none}, {4, none}}},
        {"T ::= SEQUENCE { a ANY DEFINED BY id, id INTEGER }\nU ::= SEQUENCE { a ANY DEFINED BY a "
         "}",
         {{2, order}, {3, order}, {3, "W " + bad}}},
        {"T ::= SEQUENCE { id BOOLEAN, a ANY DEFINED BY id }", {{2, "W " + bad}}},
        {"T ::= SEQUENCE { id BOOLEAN, a ANY DEFINED BY id }", {{2, bad}}, {"-STRICTSTANDARD"}},
        {"T ::= SEQUENCE { id CHOICE { a INTEGER, b NULL }, a ANY DEFINED BY id }", {{2, bad}}},
        {"T ::= SEQUENCE { id I, a ANY DEFINED BY id, c CHOICE { a I, b OBJECT IDENTIFIER, ... },\n"
         " d ANY DEFINED BY c, COMPONENTS OF J, e ANY DEFINED BY j, ...,\n"
         " [[ k INTEGER, l ANY DEFINED BY k ]], [[ n ANY DEFINED BY id ]] }\n"
         "I ::= INTEGER\nJ ::= SEQUENCE { j I }",
         {},
         {"-STRICTSTANDARD"}},
    });
}

TEST(OptionsOfTypes, ThatDoNotFitAreDisabled) {
    const auto ignored = [](const char* why) {
        return std::string("W $Option(s) ignored: ") + why;
    };
    const RunResult run = compileBody(R"(T ::= SEQUENCE { id INTEGER,
 a ANY DEFINED BY id --$ANY=Entry:one--, -- fits
 b ANY DEFINED BY id --$ANY=Entry:oid--,
 c ANY DEFINED BY id --$ANY=Entry:true--,
 d ANY DEFINED BY id --$ANY=Plain:one--,
 e ANY DEFINED BY id --$ANY=Entry:none--,
 f ANY DEFINED BY id --$ANY=entry:one--,
 g CHOICE { i INTEGER, o OBJECT IDENTIFIER }, h ANY DEFINED BY g --$ANY=Entry:choice--,
 i ANY DEFINED BY id --$ANY=Entry:choice-- }
Entry ::= NULL --$ENTRY--
Plain ::= NULL
C ::= CLASS { &id INTEGER } --$ENTRY--
one INTEGER ::= 1
oid OBJECT IDENTIFIER ::= { 1 2 }
true BOOLEAN ::= TRUE
choice CHOICE { i INTEGER } ::= i : 1)");
    const std::string value = "ANY option: Invalid classifying value.",
                      entry = "ANY option: Invalid entry type.";
    EXPECT_EQ(
        run.diagnostics("m"),
        listed({{4, ignored(entry.c_str())},
                {5, ignored(value.c_str())},
                {6, ignored("ANY option: The entry type does not reside in the same module.")},
                {7, ignored(value.c_str())},
                {8, ignored("Invalid ANY option value syntax.")},
                {10, ignored(entry.c_str())},
                {13, ignored("An object class can not be marked as an entry.")}}));
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.optFlags("C"), "");
    EXPECT_EQ(tree.optFlags("Entry"), "ENTRY");
    const auto classifier = tree.tree().sNode(static_cast<uint32_t>(tree.node("T.h").syntax));
    EXPECT_EQ(classifier.module, 1U);
    EXPECT_EQ(static_cast<uint32_t>(classifier.value), tree.type("T.g").nr);
}

TEST(TypeErrors, StandWhereTheTypeIsDefinedOrInstantiatedAndOnce) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS P{}, L{}, Bad FROM N;\n"
                           "T ::= P {INTEGER}\n"
                           "U ::= SEQUENCE { a Bad,\n"
                           " b P {BOOLEAN}, c Bad, d L {100}, e L {-1} }\nEND\n"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN\nP {X} ::= SET {\n x X,\n b INTEGER }\n"
                           "L {INTEGER : n} ::= OCTET STRING (SIZE (n..100)) --$SIZE-LIMIT=50--\n"
                           "Bad ::= SEQUENCE {\n a NULL,\n a NULL }\nEND\n"}});
    EXPECT_EQ(run.diagnostics("m"),
              listed({{2, "Non-distinct tag: [UNIVERSAL 2]"},
                      {4, "W $Option(s) ignored: SIZE-LIMIT used with a fixed size OCTET STRING "
                          "type."},
                      {4, "Invalid size constraint"}}));
    EXPECT_EQ(run.diagnostics("n"), listed({{8, "Non-distinct identifier: a"}}));
}

TEST(TypeFacts, CountAndDescribeComponents) {
    const RunResult run = compileBody(R"(A ::= SEQUENCE { a NULL, b BOOLEAN OPTIONAL }
B ::= SEQUENCE { COMPONENTS OF A, ..., [[ c NULL, d NULL OPTIONAL ]], e BOOLEAN }
C ::= SEQUENCE { COMPONENTS OF B, f NULL }
D ::= CHOICE { a NULL, b CHOICE { c BOOLEAN }, ... }
E ::= SEQUENCE {}
F ::= SEQUENCE OF SET SIZE (0..5) OF NULL
G ::= SEQUENCE SIZE (3) OF F
H ::= SET OF SEQUENCE --$SEG-- OF NULL
I ::= SEQUENCE SIZE (0..9) OF NULL
J ::= SEQUENCE { a [0] NULL DEFAULT NULL, k K.&Type }
K ::= CLASS { &id INTEGER UNIQUE, &Type OPTIONAL }
L ::= SEQUENCE { ... }
M ::= SEQUENCE { a Same }
Same ::= Set
Set INTEGER ::= { 1 | 2 }
N ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF N, c NULL OPTIONAL } OPTIONAL, ..., d NULL })");
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    constexpr struct {
        const char* path;
        int fieldSize;
        const char* flags;
    } rows[] = {{"A", 2, "OPTIONALS MANDATORY"},
                {"A.b", 0, ""},
                {"B", 6, "OPTIONALS MANDATORY EXTENSIBLE"},
                {"C", 3, "OPTIONALS MANDATORY"},
                {"D", 3, "OPTIONALS INDETERMINATE_TAG EXTENSIBLE"},
                {"E", 0, ""},
                {"F", 1, "LIST_OF_LISTS"},
                {"G", 1, "LIST_OF_LISTS LIST_OF_REPR_LISTS"}, // F is dynamic
                {"H", 1, "LIST_OF_REPR_LISTS"},
                {"I", 1, ""},
                {"J", 2, "OPTIONALS INDETERMINATE_TAG MANDATORY"},
                {"K", 2, "OPTIONALS MANDATORY"},
                {"K.id", 0, "UNIQUE"},
                {"L", 1, "OPTIONALS EXTENSIBLE"},
                {"N", 4, "OPTIONALS RECURSIVE MANDATORY EXTENSIBLE"},
                {"N.b", 3, "OPTIONALS RECURSIVE MANDATORY"}}; // a, b and c
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(tree.node(row.path).fieldSize, row.fieldSize);
        EXPECT_EQ(tree.flags(row.path), row.flags);
        EXPECT_EQ(tree.node(row.path).checkState, 3);
    }
    const auto isSet = [&](const char* path) { return (tree.node(path).nodeFlags & 8) != 0; };
    EXPECT_TRUE(isSet("Set") && isSet("Same") && isSet("M.a"));
    EXPECT_FALSE(isSet("K.id") || isSet("J.k"));
}

TEST(TypeFacts, BoundsAreThoseOfTheConstraint) {
    constexpr struct {
        const char* type;
        const char* bounds;
    } rows[] = {{"INTEGER", "MIN..MAX"},
                {"INTEGER (5)", "5..5"},
                {"INTEGER (MIN..10)", "MIN..10"},
                {"INTEGER (1<..10)", "1..10"},
                {"INTEGER (n..m)", "-7..70"},
                {"INTEGER (1..10 | 20..30)", "1..30"},
                {"INTEGER (20..30 | 5 | R1)", "0..100"},
                {"INTEGER ((1..10) ^ (5..20))", "5..10"},
                {"INTEGER ((1..10 | 30..40) ^ (5..35))", "5..35"},
                {"INTEGER (0..50) (10..MAX) (MIN..20)", "10..20"},
                {"INTEGER (0..9, ...)", "0..9"},
                {"INTEGER (0..9 EXCEPT 0)", "MIN..MAX"},
                {"INTEGER (R2)", "5..100"},
                {"INTEGER (R2) (7..MAX)", "7..100"},
                {"R1 (5..10)", "MIN..MAX"}, // bounds are stored where the kind is
                {"ENUMERATED { a(3), b(-1), ..., c(7) }", "-1..7"},
                {"ENUMERATED { a, b, c(n) }", "-7..1"},
                {"OCTET STRING", "0..MAX"},
                {"OCTET STRING (SIZE (4 | 8))", "4..8"},
                {"BIT STRING (SIZE (1..10, ...))", "1..10"},
                {"SEQUENCE SIZE (2..MAX) OF NULL", "2..MAX"},
                {"SET (SIZE (MIN..m)) OF NULL", "0..70"},
                {"IA5String (SIZE (1..9)) (FROM (\"a\"..\"z\")) (SIZE (5..MAX))", "5..9"},
                {"IA5String (SIZE (2..9) ^ FROM (\"a\"))", "2..9"},
                {"IA5String (\"abc\")", "0..MAX"},
                {"OCTET STRING (SIZE (0..9) ^ (SIZE (3..20) | SIZE (5)))", "3..9"},
                {"BMPString (SIZE (INTEGER (3..5)))", "0..MAX"}};
    std::string body = "R1 ::= INTEGER (0..100)\nR2 ::= R1 (5..MAX)\n"
                       "n INTEGER ::= -7\nm INTEGER ::= k\nk INTEGER ::= 70";
    for (size_t i = 0; i < std::size(rows); ++i)
        body += "\nT" + std::to_string(i) + " ::= " + rows[i].type;
    const RunResult run = compileBody(body);
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    for (size_t i = 0; i < std::size(rows); ++i)
        EXPECT_EQ(tree.bounds("T" + std::to_string(i)), rows[i].bounds) << rows[i].type;
}

TEST(LargeTypes, EndInTimeAndAtTheLimit) {
    const auto structure = [](const char* kind, int count) {
        std::string text = std::string("T ::= ") + kind + " { c0 NULL";
        for (int i = 1; i < count; ++i) text += ",\n c" + std::to_string(i) + " NULL";
        return text + " }";
    };
    const RunResult most = compileBody(structure("SET", 32767), {}, "AUTOMATIC TAGS ");
    EXPECT_EQ(most.diagnostics("m"), "");
    EXPECT_EQ(TreeFacts(most, "m").node("T").fieldSize, 32767);
    EXPECT_EQ(compileBody(structure("CHOICE", 32768), {}, "AUTOMATIC TAGS ").diagnostics("m"),
              listed({{2, "Unimplemented: more than 32767 components"}}));
    std::string doubled = "C0 ::= CHOICE { c NULL }\nS0 ::= SEQUENCE { c NULL }\n"
                          "E0 ::= SEQUENCE { ..., c NULL }";
    std::vector<Finding> clashes;
    for (int i = 1; i <= 60; ++i) {
        const std::string nr = std::to_string(i), last = std::to_string(i - 1);
        doubled += "\nC" + nr + " ::= CHOICE { a C" + last + ", b C" + last + " }\nE" + nr +
                   " ::= SEQUENCE { COMPONENTS OF E" + last + ", COMPONENTS OF E" + last + " }";
        clashes.push_back({2 * i + 3, "Non-distinct tag: [UNIVERSAL 5]"});
    }
    EXPECT_EQ(compileBody(doubled).diagnostics("m"), listed(clashes));
    for (int i = 1; i <= 20; ++i) {
        const std::string last = std::to_string(i - 1);
        doubled += "\nS" + std::to_string(i) + " ::= SEQUENCE { COMPONENTS OF S" + last +
                   ", COMPONENTS OF S" + last + " }";
    }
    EXPECT_EQ(compileBody(doubled).status, 1);
}

} // namespace
} // namespace orvo::test
