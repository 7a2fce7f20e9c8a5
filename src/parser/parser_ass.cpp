// Invariant: parserState.formalList is the symbol of the assignment being parsed. Its formal
// parameters are attached to it when the header has been parsed, so references and deferred texts
// of the header itself are looked through again then; those of the body meet them at once.

#include "parser/parser_ass.h"

#include "parser/parser.h"
#include "parser/parser_cls.h"
#include "parser/parser_defer.h"
#include "parser/parser_macro.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// The assignment being parsed.
struct Assignment {
    TNodeNr typeHead;  // of a type, class, value set or object set
    VNodeNr valueHead; // of a value or object
    TNodeNr firstType; // the nodes from these on belong to the header
    VNodeNr firstValue;
};

/// Enters the name of an assignment in the symbol table; the symbol is that of the assignment being
/// parsed. Returns its flags.
uint8_t enterName(const Token& name, bool parameterized) {
    const uint8_t flags = parameterized ? SYM_PARAMETERIZED : 0;
    parserState.formalList = updateSymbTab(name.stri(), flags, name.line);
    parserState.symbolList = {};
    return symAt(parserState.formalList).flags;
}

void noteHeader(Assignment& assignment) {
    assignment.firstType = assignment.typeHead ? assignment.typeHead : nextRec<KIND_TNODE>(cMP);
    assignment.firstValue = nextRec<KIND_VNODE>(cMP);
}

// ---- the header, once the formal parameters are known -------------------------------------------

void giveFormals(DNodeNr text, uint32_t formals) {
    if (!text) return;
    readRec(cMP, text);
    dNode.formals = formals;
    writeRec(cMP, text);
}

/// Resolves the current TNode's reference to a formal parameter and gives its texts the list.
void reviseType(TNodeNr node, uint32_t formals) {
    if (tNode.typeCode == TYP_SYNONYM && tNode.refMod == REF_UNRESOLVED && tNode.syntax == 0) {
        auto name = signedWord(tNode.ref);
        resolveDummy(tNode.refMod, name);
        tNode.ref = static_cast<uint32_t>(name);
        writeRec(cMP, node);
    }
    giveFormals(deferredText(tNode.constraint), formals);
    giveFormals(deferredText(tNode.syntax), formals);
}

void reviseValue(VNodeNr node, uint32_t formals) {
    if (vNode.valCode == TYP_SYNONYM && vNode.refMod == REF_UNRESOLVED && vNode.deferred == 0) {
        auto name = signedWord(vNode.ref);
        resolveDummy(vNode.refMod, name);
        vNode.ref = static_cast<uint32_t>(name);
        writeRec(cMP, node);
    }
    if (vNode.refMod == REF_DEFERRED) giveFormals(deferredText(vNode), formals);
    giveFormals(deferredText(vNode.deferred), formals);
}

/// Attaches the formal parameters to the assignment's symbol and revises its header.
void attachFormals(const Assignment& assignment) {
    if (!buildsTree()) return;
    const uint32_t formals = parserState.symbolList.first.nr;
    symAt(parserState.formalList).formals = formals;
    parserState.symbolList = {};
    if (formals == 0) return;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const TNodeNr endType = nextRec<KIND_TNODE>(cMP);
    for (TNodeNr node = assignment.firstType; node.nr < endType.nr; ++node.nr) {
        readRec(cMP, node);
        reviseType(node, formals);
    }
    const VNodeNr endValue = nextRec<KIND_VNODE>(cMP);
    for (VNodeNr node = assignment.firstValue; node.nr < endValue.nr; ++node.nr) {
        readRec(cMP, node);
        reviseValue(node, formals);
    }
}

// ---- values and objects -------------------------------------------------------------------------

/// Type of a value assignment
void governingType(const Assignment& assignment) {
    const TNodeNr type = newTypeNode();
    if (atValue(assignment.valueHead)) vNode.govType = type.nr;
    MGR59Type();
}

/// ValueAssignment ::= valueid [ParameterList] Type `::=` Value
void valueAssignment() {
    Assignment assignment;
    assignment.valueHead = newValueHead(parserState.Inp, lookAhead(1).code == TOK_LBRACE);
    noteHeader(assignment);
    ReadIn();
    // Types too may be left out: any name counts.
    if (newNotation() && parserState.Inp.code == TOK_TYPEID && lookAhead(1).code == TOK_ASSIGN)
        noteMacro(parserState.Inp, assignment.valueHead, false);
    MGR57ParameterList();
    governingType(assignment);
    expectToken(TOK_ASSIGN);
    attachFormals(assignment);
    assignedValue(assignment.valueHead);
    takeValueOptions(assignment.valueHead);
}

// ---- types, classes and sets --------------------------------------------------------------------

