// Constraints checked against the types that they restrict: every finding at its line, beside legal
// neighbours that differ from it in one point.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/findings.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

std::string invalid(const std::string& kind) {
    return "Invalid " + kind + " constraint(s)";
}
std::string valueOut(const std::string& kind) {
    return "Value out of " + kind + " constraint(s)";
}
const std::string range = invalid("range"), unions = invalid("union"), size = invalid("size");
const std::string series = invalid("catenated"), single = invalid("single value");
const std::string alphabet = invalid("permitted alphabet"), table = invalid("table");
const std::string includes = invalid("INCLUDES"), withComp = invalid("WITH COMPONENT");
const std::string withComps = invalid("WITH COMPONENTS"), user = invalid("user defined");
const std::string relation = invalid("component relation");
const std::string order = "Constraints must appear in order";

const std::string presence = "Invalid presence constraint: component ";
const std::string duplicate = "Duplicate constraint: component ";

TEST(Subtypes, OperatorsAndRangesReportFromTheInsideOut) {
    const std::string real = "{mantissa 1, base 10, exponent ";
    expectFindings({
        {"A1 ::= INTEGER (5..1)", {range}},
        {"A2 ::= INTEGER (1..1) A5 ::= INTEGER (MIN<..<MAX) v BOOLEAN ::= TRUE"},
        {"A3 ::= INTEGER (1<..1)", {range}},
        {"A6 ::= INTEGER (1..v)", {range}},
        {"A7 ::= REAL (" + real + "0}.." + real + "1})"},
        {"A8 ::= REAL (" + real + "1}.." + real + "0})", {range}},
        {"B1 ::= IA5String (\"b\"..\"a\")", {range}},
        {"A9 ::= IA5String (\"a\"..\"b\") B2 ::= INTEGER (1..10 | 20..30)"},
        {"B3 ::= INTEGER (1..10 | 30..20 | 9..8)", {range, unions}},
        {"B4 ::= INTEGER (1..10 ^ 30..20)", {range, invalid("INTERSECTION")}},
        {"B5 ::= INTEGER (1 | (1 ^ (5..3)))", {range, invalid("INTERSECTION"), unions}},
        {"B6 ::= INTEGER (1..5 EXCEPT 3)"},
        {"B7 ::= INTEGER (9..7 EXCEPT 6..5)", {range, invalid("EXCEPT")}},
        {"B8 ::= INTEGER (1..5 EXCEPT 9..7)", {range, invalid("EXCEPT")}},
        {"B9 ::= INTEGER (ALL EXCEPT 9..7)", {range, invalid("ALL EXPECT")}},
        {"C1 ::= INTEGER (ALL EXCEPT 7) C2 ::= INTEGER (1..9)(2..8)(MIN..5)(3)"},
        {"C3 ::= INTEGER (1..5)(3..2)", {range, series}},
        {"C4 ::= INTEGER (5..1)(3..2)", {range, series}},
        {"C5 ::= INTEGER (...)",
         {"Element set spec is invalid: { ... } is allowed only in ObjectSets."}},
        {"P1 ::= INTEGER (0..100) P2 ::= P1 (5..200) p2 P2 ::= 100"}, // keeps the parent's end
        {"p3 P2 ::= 101", {valueOut("range")}},
        {"C6 ::= INTEGER (1..5, ...) C7 ::= INTEGER"},
        {"  (1..5 |", {unions}},
        {"   7..6)", {range}},
    });
}

