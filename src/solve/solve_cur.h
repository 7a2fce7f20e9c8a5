#pragma once

// The replay cursor over deferred texts, the delimiting of texts within texts, and trial parses
// that leave nothing behind when they fail.

#include <cstdint>
#include <string>

#include "diag/orvoerr.h"
#include "lex/orvotok.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "tree/orvorec.h"
#include "util/guard.h"

namespace orvo {

/// The text being replayed: `first` is the current token, 0 when the cursor has run past the end.
extern DNode inp;

/// The text of a record.
DNode cursorOf(ModuleRec* module, DNodeNr text);
/// Replays a text until the scope ends; then the cursor is where it was.
class ReplayCursor {
  public:
    ReplayCursor(ModuleRec* module, DNodeNr text) : saved_(inp, cursorOf(module, text)) {}

  private:
    Restore<DNode> saved_;
};

/// The current token; past the end a token TOK_EOF at the line of the last one.
const Token& curToken();
/// Code of the current token, TOK_EOF past the end.
int32_t curCode();
/// Code of the token behind the current one, TOK_EOF when the current one is the last.
int32_t nextCode();
/// Code of the token `count` places behind the current one.
int32_t codeAhead(int count);
/// The current token is the last one of the text, or the cursor is past it.
[[nodiscard]] bool atLastToken();
/// Moves to the next token; false, and past the end, when the current one was the last.
bool advance();
/// Twice: from what stands in front of a separator to what follows it.
bool advanceTwice();
/// The text of a name token, else how messages call the token.
std::string curTokenText();

/// From `{` to its matching `}`, adding the tokens passed to `count`. False, and on the last
/// token, when the text ends before.
[[nodiscard]] bool deferBraces(uint32_t& count);
/// Delimits the value notation that begins at the current token: the new record of its text gets
/// the next number of the current module, and the cursor stays on its last token. False when no
/// value begins here; the cause is set when what is missing is known.
[[nodiscard]] bool deferValue(Cause& cause);

/// The same for a list entry that may be of any notation: it ends before the comma or closing brace
/// that belongs to the list.
[[nodiscard]] bool deferEntry();

// A name of a module that has no definitions to look at (REF_UNREAD) may stand for anything. What
// cannot be told without it is no finding: what depends on it becomes such a name too, silently.

struct UnreadState {
    bool met = false; // by the notation in hand: a text, a chain of names
};
extern UnreadState unreadState;

/// The notation that is looked at until the scope ends has met nothing yet.
class OwnNotation {
  public:
    OwnNotation() : saved_(unreadState.met, false) {}

  private:
    Restore<bool> saved_;
};
/// The current type or value, the end of a chain of references, is such a name; noted as met.
bool meetsUnreadType();
bool meetsUnreadValue();
/// What the refMod of a reference becomes that leads nowhere.
int32_t refNowhere();

/// A trial parse. Unless keep() was called, the end of the scope takes back what was created since:
/// every module gets the record counters, the DEFAULT value chain, the module references and the
/// strings that it had. Taking a snapshot costs the same however many modules there are. Snapshots
/// nest.
///
/// `owner` is the record that the new records hang from. When an enclosing trial began after the
/// owner was created, what was made for the owner survives the enclosing trial's failure: an older
/// record must not refer to numbers that are handed out again.
class SnapShot {
  public:
    template <RecKind K> explicit SnapShot(RecRef<K> owner)
        : SnapShot(owner.module, K, owner.nr.nr) {}
    SnapShot(ModuleRec* module, RecKind kind, uint32_t nr);
    SnapShot(const SnapShot&) = delete;
    SnapShot& operator=(const SnapShot&) = delete;
    ~SnapShot();
    /// The trial has succeeded.
    void keep();
    /// Takes everything back now.
    void restore();

  private:
    ModuleRec* module_;
    RecKind kind_;
    uint32_t nr_;
    bool done_ = false;
};

} // namespace orvo
