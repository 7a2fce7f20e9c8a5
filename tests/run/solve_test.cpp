// Solving of references: chains, cycles, selection types, COMPONENTS OF, fields of classes and
// objects, defaults, and all of it across modules and instances.

#include <algorithm>

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(References, AreFollowedToTheirEnd) {
    expectRows(R"(
A ::= B\nB ::= A --! Invalid recursion in definition of type ; 3: Invalid recursion in definition of type
A ::= A --! Invalid recursion in definition of type
A ::= B\nB ::= C\nC ::= B --! Invalid recursion in definition of type ; 3: Invalid recursion in definition of type ; 4: Invalid recursion in definition of type
A ::= SEQUENCE { a A OPTIONAL }
a INTEGER ::= b\nb INTEGER ::= a --! Invalid recursion in definition of value: b ; 3: Invalid recursion in definition of value: a
a INTEGER ::= b b INTEGER ::= c c INTEGER ::= 1
C ::= CHOICE { a INTEGER, b NULL } S ::= a < C v S ::= 5
C ::= CHOICE { a INTEGER } D ::= C S ::= a < D T ::= S v T ::= 5
C ::= CHOICE { a INTEGER } S ::= b < C --! Invalid selection type: b
C ::= SEQUENCE { a INTEGER } S ::= a < C --! Invalid selection type: a
S ::= a < C\nC ::= CHOICE { a S } --! Invalid recursion in definition of type: a ; 3: Invalid recursion in definition of type
S ::= SEQUENCE { COMPONENTS OF T, c NULL } T ::= SEQUENCE { a INTEGER, b NULL } v S ::= { a 1, b NULL, c NULL }
S ::= SEQUENCE { COMPONENTS OF T } T ::= SEQUENCE { COMPONENTS OF U } U ::= SEQUENCE { a INTEGER } v S ::= { a 1 }
S ::= SEQUENCE { COMPONENTS OF T, c INTEGER } T ::= SET { a NULL } --! Invalid type in COMPONENTS OF
S ::= SET { COMPONENTS OF T } T ::= SET { a NULL }
T ::= SEQUENCE { a NULL, COMPONENTS OF T } --! Invalid recursion in definition of type
S ::= SEQUENCE { a NULL, COMPONENTS OF T } T ::= SEQUENCE { b NULL, COMPONENTS OF S } --! Invalid recursion in definition of type
S ::= SEQUENCE { COMPONENTS OF T }\nT ::= T --! Invalid recursion in definition of type ; 3: Invalid recursion in definition of type
S ::= SEQUENCE { a NULL, ..., [[ COMPONENTS OF T ]] } T ::= SEQUENCE { b NULL }
)",
               automatic);
}

TEST(References, LeadThroughClassesAndObjects) {
    expectRows(R"(
T ::= o.&Type v T ::= 5
T ::= p.&Type v T ::= TRUE -- the field's default
T ::= p.&Need v T ::= 5
v INTEGER ::= o.&id w INTEGER ::= p.&val
T ::= o.&obj.&Type v T ::= NULL
v INTEGER ::= o.&obj.&n
q C ::= p T ::= q.&Type v T ::= FALSE
T ::= C.&id v T ::= 5
T ::= C.&obj.&n v T ::= 5
S D ::= { o.&Set } T ::= SEQUENCE { a D.&n ({S}) }
S D ::= { p.&Set, ... } -- optional and absent: an empty set
T ::= o.&nix --! Invalid information from object: nix
T ::= p.&obj --! Invalid information from object: obj
v INTEGER ::= d.&x --! Invalid information from object: x
T ::= o.&id --! Defined type syntax: id
T ::= C.&nix --! Invalid class field type: nix
U ::= NULL T ::= U.&id --! Invalid class field type: id
T ::= TYPE-IDENTIFIER.&id v T ::= { 1 2 }
v INTEGER ::= r.&id\nr C ::= { ID v NEED NULL } --! Invalid recursion in definition of value: v ; 3: Invalid recursion in definition of value: v
T ::= r.&Need r C ::= { ID 9 NEED r.&Need } --! Invalid recursion in definition of type: Need
)",
               {.defaults = "AUTOMATIC TAGS ",
                .head = "C ::= CLASS { &id INTEGER UNIQUE, &Type DEFAULT BOOLEAN, &Set D OPTIONAL, "
                        "&obj D OPTIONAL, &val INTEGER DEFAULT 7, &Need } WITH SYNTAX { ID &id "
                        "[TYPE &Type] [OBJS &Set] [OBJ &obj] [VAL &val] NEED &Need } "
                        "D ::= CLASS { &Type, &n INTEGER } d D ::= { &Type NULL, &n 3 } "
                        "o C ::= { ID 1 TYPE INTEGER OBJS {d} OBJ d NEED NULL } "
                        "p C ::= { ID 2 NEED o.&Type }"});
}