TEST(Subtypes, ValuesAndContainedTypesAreOfTheParent) {
    const std::string outRange = valueOut("range");
    expectFindings({
        {"A ::= INTEGER (0..9) A1 ::= A (5 | 9)"},
        {"A2 ::= A (5 | 10)", {outRange, single, unions}},
        {"A3 ::= A (ALL EXCEPT 10)", {outRange, single, invalid("ALL EXPECT")}},
        {"A4 ::= INTEGER (0..9)(ALL EXCEPT 3)"},
        {"A5 ::= INTEGER (0..9)(10)", {outRange, valueOut("catenated"), single, series}},
        {"A6 ::= INTEGER (0..9 ^ 10) A7 ::= A1 (9)"},
        {"A8 ::= A1 (7)", {valueOut("union"), single}},
        {"A9 ::= INTEGER (v)", {"Invalid INTEGER value", single}},
        {"v BOOLEAN ::= TRUE E ::= ENUMERATED { a, b, c } E1 ::= E (a | b)"},
        {"E2 ::= E1 (c)", {valueOut("union"), single}},
        {"I1 ::= INTEGER (A | 12)"},
        {"I2 ::= INTEGER (INCLUDES BOOLEAN)", {includes}},
        {"I3 ::= INTEGER (1 | E)", {includes, unions}},
        {"I4 ::= VisibleString (IA5String)"},
        {"I5 ::= INTEGER (INTEGER (3..1))", {range, includes}},
        {"L ::= SEQUENCE OF A1 L1 ::= L (WITH COMPONENT (9))"},
        {"L2 ::= L (WITH COMPONENT (7))", {valueOut("union"), single, withComp}},
        {"L3 ::= SET OF L1"},
        {"L4 ::= L3 (WITH COMPONENT (WITH COMPONENT (9..5)))", {range, withComp, withComp}},
    });
}

TEST(Subtypes, SizesAndAlphabets) {
    expectFindings({
        {"A1 ::= OCTET STRING (SIZE (2..2)) A4 ::= SET SIZE (0..MAX) OF NULL"},
        {"A2 ::= OCTET STRING (SIZE (2..1))", {range, size}},
        {"A3 ::= SEQUENCE (SIZE (1 | 3..2)) OF NULL", {range, unions, size}},
        {"A5 ::= BIT STRING (SIZE (v))", {"Invalid INTEGER value", single, size}},
        {"v BOOLEAN ::= TRUE B1 ::= IA5String (FROM (\"a\"..\"z\"))"},
        {"B2 ::= IA5String (FROM (\"ab\"..\"z\"))", {alphabet}},
        {"B3 ::= IA5String (FROM (\"a\"..\"yz\"))", {alphabet}},
        {"B4 ::= IA5String (FROM (\"ab\" | \"d\"..MAX, ...))"},
        {"B5 ::= IA5String (FROM (\"z\"..\"a\" | \"b\"))", {range, unions, alphabet}},
        {"B6 ::= IA5String (SIZE (1..3)) (FROM (\"abcdef\"))"},
        {"B7 ::= IA5String (FROM (SIZE (1)))", {alphabet}},
        {"B8 ::= IA5String (FROM (\"a\" | FROM (\"b\")))", {alphabet}},
        {"B9 ::= IA5String (FROM (B1 EXCEPT \"q\")) C1 ::= ObjectDescriptor (FROM (\"abc\"))"},
        {"C2 ::= UniversalString (FROM (\"a\"..\"b\"))"},
        {"C3 ::= NumericString (FROM (\"1a\"))",
         {valueOut("permitted alphabet"), single, alphabet}},
    });
}

TEST(Subtypes, ComponentsAreRestrictedInOrderAndOnce) {
    expectFindings({
        {"S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER (1..5), COMPONENTS OF O, c-d C }"},
        {"O ::= SEQUENCE { x NULL OPTIONAL, y INTEGER DEFAULT 3, ... }"},
        {"C ::= CHOICE { p INTEGER, q NULL }"},
        {"S1 ::= S (WITH COMPONENTS { ..., a PRESENT, b (1), x ABSENT, y OPTIONAL, c-d })"},
        {"S2 ::= S (WITH COMPONENTS { ..., b PRESENT })", {presence + "'b'", withComps}},
        {"S3 ::= S (WITH COMPONENTS { ..., b (1..5), a (1..5) })", {order, withComps}},
        {"S4 ::= S (WITH COMPONENTS { ..., y PRESENT, x PRESENT })", {order, withComps}},
        {"S5 ::= S (WITH COMPONENTS { a, c-d ABSENT, c-d })",
         {presence + "'c_d'", order, duplicate + "'c_d'", withComps}},
        {"S6 ::= S (WITH COMPONENTS { ..., b (7) })", {valueOut("range"), single, withComps}},
        {"T ::= SET { a INTEGER OPTIONAL, b INTEGER }"},
        {"T1 ::= T (WITH COMPONENTS { b (1..5), a (1..5) ABSENT })"},
        {"T2 ::= T (WITH COMPONENTS { b, a ABSENT, b PRESENT })",
         {presence + "'b'", duplicate + "'b'", withComps}},
        {"C1 ::= C (WITH COMPONENTS { q ABSENT, p (3) PRESENT })"},
        {"C2 ::= C (WITH COMPONENTS { ..., p OPTIONAL })", {presence + "'p'", withComps}},
        {"S7 ::= S (WITH COMPONENTS { ..., c-d (WITH COMPONENTS { p (3..1) }) })",
         {range, withComps, withComps}},
        {"X1 ::= EXTERNAL (WITH COMPONENTS { ..., data-value-descriptor ABSENT })"},
        {"X2 ::= EMBEDDED PDV (WITH COMPONENTS { ..., data-value PRESENT })",
         {presence + "'data_value'", withComps}},
    });
}

