#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

struct ErrorCase {
    const char* source;
    const char* diagnostics;
};

TEST(ParseErrors, ShowTheTokenAndTheFiveBeforeIt) {
    constexpr ErrorCase cases[] = {
        {"M DEFINITIONS BEGIN\nEND\n", " *** ERROR on line   1 : BEGIN is not allowed after:\n"
                                       "typeid DEFINITIONS \n"},
        {"M DEFINITIONS ::= BEGIN\nT ::= SEQUENCE SIZE (1..2) INTEGER\nEND\n",
         " *** ERROR on line   2 : OF is expected after:\n( number .. number ) \n"},
        {"M DEFINITIONS ::= BEGIN\nT ::= a < < C\nEND\n",
         " *** ERROR on line   2 : < is not allowed after:\nBEGIN typeid ::= componentid < \n"},
        {"M DEFINITIONS ::= BEGIN\nT ::= U (v.&f |\nEND\n",
         " *** ERROR on line   4 : ) is expected after:\nvalueid . valuefieldid | END \n"},
        {"x", " *** ERROR on line   1 : typeid is expected after:\n"}};
    for (const ErrorCase& row : cases) {
        SCOPED_TRACE(row.source);
        const auto run = compile({{"m.asn", row.source}});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.diagnostics("m"), row.diagnostics);
        EXPECT_FALSE(run.has("m.stx"));
    }
}

TEST(ParseErrors, ListingShowsEachBehindItsLineAndParsingGoesOn) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n"
                                        "T ::= SEQUENCE { a [5 NULL, b\n"
                                        "NULL NULL }\n"
                                        "U ::= CHOICE { a INTEGER { 5 } }\n"
                                        "END"}});
    const std::string listing = run.listing("m");
    EXPECT_EQ(listing.substr(listing.find("    1:  ")),
              "    1:  M DEFINITIONS ::= BEGIN\n"
              "    2:  T ::= SEQUENCE { a [5 NULL, b\n"
              " *** ERROR on line   2 : ] is expected after:\n"
              "SEQUENCE { valueid [ number \n"
              "    3:  NULL NULL }\n"
              " *** ERROR on line   3 : NULL is not allowed after:\n"
              "number NULL , valueid NULL \n"
              "    4:  U ::= CHOICE { a INTEGER { 5 } }\n"
              "    5:  END\n"
              "\n"
              "Syntax errors     : 2\n"
              "Semantic errors   : 0\n"
              "Undefined symbols : 0\n"
              "Warnings          : 0\n");
}

TEST(ParseErrors, TextBehindTheModuleIsOneError) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\nT ::= NULL\nEND\n"
                                        "N DEFINITIONS ::= BEGIN ( ( ( END\n"}});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.diagnostics("m"), " *** ERROR on line   4 : typeid is not allowed after:\n"
                                    "BEGIN typeid ::= NULL END \n");
}

TEST(ParseErrors, TooManyOfThemStopTheModule) {
    std::string source = "M DEFINITIONS ::= BEGIN\n";
    for (int i = 0; i < 600; ++i) source += "A ::= [5 NULL\n";
    const auto run = compile({{"m.asn", source}});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("ORVO>>> stopping parsing - too many syntax errors\n"),
              std::string::npos);
    EXPECT_NE(run.out.find("Syntax errors     : 499\n"), std::string::npos);
}

TEST(ParseErrors, NestingBeyondTheLimitStopsTheModule) {
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

TEST(ParseErrors, LongListsAreNoNesting) {
    std::string body = "T ::= ENUMERATED { i0";
    for (int i = 1; i < 20000; ++i) body += ", i" + std::to_string(i);
    body += " }\nU ::= SEQUENCE { c0 NULL";
    for (int i = 1; i < 20000; ++i) body += ", c" + std::to_string(i) + " NULL";
    body += " }\nv T ::= { 0";
    for (int i = 1; i < 20000; ++i) body += ", " + std::to_string(i);
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n" + body + " }\nEND\n"}});
    EXPECT_NE(run.out.find("Syntax errors     : 0\n"), std::string::npos);
}

TEST(ParseErrors, OptionsThatNoRuleTakesAreWarnedOf) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n"
                                        "T ::= --$INT=1\n"
                                        "INTEGER\n"
                                        "END\n"}});
    EXPECT_EQ(run.diagnostics("m"), "  ** WARNING  line   3 : $Option(s) ignored\n");
}

} // namespace
} // namespace orvo::test