TEST(Defaults, AreParsedAgainstTheirField) {
    // A variable-type field is governed by the default of the field that names its type.
    expectRows(R"(
S ::= SEQUENCE { a INTEGER DEFAULT 5, b T DEFAULT { x TRUE } } T ::= SEQUENCE { x BOOLEAN }
S ::= SEQUENCE { a BOOLEAN\n DEFAULT 5 } --! 3: BOOLEAN value syntax
C ::= CLASS { &Type DEFAULT BOOLEAN, &val &Type DEFAULT TRUE }
C ::= CLASS { &Type DEFAULT BOOLEAN, &val &Type DEFAULT 5 } --! BOOLEAN value syntax
C ::= CLASS { &Type, &val &Type\nDEFAULT TRUE } --! 3: Invalid governing type/class: val
C ::= CLASS { &Set INTEGER DEFAULT { 1 | 2 | x } } x INTEGER ::= 3
C ::= CLASS { &Set INTEGER DEFAULT { TRUE } } --! INTEGER value syntax
)",
               automatic);
}

// What one module needs of the other is solved when it is needed, whichever comes first.
TEST(References, AreSolvedOnDemandAcrossModules) {
    const SourceFile first = {"first.asn", "First DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                                           "IMPORTS v, bad, Loop2, P{} FROM Secnd;\n"
                                           "T ::= SEQUENCE { a INTEGER (0..v), b NULL }\n"
                                           "Loop1 ::= Loop2\n"
                                           "w INTEGER ::= v\n"
                                           "x T ::= bad\n"
                                           "y P{T} ::= { { a v, b NULL } }\n"
                                           "END\n"};
    const SourceFile second = {"secnd.asn", "Secnd DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                                            "IMPORTS T, Loop1, w, y FROM First;\n"
                                            "v INTEGER ::= 5\n"
                                            "bad T ::= { a v, c w }\n"
                                            "Loop2 ::= Loop1\n"
                                            "P{X} ::= SEQUENCE OF X\n"
                                            "z P{T} ::= y\n"
                                            "END\n"};
    for (const bool inOrder : {true, false}) {
        SCOPED_TRACE(inOrder);
        const RunResult run = inOrder ? compile({first, second}) : compile({second, first});
        EXPECT_EQ(run.diagnostics("first"),
                  "  ** ERROR on line   4 : Invalid recursion in definition of type\n");
        EXPECT_EQ(run.diagnostics("secnd"),
                  "  ** ERROR on line   4 : Invalid component identifier: c\n"
                  "  ** ERROR on line   4 : SEQUENCE value syntax\n"
                  "  ** ERROR on line   5 : Invalid recursion in definition of type\n");
    }
}

/// `count` assignments "A0 ... ::= A1", "A1 ... ::= A2", ... and an end.
std::string chain(int count, const std::string& link, const std::string& end) {
    std::string body;
    for (int i = 1; i <= count; ++i) body += numbered(link, i) + "\n";
    return body + end;
}