TEST(Subtypes, ParametersExceptionsAndOpenTypes) {
    expectFindings({
        {"K ::= CLASS { &id INTEGER, &Type } v BOOLEAN ::= TRUE"},
        {"A1 ::= INTEGER (CONSTRAINED BY { BOOLEAN : v, A3, INTEGER (1..3) })"},
        {"A2 ::= INTEGER (CONSTRAINED BY { INTEGER : v, INTEGER (3..1) })",
         {"Invalid INTEGER value", range, user}},
        {"A3 ::= INTEGER (CONSTRAINED BY { }) A4 ::= OCTET STRING (CONTAINING A1)"},
        {"B1 ::= INTEGER (! 3) B2 ::= INTEGER (! BOOLEAN : v)"},
        {"B3 ::= INTEGER (! v)", {"Invalid INTEGER value", "Invalid ExceptionValue"}},
        {"C1 ::= K.&Type (INTEGER (1..3))"},
        {"C2 ::= K.&Type (INTEGER (3..1))", {range, invalid("TypeConstraint")}},
        {"C3 ::= K.&Type (p < C) C ::= CHOICE { p INTEGER }"},
        {"P { INTEGER : low } ::= SEQUENCE { a INTEGER (low..5) }"},
        {"Q ::= SEQUENCE {"},
        {"  a P { 5 },"},
        {"  b P { 6 } }", {range}},
    });
    const std::vector<SourceFile> others = {
        {"n.asn",
         "N DEFINITIONS ::= BEGIN\nP { INTEGER : low } ::= SEQUENCE {\na INTEGER (low..5) }"
         "\n\n\n\nT ::= INTEGER (5..1)\nEND\n"}};
    const RunResult run = compileLines(
        {{"IMPORTS P{}, T FROM N;"}, {"Q ::= P { 6 }"}, {"R ::= INTEGER (T)"}}, {}, others);
    EXPECT_EQ(run.diagnostics("m"), listed(3, range)); // what is wrong in T is the affair of T alone
    EXPECT_EQ(run.diagnostics("n"), listed(7, range));
}

