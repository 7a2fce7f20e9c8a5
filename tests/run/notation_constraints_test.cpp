// Constraints, objects and parameters in the notation of X.680 to X.683 (02/2021).

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

constexpr const char* definitions =
    "n INTEGER ::= 4 O ::= OCTET STRING per OBJECT IDENTIFIER ::= {2 1 3} text IA5String ::= \"x\" "
    "K ::= CLASS { &id INTEGER UNIQUE, &Type, &Vs INTEGER OPTIONAL, &Sub K OPTIONAL, &o K OPTIONAL "
    "}"
    "  WITH SYNTAX { &Type ID &id [VS &Vs] [SUB &Sub] [O &o] } "
    "k1 K ::= { INTEGER ID 1 VS {1..3} } k2 K ::= { NULL ID 2 SUB {k1} O k1 } Ks K ::= { k1 | k2 "
    "} ";

const Frame frame = {.options = edition, .defaults = "AUTOMATIC TAGS ", .head = definitions};

RunResult compileWith(const std::string& body, const std::vector<std::string>& options = edition) {
    return compileBody(std::string(definitions) + "\n" + body, options, "AUTOMATIC TAGS ");
}

// The constraint as the tree has it; parentheses around what is a record of its own.
TEST(NotationConstraints, AreKept) {
    expectRows(R"(
T ::= INTEGER (1 | 2 ^ 3 | 9 EXCEPT 5) --= (1 | (2 ^ 3) | (9 EXCEPT 5)) -- X.680 50.1: EXCEPT binds strongest, then intersections, then unions; one flat union.
T ::= INTEGER (1 ^ 2 EXCEPT 3 INTERSECTION 4) --= (1 ^ (2 EXCEPT 3) ^ 4)
T ::= INTEGER (1 | (2 UNION 3) | (((4)))) --= (1 | (2 | 3) | 4)
T ::= INTEGER (1 | 2, ..., 3 | 4 ^ 5 ! 6) --= (1 | 2, ... | 3 | (4 ^ 5) !6)
T ::= INTEGER (ALL EXCEPT 5, ..., ALL EXCEPT (6 | 7)) --= ((ALL EXCEPT 5), ... | (ALL EXCEPT (6 | 7)))
T ::= INTEGER (1 ^ (ALL EXCEPT 2)) --= (1 ^ (ALL EXCEPT 2))
T INTEGER ::= { 1 ^ n, ..., n } --= ((1 ^ n), ... | n)
T ::= IA5String (SIZE (1..5, ..., 6 ! 7) ^ FROM ("a".."z" EXCEPT "b")) --= (SIZE (1..5, ... | 6 !7) ^ FROM ("a".."z" EXCEPT "b"))
T K ::= { ..., k1 | k2 } --= (... | k1 | k2) -- X.681 12.3
T K ::= { k2.&Sub | Ks EXCEPT k1, ... } --= (Sub | (Ks EXCEPT k1), ...)
T K ::= { ... } --= (...)
T ::= REAL (WITH COMPONENTS { mantissa (1..9), base (2), exponent (-5..5) }) --= (WITH COMPONENTS {mantissa (1..9), base (2), exponent (-5..5)}) -- X.680 51.8
T ::= EXTERNAL (WITH COMPONENTS { ..., identification (WITH COMPONENTS { ..., fixed ABSENT }), data-value (CONTAINING NULL) }) --= (WITH COMPONENTS {..., identification (WITH COMPONENTS {..., fixed ABSENT}), data_value (CONTAINING NULL)})
T ::= CHARACTER STRING (WITH COMPONENTS { ..., string-value (SIZE (4)) }) --= (WITH COMPONENTS {..., string_value (SIZE (4))})
T ::= INSTANCE OF TYPE-IDENTIFIER (WITH COMPONENTS { ..., type-id ({2 1}) }) --= (WITH COMPONENTS {..., type_id ({2 1})})
T ::= UTF8String (PATTERN "a.*" ^ SIZE (1..9) | PATTERN text) --= ((PATTERN "a.*" ^ SIZE (1..9)) | PATTERN text) -- X.680 51.9, 51.10, 51.11
T ::= TIME (SETTINGS "Basic=Date Date=YMD") --= (SETTINGS "Basic=Date Date=YMD")
T ::= DATE ("2020-01-01".."2021-12-31") --= ("2020-01-01".."2021-12-31")
T ::= O (SIZE (1..9))(CONTAINING SEQUENCE OF NULL ENCODED BY per ! 3) --= (SIZE (1..9))(CONTAINING SEQUENCE OF ENCODED BY per !3) -- X.682 11
T ::= BIT STRING (ENCODED BY {2 1 1}) --= (ENCODED BY {2 1 1})
T ::= O (CONTAINING T) --= (CONTAINING T)
T ::= K.&id (1..5 | k2.&id) --= (1..5 | k2.&id) -- X.681 14: what constrains a field of a class constrains the type that it stands for.
T ::= K.&Type (INTEGER | SEQUENCE OF NULL) --= (INTEGER | SEQUENCE OF)
T ::= INTEGER (k1.&Vs | Ks.&id ^ 2) --= (k1.&Vs | (Ks.&id ^ 2))
)",
               frame, [](const TreeFacts& tree) { return tree.constraint("T"); });
}

