// Value notation: replay of deferred values, dispatch by the kind of the governing type, references
// and numbers.
//
// The value being parsed is always the pending record of its kind, so that what the parsers set in
// the buffer reaches the store before another value record takes the buffer. A parser that creates
// further value records reads its own one back before it returns.

#include "solve/solve_val.h"

#include "check/orvonum.h"
#include "diag/orvoerr_fatal.h"
#include "parser/iso8824.h"
#include "solve/p5actpar.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_ref.h"
#include "solve/solve_stx.h"
#include "solve/solve_val_int.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {

namespace {

/// The value becomes a reference that leads nowhere.
void makeUnresolved(VNodeRef value) {
    makePending(value.module, value.nr);
    vNode.valCode = TYP_SYNONYM;
    vNode.refMod = refNowhere();
    vNode.ref = 0;
    vNode.deferred = 0;
    writeRec(value);
}

/// Reads the class or type of the built-in module that a kind stands for into `tNode`.
void readBuiltinType(uint8_t kind) {
    readRec(run.iso8824MP, TNodeNr{kind});
    skipTypes(false);
}

Msg parseStructured(uint8_t kind, Cause& cause) {
    if (!readAssociatedType(cMP, kind))
        return parseSeqValue(kind, cause) ? Msg::None : valueSyntax(kind);
    return parseSeqValue(tNode.typeCode, cause) ? Msg::None : valueSyntax(kind);
}

Msg parseObject(uint8_t kind, Cause& cause) {
    if (kind == TYP_CLASS && tNode.syntaxList == 0)
        return parseDefaultStx(cause) ? Msg::None : valueSyntax(kind);
    if (kind != TYP_CLASS) readBuiltinType(kind);
    return parseDefinedStx(cause) ? Msg::None : valueSyntax(kind);
}

bool parseBoolean() {
    vNode.val.boole = curCode() == TOK_TRUE ? 1 : 0;
    return curCode() == TOK_TRUE || curCode() == TOK_FALSE;
}

} // namespace

ValueState valueState;

bool definedValueFollows() {
    return curCode() == TOK_MODULEID || (curCode() == TOK_VALUEID && nextCode() != TOK_COLON);
}

void parseVNode() {
    if (vNode.refMod != REF_DEFERRED) return;
    const VNodeRef self = currentRec<KIND_VNODE>();
    const OwnNotation ownText;
    SnapShot trial(self);
    ReplayCursor replay(self.module, deferredText(vNode));
    // Only the nesting of one text counts: a value parsed on demand is not nested in its user.
    const Restore<uint32_t> ownDepth(valueState.depth, 0);
    makePending(self.module, self.nr);
    vNode.refMod = REF_UNRESOLVED;
    vNode.ref = 0;
    if (parseValue()) {
        trial.keep();
    } else {
        trial.restore();
        makeUnresolved(self);
    }
    readRec(self);
}

bool parseValue() {
    const VNodeRef self = currentRec<KIND_VNODE>();
    const uint32_t line = vNode.line;
    KeepRec<KIND_TNODE> keepGovernor;
    makePending(self.module, self.nr);
    Depth depth(valueState.depth, maxValueDepth);
    Cause cause;
    std::string_view detail;
    Msg code = Msg::None;
    if (findActType()) skipTypes(true);
    readRec(self);
    if (is(tNode.typeCode, TypeClass::Reference)) {
        meetsUnreadType();
        code = Msg::InvalidGoverningTypeClass;
        if (vNode.name != 0) detail = getStri(self.module, vNode.name);
    } else if (depth.tooDeep()) {
        code = valueSyntax(tNode.typeCode);
    } else {
        makePending(self.module, self.nr);
        code = definedValueFollows() ? parseDefinedValue(true, cause) : parseBuiltinValue(cause);
    }
    readRec(self);
    if (code == Msg::None) return true;
    recordError2(code, cause, line, detail);
    return false;
}

Msg parseBuiltinValue(Cause& cause) {
    const uint8_t kind = tNode.typeCode;
    setValNode(static_cast<TypeCode>(kind));
    bool ok = true;
    switch (kind) {
    case TYP_BOOLEAN: ok = parseBoolean(); break;
    case TYP_INTEGER: ok = parseIntegerValue(vNode.val); break;
    case TYP_ENUM: ok = false; break;
    case TYP_REAL: ok = parseRealValue(vNode.val.real, cause); break;
    case TYP_BITSTR:
    case TYP_OCTSTR: ok = parseBitStringValue(cause); break;
    case TYP_NULL: ok = curCode() == TOK_NULL; break;
    case TYP_SEQ:
    case TYP_SET:
    case TYP_SEQOF:
    case TYP_SETOF:
    case TYP_EMB_PDV:
    case TYP_CHASTR:
    case TYP_EXTERNAL_1990:
    case TYP_EXTERNAL_1994:
    case TYP_INSTANCE_OF: return parseStructured(kind, cause);
    case TYP_CHOICE: ok = parseChoiceValue(cause); break;
    case TYP_ANY:
    case TYP_OPEN: ok = parseAnyValue(cause); break;
    case TYP_OBJID: ok = parseObjIdValue(cause); break;
    case TYP_CLASS:
    case TYP_TYPE_ID:
    case TYP_ABSTR_STX: return parseObject(kind, cause);
    case TYP_RELOID: ok = parseRelativeOidValue(cause); break;
    default:
        if (is(kind, TypeClass::Text)) ok = parseCharStringValue(kind, cause);
        if (is(kind, TypeClass::Quoted)) ok = parseTextValue(kind, cause);
        break;
    }
    return ok ? Msg::None : valueSyntax(kind);
}

