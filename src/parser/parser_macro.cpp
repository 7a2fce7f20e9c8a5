// A macro is not expanded: its arguments are notation of its own, which only its author knows. What
// protocols and management modules need of it is what stands behind `::=`, or behind SYNTAX.

#include "parser/parser_macro.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "diag/orvoerr.h"
#include "parser/parser.h"
#include "parser/parser_ass.h"
#include "parser/parser_defer.h"
#include "parser/parser_oid.h"
#include "parser/parser_typ.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// Brackets of every kind that the current token opens, less those that it closes.
int bracketsOf(int32_t code) {
    switch (code) {
    case TOK_LBRACE:
    case TOK_LPAREN:
    case TOK_LBRACKET: return 1;
    case TOK_LVERSION: return 2;
    case TOK_RBRACE:
    case TOK_RPAREN:
    case TOK_RBRACKET: return -1;
    case TOK_RVERSION: return -2;
    default: return 0;
    }
}

/// Passes over tokens up to one of the set that stands in no brackets, END or the end of the text.
void passOverTo(const TokenSet& stop) {
    const Restore<bool> quiet(parserState.passingOver, true);
    int open = 0;
    while (parserState.Inp.code != TOK_EOF) {
        if (open <= 0 && (stop.has(parserState.Inp.code) || parserState.Inp.code == TOK_END))
            return;
        open += bracketsOf(parserState.Inp.code);
        ReadIn();
    }
}

bool isMacroDefinition() {
    return parserState.Inp.code == TOK_TYPEID && nameOf(lookAhead(1)) == "MACRO" &&
           lookAhead(2).code == TOK_ASSIGN;
}

/// Published modules write `localValue 5` and `localValue : 5`.
bool isForm(const Token& token) {
    return token.code == TOK_VALUEID &&
           (nameOf(token) == "localValue" || nameOf(token) == "globalValue");
}
constexpr TokenSet beginsFormValue = {TOK_COLON, TOK_NUMBER, TOK_MINUS, TOK_LBRACE};

/// Notation that no type is written with stands behind the name of the macro.
bool isMacroValue() {
    if (parserState.Inp.code != TOK_VALUEID || lookAhead(1).code != TOK_TYPEID) return false;
    if (cMP->macros.contains(nameOf(lookAhead(1)))) return true;
    const int32_t behind = lookAhead(2).code;
    if (behind == TOK_ASSIGN) // v OPERATION ::= localValue 5
        return isForm(lookAhead(3)) && beginsFormValue.has(lookAhead(4).code);
    return behind == TOK_TYPEID || behind == TOK_VALUEID || behind == TOK_CSTRING ||
           isReservedWord(behind);
}

/// T ::= MACRO WORD "text" ..., T ::= MACRO WORD name ...
bool isMacroType() {
    if (parserState.Inp.code != TOK_TYPEID || lookAhead(1).code != TOK_ASSIGN ||
        lookAhead(2).code != TOK_TYPEID)
        return false;
    if (cMP->macros.contains(nameOf(lookAhead(2)))) return true;
    if (lookAhead(3).code != TOK_TYPEID) return false;
    const int32_t argument = lookAhead(4).code;
    return argument == TOK_CSTRING || (argument == TOK_VALUEID && lookAhead(5).code != TOK_DOT);
}

/// name MACRO `::=` (BEGIN ... END | reference)
void macroDefinition() {
    recordError(cMP, ERR_WARNING, Msg::MacroPassedOver, parserState.Inp.line,
                nameOf(parserState.Inp));
    cMP->macros.emplace(nameOf(parserState.Inp));
    for (int i = 0; i < 3; ++i) ReadIn();
    if (parserState.Inp.code == TOK_BEGIN) {
        passOverTo({});
        expectToken(TOK_END);
        return;
    }
    expectToken(TOK_TYPEID);
    if (parserState.Inp.code != TOK_DOT) return;
    ReadIn();
    expectToken(TOK_TYPEID);
}

