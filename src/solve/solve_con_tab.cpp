// Table constraints, open type constraints, exception specifications, user-defined and contents
// constraints (X.682 clauses 9 to 11, X.680 clause 49).

#include <climits>
#include <string>

#include "solve/solve_con_int.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_ref.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {

/// `!` value of INTEGER, or `!` Type `:` value; the cursor stands on the `!`. `alone`: the record
/// holds nothing else.
bool parseExceptionSpec(SubNr nr, bool alone, Cause& cause) {
    makePending(cMP, nr);
    if (alone) subRec.subKind = SUB_EXCEPTION;
    subRec.subFlags |= SUBF_EXCEPTION;
    VNodeNr value;
    if (!parseExceptionValue(value, cause)) return false;
    makePending(cMP, nr);
    subRec.third = value.nr;
    return true;
}

bool parseExceptionValue(VNodeNr& value, Cause& cause) {
    if (!advance()) return false;
    const TNodeNr type = addTypeArc(instContext(), curToken().line);
    setTypeNode(curCode() == TOK_MARKER ? TYP_OPEN : TYP_INTEGER);
    flushRecs(KIND_TNODE);
    return parseValueSetting(value, {cMP, type}, cause);
}

/// [`!` ExceptionValue] behind the constraint `nr`.
bool parseOptionalException(SubNr nr, Cause& cause) {
    if (nextCode() != TOK_EXCLAMATION) return true;
    static_cast<void>(advance());
    return parseExceptionSpec(nr, false, cause) ||
           failWith(cause, "Invalid exception specification");
}

namespace {

constexpr std::string_view userDefinedText = "Invalid \"UserDefinedConstraint\"";
constexpr std::string_view parameterText =
    "Invalid \"ActualParameter\" in \"UserDefinedConstraint\"";

/// A colon ends the governor that begins at the cursor.
bool governorFollows() {
    return nextCode() == TOK_COLON;
}

/// Second step of the setting in a value record just parsed.
void finishSetting(VNodeNr value) {
    flushRecs(KIND_VNODE);
    const Restore cursor(inp);
    parseSettingPassTwo(value);
}

/// Governor `:` value or value set, into the value record of the parameter.
bool parseGovernedParameter(VNodeNr parameter, Cause& cause) {
    if (!parseType(cause))
        return failWith(cause, "Invalid \"Governor\" in \"UserDefinedConstraint\"");
    finishSetting(parameter);
    readRec(cMP, parameter);
    const TNodeNr governor{vNode.ref};
    if (!expectNext(TOK_COLON, cause, userDefinedText)) return false;
    if (!advance() || (curCode() != TOK_LBRACE && curCode() != TOK_VALUEID))
        return fail(cause, Msg::TypeidOrValueidExpected, parameterText);
    const bool isSet = curCode() == TOK_LBRACE;
    makePending(cMP, parameter);
    vNode.valCode = TYP_NONE;
    vNode.refMod = REF_UNRESOLVED;
    vNode.ref = 0;
    if (!parseSettingPassOne(false, isSet ? 1 : -1, REF_OWN, governor, cause)) return false;
    finishSetting(parameter);
    return true;
}

bool parseUserDefParameter(VNodeNr parameter, Cause& cause) {
    if (governorFollows()) return parseGovernedParameter(parameter, cause);
    if (curCode() != TOK_TYPEID && curCode() != TOK_MARKER)
        return fail(cause, tokenExpected(TOK_TYPEID), parameterText);
    if (!parseType(cause)) return failWith(cause, parameterText);
    finishSetting(parameter);
    return true;
}

} // namespace

