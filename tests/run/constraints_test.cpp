#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

constexpr const char* definitions =
    "I ::= INTEGER (0..100) L ::= SEQUENCE OF INTEGER n INTEGER ::= 4 "
    "S ::= SEQUENCE { a INTEGER OPTIONAL, b BOOLEAN OPTIONAL } "
    "Ch ::= CHOICE { a INTEGER, b NULL } P {INTEGER : x} ::= INTEGER (0..x) "
    "OP ::= CLASS { &code INTEGER UNIQUE, &Arg OPTIONAL } o1 OP ::= { &code 1, &Arg I } "
    "Ops OP ::= { o1 | { &code 2 }, ... } Pair ::= SEQUENCE { c OP.&code, a OP.&Arg } ";

/// Module M: definitions on line 1, the assignments from line 2 on.
RunResult compileWith(const std::string& assignments) {
    return compile({{"m.asn", std::string("M DEFINITIONS ::= BEGIN ") + definitions + "\n" +
                                  assignments + "\nEND\n"}});
}

TEST(Constraints, ValidNotationIsKept) {
    expectRows(R"(
T ::= INTEGER (-3<..<n) --= (-3<..<n)
T ::= INTEGER (MIN<..n | 20 UNION 30..<MAX) --= (MIN..n | 20 | 30..MAX)
T ::= INTEGER (1..10, ...) --= (1..10, ...)
T ::= INTEGER (1 | 2, ..., 3 | 4) --= (1 | 2, ... | 3 | 4)
T ::= INTEGER (1..9 ^ 2..8 INTERSECTION 3..7) --= (1..9 ^ 2..8 ^ 3..7)
T ::= INTEGER (1..9 EXCEPT 5) --= (1..9 EXCEPT 5)
T ::= INTEGER (ALL EXCEPT (5 | 6)) --= (ALL EXCEPT (5 | 6))
T ::= INTEGER ((1 | 2) ^ (2 | (3 EXCEPT 4))) --= ((1 | 2) ^ (2 | (3 EXCEPT 4)))
T ::= INTEGER (1..9)(2..8)(3) --= (1..9)(2..8)(3)
T ::= INTEGER (I | INCLUDES M.I | INTEGER) --= (I | I | INTEGER)
T ::= INTEGER (P {3} | P {4} | 7) --= (P {3} | P {4} | 7)
T ::= I (INCLUDES I ! 5) --= (I !5)
T ::= REAL (0..{ mantissa 1, base 2, exponent 3 }) --= (0..{mantissa 1, base 2, exponent 3})
T ::= S ({ a 1 } | { b TRUE }) --= ({a 1} | {b TRUE})
T ::= BIT STRING (SIZE (8, ...)) --= (SIZE (8, ...))
T ::= OCTET STRING (SIZE (1..4 | 8)) --= (SIZE (1..4 | 8))
T ::= SEQUENCE SIZE (1..5) OF NULL --= (SIZE (1..5))
T ::= CHARACTER STRING (SIZE (1)) --= (SIZE (1))
T ::= IA5String (FROM ("a".."z" | "-")) --= (FROM ("a".."z" | "-"))
T ::= BMPString (SIZE (1..4))(FROM ("A".."Z")) --= (SIZE (1..4))(FROM ("A".."Z"))
T ::= VisibleString (SIZE (1) ^ FROM (ALL EXCEPT "a")) --= (SIZE (1) ^ FROM (ALL EXCEPT "a"))
T ::= L (WITH COMPONENT (1 | 2)) --= (WITH COMPONENT (1 | 2))
T ::= S (WITH COMPONENTS { a (1 | 2) PRESENT, b ABSENT }) --= (WITH COMPONENTS {a (1 | 2) PRESENT, b ABSENT})
T ::= S (WITH COMPONENTS { ..., b (TRUE | FALSE) OPTIONAL }) --= (WITH COMPONENTS {..., b (TRUE | FALSE) OPTIONAL})
T ::= S (WITH COMPONENTS { }) --= (WITH COMPONENTS {})
T ::= EMBEDDED PDV (WITH COMPONENTS { ..., identification (WITH COMPONENTS { fixed PRESENT }) }) --= (WITH COMPONENTS {..., identification (WITH COMPONENTS {fixed PRESENT})})
T ::= OCTET STRING (CONTAINING P {5}) --= (CONTAINING)
T ::= INTEGER (CONSTRAINED BY { })(! I : 7) --= (CONSTRAINED BY {})( !I : 7)
T INTEGER ::= { 1 | 2, ... } --= (1 | 2, ...)
T OP ::= { Ops | { &code 3 } | o1, ..., { &code 4 } } --= (Ops | {code 3} | o1, ... | {code 4})
T OP ::= { ... } --= (...)
)",
               {.head = definitions}, [](const TreeFacts& tree) { return tree.constraint("T"); });
}

