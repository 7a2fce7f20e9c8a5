// Solving of references: chains, cycles, selection types, COMPONENTS OF, fields of classes and
// objects, defaults, and all of it across modules and instances.

#include <algorithm>

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

constexpr struct {
    const char* body;
    const char* diagnostics;
} referenceCases[] = {
    // Every record that leads into a cycle is reported.
    {"A ::= B\nB ::= A", "  ** ERROR on line   2 : Invalid recursion in definition of type\n"
                         "  ** ERROR on line   3 : Invalid recursion in definition of type\n"},
    {"A ::= A", "  ** ERROR on line   2 : Invalid recursion in definition of type\n"},
    {"A ::= B\nB ::= C\nC ::= B",
     "  ** ERROR on line   2 : Invalid recursion in definition of type\n"
     "  ** ERROR on line   3 : Invalid recursion in definition of type\n"
     "  ** ERROR on line   4 : Invalid recursion in definition of type\n"},
    {"A ::= SEQUENCE { a A OPTIONAL }", ""},
    {"a INTEGER ::= b\nb INTEGER ::= a",
     "  ** ERROR on line   2 : Invalid recursion in definition of value: b\n"
     "  ** ERROR on line   3 : Invalid recursion in definition of value: a\n"},
    {"a INTEGER ::= b\nb INTEGER ::= c\nc INTEGER ::= 1", ""},
    // Selection types.
    {"C ::= CHOICE { a INTEGER, b NULL }\nS ::= a < C\nv S ::= 5", ""},
    {"C ::= CHOICE { a INTEGER }\nD ::= C\nS ::= a < D\nT ::= S\nv T ::= 5", ""},
    {"C ::= CHOICE { a INTEGER }\nS ::= b < C",
     "  ** ERROR on line   3 : Invalid selection type: b\n"},
    {"C ::= SEQUENCE { a INTEGER }\nS ::= a < C",
     "  ** ERROR on line   3 : Invalid selection type: a\n"},
    {"S ::= a < C\nC ::= CHOICE { a S }",
     "  ** ERROR on line   2 : Invalid recursion in definition of type: a\n"
     "  ** ERROR on line   3 : Invalid recursion in definition of type\n"},
    // COMPONENTS OF.
    {"S ::= SEQUENCE { COMPONENTS OF T, c NULL }\nT ::= SEQUENCE { a INTEGER, b NULL }\n"
     "v S ::= { a 1, b NULL, c NULL }",
     ""},
    {"S ::= SEQUENCE { COMPONENTS OF T }\nT ::= SEQUENCE { COMPONENTS OF U }\n"
     "U ::= SEQUENCE { a INTEGER }\nv S ::= { a 1 }",
     ""},
    {"S ::= SEQUENCE { COMPONENTS OF T,\nc INTEGER }\nT ::= SET { a NULL }",
     "  ** ERROR on line   2 : Invalid type in COMPONENTS OF\n"},
    {"S ::= SET { COMPONENTS OF T }\nT ::= SET { a NULL }", ""},
    {"T ::= SEQUENCE { a NULL, COMPONENTS OF T }",
     "  ** ERROR on line   2 : Invalid recursion in definition of type\n"},
    {"S ::= SEQUENCE { a NULL, COMPONENTS OF T }\nT ::= SEQUENCE { b NULL, COMPONENTS OF S }",
     "  ** ERROR on line   2 : Invalid recursion in definition of type\n"},
    {"S ::= SEQUENCE { COMPONENTS OF T }\nT ::= T",
     "  ** ERROR on line   2 : Invalid recursion in definition of type\n"
     "  ** ERROR on line   3 : Invalid recursion in definition of type\n"},
    {"S ::= SEQUENCE { a NULL, ..., [[ COMPONENTS OF T ]] }\nT ::= SEQUENCE { b NULL }", ""},
};

TEST(References, AreFollowedToTheirEnd) {
    for (const auto& row : referenceCases) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(diagnosticsOf(row.body), row.diagnostics);
    }
}

const std::string classes =
    "C ::= CLASS { &id INTEGER UNIQUE, &Type DEFAULT BOOLEAN, &Set D OPTIONAL, &obj D OPTIONAL,"
    " &val INTEGER DEFAULT 7, &Need } WITH SYNTAX"
    " { ID &id [TYPE &Type] [OBJS &Set] [OBJ &obj] [VAL &val] NEED &Need }\n"
    "D ::= CLASS { &Type, &n INTEGER }\n"
    "d D ::= { &Type NULL, &n 3 }\n"
    "o C ::= { ID 1 TYPE INTEGER OBJS {d} OBJ d NEED NULL }\n"
    "p C ::= { ID 2 NEED o.&Type }\n";

