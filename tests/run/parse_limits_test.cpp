#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

TEST(ParseLimits, NestingBeyondTheLimitStopsTheModule) {
    const auto nested = [](size_t levels, const char* open, const char* inner, char close) {
        std::string text;
        for (size_t i = 0; i < levels; ++i) text += open;
        return text + inner + std::string(levels, close);
    };
    const std::string bodies[] = {
        "T ::= " + nested(20000, "SET { a ", "NULL", '}'),
        "T ::= " + nested(20000, "SET OF ", "NULL", ' '),
        "v T ::= " + nested(20000, "{", "", '}'),
        "T ::= INTEGER " + nested(20000, "(", "5", ')'),
        "T ::= " + nested(20000, "U {", "NULL", '}'),
        "v T ::= " + nested(20000, "{ SEQUENCE { a NULL DEFAULT ", "", '}'),
        "C ::= CLASS { &T } WITH SYNTAX { " + nested(20000, "[", "&T", ']') + "}"};
    for (const std::string& body : bodies) {
        SCOPED_TRACE(body.substr(0, 40));
        const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n" + body + "\nEND\n"}});
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.out.find("ORVO>>> stopping parsing - nesting too deep\n"), std::string::npos);
        EXPECT_NE(run.out.find("Syntax errors     : 1\n"), std::string::npos);
    }
}

TEST(ParseLimits, LongListsAreNoNesting) {
    std::string body = "T ::= ENUMERATED { i0";
    for (int i = 1; i < 20000; ++i) body += ", i" + std::to_string(i);
    body += " }\nU ::= SEQUENCE { c0 NULL";
    for (int i = 1; i < 20000; ++i) body += ", c" + std::to_string(i) + " NULL";
    body += " }\nv T ::= { 0";
    for (int i = 1; i < 20000; ++i) body += ", " + std::to_string(i);
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n" + body + " }\nEND\n"}});
    EXPECT_NE(run.out.find("Syntax errors     : 0\n"), std::string::npos);
}

} // namespace
} // namespace orvo::test