/// CONSTRAINED BY `{` [parameter {`,` parameter}] `}`
bool parseUserDefConstr(SubNr nr, Cause& cause) {
    makePending(cMP, nr);
    subRec.subKind = SUB_USER_DEFINED;
    if (!expectNext(TOK_BY, cause, userDefinedText) ||
        !expectNext(TOK_LBRACE, cause, userDefinedText))
        return false;
    if (nextCode() == TOK_RBRACE) return advance();
    VNodeNr last;
    do {
        if (!advance()) return false;
        const uint32_t number = nextRec<KIND_VNODE>(cMP).nr;
        if (last) {
            makePending(cMP, last);
            vNode.next = number;
        } else {
            makePending(cMP, nr);
            subRec.left = number;
        }
        last = addValArc(instContext(), curToken().line);
        if (!parseUserDefParameter(last, cause)) return false;
    } while (advance() && curCode() == TOK_COMMA);
    return curCode() == TOK_RBRACE || fail(cause, tokenExpected(TOK_RBRACE), parameterText);
}

/// CONTAINING Type in the notation of 1994: only its presence is kept.
bool parseContentsConstraint(SubNr nr, Cause& cause) {
    makePending(cMP, nr);
    subRec.subKind = SUB_CONTENTS;
    if (!advance() || (curCode() != TOK_TYPEID && curCode() != TOK_MARKER))
        return fail(cause, tokenExpected(TOK_TYPEID), "Invalid \"Contents constraint\"");
    uint32_t actuals = 0;
    return nextCode() != TOK_LBRACE || (advance() && deferBraces(actuals));
}

namespace {

constexpr std::string_view contentsText = "Invalid \"Contents constraint\"";

/// The strings that may hold an encoding: those whose bits have no meaning of their own (X.682
/// (02/2021) 11).
bool mayHaveContents(SubNr nr) {
    readGovernor(nr);
    if (findActType()) skipTypes(true);
    meetsUnreadType();
    return tNode.typeCode == TYP_OCTSTR || (tNode.typeCode == TYP_BITSTR && tNode.namedVals == 0);
}

/// ENCODED BY value; the cursor is on ENCODED.
bool parseEncodedBy(SubNr nr, Cause& cause) {
    if (!expectNext(TOK_BY, cause, contentsText) || !advance()) return false;
    const TNodeNr objectId = addTypeArc(instContext(), curToken().line);
    setTypeNode(TYP_OBJID);
    flushRecs(KIND_TNODE);
    VNodeNr rules;
    if (!parseValueSetting(rules, {cMP, objectId}, cause)) return failWith(cause, contentsText);
    makePending(cMP, nr);
    subRec.right = rules.nr;
    return true;
}

} // namespace

/// CONTAINING Type [ENCODED BY value] | ENCODED BY value (X.682 (02/2021) 11)
bool parseContents(SubNr nr, Cause& cause) {
    if (!mayHaveContents(nr)) {
        recordSubError(nr, Msg::ContentsNotAllowed, currentTypeName());
        return false;
    }
    const TNodeRef governor = currentRec<KIND_TNODE>();
    makePending(cMP, nr);
    subRec.subKind = SUB_CONTENTS;
    if (curCode() == TOK_ENCODED) return parseEncodedBy(nr, cause);
    if (!advance()) return false;
    VNodeNr type;
    if (!parseTypeSetting(type, governor, cause)) {
        return cause.code != Msg::None ? failWith(cause, contentsText)
                                       : fail(cause, tokenExpected(TOK_TYPEID), contentsText);
    }
    makePending(cMP, nr);
    subRec.left = type.nr;
    return nextCode() != TOK_ENCODED || (advance() && parseEncodedBy(nr, cause));
}

