#include <gtest/gtest.h>

#include <algorithm>

#include "support/findings.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

std::string joined(const std::vector<std::string>& definitions) {
    std::string text;
    for (const std::string& definition : definitions) text += definition + "\n";
    return text;
}

/// Each definition is one line. All are legal, whichever comes first.
const std::vector<std::string> legal[] = {
    // Types in settings are checked with the set of an instance.
    {"Inv{OP:Ops} ::= SEQUENCE { c OP.&code({Ops}), a OP.&Arg({Ops}{@c}) }",
     "X ::= Inv{{op1 | op2}}",
     "Y ::= Inv{{{&code 3, &Arg SEQUENCE { i C.&id({S}), v C.&T({S}{@i}) }}}}",
     "OP ::= CLASS { &code INTEGER UNIQUE, &Arg }", "C ::= CLASS { &id INTEGER UNIQUE, &T }",
     "op1 OP ::= { &code 1, &Arg SEQUENCE { id C.&id({S}), v C.&T({S}{@id}) } }",
     "op2 OP ::= { &code 2, &Arg NULL }", "S C ::= { { &id 1, &T INTEGER }, ... }"},
    // The same through a set field, and a default object of a class.
    {"K ::= CLASS { &Ops OP, &op OP DEFAULT { &code 1, &Arg SEQUENCE { id C.&id({S}), v "
     "C.&T({S}{@id}) } } }",
     "k K ::= { &Ops { { &code 2, &Arg SEQUENCE { id C.&id({S}), v C.&T({S}{@id}) } } } }",
     "T ::= SEQUENCE { c OP.&code({k.&Ops}), a OP.&Arg({k.&Ops}{@c}) }",
     "OP ::= CLASS { &code INTEGER UNIQUE, &Arg }", "C ::= CLASS { &id INTEGER UNIQUE, &T }",
     "S C ::= { { &id 1, &T INTEGER }, ... }"},
    {"A ::= SEQUENCE { b B OPTIONAL, id INTEGER, any [1] ANY DEFINED BY id }",
     "B ::= SEQUENCE { x A DEFAULT { id 1, any INTEGER : 5 } }"},
    {"v Sel ::= { id 1, any INTEGER : 5 }", "Sel ::= s < Ch",
     "V ::= SEQUENCE { z s < Ch DEFAULT { id 1, any INTEGER : 5 } }",
     "Ch ::= CHOICE { n NULL, s SEQUENCE { id INTEGER, any ANY DEFINED BY id } }"},
    {"v o.&T ::= { id 1, any INTEGER : 5 }",
     "o C ::= { &T SEQUENCE { id INTEGER, any ANY DEFINED BY id } }", "C ::= CLASS { &T }",
     "W ::= SEQUENCE { w o.&T DEFAULT { id 1, any INTEGER : 5 } }"},
    // A contained subtype is no reason to hold its values against its own constraint.
    {"A ::= INTEGER (B)", "B ::= INTEGER ((1 | 2 | 3) EXCEPT 2)"},
};

TEST(Order, LegalDefinitionsAreLegalInAnyOrder) {
    for (std::vector<std::string> definitions : legal) {
        for (const bool backwards : {false, true}) {
            if (backwards) std::ranges::reverse(definitions);
            const std::string body = joined(definitions);
            SCOPED_TRACE(body);
            EXPECT_EQ(compileBody(body).diagnostics("m"), "");
        }
    }
}

TEST(Order, ImportedObjectsKeepTheirRelations) {
    const SourceFile objects = {
        "n.asn", "N DEFINITIONS ::= BEGIN\nOP ::= CLASS { &code INTEGER UNIQUE, &Arg }\n"
                 "C ::= CLASS { &id INTEGER UNIQUE, &T }\nS C ::= { { &id 1, &T INTEGER }, ... }\n"
                 "op OP ::= { &code 1, &Arg SEQUENCE { id C.&id({S}), v C.&T({S}{@id}) } }\n"
                 "R ::= op.&Arg\nEND\n"};
    const RunResult run =
        compile({{"m.asn",
                  "M DEFINITIONS ::= BEGIN IMPORTS OP, op FROM N;\n"
                  "X ::= SEQUENCE { c OP.&code({Y}), a OP.&Arg({Y}{@c}) }\nY OP ::= { op }\nEND\n"},
                 objects});
    EXPECT_EQ(run.diagnostics("m") + run.diagnostics("n"), "");
    const TreeFacts tree(run, "n");
    EXPECT_EQ(tree.constraint("R.v"), "({S} {@id})");
}

TEST(Order, FaultsBelongToTheModuleThatHoldsTheRecord) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS Ch, o FROM N;\n"
                           "v a < Ch ::= 3\nw o.&T ::= { x 1 }\nEND\n"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN\nCh ::= CHOICE {\n a [UNIVERSAL 5] INTEGER }\n"
                           "C ::= CLASS { &T }\n"
                           "o C ::= { &T SEQUENCE { x [UNIVERSAL 6] INTEGER } }\nEND\n"}});
    EXPECT_EQ(run.diagnostics("n"), listed({{3, "Tag class shall not be UNIVERSAL"},
                                            {5, "Tag class shall not be UNIVERSAL"}}));
    EXPECT_EQ(run.diagnostics("m"), "");
    EXPECT_FALSE(run.has("n.stx"));
}

