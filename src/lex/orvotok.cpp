// The token tokenArena. Records lie in chunks that are never moved or given back, so that a
// reference to one stays valid; records handed back are chained through Token::next and reused
// first.

#include "lex/orvotok.h"

#include <new>

#include "diag/orvoerr_fatal.h"

namespace orvo {

TokenArena tokenArena;

namespace {

constexpr uint32_t maxTokens = 0xFFFFFFFF - tokenChunk;

void addChunk() {
    // running out of memory must end in a diagnostic, not in an exception that nobody catches
    Token* chunk = tokenArena.used < maxTokens ? new (std::nothrow) Token[tokenChunk] : nullptr;
    if (chunk == nullptr) fatalError(Fatal::NoSpace);
    tokenArena.chunks.emplace_back(chunk);
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
    return TokNr{++tokenArena.used};
}

void freeToken(TokNr nr) {
    tokenAt(nr).next = tokenArena.free.nr;
    tokenArena.free = nr;
}

void resetTokens() {
    tokenArena = {};
}

} // namespace orvo
