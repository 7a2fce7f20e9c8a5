#include "parser/parser.h"

#include <gtest/gtest.h>

#include <string>

#include "parser/parser_defer.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"

namespace orvo {
namespace {

/// A module whose notation is a text in memory, where type names are no keywords.
class ParserTest : public testing::Test {
  protected:
    ParserTest() {
        resetStore();
        resetTokens();
        resetSymbols();
        run.verbose = VERBOSE_NONE;
        changeCMP(&module);
    }
    ~ParserTest() override {
        setInput({});
        parserState = {};
        resetStore();
    }

    /// Makes the first token of the text current, as within a module that has an error already, so
    /// that nothing is recorded.
    static void startAt(std::string_view text) {
        setInput(text);
        parserState = {};
        parserState.NbErrors = 1;
        while (parserState.inputList.count < lookAheadTokens) NextToken(parserState.inputList);
        parserState.Inp = tokenAt(parserState.inputList.first);
    }
    /// Pass 1 over a module with that body.
    void parseBody(const std::string& body) {
        text_ = "M DEFINITIONS ::= BEGIN " + body + " END";
        setInput(text_);
        char name[] = "orvo";
        char* arguments[] = {name, nullptr};
        parse(1, arguments);
        flushRecs(-1);
        ASSERT_EQ(module.nbStxErrors, 0);
    }
    /// The tokens of a range; markers with the code of the type they stand for.
    std::string rangeText(uint32_t nr) {
        readRec(&module, DNodeNr{nr});
        const DNode range = dNode;
        std::string text;
        for (TokNr at{range.first}; at; at = TokNr{tokenAt(at).next}) {
            const Token& token = tokenAt(at);
            text += text.empty() ? "" : " ";
            if (token.code == TOK_MARKER) {
                readRec(&module, TNodeNr{token.value.low});
                text += typeArr[tNode.typeCode].name;
            } else {
                text += tokenName(token.code);
            }
            EXPECT_EQ(token.next == 0, at.nr == range.last);
        }
        return text + " (" + std::to_string(range.count) + ")";
    }

    ModuleRec module;

