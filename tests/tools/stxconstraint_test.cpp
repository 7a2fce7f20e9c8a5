#include "stx/stxconstraint.h"

#include <gtest/gtest.h>

#include "support/tree.h"

// Derived by hand from X.680 (02/2021) 50 and 51 and X.691 (02/2021) 10.3.

namespace orvo::test {
namespace {

using stx::View;

/// "1..5", extensible "1..5, ...", with additions "1..5, ..., 9" (what the whole set has).
std::string setText(const stx::Effective& set) {
    const std::string root = set.root.empty() ? "none" : stx::rangesText(set.root);
    if (!set.extensible) return root;
    return root + ", ..." + (set.whole == set.root ? "" : " " + stx::rangesText(set.whole));
}

std::string itemsText(const stx::Items& items) {
    std::string text;
    for (const stx::Item& item : items.root) text += std::string(item.name) + ' ';
    if (items.extensible) text += "...";
    for (const stx::Item& item : items.additions) text += ' ' + std::string(item.name);
    return text;
}

std::string describe(const TreeFacts& tree, const std::string& name, View view) {
    stx::Trees& trees = tree.trees();
    const stx::TypeRef type = tree.type(name);
    std::string error;
    const uint8_t code = stx::skipTypes(trees, type, true, error).node().typeCode;
    if (code == stx::TYP_INTEGER) {
        const auto bounds = stx::effectiveBounds(trees, type, view);
        return bounds ? setText(*bounds) : bounds.error;
    }
    if (code == stx::TYP_ENUM) {
        const auto items = stx::effectiveItems(trees, type, view);
        return items ? itemsText(*items) : items.error;
    }
    const auto size = stx::effectiveSize(trees, type, view);
    if (!size) return size.error;
    const auto chars = stx::effectiveAlphabet(trees, type, view);
    const std::string from = chars && chars->constrained ? " FROM " + setText(*chars) : "";
    return (size->constrained || from.empty() ? setText(*size) : "") + from;
}

constexpr const char* definitions = R"(
IMPORTS Far, far FROM N;
lo INTEGER ::= 3
Ext ::= INTEGER (0..10, ..., 20..30)
Max {INTEGER: max} ::= INTEGER (0..max)
Lim {INTEGER: max, T} ::= SEQUENCE (SIZE (0..max)) OF T
Eight ::= OCTET STRING (SIZE (1..8, ...))
Four ::= IA5String (SIZE (1..4))
Word ::= IA5String ("yes" | "no")
Vowel ::= VisibleString (FROM ("aeiou"))
E ::= ENUMERATED {a(5), b, c, ..., d}
Ch ::= CHOICE { low INTEGER (1..9), high NULL }
CLS ::= CLASS { &id INTEGER (1..20), &Value }
Deep ::= Far (10..60)
)";

TEST(StxConstraint, EffectiveSetsAreThoseDerivedByHand) {
    constexpr const char* same = nullptr; // both views agree
    const struct {
        const char *type, *per, *full;
    } cases[] = {
        // values of INTEGER
        {"INTEGER", "MIN..MAX", same},
        {"INTEGER (5)", "5", same},
        {"INTEGER (0..10)", "0..10", same},
        {"INTEGER (1<..<10)", "2..9", same},
        {"INTEGER (MIN..10)", "MIN..10", same},
        {"Far", "0..100", same},
        {"Far (5..10)", "5..10", same},
        {"Far (MIN..10)", "0..10", same},
        {"Far (MIN<..<MAX)", "1..99", same},
        {"Deep (far..MAX)", "50..60", same},
        {"INTEGER (1..3 | 7 | 9..MAX)", "1..3 | 7 | 9..MAX", same},
        {"INTEGER (4..6 | 0..3 | 5..20)", "0..20", same},
        {"INTEGER (0..10 ^ 5..20)", "5..10", same},
        {"INTEGER (0..10 ^ (1..3 | 9..12))", "1..3 | 9..10", same},
        {"INTEGER (0..10 EXCEPT 5)", "0..10", "0..4 | 6..10"},
        {"INTEGER (0..10 EXCEPT (0 | 10) | 20)", "0..10 | 20", "1..9 | 20"},
        {"INTEGER (ALL EXCEPT 0)", "MIN..MAX", "MIN..-1 | 1..MAX"},
        {"INTEGER (0..10, ...)", "0..10, ...", same},
        {"Ext", "0..10, ... 0..10 | 20..30", same},
        {"Ext (2..5)", "2..5", same},
        {"Ext (2..5, ..., 7)", "2..5, ... 2..5 | 7", same},
        {"Ext (CONSTRAINED BY {})", "0..10, ... 0..10 | 20..30", same},
        {"INTEGER (INCLUDES Ext | 40)", "0..10 | 40", same},
        {"INTEGER (Ext EXCEPT 3)", "0..10", "0..2 | 4..10"},
        {"INTEGER (0..10) (2..8) (MIN..5)", "2..5", same},
        {"INTEGER (-99999999999999999999..<100000000000000000000)",
         "-99999999999999999999..99999999999999999999", same},
        {"INTEGER (ALL EXCEPT 18446744073709551616)", "MIN..MAX",
         "MIN..18446744073709551615 | 18446744073709551617..MAX"},
        {"INTEGER (lo..far)", "3..50", same},
        {"INTEGER { one(1), two(2) } (one..two)", "1..2", same},
        {"Max {9}", "0..9", same},
        {"Max {9} (lo | 5)", "3 | 5", same},
        {"INTEGER (CONSTRAINED BY {})", "MIN..MAX", same},
        {"CLS.&id", "1..20", same},
        {"CLS.&id (7..9)", "7..9", same},
        {"low < Ch", "1..9", same},
        {"low < Ch (5..9)", "5..9", same},
        // sizes
        {"OCTET STRING", "0..MAX", same},
        {"OCTET STRING (SIZE (4))", "4", same},
        {"OCTET STRING (SIZE (MIN..4))", "0..4", same},
        {"Eight", "1..8, ...", same},
        {"Eight (SIZE (2..3))", "2..3", same},
        {"Eight (CONTAINING NULL)", "1..8, ...", same},
        {"OCTET STRING ('ABC'H)", "0..MAX", "2"},
        {"OCTET STRING (SIZE (1..9 EXCEPT 5))", "1..9", "1..4 | 6..9"},
        {"OCTET STRING (SIZE (1..9) EXCEPT SIZE (5..9))", "1..9", "1..4"},
        {"BIT STRING (SIZE (3 | 5))", "3 | 5", same},
        {"BIT STRING ('101'B | '1'B)", "0..MAX", "1 | 3"},
        {"BIT STRING { x(0) } ('1'B)", "0..MAX", same}, // zeros may follow
        {"SEQUENCE (SIZE (1..5 | 9)) OF NULL", "1..5 | 9", same},
        {"SET SIZE (lo, ...) OF NULL", "3, ...", same},
        {"SEQUENCE (WITH COMPONENT (1..5)) OF INTEGER", "0..MAX", same},
        {"Lim {7, NULL}", "0..7", same},
        {"Lim {7, NULL} (SIZE (2..MAX))", "2..7", same},
        // sizes and characters
        {"IA5String", "0..MAX", same},
        {"Four", "1..4", same},
        {"IA5String (FROM (\"abc\"))", " FROM 97..99", same},
        {"IA5String (FROM (MIN..\"b\" | \"x\"..MAX))", " FROM 0..98 | 120..127", same},
        {"IA5String (SIZE (1..4) ^ FROM (\"ab\"))", "1..4 FROM 97..98", same},
        {"IA5String (SIZE (1..4)) (FROM (\"ab\"))", "1..4 FROM 97..98", same},
        {"IA5String (SIZE (1..4) | FROM (\"ab\"))", "0..MAX", same},
        {"IA5String (SIZE (1..4) ^ FROM (\"ab\") | SIZE (9) ^ FROM (\"cd\"))",
         "1..4 | 9 FROM 97..100", same},
        {"IA5String ((SIZE (1..4) ^ FROM (\"ab\") | SIZE (9) ^ FROM (\"cd\")) ^ SIZE (2..3))",
         "2..3 FROM 97..98", same},
        {"IA5String (FROM (\"a\"..\"f\" EXCEPT \"c\"))", " FROM 97..102",
         " FROM 97..98 | 100..102"},
        {"IA5String (FROM (\"ab\", ...))", "0..MAX", " FROM 97..98, ..."},
        {"IA5String (SIZE (1..4) ^ FROM (\"ab\", ...))", "1..4", "1..4, ... FROM 97..98, ..."},
        {"IA5String (SIZE (1..4, ...) ^ FROM (\"ab\"))", "1..4, ... FROM 97..98, ...", same},
        {"IA5String (SIZE (1..4, ...)) (FROM (\"ab\"))", "1..4 FROM 97..98", same},
        {"IA5String (\"abba\")", "0..MAX", "4 FROM 97..98"},
        {"IA5String (SIZE (1..4) ^ (\"abba\" | \"c\"))", "1..4", "1 | 4 FROM 97..99"},
        {"IA5String (Word | SIZE (1))", "0..MAX", "1..3"},
        {"IA5String (Four)", "1..4", same},
        {"IA5String (SIZE (1..9)) (PATTERN \"a*\")", "1..9", same},
        {"IA5String (SIZE (0))", "0 FROM none", same},
        {"NumericString (FROM (\"0\"..\"3\"))", " FROM 48..51", same},
        {"PrintableString (FROM (\"+\"..\"9\"))", " FROM 43..57", same},
        {"VisibleString (FROM (Vowel | \"xyz\"))", " FROM 97 | 101 | 105 | 111 | 117 | 120..122",
         same},
        {"BMPString (FROM ({0,0,1,0}..{0,0,1,255}))", " FROM 256..511", same},
        {"UTF8String (SIZE (1..4))", "0..MAX", "1..4"},
        {"TeletexString (SIZE (1..4, ...))", "0..MAX", "1..4, ..."},
        // items
        {"E", "b c a ... d", same},
        {"E (a | c)", "b c a ... d", "c a "},
        {"E (ALL EXCEPT b)", "b c a ... d", "c d a "},
        {"E (a, ..., c)", "b c a ... d", "a ... c"},
        {"ENUMERATED { z, y } (y)", "z y ", "y "},
    };
    std::string text = std::string("M DEFINITIONS AUTOMATIC TAGS ::= BEGIN") + definitions;
    int nr = 0;
    for (const auto& row : cases) text += "T" + std::to_string(++nr) + " ::= " + row.type + "\n";
    const RunResult run = compile(
        {{"m.asn", text + "END\n"},
         {"n.asn", "N DEFINITIONS ::= BEGIN Far ::= INTEGER (0..100) far INTEGER ::= 50 END\n"}},
        {"-STANDARD-VERSION=2021", "-LENIENT=yes"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts tree(run, "m");
    nr = 0;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.type);
        const std::string name = "T" + std::to_string(++nr);
        EXPECT_EQ(describe(tree, name, View::Per), row.per);
        EXPECT_EQ(describe(tree, name, View::Full), row.full == same ? row.per : row.full);
    }
}

} // namespace
} // namespace orvo::test
