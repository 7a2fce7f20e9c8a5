#include "stx/stxcomponents.h"

#include <gtest/gtest.h>

#include "support/tree.h"

// Derived by hand from X.680 (02/2021) 8.6 and 25 and X.691 (02/2021) 19, 21 and 23.

namespace orvo::test {
namespace {

std::string nameOf(stx::TypeRef type) {
    return std::string(type.tree->text(type.node().name));
}

/// "a[0]?0 b[UNIVERSAL 1] | c[1]+0/0 ...": tags, "?" the bit of presence, "+" the addition, "/" the
/// group; behind it how many bits and additions there are, and the versions of the groups.
std::string describe(stx::Trees& trees, stx::TypeRef type) {
    const stx::Result<stx::Structure> result = stx::structureOf(trees, type);
    if (!result) return result.error.substr(result.error.find("is "));
    std::string text;
    for (const stx::Part& part : result->parts) {
        if (&part == result->parts.data() + result->rootCount) text += "| ";
        text += nameOf(part.component.type);
        for (const stx::Tag& tag : part.tags.tags) text += stx::tagText(tag);
        if (part.tags.open) text += "..";
        if (part.optionalBit >= 0) text += "?" + std::to_string(part.optionalBit);
        if (part.addition >= 0) text += "+" + std::to_string(part.addition);
        if (part.group >= 0) text += "/" + std::to_string(part.group);
        text += ' ';
    }
    text += std::to_string(result->optionalBits) + "," + std::to_string(result->additionCount);
    if (result->extensible) text += " ...";
    for (const stx::Group& group : result->groups) text += " [[" + std::to_string(group.version);
    return text;
}

TEST(StxComponents, StandAsInAnEncoding) {
    const struct {
        const char *type, *expected;
    } cases[] = {
        {"A", "a[0]?0 b[1] g[2]?1 | c[3]?0+0/0 d[4]+0/0 e[5]+1 f[6]+2/1 2,3 ... [[2 [[3"},
        {"SEQUENCE { x NULL, COMPONENTS OF A, ..., y NULL }",
         "x[0] a[1]?0 b[2] g[3]?1 | y[4]+0 2,1 ..."},
        // a tag switches automatic tags off, those of A too
        {"SEQUENCE { p [7] NULL, COMPONENTS OF A }",
         "p[7] a[UNIVERSAL 2]?0 b[UNIVERSAL 1] g[UNIVERSAL 5]?1 2,0"},
        {"SEQUENCE { COMPONENTS OF N.Tagged }", "t[0] u[1][UNIVERSAL 16] 0,0"},
        {"P { CHOICE { m NULL, n BOOLEAN } }", "d[0].. e[1]..?0 1,0"},
        {"P { INTEGER }", "d[0][UNIVERSAL 2] e[1][UNIVERSAL 2]?0 1,0"}, // not IMPLICIT
        {"N.S", "e..?0 b[UNIVERSAL 2] c[APPLICATION 1][UNIVERSAL 5]?1 a[5][UNIVERSAL 5] "
                "d[PRIVATE 0][UNIVERSAL 5] | h[0][UNIVERSAL 5]+0 2,1 ..."},
        {"N.C", "b[0][UNIVERSAL 5] c.. a[2][UNIVERSAL 5] | d[UNIVERSAL 5]+0 e[4][UNIVERSAL 5]+1 "
                "f[3][UNIVERSAL 5]+2 0,3 ..."},
        {"SEQUENCE { ... }", "0,0 ..."},
        {"INTEGER", "is no SEQUENCE, SET or CHOICE"},
    };
    std::string text = R"(M DEFINITIONS AUTOMATIC TAGS ::= BEGIN
A ::= SEQUENCE { a INTEGER OPTIONAL, b BOOLEAN, ..., [[ 2: c NULL OPTIONAL, d NULL ]], e NULL,
                 [[ 3: f NULL ]], ..., g NULL DEFAULT NULL }
P {T} ::= SEQUENCE { d T, e T OPTIONAL }
)";
    int nr = 0;
    for (const auto& row : cases) text += "T" + std::to_string(++nr) + " ::= " + row.type + '\n';
    const RunResult run = compile({{"m.asn", text + "END\n"}, {"n.asn", R"(N DEFINITIONS ::= BEGIN
Tagged ::= SEQUENCE { t [5] IMPLICIT NULL, u [6] SEQUENCE {} }
S ::= SET { a [5] NULL, b INTEGER, c [APPLICATION 1] NULL OPTIONAL, d [PRIVATE 0] NULL,
            e CHOICE { f [3] NULL, g BOOLEAN } OPTIONAL, ..., h [0] NULL }
C ::= CHOICE { a [2] NULL, b [0] NULL, c CHOICE { x [7] NULL, y [1] NULL }, ...,
               d NULL, [[ e [4] NULL, f [3] NULL ]] }
END
)"}},
                                  {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m") << run.diagnostics("n");
    const TreeFacts facts(run, "m");
    nr = 0;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.type);
        const std::string got = describe(facts.trees(), facts.type("T" + std::to_string(++nr)));
        EXPECT_EQ(got, row.expected);
    }
}

TEST(StxComponents, TypesComeInAnOrderAndWithNamesForC) {
    const RunResult run =
        compile({{"m.asn", R"(M DEFINITIONS AUTOMATIC TAGS ::= BEGIN
IMPORTS V, EOF FROM N;
W ::= SEQUENCE { x X, v V, int EOF }
Z ::= SEQUENCE { y Y }
Y ::= SEQUENCE OF X
X ::= CHOICE { z Z, n SEQUENCE { w V } }
T ::= P { T }
P {U} ::= SEQUENCE { a-b U OPTIONAL, c P1 {U} }
P1 {U} ::= SEQUENCE OF U
E ::= NULL --$ENTRY--
Self ::= SEQUENCE { s Self OPTIONAL }
F ::= P1 { NULL }
CLS ::= CLASS { &id INTEGER }
Set CLS ::= { ... }
END
)"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN V ::= T T ::= NULL EOF ::= NULL END\n"}});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts m(run, "m");
    stx::Trees& trees = m.trees();
    std::string error, text;
    std::vector<stx::TypeRef> types = stx::definedTypes(trees, m.tree());
    const std::vector<stx::TypeRef> others =
        stx::definedTypes(trees, *trees.module(m.tree(), 2, error));
    types.insert(types.end(), others.begin(), others.end());

    for (const std::string& name : stx::cNames(types)) text += name + ' ';
    EXPECT_EQ(text, "W Z Y X M_T E Self F P P1 P1_2 V N_T EOF_ ");
    const stx::Result<stx::Structure> w = stx::structureOf(trees, m.type("W"));
    text.clear();
    for (const std::string& name : stx::cNames(*w)) text += name + ' ';
    EXPECT_EQ(text, "x v int_ ");

    const auto order = stx::declarationOrder(trees, types);
    ASSERT_TRUE(order) << order.error;
    text.clear();
    for (const stx::Declaration& type : *order)
        text += nameOf(type.type) + (type.circle != 0 ? std::to_string(type.circle) : "") + ' ';
    EXPECT_EQ(text, "T V X1 Z1 Y1 EOF W T2 P2 P12 E Self3 P1 F ");

    const stx::PduTypes pdus = stx::pduTypes(trees, types);
    text.clear();
    for (const auto* list : {&pdus.entries, &pdus.unreferred}) {
        for (const stx::TypeRef& type : *list) text += nameOf(type) + ' ';
        text += "| ";
    }
    EXPECT_EQ(text, "E | W Self F | ");
}

} // namespace
} // namespace orvo::test
