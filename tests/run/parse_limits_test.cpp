#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

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
