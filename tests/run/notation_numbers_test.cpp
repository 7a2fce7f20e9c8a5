// Integers of any size and real numbers in modules of today: bounds, value fields, values and what
// is wrong with them.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

/// 2^63 = 9223372036854775808, 2^64 = 18446744073709551616. `forms` is the code of the lower bound
/// plus four times that of the upper one: 1 where a bound is the number that 64 bits have for MIN
/// or MAX, 2 where only 64 bits without sign hold it, 3 where they do not.
/// Bounds, their forms, the value field: 5 unsigned 64 bits, 9 signed; 6 and 8 signed 8 and 32.
std::string numberFacts(const TreeFacts& tree) {
    return tree.bounds("T") + " " + std::to_string(int{tree.node("T").boundForms}) + " " +
           tree.valueField("T");
}

TEST(NotationNumbers, BoundsAreExactOrSayThatTheyAreNot) {
    expectRows(
        R"(
INTEGER (0..18446744073709551615) --= 0..18446744073709551615 8 (5, 5) -- 2^64 - 1 is the largest that 64 bits hold: 0 + 4 * 2
INTEGER (0..9223372036854775807) --= 0..9223372036854775807 4 (9, 9) -- 2^63 - 1 looks like MAX and is not: 0 + 4 * 1
INTEGER (MIN..-9223372036854775808) --= MIN..-9223372036854775808 4 (9, 9) -- MIN is MIN, -2^63 looks like it: 0 + 4 * 1
INTEGER (0..18446744073709551616) --= 0..>18446744073709551615 12 (8, 8) -- 2^64 is beyond: 0 + 4 * 3, and no size code has it
INTEGER (-9223372036854775809..MAX) --= <-9223372036854775808..MAX 3 (8, 8) -- -2^63 - 1 is beyond: 3 + 4 * 0
INTEGER (-9223372036854775808..9223372036854775807) --= -9223372036854775808..9223372036854775807 5 (9, 9) -- both ends of signed 64 bits: 1 + 4 * 1
INTEGER (-1..9223372036854775808) --= -1..9223372036854775808 8 (8, 8) -- 2^63 needs a word without sign, -1 one with it
INTEGER (9223372036854775809 | 9223372036854775808, ..., 99999999999999999999) --= 9223372036854775808..>18446744073709551615 14 (8, 8) -- a union goes from its least to its greatest operand; the addition counts: 2 + 4 * 3
INTEGER ((9223372036854775808..MAX) ^ (5..18446744073709551615)) --= 9223372036854775808..18446744073709551615 10 (5, 5) -- an intersection has the inner ends, here 2^63 and 2^64 - 1 whichever side gives them: 2 + 4 * 2
INTEGER ((0..9223372036854775808) EXCEPT 18446744073709551615) --= 0..9223372036854775808 8 (5, 5) -- EXCEPT leaves the ends of what it takes from
INTEGER (0..<18446744073709551616) --= 0..>18446744073709551615 12 (5, 5) -- ends are stored as written; without 2^64 the values are those of 64 bits
INTEGER (9223372036854775807..MAX) --= 9223372036854775807..MAX 1 (9, 9) -- 2^63 - 1 up to what has no end
INTEGER (0..99999999999999999999)(1..18446744073709551615) --= 1..18446744073709551615 8 (5, 5) -- a series: the second constraint lies within the first
INTEGER (0..big) (9223372036854775806<..MAX) --= 9223372036854775806..18446744073709551615 8 (5, 5) -- the constraint of a reference by name, from 2^63 - 2 + 1
ENUMERATED { a(-9223372036854775809), ..., c(18446744073709551615), b } --= <-9223372036854775808..>18446744073709551615 15 (8, 8) -- 20.6: b follows 2^64 - 1, the largest so far among the additions
ENUMERATED { a, b(18446744073709551615) } --= 0..18446744073709551615 8 (5, 5)
INTEGER --= MIN..MAX 0 (8, 8)
INTEGER (-128..127) --= -128..127 0 (6, 6)
OCTET STRING (SIZE (0..4)) --= 0..4 0 (14, 2) -- sizes have no codes; an array (16) with a length of 8 bits (2): 16 + 2 - 4
)",
        {.options = edition, .head = "big INTEGER ::= 18446744073709551615", .before = "T ::= "},
        numberFacts);
}