TEST(NotationConstraints, ThatAreNoneSayWhy) {
    Frame types = frame;
    types.before = "T ::= ";
    types.last = "Invalid constraint";
    expectRows(R"(
INTEGER (1 EXCEPT 2 EXCEPT 3) --! A second EXCEPT needs parentheses
INTEGER (1 | ALL EXCEPT 5) --! ALL EXCEPT cannot be an operand
INTEGER (ALL EXCEPT 5 | 6) --! ALL EXCEPT cannot be an operand
INTEGER (..., 5) --! A set of values begins with an extension marker: T
INTEGER ((1, ...) | 2) --! An extension marker stands once, behind the root of the whole set
INTEGER (1, ..., 2, ...) --! An extension marker stands once, behind the root of the whole set
INTEGER (1 | 2, 3) --! '...' expected: In sets a comma is allowed only before an extension marker
INTEGER (1 | ...) --! ',' expected: In sets a comma is expected before an extension marker
INTEGER (1, ... | 2) --! ',' expected: In sets a comma is expected after an extension marker
INTEGER (1 ! 5, ...) --! ')' expected: Missing end of constraint
REAL (WITH COMPONENTS { ..., sign (1) }) --! Invalid component identifier: sign
BOOLEAN (WITH COMPONENTS { }) --! Inner subtyping not allowed
O (PATTERN "a") --! PATTERN not allowed: O
IA5String (SETTINGS "Basic=Date") --! SETTINGS not allowed: T
TIME (SETTINGS text) --! 'cstring' expected
BIT STRING { a(0) } (CONTAINING NULL) --! Contents constraint not allowed: T
K.&id (CONTAINING NULL) --! Contents constraint not allowed: id
O (CONTAINING 5) --! 'typeid' expected: Invalid "Contents constraint"
O (CONTAINING NULL ENCODED per) --! 'BY' expected: Invalid "Contents constraint"
O (SIZE (5) | CONTAINING NULL) --! Not allowed beside other elements of a set: CONTAINING
O (CONTAINING NULL ^ SIZE (5)) --! Not allowed beside other elements of a set: CONTAINING
K.&Type ({Ks}{@..}) --! Invalid component relation constraint(s)
)",
               types);
    types.options = lenient;
    types.last = "";
    expectRows("INTEGER (..., 5) --! W A set of values begins with an extension marker: T", types);
}

/// What the later passes find: in the text of a pattern, in what is contained, in bounds.
TEST(NotationConstraints, AreChecked) {
    expectMarked(R"(
A ::= IA5String (PATTERN n) --! Invalid UniversalString value ; Invalid PATTERN constraint(s)
B ::= O (CONTAINING NULL ENCODED BY n) --! Invalid OBJECT IDENTIFIER value ; Invalid contents constraint(s)
C ::= O (CONTAINING K) --! Invalid contents constraint(s)
D ::= O (CONTAINING INTEGER (5..3)) --! Invalid range constraint(s) ; Invalid contents constraint(s)
E ::= REAL (WITH COMPONENTS { base (3) }) --! Value out of union constraint(s) ; Invalid single value constraint(s) ; Invalid WITH COMPONENTS constraint(s)
f K.&Type (NULL) ::= BOOLEAN : TRUE --! Value out of TypeConstraint constraint(s)
)",
                 frame);
    // The bounds of EXCEPT are those of its left operand, in older modules it has none.
    const std::string body = "\nT ::= INTEGER ((1..100000 EXCEPT 5) | 20)";
    EXPECT_EQ(TreeFacts(compileWith(body), "m").bounds("T"), "1..100000");
    EXPECT_EQ(TreeFacts(compileBody(body), "m").bounds("T"), "20..20");
}