// ---- records ------------------------------------------------------------------------------------

/// The constraint records of a module by number.
struct Subs {
    explicit Subs(const std::string& assignments)
        : tree(compileWith(assignments), "m"), file(tree.tree()) {}
    stx::SubRec rootOf(const char* path) const {
        return at(stx::constraintOf(file, tree.type(path).nr));
    }
    stx::SubRec at(uint32_t nr) const { return file.subRec(nr); }
    TreeFacts tree;
    const stx::Tree& file;
};

TEST(Constraints, RecordsHaveTheirTypeAndLine) {
    const Subs subs("T ::= INTEGER (1..<10\n | 20, ...)(5)");
    for (uint32_t nr = 1; nr <= subs.file.count(stx::SUB); ++nr) {
        if (subs.at(nr).typeNr != subs.tree.type("T").nr) continue; // of the definitions before
        EXPECT_EQ(subs.at(nr).typeMod, 1U);
    }
    const stx::SubRec sum = subs.at(subs.rootOf("T").left), range = subs.at(sum.left),
                      single = subs.at(range.next), marker = subs.at(single.next);
    for (const stx::SubRec& sub : {sum, range, single, marker, subs.at(sum.next)})
        EXPECT_EQ(sub.typeNr, subs.tree.type("T").nr);
    EXPECT_EQ(range.subFlags, stx::SUBF_LOWER);
    EXPECT_EQ(range.line, 2U);
    EXPECT_EQ(single.line, 3U);
    EXPECT_EQ(marker.subKind, stx::SUB_EXTENSION_MARKER);
}

TEST(Constraints, FieldTypesTakeObjectSetsOrTypes) {
    const Subs subs("T ::= SEQUENCE { c OP.&code ({Ops}), d SEQUENCE { c OP.&code ({Ops}),\n"
                    "  a OP.&Arg ({Ops}{@c, @.c}) }, e OP.&Arg (I) }");
    EXPECT_EQ(subs.rootOf("T.c").subKind, stx::SUB_TABLE);
    EXPECT_EQ(subs.rootOf("T.d.a").subKind, stx::SUB_TABLE);
    EXPECT_EQ(subs.tree.constraint("T.d.a"), "({Ops} {@c,@.c})");
    EXPECT_EQ(subs.rootOf("T.e").subKind, stx::SUB_OPEN_TYPE);
}

TEST(Constraints, NestAsDeepAsTheirBrackets) {
    const std::string deep = "T ::= INTEGER " + std::string(499, '(') + "5" + std::string(499, ')');
    EXPECT_EQ(compileWith(deep).status, 0);
}

// ---- errors -------------------------------------------------------------------------------------

