// Invariant: the value nodes of a list have consecutive numbers, the extension marker included, so
// that a name's place in the list gives its node. Nothing else in a list makes value nodes.

#include "parser/parser_named.h"

#include "lex/i64.h"
#include "parser/parser.h"
#include "parser/parser_defer.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

/// Prepares the current type for its list; the symbol that is returned collects the names.
STabNr beginNames() {
    if (!buildsTree()) return {};
    tNode.namedVals = cMP->nextRecNr[KIND_VNODE];
    parserState.identList = {};
    return updateSymbTab(0, 0, parserState.Inp.line);
}

void endNames(STabNr names) {
    if (buildsTree()) symAt(names).formals = parserState.identList.first.nr;
    parserState.identList = {};
}

/// A value node of the list. Its type is the current TNode.
VNodeNr newListNode(uint32_t line) {
    if (!buildsTree()) return {};
    const VNodeNr node = addValArc(nullptr, line);
    vNode.govType = thisTypeNode().nr;
    vNode.govTypeMod = REF_OWN;
    vNode.valStatus = VST_NAMED_NUMBER;
    return node;
}

/// Links the current value node, an element of the list, to the one that is made next.
void linkNext() {
    if (buildsTree()) vNode.next = cMP->nextRecNr[KIND_VNODE];
}

void enumerationMarker() {
    newListNode(parserState.Inp.line);
    if (buildsTree()) setValNode(TYP_EXTENSION_MARKER);
}

/// `!` behind the marker of an enumeration: the value is kept for the node that is made of it when
/// the list is complete, whose nodes have consecutive numbers.
struct EnumException {
    VNodeNr marker;
    DNodeNr text;
    bool hasType = false; // `Type : value`; else an INTEGER
    uint32_t line = 0;
};

void readException(EnumException& exception) {
    if (parserState.Inp.code != TOK_EXCLAMATION || !newNotation()) return;
    if (buildsTree()) exception.marker = currentRec<KIND_VNODE>().nr;
    ReadIn();
    exception.line = parserState.Inp.line;
    const int32_t code = parserState.Inp.code;
    exception.hasType =
        code != TOK_NUMBER && code != TOK_MINUS && code != TOK_VALUEID &&
        !(code == TOK_TYPEID && lookAhead(1).code == TOK_DOT && lookAhead(2).code == TOK_VALUEID);
    exception.text = MGR68OpenValue();
}

/// The current TNode is the enumeration.
void storeException(TNodeNr type, const EnumException& exception) {
    if (!buildsTree() || !exception.marker || !exception.text) return;
    cMP->hasEnumExceptions = true;
    const VNodeNr node = addValArc(nullptr, exception.line);
    vNode.govType = addTypeArc(nullptr, exception.line).nr;
    vNode.govTypeMod = REF_OWN;
    setTypeNode(exception.hasType ? TYP_OPEN : TYP_INTEGER);
    vNode.refMod = REF_DEFERRED;
    vNode.ref = minusWord(exception.text.nr);
    atValue(exception.marker);
    vNode.ref = node.nr;
    atType(type);
}

void numberValue(I64 number) {
    if (!buildsTree()) return;
    setValNode(TYP_INTEGER);
    vNode.val.number = number;
}

/// `(` ([`-`] number | DefinedValue) `)`
void identValue() {
    ReadIn();
    switch (parserState.Inp.code) {
    case TOK_NUMBER:
        numberValue(parserState.Inp.value);
        ReadIn();
        break;
    case TOK_MINUS:
        ReadIn();
        if (parserState.Inp.code == TOK_NUMBER)
            numberValue(i64of(-i64native(parserState.Inp.value)));
        expectToken(TOK_NUMBER);
        break;
    case TOK_VALUEID:
    case TOK_TYPEID: MGR42DefinedValue(); break;
    default: MGError(notAllowed);
    }
    expectToken(TOK_RPAREN);
}

/// What stands behind the identifier of an item.
void optionalIdentValue(TypeCode type) {
    const int32_t token = parserState.Inp.code;
    if (token == TOK_LPAREN) {
        identValue();
    } else if (type != TYP_ENUM) {
        MGError(TOK_LPAREN);
    } else if (token == TOK_COMMA || token == TOK_RBRACE) {
        if (buildsTree()) setValNode(TYP_ENUM);
    } else {
        MGError(notAllowed);
    }
}

} // namespace

/// EnumerationItemList ::= NamedIdent {`,` (NamedIdent | `...`)}
void MGR150EnumerationItemList() {
    const TNodeNr type = thisTypeNode();
    const STabNr names = beginNames();
    EnumException exception;
    bool hasMarker = false;
    MGR152NamedIdent(TYP_ENUM);
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        if (parserState.Inp.code != TOK_ELLIPSIS) {
            MGR152NamedIdent(TYP_ENUM);
            continue;
        }
        hasMarker = true;
        enumerationMarker();
        ReadIn();
        readException(exception);
        if (parserState.Inp.code == TOK_COMMA) linkNext();
    }
    if (cMP->extensibilityImplied && !hasMarker) {
        linkNext();
        enumerationMarker();
    }
    endNames(names);
    storeException(type, exception);
}

/// NamedIdentList ::= `{` NamedIdent {`,` NamedIdent} `}`
void MGR147NamedIdentList(TypeCode type) {
    const STabNr names = beginNames();
    if (!expectToken(TOK_LBRACE)) return;
    MGR152NamedIdent(type);
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        MGR152NamedIdent(type);
    }
    expectToken(TOK_RBRACE);
    endNames(names);
}

/// NamedIdent ::= valueid [`(` ([`-`] number | DefinedValue) `)`]
void MGR152NamedIdent(TypeCode type) {
    const Token identifier = parserState.Inp;
    if (!expectToken(TOK_VALUEID)) return;
    const VNodeNr node = newListNode(identifier.line);
    if (buildsTree()) {
        vNode.name = identifier.stri();
        if (type == TYP_BITSTR) vNode.valStatus = VST_NAMED_BIT;
        handleSymbol(parserState.identList, identifier.stri(), SYM_VALUE_NODE, identifier.line);
    }
    optionalIdentValue(type);
    if (parserState.openInst >= 1) takeValueOptions(node);
    if (atValue(node) && parserState.Inp.code == TOK_COMMA) linkNext();
}

} // namespace orvo
