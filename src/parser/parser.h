#pragma once

// What the grammar rules share: the current token and the tokens ahead of it, syntax errors and
// recovery, the decisions that need look-ahead. Deferred ranges are in parser/parser_defer.h.

#include <cstdint>
#include <initializer_list>

#include "lex/lex.h"
#include "lex/orvotok.h"
#include "tree/orvomod.h"
#include "util/guard.h"

namespace orvo {

/// The syntax error of this number stops the parse: nobody mends so many at once, and noise makes
/// one of each token.
inline constexpr int16_t maxSyntaxErrors = 500;
/// Tokens that are kept lexed, the current one included.
inline constexpr uint32_t lookAheadTokens = 7;

/// What MGError can say beside "is expected after:".
inline constexpr int32_t notAllowed = -1;
inline constexpr int32_t onlyOnce = -2;

/// One module at a time; parse() resets it.
struct ParserState {
    Token Inp; // copy of the first token of inputList
    TokenList inputList;
    uint16_t ctxtArr[5] = {1, 1, 1, 1, 1}; // codes of the tokens consumed last, a ring
    uint16_t ctxtInd = 0;                  // the oldest of them
    uint32_t prevL = 0;                    // line of the token consumed last
    int16_t NbErrors = 0;                  // syntax errors of this module, at most 500
    bool MGStop = false;                   // parsing has stopped, the current token is End-Of-File
    bool Parsing = true;                   // an error may be reported: one per token
    uint64_t consumed = 0;                 // tokens consumed so far: tells whether a rule got on
    int16_t openInst = 0;                  // > 0: in the own text of a type assignment
    DNode deferred = noRange;              // the range being recorded
    uint32_t inDeferred = 0;               // > 0: MGR259DeferredType reads a type
    bool passingOver = false;              // lexical errors are none: the text is not read
    uint32_t depth = 0;                    // nesting of the notation, see NestingLevel
    SymTab identList;                      // identifiers being collected
    STabNr formalList;                     // symbol of the assignment being parsed
    SymTab symbolList;                     // symbols of a list or of formal parameters, pending
    uint8_t groupSorts = 0; // extension addition groups so far: 1 with version number, 2 without
};
extern ParserState parserState;

/// A set of token codes.
class TokenSet {
  public:
    constexpr TokenSet(std::initializer_list<int32_t> codes) {
        for (const int32_t code : codes) words_[code / 32] |= 1U << (code % 32);
    }
    [[nodiscard]] constexpr bool has(int32_t code) const {
        return code >= 0 && code < tokenCount && (words_[code / 32] >> (code % 32) & 1U) != 0;
    }

  private:
    uint32_t words_[(tokenCount + 31) / 32] = {};
};

/// Pass 1 of the current module; its source file must be open.
void parse(int argc, char** argv);

// ---- tokens -------------------------------------------------------------------------------------

/// Consumes the current token; the next one becomes current, and its lexical error is recorded.
/// Options that no rule has taken give a warning. Nothing happens after StopParsing.
void ReadIn();
/// The n-th token after the current one, 0 being the current one.
const Token& lookAhead(uint32_t n);
/// The text of a reference; empty for another token, and after a syntax error.
std::string_view nameOf(const Token& token);
/// Puts a token in front of the current one, with its line, and makes it current.
void insertToken(int32_t code, int32_t value);
/// Settles the current token where its role depends on what follows: a valueid before `<` becomes a
/// componentid, a typeid before `.` and a reference a moduleid whose value is its reference number
/// (the reference is entered in the symbol table).
void convertToken();
/// Lexes what follows the current token, a reserved word, anew: the notation changes behind it.
void relexBehind();
/// Takes `[[` as two `[` and `]]` as two `]` (WITH SYNTAX, where optional groups are nested).
void splitVersionBrackets();
[[nodiscard]] bool MGIsInSet(const TokenSet& set);
/// The module has no syntax error so far: records, symbols and deferred ranges are made.
inline bool buildsTree() {
    return parserState.NbErrors == 0;
}

// ---- errors and recovery ------------------------------------------------------------------------

/// Reports a syntax error at the current token, one per token: the token `expected` is missing, or
/// the current one is notAllowed or can be used onlyOnce.
void MGError(int32_t expected);
/// Reports the current token as not allowed and consumes tokens up to one of the set, SEQUENCE, SET
/// or End-Of-File.
void MGSkip(const TokenSet& followSet);
/// Consumes a token that must be there; another one is reported and stays. True when it was there.
bool expectToken(int32_t code);
/// Ends the parse of the module: the current token becomes End-Of-File for good.
void StopParsing();

/// One level of nested notation (a type, braces, parentheses, a group), counted while it lives.
/// Every rule that can contain itself holds one and returns at once when it is tooDeep(), which
/// reports a syntax error at the current token and stops the parse.
class NestingLevel {
  public:
    NestingLevel() : depth_(parserState.depth, maxNesting) {}
    [[nodiscard]] bool tooDeep() const;

  private:
    Depth depth_;
};

// ---- decisions by look-ahead --------------------------------------------------------------------

/// Tells whether the current token begins a type inside deferred notation. `inBraces`: a bare
/// typeid may be something else there and counts only before `.`, `(` or `:`. Settles the token's
/// role (convertToken) when it is a reference.
[[nodiscard]] bool typeFollows(bool inBraces);
/// Tells whether the current `{` begins a list of named numbers or named bits.
[[nodiscard]] bool namedIdentListFollows();

} // namespace orvo
