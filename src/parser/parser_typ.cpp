// Invariants: a rule leaves the type node that it was called with as the current one. What lies
// below a node is made while the node is not current; the node is made current again (atType)
// before anything is stored in it. After a syntax error the rules only check the notation: every
// access to a record stands behind buildsTree() or atType().

#include "parser/parser_typ.h"

#include "diag/orvoerr.h"
#include "options/orvoopt_loc.h"
#include "parser/parser.h"
#include "parser/parser_cls.h"
#include "parser/parser_comp.h"
#include "parser/parser_defer.h"
#include "parser/parser_macro.h"
#include "parser/parser_named.h"
#include "parser/parser_oid.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

/// What may stand behind a type that is not part of deferred notation.
constexpr TokenSet typeFollow = {
    TOK_END,    TOK_EOF,    TOK_COMMA,    TOK_RBRACE,  TOK_RVERSION,        TOK_RPAREN,
    TOK_COLON,  TOK_ASSIGN, TOK_ELLIPSIS, TOK_LBRACE,  TOK_OPTIONAL,        TOK_DEFAULT,
    TOK_UNIQUE, TOK_WITH,   TOK_TYPEID,   TOK_VALUEID, TOK_ENCODING_CONTROL};

constexpr TokenSet typeStart = {TOK_ANY,     TOK_BIT,      TOK_BOOLEAN,     TOK_CHARACTER,
                                TOK_CHOICE,  TOK_EMBEDDED, TOK_ENUMERATED,  TOK_INSTANCE,
                                TOK_INTEGER, TOK_NULL,     TOK_OBJECT,      TOK_OCTET,
                                TOK_REAL,    TOK_SEQUENCE, TOK_SET,         TOK_LBRACKET,
                                TOK_TYPEID,  TOK_VALUEID,  TOK_COMPONENTID, TOK_MODULEID};

bool isCollectionOf(uint8_t code) {
    return is(code, TypeClass::List);
}

/// Stores the text of the type's constraint and attaches the options before the current token.
void finishNode(DNodeNr constraint) {
    tNode.constraint = minus(constraint.nr);
    if (parserState.openInst > 0) takeOptions(thisTypeNode());
}

/// {`(` Constraint `)`}: all in one range.
DNodeNr deferConstraints() {
    if (parserState.Inp.code != TOK_LPAREN) return {};
    const DNodeNr constraint = initDeferList();
    while (parserState.Inp.code == TOK_LPAREN) parenthesizedContents();
    storeDeferList(constraint);
    return constraint;
}

// ---- tags ---------------------------------------------------------------------------------------

/// [UNIVERSAL | APPLICATION | PRIVATE]
int32_t tagClassOf() {
    switch (parserState.Inp.code) {
    case TOK_UNIVERSAL: ReadIn(); return TAG_UNIVERSAL;
    case TOK_APPLICATION: ReadIn(); return TAG_APPLICATION;
    case TOK_PRIVATE: ReadIn(); return TAG_PRIVATE;
    default: return TAG_CONTEXT;
    }
}

/// ClassNumber ::= [`-`] number | DefinedValue. A sign makes the number invalid.
int32_t tagNumber() {
    const bool negative = parserState.Inp.code == TOK_MINUS;
    if (negative) ReadIn();
    const I64 number = parserState.Inp.value;
    switch (parserState.Inp.code) {
    case TOK_NUMBER:
        ReadIn();
        return negative || number.high != 0 || number.low > static_cast<uint32_t>(maxTagNr)
                   ? badTagNr
                   : static_cast<int32_t>(number.low);
    case TOK_VALUEID:
    case TOK_TYPEID: {
        if (negative) break;
        const VNodeNr value = newValueNode();
        MGR42DefinedValue();
        return minus(value.nr);
    }
    default: break;
    }
    MGError(negative ? static_cast<int32_t>(TOK_NUMBER) : notAllowed);
    return badTagNr;
}

/// [IMPLICIT | EXPLICIT], by default as the module's tag default and the tagged type want it.
int32_t tagMode() {
    switch (parserState.Inp.code) {
    case TOK_IMPLICIT: ReadIn(); return TAGMODE_IMPLICIT;
    case TOK_EXPLICIT: ReadIn(); return TAGMODE_EXPLICIT;
    case TOK_CHOICE:
    case TOK_ANY: return TAGMODE_EXPLICIT;
    case TOK_TYPEID: // what is referred to may need an explicit tag
    case TOK_VALUEID:
    case TOK_TYPE_IDENTIFIER: // a field of the class may be open
    case TOK_ABSTRACT_SYNTAX: return cMP->tagDefault;
    default:
        if (cMP->tagDefault == TAGMODE_OPEN) return TAGMODE_IMPLICIT;
        return cMP->tagDefault;
    }
}

