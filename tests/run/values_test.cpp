#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

constexpr const char* structures =
    "LI ::= SEQUENCE OF INTEGER S ::= SEQUENCE { a INTEGER, b BOOLEAN OPTIONAL } "
    "U ::= SET { a INTEGER, b BOOLEAN OPTIONAL } Ch ::= CHOICE { a INTEGER, b NULL } "
    "F ::= BIT STRING { a(0), c(2) } E ::= ENUMERATED { a, ..., c } "
    "I ::= INTEGER { one(1), two(2) } Any ::= SEQUENCE { x TYPE-IDENTIFIER.&Type } "
    "CL ::= CLASS { &id INTEGER, &next CL OPTIONAL } o1 CL ::= { &id 7 } "
    "o2 CL ::= { &id 8, &next o1 } n INTEGER ::= 4 s IA5String ::= \"b\" "
    "p {INTEGER : x} INTEGER ::= x id OBJECT IDENTIFIER ::= { 1 2 }";

/// Types on line 1, the value v on line 2.
const Frame frame = {.head = structures, .before = "v "};

TEST(Values, ValidNotationIsKept) {
    expectRows(R"(
BOOLEAN ::= TRUE --= TRUE
INTEGER ::= -9223372036854775806 --= -9223372036854775806
INTEGER ::= 9223372036854775806 --= 9223372036854775806
I ::= two --= two
E ::= c --= c -- the item, not the marker before it
REAL ::= 0 --= 0
REAL ::= MINUS-INFINITY --= MINUS-INFINITY
REAL ::= { mantissa -5, base 10, exponent -32768 } --= {mantissa -5, base 10, exponent -32768}
BIT STRING ::= '101'B --= '101'B
BIT STRING ::= 'A5'H --= 'A5'H
OCTET STRING ::= '0101'B --= '0101'B
F ::= { c, a } --= {c, a}
NULL ::= NULL --= NULL
S ::= { a 1, b TRUE } --= {a 1, b TRUE}
SEQUENCE { a INTEGER OPTIONAL } ::= { } --= {}
U ::= { b TRUE, a n } --= {b TRUE, a n}
LI ::= { 1, n, -2 } --= {1, n, -2}
SET OF S ::= { { a 1 }, { a 2 } } --= {{a 1}, {a 2}}
Ch ::= a : 5 --= a : 5
Ch ::= { a 5 } --= a : 5
SEQUENCE OF Ch ::= { b : NULL, { b NULL } } --= {b : NULL, b : NULL}
Any ::= { x SEQUENCE OF BOOLEAN : { TRUE } } --= {x SEQUENCE OF : {TRUE}}
EMBEDDED PDV ::= { identification fixed : NULL, data-value encoded : '01'B } --= {identification fixed : NULL, data_value encoded : '01'B}
CHARACTER STRING ::= { identification fixed : NULL, data-value encoded : '01'H } --= {identification fixed : NULL, data_value encoded : '01'H}
EXTERNAL ::= { identification syntax : { 1 2 3 }, data-value encoded : '01'B } --= {identification syntax : {1 2 3}, data_value encoded : '01'B}
INSTANCE OF TYPE-IDENTIFIER ::= { type-id { 1 2 3 }, value BOOLEAN : TRUE } --= {type_id {1 2 3}, value BOOLEAN : TRUE}
OBJECT IDENTIFIER ::= { iso standard 8571 syntax(2) x(n) n } --= {1 0 8571 syntax(2) x(n) n}
OBJECT IDENTIFIER ::= { itu-t recommendation x 680 } --= {0 0 24 680}
OBJECT IDENTIFIER ::= { id 3 } --= {id 3}
VisibleString ::= "say ""x""" --= "say \"x\""
IA5String ::= { "a", s } --= {"a", s}
IA5String ::= { 4, 1 } --= "A"
IA5String ::= { 0, 0, 0, 66 } --= "B"
GeneralString ::= { 0, 0, 0, 0 } --= "" -- NUL, which also ends the text
BMPString ::= "ab" --= "ab"
BMPString ::= { 0, 0, 32, 172 } --= "\u20ac"
UniversalString ::= { "a", "b" } --= {"a", "b"}
UniversalString ::= { 0, 1, 246, 0 } --= "\U0001f600"
GeneralizedTime ::= "19991231235959Z" --= "19991231235959Z"
INTEGER ::= o2.&next.&id --= o2.&next.&id
INTEGER ::= p { 5 } --= p
)",
               frame, [](const TreeFacts& tree) { return tree.valueText("v"); });
}

TEST(Values, RealsOf1990NameNoParts) {
    expectRows("v REAL ::= { 5, 2, -1 } --= {mantissa 5, base 2, exponent -1}",
               {{"-STANDARD-VERSION=1990"}},
               [](const TreeFacts& tree) { return tree.valueText("v"); });
    expectRows("v REAL ::= { 5, 2, -1 } --! 'valueid' expected ; REAL value syntax");
}