/// The lines of a text in the opposite order.
std::string backward(const std::string& text) {
    std::string turned;
    for (size_t end = text.size(); end != std::string::npos;) {
        const size_t begin = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
        const size_t first = begin == std::string::npos ? 0 : begin + 1;
        turned += text.substr(first, end - first) + "\n";
        end = begin;
    }
    return turned;
}

const std::string withFields = "C ::= CLASS { &id INTEGER, &T }\n";

/// T, reached through the field of a class again and again.
std::string namedField(int times) {
    std::string text = "N ::= CLASS { &n N OPTIONAL, &f INTEGER (0..9) }\nT ::= N";
    for (int i = 0; i < times; ++i) text += ".&n";
    return text + ".&f\n";
}

TEST(References, ChainsMayBeLong) {
    constexpr int length = 20000, longest = 100000;
    const std::string end = std::to_string(length), far = std::to_string(longest);
    const std::string bodies[] = {
        chain(length, "T@ ::= T#", "T" + end + " ::= INTEGER"),
        chain(length, "v@ INTEGER ::= v#", "v" + end + " INTEGER ::= 1"),
        chain(length, "v@ T ::= { a v# }",
              "v" + end + " T ::= { }\nT ::= SEQUENCE { a T OPTIONAL }"),
        // Each level has the components of all levels behind it.
        chain(2000, "T@ ::= SEQUENCE { a@ NULL, COMPONENTS OF T# }",
              "T2000 ::= SEQUENCE { z NULL }"),
        chain(length, "T@ ::= a < C@ C@ ::= CHOICE { a T# }", "T" + end + " ::= INTEGER"),
        chain(length, "L@ ::= CLASS { &obj L#, &A }", "L" + end + " ::= CLASS { &A }"),
        withFields + chain(longest, "o@ C ::= { &id o#.&id, &T o#.&T }",
                           "o" + far +
                               " C ::= { &id 5, &T BOOLEAN }\n"
                               "v INTEGER (5) ::= o0.&id\nw o0.&T ::= TRUE"),
        chain(longest, "C@ ::= CLASS { &f C#.&f, &A }",
              "C" + far + " ::= CLASS { &f INTEGER }\nv C0.&f ::= 5"),
        chain(longest, "S@ ::= SEQUENCE { COMPONENTS OF S# }",
              "S" + far +
                  " ::= SEQUENCE { a NULL, b INTEGER }\n"
                  "v S0 ::= { a NULL, b 5 }"),
        namedField(length) + chain(length, "U@ ::= T v@ U@ ::= 5", ""),
        withFields + backward(chain(length, "o@ C ::= { &id o#.&id, &T o#.&T }",
                                    "o" + end + " C ::= { &id 5, &T BOOLEAN }")),
        backward(chain(length, "C@ ::= CLASS { &f C#.&f, &A }",
                       "C" + end + " ::= CLASS { &f INTEGER }")),
        backward(chain(length, "S@ ::= SEQUENCE { COMPONENTS OF S# }\nv@ S@ ::= { a NULL }",
                       "S" + end + " ::= SEQUENCE { a NULL }")),
    };
    for (const std::string& body : bodies) {
        SCOPED_TRACE(body.substr(0, body.find('\n', body.find("::= CLASS { &id") + 1)));
        const RunResult run = compile({moduleM(body)});
        EXPECT_EQ(run.status, 0); // in time
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.diagnostics("m"), "");
    }
    // As long a cycle: each of its values is reported, 500 of them with text.
    const RunResult run =
        compile({moduleM(chain(length, "v@ INTEGER ::= v#", "v" + end + " INTEGER ::= v0"))});
    EXPECT_NE(run.out.find("Semantic errors   : 20001\n"), std::string::npos);
}