namespace {

constexpr std::string_view relationText = "Invalid component relation constraint";

/// Appends an entry to the list that begins with `first`; it is pending.
void addAtEntry(SNodeNr& first, int32_t token, int32_t value) {
    if (first) sNode.next = static_cast<int32_t>(nextRec<KIND_SNODE>(cMP).nr);
    const SNodeNr entry = addSyntaxArc(lineHere());
    if (!first) first = entry;
    sNode.token = static_cast<uint8_t>(token);
    sNode.value = value;
}

/// identifier or number, stored as the negated string number of its text.
bool parseAtStep(SNodeNr& first, Cause& cause) {
    if (curCode() == TOK_VALUEID) {
        addAtEntry(first, TOK_VALUEID, curToken().stri());
        return true;
    }
    const int64_t number = curCode() == TOK_NUMBER ? i64native(curToken().value) : 0;
    if (number <= 0 || number >= INT_MAX)
        return fail(cause, invalidConstraint(SUBNAME_COMPONENT_RELATION));
    addAtEntry(first, TOK_NUMBER, minus(putStri(cMP, std::to_string(number)).nr));
    return true;
}

/// Dots that the token behind the cursor is made of.
int dotsBehind() {
    switch (nextCode()) {
    case TOK_DOT: return 1;
    case TOK_RANGE: return newNotation() ? 2 : 0;
    case TOK_ELLIPSIS: return newNotation() ? 3 : 0;
    default: return 0;
    }
}

/// The level: a dot for the innermost structure around the component, one more for each structure
/// further out (X.682 (02/2021) 10).
void parseLevel(SNodeNr& first) {
    do {
        const int dots = dotsBehind();
        if (dots != 0) static_cast<void>(advance());
        for (int dot = 0; dot < dots; ++dot) addAtEntry(first, TOK_DOT, 0);
    } while (newNotation() && dotsBehind() != 0);
}

/// `@` [Level] step {`.` step}; the cursor is on the token that should be the `@`.
bool parseAtNotation(SNodeNr& first, Cause& cause) {
    if (curCode() != TOK_AT) return fail(cause, tokenExpected(TOK_AT), relationText);
    addAtEntry(first, TOK_AT, 0);
    parseLevel(first);
    for (;;) {
        if (!advance() || !parseAtStep(first, cause)) return false;
        if (nextCode() != TOK_DOT) return true;
        static_cast<void>(advance());
    }
}

/// `{` AtNotation {`,` AtNotation} `}`; the cursor is on the `{`.
bool parseComponentRelation(SNodeNr& first, Cause& cause) {
    do {
        if (!advance()) return false;
        if (!parseAtNotation(first, cause)) return false;
    } while (advance() && curCode() == TOK_COMMA);
    flushRecs(KIND_SNODE);
    return curCode() == TOK_RBRACE || fail(cause, tokenExpected(TOK_RBRACE), relationText);
}

} // namespace

/// `{` DefinedObjectSet `}` [`{` AtNotation {`,` AtNotation} `}`]; the constrained field type or
/// INSTANCE OF is in `tNode`.
bool parseTableConstr(SubNr nr, Cause& cause) {
    const uint32_t module = handleImplImports(cMP, typeModule());
    const TNodeNr classNode{tNode.ref};
    makePending(cMP, nr);
    subRec.subKind = SUB_TABLE;
    const VNodeNr set = addValArc(instContext(), curToken().line);
    subRec.left = set.nr;
    if (!parseSettingPassOne(false, 1, module, classNode, cause))
        return failWith(cause, "Invalid \"DefinedObjectSet\" in table constraint");
    finishSetting(set);
    if (nextCode() != TOK_LBRACE) return true;
    static_cast<void>(advance());
    SNodeNr relation;
    if (!parseComponentRelation(relation, cause)) return false;
    makePending(cMP, nr);
    subRec.right = minusWord(relation.nr);
    return true;
}

/// The field type in `tNode` stands for an open type, and what follows is no object set.
bool isOpenTypeConstraint() {
    return curCode() != TOK_LBRACE && isOpenObjClassFieldTypeTNode();
}

bool parseOpenTypeConstraint(SubNr nr, Cause& cause) {
    const TNodeRef field = currentRec<KIND_TNODE>();
    VNodeNr type;
    if (!parseTypeSetting(type, field, cause))
        return failWith(cause, "Invalid open type constraint");
    makePending(cMP, nr);
    subRec.subKind = SUB_OPEN_TYPE;
    subRec.left = type.nr;
    return true;
}

} // namespace orvo
