#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(ComponentLists, HaveOneMarkerAndDistinctIdentifiers) {
    expectRows(R"(
T ::= SEQUENCE { a NULL, ..., b NULL,\n ..., c NULL,\n ... } --! 3: Duplicate extension marker in a component list. ; 4: Duplicate extension marker in a component list.
T ::= CHOICE { a NULL, ..., b BOOLEAN, ... } --! Duplicate extension marker in a component list.
T ::= SEQUENCE { a SEQUENCE { b NULL, ... }, COMPONENTS OF U, ... } U ::= SEQUENCE { c NULL, ..., d NULL }
T ::= SEQUENCE { a NULL,\n a BOOLEAN,\n a REAL, [[ b NULL,\n a INTEGER ]] } --! 3: Non-distinct identifier: a ; 4: Non-distinct identifier: a ; 5: Non-distinct identifier: a
T ::= SEQUENCE {\n COMPONENTS OF U, a NULL,\n COMPONENTS OF U } U ::= SEQUENCE { a NULL, ..., b NULL } --! 3: Non-distinct identifier: a ; 4: Non-distinct identifier: a
T ::= SEQUENCE { COMPONENTS OF U, b NULL, c SEQUENCE { a NULL, b NULL } } U ::= SEQUENCE { a NULL, ..., b NULL }
T ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF T, c NULL OPTIONAL } OPTIONAL }
T ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF T,\n a BOOLEAN } OPTIONAL,\n d SET OF SEQUENCE { b BOOLEAN,\n COMPONENTS OF T }, ..., e BOOLEAN } --! 3: Non-distinct identifier: a ; 5: Non-distinct identifier: b
T ::= SEQUENCE { COMPONENTS OF U, x NULL } U ::= SEQUENCE { y SEQUENCE { x BOOLEAN,\n COMPONENTS OF V, z REAL } OPTIONAL } V ::= T --! 3: Non-distinct identifier: x
T ::= SET { a [0] NULL, b [1] SET { c [0] NULL, COMPONENTS OF T } OPTIONAL } --! Non-distinct tag: [0]
C ::= CLASS { &a NULL, &A, &a BOOLEAN } --! Non-distinct identifier: a
)");
    const std::string row = "T ::= SEQUENCE { aaaaaaaabb NULL, aaaaaaaacc NULL }";
    expectRows(row + " --! Non-distinct identifier: aaaaaaaacc", {{"-NAMELEN=8"}});
    expectRows(row, {{"-NAMELEN=9"}});
}

TEST(ComponentLists, AdmitNoClasses) {
    expectMarked(R"(
C ::= CLASS { &id INTEGER, &Type, &obj C OPTIONAL } D ::= C
A ::= SEQUENCE { a C.&id, b C.&Type, c SEQUENCE OF C.&Type } U ::= INSTANCE OF X X ::= TYPE-IDENTIFIER
T ::= SEQUENCE { a C, --! Object class not allowed
  b CHOICE { c D } } --! Object class not allowed
S ::= SET OF TYPE-IDENTIFIER --! Object class not allowed
R ::= SEQUENCE { a C.&obj } --! Invalid ObjectClassFieldType
Q ::= C.&obj --! Invalid ObjectClassFieldType
V ::= INSTANCE OF C W ::= INSTANCE OF ABSTRACT-SYNTAX --! TYPE-IDENTIFIER expected
)");
}

TEST(ClassFields, FollowTheRulesOfTheirSort) {
    expectMarked(R"(
C ::= CLASS { &id INTEGER UNIQUE,
  &a INTEGER UNIQUE DEFAULT 5, --! Invalid UNIQUE field
  &c C UNIQUE OPTIONAL, --! Invalid UNIQUE field
  &d INTEGER UNIQUE OPTIONAL }
D ::= CLASS { &T OPTIONAL, &U DEFAULT INTEGER, &W, &a &T, &b &T OPTIONAL, --! Invalid optionality specification
  &C &T, --! Invalid optionality specification
  &D &T OPTIONAL, &e &U, &f &U DEFAULT 5, &G &W }
E ::= CLASS { &Type, &id INTEGER, &v &Type } T ::= E.&Type
F ::= CLASS { &a E.&Type, --! Invalid class field type: a
  &B E.&Type, --! Invalid class field type: B
  &c T, &d E.&id, &E E.&id, --! Invalid class field type: c
  &F E.&Type OPTIONAL } --! Invalid class field type: F
A ::= CLASS { &b B } --! Invalid recursion in definition of type: b ; Invalid link field
B ::= CLASS { &A A } --! Invalid recursion in definition of type: A ; Invalid link field
G ::= CLASS { &b B } --! Invalid link field
H ::= CLASS { &a H OPTIONAL, &B I, &b I } I ::= CLASS { &a H OPTIONAL }
)");
}

