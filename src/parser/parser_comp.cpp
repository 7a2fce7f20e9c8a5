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

/// `...`
void extensionMarker() {
    appendExtensionMarker();
    ReadIn();
    if (anotherFollows()) linkNext();
}

/// A `...` where a comma should have come first; no word of that when it has been reported.
void warnOfMissingComma() {
    if (parserState.Parsing)
        recordError(cMP, ERR_WARNING, Msg::CommaBeforeExtensionMarker, parserState.Inp.line);
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
bool componentAfterComma() {
    switch (parserState.Inp.code) {
    case TOK_ELLIPSIS: extensionMarker(); return true;
    case TOK_COMPONENTS:
    case TOK_VALUEID: MGR185Component(); break;
    case TOK_LVERSION: MGR999ExtensionAdditionGroup(); break;
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

/// [number [`:`]] of the version behind `[[`; it is of no consequence.
void versionNumber() {
    if (parserState.Inp.code != TOK_NUMBER) return;
    ReadIn();
    if (parserState.Inp.code == TOK_COLON) ReadIn();
}

/// The element behind a comma of an alternative list; tells whether it is a marker.
bool alternativeAfterComma() {
    switch (parserState.Inp.code) {
    case TOK_ELLIPSIS: extensionMarker(); return true;
    // No case for `[[`: groups of alternatives are later notation (X.680 (07/2002) 28.1).
    default: alternative(); return false;
    }
}

/// What follows the first element of a list of the structure `type`; `afterComma` reads the element
/// behind a comma and tells whether it is a marker.
void restOfList(TNodeNr type, bool hasMarker, bool (*afterComma)()) {
    while (anotherFollows()) {
        if (parserState.Inp.code == TOK_COMMA) {
            ReadIn();
            if (afterComma()) hasMarker = true;
        } else {
            warnOfMissingComma();
            extensionMarker();
            hasMarker = true;
        }
    }
    finishList(type, hasMarker);
}

/// `[[` [number [`:`]] Element {`,` Element} `]]`
template <typename Version> void additionGroup(Version&& version, void (*element)()) {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) {
        setTypeNode(TYP_EXTADDGRP);
        tNode.compStatus = TCS_EXTADDGRP;
    }
    ReadIn();
    version(node);
    element();
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        element();
    }
    expectToken(TOK_RVERSION);
    if (atType(node) && anotherFollows()) linkNext();
}

// ---- lists with two markers (X.680 (02/2021) 25.1 and 29.1) -------------------------------------

/// A list as far as it has been read.
struct ExtensibleList {
    void (*element)();
    bool isChoice;
    int markers = 0;
    int64_t version = 1; // the highest one of the groups so far
};

/// Groups have version numbers in the whole module, or none has.
void compareGroups(bool isNumbered, uint32_t line) {
    parserState.groupSorts |= isNumbered ? 1U : 2U;
    if (parserState.groupSorts == 3) recordOnce(cMP, Msg::GroupsPartlyNumbered, line, {});
}

/// [number `:`] of a group: 2 or more, and higher than that of the group before (25.16).
void versionNumber(ExtensibleList& list, TNodeNr group) {
    const Token number = parserState.Inp;
    const bool isGiven = number.code == TOK_NUMBER;
    if (buildsTree()) compareGroups(isGiven, number.line);
    if (!isGiven) return;
    ReadIn();
    expectToken(TOK_COLON);
    if (!atType(group)) return;
    const int64_t version = i64native(number.value);
    tNode.sizeLimit = static_cast<uint32_t>(std::min<int64_t>(version, UINT32_MAX));
    if (version <= list.version)
        recordError(cMP, ERR_SEMANTIC, Msg::VersionNumberNotAscending, number.line);
    list.version = std::max(list.version, version);
}

/// `...` [ExceptionSpec]. The marker that ends the additions has no exception.
void markerAndException(ExtensibleList& list) {
    appendExtensionMarker();
    const TNodeNr marker = thisTypeNode();
    ++list.markers;
    ReadIn();
    if (parserState.Inp.code == TOK_EXCLAMATION) {
        if (list.markers > 1) MGError(notAllowed);
        const DNodeNr exception = exceptionSpec();
        if (atType(marker)) tNode.constraint = minus(exception.nr);
    }
    if (anotherFollows()) linkNext();
}

/// Element | `...` [ExceptionSpec] | Group; a group belongs to the additions.
void listElement(ExtensibleList& list) {
    switch (parserState.Inp.code) {
    case TOK_ELLIPSIS: markerAndException(list); break;
    case TOK_LVERSION:
        if (list.markers != 1 && buildsTree())
            recordError(cMP, ERR_SEMANTIC, Msg::MisplacedGroup, parserState.Inp.line);
        additionGroup([&](TNodeNr group) { versionNumber(list, group); }, list.element);
        break;
    case TOK_COMPONENTS:
    case TOK_VALUEID: list.element(); break;
    default: MGError(list.isChoice ? static_cast<int32_t>(TOK_VALUEID) : notAllowed);
    }
}

/// {`,` ListElement} behind the first element of the structure `type`. What follows one marker too
/// many is told by pass 5.
void restOfExtensibleList(TNodeNr type, ExtensibleList& list) {
    while (anotherFollows()) {
        if (parserState.Inp.code == TOK_COMMA)
            ReadIn();
        else
            warnOfMissingComma();
        listElement(list);
    }
    finishList(type, list.markers != 0);
}

/// ComponentTypeLists ::= ListElement {`,` ListElement}
void componentTypeLists(TNodeNr type) {
    ExtensibleList list{MGR185Component, false};
    listElement(list);
    restOfExtensibleList(type, list);
}

/// AlternativeTypeLists ::= NamedType {`,` ListElement}
void alternativeTypeLists(TNodeNr type) {
    ExtensibleList list{alternative, true};
    alternative();
    restOfExtensibleList(type, list);
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
    if (newNotation()) return componentTypeLists(type);
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
void MGR999ExtensionAdditionGroup() {
    additionGroup([](TNodeNr) { versionNumber(); }, MGR185Component);
}

/// AlternativeTypeList ::= NamedType {`,` (NamedType | `...`) | `...`}
void MGR202AlternativeTypeList() {
    const TNodeNr type = thisTypeNode();
    if (newNotation()) return alternativeTypeLists(type);
    alternative();
    restOfList(type, false, alternativeAfterComma);
}

} // namespace orvo
