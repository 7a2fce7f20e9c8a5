#include <gtest/gtest.h>

#include <sstream>

#include "support/cases.h"

namespace orvo::test {
namespace {

/// A source with line ends as "\n", and what is listed; "|" ends the lines of that.
void expectDiagnostics(const std::string& rows) {
    std::istringstream lines(rows);
    for (std::string row; std::getline(lines, row);) {
        SCOPED_TRACE(row);
        const size_t mark = row.find(" --! ");
        std::string source = row.substr(0, mark), listed;
        for (const char ch : row.substr(mark + 5)) listed += ch == '|' ? '\n' : ch;
        const auto run = compile({{"m.asn", withLines(source)}});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.diagnostics("m"), listed);
        EXPECT_FALSE(run.has("m.stx"));
    }
}

TEST(SyntaxErrors, ModuleFrame) {
    expectDiagnostics(
        R"(M DEFINITIONS BEGIN\nT ::= NULL\nEND --!  *** ERROR on line   1 : BEGIN is not allowed after:|typeid DEFINITIONS |
M DEFINITIONS ::= BEGIN\nT ::= NULL\n --!  *** ERROR on line   3 : END is expected after:|::= BEGIN typeid ::= NULL |
M DEFINITIONS ::= BEGIN END\nN DEFINITIONS ::= BEGIN END --!  *** ERROR on line   2 : typeid is not allowed after:|typeid DEFINITIONS ::= BEGIN END |
M junk { 1 } DEFINITIONS ::= BEGIN END --!  *** ERROR on line   1 : valueid is not allowed after:|typeid |
M junk SEQUENCE DEFINITIONS ::= BEGIN END --!  *** ERROR on line   1 : valueid is not allowed after:|typeid | *** ERROR on line   1 : DEFINITIONS is expected after:|typeid valueid |
M junk --!  *** ERROR on line   1 : valueid is not allowed after:|typeid | *** ERROR on line   1 : DEFINITIONS is expected after:|typeid valueid |
 --!  *** ERROR on line   1 : typeid is expected after:|
5 --!  *** ERROR on line   1 : typeid is expected after:|
\n\nmodule DEFINITIONS ::= BEGIN END # --!  *** ERROR on line   3 : typeid is expected after:|)");
    EXPECT_NE(compile({{"m.asn", ""}})
                  .out.find("ORVO>>> stopping parsing - can not find module reference\n"),
              std::string::npos);
}

// The first lines of the errors of a body, which stands on line 2: "2: message".
// clang-format off
constexpr struct {
    const char* body;
    const char* messages;
} bodyCases[] = {
    {"v INTEGER w INTEGER ::= 5", "2: ::= is expected after:\n2: INTEGER is not allowed after:\n"},
    {"a ::= 5\nT ::= ,", "2: ::= is not allowed after:\n3: , is not allowed after:\n"},
    {"T ::= SEQUENCE { a INTEGER b BOOLEAN }\nU ::= ,", "2: valueid is not allowed after:\n2: ::= is expected after:\n"},
    {"T ::= SEQUENCE { a , b ],\n c SET }", "2: , is not allowed after:\n2: ] is not allowed after:\n"},
    {"v T ::= { a 1", "4: } is expected after:\n"},
    {"T ::= INTEGER (1 ; 2)", "2: ) is expected after:\n"},
    {"T ::= INTEGER (UNIVERSAL)", "2: UNIVERSAL is not allowed after:\n"},
    {"T INTEGER ::= 1", "2: { is expected after:\n"},
    {"v INTEGER ::= -x", "2: number is expected after:\n3: END is not allowed after:\n"},
    {"v INTEGER ::= ;", "2: ; is not allowed after:\n"},
    {"v INTEGER ::= w (1)", "2: ( is not allowed after:\n"},
    {"v INTEGER ::= w.x", "2: valueid is not allowed after:\n3: END is not allowed after:\n"},
    {"v ANY ::= INTEGER", "3: : is expected after:\n"},
    {"A = NULL", "2: Lexical error before: NULL\n3: ::= is expected after:\n"},
    {"v INTEGER 5", "2: number is not allowed after:\n"},
    {"A {} ::= NULL", "2: } is not allowed after:\n"},
    {"A {x} ::= NULL", "2: Defined type syntax\n2: : is expected after:\n"},
    {"A {X ::= NULL", "2: : is expected after:\n"},
    {"EXPORTS ALL; ", "2: ALL is not allowed after:\n"},
    {"EXPORTS A B;", "2: typeid is not allowed after:\n2: ; is not allowed after:\n"},
    {"IMPORTS A FROM;", "2: typeid is expected after:\n"},
    {"T ::= INTEGER | NULL", "2: | is not allowed after:\n"},
    {"T ::= SEQUENCE { a INTEGER BOOLEAN }", "2: BOOLEAN is not allowed after:\n"},
    {"T ::= [5 NULL C ::= SEQUENCE { a INTEGER (0..5) DEFAULT 3 }", "2: ] is expected after:\n"},
    {"T ::= SEQUENCE SIZE OF NULL", "2: ( is expected after:\n"},
    {"T ::= BIT NULL", "2: STRING is expected after:\n"},
    {"T ::= T2 {", "4: } is expected after:\n"},
    {"T ::= CL.&id.x", "2: valueid is not allowed after:\n3: END is not allowed after:\n"},
    {"T ::= SEQUENCE { a NULL, }", "2: } is not allowed after:\n"},
    {"T ::= SEQUENCE { a NULL, B }", "2: typeid is not allowed after:\n2: } is not allowed after:\n"},
    {"T ::= SEQUENCE { a NULL, ..., [[ ... ]] }", "2: valueid is expected after:\n2: } is expected after:\n"},
    {"T ::= SEQUENCE { COMPONENTS B }", "2: OF is expected after:\n"},
    {"T ::= CHOICE { ... }", "2: valueid is expected after:\n"},
    {"T ::= CHOICE { a NULL, ..., [[ b NULL ]] }\nT ::= ,", "2: valueid is expected after:\n"},
    {"T ::= CHOICE { a NULL OPTIONAL }", "2: } is expected after:\n"},
    {"T ::= INTEGER { 5 }", "2: END is expected after:\n"},
    {"T ::= INTEGER { a, b }", "2: ( is expected after:\n2: ( is expected after:\n"},
    {"T ::= BIT STRING { a(0), b() }", "2: ) is not allowed after:\n"},
    {"T ::= ENUMERATED { ..., a }", "2: valueid is expected after:\n"},
    {"T ::= ENUMERATED { a(- ) }", "2: number is expected after:\n"},
    {"C ::= CLASS { }", "2: } is not allowed after:\n"},
    {"C ::= CLASS { &Type UNIQUE }", "2: UNIQUE is not allowed after:\n"},
    {"C ::= CLASS { &id INTEGER } WITH { &id }", "2: SYNTAX is expected after:\n"},
    {"C ::= CLASS { &T } WITH SYNTAX { [ ] }", "2: ] is not allowed after:\n"},
    {"C ::= CLASS { &T } WITH SYNTAX { &T | }", "2: } is expected after:\n"},
    {"C ::= CLASS { &T } WITH SYNTAX { &T Alias }", "2: Lower case letters not allowed: lias\n"},
    {"My-class ::= CLASS { &id INTEGER }", "2: Lower case letters not allowed: y_class\n"},
};
// clang-format on

TEST(SyntaxErrors, StandWhereTheNotationBreaks) {
    for (const auto& [body, messages] : bodyCases) {
        SCOPED_TRACE(body);
        const auto run =
            compile({{"m.asn", std::string("M DEFINITIONS ::= BEGIN\n") + body + "\nEND\n"}});
        std::istringstream lines(run.diagnostics("m"));
        std::string found;
        for (std::string line; std::getline(lines, line);)
            if (const size_t at = line.find(" ERROR on line   "); at != std::string::npos)
                found += line.substr(at + 17, 1) + line.substr(line.find(": "), std::string::npos) +
                         "\n";
        EXPECT_EQ(found, messages);
    }
}

TEST(SyntaxErrors, ListingShowsBothLinesOfAnError) {
    const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN\nT ::= SET {\n  a 5\n}\nEND\n"}});
    const std::string listing = run.listing("m");
    EXPECT_EQ(listing.substr(listing.find("    1:  ")),
              "    1:  M DEFINITIONS ::= BEGIN\n"
              "    2:  T ::= SET {\n"
              "    3:    a 5\n"
              " *** ERROR on line   3 : number is not allowed after:\n"
              "typeid ::= SET { valueid \n"
              "    4:  }\n"
              "    5:  END\n"
              "\n"
              "Syntax errors     : 1\n"
              "Semantic errors   : 0\n"
              "Undefined symbols : 0\n"
              "Warnings          : 0\n");
}

TEST(SyntaxErrors, ParsingStopsAtTheFiveHundredth) {
    const auto source = [](int errors) {
        std::string text = "M DEFINITIONS ::= BEGIN\n";
        for (int i = 0; i < errors; ++i) text += "T NULL\n"; // no `::=` at the next T
        return text + "T ::= NULL END";
    };
    constexpr const char* message = "ORVO>>> stopping parsing - too many syntax errors\n";
    const auto most = compile({{"m.asn", source(499)}});
    EXPECT_NE(most.listing("m").find("\nSyntax errors     : 499\n"), std::string::npos);
    EXPECT_EQ(most.out.find(message), std::string::npos);
    const auto over = compile({{"m.asn", source(600)}});
    EXPECT_NE(over.listing("m").find("\nSyntax errors     : 499\n"), std::string::npos);
    EXPECT_NE(over.out.find(message), std::string::npos);
    const auto quiet = compile({{"m.asn", source(600)}}, {"-VERBOSE=NONE"});
    EXPECT_EQ(quiet.out.find(message), std::string::npos);
}

TEST(SyntaxErrors, NestingHasALimit) {
    const auto repeat = [](std::string_view piece, int times) {
        std::string text;
        while (times-- > 0) text += piece;
        return text;
    };
    const struct {
        std::string source[2]; // 500 and 501 levels
        const char* diagnostics;
    } cases[] = {
        {{"T ::= " + repeat("SET OF ", 499) + "NULL", "T ::= " + repeat("SET OF ", 500) + "NULL"},
         " *** ERROR on line   1 : NULL is not allowed after:\nOF SET OF SET OF \n"},
        {{"v T ::= " + repeat("{", 500) + repeat("}", 500), "v T ::= " + repeat("{", 501)},
         " *** ERROR on line   1 : { is not allowed after:\n{ { { { { \n"},
        {{"v T ::= {" + repeat("(", 499) + repeat(")", 499) + "}", "v T ::= {" + repeat("(", 500)},
         " *** ERROR on line   1 : ( is not allowed after:\n( ( ( ( ( \n"},
        {{"v T ::= " + repeat("x : ", 100000) + "1", "T ::= " + repeat("a < ", 500) + "B"},
         " *** ERROR on line   1 : typeid is not allowed after:\n"
         "< componentid < componentid < \n"}};
    constexpr const char* message = "ORVO>>> stopping parsing - nesting too deep\n";
    for (const std::string& body :
         {"T ::= " + repeat("SET { a ", 20000) + "NULL",
          "T ::= INTEGER " + repeat("(", 20000) + "5", "T ::= " + repeat("U {", 20000) + "NULL",
          "v T ::= " + repeat("{ SEQUENCE { a NULL DEFAULT ", 20000),
          "C ::= CLASS { &T } WITH SYNTAX { " + repeat("[", 20000) + "&T }"}) {
        const auto run = compile({{"m.asn", "M DEFINITIONS ::= BEGIN " + body}});
        EXPECT_EQ(run.status, 1) << body.substr(0, 40);
        EXPECT_NE(run.out.find(message), std::string::npos) << body.substr(0, 40);
    }
    for (const auto& [source, diagnostics] : cases) {
        SCOPED_TRACE(source[0].substr(0, 30));
        const auto most = compile({{"m.asn", "M DEFINITIONS ::= BEGIN " + source[0] + " END"}});
        EXPECT_NE(most.listing("m").find("\nSyntax errors     : 0\n"), std::string::npos);
        const auto over = compile({{"m.asn", "M DEFINITIONS ::= BEGIN " + source[1] + " END"}});
        EXPECT_EQ(over.diagnostics("m"), diagnostics);
        EXPECT_NE(over.out.find(message), std::string::npos);
    }
}

} // namespace
} // namespace orvo::test
