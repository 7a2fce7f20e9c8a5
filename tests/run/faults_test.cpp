// Whose affair a fault is. That it does not depend on what comes first the metamorphic test shows.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(Faults, BelongToTheModuleThatHoldsTheRecord) {
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

TEST(Faults, OfADefinitionDoNotCountForItsUsers) {
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

} // namespace
} // namespace orvo::test
