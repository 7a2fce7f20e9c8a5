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
    ModuleRec module;
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

} // namespace
} // namespace orvo