/// Tag ::= `[` [Class] ClassNumber `]` [IMPLICIT | EXPLICIT]
TagNr parseTag() {
    TagRec tag = {};
    ReadIn();
    if (newNotation() && parserState.Inp.code == TOK_TYPEID && lookAhead(1).code == TOK_COLON) {
        ReadIn(); // `TAG:`
        ReadIn();
    }
    tag.tagClass = tagClassOf();
    tag.tagNr = tagNumber();
    expectToken(TOK_RBRACKET);
    if (newNotation()) encodingPrefixes();
    tag.tagMode = tagMode();
    if (newNotation()) encodingPrefixes();
    if (!beginsType(parserState.Inp.code)) MGError(notAllowed);
    return buildsTree() ? addTagRec(tag) : TagNr{};
}

/// {Tag}, encoding prefixes among them
void parseTags(TNodeNr node) {
    if (newNotation()) encodingPrefixes();
    if (parserState.Inp.code != TOK_LBRACKET) return;
    const TagNr first = parseTag();
    while (parserState.Inp.code == TOK_LBRACKET) parseTag();
    if (!atType(node)) return;
    tNode.tags = first.nr;
    flushTagRec();
}

// ---- built-in types -----------------------------------------------------------------------------

/// The types of X.680 (02/2021) that are a single token.
TypeCode laterTypeCode(int32_t token) {
    switch (token) {
    case TOK_UTF8STRING: return TYP_UTF8STR;
    case TOK_RELATIVE_OID: return TYP_RELOID;
    case TOK_OID_IRI: return TYP_OIDIRI;
    case TOK_RELATIVE_OID_IRI: return TYP_RELOIDIRI;
    case TOK_TIME: return TYP_TIME;
    case TOK_DATE: return TYP_DATE;
    case TOK_TIME_OF_DAY: return TYP_TIMEOFDAY;
    case TOK_DATE_TIME: return TYP_DATETIME;
    case TOK_DURATION: return TYP_DURATION;
    default: return TYP_NONE;
    }
}

/// Code of a type that is a single token; TYP_NONE for all others.
TypeCode simpleTypeCode(int32_t token) {
    switch (token) {
    case TOK_BOOLEAN: return TYP_BOOLEAN;
    case TOK_REAL: return TYP_REAL;
    case TOK_NULL: return TYP_NULL;
    case TOK_EXTERNAL:
        return cMP->options.standardVersion == 1990 ? TYP_EXTERNAL_1990 : TYP_EXTERNAL_1994;
    case TOK_OBJECTDESCRIPTOR: return TYP_OBJDESCR;
    case TOK_BMPSTRING: return TYP_BMPSTR;
    case TOK_GENERALSTRING: return TYP_GENSTR;
    case TOK_GENERALIZEDTIME: return TYP_GENTIME;
    case TOK_GRAPHICSTRING: return TYP_GRASTR;
    case TOK_IA5STRING: return TYP_IA5STR;
    case TOK_ISO646STRING:
    case TOK_VISIBLESTRING: return TYP_VISSTR;
    case TOK_NUMERICSTRING: return TYP_NUMSTR;
    case TOK_PRINTABLESTRING: return TYP_PRISTR;
    case TOK_T61STRING:
    case TOK_TELETEXSTRING: return TYP_TELSTR;
    case TOK_UTCTIME: return TYP_UTCTIME;
    case TOK_UNIVERSALSTRING: return TYP_UNISTR;
    case TOK_VIDEOTEXSTRING: return TYP_VIDSTR;
    default: return laterTypeCode(token);
    }
}

/// Two keywords, such as OCTET STRING
void twoWordType(int32_t secondWord, TypeCode code) {
    ReadIn();
    expectToken(secondWord);
    setTypeCode(code);
}

/// (INTEGER | BIT STRING) [NamedIdentList]. Another `{` begins a value and is left to the caller.
void optionalNamedList(TypeCode code) {
    if (parserState.Inp.code == TOK_LBRACE && namedIdentListFollows()) MGR147NamedIdentList(code);
}

