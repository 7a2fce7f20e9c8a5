// The token arena. Records lie in chunks that are never moved or given back, so that a reference to
// one stays valid; records handed back are chained through Token::next and reused first.

#include "lex/orvotok.h"

#include <cassert>
#include <memory>
#include <new>
#include <vector>

#include "diag/orvoerr_fatal.h"

namespace orvo {

namespace {

constexpr uint32_t chunkBits = 12;
constexpr uint32_t chunkSize = 1U << chunkBits;
constexpr uint32_t maxTokens = 0xFFFFFFFF - chunkSize;

struct TokenArena {
    std::vector<std::unique_ptr<Token[]>> chunks;
    uint32_t used = 0; // records handed out so far, reused ones counted once
    TokNr free;        // chain of records for reuse
};
TokenArena arena;

void addChunk() {
    // running out of memory must end in a diagnostic, not in an exception that nobody catches
    Token* chunk = arena.used < maxTokens ? new (std::nothrow) Token[chunkSize] : nullptr;
    if (chunk == nullptr) fatalError(Fatal::NoSpace);
    arena.chunks.emplace_back(chunk);
}

} // namespace

TokNr newToken() {
    if (arena.free) {
        const TokNr nr = arena.free;
        Token& token = tokenAt(nr);
        arena.free = TokNr{token.next};
        token = {};
        return nr;
    }
    if (arena.used % chunkSize == 0) addChunk();
    return TokNr{++arena.used};
}

void freeToken(TokNr nr) {
    tokenAt(nr).next = arena.free.nr;
    arena.free = nr;
}

Token& tokenAt(TokNr nr) {
    assert(nr.nr >= 1 && nr.nr <= arena.used);
    const uint32_t index = nr.nr - 1;
    return arena.chunks[index >> chunkBits][index & (chunkSize - 1)];
}

void resetTokens() {
    arena = {};
}

} // namespace orvo
