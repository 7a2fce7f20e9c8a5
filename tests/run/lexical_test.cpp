#include <gtest/gtest.h>

#include "support/run.h"

namespace orvo::test {
namespace {

using namespace std::string_literals;

TEST(LexicalErrors, AreListedAtTheirTokenAndDoNotStopTheParse) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n"
                                        "T ::= INTEGER _\n"
                                        "U ::= BOOLEAN\n"
                                        "v INTEGER ::= 007\n"
                                        "w INTEGER ::= 9223372036854775807\n"
                                        "s IA5String ::= \"a\x01~b\nc\"\n"
                                        "h OCTET STRING ::= '1f'H\n"
                                        "b BIT STRING ::= '01'\n"
                                        "X ::= NULL =\n"
                                        "END\n"}});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.diagnostics("m"), " *** ERROR on line   3 : Lexical error before: typeid\n"
                                    " *** ERROR on line   4 : Leading zeroes in: number\n"
                                    " *** ERROR on line   5 : More than 19 digits in: number\n"
                                    " *** ERROR on line   6 : Invalid character in: cstring\n"
                                    " *** ERROR on line   8 : Invalid character in: hstring\n"
                                    " *** ERROR on line   9 : Invalid end character in: hstring\n"
                                    " *** ERROR on line  11 : Lexical error before: END\n");
}

TEST(LexicalErrors, ErrorBehindAMarkerIsRecordedOnce) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n"
                                        "T {\n_ INTEGER : x} ::= OCTET STRING (SIZE (x))\n"
                                        "U ::= OCTET STRING (SIZE\n(#1)) END"}});
    EXPECT_EQ(run.diagnostics("m"), " *** ERROR on line   3 : Lexical error before: INTEGER\n"
                                    " *** ERROR on line   5 : Lexical error before: number\n");
}

TEST(LexicalErrors, NamesAreCutWithAWarning) {
    const std::string name(128, 'a');
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n" + name + " INTEGER ::= 1\n" +
                                            "B" + name + " ::= BOOLEAN\nEND\n"}});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.diagnostics("m"),
              "  ** WARNING  line   3 : More than 128 characters in: typeid\n");
}

TEST(LexicalErrors, ForeignBytesOutsideCommentsAreErrors) {
    EXPECT_EQ(compile({{"m.asn", "\xEF\xBB\xBFM DEFINITIONS ::= BEGIN END"}}).diagnostics("m"),
              " *** ERROR on line   1 : Lexical error before: typeid\n");
    EXPECT_EQ(compile({{"m.asn", "M DEFINITIONS ::=\0BEGIN END"s}}).diagnostics("m"),
              " *** ERROR on line   1 : Lexical error before: BEGIN\n");
    const auto run = compile({{"m.asn", "M\r\nDEFINITIONS ::=\fBEGIN -- \xE4\0 --\r\nEND\x0B"s}});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.diagnostics("m"), "");
}

} // namespace
} // namespace orvo::test
