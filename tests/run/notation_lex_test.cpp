// Words, numbers, strings and the values of the types of X.680 (02/2021): texts that are read with
// what the tree holds of them, and their nearest neighbours that are not.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

// What the tree holds of the value v.
TEST(NotationLex, ReadsNumbersStringsAndValues) {
    const FactOf valueOfV = [](const TreeFacts& tree) { return tree.valueText("v"); };
    expectRows(R"(
v INTEGER ::= 9223372036854775807 --= 9223372036854775807 -- 12.8
v INTEGER ::= -9223372036854775808 --= -9223372036854775808 -- 12.8: the smallest exact number
v INTEGER ::= -99999999999999999999 --= -99999999999999999999 -- 12.8: beyond 64 bits
v REAL ::= 1.E5 --= {mantissa 1, base 10, exponent 5} -- 12.9: no fraction
v REAL ::= 3e+5 --= {mantissa 3, base 10, exponent 5} -- 12.9: no point
v REAL ::= 25E0 --= {mantissa 25, base 10, exponent 0} -- 12.9: exponent 0
v REAL ::= -1200 --= {mantissa -12, base 10, exponent 2} -- 21.6: a number
v REAL ::= -9223372036854775808.0E-1 --= {mantissa -9223372036854775808, base 10, exponent -1} -- 21.6
v REAL ::= 0.00 --= 0 -- 21.6
v REAL (-0.0) ::= -0 --= -0 -- 21.6: minus zero is a value of its own
v REAL (1 | NOT-A-NUMBER) ::= NOT-A-NUMBER --= NOT-A-NUMBER -- 21.6
v REAL ::= { mantissa 0, base 2, exponent 1 } --= 0 -- 21.5: a mantissa may be 0
v REAL (-1.5..-0.5) ::= -1.5 --= {mantissa -15, base 10, exponent -1} -- 51.4: signed ends of ranges
v INTEGER (1..5) ::= 5 --= 5 -- 12.9: a range is no point
v UTF8String ::= { 0, 0, 0, 233 } --= "\u00e9" -- 41.8: a quadruple
v UTF8String (SIZE (2)) ::= "é€" --= "\u00e9\u20ac" -- 51.5: a size in characters
v UTF8String (FROM ("é".."ü")) ::= "ü" --= "\u00fc" -- 51.7: an alphabet
v UTF8String ("a" | "é") ::= "é" --= "\u00e9" -- 51.2
v UTF8String (SIZE (3)) ::= { { 0, 0, 0, 65 }, "b", { 0, 0, 0, 67 } } --= {"A", "b", "C"} -- 41.8: quadruples in lists
v BMPString (w | x) (FROM (w | a..b)) ::= "é" w UTF8String ::= "é" x UniversalString ::= "x" a UTF8String ::= "a" b UniversalString ::= "b" --= "\u00e9" -- 41: the characters of other kinds
v UTF8String ::= { w, "x" } w UniversalString ::= { 0, 1, 0, 0 } --= {w, "x"} -- 41.8: in parts
v RELATIVE-OID ::= { iso 3 rel b(n) } iso RELATIVE-OID ::= { 8 } n INTEGER ::= 7 rel RELATIVE-OID ::= { a(4) } --= {iso 3 rel b(n)} -- 33: names have no meaning below the root
v OBJECT IDENTIFIER ({ 1 2 5 6 7 }) ::= { iso 2 rel 7 } rel RELATIVE-OID ::= { 5 6 } --= {1 2 rel 7} -- 32.3: relative parts
v OBJECT IDENTIFIER ({ 1 2 5 6 }) ::= { 1 2 b 6 } b RELATIVE-OID ::= { 5 } w OBJECT IDENTIFIER ({ 0 0 2 6 }) ::= { itu-t recommendation b 6 } --= {1 2 b 6} -- 32, annex A: letters name arcs of 0 0 alone
v RELATIVE-OID ({ 1 } | { 1 2 }) ::= { one 2 } one RELATIVE-OID ::= { 1 } --= {one 2} -- 33, 51.2
v S ::= CONTAINING {x CONTAINING b : w} S ::= T (SIZE (1)) T ::= OCTET STRING (CONTAINING E) E ::= SEQUENCE { x BIT STRING (CONTAINING CHOICE { b INTEGER }) } w INTEGER ::= 5 --= CONTAINING {x CONTAINING b : w} -- 23.3: in a string that a reference constrains, nested
v T ::= d T ::= OCTET STRING (CONTAINING INTEGER) K ::= CLASS { &t T } WITH SYNTAX { T &t } o K ::= { T CONTAINING 6 } d T ::= o.&t P {T:p} ::= SEQUENCE { a T DEFAULT p } Q ::= P {CONTAINING 7} --= d -- 23.3: in objects and actual parameters
v OID-IRI ("/ISO/é") ::= "/ISO/é" --= "/ISO/\u00e9" -- 34
v TIME (d) ::= d d DATE ::= "2020-02-29" --= d -- 38.4: the time types are types of TIME
)",
               {edition}, valueOfV);
    for (const auto& [clause, row] : std::initializer_list<std::pair<const char*, const char*>>{
             {"12.1.6: a carriage return ends a comment", "-- x\rv INTEGER ::= 1 -- y\r --= 1"},
             {"12.6.4: a comment holds any bytes", "/* \x80 \xC3 \" -- ' */ v INTEGER ::= 1 --= 1"},
             {"12.10: white space, NO-BREAK SPACE too",
              "v BIT STRING ::= '01\xC2\xA0\\n 1'B --= '011'B"},
             {"12.14.1: every line end", "v UTF8String ::= \"a \v b\fc\r"
                                         "d\xC2\xA0\r\\n\te f\" --= \"abcde f\""}}) {
        SCOPED_TRACE(clause);
        expectRows(row, {edition}, valueOfV);
    }
}

