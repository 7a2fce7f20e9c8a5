// Values checked against their types and constraints: what is found stands beside legal neighbours
// that differ from it in one point.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/findings.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

const std::string range = "Value out of range constraint(s)";
const std::string invalidSeq = "Invalid SEQUENCE value";

TEST(CheckValues, ComponentsArePresentInOrderAndNotRepeated) {
    const std::string missing = "Mandatory component value missing: component ";
    expectFindings({
        {"S ::= SEQUENCE { a INTEGER, b BOOLEAN, c NULL OPTIONAL, d INTEGER DEFAULT 5 }"},
        {"s1 S ::= { a 1, b TRUE }"},
        {"s2 S ::= { a 1, b TRUE, d 6 }"},
        {"s3 S ::= { b TRUE, a 1 }", {"Component values out of order", invalidSeq}},
        {"s4 S ::= { a 1 }", {missing + "'b'", invalidSeq}},
        {"s5 S ::= { }", {missing + "'a'", missing + "'b'", invalidSeq}},
        {"s6 S ::= { a 1, a 2, b TRUE }", {"Duplicate component value", invalidSeq}},
        {"T ::= SET { a INTEGER, b BOOLEAN }"},
        {"t1 T ::= { b TRUE, a 1 }"},
        {"t2 T ::= { b TRUE }", {missing + "'a'", "Invalid SET value"}},
        {"t3 T ::= { a 1, b TRUE, a 1 }", {"Duplicate component value", "Invalid SET value"}},
        {"K ::= SEQUENCE { x NULL, COMPONENTS OF S, z NULL }"},
        {"k1 K ::= { x NULL, a 1, b TRUE, z NULL }"},
        {"k2 K ::= { x NULL, z NULL, a 1, b TRUE }", {"Component values out of order", invalidSeq}},
        {"k3 K ::= { x NULL, a 1, z NULL }", {missing + "'b'", invalidSeq}},
        {"G ::= SEQUENCE { a NULL, ..., [[ b NULL, c NULL ]] }"},
        {"g1 G ::= { a NULL }"},
        {"g2 G ::= { a NULL, c NULL }", {missing + "'b'", invalidSeq}},
        {"g3 G ::= { a NULL, b NULL, c NULL }"},
        {"E ::= SEQUENCE { }"},
        {"e E ::= { }"},
    });
}

TEST(CheckValues, PartsMeetTheConstraintsOfTheirTypes) {
    expectFindings({
        {"C ::= CHOICE { a INTEGER (0..5), b BOOLEAN }"},
        {"c1 C ::= a : 5"},
        {"c2 C ::= a : 6", {range, "Invalid CHOICE value"}},
        {"L ::= SEQUENCE OF INTEGER (0..9)"},
        {"l1 L ::= { 1, 9 }"},
        {"l2 L ::= { 1, 10, 11 }", {range, range, "Invalid SEQUENCE OF value"}},
        {"L2 ::= SET OF C"},
        {"l3 L2 ::= { a : 1, b : TRUE }"},
        {"l4 L2 ::= { a : 7 }", {range, "Invalid CHOICE value", "Invalid SET OF value"}},
        {"D ::= SEQUENCE { a INTEGER (0..5) DEFAULT 5 }"},
        {"D2 ::= SEQUENCE { a INTEGER (0..5) DEFAULT 6 }", {range, "Invalid default value"}},
        {"P { INTEGER : max } ::= SEQUENCE { a INTEGER (0..max) DEFAULT 9 }"},
        {"Q ::= P { 10 }"},
        {"R ::= P { 5 }", {range, "Invalid default value"}},
        {"A ::= SEQUENCE { id INTEGER, any ANY DEFINED BY id }"},
        {"a1 A ::= { id 1, any INTEGER (0..3) : 3 }"},
        {"a2 A ::= { id 1, any INTEGER (0..3) : 5 }",
         {range, "Invalid Open type value", invalidSeq}},
    });
}

