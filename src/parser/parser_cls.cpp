// Invariants: fields are chained as components are. The syntax nodes of a list are chained by
// `next`; the elements of a group lie on a level of their own, whose last element has minus the
// group's node, from which the outer list goes on. Field names and words are stored as the lexer
// gives them: names of value fields negated.

#include "parser/parser_cls.h"

#include <algorithm>

#include "diag/orvoerr.h"
#include "parser/parser.h"
#include "parser/parser_defer.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/ascii.h"

namespace orvo {
namespace {

enum class FieldForm { Type, Set, Value };

bool isFieldName(int32_t code) {
    return code == TOK_TYPEFIELDID || code == TOK_VALUEFIELDID;
}

SNodeNr newSyntaxNode() {
    return buildsTree() ? addSyntaxArc(parserState.Inp.line) : SNodeNr{};
}

bool atSyntax(SNodeNr node) {
    if (!buildsTree()) return false;
    makePending(cMP, node);
    return true;
}

/// FieldName as what governs a field: its type is that of another field of the same object.
void variableTypeField(TNodeNr node, TNodeNr classNode, uint32_t flags) {
    if (atType(node)) {
        setTypeNode(TYP_FIELDLIST);
        tNode.nodeFlags |= NF_VARIABLE | flags;
        tNode.refMod = REF_OWN;
        tNode.ref = classNode.nr;
        tNode.syntax = static_cast<int32_t>(cMP->nextRecNr[KIND_SNODE]);
    }
    MGR113FieldName();
    takeOptions(node);
}

/// typefieldid [Type | FieldName]
FieldForm typeOrSetField(TNodeNr node, TNodeNr classNode) {
    ReadIn();
    const int32_t token = parserState.Inp.code;
    if (isFieldName(token)) {
        variableTypeField(node, classNode, NF_SET);
        return FieldForm::Set;
    }
    if (beginsType(token)) {
        if (atType(node)) tNode.nodeFlags |= NF_SET;
        MGR59Type();
        return FieldForm::Set;
    }
    setTypeCode(TYP_OPEN);
    if (!MGIsInSet({TOK_OPTIONAL, TOK_DEFAULT, TOK_COMMA, TOK_RBRACE})) MGError(notAllowed);
    takeOptions(node);
    return FieldForm::Type;
}

/// valuefieldid (Type [UNIQUE] | FieldName)
void valueField(TNodeNr node, TNodeNr classNode) {
    ReadIn();
    const int32_t token = parserState.Inp.code;
    if (isFieldName(token)) {
        variableTypeField(node, classNode, 0);
    } else if (beginsType(token)) {
        MGR59Type();
        if (parserState.Inp.code != TOK_UNIQUE) return;
        ReadIn();
        if (atType(node)) tNode.checkFlags |= CF_UNIQUE;
    } else {
        MGError(notAllowed);
    }
}

/// Type behind DEFAULT; the current VNode is that of the default.
void defaultType() {
    const TNodeNr type = newTypeNode();
    if (buildsTree()) {
        setValNode(TYP_OPEN);
        vNode.refMod = REF_FORMAL;
        vNode.ref = type.nr;
    }
    insertToken(TOK_MARKER, static_cast<int32_t>(type.nr));
    ReadIn();
    MGR59Type();
}

/// DEFAULT (Type | `{` Set `}` | Value)
void fieldDefault(TNodeNr node, FieldForm form) {
    ReadIn();
    if (atType(node)) {
        tNode.compStatus = TCS_OPTIONAL;
        tNode.defaultVal = addValDefArc(node, parserState.Inp.line).nr;
    }
    if (form == FieldForm::Type) {
        defaultType();
        return;
    }
    if (buildsTree()) {
        vNode.refMod = REF_DEFERRED;
        vNode.ref = minusWord(cMP->nextRecNr[KIND_DNODE]);
    }
    if (form == FieldForm::Set)
        MGR63BraceValue();
    else
        MGR68OpenValue();
}

/// [OPTIONAL | DEFAULT ...]
void fieldOptionality(TNodeNr node, FieldForm form) {
    switch (parserState.Inp.code) {
    case TOK_OPTIONAL:
        ReadIn();
        if (atType(node)) tNode.compStatus = TCS_OPTIONAL;
        break;
    case TOK_DEFAULT: fieldDefault(node, form); break;
    case TOK_COMMA:
    case TOK_RBRACE: break;
    default: MGError(notAllowed);
    }
}

/// WITH SYNTAX `{` TokenOrGroupSpecList `}`
void withSyntax(TNodeNr classNode) {
    ReadIn();
    expectToken(TOK_SYNTAX);
    if (!expectToken(TOK_LBRACE)) return;
    if (atType(classNode)) tNode.syntaxList = cMP->nextRecNr[KIND_SNODE];
    MGR245TokenOrGroupSpecList();
    expectToken(TOK_RBRACE);
}

/// A word that later editions reserved stays a name as a literal, as it is in modules of the older
/// ones; not so where it begins a type or value (X.681 (02/2021) 10.6).
bool isLaterLiteral(int32_t code) {
    return isLaterWord(code) && !isTypeName(code) && code != TOK_NOT_A_NUMBER;
}

/// Reserved words and type names are literals here: they become typeids with minus their code.
void literalFromKeyword() {
    splitVersionBrackets();
    const int32_t code = parserState.Inp.code;
    if (isLaterLiteral(code))
        rewriteToken(TOK_TYPEID, i64of(putStri(cMP, tokenName(code)).nr));
    else if (isLaterWord(code))
        rewriteToken(TOK_TYPEID, i64of(-code));
    else if (isReservedWord(code) || isOlderTypeName(code))
        rewriteToken(TOK_TYPEID, i64of(-code));
}

/// A word literal
void literalWord() {
    const Token word = parserState.Inp;
    ReadIn();
    if (!buildsTree()) return;
    if (word.stri() < 0) { // a converted reserved word
        sNode.token = static_cast<uint8_t>(-word.stri());
        return;
    }
    sNode.token = TOK_TYPEID;
    sNode.value = word.stri();
    requireCapital(getStri(cMP, word.stri()), word.line);
}

/// `[` TokenOrGroupSpecList `]`
void optionalGroup() {
    const NestingLevel level;
    if (level.tooDeep()) return;
    const SNodeNr group = currentRec<KIND_SNODE>().nr;
    if (buildsTree()) {
        sNode.token = TOK_LBRACKET;
        sNode.value = static_cast<int32_t>(cMP->nextRecNr[KIND_SNODE]);
    }
    ReadIn();
    const SNodeNr last = MGR245TokenOrGroupSpecList();
    if (atSyntax(last)) sNode.next = minus(group.nr);
    expectToken(TOK_RBRACKET);
    atSyntax(group);
}

} // namespace

/// ObjectClassDefn ::= CLASS `{` FieldSpec {`,` FieldSpec} `}`
///     [WITH SYNTAX `{` TokenOrGroupSpecList `}`]
void MGR60ObjectClassDefn() {
    const TNodeNr classNode = thisTypeNode();
    ReadIn();
    setTypeCode(TYP_CLASS);
    if (!expectToken(TOK_LBRACE)) return;
    MGR224FieldSpec(classNode);
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        MGR224FieldSpec(classNode);
    }
    expectToken(TOK_RBRACE);
    if (parserState.Inp.code == TOK_WITH)
        withSyntax(classNode);
    else if (!MGIsInSet({TOK_END, TOK_TYPEID, TOK_VALUEID, TOK_ENCODING_CONTROL}))
        MGError(notAllowed);
    takeOptions(classNode);
}

