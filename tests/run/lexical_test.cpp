#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "support/cases.h"

namespace orvo::test {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(LexicalErrors, AreListedAtTheirTokenAndDoNotStopTheParse) {
    expectMarked(R"(
T ::= INTEGER _
U ::= BOOLEAN --! L Lexical error before: typeid
v INTEGER ::= 007 --! L Leading zeroes in: number
w INTEGER ::= 9223372036854775807 --! L More than 19 digits in: number
s IA5String ::= "a~b --! L Invalid character in: cstring
c"
h OCTET STRING ::= '1f'H --! L Invalid character in: hstring
b BIT STRING ::= '01' --! L Invalid end character in: hstring
P {
_ INTEGER : x} ::= OCTET STRING (SIZE (x)) --! L Lexical error before: INTEGER
Q ::= OCTET STRING (SIZE
(#1)) --! L Lexical error before: number
X ::= NULL =
Y ::= NULL --! L Lexical error before: typeid
)");
}

TEST(LexicalErrors, NamesAreCutWithAWarning) {
    const std::string name(128, 'a');
    expectMarked(name + " INTEGER ::= 1\nB" + name +
                 " ::= BOOLEAN --! W More than 128 characters in: typeid");
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

constexpr std::string_view spaces[] = {" ",       "\n",   "\r\n",   "\r",        "\f",
                                       "\v",      "\n\r", "\r\r\n", " --a\rb\n", " --\0\xFF --"sv,
                                       " --d\r\n"};
constexpr std::string_view strays[] = {"#", "\0"sv, "\x80", "_\r", "=\n"}; // none begins a token
constexpr std::string_view texts[] = {"a\nb", "\r\n\r\n", "\n\n", "c", ""};
constexpr std::string_view digits[] = {"0\n1", "\r\n", "\r", "2", ""};

/// A module of random white space, comments, strings and errors, with the diagnostics of each line.
/// Lines end with a line feed, whatever else stands there.
struct RandomModule {
    explicit RandomModule(uint32_t seed) : random(seed) {}
    std::mt19937 random;
    std::string source;
    size_t line = 1;
    std::map<size_t, std::string> lexical, semantic; // the second are recorded later

    bool oneIn(size_t count) { return random() % count == 0; }
    template <typename List> std::string pick(const List& list) {
        return std::string(list[random() % std::size(list)]);
    }
    void write(const std::string& text) {
        source += text;
        line += static_cast<size_t>(std::ranges::count(text, '\n'));
    }
    void writeSpace() {
        for (bool more = true; more; more = oneIn(2)) write(pick(spaces));
        if (oneIn(40)) write(std::string(20000 + random() % 60000, ' '));
    }
    void error(std::map<size_t, std::string>& errors, const char* stars, const std::string& text) {
        const std::string number = std::to_string(line);
        errors[line] += stars + std::string(" ERROR on line ") +
                        std::string(3 - std::min<size_t>(3, number.size()), ' ') + number + " : " +
                        text + '\n';
    }
    void writeToken(const std::string& text, const std::string& name) {
        if (oneIn(8)) {
            write(pick(strays));
            error(lexical, " ***", "Lexical error before: " + name);
        }
        write(text);
        writeSpace();
    }
    template <typename List>
    void writeString(const List& pieces, const char* bad, char quote, const std::string& name) {
        if (!oneIn(3)) bad = "";
        if (*bad != '\0') error(lexical, " ***", "Invalid character in: " + name);
        write(quote + pick(pieces) + bad + pick(pieces) + quote);
    }
    void writeAssignment(const std::string& name) {
        const size_t kind = random() % 3;
        if (kind == 0) error(semantic, "  **", "INTEGER value syntax");
        write(name);
        writeSpace();
        const std::string types[] = {"INTEGER", "IA5String", "Octets"};
        writeToken(types[kind], kind == 2 ? "typeid" : types[kind]);
        writeToken("::=", "::=");
        if (kind == 0) writeToken("TRUE", "TRUE");
        if (kind == 1) writeString(texts, "\rx", '"', "cstring");
        if (kind == 2) writeString(digits, "g", '\'', "hstring");
        if (kind == 2) write("H");
        writeSpace();
    }
    void writeModule() {
        write("M DEFINITIONS ::= BEGIN Octets ::= OCTET STRING");
        writeSpace();
        for (int nr = 0; nr < 20; ++nr) writeAssignment("v" + std::to_string(nr));
        writeToken("END", "END");
        if (oneIn(2)) return;
        write(pick(strays));
        writeSpace();
        error(lexical, " ***", "Lexical error before: End-Of-File");
    }
    /// The listing behind its head.
    std::string listed() {
        std::string text;
        size_t nr = 1;
        for (size_t at = 0; at < source.size(); ++nr) {
            const size_t end = std::min(source.find('\n', at), source.size() - 1) + 1;
            text += std::string(5 - std::to_string(nr).size(), ' ') + std::to_string(nr) + ":  " +
                    source.substr(at, end - at) + (source[end - 1] == '\n' ? "" : "\n") +
                    lexical[nr] + semantic[nr];
            at = end;
        }
        return text + lexical[nr]; // at the end of the input
    }
};

TEST(LexicalErrors, StandAtTheirLineWhateverEndsTheLines) {
    for (uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomModule module(seed);
        module.writeModule();
        const std::string listing = compile({{"m.asn", module.source}}).listing("m");
        const std::string expected = module.listed();
        EXPECT_EQ(listing.substr(listing.find("    1:  "), expected.size()), expected);
    }
}

} // namespace
} // namespace orvo::test