TEST(CheckValues, ReferencesAreReportedWhereTheyStand) {
    expectFindings({
        {"T1 ::= INTEGER (0..5)"},
        {"T2 ::= T1 (2..MAX)"},
        {"a T2 ::= 1", {range}},
        {"b T2 ::= 6", {range}},
        {"c T2 ::= 3"},
        {"d T1 ::= c"},
        {"e T2 ::= b", {range}},
        {"f BOOLEAN ::= c", {"Invalid BOOLEAN value"}},
        {"S ::= SEQUENCE { a NULL }"},
        {"S2 ::= SEQUENCE { a NULL }"},
        {"g S ::= { a NULL }"},
        {"h S ::= g"},
        {"i S2 ::= g", {"Invalid SEQUENCE value"}},
        {"j IA5String ::= \"abc\""},
        {"k VisibleString (\"abc\" | \"b\") ::= j"},
        {"l VisibleString (FROM (\"a\"..\"b\")) ::= j",
         {range, "Value out of permitted alphabet constraint(s)"}},
        {"m L ::= { n }", {range, "Invalid SEQUENCE OF value"}},
        {"n T1 ::= 4"},
        {"L ::= SEQUENCE OF INTEGER (0..3)"},
        {"o L ::= { 3, n }", {range, "Invalid SEQUENCE OF value"}},
        {"p UTCTime ::= \"9912312359Z\""},
        {"q IA5String ::= p"},
        {"r OCTET STRING ::= j", {"Invalid OCTET STRING value"}},
    });
}

TEST(CheckValues, EveryConstraintIsMetOrNot) {
    const std::string out = "Value out of ";
    const std::string unions = out + "union constraint(s)", size = out + "size constraint(s)";
    const std::string alphabet = out + "permitted alphabet constraint(s)";
    const std::string single = out + "single value constraint(s)";
    expectFindings({
        {"a1 INTEGER (1..10 | 20) ::= 20"},
        {"a2 INTEGER (1..10 | 20) ::= 15", {unions}},
        {"a3 INTEGER (1<..<3) ::= 2"},
        {"a4 INTEGER (1<..<3) ::= 3", {range}},
        {"a5 INTEGER (MIN..MAX) ::= -9223372036854775806"},
        {"a6 INTEGER (1..10 ^ 5..20) ::= 5"},
        {"a7 INTEGER (1..10 ^ 5..20) ::= 4", {range, out + "INTERSECTION constraint(s)"}},
        {"a8 INTEGER (1..10)(5..7) ::= 4", {range, out + "catenated constraint(s)"}},
        {"a9 INTEGER (1..10 EXCEPT 5) ::= 4"},
        {"b1 INTEGER (1..10 EXCEPT 5) ::= 5", {out + "EXCEPT constraint(s)"}},
        {"b2 INTEGER (1..10 EXCEPT 5) ::= 11", {range, out + "EXCEPT constraint(s)"}},
        {"b3 INTEGER (ALL EXCEPT 5) ::= 4"},
        {"b4 INTEGER (ALL EXCEPT 5) ::= 5", {out + "ALL EXPECT constraint(s)"}},
        {"b5 INTEGER (5) ::= 6", {single}},
        {"b6 OCTET STRING ('A0'H) ::= '1010'B"},
        {"b7 OCTET STRING ('A0'H) ::= 'A000'H", {single}},
        {"T ::= INTEGER (0..5)"},
        {"b8 INTEGER (T | 9) ::= 9"},
        {"b9 INTEGER (T) ::= 6", {range}},
        {"c1 IA5String (FROM (\"a\"..\"z\" | \"09\")) ::= \"ab0\""},
        {"c2 IA5String (FROM (\"a\"..\"z\")) ::= \"aB\"", {range, alphabet}},
        {"c3 IA5String (FROM (\"ab\" | \"c\")) ::= \"cd\"", {unions, alphabet}},
        {"c4 IA5String (FROM (MIN..\"b\")) ::= \"Ab\""},
        {"c5 OCTET STRING (SIZE (1..2)) ::= '000000001'B"},
        {"c6 OCTET STRING (SIZE (1..2)) ::= 'ABCDEF'H", {range, size}},
        {"c7 IA5String (SIZE (3)) ::= { \"a\", \"bc\" }"},
        {"L ::= SEQUENCE (SIZE (1..2)) OF INTEGER"},
        {"d1 L ::= { 1, 2 }"},
        {"d5 L ({ 1, 2 }) ::= { 2, 1 }", {single}},
        {"M1 ::= SET OF INTEGER"},
        {"d6 M1 ({ 1, 2 } | { }) ::= { 2, 1 }"},
        {"d7 M1 ({ 1, 1, 2 }) ::= { 1, 2, 2 }", {single}},
        {"d2 L ::= { }", {range, size}},
        {"d3 L (WITH COMPONENT (0..5)) ::= { 1, 5 }"},
        {"d4 L (WITH COMPONENT (0..5)) ::= { 6, 1 }",
         {range, out + "WITH COMPONENT constraint(s)"}},
        {"d0 L (WITH COMPONENT (0..5)) ::= { n,", {range, out + "WITH COMPONENT constraint(s)"}},
        {"n }", {range}},
        {"n INTEGER ::= 6"},
        {"V INTEGER ::= { 1 | 2 }"},
        {"e1 V ::= 2"},
        {"e2 V ::= 3", {unions}},
        {"f1 REAL ({mantissa 1, base 10, exponent 0}..MAX) ::= {mantissa 10, base 10, exponent "
         "-1}"},
        {"f2 REAL ({mantissa 1, base 10, exponent 0}..MAX) ::= {mantissa 9, base 10, exponent -1}",
         {range}},
        {"f3 REAL (0..MAX) ::= PLUS-INFINITY"},
        {"f4 REAL ({mantissa 1, base 2, exponent 10}) ::= {mantissa 1024, base 10, exponent 0}"},
        {"f5 REAL ({mantissa 1, base 2, exponent -1}) ::= {mantissa 1, base 10, exponent -1}",
         {single}},
        {"f6 REAL (PLUS-INFINITY) ::= {mantissa 1, base 10, exponent 32767}"}, // beyond a double
        {"f7 REAL (0) ::= {mantissa 1, base 10, exponent -32767}"},
        {"f8 REAL (MIN..0) ::= {mantissa 1, base 2, exponent -300}", {range}},
        {"h5 REAL (MIN<..0) ::= MINUS-INFINITY", {range}},
        {"h6 T (MIN<..<MAX) ::= 5", {range}},
        {"h7 T (MIN<..<MAX) ::= 4"},
        {"h3 REAL (0..PLUS-INFINITY) ::= PLUS-INFINITY"},
        {"h4 REAL (0..<PLUS-INFINITY) ::= PLUS-INFINITY", {range}},
        {"N ::= NumericString"},
        {"g1 N ::= \"12 3\""},
        {"g2 N (SIZE (1)) ::= \"1a\"", {alphabet}},
        {"g3 PrintableString ::= \"a'b?\""},
        {"g4 PrintableString ::= \"a@b\"", {alphabet}},
        {"h1 BMPString (FROM (\"a\"..\"b\")) ::= \"ab\""},
        {"W ::= IA5String (SIZE (1)) (FROM (\"a\"..\"b\"))"},
        {"j1 IA5String (FROM (W)) ::= \"abba\""}, // the size is no character
        {"i1 ObjectDescriptor (FROM (\"ab\")) ::= \"aba\""},
        {"i2 ObjectDescriptor (FROM (\"ab\")) ::= \"c\"", {single, alphabet}},
        {"h2 UniversalString (FROM (\"a\"..\"b\")) ::= \"c\"", {range, alphabet}},
    });
}

