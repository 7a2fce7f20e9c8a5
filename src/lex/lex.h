#pragma once

// The lexer: turns the source of the current module into tokens on demand.

#include <cstdint>
#include <string>
#include <string_view>

#include "diag/orvomsg.h"
#include "lex/orvotok.h"

namespace orvo {

/// Tokens lexed but not yet consumed, the current one first, linked through Token::next.
struct TokenList {
    uint32_t count = 0;
    TokNr first, last;
};

/// One module's text at a time. A NUL stands at `end`, so that every scan stops there; a NUL before
/// `end` is a byte like others that are not printable.
struct LexState {
    bool fromMemory = false;    // inputStri is the text, not the source file
    std::string_view inputStri; // the text of the built-in module
    std::string text;           // the contents of the source file
    const char* begin = nullptr;
    const char* Inp = nullptr; // the current character
    const char* end = nullptr;
    uint32_t LineNumb = 1;
    std::string strBuf;    // text of the current item
    Token* Outp = nullptr; // the token being filled
};
extern LexState lexState;

/// Lexes from `text` (NUL-terminated, and to be kept by the caller) instead of the source file;
/// with a null data() from the source file again.
void setInput(std::string_view text);
/// Lexes one token, appends it to the list and returns its code. An empty list starts the module:
/// its source (srcFile of the current module) is read as a whole; fatal 6 when that fails.
int32_t NextToken(TokenList& list);
/// Goes back to the text behind a reserved word: what was lexed from there on is dropped by the
/// caller.
void resumeBehind(const Token& token);
/// Releases the source text; the tokens stay.
void endInput();

/// Code of a reserved word or, in a source file, of a type name; -1 when the name is neither.
[[nodiscard]] int32_t searchKeywords(std::string_view name);

// ---- for the units of the lexer -----------------------------------------------------------------

enum CharClass : uint8_t {
    CHAR_UPPER = 1,
    CHAR_LOWER = 2,
    CHAR_DIGIT = 4,
    CHAR_SPACE = 8,     // white space, line ends included
    CHAR_PRINT = 16,    // printable, the blank included
    CHAR_COMMENT = 32,  // a comment is not skipped over it blindly
    CHAR_LINE_END = 64, // line feed, vertical tab, form feed, carriage return
    CHAR_LETTER = CHAR_UPPER | CHAR_LOWER,
    CHAR_NAME = CHAR_LETTER | CHAR_DIGIT,
};
/// Classes of the 256 bytes in the POSIX locale; bytes above 126 have none.
struct CharTable {
    uint8_t classes[256];
};
extern const CharTable charTable;
inline bool isChar(char c, unsigned classes) {
    return (charTable.classes[static_cast<unsigned char>(c)] & classes) != 0;
}
/// A byte that no source holds legitimately; it is read as `~`.
inline bool isBadChar(char c) {
    return !isChar(c, CHAR_PRINT | CHAR_SPACE);
}
/// The scan has reached the end of the text.
inline bool atEnd(const char* at) {
    return *at == '\0' && at == lexState.end;
}

/// White space of sources that are read as UTF-8.
inline constexpr std::string_view noBreakSpace = "\xC2\xA0";

/// Notes a lexical error in the token under construction. The first one stays, but
/// LexicalErrorBefore, LeadingZeroesIn and TooManyDigits replace it.
void noteLexError(Msg error);
/// String number of a text; 0 after a syntax error, when the module will have no tree.
[[nodiscard]] int32_t internText(std::string_view text);

} // namespace orvo