/// Type `::=` `{` Set `}` behind the name of a value set or object set
void setAssignment(const Assignment& assignment) {
    if (!beginsType(parserState.Inp.code)) MGError(notAllowed);
    MGR59Type();
    if (newNotation() && atType(assignment.typeHead) && isDeferred(tNode.constraint))
        cMP->governorTexts[assignment.typeHead.nr] = tNode.constraint;
    expectToken(TOK_ASSIGN);
    attachFormals(assignment);
    const DNodeNr set = MGR63BraceValue();
    if (!atType(assignment.typeHead)) return;
    tNode.nodeFlags |= NF_SET;
    tNode.constraint = minus(set.nr);
    takeOptions(assignment.typeHead);
}

/// `::=` (Type | ObjectClassDefn)
void typeOrClassAssignment(const Assignment& assignment, const Token& name) {
    const Restore own(parserState.openInst, static_cast<int16_t>(parserState.openInst + 1));
    attachFormals(assignment);
    atType(assignment.typeHead);
    ReadIn();
    if (beginsType(parserState.Inp.code)) {
        if (newNotation() && mayBeMacro(parserState.Inp))
            noteMacroType(parserState.Inp, assignment.typeHead);
        MGR59Type();
    } else if (parserState.Inp.code == TOK_CLASS) {
        if (buildsTree()) requireCapital(getStri(cMP, name.stri()), name.line);
        MGR60ObjectClassDefn();
    } else {
        MGError(notAllowed);
    }
}

/// typeid [ParameterList] (`::=` (Type | ObjectClassDefn) | Type `::=` `{` Set `}`)
void typeAssignment() {
    Assignment assignment;
    const Token name = parserState.Inp;
    assignment.typeHead = newTypeHead(name, lookAhead(1).code == TOK_LBRACE);
    noteHeader(assignment);
    ReadIn();
    MGR57ParameterList();
    atType(assignment.typeHead);
    if (parserState.Inp.code == TOK_ASSIGN)
        typeOrClassAssignment(assignment, name);
    else
        setAssignment(assignment);
}

} // namespace

VNodeNr newValueHead(const Token& name, bool parameterized) {
    if (!buildsTree()) return {};
    const uint8_t flags = enterName(name, parameterized);
    return addValHeadArc(name.stri(), flags, TNodeNr{}, name.line);
}

TNodeNr newTypeHead(const Token& name, bool parameterized) {
    if (!buildsTree()) return {};
    const uint8_t flags = enterName(name, parameterized);
    if (cMP->exportsState == 0 || (flags & SYM_EXPORTED) != 0) ++cMP->options.exportedTypes;
    return addTypeHeadArc(name.stri(), flags, name.line);
}

void assignedValue(VNodeNr head) {
    const DNodeNr text = MGR68OpenValue();
    if (!atValue(head)) return;
    vNode.refMod = REF_DEFERRED;
    vNode.ref = minusWord(text.nr);
}

/// {Assignment}
void parseAssignments() {
    while (parserState.Inp.code == TOK_VALUEID || parserState.Inp.code == TOK_TYPEID) {
        if (newNotation() && macroFollows())
            macroAssignment();
        else if (parserState.Inp.code == TOK_VALUEID)
            valueAssignment();
        else
            typeAssignment();
    }
    parserState.formalList = {};
}

/// ParameterList ::= [`{` Parameter {`,` Parameter} `}`]
void MGR57ParameterList() {
    if (parserState.Inp.code != TOK_LBRACE) {
        const int32_t code = parserState.Inp.code;
        if (!beginsType(code) && code != TOK_ASSIGN && code != TOK_CLASS) MGError(notAllowed);
        return;
    }
    ReadIn();
    MGR70Parameter();
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        MGR70Parameter();
    }
    expectToken(TOK_RBRACE);
}

/// Parameter ::= [Type `:`] (typeid | valueid)
void MGR70Parameter() {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) tNode.compStatus = TCS_FORMAL;
    const int32_t behind = lookAhead(1).code;
    const bool governed =
        parserState.Inp.code != TOK_TYPEID || (behind != TOK_COMMA && behind != TOK_RBRACE);
    if (governed) {
        insertToken(TOK_MARKER, 0);
        ReadIn();
        MGR59Type();
        expectToken(TOK_COLON);
    } else {
        setTypeCode(TYP_OPEN);
    }
    const Token dummy = parserState.Inp;
    const bool isType = dummy.code == TOK_TYPEID;
    if (!isType && dummy.code != TOK_VALUEID) {
        MGError(notAllowed);
        return;
    }
    ReadIn();
    if (!atType(node)) return;
    tNode.name = dummy.stri();
    if (isType && governed) tNode.nodeFlags |= NF_SET;
    const uint8_t flags = isType && !governed ? SYM_FORMAL | SYM_TYPE_PARAMETER : SYM_FORMAL;
    handleSymbol(parserState.symbolList, dummy.stri(), flags, dummy.line);
    if (parserState.Inp.code == TOK_COMMA) tNode.next = cMP->nextRecNr[KIND_TNODE];
}

} // namespace orvo