// X.682 10: `@.` begins at the innermost structure, each further dot one further out; the lists
// between them do not count. `a` is the id of `v`'s object three structures out.
constexpr const char* relations =
    "T ::= SEQUENCE { a K.&id ({Ks}), b SEQUENCE { c K.&id ({Ks}), d SEQUENCE OF SEQUENCE { "
    "e K.&id ({Ks}), f K.&Type ({Ks}{@.e}), g K.&Type ({Ks}{@..c}), h K.&Type ({Ks}{@...a}), "
    "i K.&Type ({Ks}{@...b.c, @a}) } } }\n";

TEST(NotationConstraints, RelationsClimbTheStructures) {
    expectFacts(TreeFacts(expectMarked(relations, frame), "m"), R"(
constraint T.b.d.*.f: ({Ks} {@.e}) ; constraint T.b.d.*.g: ({Ks} {@..c})
constraint T.b.d.*.h: ({Ks} {@...a}) ; constraint T.b.d.*.i: ({Ks} {@...b.c,@a})
)");
    expectRows("T ::= SEQUENCE { a K.&id ({Ks}), b SEQUENCE { c K.&Type ({Ks}{@...a}) } } --! "
               "Invalid component relation constraint(s)",
               frame);
    // 1 is that of INTEGER, 2 that of NULL.
    const auto value = [](const char* g, const char* h) {
        return compileWith(std::string(relations) +
                           "t T ::= { a 1, b { c 2, d { { e 1, f INTEGER : "
                           "5, g " +
                           g + ", h " + h + ", i NULL : NULL } } } }")
            .diagnostics("m");
    };
    EXPECT_NE(value("NULL : NULL", "INTEGER : 5").find("Value out of component relation"),
              std::string::npos)
        << "i agrees with b.c and a, which name different objects";
    EXPECT_NE(value("INTEGER : 5", "INTEGER : 5"), value("NULL : NULL", "INTEGER : 5"));
    EXPECT_NE(value("NULL : NULL", "NULL : NULL"), value("NULL : NULL", "INTEGER : 5"));
}

// ---- objects and parameters ---------------------------------------------------------------------