/// FieldSpec ::= (typefieldid [Type | FieldName] | valuefieldid (Type [UNIQUE] | FieldName))
///     [OPTIONAL | DEFAULT (Type | `{` Set `}` | Value)]
void MGR224FieldSpec(TNodeNr classNode) {
    const TNodeNr node = newTypeNode();
    if (buildsTree()) tNode.name = parserState.Inp.stri();
    FieldForm form = FieldForm::Value;
    switch (parserState.Inp.code) {
    case TOK_TYPEFIELDID: form = typeOrSetField(node, classNode); break;
    case TOK_VALUEFIELDID: valueField(node, classNode); break;
    default: MGError(notAllowed);
    }
    fieldOptionality(node, form);
    if (!atType(node)) return;
    // These two concern what follows the field.
    constexpr uint32_t directives = OPTF_ASNH | OPTF_PTR;
    parserState.Inp.optFlags |= tNode.optFlags & directives;
    tNode.optFlags &= ~directives;
    if (parserState.Inp.code == TOK_COMMA) tNode.next = cMP->nextRecNr[KIND_TNODE];
}

/// TokenOrGroupSpecList ::= TokenOrGroupSpec {TokenOrGroupSpec}
SNodeNr MGR245TokenOrGroupSpecList() {
    constexpr TokenSet element = {TOK_COMMA, TOK_LBRACKET, TOK_TYPEID, TOK_TYPEFIELDID,
                                  TOK_VALUEFIELDID};
    SNodeNr last;
    literalFromKeyword();
    do {
        if (last && atSyntax(last)) sNode.next = static_cast<int32_t>(cMP->nextRecNr[KIND_SNODE]);
        last = newSyntaxNode();
        MGR247TokenOrGroupSpec();
        literalFromKeyword();
    } while (MGIsInSet(element));
    return last;
}