TEST(Subtypes, TablesAndRelationsLeadSomewhere) {
    const std::string notField =
        table + ": Table constraint can be associated only with an ObjectClassFieldType.";
    const std::string badSet = table + ": The ObjectSet in the table constraint is invalid.";
    const std::string element = "Invalid set element", object = "Invalid object";
    expectFindings({
        {"K ::= CLASS { &id INTEGER UNIQUE, &Type } Set K ::= { { &id 1, &Type NULL }, ... }"},
        {"T1 ::= SEQUENCE { i K.&id ({Open}), t K.&Type ({Open}{@i}), u K.&Type ({Set}{@.i}) }"},
        {"T2 ::= SEQUENCE { n INTEGER, t K.&Type ({Set}{@n}) }",
         {"Invalid referenced component: n", relation}},
        {"T3 ::= SEQUENCE { i K.&id ({Set}), t K.&Type ({Set}{@j, @i}) }", {relation}},
        {"T4 ::= K.&Type ({Set}{@i})", {relation}},
        {"T5 ::= SEQUENCE { o SEQUENCE { i K.&id ({Set}) }, l SEQUENCE OF T6,"},
        {"  s SEQUENCE { i K.&id ({Set})({Set}), t K.&Type ({Set}{@o.i, @.i, @l.1.i}) } }"},
        {"T6 ::= SEQUENCE { i R ({Set}), t K.&Type ({Set}{@i.i}) }", {relation}},
        {"R ::= K.&id T7 ::= INSTANCE OF TYPE-IDENTIFIER ({TSet})"},
        {"TSet TYPE-IDENTIFIER ::= { ... } Open K ::= { ... }"},
        {"T8 ::= INTEGER (K.&id ({Set}))", {notField, includes}},
        {"T9 ::= K.&id ({ { &id v, &Type NULL } })",
         {"Invalid INTEGER value", object, element, badSet}},
        {"v BOOLEAN ::= TRUE V3 INTEGER ::= { 1..5, ... }"},
        {"V1 INTEGER ::= { 1 | 2 | v }", {"Invalid INTEGER value", element, "Invalid value set"}},
        {"V2 INTEGER ::= { 5..1 }", {"Invalid value set"}},
        {"V4 INTEGER ::= { ... }",
         {"Element set spec is invalid: { ... } is allowed only in ObjectSets."}},
        {"O1 K ::= { Set | V3 }", {"Invalid object set", "Invalid object set"}},
        {"O2 K ::= { Set | { &id v, &Type NULL } }",
         {"Invalid INTEGER value", object, element, "Invalid object set"}},
    });
}

TEST(Subtypes, ExtensionMarkersMarkTheTypeThatTheyExtend) {
    const TreeFacts tree(
        compileLines({
            {"A ::= INTEGER (1..5, ...) B ::= A (2) C ::= OCTET STRING (SIZE (1..2, ...))"},
            {"D ::= OCTET STRING (SIZE (1..2)) E ::= IA5String (SIZE (1))(FROM (\"a\", ...))"},
            {"F ::= INTEGER (1..5)((1..3, ..., 4))(2) G ::= INTEGER (1..5)(1..3)"},
            {"H ::= INTEGER (0..10)(20..30) I ::= INTEGER (0..10)(-5..8)(2..9 | 7)"},
            // Inner subtypes say nothing about the type that others use as well.
            {"L ::= SEQUENCE OF INTEGER L1 ::= L (WITH COMPONENT (1..5, ...))"},
            {"Q ::= SEQUENCE OF IA5String Q1 ::= Q (WITH COMPONENT (SIZE (1, ...)))"},
            {"Q2 ::= Q (WITH COMPONENT (FROM (\"a\", ...)))"},
            {"S ::= SEQUENCE { a INTEGER OPTIONAL } S1 ::= S (WITH COMPONENTS { a (1, ...) })"},
        }),
        "m");
    for (const std::string row : {"A", "C", "E", "F"})
        EXPECT_EQ(tree.flags(row), "EXTENSIBLE") << row;
    for (const std::string row : {"B", "D", "G", "L.*", "Q.*", "S.a"}) EXPECT_EQ(tree.flags(row), "") << row;
    EXPECT_EQ(tree.bounds("F"), "2..2"); // the parts of the series are together again
    EXPECT_EQ(tree.bounds("G"), "1..3");
    EXPECT_EQ(tree.bounds("H"), "0..10");
    EXPECT_EQ(tree.bounds("I"), "2..8");
}

TEST(Subtypes, DoublingChainsEndInTime) {
    std::vector<Line> lines = {{"T0 ::= IA5String (FROM (\"a\"..\"z\")) S0 K ::= { { &id 1 } }"},
                               {"K ::= CLASS { &id INTEGER UNIQUE }"}};
    for (int i = 1; i <= 60; ++i) {
        const std::string n = std::to_string(i), last = std::to_string(i - 1);
        const std::string both = "(T" + last + " | T" + last + ")";
        lines.push_back({"T" + n + " ::= IA5String " + both + "(FROM " + both + ")"});
        lines.push_back({"S" + n + " K ::= { S" + last + " | S" + last + " }"});
    }
    lines.push_back({"t T60 ::= \"abc\" u SEQUENCE { i K.&id ({S60}) } ::= { i 1 }"});
    expectFindings(lines);
}

} // namespace
} // namespace orvo::test
