#include "lex/lex.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tree/orvorec.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// A module whose source is a text.
class LexTest : public testing::Test {
  protected:
    LexTest() {
        resetStore();
        resetTokens();
        changeCMP(&module);
        setInput({});
    }
    ~LexTest() override {
        endInput();
        setInput({});
        resetStore();
    }

    std::vector<Token> lex(std::string_view source) {
        const File file(std::tmpfile());
        std::fwrite(source.data(), 1, source.size(), file.get());
        std::rewind(file.get());
        module.srcFile = file.get();
        std::vector<Token> tokens = lexOpened();
        module.srcFile = nullptr;
        return tokens;
    }
    /// From the source as it is set up, End-Of-File included.
    static std::vector<Token> lexOpened() {
        TokenList list;
        while (NextToken(list) != TOK_EOF) {
        }
        std::vector<Token> tokens;
        for (TokNr at = list.first; at; at = TokNr{tokenAt(at).next}) tokens.push_back(tokenAt(at));
        return tokens;
    }

    std::string show(const Token& token) {
        std::string text(tokenName(token.code));
        if (token.code == TOK_LVERSION) text = "[[";
        if (token.code == TOK_RVERSION) text = "]]";
        if (token.code == TOK_NUMBER) text += ":" + std::to_string(i64native(token.value));
        if (token.code >= TOK_VALUEID && token.code <= TOK_VALUEFIELDID)
            text += token.stri() == 0 ? ":" : ":" + std::string(getStri(&module, token.stri()));
        if (token.lexError != 0) text += "!" + std::to_string(token.lexError);
        return text;
    }
    /// All tokens but an End-Of-File without error.
    std::string show(const std::vector<Token>& tokens) {
        std::string text;
        for (const Token& token : tokens) {
            if (token.code == TOK_EOF && token.lexError == 0) continue;
            text += (text.empty() ? "" : " ") + show(token);
        }
        return text;
    }

    ModuleRec module;
};

struct TokenCase {
    std::string_view source;
    const char* tokens;
};