/// TokenOrGroupSpec ::= word | `,` | PrimitiveFieldName | `[` TokenOrGroupSpecList `]`
void MGR247TokenOrGroupSpec() {
    switch (parserState.Inp.code) {
    case TOK_TYPEID: literalWord(); break;
    case TOK_COMMA:
        if (buildsTree()) sNode.token = TOK_COMMA;
        ReadIn();
        break;
    case TOK_TYPEFIELDID:
    case TOK_VALUEFIELDID: MGR250PrimitiveFieldName(); break;
    case TOK_LBRACKET: optionalGroup(); break;
    default: MGError(notAllowed);
    }
}

/// FieldName ::= PrimitiveFieldName {`.` PrimitiveFieldName}
void MGR113FieldName() {
    newSyntaxNode();
    MGR250PrimitiveFieldName();
    while (parserState.Inp.code == TOK_DOT) {
        if (buildsTree()) sNode.next = static_cast<int32_t>(cMP->nextRecNr[KIND_SNODE]);
        ReadIn();
        newSyntaxNode();
        MGR250PrimitiveFieldName();
    }
}

/// PrimitiveFieldName ::= typefieldid | valuefieldid
void MGR250PrimitiveFieldName() {
    if (!isFieldName(parserState.Inp.code)) {
        MGError(notAllowed);
        return;
    }
    if (buildsTree()) {
        sNode.token = static_cast<uint8_t>(parserState.Inp.code);
        sNode.value = parserState.Inp.stri();
    }
    ReadIn();
}

void saveFieldList(TNodeNr node, TypeCode kind) {
    const uint32_t line = parserState.Inp.line;
    ReadIn();
    const SNodeNr fields = nextRec<KIND_SNODE>(cMP);
    MGR113FieldName();
    if (!atType(node)) return;
    setTypeNode(TYP_FIELDLIST);
    tNode.syntax = static_cast<int32_t>(fields.nr);
    tNode.refMod = REF_OWN;
    tNode.ref = cMP->nextRecNr[KIND_TNODE];
    addTypeArc(nullptr, line);
    setTypeNode(kind);
    atType(node);
}

void requireCapital(std::string_view name, uint32_t line) {
    const auto lower = std::ranges::find_if(name, isLower);
    if (lower == name.end()) return;
    const auto at = static_cast<size_t>(lower - name.begin());
    recordError(cMP, ERR_SEMANTIC, Msg::LowerCaseLettersNotAllowed, line, name.substr(at));
}

} // namespace orvo
