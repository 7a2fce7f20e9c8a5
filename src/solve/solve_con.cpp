// Constraint notation: the entry, serial constraints, set arithmetic (X.680 (07/2002) clauses 45
// and 46, where operators of different kinds need parentheses; X.680 (02/2021) clause 50, where
// they have precedence).
//
// An operator is seen only behind its first operand. The record that was the operand then becomes
// the operator and keeps its number, which the type or the enclosing operator already holds, and
// the operand moves to a fresh number (addAndSwap).

#include "solve/solve_con.h"

#include <optional>
#include <string>
#include <string_view>

#include "solve/p5actpar.h"
#include "solve/solve_con_int.h"
#include "solve/solve_cur.h"
#include "solve/solve_ref.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "util/guard.h"

namespace orvo {

ConstraintState constraintState;

namespace {

bool parseValueSet(SubNr nr, Cause& cause) {
    if (!advance() || !parseElemSetSpec(nr, cause)) return false;
    return expectNext(TOK_RBRACE, cause);
}

/// SIZE without enclosing parentheses, as the 1990 notation writes it before OF.
bool parseOldSizeConstraint(SubNr nr, Cause& cause) {
    return parseElements(nr, cause);
}

/// {Constraint}: more than one make a series.
bool parseConstraints(SubNr nr, Cause& cause) {
    if (!parseConstraint(nr, cause)) return false;
    SubNr last;
    while (!atLastToken()) {
        static_cast<void>(advance());
        if (!last) last = addAndSwap(nr, SUB_SERIAL);
        readRec(cMP, last);
        last = addSibling(last, subRec.typeMod, TNodeNr{subRec.typeNr});
        if (!parseConstraint(last, cause)) return false;
    }
    return true;
}

bool parseRoot(SubNr root, Msg& outer, Cause& cause) {
    if (curCode() == TOK_LBRACE) {
        outer = Msg::ElementSetSpecIsInvalid;
        return parseValueSet(root, cause);
    }
    if (curCode() == TOK_SIZE) {
        outer = Msg::InvalidSizeConstraint;
        return parseOldSizeConstraint(root, cause);
    }
    if (curCode() == TOK_EXCLAMATION) { // behind the marker of a component list
        outer = Msg::InvalidExceptionValue;
        return parseExceptionSpec(root, true, cause);
    }
    if (newNotation() && curCode() != TOK_LPAREN) { // a set whose braces are missing
        outer = Msg::ElementSetSpecIsInvalid;
        return parseElemSetSpec(root, cause);
    }
    outer = Msg::InvalidConstraint;
    return parseConstraints(root, cause);
}

} // namespace

void parseSubRec() {
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (!isDeferred(tNode.constraint)) return;
    const OwnNotation ownText;
    SnapShot trial(type);
    ReplayCursor replay(type.module, deferredText(tNode.constraint));
    // Only the nesting of one text counts, as with values.
    const Restore<ConstraintState> ownState(constraintState, {});
    const uint32_t line = lineHere();
    const SubNr root = addSubArc(REF_OWN, type.nr, line);
    makePending(type.module, type.nr);
    tNode.constraint = static_cast<int32_t>(root.nr);
    writeRec(type);
    Cause cause;
    Msg outer = Msg::None;
    if (parseRoot(root, outer, cause)) {
        trial.keep();
        readRec(type);
        return;
    }
    readRec(type);
    recordError2(outer, cause, line);
    trial.restore();
    makePending(type.module, type.nr);
    tNode.constraint = 0;
    writeRec(type);
}

namespace {

/// The exception behind the marker of an enumeration, the current value.
void parseMarkerException() {
    const VNodeRef marker = currentRec<KIND_VNODE>();
    const uint32_t line = vNode.line;
    SnapShot trial(marker);
    const ReplayCursor replay(marker.module, deferredText(vNode));
    Cause cause;
    VNodeNr value;
    const bool ok = parseExceptionValue(value, cause);
    if (ok)
        trial.keep();
    else
        recordError2(Msg::InvalidExceptionValue, cause, line);
    if (!ok) trial.restore();
    makePending(marker.module, marker.nr);
    vNode.refMod = REF_UNRESOLVED;
    vNode.ref = ok ? value.nr : 0;
    writeRec(marker);
}

} // namespace

void parseEnumException() {
    const TNodeRef type = currentRec<KIND_TNODE>();
    const KeepRec<KIND_VNODE> keep;
    for ([[maybe_unused]] const VNodeNr item : chain(type.module, VNodeNr{tNode.namedVals})) {
        if (vNode.refMod != REF_DEFERRED) continue;
        parseMarkerException();
        break; // there is one marker
    }
    readRec(type);
}

namespace {

bool isIntersectionMark(int32_t code) {
    return code == TOK_INTERSECTION || code == TOK_CARET;
}
bool isUnionMark(int32_t code) {
    return code == TOK_UNION || code == TOK_BAR || code == TOK_COMMA;
}

/// No operator follows the constraint, which is no element of a set.
bool standsAlone(std::string_view name, Cause& cause) {
    const int32_t code = nextCode();
    return (code != TOK_EXCEPT && !isIntersectionMark(code) && !isUnionMark(code)) ||
           fail(cause, Msg::ConstraintStandsAlone, name);
}

/// Elements of an object set begin at the cursor, not those of a set of values, which constrain a
/// field of a class or INSTANCE OF as the type that it stands for (X.681 (02/2021) 14).
bool objectSetFollows() {
    if (curCode() != TOK_LBRACE) return false;
    switch (nextCode()) {
    case TOK_VALUEID:
        switch (codeAhead(2)) {
        case TOK_RBRACE:
        case TOK_LBRACE: // of a parameterized object
        case TOK_DOT:
        case TOK_COMMA:
        case TOK_BAR:
        case TOK_UNION:
        case TOK_CARET:
        case TOK_INTERSECTION:
        case TOK_EXCEPT: return true;
        default: return false;
        }
    case TOK_NUMBER:
    case TOK_MINUS:
    case TOK_RBRACE: return false;
    default: return true;
    }
}

/// The contents of a constraint by the type it restricts.
bool parseConstraintSpec(SubNr nr, Cause& cause) {
    if (curCode() == TOK_CONSTRAINED) return parseUserDefConstr(nr, cause);
    if (newNotation() && (curCode() == TOK_CONTAINING || curCode() == TOK_ENCODED))
        return parseContents(nr, cause) && standsAlone("CONTAINING", cause);
    if (curCode() == TOK_CONTAINING) return parseContentsConstraint(nr, cause);
    readGovernor(nr);
    if (findActType()) skipTypes(false);
    // Information from an object that is still there leads nowhere: no table, but an error.
    const bool isField = tNode.typeCode == TYP_FIELDLIST && tNode.refMod != REF_OBJECT;
    if (!isField && tNode.typeCode != TYP_INSTANCE_OF) return parseElemSetSpec(nr, cause);
    if (newNotation() && !objectSetFollows()) return parseElemSetSpec(nr, cause);
    if (isOpenTypeConstraint()) return parseOpenTypeConstraint(nr, cause);
    return parseTableConstr(nr, cause);
}

} // namespace

/// `(` ConstraintSpec [`!` ExceptionValue] `)`
bool parseConstraint(SubNr nr, Cause& cause) {
    if (curCode() != TOK_LPAREN)
        return fail(cause, tokenExpected(TOK_LPAREN), "Invalid beginning of a constraint");
    if (!advance()) return false;
    if (curCode() == TOK_EXCLAMATION) {
        return parseExceptionSpec(nr, true, cause) &&
               expectNext(TOK_RPAREN, cause, "Invalid exception specification");
    }
    if (!parseConstraintSpec(nr, cause)) return false;
    if (!parseOptionalException(nr, cause)) return false;
    return expectNext(TOK_RPAREN, cause, "Missing end of constraint");
}

namespace {

/// ALL EXCEPT Elements
bool parseAllExcept(SubNr nr, Cause& cause) {
    if (!expectNext(TOK_EXCEPT, cause) || !advance()) return false;
    const SubNr excluded = addOperand(nr);
    makePending(cMP, nr);
    subRec.subKind = SUB_ALL_EXCEPT;
    return parseElements(excluded, cause);
}

/// Makes `nr` an operator over what it held; gives the governing type of its operands too.
struct Operator {
    SubNr last;
    uint32_t typeMod = 0;
    TNodeNr type;
};
Operator makeOperator(SubNr nr, SubKind kind) {
    Operator op;
    op.last = addAndSwap(nr, kind);
    readRec(cMP, op.last);
    op.typeMod = subRec.typeMod;
    op.type = TNodeNr{subRec.typeNr};
    return op;
}
SubNr addNext(Operator& op) {
    return op.last = addSibling(op.last, op.typeMod, op.type);
}

/// Elements EXCEPT Elements; the first one is parsed.
bool parseExcept(SubNr nr, Cause& cause) {
    Operator op = makeOperator(nr, SUB_EXCEPT);
    return advanceTwice() && parseElements(addNext(op), cause);
}

/// Elements {(`^` | INTERSECTION) Elements}; the first one is parsed.
bool parseIntersection(SubNr nr, Cause& cause) {
    Operator op = makeOperator(nr, SUB_INTERSECTION);
    while (isIntersectionMark(nextCode()))
        if (!advanceTwice() || !parseElements(addNext(op), cause)) return false;
    return true;
}

/// Examines the separator behind the token at the cursor and passes it. `marker`: an extension
/// marker stands there; `ends`: nothing of the set follows it.
bool parseUnionSeparator(bool& marker, bool& ends, Cause& cause) {
    const bool afterMarker = curCode() == TOK_ELLIPSIS;
    static_cast<void>(advance());
    const int32_t separator = curCode();
    const bool beforeMarker = nextCode() == TOK_ELLIPSIS;
    if (separator == TOK_COMMA && !beforeMarker && !afterMarker)
        return fail(cause, tokenExpected(TOK_ELLIPSIS),
                    "In sets a comma is allowed only before an extension marker");
    if (afterMarker && separator != TOK_COMMA)
        return fail(cause, tokenExpected(TOK_COMMA),
                    "In sets a comma is expected after an extension marker");
    if (beforeMarker && separator != TOK_COMMA)
        return fail(cause, tokenExpected(TOK_COMMA),
                    "In sets a comma is expected before an extension marker");
    if (!advance()) return false;
    marker = beforeMarker;
    ends = beforeMarker && nextCode() != TOK_COMMA;
    return true;
}

/// Elements {separator (Elements | `...`)}; the first one is parsed.
bool parseUnion(SubNr nr, Cause& cause) {
    Operator op = makeOperator(nr, SUB_UNION);
    while (isUnionMark(nextCode())) {
        bool marker = false;
        bool ends = false;
        if (!parseUnionSeparator(marker, ends, cause)) return false;
        if (marker) {
            addNext(op);
            subRec.subKind = SUB_EXTENSION_MARKER;
        }
        if (ends) return true;
        if (!parseElements(addNext(op), cause)) return false;
    }
    return true;
}

} // namespace

// ---- with precedence ----------------------------------------------------------------------------
// A set is flat: its union holds the operands, the extension marker and the additions.

namespace {

/// Elements [EXCEPT Elements]
bool parseIntersectionElements(SubNr nr, Cause& cause) {
    if (curCode() == TOK_ALL) return fail(cause, Msg::AllExceptIsNoOperand);
    if (!parseElements(nr, cause)) return false;
    if (nextCode() != TOK_EXCEPT) return true;
    if (!parseExcept(nr, cause)) return false;
    return nextCode() != TOK_EXCEPT || fail(cause, Msg::SecondExcept);
}

/// IntersectionElements {(`^` | INTERSECTION) IntersectionElements}
bool parseIntersections(SubNr nr, Cause& cause) {
    if (!parseIntersectionElements(nr, cause)) return false;
    if (!isIntersectionMark(nextCode())) return true;
    Operator op = makeOperator(nr, SUB_INTERSECTION);
    while (isIntersectionMark(nextCode())) {
        if (!advanceTwice() || !parseIntersectionElements(addNext(op), cause)) return false;
    }
    return true;
}

/// Intersections {(`|` | UNION) Intersections}, the first of which goes into `nr`. `op`, once it is
/// there, is the union that all of them stand in.
bool parseUnions(SubNr nr, std::optional<Operator>& op, Cause& cause) {
    SubNr operand = nr;
    for (;;) {
        if (!parseIntersections(operand, cause)) return false;
        if (nextCode() != TOK_BAR && nextCode() != TOK_UNION) return true;
        if (!op) op = makeOperator(nr, SUB_UNION);
        if (!advanceTwice()) return false;
        if (curCode() == TOK_ELLIPSIS)
            return fail(cause, tokenExpected(TOK_COMMA),
                        "In sets a comma is expected before an extension marker");
        operand = addNext(*op);
    }
}

/// Unions | ALL EXCEPT Elements
bool parseElementSetSpec(SubNr nr, std::optional<Operator>& op, Cause& cause) {
    if (curCode() != TOK_ALL) return parseUnions(nr, op, cause);
    if (!parseAllExcept(nr, cause)) return false;
    const int32_t behind = nextCode();
    const bool isOperand = behind == TOK_EXCEPT || isIntersectionMark(behind) ||
                           (isUnionMark(behind) && behind != TOK_COMMA);
    return !isOperand || fail(cause, Msg::AllExceptIsNoOperand);
}

/// The set begins with the marker: a set of objects may.
bool mayBeginWithMarker(SubNr nr, Cause& cause) {
    readGovernor(nr);
    const std::string name(currentTypeName());
    if (findActType()) skipTypes(true);
    if (meetsUnreadType()) return false;
    return isClassCode(tNode.typeCode) || tolerate(Msg::MarkerBeginsSet, curToken().line, name) ||
           fail(cause, Msg::MarkerBeginsSet, name);
}

/// [`,` AdditionalElementSetSpec] behind the marker at the cursor.
bool parseAdditions(std::optional<Operator>& op, SubNr nr, Cause& cause) {
    if (isUnionMark(nextCode()) && nextCode() != TOK_COMMA)
        return fail(cause, tokenExpected(TOK_COMMA),
                    "In sets a comma is expected after an extension marker");
    if (nextCode() != TOK_COMMA) return true;
    if (!op) op = makeOperator(nr, SUB_UNION);
    if (!advanceTwice() || !parseElementSetSpec(addNext(*op), op, cause)) return false;
    return !markerFollows() || fail(cause, Msg::MisplacedMarker);
}

/// RootElementSetSpec [`,` `...` [`,` AdditionalElementSetSpec]], for objects without a root too
/// (X.681 (02/2021) 12.3)
bool parseElementSetSpecs(SubNr nr, Cause& cause) {
    std::optional<Operator> op;
    if (curCode() == TOK_ELLIPSIS) {
        if (!mayBeginWithMarker(nr, cause)) return false;
        makePending(cMP, nr);
        subRec.subKind = SUB_EXTENSION_MARKER;
        return parseAdditions(op, nr, cause);
    }
    if (!parseElementSetSpec(nr, op, cause)) return false;
    if (nextCode() != TOK_COMMA) return true;
    static_cast<void>(advance());
    if (!advance() || curCode() != TOK_ELLIPSIS)
        return fail(cause, tokenExpected(TOK_ELLIPSIS),
                    "In sets a comma is allowed only before an extension marker");
    if (!op) op = makeOperator(nr, SUB_UNION);
    addNext(*op);
    subRec.subKind = SUB_EXTENSION_MARKER;
    return parseAdditions(op, nr, cause);
}

} // namespace

bool parseNestedSet(SubNr nr, Cause& cause) {
    if (!newNotation()) return parseElemSetSpec(nr, cause);
    std::optional<Operator> op;
    return parseElementSetSpec(nr, op, cause);
}

/// ALL EXCEPT Elements, or elements joined by operators of one kind.
bool parseElemSetSpec(SubNr nr, Cause& cause) {
    if (newNotation()) return parseElementSetSpecs(nr, cause);
    if (curCode() == TOK_ALL) return parseAllExcept(nr, cause);
    if (!parseElements(nr, cause)) return false;
    if (nextCode() == TOK_EXCEPT) return parseExcept(nr, cause);
    if (isUnionMark(nextCode())) return parseUnion(nr, cause);
    if (isIntersectionMark(nextCode())) return parseIntersection(nr, cause);
    return true;
}

} // namespace orvo