TEST(Defaults, AreValidForWhatTheyStandFor) {
    expectMarked(R"(
T ::= SEQUENCE { a INTEGER (1..5) DEFAULT 9, b BOOLEAN DEFAULT TRUE } --! Value out of range constraint(s) ; Invalid default value
C ::= CLASS { &T DEFAULT INTEGER (5..1), --! Invalid range constraint(s) ; Invalid default value
  &id INTEGER (0..3) DEFAULT 4, --! Value out of range constraint(s) ; Invalid default value
  &U DEFAULT INTEGER (1..5), &V DEFAULT X, &S INTEGER (0..3) DEFAULT {1 | 2}, &a &U, &b &U DEFAULT 5 }
X ::= SET { a NULL }
)");
}

TEST(Any, IsClassifiedByAnEarlierComponent) {
    expectMarked(R"(
A ::= SEQUENCE { a ANY, --! W ANY without DEFINED BY is deprecated
  b SEQUENCE OF ANY, c CHOICE { d [0] ANY },
  e [1] ANY OPTIONAL } B ::= ANY --! W ANY without DEFINED BY is deprecated
C ::= CLASS { &a ANY } v ANY ::= INTEGER : 5
D ::= SET { x [0] ANY, y SEQUENCE { ..., [[ z ANY ]] } } --! W ANY without DEFINED BY is deprecated ; W ANY without DEFINED BY is deprecated
E ::= ANY DEFINED BY id --! ANY DEFINED BY allowed only within SEQUENCE/SET
F ::= SEQUENCE OF ANY DEFINED BY id --! ANY DEFINED BY allowed only within SEQUENCE/SET
G ::= CHOICE { id INTEGER, a [0] ANY DEFINED BY id } --! ANY DEFINED BY allowed only within SEQUENCE/SET
H ::= SEQUENCE { id INTEGER, a ANY DEFINED BY di } --! Classifier for ANY not found
I ::= SEQUENCE { s SEQUENCE { a ANY DEFINED BY id }, id INTEGER } --! Classifier for ANY not found
J ::= SEQUENCE { a ANY DEFINED BY id, id INTEGER } --! Classifier and ANY in reverse order
K ::= SEQUENCE { a ANY DEFINED BY a } --! Classifier and ANY in reverse order ; W Classifier for ANY is invalid
L ::= SEQUENCE { id BOOLEAN, a ANY DEFINED BY id } --! W Classifier for ANY is invalid
N ::= SEQUENCE { id CHOICE { a INTEGER, b NULL }, a ANY DEFINED BY id } --! Classifier for ANY is invalid
)");
    expectMarked(R"(
S ::= SEQUENCE { id BOOLEAN, a ANY DEFINED BY id } --! Classifier for ANY is invalid
T ::= SEQUENCE { id I, a ANY DEFINED BY id, c CHOICE { a I, b OBJECT IDENTIFIER, ... },
  d ANY DEFINED BY c, COMPONENTS OF J, e ANY DEFINED BY j, ...,
  [[ k INTEGER, l ANY DEFINED BY k ]], [[ n ANY DEFINED BY id ]] } I ::= INTEGER J ::= SEQUENCE { j I }
)",
                 {{"-STRICTSTANDARD"}});
}

