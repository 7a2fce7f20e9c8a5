// Invariant: the value nodes of a list have consecutive numbers, the extension marker included, so
// that a name's place in the list gives its node. Nothing else in a list makes value nodes.

#include "parser/parser_named.h"

#include "check/orvonum.h"
#include "parser/parser.h"
#include "parser/parser_defer.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
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

VNodeNr enumerationMarker() {
    const VNodeNr marker = newListNode(parserState.Inp.line);
    if (buildsTree()) setValNode(TYP_EXTENSION_MARKER);
    return marker;
}

/// [ExceptionSpec] behind the marker (X.680 (02/2021) 20.1)
void enumerationException(VNodeNr marker) {
    if (parserState.Inp.code != TOK_EXCLAMATION) return;
    const DNodeNr text = exceptionSpec();
    if (!atValue(marker)) return;
    vNode.refMod = REF_DEFERRED;
    vNode.ref = minusWord(text.nr);
}

/// The number at the current token.
void numberValue(bool isNegative) {
    if (!buildsTree()) return;
    setValNode(TYP_INTEGER);
    setInteger(vNode.val, parserState.Inp, isNegative);
}

/// `(` ([`-`] number | DefinedValue) `)`
void identValue() {
    ReadIn();
    switch (parserState.Inp.code) {
    case TOK_NUMBER:
        numberValue(false);
        ReadIn();
        break;
    case TOK_MINUS:
        ReadIn();
        if (parserState.Inp.code == TOK_NUMBER) numberValue(true);
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

/// EnumerationItemList ::= NamedIdent {`,` (NamedIdent | `...` [ExceptionSpec])}
void MGR150EnumerationItemList() {
    const STabNr names = beginNames();
    bool hasMarker = false;
    MGR152NamedIdent(TYP_ENUM);
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        if (parserState.Inp.code != TOK_ELLIPSIS) {
            MGR152NamedIdent(TYP_ENUM);
            continue;
        }
        if (hasMarker && newNotation()) MGError(onlyOnce);
        hasMarker = true;
        const VNodeNr marker = enumerationMarker();
        ReadIn();
        if (newNotation()) enumerationException(marker);
        if (parserState.Inp.code == TOK_COMMA) linkNext();
    }
    if (cMP->extensibilityImplied && !hasMarker) {
        linkNext();
        enumerationMarker();
    }
    endNames(names);
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
