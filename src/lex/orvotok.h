#pragma once

// Token codes and token records. Token records live in an arena for the whole run: deferred texts
// and the replay cursor hold their numbers.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "lex/i64.h"
#include "tree/orvodef.h"
#include "tree/orvoutil_mem.h"

namespace orvo {

enum TokenCode : int32_t {
#define TOKEN(code, name, spelling) TOK_##name = code,
#include "lex/tokens.def"
    TOK_OUT_OF_TABLE = 201, // what a code outside the table is replaced by
};
/// Spelling of each token as messages show it; empty = none.
inline constexpr std::string_view gMGTabInp[] = {
#define TOKEN(code, name, spelling) spelling,
#include "lex/tokens.def"
};
inline constexpr int tokenCount = 165;
static_assert(std::size(gMGTabInp) == tokenCount);
inline constexpr int firstReservedWord = TOK_ABSENT, lastReservedWord = TOK_WITH;
inline constexpr int firstTypeName = TOK_ABSTRACT_SYNTAX, lastTypeName = TOK_VISIBLESTRING;
inline constexpr int firstLaterWord = TOK_DATE, lastLaterWord = TOK_UTF8STRING;
static_assert(firstReservedWord == 11 && lastReservedWord == 70 && firstTypeName == 131 &&
              lastTypeName == 148);
static_assert(std::is_sorted(gMGTabInp + firstReservedWord, gMGTabInp + lastReservedWord + 1));
static_assert(std::is_sorted(gMGTabInp + firstTypeName, gMGTabInp + lastTypeName + 1));
static_assert(std::is_sorted(gMGTabInp + firstLaterWord, gMGTabInp + lastLaterWord + 1));
static_assert(tokenCount <= TOK_OUT_OF_TABLE); // 500 + code is a message below 700

/// What a token may be. Names and literals keep that much, numbers beyond it are the highest there
/// is; either is an error. Back ends make names of names, to which they add; a text with its
/// terminator has a length of 16 bits in the tree, which signed ones hold too; 19 digits are those
/// of 64 bits.
inline constexpr size_t maxIdentifierLength = 128;
inline constexpr size_t maxStringLength = 32000;
inline constexpr size_t maxNumberDigits = 19;
/// Notation nested deeper than this stops the parse: ten times what protocols nest, and little
/// enough for the smallest stack that the parser may have to do with (util/stack).
inline constexpr uint32_t maxNesting = 500;

/// A word that is reserved in the notation of today only.
constexpr bool isLaterWord(int32_t code) {
    return code >= firstLaterWord && code <= lastLaterWord;
}
/// Sorts of tokens that are words by themselves.
constexpr bool isReservedWord(int32_t code) {
    return code >= firstReservedWord && code <= lastReservedWord;
}
constexpr bool isOlderTypeName(int32_t code) {
    return code >= firstTypeName && code <= lastTypeName;
}

/// Spelling of a code; empty for codes outside the table.
constexpr std::string_view tokenName(int32_t code) {
    return code >= 0 && code < tokenCount ? gMGTabInp[code] : std::string_view();
}

/// A token that is a whole value by itself.
constexpr bool isOneTokenValue(int32_t code) {
    switch (code) {
    case TOK_TRUE:
    case TOK_FALSE:
    case TOK_NULL:
    case TOK_PLUS_INFINITY:
    case TOK_MINUS_INFINITY:
    case TOK_NUMBER:
    case TOK_REALNUMBER:
    case TOK_NOT_A_NUMBER:
    case TOK_BSTRING:
    case TOK_HSTRING:
    case TOK_CSTRING: return true;
    default: return false;
    }
}

/// First and last option record of a list; its records have consecutive numbers. A range that was
/// handed over is reset to first -1, last 0.
struct OptRange {
    int32_t first = -1;
    int32_t last = 0;
};

/// Number of a token record in the arena, from 1; 0 = none.
struct TokNr {
    uint32_t nr = 0;
    explicit constexpr operator bool() const { return nr != 0; }
    friend constexpr bool operator==(TokNr, TokNr) = default;
};

struct Token {
    int32_t code = 0;     // TOK_*
    int32_t lexError = 0; // 0 or the number of the lexical error found in the token
    I64 value;            // a number; names and strings: the string number (see stri)
    int32_t text = 0;     // of a real number, and a number beyond 64 bits: its string number
    uint32_t line = 0;
    uint32_t offset = 0;   // of its first byte in the text of the module
    uint32_t optFlags = 0; // bit k: a `$` command of kind k in the comments before the token
    OptRange options;      // the option records made from those comments
    uint32_t next = 0;     // TokNr of the next token of the list or range

    /// String number of names and strings, negated for valueid and valuefieldid; a node number of a
    /// marker; a reference number of a moduleid.
    [[nodiscard]] constexpr int32_t stri() const { return static_cast<int32_t>(value.low); }
    constexpr void setStri(int32_t nr) { value = {nr < 0 ? -1 : 0, static_cast<uint32_t>(nr)}; }
};

/// A new token record, all zero. The arena keeps records for the whole run; fatal 5 when memory
/// runs out.
TokNr newToken();
/// Hands a record back for reuse by newToken; only for records that no list or range holds any
/// more.
void freeToken(TokNr nr);
/// The record of a number (asserted to be valid). The reference stays valid for the whole run.
inline Token& tokenAt(TokNr nr);
/// Forgets all records (tests, fuzzing).
void resetTokens();

// ---- the arena: chunks that are never moved or given back ---------------------------------------

inline constexpr uint32_t tokenChunkBits = 12;
inline constexpr uint32_t tokenChunk = 1U << tokenChunkBits;
struct TokenArena {
    Pool pool;
    std::vector<Token*> chunks;
    uint32_t used = 0; // records handed out so far, reused ones counted once
    TokNr free;        // chain of records for reuse
};
extern TokenArena tokenArena;

inline Token& tokenAt(TokNr nr) {
    assert(nr.nr >= 1 && nr.nr <= tokenArena.used);
    const uint32_t index = nr.nr - 1;
    return tokenArena.chunks[index >> tokenChunkBits][index & (tokenChunk - 1)];
}

} // namespace orvo
