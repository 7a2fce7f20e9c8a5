// Invariants: the nodes of a list are chained by `next`, which is stored when the token behind an
// element shows that another one comes: it then is the next TNode of the module. The first element
// is the TNode made next after the type got its code, as setTypeNode presumes.

#include "parser/parser_comp.h"

#include <algorithm>
#include <cstdint>

#include "diag/orvoerr.h"
#include "parser/parser.h"
#include "parser/parser_defer.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

bool anotherFollows() {
    return parserState.Inp.code == TOK_COMMA || parserState.Inp.code == TOK_ELLIPSIS;
}

/// Links the current node, an element of a list, to the node that is made next.
void linkNext() {
    if (buildsTree()) tNode.next = cMP->nextRecNr[KIND_TNODE];
}

/// [`!` ExceptionIdentification] behind a marker (X.680 (02/2021) 53.4), as the constraint of its
/// node
void markerException() {
    if (parserState.Inp.code != TOK_EXCLAMATION || !newNotation()) return;
    const TNodeNr marker = thisTypeNode();
    const DNodeNr text = initDeferList();
    ReadIn();
    MGR68OpenValue();
    storeDeferList(text);
    if (atType(marker)) tNode.constraint = minus(text.nr);
}

/// `...`
void extensionMarker() {
    appendExtensionMarker();
    ReadIn();
    markerException();
    if (anotherFollows()) linkNext();
}

/// A `...` where a comma should have come first; no word of that when it has been reported.
void markerWithoutComma() {
    if (parserState.Parsing)
        recordError(cMP, ERR_WARNING, Msg::CommaBeforeExtensionMarker, parserState.Inp.line);
    extensionMarker();
}

/// Ends a list: adds the marker that EXTENSIBILITY IMPLIED asks for and makes the type current.
void finishList(TNodeNr type, bool hasMarker) {
    if (!buildsTree()) return;
    if (cMP->extensibilityImplied && !hasMarker) {
        linkNext();
        appendExtensionMarker();
    }
    atType(type);
}

/// DEFAULT Value of a component
void defaultValue(TNodeNr component) {
    ReadIn();
    if (atType(component)) {
        tNode.compStatus = TCS_OPTIONAL;
        tNode.defaultVal = addValDefArc(component, parserState.Inp.line).nr;
        vNode.refMod = REF_DEFERRED;
        vNode.ref = minusWord(cMP->nextRecNr[KIND_DNODE]);
    }
    MGR68OpenValue();
}

/// [OPTIONAL | DEFAULT Value]
void optionality(TNodeNr component) {
    switch (parserState.Inp.code) {
    case TOK_OPTIONAL:
        ReadIn();
        if (atType(component)) tNode.compStatus = TCS_OPTIONAL;
        break;
    case TOK_DEFAULT: defaultValue(component); break;
    case TOK_COMMA:
    case TOK_RBRACE:
    case TOK_ELLIPSIS:
    case TOK_RVERSION: break;
    default: MGError(notAllowed);
    }
}

/// The element behind a comma of a component list; tells whether it is a marker.
bool componentAfterComma(int64_t& latest) {
    switch (parserState.Inp.code) {
    case TOK_ELLIPSIS: extensionMarker(); return true;
    case TOK_COMPONENTS:
    case TOK_VALUEID: MGR185Component(); break;
    case TOK_LVERSION: MGR999ExtensionAdditionGroup(latest); break;
    default: MGError(notAllowed);
    }
    return false;
}

/// NamedType
void alternative() {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) tNode.compStatus = TCS_CHOICE;
    MGR191NamedType();
    if (atType(node) && anotherFollows()) linkNext();
}

/// The numbers of the groups of a module are all there or all missing.
void noteNumbering(bool isNumbered) {
    bool& other = isNumbered ? cMP->hasPlainGroups : cMP->hasNumberedGroups;
    (isNumbered ? cMP->hasNumberedGroups : cMP->hasPlainGroups) = true;
    if (other) recordOnce(cMP, Msg::GroupsPartlyNumbered, parserState.Inp.line, {});
}

