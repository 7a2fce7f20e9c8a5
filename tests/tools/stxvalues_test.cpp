#include "stx/stxvalues.h"

#include <gtest/gtest.h>

#include "stx/stxnotation.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

std::string hex(const std::vector<uint8_t>& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        text += "0123456789ABCDEF"[byte >> 4];
        text += "0123456789ABCDEF"[byte & 15];
    }
    return text;
}

/// What the accessor of the kind of value gives, or its error without the place.
std::string accessed(const TreeFacts& facts, const std::string& name) {
    stx::Trees& trees = facts.trees();
    const stx::ValueRef value = facts.value(name);
    const auto reason = [](const std::string& error) {
        return "error: " + error.substr(std::min(error.find(" is "), error.size()));
    };
    switch (name[0]) {
    case 'i': {
        const auto number = stx::integerOf(trees, value);
        return number ? number->text() : reason(number.error);
    }
    case 'z': {
        const auto boole = stx::boolOf(trees, value);
        return boole ? (*boole ? "true" : "false") : reason(boole.error);
    }
    case 'b': {
        const auto bits = stx::bitsOf(trees, value);
        return bits ? hex(bits->bytes) + '/' + std::to_string(bits->count) : reason(bits.error);
    }
    case 'o': {
        const auto bytes = stx::bytesOf(trees, value);
        return bytes ? hex(*bytes) : reason(bytes.error);
    }
    case 's': {
        const auto text = stx::stringOf(trees, value);
        return text ? *text : reason(text.error);
    }
    case 'd': {
        std::string text;
        const auto arcs = stx::oidOf(trees, value);
        for (const stx::Integer& arc : arcs.value) text += arc.text() + '.';
        return arcs ? text : reason(arcs.error);
    }
    case 'r': {
        const auto real = stx::realOf(trees, value);
        if (!real) return reason(real.error);
        if (real->kind != stx::Real::Kind::Finite)
            return "kind " + std::to_string(static_cast<int>(real->kind));
        return real->mantissa.text() + '*' + std::to_string(real->base) + '^' +
               std::to_string(real->exponent);
    }
    case 'l': {
        std::string text;
        const auto list = stx::elementsOf(trees, value);
        for (const stx::ValueRef& element : list.value)
            text += stx::integerOf(trees, element)->text() + ',';
        return list ? text : reason(list.error);
    }
    case 'v': {
        const auto open = stx::openValueOf(trees, value);
        return open ? stx::typeText(trees, open->type) + ':' +
                          stx::integerOf(trees, open->value)->text()
                    : reason(open.error);
    }
    default: {
        std::string text;
        const auto members = stx::membersOf(trees, value);
        for (const stx::Member& member : members.value) text += std::string(member.name) + ' ';
        return members ? text : reason(members.error);
    }
    }
}