TEST(CheckValues, EveryRecordIsReported) {
    const std::string inner = "Value out of WITH COMPONENT constraint(s)";
    const SourceFile other = {"n.asn", "N DEFINITIONS ::= BEGIN\nl L ::= { 3, 9 }\n"
                                       "L ::= SEQUENCE OF INTEGER\nEND\n"};
    expectFindings({{"IMPORTS L, l FROM N;"},
                    {"a L (WITH COMPONENT (0..5)) ::= { n, n }", {range, range, inner}},
                    {"n INTEGER ::= 6"},
                    // What a value behind a reference holds is reported at the reference.
                    {"b L (WITH COMPONENT (0..5)) ::= l", {range, inner}},
                    {"LL ::= SEQUENCE OF L"},
                    {"c LL (WITH COMPONENT (WITH COMPONENT (0..5))) ::= { l, l }",
                     {range, inner, range, inner, inner}}},
                   {}, {other});
}

TEST(CheckValues, DefinitionsMayStandInAnyOrder) {
    const std::string invalidOid = "Invalid OBJECT IDENTIFIER value";
    const std::string prefix = "Invalid OBJECT IDENTIFIER prefix";
    const std::string defaultValue = "Invalid default value";
    // A value answers for what it holds, and so do defaults and actual parameters.
    expectFindingsInAnyOrder({{"S ::= SEQUENCE { a INTEGER (0..5), d D DEFAULT { a 9 } }",
                               {range, invalidSeq, defaultValue}},
                              {"D ::= SEQUENCE { a INTEGER (0..8), s S OPTIONAL }"},
                              {"v1 S ::= { a 6 }", {range, invalidSeq}},
                              {"v2 S ::= v1"},
                              {"v3 D ::= { a 4, s v2 }"},
                              {"v4 D ({ a 4, s v1 }) ::= v3"},
                              {"P {S : x} ::= SEQUENCE { s S DEFAULT x }"},
                              {"Q ::= P {{ a 7 }}", {range, invalidSeq, defaultValue}},
                              {"p {INTEGER : i} S ::= { a i }"},
                              {"v5 S ::= p { 8 }", {range, invalidSeq}},
                              {"R ::= P {v5}"},
                              {"U ::= P {p { 9 }}", {range, invalidSeq, defaultValue}}});
    expectFindingsInAnyOrder(
        {{"o OBJECT IDENTIFIER ::= { p 5 }", {prefix, invalidOid}},
         {"p OBJECT IDENTIFIER ::= { 1 }",
          {"Value of OBJECT IDENTIFIER out of range: Too few object identifier components.",
           invalidOid}},
         {"T ::= SEQUENCE { x OBJECT IDENTIFIER DEFAULT { p 7 } }",
          {prefix, invalidOid, defaultValue}},
         {"q OBJECT IDENTIFIER ({1 2} | {1 3}) ::= p", {invalidOid}}});
    // While a constraint is checked, the type in which it stands is no other.
    expectFindingsInAnyOrder({{"T ::= INTEGER (ALL EXCEPT v)"},
                              {"v A ::= 5", {"Value out of ALL EXPECT constraint(s)"}},
                              {"A ::= T"},
                              {"w A ::= 6"}});
    const std::string c = "C ::= INTEGER (0..9) (CONSTRAINED BY {D}) (5..8)\n";
    const std::string d = "D ::= SEQUENCE { e INTEGER (0..20 ^ C) DEFAULT 6 }\n";
    for (const std::string& body : {c + d, d + c})
        EXPECT_EQ(TreeFacts(compile({moduleM(body)}), "m").bounds("D.e"), "5..8");
    // A string in itself has no end.
    const std::vector<std::string> size = {"Value out of single value constraint(s)",
                                           "Value out of size constraint(s)"};
    expectFindingsInAnyOrder({{"s1 IA5String ::= { \"a\", s2 }"},
                              {"s2 IA5String ::= { \"bc\", s1 }"},
                              {"x IA5String (SIZE (3)) ::= s1", size},
                              {"y IA5String (SIZE (3)) ::= s2", size},
                              {"z IA5String (FROM (\"abc\")) ::= s2"}});
}