// ---- records ------------------------------------------------------------------------------------

stx::VNode componentOf(const TreeFacts& tree, const char* value, size_t place) {
    const auto list = stx::componentValues(tree.tree(), tree.value(value).nr);
    return place < list.size() ? tree.tree().vNode(list[place]) : stx::VNode();
}

TEST(Values, ArcsWrittenAsNamesKeepTheClassOfTheName) {
    const TreeFacts tree(compileBody("v OBJECT IDENTIFIER ::= { itu-t recommendation a 1 }\n"
                                     "w OBJECT IDENTIFIER ::= { iso member-body 2 x(3) }"),
                         "m");
    const int32_t classes[2][4] = {{5, 6, 8, 100}, {5, 7, 100, 100}};
    const int64_t arcs[2][4] = {{0, 0, 1, 1}, {1, 2, 2, 3}};
    for (size_t place = 0; place < 4; ++place) {
        SCOPED_TRACE(place);
        EXPECT_EQ(componentOf(tree, "v", place).valStatus, classes[0][place]);
        EXPECT_EQ(componentOf(tree, "v", place).number, arcs[0][place]);
        EXPECT_EQ(componentOf(tree, "w", place).valStatus, classes[1][place]);
        EXPECT_EQ(componentOf(tree, "w", place).number, arcs[1][place]);
    }
}

TEST(Values, ComponentsOfAnotherModulesTypesReferToThatModule) {
    const RunResult run = compile(
        {{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS S FROM N;\n"
                   "v S ::= { b { set, clear },\n"
                   "  e last }\nEND\n"},
         {"n.asn", "N DEFINITIONS ::= BEGIN\n"
                   "S ::= SEQUENCE { COMPONENTS OF P, ..., e E }\n"
                   "P ::= SEQUENCE { b B }\n"
                   "B ::= BIT STRING { clear(0), set(3) } E ::= ENUMERATED { first, ..., last }\n"
                   "END\n"}});
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m"), types(run, "n");
    EXPECT_EQ(tree.valueText("v"), "{b {N.set, N.clear}, e N.last}");
    const stx::VNode b = componentOf(tree, "v", 0), e = componentOf(tree, "v", 1);
    EXPECT_EQ(b.govTypeMod, 2U);
    EXPECT_EQ(b.govType, types.type("P.b").nr);
    EXPECT_EQ(b.line, 2U);
    EXPECT_EQ(e.govType, types.type("S.e").nr);
    EXPECT_EQ(e.line, 3U);
}

TEST(Values, NestAsDeepAsTheirBraces) {
    const auto nested = [](size_t levels) {
        return std::string(levels, '{') + std::string(levels, '}');
    };
    expectMarked("v T ::= " + nested(499) + " T ::= SEQUENCE (SIZE (0..1)) OF T");
    std::string selectors;
    for (int i = 0; i < 20000; ++i) selectors += "a : ";
    const RunResult run =
        compileBody("v T ::= " + selectors + "b : NULL T ::= CHOICE { a T, b NULL }");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.diagnostics("m").starts_with(listed(2, "CHOICE value syntax")));
}

// ---- errors -------------------------------------------------------------------------------------