/// CHOICE `{` AlternativeTypeList `}`, ENUMERATED `{` EnumerationItemList `}`
void listType(TypeCode code, void (*list)()) {
    ReadIn();
    setTypeCode(code);
    if (!expectToken(TOK_LBRACE)) return;
    list();
    expectToken(TOK_RBRACE);
}

/// The syntax node for the identifier that is the current token.
SNodeNr identifierNode() {
    if (!buildsTree()) return {};
    const SNodeNr identifier = addSyntaxArc(parserState.Inp.line);
    sNode.token = TOK_COMPONENTID;
    sNode.value = parserState.Inp.stri();
    return identifier;
}

/// UnconstrType as the child that a selection type or INSTANCE OF refers to.
void referredChild(TNodeNr node) {
    if (atType(node)) {
        tNode.refMod = REF_OWN;
        tNode.ref = cMP->nextRecNr[KIND_TNODE];
    }
    newTypeNode();
    MGR79UnconstrType();
    atType(node);
}

/// SelectionType ::= componentid `<` UnconstrType
void selectionType(TNodeNr node) {
    const SNodeNr identifier = identifierNode();
    if (atType(node)) {
        setTypeNode(TYP_SELECTION);
        tNode.syntax = static_cast<int32_t>(identifier.nr);
    }
    ReadIn();
    expectToken(TOK_LESS);
    referredChild(node);
}

/// AnyType ::= ANY [DEFINED BY valueid]
void anyType(TNodeNr node) {
    ReadIn();
    setTypeCode(TYP_ANY);
    if (parserState.Inp.code != TOK_DEFINED) return;
    ReadIn();
    expectToken(TOK_BY);
    if (parserState.Inp.code == TOK_VALUEID) {
        const SNodeNr identifier = identifierNode();
        if (atType(node)) tNode.syntax = static_cast<int32_t>(identifier.nr);
    }
    expectToken(TOK_VALUEID);
}

/// [`.` FieldName] behind CHARACTER STRING, ABSTRACT-SYNTAX and TYPE-IDENTIFIER
void optionalFieldList(TNodeNr node, TypeCode code) {
    if (parserState.Inp.code == TOK_DOT)
        saveFieldList(node, code);
    else
        setTypeCode(code);
}

/// The types that are more than one token, those of braces aside.
void compositeType(TNodeNr node) {
    switch (parserState.Inp.code) {
    case TOK_COMPONENTID: selectionType(node); break;
    case TOK_ANY: anyType(node); break;
    case TOK_EMBEDDED: twoWordType(TOK_PDV, TYP_EMB_PDV); break;
    case TOK_OBJECT: twoWordType(TOK_IDENTIFIER, TYP_OBJID); break;
    case TOK_OCTET: twoWordType(TOK_STRING, TYP_OCTSTR); break;
    case TOK_BIT:
        twoWordType(TOK_STRING, TYP_BITSTR);
        optionalNamedList(TYP_BITSTR);
        break;
    case TOK_CHARACTER:
        ReadIn();
        expectToken(TOK_STRING);
        optionalFieldList(node, TYP_CHASTR);
        break;
    case TOK_INSTANCE:
        twoWordType(TOK_OF, TYP_INSTANCE_OF);
        referredChild(node);
        break;
    default: MGError(notAllowed);
    }
}

// ---- defined types ------------------------------------------------------------------------------

/// What a defined type is written with.
struct DefinedTypeText {
    int32_t moduleRef = REF_UNRESOLVED;
    int32_t name = 0;
    uint32_t line = 0;
    DNodeNr actuals;
    SNodeNr fields;
};

/// Makes the current TNode a reference to a type or class.
void setTypeReference(const DefinedTypeText& text) {
    int32_t moduleRef = text.moduleRef, name = text.name;
    if (!text.actuals) resolveDummy(moduleRef, name);
    setTypeNode(TYP_SYNONYM);
    tNode.refMod = moduleRef;
    tNode.ref = static_cast<uint32_t>(name);
    tNode.syntax = minus(text.actuals.nr);
}

/// Makes the current VNode a reference to an object.
void setObjectReference(const DefinedTypeText& text) {
    int32_t moduleRef = text.moduleRef, name = text.name;
    if (!text.actuals) resolveDummy(moduleRef, name);
    setValNode(TYP_SYNONYM);
    vNode.refMod = moduleRef;
    vNode.ref = static_cast<uint32_t>(name);
    vNode.deferred = minus(text.actuals.nr);
}