TEST(CheckValues, BoundsOfAnotherModuleAreComparedByTheirText) {
    // The string numbers of the two modules differ.
    const SourceFile other = {"n.asn", "N DEFINITIONS ::= BEGIN EXPORTS lo, hi;\n"
                                       "x IA5String ::= \"zzz\"\n"
                                       "lo IA5String ::= \"b\"\n"
                                       "hi IA5String ::= \"d\"\n"
                                       "END\n"};
    expectFindings({{"IMPORTS lo, hi FROM N;"},
                    {"a IA5String (FROM (lo..hi)) ::= \"bc\""},
                    {"b IA5String (FROM (lo..hi)) ::= \"ad\"",
                     {range, "Value out of permitted alphabet constraint(s)"}}},
                   {}, {other});
}

TEST(CheckValues, SomeCannotBeCompared) {
    EXPECT_NE(compileLines({{"v ANY (INTEGER : 1) ::= INTEGER : 1"}})
                  .diagnostics("m")
                  .find("line   2 : Comparison of two ANY values not yet implemented, sorry.\n"),
              std::string::npos);
    const RunResult run =
        compileLines({{"B ::= BIT STRING { a(4294967296) }"}, {"v B ({a}) ::= {a}"}});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("Bit string index overflow"), std::string::npos);
}