TEST(NotationLex, ReportsLexicalErrors) {
    expectRows(R"(
v INTEGER ::= 1 # /* x --! L Invalid end character in: /*
v REAL ::= 1.0E03 --! L Leading zeroes in: realnumber
v INTEGER ::= 01 --! L Leading zeroes in: number
)",
               {edition});
    // No UTF-8, longer than it need be, a surrogate, beyond U+10FFFF; a control character.
    for (const std::string byte : {"\xC3", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xED\xA0\x80",
                                   "\xF4\x90\x80\x80", "\xC2\x85"})
        expectRows("v UTF8String ::= \"" + byte + "\" --! L Invalid character in: cstring",
                   {edition});
    // 12.6.4: no word about the header that is missing.
    EXPECT_EQ(compile({{"m.asn", "\n/* M DEFINITIONS ::= BEGIN END\n"}}, edition).diagnostics("m"),
              listed(2, "L Invalid end character in: /*"));
}

TEST(NotationLex, ReportsValuesThatTheTypeDoesNotHave) {
    expectRows(R"(
v REAL ::= 9223372036854775808 --! Mantissa beyond 64 bits or exponent beyond 16 bits: 9223372036854775808
v REAL ::= { mantissa 9223372036854775808, base 2, exponent 0 } --! Mantissa beyond 64 bits or exponent beyond 16 bits: 9223372036854775808
v REAL (0 | 1.5) ::= -0 --! Value out of union constraint(s)
v REAL (0 | 1.5) ::= NOT-A-NUMBER --! Value out of union constraint(s)
v REAL (-1.5..2.5) ::= -1.75 --! Value out of range constraint(s)
v UTF8String ::= { 0, 17, 0, 0 } --! Invalid Quadruple/Tuple ; UTF8String value syntax
v UniversalString ::= { 128, 0, 0, 0 } --! Invalid Quadruple/Tuple ; UniversalString value syntax
T ::= REAL (0..NOT-A-NUMBER) --! Invalid range constraint(s)
v UTF8String ::= { 6, 5 } --! Invalid Quadruple/Tuple ; UTF8String value syntax
v IA5String ::= { "a", { 8, 1 } } --! Invalid Quadruple/Tuple ; IA5String value syntax
v UTF8String (SIZE (1)) ::= "éx" --! Value out of single value constraint(s) ; Value out of size constraint(s)
v UTF8String ("a" | "é") ::= "è" --! Value out of union constraint(s)
v GeneralizedTime ::= "é" --! Character that the type does not have ; GeneralizedTime value syntax
v BMPString ::= { w, "x" } w UniversalString ::= { 0, 1, 0, 0 } --! Character that the type does not have
v IA5String ::= w w UTF8String ::= "é" --! Character that the type does not have
v BMPString (w) ::= "b" w UTF8String ::= "a" --! Value out of single value constraint(s)
T ::= UTF8String (FROM (b..a)) a BMPString ::= "a" b UniversalString ::= "b" --! Invalid range constraint(s) ; Invalid permitted alphabet constraint(s)
v UTF8String (FROM ("a".."c") ^ "a".."b") ::= "b" --! Value range not allowed ; Invalid constraint
v DATE ::= "é" --! Character that the type does not have ; DATE value syntax
v T (w) ::= '0105'H w T ::= CONTAINING 5 T ::= OCTET STRING (CONTAINING INTEGER)
v DATE ::= { "2020-02-29" } --! DATE value syntax
v RELATIVE-OID ::= { 3 o } o OBJECT IDENTIFIER ::= { 1 2 } --! Invalid RELATIVE-OID component: 2nd component ; Invalid RELATIVE-OID value
v OCTET STRING ::= CONTAINING 5 --! CONTAINING a value needs a contents constraint with a type ; OCTET STRING value syntax
v T ::= CONTAINING 10 T ::= OCTET STRING (CONTAINING INTEGER (0..9)) --! Value out of range constraint(s) ; Invalid OCTET STRING value
v T (CONTAINING INTEGER) (w) ::= CONTAINING 7 w T (CONTAINING INTEGER) ::= CONTAINING 8 T ::= OCTET STRING --! Value out of single value constraint(s) ; Value out of catenated constraint(s)
v RELATIVE-OID ({ 1 } | { 1 2 }) ::= { 2 } --! Value out of union constraint(s)
v OBJECT IDENTIFIER ::= { rel 3 } rel RELATIVE-OID ::= { 1 40 } --! Invalid OBJECT IDENTIFIER component: 1st component ; Invalid OBJECT IDENTIFIER value
v OID-IRI ::= r r RELATIVE-OID-IRI ::= "a" --! Invalid OID-IRI value
)",
               {edition});
    // More arcs than the tree holds.
    std::string arcs;
    for (int i = 0; i < 129; ++i) arcs += " 1";
    expectRows("v RELATIVE-OID ::= {" + arcs +
                   " } --! Value of RELATIVE-OID out of range: "
                   "Limitation: there can be only 128 object "
                   "identifier components. ; Invalid RELATIVE-OID value",
               {edition});
}

/// A word that is reserved but for its underscores is a name (12.38).
TEST(NotationLex, NamesWithUnderscoresAreNoWords) {
    expectRows("OBJECT_x ::= NULL MINUS_INFINITY ::= OBJECT-x v REAL ::= MINUS-INFINITY --! "
               "W Underscore in name: OBJECT_x ; W Underscore in name: MINUS_INFINITY",
               {lenient});
}

} // namespace
} // namespace orvo::test