TEST_F(LexTest, HyphensBelongToNamesOnlyBeforeLettersAndDigits) {
    constexpr TokenCase cases[] = {{"a-b", "valueid:a_b"},
                                   {"A-9b", "typeid:A_9b"},
                                   {"a-", "valueid:a -"},
                                   {"a--b\nc", "valueid:a valueid:c"},
                                   {"a- -b", "valueid:a - - valueid:b"},
                                   {"a_b", "valueid:a valueid:b!20"}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
}

TEST_F(LexTest, OnlyUpperCaseNamesAreKeywords) {
    constexpr TokenCase cases[] = {
        {"MINUS-INFINITY", "MINUS_INFINITY"},
        {"TYPE-IDENTIFIER VisibleString", "TYPE_IDENTIFIER VisibleString"},
        {"ABSENT WITH EXCEPT", "ABSENT WITH EXCEPT"},
        {"end Absent ENDS EN MINUS-INFINITY-", "valueid:end typeid:Absent typeid:ENDS typeid:EN "
                                               "MINUS_INFINITY -"}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
    setInput("BMPString ::= TYPE-IDENTIFIER END");
    EXPECT_EQ(show(lexOpened()), "typeid:BMPString ::= typeid:TYPE_IDENTIFIER END");
}

TEST_F(LexTest, SymbolsTakeAsManyCharactersAsFit) {
    constexpr TokenCase cases[] = {{"....", "... ."},
                                   {"..<", ".. <"},
                                   {"[[[1]]]", "[[ [ number:1 ]] ]"},
                                   {":a:=;", ": valueid:a : ;!20"}, // on the token behind
                                   {"::=:::=", "::= :!20 End-Of-File!20"},
                                   {"!()*,;<@^{|}", "! ( ) * , ; < @ ^ { | }"},
                                   {"&Ab&c-d", "typefieldid:Ab valuefieldid:c_d"},
                                   {"& 5", "number:5!20"}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
}

TEST_F(LexTest, NumbersAreShortestFormsBelowTheLargestValue) {
    constexpr TokenCase cases[] = {
        {"0 5", "number:0 number:5"},
        {"00", "number:0!24"},
        {"9223372036854775806", "number:9223372036854775806"},
        {"9223372036854775807", "number:9223372036854775807!25"},
        {"9999999999999999999", "number:9223372036854775807!25"},
        {"10000000000000000000", "number:9223372036854775807!25"},
        {"00000000000000000000", "number:0!24"},
        {"_00", "number:0!24"}, // replaces the error of the character in front
        {"7a", "number:7 valueid:a"}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
}

TEST_F(LexTest, StringsHoldWhatTheirKindAllows) {
    using namespace std::string_view_literals;
    constexpr TokenCase cases[] = {{R"("""")", "cstring:\""},
                                   {R"("a""b" "")", "cstring:a\"b cstring:"},
                                   {"\"a\tb\r\nc\"", "cstring:a\tb\r\nc"},
                                   {"\"a\rb\"", "cstring:a~b!26"},
                                   {"\"a\0~\x80\"x"sv, "cstring:a~~~!26 valueid:x"},
                                   {"\"~\"", "cstring:~"},
                                   {"\"abc\n", "cstring:abc\n!23"},
                                   {"'0101 11\n00'B", "bstring:01011100"},
                                   {"'1F'H", "hstring:1F"},
                                   {"'1f'H", "hstring:1~!26"},
                                   {"'012'B", "bstring:01~!26"},
                                   {"'01' B", "hstring:01!23 typeid:B"},
                                   {"'0g'", "hstring:0~!26"},
                                   {"'01", "hstring:01!23"},
                                   {"''H", "hstring:"}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
}

TEST_F(LexTest, WhatExceedsALimitIsDropped) {
    const struct {
        size_t length, kept;
        int32_t error;
    } names[] = {{128, 128, 0}, {129, 128, 22}, {5000, 128, 22}};
    for (const auto& [length, kept, error] : names) {
        const Token token = lex(std::string(length, 'a') + " b")[0];
        EXPECT_EQ(getStri(&module, token.stri()).size(), kept);
        EXPECT_EQ(token.lexError, error) << length;
    }
    for (const size_t length : {size_t{32000}, size_t{32001}}) {
        const auto tokens = lex("\"" + std::string(length, '\n') + "\" b");
        EXPECT_EQ(getStri(&module, tokens[0].stri()).size(), 32000);
        EXPECT_EQ(tokens[0].lexError, length == 32000 ? 0 : 21);
        EXPECT_EQ(tokens[1].line, length + 1); // dropped line ends count
    }
}

TEST_F(LexTest, BytesThatAreNeitherTextNorSpaceAreErrors) {
    using namespace std::string_view_literals;
    EXPECT_EQ(show(lex("\xEF\xBB\xBFM"sv)), "typeid:M!20");
    EXPECT_EQ(show(lex("a\0b"sv)), "valueid:a valueid:b!20");
    EXPECT_EQ(show(lex("a\r\n\f\v\tb"sv)), "valueid:a valueid:b");
    EXPECT_EQ(show(lex("a = "sv)), "valueid:a End-Of-File!20");
    EXPECT_EQ(show(lex(""sv)), "");
    EXPECT_EQ(show(lex("\0"sv)), "End-Of-File!20");
    EXPECT_EQ(show(lex("-"sv)), "-");
    EXPECT_EQ(show(lex("&"sv)), "End-Of-File!20");
}

TEST_F(LexTest, TokensStandOnTheLineWhereTheyBegin) {
    const auto tokens = lex("a -- c\n--d\nb \"x\ny\" '0\n1'B\n\n c _\n_ e\n");
    std::string lines;
    for (const Token& token : tokens) lines += std::to_string(token.line) + " ";
    EXPECT_EQ(lines, "1 3 3 4 7 8 9 ");
    EXPECT_EQ(show(tokens[5]), "valueid:e!20");
}

TEST_F(LexTest, CommentsEndAtTwoHyphensOrTheLineEnd) {
    constexpr TokenCase cases[] = {{"-- x -- y", "valueid:y"},
                                   {"---- y", "valueid:y"},
                                   {"--- y\nz", "valueid:z"},
                                   {"-- x --- y", "- valueid:y"},
                                   {"-- x - - y\nz", "valueid:z"},
                                   {"--", ""},
                                   {"-- x -", ""}};
    for (const auto& [source, tokens] : cases) EXPECT_EQ(show(lex(source)), tokens) << source;
}

// ---- option comments ----------------------------------------------------------------------------

struct OptionCase {
    std::string_view source;
    const char* options; // kind and text of each record of the first token, then its flags
};

class OptionCommentTest : public LexTest {
  protected:
    std::string showOptions(const Token& token) {
        std::string text;
        for (int32_t nr = token.options.first; nr > 0 && nr <= token.options.last; ++nr) {
            readRec(&module, TedNr{static_cast<uint32_t>(nr)});
            text +=
                std::to_string(tedRec.tedKind) + std::string(getStri(&module, tedRec.text)) + "; ";
        }
        return text + "flags " + std::to_string(token.optFlags);
    }
    /// The options of the first token of a source, after another module has been read or not.
    std::string optionsOf(std::string_view source, bool first) {
        resetStore();
        module = {};
        changeCMP(&module);
        if (!first) putStri(&module, "x");
        return showOptions(lex(source)[0]);
    }
};

TEST_F(OptionCommentTest, FirstCommandOfAModuleIsAnOption) {
    constexpr OptionCase cases[] = {
        {"--$PREFIX=abc\nM", "3$PREFIX=abc; flags 8"},
        {"--$ALLOW-- M", "3$ALLOW; flags 8"},
        {"--$ALLOW$XREF--", "3$ALLOW; flags 9"}, // the second is a directive of no known name
        {"--$allow $Xref=No-- M", "3$ALLOW; 3$XREF=No; flags 8"},
        {"--$INFO some text --", "3$INFO SOME TEXT; flags 8"},
        {"--$BEO a b--", "2$BEO A B; flags 4"},
        {"--$SKIP--", "3$SKIP; flags 8"},
        {"--", "flags 0"}};
    for (const auto& [source, options] : cases)
        EXPECT_EQ(optionsOf(source, true), options) << source;
}

TEST_F(OptionCommentTest, LaterCommandsAreOptionsOrDirectivesByTheirForm) {
    constexpr OptionCase cases[] = {{"--$INT=2 $N=4--", "3$INT=2; 3$N=4; flags 8"},
                                    {"--$INT=2$N=4--", "3$INT=2; 3$N=4; flags 8"},
                                    {"--$INT-- =2", "flags 1"},
                                    {"-- $T1=a b $D2=c--", "1$T1=a b; 1$D2=c; flags 2"},
                                    {"--$T3=a b--", "3$T3=a; flags 8"},
                                    {"--$BEO=a  b  \nx", "2$BEO=a  b; flags 4"},
                                    {"--$info=a b-c--", "3$INFO=a b-c; flags 8"},
                                    {"--$A-B=c-d-- e", "3$A-B=c-d; flags 8"},
                                    {"--$//a b--", "3$//A B; flags 8"},
                                    {"--$//a b=c d--", "3$//A B=c d; flags 8"},
                                    {"--$/ab c--", "3$/B; flags 8"},
                                    {"--$/--x", "3$/; flags 8"},
                                    {"--$X=\x01\xFF--", "3$X=~~; flags 8"},
                                    {"--$X=a\tb--", "3$X=a; flags 8"},
                                    {"--$ENTRY--", "flags 16"},
                                    {"--$skip x--", "flags 32"},
                                    {"--$ASNH--", "flags 64"},
                                    {"--$PTR-- --$ASNHC\n", "flags 384"},
                                    {"--$FRAME$SEG", "flags 3072"},
                                    {"--$DYN $DYNARR--", "flags 12288"},
                                    {"--$ENTRY X=5--", "flags 16"},
                                    {"--$--", "flags 1"}};
    for (const auto& [source, options] : cases)
        EXPECT_EQ(optionsOf(source, false), options) << source;
}

TEST_F(OptionCommentTest, TooLongTextIsCutAndRejected) {
    const std::string most = "$X=" + std::string(1021, 'a');
    EXPECT_EQ(optionsOf("--" + most + "--", false), "3" + most + "; flags 8");
    EXPECT_EQ(optionsOf("--" + most + "b", false), "0" + most + "; flags 1");
}

} // namespace
} // namespace orvo