TEST(CheckValues, ChainsOfReferencesMayBeLong) {
    std::vector<Line> lines = {{"T ::= SEQUENCE { a T OPTIONAL, n INTEGER OPTIONAL }"},
                               {"v0 T ::= { n 1 }"},
                               {"w0 T ::= { n 2 }"},
                               {"s0 IA5String ::= \"x\""}};
    for (int i = 1; i <= 10000; ++i) {
        const std::string own = std::to_string(i), last = std::to_string(i - 1);
        lines.push_back(
            {"v" + own + " T ::= { a v" + last + " } w" + own + " T ::= { a w" + last + " }"});
        lines.push_back({"s" + own + " IA5String ::= { s" + last + " }"});
    }
    lines.push_back({"x T (v10000) ::= w10000", {"Value out of single value constraint(s)"}});
    lines.push_back({"y IA5String (SIZE (1)) ::= s10000"});
    expectFindings(lines);
}

TEST(CheckValues, InnerSubtypesRestrictPresence) {
    const std::string out = "Value out of WITH COMPONENTS constraint(s)";
    expectFindings({
        {"S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL, c NULL OPTIONAL }"},
        {"a1 S (WITH COMPONENTS { ..., a PRESENT }) ::= { a 1, c NULL }"},
        {"a2 S (WITH COMPONENTS { ..., a PRESENT }) ::= { b 1 }", {out}},
        {"a3 S (WITH COMPONENTS { ..., a ABSENT }) ::= { a 1 }", {out}},
        {"a4 S (WITH COMPONENTS { a, b }) ::= { a 1 }"},
        {"a5 S (WITH COMPONENTS { a, b }) ::= { a 1, c NULL }", {out}},
        {"C ::= CHOICE { a INTEGER, b NULL }"},
        {"b1 C (WITH COMPONENTS { ..., a ABSENT }) ::= b : NULL"},
        {"b2 C (WITH COMPONENTS { ..., a ABSENT }) ::= a : 1", {out}},
        {"b3 C (WITH COMPONENTS { ..., a PRESENT }) ::= b : NULL", {out}},
    });
}

TEST(CheckValues, FullSpecificationsHoldForEachPart) {
    const std::string out = "Value out of WITH COMPONENTS constraint(s)";
    expectFindings({
        {"S ::= SEQUENCE { a INTEGER OPTIONAL, b INTEGER OPTIONAL }"},
        {"F ::= S (WITH COMPONENTS { a })"},
        {"G ::= F (WITH COMPONENTS { a, b })"},
        {"g G ::= { b 1 }"}, // the list nearest to the value counts
        {"T ::= SEQUENCE { f F OPTIONAL, c CHOICE { f F, n NULL } OPTIONAL,"},
        {"  l SEQUENCE OF F OPTIONAL, any TYPE-IDENTIFIER.&Type OPTIONAL, x NULL OPTIONAL }"},
        {"R ::= T (WITH COMPONENTS { f, c, l, any })"},
        {"r1 R ::= { f { a 1 }, c f : { a 1 }, l { { a 1 } }, any F : { a 2 } }"},
        {"r2 R ::= { x NULL }", {out}},
        {"r3 R ::= { f { b 1 } }", {out, invalidSeq}},
        {"r4 R ::= { c f : { b 1 } }", {out, "Invalid CHOICE value", invalidSeq}},
        {"r5 R ::= { l { { b 1 } } }", {out, "Invalid SEQUENCE OF value", invalidSeq}},
        {"r6 R ::= { any F : { b 1 } }", {out, "Invalid Open type value", invalidSeq}},
        {"C ::= CLASS { &Type }"},
        {"Set C ::= { { &Type F } }"},
        {"U ::= SEQUENCE { v C.&Type ({Set}), x NULL OPTIONAL } (WITH COMPONENTS { v })"},
        {"u1 U ::= { v F : { a 1 } }"},
        {"u2 U ::= { v S : { b 1 } }", {"Value out of table constraint(s)", invalidSeq}},
    });
}

TEST(CheckValues, ItemsAndNamedBitsAreThoseOfTheType) {
    const std::string bits = "Invalid BIT STRING value";
    expectFindings({
        {"n INTEGER ::= 7"},
        {"E ::= ENUMERATED { red, green(n), ..., blue }"},
        {"a1 E ::= green"},
        {"a2 E ::= blue"},
        {"a3 E ::= a1"},
        {"a4 E ::= one", {"Invalid ENUMERATED value"}},
        {"one INTEGER ::= 1"},
        {"B ::= BIT STRING { x(0), y(1), z(2) }"},
        {"b1 B ::= '111'B"},
        {"b2 B ::= '1111'B", {bits}},
        {"b3 B ::= '1110'B"},
        {"b4 B ::= 'E0'H"},
        {"b5 B ::= 'F0'H", {bits}},
        {"b6 B ::= { x, z }"},
        {"b7 B (SIZE (3)) ::= { z }"},
        {"b8 BIT STRING ::= '1111'B"},
    });
}

