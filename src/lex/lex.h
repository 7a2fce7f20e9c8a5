#pragma once

// The lexer: turns the source of the current module into tokens on demand.

#include <cstdint>
#include <string>
#include <string_view>

#include "lex/orvotok.h"

namespace orvo {

inline constexpr uint32_t maxIdentifierLength = 128;
inline constexpr uint32_t maxStringLength = 32000;
inline constexpr uint32_t maxNumberDigits = 19;
inline constexpr uint32_t maxCommandLength = 1024;

/// Tokens lexed but not yet consumed, the current one first, linked through Token::next.
struct TokenList {
    uint32_t count = 0;
    TokNr first, last;
};

/// What a byte of the source is; every loop over the source asks the table of lex.cpp.
enum CharClass : uint8_t {
    CHAR_UPPER = 1,
    CHAR_LOWER = 2,
    CHAR_DIGIT = 4,
    CHAR_SPACE = 8,  // white space, line ends included
    CHAR_PRINT = 16, // printable, the blank included
    CHAR_LETTER = CHAR_UPPER | CHAR_LOWER,
    CHAR_NAME = CHAR_LETTER | CHAR_DIGIT,
};
struct CharTable {
    uint8_t classes[256];
};
extern const CharTable charTable;
inline bool isChar(char c, uint8_t classes) {
    return (charTable.classes[static_cast<unsigned char>(c)] & classes) != 0;
}

/// One module's text at a time. The text ends with a NUL behind `end`, so that every scan stops
/// there; a NUL before `end` is a byte like other bytes that are not printable.
struct LexState {
    bool fromMemory = false;    // inputStri is the text, not the source file
    std::string_view inputStri; // the text of the built-in module
    std::string text;           // the contents of the source file
    const char* Inp = nullptr;  // the current character
    const char* end = nullptr;
    uint32_t LineNumb = 1;
    std::string strBuf;         // text of the current item
    Token* Outp = nullptr;      // the token being filled
    bool commentClosed = false; // a `$` command met the `--` that ends its comment
};
extern LexState lexState;

/// Lexes from `text` (which must stay) instead of the source file; with a null data() from the
/// source file again.
void setInput(std::string_view text);
/// Lexes one token, appends it to the list and returns its code. An empty list starts the module:
/// its source (srcFile of the current module) is read as a whole; fatal 6 when that fails.
int32_t NextToken(TokenList& list);
/// Releases the source text; the tokens stay.
void endInput();

/// Code of a reserved word or, in a source file, of a type name; -1 when the name is neither.
[[nodiscard]] int32_t searchKeywords(std::string_view name);

} // namespace orvo