TEST(OptionsOfTypes, ThatDoNotFitAreDisabled) {
    const RunResult run = expectMarked(R"(
T ::= SEQUENCE { id INTEGER, a ANY DEFINED BY id --$ANY=Entry:one--, -- fits
 b ANY DEFINED BY id --$ANY=Entry:oid--, --! W $Option(s) ignored: ANY option: Invalid entry type.
 c ANY DEFINED BY id --$ANY=Entry:true--, --! W $Option(s) ignored: ANY option: Invalid classifying value.
 d ANY DEFINED BY id --$ANY=Plain:one--, --! W $Option(s) ignored: ANY option: The entry type does not reside in the same module.
 e ANY DEFINED BY id --$ANY=Entry:none--, --! W $Option(s) ignored: ANY option: Invalid classifying value.
 f ANY DEFINED BY id --$ANY=entry:one--, --! W $Option(s) ignored: Invalid ANY option value syntax.
 g CHOICE { i INTEGER, o OBJECT IDENTIFIER }, h ANY DEFINED BY g --$ANY=Entry:choice--,
 i ANY DEFINED BY id --$ANY=Entry:choice-- } --! W $Option(s) ignored: ANY option: Invalid entry type.
Entry ::= NULL --$ENTRY--
Plain ::= NULL one INTEGER ::= 1 oid OBJECT IDENTIFIER ::= { 1 2 } true BOOLEAN ::= TRUE
C ::= CLASS { &id INTEGER } --$ENTRY-- --! W $Option(s) ignored: An object class can not be marked as an entry.
choice CHOICE { i INTEGER } ::= i : 1
)");
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
    const TreeFacts tree(expectMarked(R"(
A ::= SEQUENCE { a NULL, b BOOLEAN OPTIONAL } E ::= SEQUENCE {} L ::= SEQUENCE { ... }
B ::= SEQUENCE { COMPONENTS OF A, ..., [[ c NULL, d NULL OPTIONAL ]], e BOOLEAN }
C ::= SEQUENCE { COMPONENTS OF B, f NULL } D ::= CHOICE { a NULL, b CHOICE { c BOOLEAN }, ... }
F ::= SEQUENCE OF SET SIZE (0..5) OF NULL G ::= SEQUENCE SIZE (3) OF F
H ::= SET OF SEQUENCE --$SEG-- OF NULL I ::= SEQUENCE SIZE (0..9) OF NULL
J ::= SEQUENCE { a [0] NULL DEFAULT NULL, k K.&Type }
K ::= CLASS { &id INTEGER UNIQUE, &Type OPTIONAL }
M ::= SEQUENCE { a Same } Same ::= Set Set INTEGER ::= { 1 | 2 }
N ::= SEQUENCE { a NULL, b SEQUENCE { COMPONENTS OF N, c NULL OPTIONAL } OPTIONAL, ..., d NULL }
)"),
                         "m");
    expectFacts(R"(
A: 2 OPTIONALS MANDATORY ; A.b: 0 ; B: 6 OPTIONALS MANDATORY EXTENSIBLE ; C: 3 OPTIONALS MANDATORY
D: 3 OPTIONALS INDETERMINATE_TAG EXTENSIBLE ; E: 0 ; F: 1 LIST_OF_LISTS
G: 1 LIST_OF_LISTS LIST_OF_REPR_LISTS ; H: 1 LIST_OF_REPR_LISTS ; I: 1
J: 2 OPTIONALS INDETERMINATE_TAG MANDATORY ; K: 2 OPTIONALS MANDATORY ; K.id: 0 UNIQUE
L: 1 OPTIONALS EXTENSIBLE ; N: 4 OPTIONALS RECURSIVE MANDATORY EXTENSIBLE
N.b: 3 OPTIONALS RECURSIVE MANDATORY
)",
                [&](const std::string& path) {
                    EXPECT_EQ(tree.node(path).checkState, 3);
                    const std::string flags = tree.flags(path);
                    return std::to_string(tree.node(path).fieldSize) + (flags.empty() ? "" : " ") +
                           flags;
                });
    const auto isSet = [&](const char* path) { return (tree.node(path).nodeFlags & 8) != 0; };
    EXPECT_TRUE(isSet("Set") && isSet("Same") && isSet("M.a"));
    EXPECT_FALSE(isSet("K.id") || isSet("J.k"));
}

