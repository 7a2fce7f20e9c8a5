// Invariant: what the header and the clauses say about the module as a whole goes into its record
// at once; symbols and nodes are made only while the module has no syntax error.

#include "parser/parser_mod.h"

#include <string>

#include "check/orvostri.h"
#include "diag/orvoerr.h"
#include "parser/parser.h"
#include "parser/parser_ass.h"
#include "parser/parser_macro.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/types.h"
#include "util/utf8.h"

namespace orvo {
namespace {

constexpr int tagDefaultExplicit = TAGMODE_EXPLICIT;
/// A reference may still turn out to need an explicit tag; automatic tags are implicit ones.
constexpr int tagDefaultImplicit = TAGMODE_OPEN;

bool isReference(int32_t code) {
    return code == TOK_TYPEID || code == TOK_VALUEID;
}

bool isListedWord(int32_t code) {
    const bool isWord = isReservedWord(code) || isOlderTypeName(code) || isLaterWord(code);
    return isWord && code != TOK_FROM && code != TOK_END;
}

/// Words of the name at the current token that need no import, though published modules list it:
/// `BMPString`, `BIT STRING`; 0 for other names.
uint32_t reservedSymbolWords() {
    if (!isLenient(cMP) || !isListedWord(parserState.Inp.code)) return 0;
    const uint32_t words = isListedWord(lookAhead(1).code) ? 2 : 1;
    constexpr TokenSet behindSymbol = {TOK_COMMA, TOK_FROM, TOK_SEMICOLON};
    return behindSymbol.has(lookAhead(words).code) ? words : 0;
}

void passOverReservedSymbol(uint32_t words) {
    std::string name(tokenName(parserState.Inp.code));
    if (words == 2) name.append(" ").append(tokenName(lookAhead(1).code));
    recordOnce(cMP, Msg::ReservedWordInSymbolList, parserState.Inp.line, name);
    for (; words != 0; --words) ReadIn();
}

/// [(EXPLICIT | IMPLICIT | AUTOMATIC) TAGS]
void tagDefault() {
    cMP->tagDefault = tagDefaultExplicit;
    const int32_t token = parserState.Inp.code;
    switch (token) {
    case TOK_EXPLICIT:
    case TOK_IMPLICIT:
    case TOK_AUTOMATIC:
        if (token != TOK_EXPLICIT) cMP->tagDefault = tagDefaultImplicit;
        cMP->automaticTags = token == TOK_AUTOMATIC;
        ReadIn();
        expectToken(TOK_TAGS);
        break;
    case TOK_EXTENSIBILITY:
    case TOK_ASSIGN: break;
    default: MGError(notAllowed);
    }
    if (cMP->tagDefault == tagDefaultExplicit && cMP->options.explicitTags != 0)
        recordError(cMP, ERR_WARNING, Msg::ExplicitTaggingNotAllowed, parserState.prevL);
}

/// The IRI behind the identifier of a module, which only has to be one.
void moduleIri() {
    const Token iri = parserState.Inp;
    if (buildsTree() && !isIri(fromUtf8(getStri(cMP, iri.stri())), false))
        recordError(cMP, ERR_SEMANTIC, invalidValue(TYP_OIDIRI), iri.line);
    ReadIn();
}

/// [reference INSTRUCTIONS] of X.680 (02/2021) 13.1
void encodingReferenceDefault() {
    if (parserState.Inp.code != TOK_TYPEID || lookAhead(1).code != TOK_INSTRUCTIONS) return;
    const std::string_view reference = nameOf(parserState.Inp);
    cMP->otherInstructions = reference != "TAG";
    if (buildsTree() && cMP->otherInstructions && !isEncodingReference(reference))
        recordError(cMP, ERR_SEMANTIC, Msg::UnknownEncodingReference, parserState.Inp.line,
                    reference);
    ReadIn();
    ReadIn();
}

/// [EXTENSIBILITY IMPLIED]
void extensibilityDefault() {
    if (parserState.Inp.code != TOK_EXTENSIBILITY) return;
    ReadIn();
    if (expectToken(TOK_IMPLIED)) cMP->extensibilityImplied = true;
}

/// BEGIN. What the options of the module say about its notation holds from here on.
void beginBody() {
    const bool isNew = cMP->options.standardVersion == 2021;
    if (parserState.Inp.code == TOK_BEGIN && isNew != cMP->newNotation && !lexState.fromMemory) {
        cMP->newNotation = isNew;
        run.anyNewNotation |= isNew;
        relexBehind();
    }
    expectToken(TOK_BEGIN);
}

/// [EXPORTS [SymbolList] `;`]
void exportsClause() {
    if (parserState.Inp.code != TOK_EXPORTS) return;
    ReadIn();
    cMP->exportsState = parserState.Inp.code == TOK_SEMICOLON ? 1 : 2;
    if (parserState.Inp.code == TOK_ALL && newNotation()) {
        ReadIn();
        cMP->exportsState = 0;
    }
    if (cMP->exportsState == 2) {
        MGR24SymbolList(SYM_EXPORTED);
        if (buildsTree()) catSymTab(cMP->symTab, parserState.symbolList, SYM_EXPORTED);
    }
    expectToken(TOK_SEMICOLON);
}

/// Tells whether the current token, behind the module reference of a FROM clause, is its assigned
/// identifier and not the first symbol of the next clause.
bool assignedReferenceFollows() {
    uint32_t behind = 1;
    if (parserState.Inp.code == TOK_TYPEID) { // Module.value
        if (lookAhead(1).code != TOK_DOT || lookAhead(2).code != TOK_VALUEID) return false;
        behind = 3;
    } else if (parserState.Inp.code != TOK_VALUEID) {
        return false;
    }
    constexpr TokenSet behindSymbol = {TOK_LBRACE, TOK_COMMA, TOK_FROM};
    return !behindSymbol.has(lookAhead(behind).code);
}

/// [ObjectIdValue | DefinedValue] behind the module reference of a FROM clause
void assignedIdentifier() {
    if (parserState.Inp.code != TOK_LBRACE && parserState.Inp.code != TOK_MARKER) return;
    newObjectIdNode();
    if (parserState.Inp.code == TOK_LBRACE) {
        MGR13ObjectIdValue();
    } else {
        ReadIn();
        MGR42DefinedValue();
    }
}

/// WITH (SUCCESSORS | DESCENDANTS), words that are reserved nowhere else
void selectionOption(int32_t module, bool hasIdentifier) {
    const uint32_t line = parserState.Inp.line;
    ReadIn();
    const std::string_view word = nameOf(parserState.Inp);
    if (word != "SUCCESSORS" && word != "DESCENDANTS") {
        MGError(notAllowed);
        return;
    }
    ReadIn();
    if (!buildsTree()) return;
    if (!hasIdentifier) recordError(cMP, ERR_SEMANTIC, Msg::SelectionWithoutIdentifier, line, word);
    ModRef* const ref = matchingName(cMP->modRefs, getStri(cMP, module));
    if (ref != nullptr && ref->selection == 0) ref->selection = word == "SUCCESSORS" ? 1 : 2;
}

/// SymbolList FROM typeid [AssignedIdentifier] [SelectionOption]
void symbolsFromModule() {
    MGR24SymbolList(SYM_IMPORTED);
    expectToken(TOK_FROM);
    const Token module = parserState.Inp;
    expectToken(TOK_TYPEID);
    if (assignedReferenceFollows()) insertToken(TOK_MARKER, 0);
    const int32_t token = parserState.Inp.code;
    if (buildsTree())
        handleImports(parserState.symbolList, module.stri(),
                      token == TOK_LBRACE || token == TOK_MARKER, module.line);
    assignedIdentifier();
    if (parserState.Inp.code == TOK_WITH && newNotation())
        selectionOption(module.stri(), token == TOK_LBRACE || token == TOK_MARKER);
    if (reservedSymbolWords() != 0) return;
    if (!isReference(parserState.Inp.code) && parserState.Inp.code != TOK_SEMICOLON)
        MGError(notAllowed);
}

/// [IMPORTS {SymbolsFromModule} `;`]
void importsClause() {
    if (parserState.Inp.code != TOK_IMPORTS) return;
    ReadIn();
    cMP->importsState = parserState.Inp.code == TOK_SEMICOLON ? 1 : 2;
    while (isReference(parserState.Inp.code) || reservedSymbolWords() != 0) symbolsFromModule();
    expectToken(TOK_SEMICOLON);
}

} // namespace

/// ModuleDefinition ::= ModuleIdentifier DEFINITIONS [TagDefault TAGS] [EXTENSIBILITY IMPLIED]
/// `::=`
///     BEGIN [Exports] [Imports] {Assignment} END
void MGR3ModuleDefinition() {
    MGR4ModuleIdentifier();
    expectToken(TOK_DEFINITIONS);
    if (newNotation()) encodingReferenceDefault();
    tagDefault();
    extensibilityDefault();
    expectToken(TOK_ASSIGN);
    beginBody();
    constexpr TokenSet bodyStart = {TOK_EXPORTS, TOK_IMPORTS, TOK_TYPEID,
                                    TOK_VALUEID, TOK_END,     TOK_ENCODING_CONTROL};
    if (!MGIsInSet(bodyStart)) MGError(notAllowed);
    exportsClause();
    importsClause();
    parseAssignments();
    if (newNotation()) {
        encodingControlSections();
        if (buildsTree()) settleImportedExports();
    }
    expectToken(TOK_END);
}

/// ModuleIdentifier ::= typeid [ObjectIdValue]
void MGR4ModuleIdentifier() {
    const Token name = parserState.Inp;
    expectToken(TOK_TYPEID);
    const bool hasObjId = parserState.Inp.code == TOK_LBRACE;
    uint32_t rejectedKinds = 0;
    handleModuleId(name.stri(), hasObjId, name.line, rejectedKinds);
    if (hasObjId) {
        newObjectIdNode();
        MGR13ObjectIdValue();
        if (parserState.Inp.code == TOK_CSTRING && newNotation()) moduleIri();
    }
    constexpr TokenSet behindIdentifier = {TOK_DEFINITIONS, TOK_EOF};
    if (!MGIsInSet(behindIdentifier)) MGSkip({TOK_DEFINITIONS});
}

/// SymbolList ::= Symbol {`,` Symbol}
void MGR24SymbolList(uint8_t clause) {
    parserState.symbolList = {};
    MGR26Symbol(clause);
    while (parserState.Inp.code == TOK_COMMA) {
        ReadIn();
        MGR26Symbol(clause);
    }
}

/// Symbol ::= (typeid | valueid) [`{` `}`]
void MGR26Symbol(uint8_t clause) {
    const Token symbol = parserState.Inp;
    if (const uint32_t words = reservedSymbolWords()) {
        passOverReservedSymbol(words);
        return;
    }
    if (!isReference(symbol.code)) {
        MGError(notAllowed);
        return;
    }
    ReadIn();
    constexpr TokenSet behindSymbol = {TOK_LBRACE, TOK_FROM, TOK_COMMA, TOK_SEMICOLON};
    if (!MGIsInSet(behindSymbol)) MGError(notAllowed);
    uint8_t flags = clause;
    if (parserState.Inp.code == TOK_LBRACE) {
        ReadIn();
        expectToken(TOK_RBRACE);
        flags |= SYM_PARAMETERIZED;
    }
    if (buildsTree()) handleSymbol(parserState.symbolList, symbol.stri(), flags, symbol.line);
}

} // namespace orvo