TEST(StxValues, AccessorsFollowReferencesAndSayWhatIsNotThere) {
    const struct {
        const char *name, *notation;
        std::string value;
    } cases[] = {
        {"i1", "INTEGER ::= -5", "-5"},
        {"i2", "INTEGER { five(5) } ::= five", "5"},
        {"i3", "INTEGER ::= i2", "5"},
        {"i4", "INTEGER ::= -123456789012345678901234567890", "-123456789012345678901234567890"},
        {"i5", "ENUMERATED { p, q(7) } ::= q", "7"},
        {"i6", "INTEGER ::= far", "50"},
        {"i7", "BOOLEAN ::= TRUE", "error:  is no INTEGER"},
        {"z1", "BOOLEAN ::= TRUE", "true"},
        {"z2", "BOOLEAN ::= o.&flag", "false"},
        {"b1", "BIT STRING ::= '1010'B", "A0/4"},
        {"b2", "BIT STRING ::= 'A5F'H", "A5F0/12"},
        {"b3", "BIT STRING { x(0), y(9) } ::= { y, x }", "8040/10"},
        {"b4", "BIT STRING { x(0) } ::= {}", "/0"},
        {"b5", "BIT STRING (CONTAINING NULL) ::= CONTAINING NULL",
         "error:  is given by what it contains"},
        {"o1", "OCTET STRING ::= 'ABC'H", "ABC0"},
        {"o2", "OCTET STRING ::= '1'B", "80"},
        {"o3", "OCTET STRING ::= ''H", ""},
        {"s1", "IA5String ::= \"a\"\"b\"", "a\"b"},
        {"s2", "IA5String ::= { s1, \"c\", nul, {0,10} }", std::string("a\"bc\0\n", 6)},
        {"s3", "BMPString ::= { \"a\", {0,0,32,172} }", "a\xe2\x82\xac"},
        {"s4", "UniversalString ::= { {0,1,246,0} }", "\xf0\x9f\x98\x80"},
        {"s5", "UTF8String ::= \"\xc3\xa9\"", "\xc3\xa9"},
        {"s6", "TeletexString ::= \"\xc3\xa9\"", "\xc3\xa9"},
        {"s7", "BMPString ::= { {0,0,216,0} }", "\xef\xbf\xbd"}, // half of a pair
        {"s8", "DATE ::= \"2026-01-31\"", "2026-01-31"},
        {"d1", "OBJECT IDENTIFIER ::= { iso standard 8571 pci(1) }", "1.0.8571.1."},
        {"d2", "OBJECT IDENTIFIER ::= { d1 i2 123456789012345678901234567890 }",
         "1.0.8571.1.5.123456789012345678901234567890."},
        {"d3", "RELATIVE-OID ::= { 4 i2 }", "4.5."},
        {"d4", "INTEGER ::= 5", "error:  is no OBJECT IDENTIFIER"},
        {"r1", "REAL ::= { mantissa 5, base 2, exponent -3 }", "5*2^-3"},
        {"r2", "REAL ::= -3.250E5", "-325*10^3"},
        {"r3", "REAL ::= 0", "0*10^0"},
        {"r4", "REAL ::= PLUS-INFINITY", "kind 1"},
        {"r5", "REAL ::= MINUS-INFINITY", "kind 2"},
        {"r6", "REAL ::= NOT-A-NUMBER", "kind 3"},
        {"l1", "SEQUENCE OF INTEGER ::= { 1, i2, far }", "1,5,50,"},
        {"l2", "SET OF NULL ::= {}", ""},
        {"v1", "CLS.&Type ::= INTEGER: 6", "INTEGER:6"},
        {"m1", "SEQUENCE { a-b NULL, c NULL OPTIONAL, d NULL } ::= { a-b NULL, d NULL }", "a_b d "},
        {"m2", "CHOICE { x NULL, y-z NULL } ::= y-z: NULL", "y_z "},
        {"m3", "SEQUENCE OF NULL ::= {}", "error:  is no structure"},
    };
    std::string text = "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS far FROM N;\n"
                       "CLS ::= CLASS { &Type OPTIONAL, &flag BOOLEAN }\n"
                       "o CLS ::= { &flag FALSE }\nnul IA5String ::= {0,0}\n";
    for (const auto& row : cases) text += std::string(row.name) + ' ' + row.notation + '\n';
    const RunResult run = compile(
        {{"m.asn", text + "END\n"}, {"n.asn", "N DEFINITIONS ::= BEGIN far INTEGER ::= 50 END\n"}},
        {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts facts(run, "m");
    for (const auto& row : cases) {
        SCOPED_TRACE(row.notation);
        EXPECT_EQ(accessed(facts, row.name), row.value);
    }
}

TEST(StxValues, TextsAreWholeAndInTheNotation) {
    constexpr const char* same = nullptr; // names followed or not
    const struct {
        const char *notation, *named, *followed;
    } cases[] = {
        {"INTEGER { five-5(5) } ::= five-5", "five-5", "5"},
        {"INTEGER ::= far-off", "N.far-off", "50"},
        {"INTEGER ::= pv {50, 7}", "pv {50, 7}", "7"},
        {"ENUMERATED { p, q-r(7) } ::= q-r", "q-r", same},
        {"BIT STRING { x-1(0), y(9) } ::= { y, x-1 }", "{y, x-1}", same},
        {"BIT STRING ::= '0101'B", "'0101'B", same},
        {"OCTET STRING (CONTAINING INTEGER) ::= CONTAINING far-off", "CONTAINING N.far-off",
         "CONTAINING 50"},
        {"IA5String ::= \"a\"\"b\\\"", "\"a\"\"b\\\"", same},
        {"IA5String ::= \"\"", "\"\"", same},
        {"IA5String ::= { {0,10} }", "{{0,10}}", "{0,10}"},
        {"IA5String ::= { \"a\", nl, nl, \"b\" }", "{\"a\", nl, nl, \"b\"}",
         "{\"a\", {0,10}, {0,10}, \"b\"}"},
        {"UTF8String ::= \"1\xe2\x82\xac\"", "{\"1\", {0,0,32,172}}", same},
        {"TeletexString ::= \"\xc3\xa9\"", "\"\xc3\xa9\"", same},
        {"REAL ::= 2.50", "{mantissa 25, base 10, exponent -1}", same},
        {"OBJECT IDENTIFIER ::= { d-1 name-1(5) far-off }", "{d-1 name-1(5) N.far-off}",
         "{1 2 5 50}"},
        {"SEQUENCE { a-b INTEGER, c CHOICE { d-e NULL } } ::= { a-b far-off, c d-e : NULL }",
         "{a-b N.far-off, c d-e : NULL}", "{a-b 50, c d-e : NULL}"},
        {"SEQUENCE OF T-1 ::= { TRUE, o.&flag }", "{TRUE, o.&flag}", "{TRUE, FALSE}"},
        {"CLS.&Type ::= T-1 : TRUE", "T-1 : TRUE", same},
        {"CLS ::= { &Type T-1, &flag TRUE, &Set { 1 | far-off } }",
         "{&Type T-1, &flag TRUE, &Set {1 | N.far-off}}", same},
    };
    std::string text = "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS far-off FROM N;\n"
                       "CLS ::= CLASS { &Type OPTIONAL, &flag BOOLEAN, &Set INTEGER OPTIONAL }\n"
                       "o CLS ::= { &flag FALSE }\nnl IA5String ::= { {0,10} }\nT-1 ::= BOOLEAN\n"
                       "d-1 OBJECT IDENTIFIER ::= { 1 2 }\n"
                       "pv {INTEGER:m, INTEGER:n} INTEGER (0..m) ::= n\n";
    int nr = 0;
    for (const auto& row : cases) text += 'v' + std::to_string(++nr) + ' ' + row.notation + '\n';
    const RunResult run =
        compile({{"m.asn", text + "END\n"},
                 {"n.asn", "N DEFINITIONS ::= BEGIN far-off INTEGER ::= 50 END\n"}},
                {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts facts(run, "m");
    nr = 0;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.notation);
        const stx::ValueRef value = facts.value('v' + std::to_string(++nr));
        const auto named = stx::valueText(facts.trees(), value, {});
        const auto followed =
            stx::valueText(facts.trees(), value, {stx::Naming::Followed, nullptr});
        EXPECT_EQ(named.value + named.error, row.named);
        EXPECT_EQ(followed.value + followed.error, row.followed == same ? row.named : row.followed);
    }
}

} // namespace
} // namespace orvo::test
