// Elements of sets: values and ranges, sizes, alphabets, contained subtypes, inner subtypes.

#include "lex/orvotok.h"
#include "parser/iso8824.h"
#include "solve/p5actpar.h"
#include "solve/solve_con_int.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_ref.h"
#include "solve/solve_val_int.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {

bool fail(Cause& cause, Msg code) {
    cause.set(code);
    return false;
}
bool fail(Cause& cause, Msg code, std::string_view text) {
    if (text.data() == nullptr)
        cause.set(code);
    else
        cause.set(code, text);
    return false;
}
bool failWith(Cause& cause, std::string_view text) {
    cause.text = text;
    cause.hasText = true;
    return false;
}
bool expectNext(int32_t code, Cause& cause, std::string_view text) {
    return (advance() && curCode() == code) || fail(cause, tokenExpected(code), text);
}

bool markerFollows() {
    return nextCode() == TOK_COMMA && codeAhead(2) == TOK_ELLIPSIS;
}

uint32_t lineHere() {
    const InstContext* instance = instContext();
    return instance != nullptr ? instance->line : curToken().line;
}

void readGovernor(SubNr nr) {
    readRec(cMP, nr);
    readRec(getModPtr(cMP, subRec.typeMod), TNodeNr{subRec.typeNr});
}

SubNr addOperand(SubNr nr) {
    readRec(cMP, nr);
    const uint32_t typeMod = subRec.typeMod;
    const TNodeNr type{subRec.typeNr};
    makePending(cMP, nr);
    subRec.left = nextRec<KIND_SUB>(cMP).nr;
    return addSubArc(typeMod, type, lineHere());
}

SubNr addSibling(SubNr last, uint32_t typeMod, TNodeNr type) {
    makePending(cMP, last);
    subRec.next = nextRec<KIND_SUB>(cMP).nr;
    return addSubArc(typeMod, type, lineHere());
}

void recordSubError(SubNr nr, Msg code, std::string_view detail) {
    readRec(cMP, nr);
    recordError2(code, {}, subRec.line, detail);
}

std::string_view currentTypeName() {
    if (tNode.name == 0) return {};
    return getStri(typeModule(), tNode.name);
}

bool parseValueSetting(VNodeNr& value, TNodeRef governor, Cause& cause) {
    const uint32_t module = handleImplImports(cMP, governor.module);
    value = addValArc(instContext(), curToken().line);
    if (!parseSettingPassOne(false, -1, module, governor.nr, cause)) return false;
    flushRecs(KIND_VNODE);
    const Restore cursor(inp);
    parseSettingPassTwo(value);
    return true;
}

bool parseTypeSetting(VNodeNr& value, TNodeRef governor, Cause& cause) {
    const uint32_t module = handleImplImports(cMP, governor.module);
    value = addValArc(instContext(), curToken().line);
    if (!parseSettingPassOne(true, 0, module, governor.nr, cause)) return false;
    flushRecs(KIND_VNODE);
    const Restore cursor(inp);
    parseSettingPassTwo(value);
    return true;
}