  private:
    std::string text_;
};

TEST_F(ParserTest, TypesInDeferredNotationAreRecognisedByWhatFollows) {
    constexpr struct {
        const char* text;
        bool bare, inBraces; // whether it is a type outside and inside braces
    } cases[] = {{"SEQUENCE {", true, true},
                 {"[1] T", true, true},
                 {"UNIVERSAL", true, true},
                 {"NULL", false, false},
                 {"NULL : NULL", true, true},
                 {"NULL (X)", true, true},
                 {"PRESENT", false, false},
                 {"5", false, false},
                 {"T", true, false},
                 {"T , U", true, false},
                 {"T : 5", true, true},
                 {"T (1)", true, true},
                 {"T.&f", true, true},
                 {"T {A, {B}} : 5", true, true},
                 {"T {A, {B}} | 5", true, false},
                 {"T {A, {B} : 5", true, false}, // the list does not end
                 {"M.T", true, true},
                 {"M.T {A} , 5", true, true},
                 {"M.v", false, false},
                 {"M.v.&T", true, true},
                 {"v", false, false},
                 {"v.&f", false, false},
                 {"v.&f.&T", true, true},
                 {"v {A}.&f.&T", true, true},
                 {"v.&f.g", false, false},
                 {"a < T", true, true},
                 {"a < .. b", false, false}};
    for (const auto& [text, bare, inBraces] : cases) {
        SCOPED_TRACE(text);
        startAt(text);
        EXPECT_EQ(typeFollows(false), bare);
        startAt(text);
        EXPECT_EQ(typeFollows(true), inBraces);
    }
}

TEST_F(ParserTest, BracesThatWereMatchedOnceAreNotScannedAgain) {
    startAt("A {B {C} {D}} : 5");
    EXPECT_TRUE(typeFollows(true));
    ReadIn();
    ReadIn(); // A {
    EXPECT_EQ(parserState.Inp.code, TOK_TYPEID);
    EXPECT_EQ(tokenAt(TokNr{lookAhead(1).value.low}).code, TOK_RBRACE);
    EXPECT_FALSE(typeFollows(true)); // B {C} is followed by a brace
    ReadIn();
    ReadIn(); // B {
    EXPECT_FALSE(typeFollows(true));
}

TEST_F(ParserTest, NamedListsAreToldFromValues) {
    constexpr struct {
        const char* text;
        bool isList;
    } cases[] = {{"{ a (1) }", true},    {"{ a (1), b (2) }", true},
                 {"{ a (-1) }", true},   {"{ a (v), b }", true},
                 {"{ a (M.v) }", true},  {"{ a }", true},
                 {"{ a, b }", true},     {"{ }", false},
                 {"{ a 1 }", false},     {"{ 1 }", false},
                 {"{ a (1) 2 }", false}, {"{ a (M.T) }", false},
                 {"{ a (-v) }", false},  {"{ a (1 }", false},
                 {"{ A }", false},       {"{ a", false}};
    for (const auto& [text, isList] : cases) {
        startAt(text);
        EXPECT_EQ(namedIdentListFollows(), isList) << text;
    }
}

TEST_F(ParserTest, InsertedTokenLeavesWhatIsBehindItUnchanged) {
    startAt("a --$PTR-- b c");
    parserState.NbErrors = 0; // options are recorded
    ReadIn();
    EXPECT_EQ(parserState.Inp.optFlags, OPTF_PTR);
    parserState.Inp.code = TOK_COMPONENTID;
    insertToken(TOK_MARKER, -7);
    EXPECT_EQ(parserState.Inp.stri(), -7);
    EXPECT_EQ(parserState.Inp.optFlags, 0U);
    EXPECT_EQ(lookAhead(1).code, TOK_COMPONENTID);
    ReadIn();
    EXPECT_EQ(parserState.Inp.code, TOK_COMPONENTID);
    EXPECT_EQ(parserState.Inp.optFlags, OPTF_PTR);
    EXPECT_EQ(lookAhead(1).code, TOK_VALUEID);
    EXPECT_EQ(lookAhead(20).code, TOK_EOF);
}

TEST_F(ParserTest, ValueIsOneRangeWithMarkersForTypes) {
    parseBody("v T ::= { a 1, b SEQUENCE { c INTEGER (0..5) DEFAULT 3 }, d x < U } "
              "T ::= NULL U ::= NULL");
    EXPECT_EQ(rangeText(1), "{ valueid number , valueid TYP_SEQ , valueid TYP_SELECTION } (10)");
    EXPECT_EQ(rangeText(2), "( number .. number ) (5)");
    EXPECT_EQ(rangeText(3), "number (1)");
    EXPECT_EQ(module.nextRecNr[KIND_DNODE], 4U);
}

TEST_F(ParserTest, ConstraintsOfATypeAreOneRange) {
    parseBody("T ::= OCTET STRING (SIZE (1..2)) (CONSTRAINED BY { }) "
              "U ::= SEQUENCE SIZE (1) OF V { INTEGER, {W} } (ALL EXCEPT 5)");
    EXPECT_EQ(rangeText(1), "( SIZE ( number .. number ) ) ( CONSTRAINED BY { } ) (14)");
    EXPECT_EQ(rangeText(2), "SIZE ( number ) (4)");
    EXPECT_EQ(rangeText(3), "{ TYP_INTEGER , { typeid } } (7)");
    EXPECT_EQ(rangeText(4), "( ALL EXCEPT number ) (5)");
}

TEST_F(ParserTest, ValuesOutsideBracesEndWhereTheirNotationEnds) {
    parseBody("a T ::= INTEGER : -5 b T ::= c : d : \"x\" e T ::= f {1}.&g.&h i T ::= o.&T : j "
              "k T ::= M.v {1} l T ::= '0'B m T ::= PLUS-INFINITY");
    EXPECT_EQ(rangeText(1), "TYP_INTEGER : - number (4)");
    EXPECT_EQ(rangeText(2), "valueid : valueid : cstring (5)");
    EXPECT_EQ(rangeText(3), "valueid { number } . valuefieldid . valuefieldid (8)");
    EXPECT_EQ(rangeText(4), "TYP_FIELDLIST : valueid (3)");
    EXPECT_EQ(rangeText(5), "moduleid . valueid { number } (6)");
    EXPECT_EQ(rangeText(6), "bstring (1)");
    EXPECT_EQ(rangeText(7), "PLUS_INFINITY (1)");
}

TEST_F(ParserTest, RangesCarryTheFormalParametersInForce) {
    parseBody("T {INTEGER:x} ::= INTEGER (x) U ::= INTEGER (1)");
    readRec(&module, DNodeNr{1});
    ASSERT_NE(dNode.formals, 0U);
    EXPECT_EQ(getStri(&module, symAt(STabNr{dNode.formals}).name), "x");
    readRec(&module, DNodeNr{2});
    EXPECT_EQ(dNode.formals, 0U);
}

TEST_F(ParserTest, CountOfARangeSaturates) {
    std::string list = "v T ::= {1";
    for (int i = 0; i < 40000; ++i) list += ",1";
    parseBody(list + "}");
    readRec(&module, DNodeNr{1});
    EXPECT_EQ(dNode.count, 65534);
    EXPECT_EQ(tokenAt(TokNr{dNode.last}).code, TOK_RBRACE);
}

} // namespace
} // namespace orvo
