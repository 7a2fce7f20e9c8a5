// The token tokenArena. Records lie in chunks that are never moved or given back, so that a
// reference to one stays valid; records handed back are chained through Token::next and reused
// first.

#include "lex/orvotok.h"

#include <new>

#include "diag/orvoerr_fatal.h"

namespace orvo {

TokenArena tokenArena;

namespace {

/// Tokens are numbered in 32 bits, and come by the chunk.
constexpr uint32_t maxTokens = 0xFFFFFFFF - tokenChunk;

void addChunk() {
    if (tokenArena.used >= maxTokens) fatalError(Fatal::NoSpace);
    void* chunk = tokenArena.pool.take(tokenChunk * sizeof(Token));
    tokenArena.chunks.push_back(static_cast<Token*>(chunk));
}

} // namespace

TokNr newToken() {
    if (tokenArena.free) {
        const TokNr nr = tokenArena.free;
        Token& token = tokenAt(nr);
        tokenArena.free = TokNr{token.next};
        token = {};
        return nr;
    }
    if (tokenArena.used % tokenChunk == 0) addChunk();
    const TokNr nr{++tokenArena.used};
    new (&tokenAt(nr)) Token;
    return nr;
}

void freeToken(TokNr nr) {
    tokenAt(nr).next = tokenArena.free.nr;
    tokenArena.free = nr;
}

void resetTokens() {
    tokenArena = {};
}

} // namespace orvo