constexpr struct {
    const char* body; // from line 7 on
    const char* diagnostics;
} fieldCases[] = {
    {"T ::= o.&Type\nv T ::= 5", ""},
    {"T ::= p.&Type\nv T ::= TRUE", ""}, // the field's default
    {"T ::= p.&Need\nv T ::= 5", ""},    // through a setting that is such a type itself
    {"v INTEGER ::= o.&id\nw INTEGER ::= p.&val", ""},
    {"T ::= o.&obj.&Type\nv T ::= NULL", ""},
    {"v INTEGER ::= o.&obj.&n", ""},
    {"q C ::= p\nT ::= q.&Type\nv T ::= FALSE", ""},
    {"T ::= C.&id\nv T ::= 5", ""},
    {"T ::= C.&obj.&n\nv T ::= 5", ""},
    {"S D ::= { o.&Set }\nT ::= SEQUENCE { a D.&n ({S}) }", ""},
    {"S D ::= { p.&Set, ... }", ""}, // optional and absent: an empty set
    {"T ::= o.&nix", "  ** ERROR on line   7 : Invalid information from object: nix\n"},
    {"T ::= p.&obj", "  ** ERROR on line   7 : Invalid information from object: obj\n"},
    {"v INTEGER ::= d.&x", "  ** ERROR on line   7 : Invalid information from object: x\n"},
    {"T ::= o.&id", "  ** ERROR on line   7 : Defined type syntax: id\n"},
    {"T ::= C.&nix", "  ** ERROR on line   7 : Invalid class field type: nix\n"},
    {"U ::= NULL\nT ::= U.&id", "  ** ERROR on line   8 : Invalid class field type: id\n"},
    {"T ::= TYPE-IDENTIFIER.&id\nv T ::= { 1 2 }", ""},
    {"T ::= r.&Need\nr C ::= { ID 9 NEED r.&Need }", // T leads to what r left unresolved
     "  ** ERROR on line   8 : Invalid recursion in definition of type: Need\n"},
};

TEST(References, LeadThroughClassesAndObjects) {
    for (const auto& row : fieldCases) {
        SCOPED_TRACE(row.body);
        EXPECT_EQ(diagnosticsOf(classes + row.body), row.diagnostics);
    }
}