// What a row claims is in the values that it defines: each is held against its type.
TEST(NotationConstraints, ObjectsAndParameters) {
    expectRows(R"(
F ::= CLASS { &Type DEFAULT INTEGER, &fix INTEGER DEFAULT 5, &var &Type DEFAULT 7, &FixSet INTEGER DEFAULT {1 | 2 ^ 3, ...}, &VarSet &Type DEFAULT {1..3}, &obj K DEFAULT k1, &Objs K DEFAULT {..., k1} } f F ::= {} v INTEGER (5) ::= f.&fix w INTEGER (1) ::= f.&obj.&id x f.&Type (3) ::= 3 y INTEGER (f.&FixSet) ::= 1 T ::= SEQUENCE { i K.&id ({f.&Objs}) } -- X.681 9: a DEFAULT for every sort of field.
F ::= CLASS { &a INTEGER, &b INTEGER OPTIONAL } WITH SYNTAX { PATTERN &a [SETTINGS &b] } f F ::= { PATTERN 5 SETTINGS 7 } v INTEGER (7) ::= f.&b -- 10.6: words that begin no type are names still.
F ::= CLASS { &Type OPTIONAL, &id INTEGER } WITH SYNTAX { [&Type] IDENTIFIED BY &id } f F ::= { IDENTIFIED BY 5 } g F ::= { K.&Type IDENTIFIED BY 6 } v INTEGER (5) ::= f.&id w INTEGER (6) ::= g.&id -- 10.12: a group that begins with a type is left out where the word behind it comes first.
v INTEGER (1) ::= k2.&o.&id w INTEGER (1..3) ::= M.k1.&id T ::= INTEGER (k1.&Vs | Ks.&id ^ 2) U K ::= { k2.&Sub | k2.&o, ..., Ks.&Sub } S ::= SEQUENCE { a k1.&Type, b K.&id ({k2.&Sub}) } s S ::= { a 7, b 1 } -- 15: information from objects and sets of them, as values, types, sets of values and objects.
P {A : v, A} ::= SEQUENCE { a A DEFAULT v } T ::= P {5, INTEGER} t T ::= { a 6 } -- X.683 8: parameters that govern others, also those in front of them.
P {A, A : Vs} ::= SEQUENCE { a A (Vs) } T ::= P {INTEGER, {1..5 | 7}} t T ::= { a 7 }
P {C, C : Set} ::= SEQUENCE { a C.&id ({Set}), b C.&Type ({Set}{@a}) } T ::= P {K, {Ks}} t T ::= { a 2, b NULL : NULL }
P {A, A : v} ::= INTEGER (v) T ::= P {INTEGER, 5} t T ::= 5
P {A, A : v} ::= SEQUENCE { a INTEGER (CONSTRAINED BY {A : v}) } T ::= P {BOOLEAN, TRUE}
P {K : o, o.&Type : v} ::= SEQUENCE { a o.&Type DEFAULT v } T ::= P {k1, 5}
o {INTEGER : i, A} K ::= { A ID i } P {K : o, INTEGER : v, A} ::= SEQUENCE { a INTEGER (o.&id), b INTEGER (v), c A } T ::= P {o {5, NULL}, o {6, NULL}.&id, o {7, BOOLEAN}.&Type} t T ::= { a 5, b 6, c TRUE } -- 9.5: every actual parameter.
P {INTEGER : Vs, K : Set} ::= SEQUENCE { a INTEGER (Vs), b K.&id ({Set}) } T ::= P {{k1.&Vs}, {k2.&Sub | k2.&o, ..., k2}} t T ::= { a 3, b 2 }
P {K : S} ::= SEQUENCE { a K.&id ({S}) } Q {A, K : S} ::= SEQUENCE { a A, b P {{S}} } R {K : S} ::= SEQUENCE { a Q {P {{S | {NULL ID 9}}}, {S}} } T ::= R {{Ks}} t T ::= { a { a { a 9 }, b { a 2 } } } -- Braces in braces, to any depth.
P {A, OBJECT IDENTIFIER : rules, UTF8String : p} ::= SEQUENCE { a O (CONTAINING A ENCODED BY rules), b UTF8String (PATTERN p) } T ::= P {NULL, per, "abc"}
P {A, A : Vs} ::= SEQUENCE { a A (Vs) } t P {INTEGER, {1..5}} ::= { a 7 } --! Value out of range constraint(s) ; Invalid SEQUENCE value
F ::= CLASS { &a INTEGER } WITH SYNTAX { DATE &a } --! Invalid literal: DATE
P {K : S} ::= K.&id ({S}) T ::= P {Ks} --! '{' expected ; Invalid actual parameter list
)",
               frame);
}

/// The lenient read any set without its braces, and say it to whom the fault is charged.
TEST(NotationConstraints, SetsWithoutBracesAreForgiven) {
    Frame forgiving = frame;
    forgiving.options = lenient;
    expectMarked(R"(
P {K : S, INTEGER : Vs} ::= SEQUENCE { a K.&id ({S}), b INTEGER (Vs) }
A ::= P {Ks, 1..5 | 7} --! W A set as actual parameter has no braces: Ks ; W A set as actual parameter has no braces: Vs
B ::= P {k2.&Sub, INTEGER} Q {K : Objects} ::= P {Objects, {1}} --! W A set as actual parameter has no braces: S
C ::= Q {{}} --! W A set as actual parameter has no elements: Objects ; W A set as actual parameter has no braces: Objects
)",
                 forgiving);
}

/// An associated type is that of the notation in which a value or constraint is written.
TEST(NotationConstraints, AssociatedTypesAreThoseOfTheEdition) {
    const std::string later =
        "e EXTERNAL ::= { identification syntax : {1 2}, data-value '00'H }\n"
        "p EMBEDDED PDV ::= { identification fixed : NULL, data-value '00'H }";
    const std::string older =
        "e EXTERNAL ::= { identification syntax : {1 2}, data-value encoded : '0'B }";
    EXPECT_EQ(compileWith(later).diagnostics("m"), "");
    EXPECT_EQ(compileBody(older).diagnostics("m"), "");
    EXPECT_EQ(compileWith(older).diagnostics("m"),
              listed({{3, "OCTET STRING value syntax"}, {3, "EXTERNAL value syntax"}}));
}

} // namespace
} // namespace orvo::test