/// The node of a type field of a class or object set (typeid), or of an object (valueid).
void setFieldList(TNodeNr node, const DefinedTypeText& text, bool ofObject) {
    setTypeNode(TYP_FIELDLIST);
    tNode.syntax = static_cast<int32_t>(text.fields.nr);
    if (ofObject) {
        tNode.refMod = REF_OBJECT;
        tNode.ref = addValArc(nullptr, text.line).nr;
        setObjectReference(text);
        return;
    }
    tNode.refMod = REF_OWN;
    tNode.ref = cMP->nextRecNr[KIND_TNODE];
    addTypeArc(nullptr, text.line);
    setTypeReference(text);
    makePending(cMP, node);
}

} // namespace

// ---- shared by all rules ------------------------------------------------------------------------

TNodeNr newTypeNode() {
    return buildsTree() ? addTypeArc(nullptr, parserState.Inp.line) : TNodeNr{};
}

TNodeNr thisTypeNode() {
    return currentRec<KIND_TNODE>().nr;
}

bool atType(TNodeNr node) {
    if (!buildsTree()) return false;
    makePending(cMP, node);
    return true;
}

void setTypeCode(TypeCode code) {
    if (buildsTree()) setTypeNode(code);
}

void takeOptions(TNodeNr node) {
    if (buildsTree()) patchOpts(node, parserState.Inp.optFlags, parserState.Inp.options);
}

bool isTypeName(int32_t code) {
    return isOlderTypeName(code) || laterTypeCode(code) != TYP_NONE;
}

bool beginsType(int32_t code) {
    return typeStart.has(code) || isTypeName(code);
}

// ---- rules --------------------------------------------------------------------------------------

/// Type ::= UnconstrType {`(` Constraint `)`}
void MGR59Type() {
    const TNodeNr node = thisTypeNode();
    MGR79UnconstrType();
    const DNodeNr constraint = deferConstraints();
    // The constraint of a collection type stands before OF: MGR103CollectionType has stored it.
    if (atType(node) && !isCollectionOf(tNode.typeCode)) finishNode(constraint);
    if (parserState.inDeferred == 0 && !MGIsInSet(typeFollow)) MGError(notAllowed);
}

/// UnconstrType ::= {Tag} (BuiltInType | DefinedType)
void MGR79UnconstrType() {
    const NestingLevel level;
    if (level.tooDeep()) return;
    const TNodeNr node = thisTypeNode();
    parseTags(node);
    convertToken();
    switch (parserState.Inp.code) {
    case TOK_TYPEID:
    case TOK_VALUEID:
    case TOK_MODULEID: MGR83DefinedType(); break;
    default:
        if (beginsType(parserState.Inp.code))
            MGR82BuiltInType();
        else
            MGError(notAllowed);
    }
}

/// BuiltInType ::= BOOLEAN | INTEGER [NamedIdentList] | ENUMERATED `{` EnumerationItemList `}`
///     | REAL | BIT STRING [NamedIdentList] | OCTET STRING | NULL | CollectionType
///     | CHOICE `{` AlternativeTypeList `}` | componentid `<` UnconstrType | EMBEDDED PDV
///     | OBJECT IDENTIFIER | CHARACTER STRING [`.` FieldName] | INSTANCE OF UnconstrType
///     | ANY [DEFINED BY valueid] | ABSTRACT-SYNTAX [`.` FieldName]
///     | TYPE-IDENTIFIER [`.` FieldName] | a useful or character string type
void MGR82BuiltInType() {
    const TNodeNr node = thisTypeNode();
    const int32_t token = parserState.Inp.code;
    const TypeCode simple = simpleTypeCode(token);
    if (simple != TYP_NONE) {
        ReadIn();
        setTypeCode(simple);
        return;
    }
    switch (token) {
    case TOK_INTEGER:
        ReadIn();
        setTypeCode(TYP_INTEGER);
        optionalNamedList(TYP_INTEGER);
        break;
    case TOK_ENUMERATED: listType(TYP_ENUM, MGR150EnumerationItemList); break;
    case TOK_CHOICE: listType(TYP_CHOICE, MGR202AlternativeTypeList); break;
    case TOK_SEQUENCE:
    case TOK_SET: MGR103CollectionType(); break;
    case TOK_ABSTRACT_SYNTAX:
    case TOK_TYPE_IDENTIFIER:
        ReadIn();
        optionalFieldList(node, token == TOK_ABSTRACT_SYNTAX ? TYP_ABSTR_STX : TYP_TYPE_ID);
        break;
    default: compositeType(node);
    }
}