bool parseIntegerValue(ValUnion& value) {
    const bool isNegative = curCode() == TOK_MINUS;
    if (isNegative && !advance()) return false;
    const Token& token = curToken();
    if (token.code != TOK_NUMBER) return false;
    setInteger(value, token, isNegative);
    if (!isNegative || token.value != I64{}) return true;
    const InstContext* instance = instContext();
    if (instance != nullptr)
        recordError2(invalidValue(TYP_INTEGER), {}, instance->line);
    else
        recordError(cMP, ERR_SEMANTIC, invalidValue(TYP_INTEGER), token.line);
    return true;
}

namespace {

/// [`-`] number; in today's notation also a value that leads to one, which becomes one of the list.
bool parseRealNumber(ValUnion& number, ValueList& references, Cause& cause) {
    if (!newNotation() || !definedValueFollows()) return parseIntegerValue(number);
    const VNodeRef self = currentRec<KIND_VNODE>();
    references.append(curToken().line);
    bool ok = parseDefinedValue(true, cause) == Msg::None;
    skipValues(true);
    ok = ok && isIntegerVNode();
    if (ok) setInteger(number, cMP, integerOf(valueModule(), vNode.val));
    makePending(self.module, self.nr);
    return ok;
}

/// One component of { mantissa m, base b, exponent e } with the separator behind it.
bool parseRealValComp(std::string_view identifier, int32_t separator, ValUnion& number,
                      ValueList& references, Cause& cause) {
    if (!advance()) return false;
    if (cMP->options.standardVersion != 1990) {
        if (curCode() != TOK_VALUEID || getStri(cMP, curToken().stri()) != identifier) {
            cause.set(tokenExpected(TOK_VALUEID));
            return false;
        }
        if (!advance()) return false;
    }
    if (!parseRealNumber(number, references, cause)) return false;
    if (!advance() || curCode() != separator) {
        cause.set(tokenExpected(separator));
        return false;
    }
    return true;
}

/// [`-`] (number | realnumber): the value in base 10, without trailing zeros in the mantissa.
bool parsePlainReal(RealVal& real) {
    const bool isNegative = curCode() == TOK_MINUS;
    if (isNegative && !advance()) return false;
    const Token& token = curToken();
    if (token.code != TOK_NUMBER && token.code != TOK_REALNUMBER) return false;
    const std::string text =
        token.text != 0 ? std::string(getStri(cMP, token.text)) : i64tostr(token.value);
    switch (realOfText(text, isNegative, real)) {
    case RealText::Exact: break;
    case RealText::LongMantissa:
    case RealText::LongExponent:
        recordError2(Msg::RealBeyondLimits, {}, vNode.line, text);
        makeSpecialRealVal(real, REAL_ZERO);
    }
    return true;
}

/// The value that three components make; what is wrong with them is recorded.
void setReal(RealVal& real, const ValUnion& mantissa, const ValUnion& base,
             const ValUnion& exponent) {
    makeSpecialRealVal(real, REAL_ZERO);
    const int64_t radix = i64native(base.number);
    const int64_t power = i64native(exponent.number);
    const bool isPower = power >= INT16_MIN && power <= INT16_MAX; // beyond 64 bits it is none
    const bool isZero = mantissa.number == I64{};
    if ((radix != 2 && radix != 10) || (!newNotation() && (isZero || !isPower))) {
        recordError2(invalidValue(TYP_REAL), {}, vNode.line);
    } else if (mantissa.integer.text != 0 || !isPower) {
        const ValUnion& number = isPower ? mantissa : exponent;
        recordError2(Msg::RealBeyondLimits, {}, vNode.line, integerOf(cMP, number).text());
    } else if (!isZero) { // excluded by the associated type of older editions
        makeRealVal(real, mantissa.number, static_cast<int16_t>(radix),
                    static_cast<int16_t>(power));
    }
}

} // namespace