TEST(CheckValues, ObjectIdentifiersObeyTheRulesOfTheirArcs) {
    const std::string invalid = "Invalid OBJECT IDENTIFIER value";
    const std::string component = "Invalid OBJECT IDENTIFIER component: ";
    const std::string outOfRange = "Value of OBJECT IDENTIFIER out of range: ";
    std::string arcs = "1 2";
    for (int i = 3; i <= 32; ++i) arcs += " " + std::to_string(i);
    const auto oid = [](const std::string& name, const std::string& value) {
        return name + " OBJECT IDENTIFIER ::= { " + value + " }";
    };
    expectFindings({
        {oid("a1", "0 39")},
        {oid("a2", "0 40"), {component + "2nd component", invalid}},
        {oid("a3", "2 999")},
        {oid("a4", "3 1"), {component + "1st component", invalid}},
        {oid("a5", "0 0 26")},
        {oid("a6", "0 0 27"), {component + "3rd component", invalid}},
        {oid("a7", "1 0 27")},
        {oid("b1", "itu-t recommendation x 680")},
        {oid("b2", "iso standard 8571 application-context (1) n")},
        {"n INTEGER ::= 7"},
        {oid("b3", "1 n neg"), {component + "3rd component", invalid}},
        {"neg INTEGER ::= -1"},
        {oid("b4", "1 2 3 4 neg"), {component + "5th component", invalid}},
        {oid("b5", "1 2 3 o"), {component + "4th component", invalid}},
        {oid("o", "1 2")},
        {oid("c1", "1"), {outOfRange + "Too few object identifier components.", invalid}},
        {oid("c2", arcs)},
        {oid("c3", arcs + " 33"),
         {outOfRange + "Limitation: there can be only 32 object identifier components.", invalid}},
        {oid("c4", "c2 33"),
         {outOfRange + "Limitation: there can be only 32 object identifier components.", invalid}},
        {oid("d1", "o 5")},
        {oid("d2", "d1 (4) 6"), {component + "1st component", invalid}},
        {oid("d3", "o"),
         {outOfRange + "An object identifier prefix without additional components.", invalid}},
        {oid("d4", "a2 5"), {"Invalid OBJECT IDENTIFIER prefix", invalid}},
        {oid("d5", "later 5"), {"Invalid OBJECT IDENTIFIER prefix", invalid}},
        {oid("later", "1 50"), {component + "2nd component", invalid}},
        {"e1 OBJECT IDENTIFIER ::= d1"},
        {"e2 OBJECT IDENTIFIER ::= a2", {invalid}},
        {"e3 OBJECT IDENTIFIER ({1 2 5} | {1 2 6}) ::= d1"},
        {"e4 OBJECT IDENTIFIER ({1 2 7}) ::= d1", {"Value out of single value constraint(s)"}},
    });
}

TEST(CheckValues, TimesAreDatesTimesAndZones) {
    std::vector<Line> lines;
    const auto add = [&](bool generalized, bool utc, std::initializer_list<const char*> texts) {
        for (const char* text : texts)
            for (const std::string type : {"GeneralizedTime", "UTCTime"}) {
                Line line{"t" + std::to_string(lines.size()) + " " + type + " ::= \"" + text +
                          "\""};
                if (!(type[0] == 'G' ? generalized : utc))
                    line.errors = {"Invalid " + type + " value"};
                lines.push_back(line);
            }
    };
    add(false, true, {"9912312359Z", "991231235959+0100"});
    add(true, false,
        {"19991231235959.5Z", "19991231235959,25-0130", "1999123123", "1999123123+01"});
    add(false, false,
        {"991231235959", "9912312359+01", "99123123Z", "991231235959.5Z", "9912312359Zx",
         "9913312359Z", "199912312359,25-0130", "19991231235959.", "19991301000000Z",
         "19991200000000Z", "19991231240000Z", "19991231236000Z", "19991231235960Z",
         "19991231235959+", "19991231", "1999123123595", ""});
    expectFindings(lines);
}

} // namespace
} // namespace orvo::test
