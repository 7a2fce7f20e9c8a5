// Values made of values: component and element lists, CHOICE, open types, named bits,
// object identifiers.

#include "check/orvonum.h"
#include "lex/i64.h"
#include "parser/parser_oid.h"
#include "solve/p5actpar.h"
#include "solve/solve_con.h"
#include "solve/solve_cur.h"
#include "solve/solve_exp.h"
#include "solve/solve_par.h"
#include "solve/solve_pass3.h"
#include "solve/solve_ref.h"
#include "solve/solve_val.h"
#include "solve/solve_val_int.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/values.h"

namespace orvo {

void governByCurrentType() {
    const TNodeRef type = currentRec<KIND_TNODE>();
    vNode.govTypeMod = handleImplImports(cMP, type.module);
    vNode.govType = type.nr.nr;
}

std::string identifierText() {
    return curCode() == TOK_VALUEID ? curTokenText() : std::string(tokenName(curCode()));
}

ValueList::ValueList() : owner_(currentRec<KIND_VNODE>()) {
    makePending(owner_.module, owner_.nr);
    vNode.ref = 0;
}

VNodeNr ValueList::append(uint32_t line) {
    const uint32_t number = nextRec<KIND_VNODE>(cMP).nr;
    if (last_) {
        makePending(cMP, last_);
        vNode.next = number;
    } else {
        makePending(owner_.module, owner_.nr);
        vNode.ref = number;
    }
    last_ = addValArc(instContext(), line);
    return last_;
}

namespace {

/// The identifier at the cursor names a component of the list from `first`: its type becomes the
/// current one. Else the cause is set.
bool readNamedComponent(uint8_t kind, ModuleRec* module, TNodeNr first, Cause& cause) {
    const std::string identifier = identifierText();
    if (curCode() == TOK_VALUEID && findTypeCompId(kind, module, first, identifier)) return true;
    cause.set(Msg::InvalidComponentIdentifier, identifier);
    return false;
}

/// One identifier of a named bit list into a new record that refers to the named bit.
bool parseNamedBit(ValueList& bits, TNodeRef type, Cause& cause) {
    if (!advance() || curCode() != TOK_VALUEID) {
        cause.set(tokenExpected(TOK_VALUEID));
        return false;
    }
    int32_t refMod = REF_UNRESOLVED;
    int32_t name = curToken().stri();
    readRec(type);
    if (!handleNamed(type, refMod, name)) return false;
    bits.append(curToken().line);
    setValNode(TYP_SYNONYM);
    vNode.refMod = refMod;
    vNode.ref = static_cast<uint32_t>(name);
    return true;
}

bool parseNamedBits(Cause& cause) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    ValueList bits;
    if (nextCode() == TOK_RBRACE) return advance();
    do {
        if (!parseNamedBit(bits, type, cause)) return false;
    } while (advance() && curCode() == TOK_COMMA);
    if (curCode() == TOK_RBRACE) return true;
    cause.set(tokenExpected(TOK_RBRACE));
    return false;
}

/// The type in the contents constraint `sub`, or in one of a series, becomes the current one.
bool readContentsOf(SubRef sub) {
    readRec(sub);
    if (subRec.subKind == SUB_CONTENTS)
        return subRec.left != 0 && readTypeSetting({sub.module, VNodeNr{subRec.left}});
    if (subRec.subKind != SUB_SERIAL) return false;
    for (const SubNr nr : chain(sub.module, SubNr{subRec.left}))
        if (readContentsOf({sub.module, nr})) return true;
    return false;
}

/// The same for the type that governs the current value, whose references may add constraints.
bool readContentsType() {
    const KeepRec<KIND_SUB> keep;
    ModuleRec* const module = refModule(valueModule(), signedWord(vNode.govTypeMod));
    if (module == nullptr || vNode.govType == 0) return false;
    readRec(module, TNodeNr{vNode.govType});
    for (size_t left = maxLinks; left != 0; --left) {
        const CurrentModule inModule(typeModule());
        const InstanceStack ofRecord(typeModule(), tNode.actParRec);
        if (isDeferred(tNode.constraint)) parseSubRec();
        const TNodeRef type = currentRec<KIND_TNODE>();
        if (tNode.constraint > 0 &&
            readContentsOf({type.module, SubNr{magnitude(tNode.constraint)}}))
            return true;
        readRec(type);
        if (!followTypeRef(true)) return false;
    }
    return false;
}

/// CONTAINING Value (X.680 (02/2021) 22.3, 23.3)
bool parseContainedValue(Cause& cause) {
    const VNodeRef self = currentRec<KIND_VNODE>();
    if (!readContentsType()) {
        cause.set(Msg::NoContentsConstraint);
        return false;
    }
    const TNodeRef contents = currentRec<KIND_TNODE>();
    if (!advance()) return false;
    makePending(self.module, self.nr);
    vNode.vflags |= VF_CONTENTS;
    ValueList content;
    content.append(curToken().line);
    readRec(contents);
    governByCurrentType();
    return parseValue();
}

} // namespace