TEST(Values, WrongNotationIsReportedFromTheInsideOut) {
    expectRows(R"(
BOOLEAN ::= 5 --! BOOLEAN value syntax
INTEGER ::= "a" --! INTEGER value syntax
INTEGER ::= -0 --! Invalid INTEGER value
LI ::= { 1, - TRUE } --! INTEGER value syntax ; SEQUENCE OF value syntax
REAL ::= { mantissa 5, base 3, exponent 1 } --! Invalid REAL value
REAL ::= { mantissa 0, base 2, exponent 1 } --! Invalid REAL value
REAL ::= { mantissa 1, base 2, exponent 32768 } --! Invalid REAL value
REAL ::= { base 2, mantissa 5, exponent 1 } --! 'valueid' expected ; REAL value syntax
REAL ::= { mantissa TRUE, base 2, exponent 1 } --! REAL value syntax
REAL ::= { mantissa 5 base 2 exponent 1 } --! ',' expected ; REAL value syntax
REAL ::= { mantissa 5, base 2, exponent 1, a 1 } --! '}' expected ; REAL value syntax
BIT STRING ::= TRUE --! BIT STRING value syntax
F ::= { b } --! BIT STRING value syntax
F ::= { 0 } --! 'valueid' expected ; BIT STRING value syntax
F ::= { a c } --! '}' expected ; BIT STRING value syntax
OCTET STRING ::= { } --! OCTET STRING value syntax
NULL ::= 0 --! NULL value syntax
S ::= { c 1 } --! Invalid component identifier: c ; SEQUENCE value syntax
S ::= { S 1 } --! Invalid component identifier: typeid ; SEQUENCE value syntax
S ::= { a 1 b TRUE } --! '}' expected ; SEQUENCE value syntax
U ::= { 5 1 } --! Invalid component identifier: number ; SET value syntax
SET OF S ::= { { a TRUE } } --! INTEGER value syntax ; SEQUENCE value syntax ; SET OF value syntax
Ch ::= c : 5 --! Invalid component identifier: c ; CHOICE value syntax
Ch ::= 5 --! Invalid component identifier: number ; CHOICE value syntax
Ch ::= { a : 5 } --! INTEGER value syntax ; CHOICE value syntax
Ch ::= { a 5, b NULL } --! '}' expected ; CHOICE value syntax
ANY ::= 5 --! 'typeid' expected ; ANY value syntax
Any ::= { x 5 } --! 'typeid' expected ; OPEN value syntax ; SEQUENCE value syntax
Any ::= { x INTEGER 5 } --! ':' expected ; OPEN value syntax ; SEQUENCE value syntax
Any ::= { x INTEGER : TRUE } --! INTEGER value syntax ; OPEN value syntax ; SEQUENCE value syntax
EMBEDDED PDV ::= { a 1 } --! Invalid component identifier: a ; EMBEDDED PDV value syntax
EXTERNAL ::= { a 1 } --! Invalid component identifier: a ; EXTERNAL value syntax
INSTANCE OF TYPE-IDENTIFIER ::= 5 --! InstanceOfType value syntax
OBJECT IDENTIFIER ::= { } --! OBJECT IDENTIFIER value syntax
OBJECT IDENTIFIER ::= { 1 n : 5 } --! OBJECT IDENTIFIER value syntax
OBJECT IDENTIFIER ::= { 1 p { 1 } } --! Defined value syntax ; OBJECT IDENTIFIER value syntax
OBJECT IDENTIFIER ::= { 1 a(o1.&id) } --! Defined value syntax ; OBJECT IDENTIFIER value syntax
OBJECT IDENTIFIER ::= { 1 a(2 3) } --! ')' expected ; OBJECT IDENTIFIER value syntax
IA5String ::= { } --! IA5String value syntax
IA5String ::= { "a" "b" } --! '}' expected ; IA5String value syntax
IA5String ::= { s, p { 1 } } --! Defined value syntax ; IA5String value syntax
IA5String ::= { 8, 0 } --! Invalid Quadruple/Tuple ; IA5String value syntax
VisibleString ::= { 4, 1 } --! Invalid Quadruple/Tuple ; VisibleString value syntax
VisibleString ::= { 0, 0, 1, 65 } --! Invalid Quadruple/Tuple ; VisibleString value syntax
BMPString ::= { 0, 1, 0, 0 } --! Invalid Quadruple/Tuple ; BMPString value syntax
BMPString ::= { 0, 0, 0, 256 } --! Invalid Quadruple/Tuple ; BMPString value syntax
UniversalString ::= { 0, 0, 0, 0, 0 } --! Invalid Quadruple/Tuple ; UniversalString value syntax
UniversalString ::= { 0, 0, 0 0 } --! '}' expected ; UniversalString value syntax
LI ::= { o1.id } --! Field name expected ; Defined value syntax ; SEQUENCE OF value syntax
Undefined ::= 5 --! Invalid governing type/class: v
SEQUENCE { a Undefined } ::= { a 5 } --! Invalid governing type/class: a ; SEQUENCE value syntax
SEQUENCE OF Undefined ::= { 5 } --! Invalid governing type/class ; SEQUENCE OF value syntax
CL ::= 5 --! '{' expected ; Object syntax
TYPE-IDENTIFIER ::= 5 --! '{' expected ; TYPE-IDENTIFIER object syntax
ABSTRACT-SYNTAX ::= 5 --! '{' expected ; ABSTRACT-SYNTAX object syntax
)",
               frame);
}

TEST(Values, EveryStringTypeIsNamed) {
    for (const std::string type :
         {"NumericString", "PrintableString", "TeletexString", "VideotexString", "VisibleString",
          "IA5String", "GraphicString", "GeneralString", "BMPString", "UniversalString",
          "GeneralizedTime", "UTCTime", "ObjectDescriptor"})
        expectRows("v " + type + " ::= 5 --! " + type + " value syntax");
}

TEST(Values, NamesThatNothingDefinesAreUndefined) {
    const RunResult run =
        expectMarked("v E ::= b --! Invalid ENUMERATED value", {.head = structures});
    EXPECT_NE(run.listing("m").find("*** ERROR - Undefined values:\n"), std::string::npos);
}

} // namespace
} // namespace orvo::test
