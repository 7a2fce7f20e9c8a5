// The replay cursor and trial parses.
//
// Invariants of the cursor: `first` and `last` are tokens of one range, or `first` is 0 when the
// cursor has run past the end.
//
// Invariants of trials: they nest, numbered from 1 for the outermost. A module is noted in a trial
// before it is changed for the first time since the trial began; its notes stand in order of
// trials. A pin says up to where the counters of a module have to stay although an enclosing trial
// may fail: it binds the trials from its number on. The pins of a module stand in order of trials;
// a later pin has higher counters than those before it. Without a trial there are neither notes nor
// pins.

#include "solve/solve_cur.h"

#include <algorithm>
#include <cassert>
#include <vector>

#include "solve/solve_ref.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvoutil_find.h"

namespace orvo {

DNode inp;

namespace {

struct CursorState {
    Token endToken; // what stands behind the last token
};
CursorState cursorState;

void advanceTwo(uint32_t& count) {
    count += 2;
    if (advance()) advance();
}

/// The end of a value that begins with the name at the cursor: actual parameters, then field names.
bool deferReference(uint32_t& count, Cause& cause) {
    if (nextCode() == TOK_LBRACE) {
        ++count;
        advance();
        if (!deferBraces(count)) return false;
    }
    while (nextCode() == TOK_DOT) {
        advanceTwo(count);
        if (curCode() != TOK_TYPEFIELDID && curCode() != TOK_VALUEFIELDID) {
            cause.set(Msg::FieldNameExpected);
            return false;
        }
    }
    return true;
}

/// From the first token of a value to its last.
bool deferNotation(uint32_t& count, Cause& cause) {
    if (isOneTokenValue(curCode())) return true;
    switch (curCode()) {
    case TOK_LBRACE: return deferBraces(count);
    case TOK_MINUS:
        ++count;
        if (advance() && (curCode() == TOK_NUMBER || curCode() == TOK_REALNUMBER)) return true;
        cause.set(tokenExpected(TOK_NUMBER));
        return false;
    case TOK_MODULEID:
        advanceTwo(count);
        return curCode() != TOK_EOF && deferReference(count, cause);
    case TOK_VALUEID: return deferReference(count, cause);
    default: return false;
    }
}

} // namespace

DNode cursorOf(ModuleRec* module, DNodeNr text) {
    readRec(module, text);
    return dNode;
}

const Token& curToken() {
    if (inp.first != 0) return tokenAt(TokNr{inp.first});
    cursorState.endToken = {};
    if (inp.last != 0) cursorState.endToken.line = tokenAt(TokNr{inp.last}).line;
    return cursorState.endToken;
}

int32_t curCode() {
    return inp.first != 0 ? tokenAt(TokNr{inp.first}).code : TOK_EOF;
}

int32_t nextCode() {
    return codeAhead(1);
}

int32_t codeAhead(int count) {
    uint32_t token = inp.first;
    for (; count > 0 && token != 0; --count)
        token = token == inp.last ? 0 : tokenAt(TokNr{token}).next;
    return token != 0 ? tokenAt(TokNr{token}).code : TOK_EOF;
}

bool atLastToken() {
    return inp.first == 0 || inp.first == inp.last;
}

bool advance() {
    inp.first = atLastToken() ? 0 : tokenAt(TokNr{inp.first}).next;
    return inp.first != 0;
}

bool advanceTwice() {
    if (!advance()) return false;
    return advance();
}

std::string curTokenText() {
    const Token& token = curToken();
    switch (token.code) {
    case TOK_VALUEID:
    case TOK_TYPEID:
    case TOK_TYPEFIELDID:
    case TOK_VALUEFIELDID:
    case TOK_COMPONENTID: return std::string(getStri(cMP, token.stri()));
    default: return std::string(tokenName(token.code));
    }
}

bool deferBraces(uint32_t& count) {
    for (uint32_t depth = 1; depth != 0;) {
        if (atLastToken()) return false;
        ++count;
        advance();
        if (curCode() == TOK_LBRACE) ++depth;
        if (curCode() == TOK_RBRACE) --depth;
    }
    return true;
}

namespace {

/// The record of a text of `count` tokens behind its first one that ends at the cursor.
void addText(DNode range, uint32_t count) {
    range.count = static_cast<uint16_t>(std::min<uint32_t>(count + 1, maxDeferredTokens));
    range.last = inp.first;
    newRec<KIND_DNODE>();
    dNode = range;
    flushRecs(KIND_DNODE);
}

} // namespace

bool deferEntry() {
    const DNode range = inp;
    uint32_t count = 0;
    for (;; ++count) {
        if (curCode() == TOK_LBRACE && !deferBraces(count)) return false;
        const int32_t behind = nextCode();
        if (behind == TOK_COMMA || behind == TOK_RBRACE) break;
        if (!advance()) return false;
    }
    addText(range, count);
    return true;
}

bool deferValue(Cause& cause) {
    const DNode range = inp;
    uint32_t count = 0;
    for (;;) {
        if ((curCode() == TOK_VALUEID || curCode() == TOK_MARKER) && nextCode() == TOK_COLON)
            advanceTwo(count);
        else if (curCode() == TOK_CONTAINING && newNotation() && advance())
            ++count;
        else
            break;
    }
    if (!deferNotation(count, cause)) return false;
    addText(range, count);
    return true;
}

// ---- names without definitions ------------------------------------------------------------------

UnreadState unreadState;

bool meetsUnreadType() {
    const bool unread = tNode.typeCode == TYP_SYNONYM && tNode.refMod == REF_UNREAD;
    unreadState.met |= unread;
    return unread;
}

bool meetsUnreadValue() {
    const bool unread = vNode.valCode == TYP_SYNONYM && vNode.refMod == REF_UNREAD;
    unreadState.met |= unread;
    return unread;
}

int32_t refNowhere() {
    return unreadState.met ? REF_UNREAD : REF_UNRESOLVED;
}

// ---- trials -------------------------------------------------------------------------------------

namespace {

/// What a snapshot holds of a module.
struct Counters {
    uint32_t nextRecNr[kindCount];
    VNodeNr firstDefVal, lastDefVal;
};
/// The counters of a module when it was noted or pinned. `time` orders notes and pins.
struct Mark {
    uint32_t trial;
    uint64_t time;
    Counters counters;
};
struct ModuleMarks {
    std::vector<Mark> notes, pins;
};
struct SnapState {
    uint64_t time = 0;
    std::vector<ModuleRec*> touched;  // those of the outermost trial first
    std::vector<size_t> starts;       // by trial: its first entry in `touched`
    std::vector<ModuleMarks> modules; // by handle
    std::vector<ModuleRec*> grown;    // in the trial that ended last
};
SnapState snapState;

ModuleMarks& marksOf(const ModuleRec* module) {
    if (module->handle >= snapState.modules.size())
        snapState.modules.resize(module->handle + size_t{1});
    return snapState.modules[module->handle];
}

uint32_t currentTrial() {
    return static_cast<uint32_t>(trialState.current);
}

Counters countersOf(const ModuleRec* module) {
    Counters counters;
    std::ranges::copy(module->nextRecNr, counters.nextRecNr);
    counters.firstDefVal = module->firstDefVal;
    counters.lastDefVal = module->lastDefVal;
    return counters;
}

bool hasGrown(const ModuleRec* module, const Counters& since) {
    return !std::ranges::equal(module->nextRecNr, since.nextRecNr);
}

void noteModule(ModuleRec* module) {
    module->touchedIn = trialState.current;
    snapState.touched.push_back(module);
    marksOf(module).notes.push_back({currentTrial(), ++snapState.time, countersOf(module)});
}

/// The first trial that began when the record was there already.
uint32_t firstTrialWith(ModuleRec* module, RecKind kind, uint32_t nr) {
    const auto& notes = marksOf(module).notes;
    const auto older = std::ranges::partition_point(
        notes, [&](const Mark& note) { return nr >= note.counters.nextRecNr[kind]; });
    return older == notes.begin() ? 1 : std::prev(older)->trial + 1;
}

void pin(ModuleRec* module, uint32_t trial) {
    auto& pins = marksOf(module).pins;
    while (!pins.empty() && pins.back().trial >= trial) pins.pop_back();
    pins.push_back({trial, ++snapState.time, countersOf(module)});
}

void cutDefaultChain(ModuleRec* module, const Counters& to) {
    if (module->lastDefVal != to.lastDefVal && to.lastDefVal) {
        KeepRec<KIND_VNODE> keep;
        readRec(module, to.lastDefVal);
        vNode.next = 0;
        writeRec(module, to.lastDefVal);
    }
    module->firstDefVal = to.firstDefVal;
    module->lastDefVal = to.lastDefVal;
}

void restoreModule(ModuleRec* module, const Counters& to) {
    cutDefaultChain(module, to);
    dropModRefsFrom(module, to.nextRecNr[KIND_MNODE]);
    dropStriFrom(module, to.nextRecNr[KIND_STRI8], to.nextRecNr[KIND_STRI16],
                 to.nextRecNr[KIND_STRI32]);
    std::ranges::copy(to.nextRecNr, module->nextRecNr);
    forgetBuffersBehind(module);
    forgetFoundComps(module);
    forgetTakenBack(module);
}

void createSnapShot() {
    ++trialState.current;
    trialState.note = noteModule;
    snapState.starts.push_back(snapState.touched.size());
    touchModule(cMP);
}

/// Puts a module of the trial that ends back to its note, or to a pin made since.
void restoreNoted(ModuleRec* module, const Mark& note, const ModuleMarks& marks) {
    const bool pinned = !marks.pins.empty() && marks.pins.back().time > note.time;
    const Counters& to = pinned ? marks.pins.back().counters : note.counters;
    if (hasGrown(module, to)) restoreModule(module, to);
}

/// Takes the innermost trial's note of a module away. `inherit`: the enclosing trial takes it over
/// unless it has one of its own. True when it did.
bool endNote(ModuleRec* module, ModuleMarks& marks, bool inherit) {
    Mark note = marks.notes.back();
    marks.notes.pop_back();
    while (!marks.pins.empty() && marks.pins.back().trial >= note.trial) marks.pins.pop_back();
    const uint32_t outer = note.trial - 1;
    inherit = inherit && outer != 0 && (marks.notes.empty() || marks.notes.back().trial != outer);
    if (inherit) {
        note.trial = outer;
        marks.notes.push_back(note);
    }
    module->touchedIn = marks.notes.empty() ? 0 : marks.notes.back().trial;
    return inherit;
}

/// Ends the innermost trial. The modules in which it has created records are `grown` when it is
/// kept. A module that was only visited needs no note any more: it gets another one when it is
/// visited again.
void endTrial(bool kept) {
    snapState.grown.clear();
    const size_t start = snapState.starts.back();
    size_t inherited = start;
    flushRecs(-1);
    for (size_t i = start; i < snapState.touched.size(); ++i) {
        ModuleRec* const module = snapState.touched[i];
        ModuleMarks& marks = marksOf(module);
        const bool hasNew = kept && hasGrown(module, marks.notes.back().counters);
        if (hasNew) snapState.grown.push_back(module);
        if (!kept) restoreNoted(module, marks.notes.back(), marks);
        if (endNote(module, marks, hasNew || (kept && module == cMP)))
            snapState.touched[inherited++] = module;
    }
    snapState.touched.resize(inherited);
    snapState.starts.pop_back();
    --trialState.current;
    assert(trialState.current != 0 || snapState.touched.empty()); // all marks are gone with it
}

void restoreSnapShot() {
    endTrial(false);
}

} // namespace

SnapShot::SnapShot(ModuleRec* module, RecKind kind, uint32_t nr)
    : module_(module), kind_(kind), nr_(nr) {
    createSnapShot();
}

SnapShot::~SnapShot() {
    restore();
}

void SnapShot::keep() {
    if (done_) return;
    done_ = true;
    endTrial(true);
    if (snapState.grown.empty() || trialState.current == 0) return;
    const uint32_t trial = firstTrialWith(module_, kind_, nr_);
    if (trial > currentTrial()) return;
    for (ModuleRec* const module : snapState.grown) pin(module, trial);
}

void SnapShot::restore() {
    if (done_) return;
    done_ = true;
    restoreSnapShot();
}

} // namespace orvo