/// The nearest number of 64 bits, and the exact text where it is not the number.
TEST(NotationNumbers, ValuesBeyond64BitsHaveATextBesideThem) {
    const RunResult run = compileBody("T ::= INTEGER { n(-9223372036854775809) }\n"
                                      "E ::= ENUMERATED { a(18446744073709551615), ..., b(1), "
                                      "c(18446744073709551616), d }\n"
                                      "least INTEGER ::= -9223372036854775808\n"
                                      "above INTEGER ::= 9223372036854775808",
                                      edition);
    ASSERT_EQ(run.diagnostics("m"), "");
    const TreeFacts tree(run, "m");
    EXPECT_EQ(tree.named("T"), "n(-9223372036854775809)");
    EXPECT_EQ(tree.named("E"),
              "a(18446744073709551615) ... b(1) c(18446744073709551616) d(18446744073709551617)");
    EXPECT_EQ(tree.value("least").node().number, INT64_MIN);
    EXPECT_EQ(tree.value("least").node().exact, 0U);
    EXPECT_EQ(tree.value("above").node().number, INT64_MAX);
    EXPECT_EQ(tree.tree().text(tree.value("above").node().exact), "9223372036854775808");
}

// Equal and nearly equal to what the type asks for, the integers all with the same nearest number;
// 2^53 and its successor are one double; 2^32767 is 7.0773051552...E9863; 2.25 takes UUIDs.
TEST(NotationNumbers, ComparisonIsExact) {
    expectRows(R"(
v INTEGER (99999999999999999999) ::= w w INTEGER ::= 99999999999999999999
v INTEGER (99999999999999999999) ::= 99999999999999999998 --! Value out of single value constraint(s)
v INTEGER (9223372036854775807) ::= 9223372036854775808 --! Value out of single value constraint(s)
v INTEGER (18446744073709551616..MAX) ::= 18446744073709551616
v INTEGER (18446744073709551616..MAX) ::= 18446744073709551615 --! Value out of range constraint(s)
v INTEGER (MIN..<-18446744073709551616) ::= -18446744073709551617
v INTEGER (MIN..<-18446744073709551616) ::= -18446744073709551616 --! Value out of range constraint(s)
v INTEGER (MIN..9223372036854775807) ::= 9223372036854775808 --! Value out of range constraint(s)
v INTEGER (ALL EXCEPT 9223372036854775807) ::= 9223372036854775808
T ::= INTEGER (18446744073709551617..18446744073709551616) --! Invalid range constraint(s)
T ::= INTEGER (18446744073709551616..18446744073709551616)
T ::= INTEGER { a(18446744073709551616), b(18446744073709551617) } v T (b) ::= a --! Value out of single value constraint(s)
T ::= INTEGER { a(18446744073709551616), b(18446744073709551616) } --! Non-distinct value in named number/bit list: b
T ::= ENUMERATED { a, ..., b(18446744073709551617), c(18446744073709551616) } --! Non-ascending value in extension addition: c
T ::= ENUMERATED { a(0), ..., b(-9223372036854775809), c(-9223372036854775808) }
T ::= SEQUENCE { a INTEGER (0..18446744073709551615) DEFAULT 18446744073709551616 } --! Value out of range constraint(s) ; Invalid default value
T ::= BIT STRING { a(9223372036854775807) } v T ::= '1'B
T ::= [18446744073709551616] NULL --! Tag number shall be INTEGER and in range 0..2097151
v INTEGER (0 | n) ::= 18446744073709551616 n INTEGER ::= 18446744073709551616
v OBJECT IDENTIFIER ({ 2 25 340282366920938463463374607431768211455 1 }) ::= { u 1 } u OBJECT IDENTIFIER ::= { 2 25 id } id INTEGER ::= 340282366920938463463374607431768211455
v OBJECT IDENTIFIER ({ 2 25 340282366920938463463374607431768211455 }) ::= { 2 25 id } id INTEGER ::= 340282366920938463463374607431768211454 --! Value out of single value constraint(s)
v OBJECT IDENTIFIER ::= { 1 18446744073709551616 } --! Invalid OBJECT IDENTIFIER component: 2nd component ; Invalid OBJECT IDENTIFIER value
v REAL (9007199254740993) ::= 9007199254740992 --! Value out of single value constraint(s)
v REAL (0..9007199254740992) ::= 9007199254740993 --! Value out of range constraint(s)
v REAL (0..9007199254740993) ::= { mantissa 9007199254740993, base 2, exponent 0 }
v REAL ({ mantissa 125, base 2, exponent -3 }) ::= 15.625 w REAL ({ mantissa -125, base 2, exponent -3 }) ::= -15.625
v REAL (0 | 1 | 2 | 3 | 4 | 5 | 6 | 7 | 8 | 9 | 10 | 11 | 12 | 13 | 14 | 15 | 0.1 | 0.375) ::= { mantissa 3, base 2, exponent -3 }
v REAL (1E400..2E400) ::= 2E400 w REAL (0<..MAX) ::= PLUS-INFINITY
v REAL (1E400..2E400) ::= 200000000000000001E383 --! Value out of range constraint(s)
v REAL (MIN..<MAX) ::= PLUS-INFINITY --! Value out of range constraint(s)
v REAL (7077305155E9854..7077305156E9854) ::= { mantissa 1, base 2, exponent 32767 }
v REAL (7077305156E9854..MAX) ::= { mantissa 1, base 2, exponent 32767 } --! Value out of range constraint(s)
v REAL ::= 1E-32768 w REAL ::= 10E32766
v REAL ::= 0.1E-32768 --! Mantissa beyond 64 bits or exponent beyond 16 bits: 0.1E-32768
v REAL ::= { mantissa 1, base 2, exponent 32768 } --! Mantissa beyond 64 bits or exponent beyond 16 bits: 32768
v REAL ::= { mantissa 1, base 3, exponent 0 } --! Invalid REAL value
T ::= REAL (1.0<..1) --! Invalid range constraint(s)
v REAL (-40) ::= { mantissa m, base two, exponent o.&id } m INTEGER ::= -5 two INTEGER { two(2) } ::= two K ::= CLASS { &id INTEGER } o K ::= { &id 3 }
P {INTEGER:n} ::= REAL ({ mantissa n, base 10, exponent 0 }) v P {7} ::= 70E-1
v REAL ::= { mantissa m, base 2, exponent 0 } m REAL ::= 5 --! REAL value syntax
v REAL (WITH COMPONENTS { mantissa (0..1000), base (10), exponent (-2) }) ::= 5
v REAL (WITH COMPONENTS { mantissa (0..1000), base (10), exponent (-2) }) ::= 5.001 --! Value out of WITH COMPONENTS constraint(s)
v REAL (WITH COMPONENTS { mantissa (125), base (2), exponent (-3) }) ::= 15.625
v REAL (WITH COMPONENTS { mantissa (124), base (2), exponent (-3) }) ::= 15.625 --! Value out of WITH COMPONENTS constraint(s)
v REAL (WITH COMPONENTS { ..., base (2) }) ::= 0.1
v REAL (WITH COMPONENTS { ..., base (10) }) ::= { mantissa 1, base 2, exponent 0 } --! Value out of WITH COMPONENTS constraint(s)
v REAL (WITH COMPONENTS { ..., mantissa (1..5) }) ::= 0 --! Value out of WITH COMPONENTS constraint(s)
v REAL (WITH COMPONENTS { ..., mantissa (1..5) }) ::= NOT-A-NUMBER
T ::= SEQUENCE { a INTEGER, b NULL OPTIONAL } v T (WITH COMPONENTS { ..., a (5) }) ::= { a 5 }
T ::= SEQUENCE { a INTEGER, b NULL OPTIONAL } v T (WITH COMPONENTS { ..., a (5) }) ::= { a 6 } --! Value out of single value constraint(s) ; Value out of WITH COMPONENTS constraint(s)
T ::= CHOICE { a INTEGER, b BOOLEAN } v T (WITH COMPONENTS { a (5), b }) ::= b : TRUE
)",
               {edition});
}

} // namespace
} // namespace orvo::test