bool parseBitStringValue(Cause& cause) {
    if (curCode() == TOK_CONTAINING && newNotation()) return parseContainedValue(cause);
    if (curCode() == TOK_BSTRING || curCode() == TOK_HSTRING) {
        setValNode(curCode() == TOK_BSTRING ? TYP_BITSTR : TYP_OCTSTR);
        const int32_t stri = curToken().stri();
        vNode.val.str.striLen = static_cast<uint16_t>(getStri(cMP, stri).size());
        vNode.val.str.stri = static_cast<uint32_t>(stri);
        return true;
    }
    if (tNode.namedVals == 0 || curCode() != TOK_LBRACE) return false;
    return parseNamedBits(cause);
}

namespace {

/// The identifier of a named element, the current type, and what stands behind it (X.680 (02/2021)
/// 26.3 and 28.3). Alone, or before `.` or `:`, a name begins the value.
bool parseElementName(int32_t& name, Cause& cause) {
    const std::string_view identifier = getStri(typeModule(), tNode.name);
    const int32_t behind = nextCode();
    const bool isValue = curCode() != TOK_VALUEID || behind == TOK_COMMA || behind == TOK_RBRACE ||
                         behind == TOK_DOT || behind == TOK_COLON;
    if (!isValue && curTokenText() == identifier) {
        name = curToken().stri();
        return advance();
    }
    if (!newNotation()) return true;
    if (!isValue && behind != TOK_LBRACE) {
        cause.set(Msg::InvalidComponentIdentifier, curTokenText());
        return false;
    }
    if (tolerate(Msg::UnnamedElementValue, curToken().line, identifier)) return true;
    cause.set(Msg::UnnamedElementValue, identifier);
    return false;
}

} // namespace

bool parseSeqValue(uint8_t kind, Cause& cause) {
    if (curCode() != TOK_LBRACE) return false;
    ModuleRec* const module = typeModule();
    const TNodeNr first{tNode.ref};
    const bool named = kind == TYP_SEQ || kind == TYP_SET;
    ValueList components;
    if (nextCode() == TOK_RBRACE) return advance();
    do {
        if (!advance()) return false;
        int32_t name = 0;
        if (named) {
            if (!readNamedComponent(kind, module, first, cause)) return false;
            name = curToken().stri();
            if (!advance()) return false;
        } else {
            readRec(module, first);
            if (tNode.name != 0 && !parseElementName(name, cause)) return false;
        }
        components.append(curToken().line);
        vNode.name = name;
        governByCurrentType();
        if (!parseValue()) return false;
    } while (advance() && curCode() == TOK_COMMA);
    if (curCode() == TOK_RBRACE) return true;
    cause.set(tokenExpected(TOK_RBRACE));
    return false;
}

bool parseChoiceValue(Cause& cause) {
    ModuleRec* const module = typeModule();
    const TNodeNr first{tNode.ref};
    ValueList alternatives;
    const VNodeNr alternative = alternatives.append(curToken().line);
    const bool braced = curCode() == TOK_LBRACE;
    if (braced && !advance()) return false;
    if (!readNamedComponent(TYP_CHOICE, module, first, cause)) return false;
    makePending(cMP, alternative);
    vNode.name = curToken().stri();
    governByCurrentType();
    if (!braced && (!advance() || curCode() != TOK_COLON)) {
        cause.set(tokenExpected(TOK_COLON));
        return false;
    }
    if (!advance() || !parseValue()) return false;
    if (!braced || (advance() && curCode() == TOK_RBRACE)) return true;
    cause.set(tokenExpected(TOK_RBRACE));
    return false;
}