namespace {

constexpr std::string_view innerSubtypingText = "Invalid inner subtyping constraint";

/// What later editions added: times (X.680 (02/2021) 51.11 to 51.13), and another alphabet.
bool hasLaterValueRange(uint8_t kind) {
    return kind == TYP_UTF8STR || is(kind, TypeClass::Time);
}
bool hasValueRange(uint8_t kind) {
    if (hasLaterValueRange(kind)) return true;
    return kind == TYP_INTEGER || kind == TYP_REAL || kind == TYP_NUMSTR || kind == TYP_PRISTR ||
           kind == TYP_VISSTR || kind == TYP_IA5STR || kind == TYP_BMPSTR || kind == TYP_UNISTR;
}
bool hasSize(uint8_t kind) {
    return is(kind, TypeClass::LengthOption) || is(kind, TypeClass::Text);
}

/// lower [`<`] `..` [`<`] upper; `lower` is 0 for MIN, and the cursor stands on its last token.
bool parseNumberValueRange(SubNr nr, VNodeNr lower, TNodeRef governor, Cause& cause) {
    uint8_t flags = 0;
    if (nextCode() == TOK_LESS)
        static_cast<void>(advance());
    else
        flags |= SUBF_LOWER;
    if (!expectNext(TOK_RANGE, cause) || !advance()) return false;
    if (curCode() == TOK_LESS) {
        if (!advance()) return false;
    } else {
        flags |= SUBF_UPPER;
    }
    VNodeNr upper;
    if (curCode() != TOK_MAX && !parseValueSetting(upper, governor, cause)) return false;
    makePending(cMP, nr);
    subRec.subKind = SUB_RANGE;
    subRec.subFlags |= flags;
    subRec.left = lower.nr;
    subRec.right = upper.nr;
    return true;
}

/// Ranges of characters make alphabets: with notation of today they stand inside FROM alone (X.680
/// (02/2021) 51.4.1). The governor is current.
bool toleratesRange() {
    if (constraintState.inAlphabet || !newNotation() || !is(tNode.typeCode, TypeClass::Text))
        return true;
    return tolerate(Msg::RangeOfStrings, curToken().line, currentTypeName());
}

/// A value, or a range between two.
bool parseSingleValueOrValueRange(SubNr nr, TNodeRef governor, Cause& cause) {
    VNodeNr value;
    const bool isMin = curCode() == TOK_MIN;
    if (!isMin && !parseValueSetting(value, governor, cause))
        return failWith(cause, "Invalid single value/invalid value range");
    if (!isMin && nextCode() != TOK_LESS && nextCode() != TOK_RANGE) {
        makePending(cMP, nr);
        subRec.subKind = SUB_SINGLE_VALUE;
        subRec.left = value.nr;
        return true;
    }
    readRec(governor);
    if (!hasValueRange(tNode.typeCode) || !toleratesRange()) {
        recordSubError(nr, Msg::ValueRangeNotAllowed, currentTypeName());
        return false;
    }
    return parseNumberValueRange(nr, value, governor, cause);
}

/// `(` ElementSetSpec `)` behind SIZE or FROM.
bool parseParenthesized(SubNr nr, Cause& cause, std::string_view text) {
    if (!expectNext(TOK_LPAREN, cause, text)) return false;
    if (!advance() || !parseElemSetSpec(nr, cause)) return false;
    if (newNotation() && !parseOptionalException(nr, cause)) return false;
    return expectNext(TOK_RPAREN, cause, text);
}

bool parseSizeConstraint(SubNr nr, uint8_t kind, Cause& cause) {
    if (!hasSize(kind)) {
        recordSubError(nr, Msg::SizeConstraintNotAllowed);
        return false;
    }
    const TNodeNr size = addTypeArc(instContext(), curToken().line);
    setTypeNode(TYP_INTEGER);
    makePending(cMP, nr);
    subRec.subKind = SUB_SIZE;
    subRec.left = nextRec<KIND_SUB>(cMP).nr;
    const SubNr sizes = addSubArc(REF_OWN, size, lineHere());
    return parseParenthesized(sizes, cause, "Invalid size constraint");
}

bool parsePermittedAlphabet(SubNr nr, uint8_t kind, Cause& cause) {
    if (!is(kind, TypeClass::Text)) {
        recordSubError(nr, Msg::PermittedAlphabetNotAllowed);
        return false;
    }
    const SubNr alphabet = addOperand(nr);
    makePending(cMP, nr);
    subRec.subKind = SUB_PERMITTED_ALPHABET;
    const Restore<bool> inside(constraintState.inAlphabet, true);
    return parseParenthesized(alphabet, cause, "Invalid permitted alphabet constraint");
}

bool parseContainedSubtype(SubNr nr, TNodeRef governor, Cause& cause) {
    if (curCode() == TOK_INCLUDES && !advance()) return false;
    VNodeNr type;
    if (!parseTypeSetting(type, governor, cause))
        return failWith(cause, "Invalid contained subtype constraint/invalid object set");
    makePending(cMP, nr);
    subRec.subKind = SUB_CONTAINED_SUBTYPE;
    subRec.left = type.nr;
    return true;
}

/// `...` before a list, followed by a comma, makes it partial; without, the record is marked as
/// full. The cursor is stepped to the first entry or to `}`.
bool checkFullVsPartialSpec(SubNr nr, Cause& cause) {
    if (!advance()) return false;
    if (curCode() == TOK_ELLIPSIS) return expectNext(TOK_COMMA, cause) && advance();
    makePending(cMP, nr);
    subRec.subFlags |= SUBF_FULL;
    return true;
}

/// The identifier at the cursor names a component of the structure: its type becomes the current
/// one. Its name, 0 with the cause set when there is none.
uint32_t findConstrainedComp(uint8_t kind, TNodeRef structure, Cause& cause) {
    readRec(structure);
    const TNodeNr first{tNode.ref};
    const std::string identifier = identifierText();
    if (curCode() == TOK_VALUEID && findTypeCompId(kind, structure.module, first, identifier))
        return magnitude(curToken().stri());
    static_cast<void>(fail(cause, Msg::InvalidComponentIdentifier, identifier));
    return 0;
}

void presenceConstraint(SubNr nr) {
    const int32_t code = nextCode();
    if (code != TOK_PRESENT && code != TOK_ABSENT && code != TOK_OPTIONAL) return;
    static_cast<void>(advance());
    makePending(cMP, nr);
    subRec.subFlags |= code == TOK_PRESENT  ? SUBF_PRESENT
                       : code == TOK_ABSENT ? SUBF_ABSENT
                                            : SUBF_OPTIONAL;
}

/// identifier [Constraint] [PRESENT | ABSENT | OPTIONAL], behind the entry `last` (none: the first
/// one).
bool parseNamedConstraint(SubNr nr, SubNr& last, uint8_t kind, TNodeRef structure, Cause& cause) {
    const uint32_t name = findConstrainedComp(kind, structure, cause);
    if (name == 0) return false;
    const TNodeRef component = currentRec<KIND_TNODE>();
    const uint32_t module = handleImplImports(cMP, component.module);
    if (last) {
        last = addSibling(last, module, component.nr);
    } else {
        makePending(cMP, nr);
        subRec.left = nextRec<KIND_SUB>(cMP).nr;
        last = addSubArc(module, component.nr, lineHere());
    }
    subRec.subKind = SUB_EXCEPTION;
    if (nextCode() == TOK_LPAREN && (!advance() || !parseConstraint(last, cause))) return false;
    // An operator has taken the number over meanwhile: the name is the entry's, not an operand's.
    makePending(cMP, last);
    subRec.name = name;
    presenceConstraint(last);
    return true;
}

/// `{` [`...` `,`] NamedConstraint {`,` NamedConstraint} `}`; the cursor is before the `{`.
bool parseMultipleTypeConstr(SubNr nr, uint8_t kind, TNodeRef structure, Cause& cause) {
    if (!expectNext(TOK_LBRACE, cause) || !checkFullVsPartialSpec(nr, cause)) return false;
    readRec(cMP, nr);
    if (curCode() == TOK_RBRACE && (subRec.subFlags & SUBF_FULL) != 0) return true;
    SubNr last;
    for (;;) {
        if (!parseNamedConstraint(nr, last, kind, structure, cause)) return false;
        if (nextCode() != TOK_COMMA) return expectNext(TOK_RBRACE, cause);
        if (!advanceTwice()) return false;
    }
}

/// WITH COMPONENTS on a structure whose components are those of `structure`.
bool parseWithComponents(SubNr nr, TNodeRef structure, Cause& cause) {
    makePending(cMP, nr);
    subRec.subKind = SUB_WITH_COMPONENTS;
    if (!expectNext(TOK_COMPONENTS, cause, innerSubtypingText)) return false;
    readRec(structure);
    const uint8_t kind = tNode.typeCode;
    return parseMultipleTypeConstr(nr, kind, structure, cause);
}

/// WITH COMPONENT: one constraint on the elements of a list.
bool parseWithComponent(SubNr nr, TNodeRef list, Cause& cause) {
    makePending(cMP, nr);
    subRec.subKind = SUB_WITH_COMPONENT;
    if (!expectNext(TOK_COMPONENT, cause, innerSubtypingText) || !advance()) return false;
    readRec(list);
    const TNodeNr element{tNode.ref};
    makePending(cMP, nr);
    subRec.left = nextRec<KIND_SUB>(cMP).nr;
    return parseConstraint(addSubArc(handleImplImports(cMP, list.module), element, lineHere()),
                           cause);
}

bool parseInnerSubtyping(SubNr nr, TNodeRef governor, Cause& cause) {
    readRec(governor);
    // Components of REAL and INSTANCE OF have been restricted since 2002.
    const bool isOlder = !newNotation() && tNode.typeCode == TYP_INSTANCE_OF;
    if (!isOlder && readAssociatedType(cMP, tNode.typeCode))
        return parseWithComponents(nr, currentRec<KIND_TNODE>(), cause);
    switch (tNode.typeCode) {
    case TYP_SEQ:
    case TYP_SET:
    case TYP_CHOICE: return parseWithComponents(nr, governor, cause);
    case TYP_SEQOF:
    case TYP_SETOF: return parseWithComponent(nr, governor, cause);
    default: recordSubError(nr, Msg::InnerSubtypingNotAllowed); return false;
    }
}

/// A value of a character string kind behind the token at the cursor.
bool parseTextOfConstraint(SubNr nr, SubKind subKind, TypeCode kind, Cause& cause) {
    if (!advance()) return false;
    const TNodeNr type = addTypeArc(instContext(), curToken().line);
    setTypeNode(kind);
    flushRecs(KIND_TNODE);
    VNodeNr text;
    if (!parseValueSetting(text, {cMP, type}, cause)) return false;
    makePending(cMP, nr);
    subRec.subKind = subKind;
    subRec.left = text.nr;
    return true;
}

/// PATTERN value, a text of any characters (X.680 (02/2021) 51.9)
bool parsePattern(SubNr nr, uint8_t kind, Cause& cause) {
    if (!is(kind, TypeClass::Text)) {
        recordSubError(nr, Msg::PatternNotAllowed, currentTypeName());
        return false;
    }
    return parseTextOfConstraint(nr, SUB_PATTERN, TYP_UNISTR, cause);
}

/// SETTINGS cstring (X.680 (02/2021) 51.10)
bool parseSettings(SubNr nr, uint8_t kind, Cause& cause) {
    if (!is(kind, TypeClass::Time)) {
        recordSubError(nr, Msg::SettingsNotAllowed, currentTypeName());
        return false;
    }
    if (nextCode() != TOK_CSTRING) return fail(cause, tokenExpected(TOK_CSTRING));
    return parseTextOfConstraint(nr, SUB_SETTINGS, TYP_VISSTR, cause);
}

/// [`,`] `...` [`,` Elements]: an element behind the marker takes the record over.
bool parseExtendedElements(SubNr nr, Cause& cause) {
    if (curCode() == TOK_COMMA) static_cast<void>(advance());
    if (curCode() != TOK_ELLIPSIS) return fail(cause, tokenExpected(TOK_ELLIPSIS));
    makePending(cMP, nr);
    subRec.subKind = SUB_EXTENSION_MARKER;
    if (nextCode() != TOK_COMMA) return true;
    return advanceTwice() && parseElements(nr, cause);
}

/// `(` ElementSetSpec `)`
bool parseElemSetSpecWithinParen(SubNr nr, Cause& cause) {
    if (!advance() || !parseNestedSet(nr, cause)) return false;
    if (newNotation() && markerFollows()) return fail(cause, Msg::MisplacedMarker);
    return expectNext(TOK_RPAREN, cause, "Invalid \"ElementSetSpec\"");
}

/// A type begins at the cursor, not the selector of an open type value.
bool containedSubtypeFollows() {
    return curCode() == TOK_INCLUDES || curCode() == TOK_TYPEID ||
           (curCode() == TOK_MARKER && nextCode() != TOK_COLON);
}

/// A type begins at the cursor, one of those that the values of an open type may be of; a value
/// would begin with its type and a colon.
bool typeOfOpenTypeFollows() {
    return curCode() == TOK_TYPEID ||
           ((curCode() == TOK_MARKER || curCode() == TOK_NULL) && nextCode() != TOK_COLON);
}

} // namespace

