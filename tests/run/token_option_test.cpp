#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

TEST(TokenOptions, CommandsThatNoRuleTakesAreReported) {
    const auto run = compile({{"m.asn", "M DEFINITIONS --$PTR--\n"
                                        "::= BEGIN\n"
                                        "T ::= --$PTR--\n"
                                        "  SEQUENCE {\n"
                                        "    a INTEGER, --$PTR--\n"
                                        "    b SET --$DYN-- OF BOOLEAN --$PTR--\n"
                                        "  }\n"
                                        "U ::= OCTET STRING --$no option--\n"
                                        "END\n"}});
    EXPECT_EQ(run.status, 0);
    // those in front of OF and the closing brace belong to the types in front of them
    EXPECT_EQ(run.diagnostics("m"), "  ** WARNING  line   2 : $Option(s) ignored\n"
                                    "  ** WARNING  line   4 : $Option(s) ignored\n"
                                    "  ** WARNING  line   6 : $Option(s) ignored\n"
                                    "  ** WARNING  line   9 : $Option(s) ignored\n");
}

TEST(TokenOptions, OptionsInFrontOfTheHeaderAreTheModules) {
    const std::string body = "M DEFINITIONS ::= BEGIN T ::= NULL END";
    const auto listsSymbols = [&](const std::string& comments) {
        const auto run = compile({{"m.asn", comments + body}});
        EXPECT_EQ(run.diagnostics("m"), "") << comments;
        return run.listing("m").find("USER DEFINED TYPES") != std::string::npos;
    };
    EXPECT_TRUE(listsSymbols(""));
    EXPECT_FALSE(listsSymbols("--$XREF=0--"));
    EXPECT_FALSE(listsSymbols("-- $xref=0 $Info=some words --\n-- no more --"));
    EXPECT_FALSE(listsSymbols("--$ALLOW--\n--$XREF=0\n"));
}

TEST(TokenOptions, AfterASyntaxErrorCommandsAreComments) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN T ::= SET { , }\n"
                                        "U ::= A --$PTR-- B C D E F G\n"
                                        "U ::= --$PTR-- INTEGER END\n"}});
    EXPECT_EQ(run.diagnostics("m").find("ignored"), std::string::npos);
}

} // namespace
} // namespace orvo::test