TEST(Constraints, WrongNotationIsReportedInFrontOfTheWhole) {
    Frame frame = {.head = definitions, .before = "T ::= "};
    expectRows(R"(
INTEGER () --! Invalid constraint
INTEGER (1..) --! Invalid constraint
INTEGER (INCLUDES 5) --! Invalid constraint
NULL (CONSTRAINED BY { n : n }) --! Invalid constraint
OP.&Arg (5) --! Invalid constraint
)",
               frame);
    frame.last = "Invalid constraint";
    expectRows(R"(
INTEGER (1 2) --! ')' expected: Missing end of constraint
INTEGER (1 | 2 ^ 3) --! ')' expected: Missing end of constraint
INTEGER (1 | ...) --! ',' expected: In sets a comma is expected before an extension marker
INTEGER (1, 2) --! '...' expected: In sets a comma is allowed only before an extension marker
INTEGER (... | 2) --! ',' expected: In sets a comma is expected after an extension marker
INTEGER (ALL 5) --! 'EXCEPT' expected
INTEGER ((1 2)) --! ')' expected: Invalid "ElementSetSpec"
INTEGER (! 5 6) --! ')' expected: Invalid exception specification
INTEGER (5 ! - n) --! 'number' expected: Invalid exception specification
INTEGER (5 ! 6 7) --! ')' expected: Missing end of constraint
INTEGER (- n) --! 'number' expected: Invalid single value/invalid value range
INTEGER (o1.code) --! Field name expected: Invalid single value/invalid value range
INTEGER (1 < 5) --! '..' expected
BOOLEAN (FALSE..TRUE) --! Value range not allowed: T
SEQUENCE OF BOOLEAN (FALSE..TRUE) --! Value range not allowed
TeletexString ("a".."b") --! Value range not allowed: T
INTEGER (SIZE (1)) --! Size constraint not allowed
OCTET STRING (FROM ("a")) --! Permitted alphabet not allowed
OCTET STRING (WITH COMPONENT (1)) --! Inner subtyping not allowed
OCTET STRING (SIZE 5) --! '(' expected: Invalid size constraint
OCTET STRING (SIZE (1 2)) --! ')' expected: Invalid size constraint
IA5String (FROM "a") --! '(' expected: Invalid permitted alphabet constraint
IA5String (FROM ("a" "b")) --! ')' expected: Invalid permitted alphabet constraint
L (WITH COMPONENT 5) --! '(' expected: Invalid beginning of a constraint
L (WITH COMPONENTS { a }) --! 'COMPONENT' expected: Invalid inner subtyping constraint
S (WITH COMPONENT (1)) --! 'COMPONENTS' expected: Invalid inner subtyping constraint
S (WITH COMPONENTS a) --! '{' expected
S (WITH COMPONENTS { ... }) --! ',' expected
S (WITH COMPONENTS { ..., }) --! Invalid component identifier: }
S (WITH COMPONENTS { c }) --! Invalid component identifier: c
S (WITH COMPONENTS { a (1)(2) }) --! '}' expected
S (WITH COMPONENTS { a (SIZE (1)) }) --! Size constraint not allowed
NULL (CONSTRAINED { }) --! 'BY' expected: Invalid "UserDefinedConstraint"
NULL (CONSTRAINED BY 5) --! '{' expected: Invalid "UserDefinedConstraint"
NULL (CONSTRAINED BY { 5 }) --! 'typeid' expected: Invalid "ActualParameter" in "UserDefinedConstraint"
NULL (CONSTRAINED BY { I I }) --! '}' expected: Invalid "ActualParameter" in "UserDefinedConstraint"
NULL (CONSTRAINED BY { I : 5 }) --! 'typeid' or 'valueid' expected: Invalid "ActualParameter" in "UserDefinedConstraint"
OCTET STRING (CONTAINING 5) --! 'typeid' expected: Invalid "Contents constraint"
OCTET STRING (CONTAINING S ENCODED BY n) --! ')' expected: Missing end of constraint
OP.&code (5) --! '{' expected: Invalid "DefinedObjectSet" in table constraint
OP.&code ({Ops} {c}) --! '@' expected: Invalid component relation constraint
OP.&code ({Ops} {@c d}) --! '}' expected: Invalid component relation constraint
OP.&code ({Ops} {@TRUE}) --! Invalid component relation constraint(s)
OP.&code ({Ops} {@c.0}) --! Invalid component relation constraint(s)
OP.&code ({Ops} {@.c.2147483647}) --! Invalid component relation constraint(s)
Undefined (5) --! Invalid governing type/class: T
SEQUENCE OF Undefined (5) --! Invalid governing type/class
)",
               frame);
}

TEST(Constraints, SetsAndOldSizesHaveMessagesOfTheirOwn) {
    expectRows(R"(
T INTEGER ::= { 1 2 } --! '}' expected ; Element set spec is invalid
T INTEGER ::= { } --! Element set spec is invalid
T ::= SEQUENCE SIZE (1 2) OF NULL --! ')' expected: Invalid size constraint ; Invalid size constraint
T ::= INTEGER (1 |\n TRUE | 3) --! 3: INTEGER value syntax
T ::= S (WITH COMPONENTS { a (TRUE) }) --! INTEGER value syntax
)",
               {.head = definitions});
}

TEST(Constraints, AFailedConstraintLeavesNoRecordsBehind) {
    const auto compiled = [](const char* type) {
        return compile({{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS P {} FROM N;\n" +
                                      std::string(type) + "\nEND\n"},
                        {"n.asn", "N DEFINITIONS ::= BEGIN\n"
                                  "P {INTEGER : x} ::= INTEGER (0..x)\nEND\n"}});
    };
    const TreeFacts without(compiled("T ::= INTEGER (0..5)"), "n");
    const TreeFacts good(compiled("T ::= INTEGER (P { 5 } | P { 6 })"), "n");
    const TreeFacts failed(compiled("T ::= INTEGER (P { 5 } | P { 6 } 7)"), "n");
    EXPECT_EQ(good.tree().count(stx::SUB), without.tree().count(stx::SUB) + 2);
    for (const stx::Kind kind : {stx::MNODE, stx::TNODE, stx::VNODE, stx::SUB, stx::STRI8})
        EXPECT_EQ(failed.tree().count(kind), without.tree().count(kind)) << kind;
}

} // namespace
} // namespace orvo::test
