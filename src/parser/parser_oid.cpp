// Invariant: a rule leaves the value node it has filled as the current one, so that its caller can
// link the next node to it. After a syntax error the rules only check the notation: every access to
// a record stands behind buildsTree().

#include "parser/parser_oid.h"

#include <algorithm>

#include "check/orvonum.h"
#include "options/orvoopt_loc.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/ascii.h"

namespace orvo {
namespace {

struct NamedArc {
    std::string_view name;
    int32_t level;
    uint32_t arc;
};
/// X.660 (08/2004) annex A. Sorted: namedObjIdArc bisects it.
constexpr NamedArc namedArcs[] = {
    {"administration", -6, 2},
    {"ccitt", -5, 0},
    {"identified_organization", -6, 4},
    {"iso", -5, 1},
    {"itu_t", -5, 0},
    {"joint_iso_ccitt", -5, 2},
    {"joint_iso_itu_t", -5, 2},
    {"member_body", -7, 2},
    {"network_operator", -6, 3},
    {"question", -6, 1},
    {"recommendation", -6, 0},
    {"registration_authority", -7, 1},
    {"standard", -7, 0},
};
static_assert(std::ranges::is_sorted(namedArcs, {}, &NamedArc::name));

/// { itu-t recommendation x 680 }
constexpr uint32_t letterComponent = 3;

bool beginsComponent(int32_t code) {
    return code == TOK_NUMBER || code == TOK_VALUEID || code == TOK_TYPEID ||
           code == TOK_COMPONENTID;
}

void numberComponent() {
    const I64 number = parserState.Inp.value;
    if (buildsTree()) {
        setValNode(TYP_INTEGER);
        if (number.high < 0) { // a well-known name
            vNode.valStatus = -number.high;
            vNode.val.number = {0, number.low};
        } else {
            setInteger(vNode.val, parserState.Inp, false);
        }
    }
    ReadIn();
}

/// identifier `(` (number | DefinedValue) `)`
void nameAndNumberForm() {
    if (buildsTree()) vNode.name = parserState.Inp.stri();
    ReadIn();
    if (!expectToken(TOK_LPAREN)) return;
    switch (parserState.Inp.code) {
    case TOK_NUMBER: numberComponent(); break;
    case TOK_VALUEID:
    case TOK_TYPEID: MGR42DefinedValue(); break;
    default: MGError(notAllowed);
    }
    expectToken(TOK_RPAREN);
}

void convertComponent(uint32_t component) {
    Token& token = parserState.Inp;
    if (token.code != TOK_VALUEID) return;
    Token converted = token;
    convertObjIdComp(cMP, converted, lookAhead(1).code, component);
    if (converted.code != token.code) rewriteToken(converted.code, converted.value);
}

/// Component ::= number | DefinedValue | identifier `(` (number | DefinedValue) `)`
void objectIdComponent() {
    newValueNode();
    switch (parserState.Inp.code) {
    case TOK_NUMBER: numberComponent(); break;
    case TOK_VALUEID:
    case TOK_TYPEID: MGR42DefinedValue(); break;
    case TOK_COMPONENTID: nameAndNumberForm(); break;
    default: MGError(notAllowed);
    }
}

} // namespace

VNodeNr newValueNode() {
    return buildsTree() ? addValArc(nullptr, parserState.Inp.line) : VNodeNr{};
}

VNodeNr newObjectIdNode() {
    const VNodeNr value = newValueNode();
    if (!buildsTree()) return value;
    vNode.govType = addTypeArc(nullptr, parserState.Inp.line).nr;
    vNode.govTypeMod = REF_OWN;
    setTypeNode(TYP_OBJID);
    return value;
}

bool atValue(VNodeNr node) {
    if (!buildsTree()) return false;
    makePending(cMP, node);
    return true;
}

void resolveDummy(int32_t& moduleRef, int32_t& name) {
    if (moduleRef != REF_UNRESOLVED || !parserState.formalList) return;
    int32_t dummyRef = moduleRef, position = name;
    if (!handleDefined(STabNr{symAt(parserState.formalList).formals}, dummyRef, position)) return;
    moduleRef = dummyRef;
    name = position;
}

void takeValueOptions(VNodeNr node) {
    Token& token = parserState.Inp;
    if (!atValue(node) || token.optFlags == 0) return;
    patchValOpts(node, token.optFlags, token.options);
}

void rewriteToken(int32_t code, I64 value) {
    parserState.Inp.code = code;
    parserState.Inp.value = value;
}

/// ObjectIdentifierValue ::= `{` Component {Component} `}`
void MGR13ObjectIdValue() {
    if (!expectToken(TOK_LBRACE)) return;
    if (buildsTree()) {
        setValNode(TYP_OBJID);
        vNode.ref = cMP->nextRecNr[KIND_VNODE];
    }
    uint32_t component = 1;
    convertComponent(component);
    uint64_t before = 0;
    do {
        before = parserState.consumed;
        objectIdComponent();
        convertComponent(++component);
        if (!beginsComponent(parserState.Inp.code)) break;
        if (buildsTree()) vNode.next = cMP->nextRecNr[KIND_VNODE];
    } while (parserState.consumed != before); // a typeid that begins no reference stays
    expectToken(TOK_RBRACE);
}

/// DefinedValue ::= [moduleid `.`] valueid
void MGR42DefinedValue() {
    convertToken();
    int32_t moduleRef = REF_UNRESOLVED;
    if (parserState.Inp.code == TOK_MODULEID) {
        moduleRef = parserState.Inp.stri();
        ReadIn();
        expectToken(TOK_DOT);
    }
    if (parserState.Inp.code == TOK_VALUEID && buildsTree()) {
        int32_t name = parserState.Inp.stri();
        resolveDummy(moduleRef, name);
        setValNode(TYP_SYNONYM);
        vNode.refMod = moduleRef;
        vNode.ref = static_cast<uint32_t>(name);
    }
    expectToken(TOK_VALUEID);
}

std::optional<I64> namedObjIdArc(std::string_view name, uint32_t component) {
    if (name.size() == 1 && isLower(name[0])) {
        if (component != letterComponent) return std::nullopt;
        return I64{-VST_LETTER_ARC, static_cast<uint32_t>(name[0] - 'a' + 1)};
    }
    const auto* found = std::ranges::lower_bound(namedArcs, name, {}, &NamedArc::name);
    if (found == std::end(namedArcs) || found->name != name) return std::nullopt;
    return I64{found->level, found->arc};
}

void convertObjIdComp(ModuleRec* module, Token& token, int32_t followingCode, uint32_t component) {
    if (token.code != TOK_VALUEID) return;
    if (followingCode == TOK_LPAREN) {
        token.code = TOK_COMPONENTID;
        return;
    }
    if (token.stri() == 0) return; // names have no text after a syntax error
    const std::optional<I64> arc = namedObjIdArc(getStri(module, token.stri()), component);
    if (!arc) return;
    token.code = TOK_NUMBER;
    token.value = *arc;
}

} // namespace orvo