bool parseRealValue(RealVal& real, Cause& cause) {
    real.base = -1;
    if (curCode() == TOK_NOT_A_NUMBER) {
        makeSpecialRealVal(real, REAL_NOT_A_NUMBER);
        return true;
    }
    if (curCode() == TOK_NUMBER && curToken().value == I64{}) {
        makeSpecialRealVal(real, REAL_ZERO);
        return true;
    }
    if (curCode() == TOK_PLUS_INFINITY || curCode() == TOK_MINUS_INFINITY) {
        makeSpecialRealVal(real, curCode() == TOK_PLUS_INFINITY ? REAL_PLUS_INFINITY
                                                                : REAL_MINUS_INFINITY);
        return true;
    }
    if (newNotation() && curCode() != TOK_LBRACE) return parsePlainReal(real);
    if (curCode() != TOK_LBRACE) return false;
    ValUnion mantissa;
    ValUnion base;
    ValUnion exponent;
    ValueList references;
    if (!parseRealValComp("mantissa", TOK_COMMA, mantissa, references, cause) ||
        !parseRealValComp("base", TOK_COMMA, base, references, cause) ||
        !parseRealValComp("exponent", TOK_RBRACE, exponent, references, cause))
        return false;
    setReal(real, mantissa, base, exponent);
    return true;
}

namespace {

/// A chain `.&a.&b` behind the token at the cursor, one syntax entry for each field; 0 when it is
/// malformed.
SNodeNr parseFieldChain(Cause& cause) {
    SNodeNr first;
    while (nextCode() == TOK_DOT) {
        if (!advanceTwice() || (curCode() != TOK_TYPEFIELDID && curCode() != TOK_VALUEFIELDID)) {
            cause.set(Msg::FieldNameExpected);
            return {};
        }
        if (first) sNode.next = static_cast<int32_t>(nextRec<KIND_SNODE>(cMP).nr);
        const InstContext* instance = instContext();
        const SNodeNr entry = addSyntaxArc(instance ? instance->line : curToken().line);
        if (!first) first = entry;
        sNode.token = static_cast<uint8_t>(curCode());
        sNode.value = curToken().stri();
    }
    flushRecs(KIND_SNODE);
    return first;
}

/// The parts of a value reference as they are written.
struct WrittenRef {
    int32_t refMod = REF_UNRESOLVED;
    int32_t name = 0;
    uint32_t line = 0;
    int32_t actuals = 0; // minus the text of the actual parameters
    SNodeNr fields;
};

bool parseWrittenRef(bool parsAndFields, WrittenRef& ref, Cause& cause) {
    if (curCode() == TOK_MODULEID) {
        ref.refMod = curToken().stri();
        if (!advanceTwice()) return false;
    }
    if (curCode() != TOK_VALUEID) return false;
    ref.name = curToken().stri();
    ref.line = curToken().line;
    if (nextCode() == TOK_LBRACE) {
        if (!parsAndFields || !advance()) return false;
        ref.actuals = minus(nextRec<KIND_DNODE>(cMP).nr);
        if (!deferValue(cause)) return false;
    }
    if (nextCode() == TOK_DOT) {
        if (!parsAndFields) return false;
        ref.fields = parseFieldChain(cause);
        return bool(ref.fields);
    }
    return true;
}

/// A name without module and actual parameters: an enumeration item or named number of the
/// governing type in `tNode`, else a formal parameter of the text being replayed. True when it was
/// one of them.
bool bindName(int32_t& refMod, int32_t& name) {
    const bool named =
        tNode.typeCode == TYP_ENUM || (tNode.typeCode == TYP_INTEGER && tNode.namedVals != 0);
    if (named && handleNamed(currentRec<KIND_TNODE>(), refMod, name)) return true;
    return inp.formals != 0 && handleDefined(STabNr{inp.formals}, refMod, name);
}

/// The record numbers that a reference as written leads to. What cannot be resolved becomes 0.
/// `line` is that of the record it is for.
WrittenRef resolveReference(WrittenRef ref, uint32_t line) {
    if (ref.refMod != REF_UNRESOLVED || ref.actuals != 0 || !bindName(ref.refMod, ref.name)) {
        resolveUse(ref.refMod, ref.name, ref.actuals, line, ref.line);
    } else if (ref.refMod == REF_FORMAL) {
        auto position = static_cast<uint32_t>(ref.name);
        changeFormalValueRefToActualRef(ref.refMod, position);
        ref.name = static_cast<int32_t>(position);
    }
    return ref;
}

} // namespace

Msg parseDefinedValue(bool parsAndFields, Cause& cause) {
    WrittenRef ref;
    if (!parseWrittenRef(parsAndFields, ref, cause)) return Msg::DefinedValueSyntax;
    const VNodeRef self = currentRec<KIND_VNODE>();
    const uint32_t line = vNode.line;
    makePending(self.module, self.nr);
    if (ref.fields) {
        setValNode(TYP_FIELDLIST);
        vNode.deferred = static_cast<int32_t>(ref.fields.nr);
        vNode.ref = nextRec<KIND_VNODE>(cMP).nr;
        addValArc(instContext(), line);
    }
    const VNodeRef reference = currentRec<KIND_VNODE>();
    const WrittenRef bound = resolveReference(ref, line);
    makePending(reference.module, reference.nr);
    setValNode(TYP_SYNONYM);
    vNode.refMod = bound.refMod;
    vNode.ref = static_cast<uint32_t>(bound.name);
    vNode.deferred = bound.actuals;
    readRec(self);
    findActValue();
    return Msg::None;
}

} // namespace orvo