// Bounds are stored where the kind is: R1 (5..10) has none.
TEST(TypeFacts, BoundsAreThoseOfTheConstraint) {
    expectTypes(R"(
INTEGER: MIN..MAX ; INTEGER (5): 5..5 ; INTEGER (MIN..10): MIN..10 ; INTEGER (1<..10): 1..10
INTEGER (n..m): -7..70 ; INTEGER (1..10 | 20..30): 1..30 ; INTEGER (20..30 | 5 | R1): 0..100
INTEGER ((1..10) ^ (5..20)): 5..10 ; INTEGER ((1..10 | 30..40) ^ (5..35)): 5..35
INTEGER (0..50) (10..MAX) (MIN..20): 10..20 ; INTEGER (0..9, ...): 0..9
INTEGER (0..9 EXCEPT 0): MIN..MAX ; INTEGER (R2): 5..100 ; INTEGER (R2) (7..MAX): 7..100
R1 (5..10): MIN..MAX ; ENUMERATED { a(3), b(-1), ..., c(7) }: -1..7
ENUMERATED { a, b, c(n) }: -7..1 ; OCTET STRING: 0..MAX ; OCTET STRING (SIZE (4 | 8)): 4..8
BIT STRING (SIZE (1..10, ...)): 1..10 ; SEQUENCE SIZE (2..MAX) OF NULL: 2..MAX
SET (SIZE (MIN..m)) OF NULL: 0..70
IA5String (SIZE (1..9)) (FROM ("a".."z")) (SIZE (5..MAX)): 5..9
IA5String (SIZE (2..9) ^ FROM ("a")): 2..9 ; IA5String ("abc"): 0..MAX
OCTET STRING (SIZE (0..9) ^ (SIZE (3..20) | SIZE (5))): 3..9
BMPString (SIZE (INTEGER (3..5))): 0..MAX
)",
                {.head = "R1 ::= INTEGER (0..100) R2 ::= R1 (5..MAX) n INTEGER ::= -7 "
                         "m INTEGER ::= k k INTEGER ::= 70"},
                [](const TreeFacts& tree, const std::string& type) { return tree.bounds(type); });
}

TEST(LargeTypes, EndInTimeAndAtTheLimit) {
    const auto structure = [](const char* kind, int count) {
        std::string text = std::string("T ::= ") + kind + " { c0 NULL";
        for (int i = 1; i < count; ++i) text += numbered(",\n c# NULL", i);
        return text + " }";
    };
    std::string items = "e0", numbers = "0"; // what stands in a row does not nest
    for (int i = 1; i < 20000; ++i) items += numbered(", e#", i), numbers += numbered(", #", i);
    expectMarked("E ::= ENUMERATED { " + items + " } v SEQUENCE OF INTEGER ::= { " + numbers +
                 " }");
    const RunResult most = expectMarked(structure("SET", 32767), automatic);
    EXPECT_EQ(TreeFacts(most, "m").node("T").fieldSize, 32767);
    EXPECT_EQ(compileBody(structure("CHOICE", 32768), {}, "AUTOMATIC TAGS ").diagnostics("m"),
              listed(2, "Unimplemented: more than 32767 components"));
    std::string doubled = "C0 ::= CHOICE { c NULL } S0 ::= SEQUENCE { c NULL } "
                          "E0 ::= SEQUENCE { ..., c NULL }\n";
    for (int i = 1; i <= 60; ++i)
        doubled += numbered("C# ::= CHOICE { a C@, b C@ } --! Non-distinct tag: [UNIVERSAL 5]\n"
                            "E# ::= SEQUENCE { COMPONENTS OF E@, COMPONENTS OF E@ }\n",
                            i);
    expectMarked(doubled);
    for (int i = 1; i <= 20; ++i)
        doubled += numbered("S# ::= SEQUENCE { COMPONENTS OF S@, COMPONENTS OF S@ }\n", i);
    EXPECT_EQ(compileBody(doubled).status, 1);
}

} // namespace
} // namespace orvo::test