bool parseElements(SubNr nr, Cause& cause) {
    // All recursion over a text leads here.
    const Depth depth(constraintState.depth, maxNesting);
    if (depth.tooDeep()) return false;
    if (curCode() == TOK_LPAREN) return parseElemSetSpecWithinParen(nr, cause);
    readGovernor(nr);
    if (findActType()) skipTypes(true);
    const TNodeRef governor = currentRec<KIND_TNODE>();
    const uint8_t kind = tNode.typeCode;
    if (is(kind, TypeClass::Reference)) {
        meetsUnreadType();
        recordSubError(nr, Msg::InvalidGoverningTypeClass, currentTypeName());
        return false;
    }
    if (kind == TYP_OPEN && newNotation() && typeOfOpenTypeFollows()) {
        readGovernor(nr);
        skipTypes(false);
        return parseOpenTypeConstraint(nr, cause);
    }
    if (containedSubtypeFollows()) return parseContainedSubtype(nr, governor, cause);
    switch (curCode()) {
    case TOK_SIZE: return parseSizeConstraint(nr, kind, cause);
    case TOK_FROM: return parsePermittedAlphabet(nr, kind, cause);
    case TOK_WITH: return parseInnerSubtyping(nr, governor, cause);
    case TOK_PATTERN: return parsePattern(nr, kind, cause);
    case TOK_SETTINGS: return parseSettings(nr, kind, cause);
    case TOK_ELLIPSIS:
    case TOK_COMMA:
        if (newNotation()) return fail(cause, Msg::MisplacedMarker);
        return parseExtendedElements(nr, cause);
    case TOK_CONTAINING:
    case TOK_ENCODED:
    case TOK_CONSTRAINED:
        if (newNotation()) return fail(cause, Msg::ConstraintStandsAlone, tokenName(curCode()));
        [[fallthrough]];
    default: return parseSingleValueOrValueRange(nr, governor, cause);
    }
}

} // namespace orvo
