// At most one range is recorded at a time, in parserState.deferred; ReadIn moves every token it
// consumes to its end. A type inside suspends the recording, so ranges within that type are stored
// as ranges of their own. A range has its number from the start: those within it have higher ones.

#include "parser/parser_defer.h"

#include "parser/parser.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/types.h"

namespace orvo {

namespace {

/// The node current when the guard was made is current and pending again when the scope ends: the
/// rule around a deferred type goes on filling its own node.
template <RecKind K> class KeepPending {
  public:
    KeepPending() : kept_(currentRec<K>()) {}
    KeepPending(const KeepPending&) = delete;
    KeepPending& operator=(const KeepPending&) = delete;
    ~KeepPending() {
        if (kept_) makePending(kept_.module, kept_.nr);
    }

  private:
    RecRef<K> kept_;
};

void freeRange(const DNode& range) {
    for (TokNr at{range.first}; at;) {
        const TokNr next{tokenAt(at).next};
        freeToken(at);
        at = next;
    }
}

} // namespace

// ---- recording ----------------------------------------------------------------------------------

bool isDeferring() {
    return parserState.deferred.count != noRange.count;
}

DNodeNr initDeferList() {
    if (isDeferring() || !buildsTree()) return {};
    const STabNr assignment = parserState.formalList;
    parserState.deferred = {};
    parserState.deferred.formals = assignment ? symAt(assignment).formals : 0;
    --parserState.openInst;
    return DNodeNr{cMP->nextRecNr[KIND_DNODE]++};
}

void initDeferList(const DNode& saved) {
    parserState.deferred = saved;
}

void storeDeferList(DNodeNr nr) {
    if (!nr) return;
    if (buildsTree()) {
        dNode = parserState.deferred;
        writeRec(cMP, nr);
    } else {
        freeRange(parserState.deferred);
    }
    ++parserState.openInst;
    parserState.deferred = noRange;
}

void storeDeferList(DNode& saveTo) {
    saveTo = parserState.deferred;
    parserState.deferred = noRange;
}

void deferToken(TokNr nr) {
    DNode& range = parserState.deferred;
    tokenAt(nr).next = 0;
    if (range.first == 0)
        range.first = nr.nr;
    else
        tokenAt(TokNr{range.last}).next = nr.nr;
    range.last = nr.nr;
    if (range.count < maxDeferredTokens) ++range.count;
}

// ---- rules --------------------------------------------------------------------------------------

void MGR259DeferredType() {
    ReadIn(); // the marker, which goes into the range
    DNode range;
    storeDeferList(range);
    ++parserState.inDeferred;
    MGR59Type();
    --parserState.inDeferred;
    initDeferList(range);
}

void deferType() {
    const KeepPending<KIND_TNODE> keepType;
    const KeepPending<KIND_VNODE> keepValue;
    const uint32_t line = parserState.Inp.line;
    const TNodeNr node = buildsTree() ? addTypeArc(nullptr, line) : TNodeNr{};
    insertToken(TOK_MARKER, static_cast<int32_t>(node.nr));
    const uint64_t withMarker = parserState.consumed + 1;
    MGR259DeferredType();
    // a token that only looked like a type would be found here again and again
    if (parserState.consumed == withMarker) ReadIn();
}

namespace {

/// `open` contents `close`.
void enclosedContents(int32_t open, int32_t close) {
    if (parserState.Inp.code != open) {
        MGError(open);
        return;
    }
    const NestingLevel level;
    if (level.tooDeep()) return;
    ReadIn();
    MGR178Contents();
    expectToken(close);
}

constexpr TokenSet plainContents = {
    TOK_COMMA,       TOK_DOT,          TOK_LESS,        TOK_BAR,      TOK_MINUS,    TOK_COLON,
    TOK_EXCLAMATION, TOK_AT,           TOK_ASTERISK,    TOK_RANGE,    TOK_ELLIPSIS, TOK_CARET,
    TOK_NUMBER,      TOK_VALUEID,      TOK_TYPEID,      TOK_BSTRING,  TOK_HSTRING,  TOK_CSTRING,
    TOK_TYPEFIELDID, TOK_VALUEFIELDID, TOK_COMPONENTID, TOK_MODULEID, TOK_MARKER};

/// The tokens of deferred notation other than brackets: nearly all, but what ends an assignment, a
/// clause or the notation around it. Type names begin types.
bool isContents(int32_t code) {
    return plainContents.has(code) || code == TOK_REALNUMBER || isLaterWord(code) ||
           (isReservedWord(code) && code != TOK_EXTENSIBILITY && code != TOK_IMPLIED);
}

} // namespace

void parenthesizedContents() {
    enclosedContents(TOK_LPAREN, TOK_RPAREN);
}

void MGR178Contents() {
    for (;;) {
        if (typeFollows(true))
            deferType();
        else if (parserState.Inp.code == TOK_LBRACE)
            enclosedContents(TOK_LBRACE, TOK_RBRACE);
        else if (parserState.Inp.code == TOK_LPAREN)
            parenthesizedContents();
        else if (isContents(parserState.Inp.code))
            ReadIn();
        else
            return;
    }
}

DNodeNr MGR63BraceValue() {
    const DNodeNr nr = initDeferList();
    enclosedContents(TOK_LBRACE, TOK_RBRACE);
    storeDeferList(nr);
    return nr;
}

namespace {

/// {identifier `:` | Type `:` | CONTAINING}: the alternatives of CHOICE values, the types of open
/// type values and the strings around a value.
void valueSelectors() {
    for (;;) {
        if (parserState.Inp.code == TOK_CONTAINING && newNotation()) {
            ReadIn();
        } else if (parserState.Inp.code == TOK_VALUEID && lookAhead(1).code == TOK_COLON) {
            ReadIn();
            ReadIn();
        } else if (typeFollows(false)) {
            deferType();
            if (!expectToken(TOK_COLON)) return;
        } else {
            return;
        }
    }
}

/// {`.` typefieldid | `.` valuefieldid}: information from an object.
void fieldReferences() {
    while (parserState.Inp.code == TOK_DOT) {
        ReadIn();
        if (!MGIsInSet({TOK_TYPEFIELDID, TOK_VALUEFIELDID})) {
            MGError(notAllowed);
            return;
        }
        ReadIn();
    }
}

constexpr TokenSet behindReference = {TOK_END,     TOK_COMMA,    TOK_DOT,
                                      TOK_RBRACE,  TOK_ELLIPSIS, TOK_TYPEID,
                                      TOK_VALUEID, TOK_RVERSION, TOK_ENCODING_CONTROL};

/// [moduleid `.`] valueid [ActualParameters] {`.` FieldName}
void valueReference() {
    if (parserState.Inp.code == TOK_MODULEID) {
        ReadIn();
        expectToken(TOK_DOT);
    }
    expectToken(TOK_VALUEID);
    if (parserState.Inp.code == TOK_LBRACE)
        enclosedContents(TOK_LBRACE, TOK_RBRACE);
    else if (!MGIsInSet(behindReference))
        MGError(notAllowed);
    fieldReferences();
}

void openValue() {
    if (isOneTokenValue(parserState.Inp.code)) {
        ReadIn();
        return;
    }
    switch (parserState.Inp.code) {
    case TOK_LBRACE: enclosedContents(TOK_LBRACE, TOK_RBRACE); break;
    case TOK_MINUS:
        ReadIn();
        if (parserState.Inp.code == TOK_REALNUMBER)
            ReadIn();
        else
            expectToken(TOK_NUMBER);
        break;
    case TOK_VALUEID:
    case TOK_MODULEID: valueReference(); break;
    default: MGError(notAllowed);
    }
}

} // namespace

DNodeNr MGR68OpenValue() {
    const DNodeNr nr = initDeferList();
    valueSelectors();
    openValue();
    storeDeferList(nr);
    return nr;
}

/// ExceptionSpec ::= `!` ([`-`] number | DefinedValue | Type `:` Value)
DNodeNr exceptionSpec() {
    const DNodeNr nr = initDeferList();
    ReadIn();
    valueSelectors();
    openValue();
    storeDeferList(nr);
    return nr;
}

} // namespace orvo