// A walk that has passed many links is noted on its way; from there others come to the same end,
// and to the field that a walk is to stop at.
TEST(References, LeadToTheSameEndFromEverywhere) {
    const std::string body =
        withFields +
        chain(100, "o@ C ::= { &id o#.&id, &T o#.&T }",
              "o100 C ::= { &id 5, &T INTEGER (0..9) }\n") +
        chain(100, "v@ INTEGER (5) ::= o@.&id w@ o@.&T ::= 7", "") +
        chain(100, "K@ ::= CLASS { &f K#.&f, &A }", "K100 ::= CLASS { &f INTEGER (0..9) }\n") +
        chain(100, "U@ ::= K@.&f x@ U@ ::= 8", "") + chain(100, "R@ ::= R#", "R100 ::= K0.&f\n") +
        chain(100, "Y@ ::= SEQUENCE { r R@ ({S}) } y@ Y@ ::= { r 6 }", "") +
        "k K0 ::= { &f 6, &A NULL }\nS K0 ::= { k }\n" + namedField(100) +
        chain(100, "D@ ::= D#", "D100 ::= T\n") + chain(100, "Z@ ::= D@ z@ Z@ ::= 8", "");
    for (const char* wrong :
         {"a INTEGER (0..4) ::= o37.&id --! Value out of range constraint(s)",
          "a o41.&T ::= 10 --! Value out of range constraint(s)",
          "a U3 ::= 10 --! Value out of range constraint(s)",
          "a Y50 ::= { r 7 } --! Value out of table constraint(s) ; Invalid SEQUENCE value",
          "a Z61 ::= 10 --! Value out of range constraint(s)"})
        expectMarked(body + wrong);
}

// Levels that add nothing are passed over, in whichever module they stand; those that add
// something, or hide it behind a marker, are not.
TEST(References, ComponentsAreFoundThroughLevelsThatAddNone) {
    const std::string first = "First DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                              "IMPORTS B1, B3 FROM Secnd;\n"
                              "A0 ::= SEQUENCE { a NULL, b INTEGER, ..., c NULL }\n"
                              "A2 ::= SEQUENCE { COMPONENTS OF B1, ..., d NULL }\n"
                              "A4 ::= SEQUENCE { COMPONENTS OF E, COMPONENTS OF B3 }\n"
                              "E ::= SEQUENCE { ..., e NULL }\n"
                              "T ::= SEQUENCE { COMPONENTS OF A4, COMPONENTS OF E, f NULL }\n"
                              "v T ::= { a NULL, b 5, f NULL }\n"
                              "w A4 ::= { a NULL }\n";
    const SourceFile second = {"secnd.asn", "Secnd DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                                            "IMPORTS A0, A2, A4 FROM First;\n"
                                            "B1 ::= SEQUENCE { COMPONENTS OF A0 }\n"
                                            "B3 ::= SEQUENCE { COMPONENTS OF A2 }\n"
                                            "v A2 ::= { a NULL, b 5, d NULL }\n"
                                            "w A4 ::= { b 5, a NULL }\n"
                                            "END\n"};
    const auto compileInOrder = [&](bool inOrder, const std::string& last) {
        const SourceFile whole{"first.asn", first + last + "END\n"};
        return inOrder ? compile({whole, second}) : compile({second, whole});
    };
    for (const bool inOrder : {true, false}) {
        SCOPED_TRACE(inOrder);
        const RunResult run = compileInOrder(inOrder, "");
        EXPECT_EQ(run.diagnostics("first"),
                  listed({{9, "Mandatory component value missing: component 'b'"},
                          {9, "Invalid SEQUENCE value"}}));
        EXPECT_EQ(run.diagnostics("secnd"),
                  listed({{6, "Component values out of order"}, {6, "Invalid SEQUENCE value"}}));
        const RunResult hidden = compileInOrder(inOrder, "x A4 ::= { a NULL, b 5, d NULL }\n");
        EXPECT_EQ(hidden.diagnostics("first"),
                  listed({{10, "Invalid component identifier: d"}, {10, "SEQUENCE value syntax"}}));
    }
}

} // namespace
} // namespace orvo::test