/// Kind of the value behind `::=`: a number is an INTEGER, braces an OBJECT IDENTIFIER. That of a
/// reference is not known yet.
TypeCode kindOfValue() {
    switch (parserState.Inp.code) {
    case TOK_NUMBER:
    case TOK_MINUS: return TYP_INTEGER;
    case TOK_LBRACE:
    case TOK_VALUEID: return TYP_OBJID;
    default: return TYP_NONE;
    }
}

/// name MACRO ... `::=` [localValue | globalValue] [`:`] value
void macroValue() {
    const Token name = parserState.Inp;
    ReadIn();
    const Token macro = parserState.Inp;
    passOverTo({TOK_ASSIGN});
    if (!expectToken(TOK_ASSIGN)) return;
    if (isForm(parserState.Inp)) {
        ReadIn();
        if (parserState.Inp.code == TOK_COLON) ReadIn();
    }
    const TypeCode kind = kindOfValue();
    if (kind == TYP_NONE) {
        noteMacro(macro, {}, true);
        recordError(cMP, ERR_WARNING, Msg::MacroValueLeftOut, name.line, nameOf(name));
        cMP->macros.emplace(nameOf(name));
        MGR68OpenValue();
        return;
    }
    const bool isReference = parserState.Inp.code == TOK_VALUEID;
    const VNodeNr head = newValueHead(name, false);
    noteMacro(macro, isReference ? head : VNodeNr{}, true);
    const TNodeNr type = newTypeNode();
    setTypeCode(kind);
    if (atValue(head)) vNode.govType = type.nr;
    assignedValue(head);
}

/// name `::=` MACRO ... SYNTAX Type
void macroType() {
    const Token name = parserState.Inp;
    ReadIn();
    noteMacro(lookAhead(1), {}, true);
    ReadIn();
    passOverTo({TOK_SYNTAX});
    if (!expectToken(TOK_SYNTAX)) return;
    const Restore own(parserState.openInst, static_cast<int16_t>(parserState.openInst + 1));
    atType(newTypeHead(name, false));
    MGR59Type();
}

constexpr std::string_view encodingReferences[] = {"XER", "PER", "JER"};

/// Passes over the brackets at the current token.
void passOverBrackets() {
    recordOnce(cMP, Msg::EncodingPassedOver, parserState.Inp.line, {});
    const Restore<bool> quiet(parserState.passingOver, true);
    int open = 0;
    while (parserState.Inp.code != TOK_EOF) {
        open += bracketsOf(parserState.Inp.code);
        parserState.passingOver = open > 0; // what is wrong behind the last one is wrong
        ReadIn();
        if (open <= 0) return;
    }
}

} // namespace

bool mayBeMacro(const Token& type) {
    if (type.code != TOK_TYPEID) return false;
    return std::ranges::none_of(nameOf(type), [](char c) { return c >= 'a' && c <= 'z'; });
}

void noteMacro(const Token& macro, VNodeNr value, bool byNotation) {
    if (buildsTree()) cMP->macroUses.push_back({macro.stri(), macro.line, value, byNotation});
}

bool macroFollows() {
    return isMacroDefinition() || isMacroValue() || isMacroType();
}

void macroAssignment() {
    if (isMacroDefinition())
        macroDefinition();
    else if (parserState.Inp.code == TOK_VALUEID)
        macroValue();
    else
        macroType();
}

void encodingPrefixes() {
    while (parserState.Inp.code == TOK_LBRACKET && lookAhead(1).code == TOK_TYPEID) {
        const std::string_view reference = nameOf(lookAhead(1));
        if (lookAhead(2).code == TOK_COLON) {
            if (reference == "TAG") return;
            if (buildsTree() &&
                std::ranges::find(encodingReferences, reference) == std::end(encodingReferences))
                recordError(cMP, ERR_SEMANTIC, Msg::UnknownEncodingReference, parserState.Inp.line,
                            reference);
        } else if (!cMP->otherInstructions || lookAhead(2).code == TOK_DOT) {
            return;
        }
        passOverBrackets();
    }
}

void encodingControlSections() {
    while (parserState.Inp.code == TOK_ENCODING_CONTROL) {
        recordOnce(cMP, Msg::EncodingPassedOver, parserState.Inp.line, {});
        ReadIn();
        passOverTo({TOK_ENCODING_CONTROL});
    }
}

} // namespace orvo