TEST(Order, FaultsOfADefinitionDoNotCountForItsUsers) {
    const std::vector<SourceFile> files = {
        {"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS T, C, S FROM N;\n"
                  "A ::= SEQUENCE { t T OPTIONAL }\nU ::= INTEGER (T)\n"
                  "V ::= SEQUENCE { i C.&id({S}) }\nW ::= C.&Type (T)\nEND\n"},
        {"n.asn", "N DEFINITIONS ::= BEGIN\nT ::= INTEGER (5..1)\n"
                  "C ::= CLASS { &id INTEGER (1..3), &Type OPTIONAL }\n"
                  "S C ::= { {&id 7} }\nEND\n"}};
    for (const bool backwards : {false, true}) {
        SCOPED_TRACE(backwards);
        const std::string first = backwards ? "n" : "m", second = backwards ? "m" : "n";
        const RunResult run =
            runOrvo(files, {"-PREFIX=M:m:m", "-PREFIX=N:n:n", first + ".asn", second + ".asn"});
        EXPECT_EQ(run.diagnostics("m"), "");
        EXPECT_EQ(run.diagnostics("n"), listed({{2, "Invalid range constraint(s)"},
                                                {4, "Value out of range constraint(s)"},
                                                {4, "Invalid object"},
                                                {4, "Invalid set element"}}));
        const TreeFacts tree(run, "m");
        EXPECT_EQ(tree.valueField("A"), "(24, 6)");
        EXPECT_EQ(tree.bounds("A.t"), "MIN..MAX");
    }
}

TEST(Order, AnItemOfAnEnumerationIsNoIntegerOnceItIsNumberedEither) {
    std::vector<std::string> definitions = {
        "E ::= ENUMERATED { e, f } v E ::= f", "T ::= SEQUENCE { c [v] NULL }",
        "N ::= INTEGER { n(v) }", "S ::= OCTET STRING (SIZE (0..v))"};
    for (const bool backwards : {false, true}) {
        if (backwards) std::ranges::reverse(definitions);
        const auto lineOf = [&](int place) { return backwards ? 5 - place : 2 + place; };
        std::vector<Finding> expected = {
            {lineOf(1), "Tag number shall be INTEGER and in range 0..2097151"},
            {lineOf(2), "Invalid INTEGER value: n"},
            {lineOf(3), "Invalid range constraint(s)"},
            {lineOf(3), "Invalid size constraint(s)"}};
        std::ranges::stable_sort(expected, {}, &Finding::line);
        EXPECT_EQ(compileBody(joined(definitions)).diagnostics("m"), listed(expected));
    }
}

TEST(Order, WhatIsCopiedFromATypeIsSettledFirst) {
    std::vector<std::string> definitions = {
        "R1 ::= Sel", "R2 ::= F", "R3 ::= O", "Sel ::= a < Ch", "F ::= C.&id", "O ::= o.&T",
        "Ch ::= CHOICE { a INTEGER (0..1000), b NULL }", "C ::= CLASS { &id INTEGER (0..9), &T }",
        "o C ::= { &id 1, &T OCTET STRING (SIZE (3)) }",
        // Lists of one another have the flags of both; an unbounded one is segmented.
        "A ::= SEQUENCE (SIZE (0..5)) OF B", "B ::= SEQUENCE (SIZE (0..MAX)) OF A",
        "E ::= ENUMERATED { x, y, z } (x | y)(y)"};
    for (const bool backwards : {false, true}) {
        SCOPED_TRACE(backwards);
        if (backwards) std::ranges::reverse(definitions);
        const RunResult run = compileBody(joined(definitions));
        ASSERT_EQ(run.diagnostics("m"), "");
        const TreeFacts tree(run, "m");
        EXPECT_EQ(tree.valueField("R1"), "(7, 7)");
        EXPECT_EQ(tree.valueField("R2"), "(6, 6)");
        EXPECT_EQ(tree.valueField("R3"), "(13, 0)");
        EXPECT_EQ(tree.flags("A"), "LIST_OF_LISTS LIST_OF_REPR_LISTS RECURSIVE");
        EXPECT_EQ(tree.flags("B"), "LIST_OF_LISTS LIST_OF_REPR_LISTS RECURSIVE");
        EXPECT_EQ(tree.named("E"), "x(0) y(1) z(2)");
    }
}

TEST(Order, IgnorableTypesAreMarkedWhoeverLeadsToThem) {
    std::vector<std::string> definitions = {"C ::= CLASS { &id INTEGER, &T }",
                                            "o C ::= { &id 1, &T SEQUENCE { b B } }",
                                            "T ::= SEQUENCE { i C.&id({S}), v C.&T({S}{@i}) }",
                                            "S C ::= { o }", "B ::= INTEGER --$SKIP--"};
    for (const bool backwards : {false, true}) {
        if (backwards) std::ranges::reverse(definitions);
        const RunResult run = compileBody(joined(definitions));
        const TreeFacts tree(run, "m");
        EXPECT_EQ(tree.flags("B"), "IGNORABLE") << backwards;
    }
}

TEST(Recursion, IsReportedAsTheOptionAsks) {
    const std::string body = "A ::= SEQUENCE { b B OPTIONAL }\nB ::= SET OF A\nN ::= SET OF NULL\n"
                             "P{T} ::= SEQUENCE { p P{T} OPTIONAL, t T }\nR ::= SEQUENCE { r R }";
    const std::string text = "$Recursion in definition of type: ";
    const Finding invalid = {6, "Invalid recursion in definition of type: r"};
    EXPECT_EQ(compileBody(body).diagnostics("m"), listed({invalid}));
    EXPECT_EQ(
        compileBody(body, {"-RECURSION=WARNING"}).diagnostics("m"),
        listed({{2, "W " + text + "A"}, {3, "W " + text + "B"}, invalid, {6, "W " + text + "R"}}));
    EXPECT_EQ(compileBody(body, {"-RECURSION=ERROR"}).diagnostics("m"),
              listed({{2, text + "A"}, {3, text + "B"}, invalid, {6, text + "R"}}));
}

} // namespace
} // namespace orvo::test