/// DefinedType ::= [moduleid `.`] (typeid | valueid) [ActualParameters] [`.` FieldName]
void MGR83DefinedType() {
    const TNodeNr node = thisTypeNode();
    DefinedTypeText text;
    if (parserState.Inp.code == TOK_MODULEID) {
        text.moduleRef = parserState.Inp.stri();
        ReadIn();
        expectToken(TOK_DOT);
    }
    const bool isValue = parserState.Inp.code == TOK_VALUEID;
    if (!isValue && parserState.Inp.code != TOK_TYPEID) {
        MGError(TOK_TYPEID);
        return;
    }
    text.name = parserState.Inp.stri();
    text.line = parserState.Inp.line;
    ReadIn();
    if (parserState.Inp.code == TOK_LBRACE) text.actuals = MGR63BraceValue();
    const bool hasFields = parserState.Inp.code == TOK_DOT;
    if (hasFields) {
        ReadIn();
        text.fields = nextRec<KIND_SNODE>(cMP);
        MGR113FieldName();
    }
    if (!atType(node)) return;
    if (hasFields) {
        setFieldList(node, text, isValue);
    } else if (isValue) { // a value is no type; the reference stays unresolved
        setTypeNode(TYP_SYNONYM);
        recordError(cMP, ERR_SEMANTIC, Msg::DefinedTypeSyntax, text.line);
    } else {
        setTypeReference(text);
    }
}

namespace {

/// `{` [ComponentList] `}` of SEQUENCE and SET; the current token is behind the brace.
void componentBraces(TNodeNr node) {
    switch (parserState.Inp.code) {
    case TOK_COMPONENTS:
    case TOK_ELLIPSIS:
    case TOK_VALUEID: MGR183ComponentList(); break;
    case TOK_RBRACE:
        if (!buildsTree()) break;
        if (cMP->extensibilityImplied) appendExtensionMarker();
        if (atType(node) && !cMP->extensibilityImplied) tNode.ref = 0;
        break;
    default: MGError(notAllowed);
    }
    expectToken(TOK_RBRACE);
}

/// [SIZE `(` Constraint `)` | `(` Constraint `)`] before OF
DNodeNr collectionConstraint() {
    const int32_t token = parserState.Inp.code;
    if (token != TOK_SIZE && token != TOK_LPAREN) {
        if (token != TOK_OF) MGError(notAllowed);
        return {};
    }
    const DNodeNr constraint = initDeferList();
    if (token == TOK_SIZE) ReadIn();
    if (parserState.Inp.code == TOK_LPAREN)
        parenthesizedContents();
    else
        MGError(TOK_LPAREN);
    storeDeferList(constraint);
    return constraint;
}

/// The element has a name (X.680 (02/2021) 26.1): a type stands behind an identifier that does not
/// begin one itself, as in `a < T` and `object.&Type`.
bool elementNameFollows() {
    return newNotation() && parserState.Inp.code == TOK_VALUEID && beginsType(lookAhead(1).code);
}

/// [SizeConstraint] OF (Type | NamedType)
void collectionOf(TNodeNr node) {
    const DNodeNr constraint = collectionConstraint();
    if (atType(node)) finishNode(constraint);
    expectToken(TOK_OF);
    if (atType(node)) {
        tNode.ref = cMP->nextRecNr[KIND_TNODE]; // types in the constraint have taken numbers
        newTypeNode();
        tNode.compStatus = TCS_MULTIPLE;
    }
    if (elementNameFollows())
        MGR191NamedType();
    else
        MGR59Type();
    atType(node);
}

} // namespace

/// CollectionType ::= (SEQUENCE | SET)
///     (`{` [ComponentList] `}` | [SizeConstraint] OF (Type | NamedType))
void MGR103CollectionType() {
    const TNodeNr node = thisTypeNode();
    const bool isSet = parserState.Inp.code == TOK_SET;
    ReadIn();
    if (parserState.Inp.code == TOK_LBRACE) {
        setTypeCode(isSet ? TYP_SET : TYP_SEQ);
        ReadIn();
        componentBraces(node);
    } else {
        setTypeCode(isSet ? TYP_SETOF : TYP_SEQOF);
        collectionOf(node);
    }
}

} // namespace orvo