/// [number [`:`]] of the version behind `[[`, into the node of the group: from 2 on, and ascending
/// within an insertion point (X.680 (02/2021) 25.16). Older notation makes nothing of it.
void versionNumber(TNodeNr group, int64_t& latest) {
    const bool isNumbered = parserState.Inp.code == TOK_NUMBER;
    if (newNotation()) noteNumbering(isNumbered);
    if (!isNumbered) return;
    const int64_t number = i64native(parserState.Inp.value);
    if (newNotation() && buildsTree()) {
        if (number <= latest || number > INT32_MAX)
            recordError(cMP, ERR_SEMANTIC, Msg::VersionNumberNotAscending, parserState.Inp.line);
        else
            latest = number;
        if (atType(group))
            tNode.sizeLimit = static_cast<uint32_t>(std::min<int64_t>(number, INT32_MAX));
    }
    ReadIn();
    if (parserState.Inp.code == TOK_COLON) ReadIn();
}

/// `[[` [VersionNumber] NamedType {`,` NamedType} `]]` (X.680 (02/2021) 29.1)
void alternativeGroup(int64_t& latest) {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) {
        setTypeNode(TYP_EXTADDGRP);
        tNode.compStatus = TCS_EXTADDGRP;
    }
    ReadIn();
    versionNumber(node, latest);
    alternative();
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        alternative();
    }
    expectToken(TOK_RVERSION);
    if (atType(node) && anotherFollows()) linkNext();
}

/// The element behind a comma of an alternative list; tells whether it is a marker.
bool alternativeAfterComma(int64_t& latest) {
    switch (parserState.Inp.code) {
    case TOK_ELLIPSIS: extensionMarker(); return true;
    case TOK_LVERSION:
        if (!newNotation()) break; // groups of alternatives are later notation
        alternativeGroup(latest);
        return false;
    default: break;
    }
    alternative();
    return false;
}

/// What follows the first element of a list of the structure `type`; `afterComma` reads the element
/// behind a comma and tells whether it is a marker.
void restOfList(TNodeNr type, bool hasMarker, bool (*afterComma)(int64_t&)) {
    int64_t latest = 1; // version
    while (anotherFollows()) {
        if (parserState.Inp.code == TOK_COMMA) {
            ReadIn();
            if (afterComma(latest)) hasMarker = true;
        } else {
            markerWithoutComma();
            hasMarker = true;
        }
    }
    finishList(type, hasMarker);
}

} // namespace

void appendExtensionMarker() {
    newTypeNode();
    setTypeCode(TYP_EXTENSION_MARKER);
}

/// ComponentList ::= (Component | `...`)
///     {`,` (Component | `...` | ExtensionAdditionGroup) | `...`}
void MGR183ComponentList() {
    const TNodeNr type = thisTypeNode();
    const bool hasMarker = parserState.Inp.code == TOK_ELLIPSIS;
    if (hasMarker)
        extensionMarker();
    else
        MGR185Component();
    restOfList(type, hasMarker, componentAfterComma);
}

/// Component ::= COMPONENTS OF Type | NamedType [OPTIONAL | DEFAULT Value]
void MGR185Component() {
    const TNodeNr node = newTypeNode();
    if (parserState.Inp.code == TOK_COMPONENTS) {
        ReadIn();
        expectToken(TOK_OF);
        if (buildsTree()) tNode.compStatus = TCS_COMPOF;
        MGR59Type();
    } else {
        MGR191NamedType();
        optionality(node);
    }
    if (atType(node) && anotherFollows()) linkNext();
}

/// NamedType ::= valueid Type
void MGR191NamedType() {
    if (parserState.Inp.code == TOK_VALUEID) {
        const int32_t name = parserState.Inp.stri();
        if (buildsTree()) tNode.name = name;
        ReadIn();
        // `a < T` is the component a of the selection type a < T.
        if (parserState.Inp.code == TOK_LESS) insertToken(TOK_COMPONENTID, name);
    } else {
        MGError(TOK_VALUEID);
    }
    MGR59Type();
}

/// ExtensionAdditionGroup ::= `[[` [number [`:`]] Component {`,` Component} `]]`
void MGR999ExtensionAdditionGroup(int64_t& latest) {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) {
        setTypeNode(TYP_EXTADDGRP);
        tNode.compStatus = TCS_EXTADDGRP;
    }
    ReadIn();
    versionNumber(node, latest);
    MGR185Component();
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        MGR185Component();
    }
    expectToken(TOK_RVERSION);
    if (atType(node) && anotherFollows()) linkNext();
}

/// AlternativeTypeList ::= NamedType {`,` (NamedType | `...`) | `...`}
void MGR202AlternativeTypeList() {
    const TNodeNr type = thisTypeNode();
    alternative();
    restOfList(type, false, alternativeAfterComma);
}

} // namespace orvo
