// What is limited, at the limit and one beyond. Limits of one part of the notation are tested with
// it.

#include <gtest/gtest.h>

#include <chrono>

#include "support/cases.h"

namespace orvo::test {
namespace {

std::string repeat(const std::string& text, size_t times) {
    std::string all;
    for (size_t i = 0; i < times; ++i) all += text;
    return all;
}

/// The lines for 1 to `count`, in which # is the number and @ the one before.
std::string numbered(int count, const std::string& line) {
    std::string all;
    for (int i = 1; i <= count; ++i) {
        for (const char c : line)
            all += c == '#'   ? std::to_string(i)
                   : c == '@' ? std::to_string(i - 1)
                              : std::string(1, c);
        all += '\n';
    }
    return all;
}

TEST(Limits, LongListsAreNoNesting) {
    const std::string body = "T ::= ENUMERATED { i0" + numbered(19999, ", i#") +
                             " }\nU ::= SEQUENCE { c0 NULL" + numbered(19999, ", c# NULL") +
                             " }\nv T ::= { 0" + numbered(19999, ", #");
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\n" + body + " }\nEND\n"}});
    EXPECT_NE(run.out.find("Syntax errors     : 0\n"), std::string::npos);
}

TEST(Limits, OfLiterals) {
    const struct {
        std::string front, digit, end, token;
    } cases[] = {{"v IA5String ::= \"", "a", "\"", "cstring"},
                 {"v IA5String ::= \"", "\"\"", "\"", "cstring"}, // one quotation mark each
                 {"v BIT STRING ::= '", "1 ", "'B", "bstring"},
                 {"v OCTET STRING ::= '", "F", "'H", "hstring"}};
    for (const auto& [front, digit, end, token] : cases) {
        SCOPED_TRACE(front + digit);
        EXPECT_EQ(diagnosticsOf(front + repeat(digit, 32000) + end), "");
        EXPECT_EQ(diagnosticsOf(front + repeat(digit, 32001) + end),
                  " *** ERROR on line   2 : More than 32000 characters in: " + token + "\n");
    }
}

TEST(Limits, OfDiagnosticsThatAreListed) {
    for (const int faults : {500, 501}) {
        const RunResult run =
            compile({moduleM(repeat("T ::= NULL\n", 1 + static_cast<size_t>(faults)))});
        std::vector<Finding> found;
        for (int i = 0; i < 500; ++i) found.push_back({3 + i, "Symbol already defined: T"});
        EXPECT_EQ(run.diagnostics("m"), listed(found));
        EXPECT_NE(run.out.find("Semantic errors   : " + std::to_string(faults) + "\n"),
                  run.out.npos);
    }
}

TEST(Limits, OfPathsAndOfLinesOfOptionFiles) {
    const std::string text = "M DEFINITIONS ::= BEGIN END\n";
    const std::string folder = "-A=" + repeat("./", 509); // 1018 characters
    EXPECT_EQ(runOrvo({{"xx.asn", text}}, {folder, "xx"}).status, 0);
    const RunResult beyond = runOrvo({{"xxx.asn", text}}, {folder, "xxx"});
    EXPECT_EQ(beyond.status, 2);
    EXPECT_EQ(beyond.err, "\nFATAL ERROR : Can not open file for reading\n\n");
    for (const size_t blanks : {1018U, 1019U}) { // the line has 1023 characters, and 1024
        const std::string line = std::string(blanks, ' ') + "-L=xy\n";
        const RunResult run =
            runOrvo({{"m.asn", text}, {"o.opt", line}, {"x/f", ""}, {"xy/f", ""}}, {"+o.opt", "m"});
        EXPECT_TRUE(run.has(blanks == 1018 ? "xy/m.lst" : "x/m.lst"));
    }
    for (const size_t length : {32U, 33U}) {
        const std::string prefix(length, 'p');
        const RunResult run = runOrvo({{"m.asn", text}}, {"-ZOV-PREFIX=" + prefix, "m"});
        EXPECT_EQ(run.has(prefix + ".acs"), length == 32);
    }
}

TEST(Limits, OfSetsWithinSetsThatAreCompared) {
    for (const int levels : {500, 501}) { // around an empty one
        const std::string last = std::to_string(levels);
        const RunResult run = compileBody("L ::= SET (SIZE (0..1)) OF L v0 L ::= {} w0 L ::= {}\n" +
                                          numbered(levels, "v# L ::= { v@ } w# L ::= { w@ }") +
                                          "x L (v" + last + ") ::= w" + last);
        EXPECT_EQ(run.status, levels == 500 ? 0 : 2);
        EXPECT_EQ(run.err, levels == 500 ? ""
                                         : "\nFATAL ERROR : Can not allocate space\n"
                                           "              SET OF values nested too deeply.\n\n");
    }
}

const std::string tooManyInstances =
    "\nFATAL ERROR : Can not allocate space\n"
    "              Too many instances of parameterized definitions.\n\n";

#ifdef NDEBUG // of this size only programs that are optimised are used
TEST(Limits, OfInstances) {
    const std::string million = "Q {T} ::= SEQUENCE { t T }\nP {T} ::= SEQUENCE { c0 Q {T}" +
                                numbered(998, ", c# Q {T}") + " }\n" +
                                numbered(1000, "A# ::= P {NULL}");
    EXPECT_EQ(compile({moduleM(million)}).status, 0);
    EXPECT_EQ(compile({moduleM(million + "Z ::= Q {NULL}")}).err, tooManyInstances);
}
#endif

TEST(Limits, WhatDoublesWithSixtyLevelsEnds) {
    const struct {
        std::string first, level, last;
        bool explodes;
    } cases[] = {
        {"P0 {T} ::= SEQUENCE { t T }", "P# {T} ::= SEQUENCE { a P@ {T}, b P@ {SET OF T} }",
         "U ::= P60 {NULL}", true},
        {"P0 {T} ::= SEQUENCE { t T }", "P# {T} ::= P@ {SEQUENCE { a T, b T }}", "U ::= P60 {NULL}",
         false},
        {"L ::= SET (SIZE (0..2)) OF L q0 {L:v} L ::= { v, v}", "q# {L:v} L ::= { q@ {v}, q@ {v} }",
         "u L ::= q60 {{}}", true},
        {"C ::= CLASS { &i INTEGER } S0 {C:o} C ::= { o }", "S# {C:o} C ::= { S@ {o} | S@ {o} }",
         "o C ::= { &i 1 } U ::= C.&i ({S60 {o}})", true},
        {"T0 ::= NULL U0 ::= NULL v0 T0 ::= NULL",
         "T# ::= SEQUENCE { a T@ DEFAULT v@, b T@ } U# ::= SEQUENCE { a U@ DEFAULT v@, b U@ }\n"
         "v# T# ::= { a v@, b v@ } w# U# ::= v#",
         "", false},
        {"R ::= SEQUENCE { a R OPTIONAL, b R OPTIONAL } T0 ::= R v0 R ::= {}",
         "T# ::= R (WITH COMPONENTS { a (T@ | T@), b (T@) }) v# T# ::= { a v@, b v@ }", "", false},
        {"C0 ::= CLASS { &x NULL } o0 C0 ::= { &x NULL }",
         "C# ::= CLASS { &A C@, &b C@ } o# C# ::= { &A { o@ | o@ }, &b o@ }", "", false},
    };
    for (const auto& [first, level, last, explodes] : cases) {
        SCOPED_TRACE(level);
        const auto start = std::chrono::steady_clock::now();
        const RunResult run = compile({moduleM(first + "\n" + numbered(60, level) + last)},
                                      {"-STANDARD-VERSION=2021"});
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(run.status, explodes ? 2 : 0) << run.diagnostics("m");
        EXPECT_EQ(run.err, explodes ? tooManyInstances : "");
#ifdef NDEBUG
        EXPECT_LT(took.count(), 5); // a second, on a machine that does nothing else
#else
        EXPECT_LT(took.count(), 50);
#endif
    }
}

} // namespace
} // namespace orvo::test
