// The bounds that a type stores: of its values, or of its sizes.

#include <gtest/gtest.h>

#include "support/tree.h"

namespace orvo::test {
namespace {

std::string boundsOf(const std::string& type, const std::string& more = "") {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS ::= BEGIN R ::= INTEGER (0..100) (5..MAX) "
                           "n INTEGER ::= 3\nT ::= " +
                               type + "\n" + more + "END\n"}});
    EXPECT_EQ(run.diagnostics("m"), "");
    return TreeFacts(run, "m").bounds("T");
}

TEST(Bounds, ComeFromConstraintsAndItems) {
    constexpr struct {
        const char *type, *bounds;
    } cases[] = {{"INTEGER", "MIN..MAX"},
                 {"INTEGER (20..30 | 1..10)", "1..30"},
                 {"INTEGER (1..10 ^ 5..20)", "5..10"},
                 {"INTEGER (1..10)(MIN..7)", "1..7"},
                 {"INTEGER (MIN..10)", "MIN..10"},
                 {"INTEGER (7 | -3)", "-3..7"},
                 {"INTEGER (1..10, ...)", "1..10"},
                 {"INTEGER (ALL EXCEPT 5)", "MIN..MAX"},
                 {"INTEGER (R)", "5..100"},
                 {"R (6..7)", "MIN..MAX"}, // what a reference stores
                 {"OCTET STRING", "0..MAX"},
                 {"OCTET STRING (SIZE (8 | 4))", "4..8"},
                 {"OCTET STRING (SIZE (1..10, ...))", "1..10"},
                 {"OCTET STRING (SIZE (1..2) | SIZE (9))", "1..9"},
                 {"OCTET STRING (SIZE (2..MAX))(SIZE (0..6))", "2..6"},
                 {"OCTET STRING ('00'H)", "0..MAX"},
                 {"SEQUENCE SIZE (0..10) OF NULL", "0..10"},
                 {"ENUMERATED { a(n), b(-1), ..., c(7) }", "-1..7"},
                 {"REAL (0..MAX)", "MIN..MAX"}};
    for (const auto& [type, bounds] : cases) EXPECT_EQ(boundsOf(type), bounds) << type;
}

TEST(Bounds, OfSubtypesThatDoubleSixtyTimesAreFound) {
    std::string chain = "T60 ::= INTEGER (1..5)\n";
    for (int i = 0; i < 60; ++i) {
        const std::string next = "T" + std::to_string(i + 1);
        chain += "T" + std::to_string(i) + " ::= INTEGER (" + next + " | INCLUDES " + next + ")\n";
    }
    EXPECT_EQ(boundsOf("INTEGER (T0)", chain), "1..5");
}

} // namespace
} // namespace orvo::test