TEST(Defaults, AreParsedAgainstTheirField) {
    EXPECT_EQ(diagnosticsOf("S ::= SEQUENCE { a INTEGER DEFAULT 5, b T DEFAULT { x TRUE } }\n"
                            "T ::= SEQUENCE { x BOOLEAN }"),
              "");
    EXPECT_EQ(diagnosticsOf("S ::= SEQUENCE { a BOOLEAN\n DEFAULT 5 }"),
              "  ** ERROR on line   3 : BOOLEAN value syntax\n");
    // A variable-type field is governed by the default of the field that names its type.
    EXPECT_EQ(diagnosticsOf("C ::= CLASS { &Type DEFAULT BOOLEAN, &val &Type DEFAULT TRUE }"), "");
    EXPECT_EQ(diagnosticsOf("C ::= CLASS { &Type DEFAULT BOOLEAN, &val &Type DEFAULT 5 }"),
              "  ** ERROR on line   2 : BOOLEAN value syntax\n");
    EXPECT_EQ(diagnosticsOf("C ::= CLASS { &Type, &val &Type\nDEFAULT TRUE }"),
              "  ** ERROR on line   3 : Invalid governing type/class: val\n");
    EXPECT_EQ(diagnosticsOf("C ::= CLASS { &Set INTEGER DEFAULT { 1 | 2 | x } }\n"
                            "x INTEGER ::= 3"),
              "");
    EXPECT_EQ(diagnosticsOf("C ::= CLASS { &Set INTEGER DEFAULT { TRUE } }"),
              "  ** ERROR on line   2 : INTEGER value syntax\n");
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
    for (int i = 0; i < count; ++i) {
        std::string text = link;
        for (size_t at = 0; (at = text.find_first_of("#$", at)) != std::string::npos;)
            text.replace(at, 1, std::to_string(text[at] == '#' ? i : i + 1));
        body += text + "\n";
    }
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
    const auto last = [](int count) { return std::to_string(count); };
    const std::string bodies[] = {
        chain(length, "T# ::= T$", "T" + last(length) + " ::= INTEGER"),
        chain(length, "v# INTEGER ::= v$", "v" + last(length) + " INTEGER ::= 1"),
        chain(length, "v# T ::= { a v$ }",
              "v" + last(length) + " T ::= { }\nT ::= SEQUENCE { a T OPTIONAL }"),
        // Each level has the components of all levels behind it.
        chain(2000, "T# ::= SEQUENCE { a# NULL, COMPONENTS OF T$ }",
              "T2000 ::= SEQUENCE { z NULL }"),
        chain(length, "T# ::= a < C# C# ::= CHOICE { a T$ }", "T" + last(length) + " ::= INTEGER"),
        chain(length, "L# ::= CLASS { &obj L$, &A }", "L" + last(length) + " ::= CLASS { &A }"),
        withFields + chain(longest, "o# C ::= { &id o$.&id, &T o$.&T }",
                           "o" + last(longest) +
                               " C ::= { &id 5, &T BOOLEAN }\n"
                               "v INTEGER (5) ::= o0.&id\nw o0.&T ::= TRUE"),
        chain(longest, "C# ::= CLASS { &f C$.&f, &A }",
              "C" + last(longest) + " ::= CLASS { &f INTEGER }\nv C0.&f ::= 5"),
        chain(longest, "S# ::= SEQUENCE { COMPONENTS OF S$ }",
              "S" + last(longest) +
                  " ::= SEQUENCE { a NULL, b INTEGER }\n"
                  "v S0 ::= { a NULL, b 5 }"),
        namedField(length) + chain(length, "U# ::= T v# U# ::= 5", ""),
        withFields + backward(chain(length, "o# C ::= { &id o$.&id, &T o$.&T }",
                                    "o" + last(length) + " C ::= { &id 5, &T BOOLEAN }")),
        backward(chain(length, "C# ::= CLASS { &f C$.&f, &A }",
                       "C" + last(length) + " ::= CLASS { &f INTEGER }")),
        backward(chain(length, "S# ::= SEQUENCE { COMPONENTS OF S$ }\nv# S# ::= { a NULL }",
                       "S" + last(length) + " ::= SEQUENCE { a NULL }")),
    };
    for (const std::string& body : bodies) {
        SCOPED_TRACE(body.substr(0, body.find('\n', body.find("::= CLASS { &id") + 1)));
        const RunResult run = compile({moduleM(body)});
        EXPECT_EQ(run.status, 0); // in time
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.diagnostics("m"), "");
    }
    // As long a cycle: each of its values is reported, 500 of them with text.
    const RunResult run = compile(
        {moduleM(chain(length, "v# INTEGER ::= v$", "v" + last(length) + " INTEGER ::= v0"))});
    EXPECT_NE(run.out.find("Semantic errors   : 20001\n"), std::string::npos);
}

// A walk that has passed many links is noted on its way; from there others come to the same end,
// and to the field that a walk is to stop at.
TEST(References, LeadToTheSameEndFromEverywhere) {
    const std::string body =
        withFields +
        chain(100, "o# C ::= { &id o$.&id, &T o$.&T }",
              "o100 C ::= { &id 5, &T INTEGER (0..9) }\n") +
        chain(100, "v# INTEGER (5) ::= o#.&id w# o#.&T ::= 7", "") +
        chain(100, "K# ::= CLASS { &f K$.&f, &A }", "K100 ::= CLASS { &f INTEGER (0..9) }\n") +
        chain(100, "U# ::= K#.&f x# U# ::= 8", "") + chain(100, "R# ::= R$", "R100 ::= K0.&f\n") +
        chain(100, "Y# ::= SEQUENCE { r R# ({S}) } y# Y# ::= { r 6 }", "") +
        "k K0 ::= { &f 6, &A NULL }\nS K0 ::= { k }\n" + namedField(100) +
        chain(100, "D# ::= D$", "D100 ::= T\n") + chain(100, "Z# ::= D# z# Z# ::= 8", "");
    EXPECT_EQ(diagnosticsOf(body), "");
    const std::string range = "Value out of range constraint(s)",
                      table = "Value out of table constraint(s)";
    const struct {
        const char* line; // the first behind the body
        std::vector<std::string> found;
    } wrong[] = {{"a INTEGER (0..4) ::= o37.&id", {range}},
                 {"a o41.&T ::= 10", {range}},
                 {"a U3 ::= 10", {range}},
                 {"a Y50 ::= { r 7 }", {table, "Invalid SEQUENCE value"}},
                 {"a Z61 ::= 10", {range}}};
    const int line = static_cast<int>(std::ranges::count(body, '\n')) + 2;
    for (const auto& row : wrong) {
        SCOPED_TRACE(row.line);
        std::vector<Finding> findings;
        for (const std::string& text : row.found) findings.push_back({line, text});
        EXPECT_EQ(diagnosticsOf(body + row.line), listed(findings));
    }
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