bool parseAnyValue(Cause& cause) {
    ValueList content;
    const VNodeNr value = content.append(curToken().line);
    if (curCode() != TOK_MARKER) {
        cause.set(tokenExpected(TOK_TYPEID));
        return false;
    }
    readRec(cMP, TNodeNr{static_cast<uint32_t>(curToken().stri())});
    if (inp.formals != 0) static_cast<void>(expandType(TNodeNr{}));
    const TNodeRef type = currentRec<KIND_TNODE>();
    makePending(cMP, value);
    vNode.govTypeMod = REF_OWN;
    vNode.govType = type.nr.nr;
    parseTNode();
    if (!advance() || curCode() != TOK_COLON) {
        cause.set(tokenExpected(TOK_COLON));
        return false;
    }
    if (!advance()) return false;
    readRec(type);
    makePending(cMP, value);
    return parseValue();
}

// ---- object identifiers (X.680 (07/2002) clause 31) ---------------------------------------------

namespace {

/// A number, or a well-known name that was turned into one: its level becomes the role of the
/// record.
void parseNumberObjIdComp(const Token& token) {
    setValNode(TYP_INTEGER);
    setInteger(vNode.val, token, false);
    if (token.value.high >= 0) return;
    vNode.valStatus = static_cast<int32_t>(magnitude(token.value.high));
    vNode.val.number.high = 0;
}

/// `identifier (number or reference)`; the cursor stands on the identifier.
bool parseIdentifierObjIdComp(const Token& token, Cause& cause) {
    vNode.name = token.stri();
    if (!advanceTwice()) return false;
    if (curCode() == TOK_NUMBER) {
        setValNode(TYP_INTEGER);
        setInteger(vNode.val, curToken(), false);
    } else if (!definedValueFollows() || parseDefinedValue(false, cause) != Msg::None) {
        cause.set(Msg::DefinedValueSyntax);
        return false;
    }
    if (advance() && curCode() == TOK_RPAREN) return true;
    cause.set(tokenExpected(TOK_RPAREN));
    return false;
}

/// A component of RELATIVE-OID: well-known names stand below the root alone.
constexpr uint32_t withoutNames = 0;

/// The component at the cursor, the position-th of the value, into the current value record.
bool parseObjIdComp(uint32_t position, Cause& cause) {
    Token token = curToken();
    if (position != withoutNames)
        convertObjIdComp(cMP, token, nextCode(), position);
    else if (token.code == TOK_VALUEID && nextCode() == TOK_LPAREN)
        token.code = TOK_COMPONENTID;
    if (token.code == TOK_NUMBER) {
        parseNumberObjIdComp(token);
        return true;
    }
    if (token.code == TOK_COMPONENTID) return parseIdentifierObjIdComp(token, cause);
    if (!definedValueFollows()) return false;
    if (parseDefinedValue(false, cause) == Msg::None) return true;
    cause.set(Msg::DefinedValueSyntax);
    return false;
}

/// `{` Component {Component} `}`
bool parseArcs(bool hasNames, Cause& cause) {
    if (curCode() != TOK_LBRACE) return false;
    ValueList components;
    uint32_t position = 0;
    bool hasLetters = true; // arcs named by a letter: 0 0 a
    while (advance() && curCode() != TOK_RBRACE) {
        components.append(curToken().line);
        ++position;
        const bool named = hasNames && (position != 3 || hasLetters || !newNotation());
        if (!parseObjIdComp(named ? position : withoutNames, cause)) return false;
        hasLetters &= vNode.valCode != TYP_INTEGER || i64native(vNode.val.number) == 0;
    }
    return position != 0 && curCode() == TOK_RBRACE;
}

} // namespace

bool parseObjIdValue(Cause& cause) {
    return parseArcs(true, cause);
}

bool parseRelativeOidValue(Cause& cause) {
    return parseArcs(false, cause);
}

} // namespace orvo
