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

/// Passes over tokens up to one of the set that stands in no brackets, END or the end of the text;
/// also to one of which `stopsAt` holds.
template <typename Fn> void passOverTo(const TokenSet& stop, Fn&& stopsAt) {
    const Restore<bool> quiet(parserState.passingOver, true);
    int open = 0;
    while (parserState.Inp.code != TOK_EOF) {
        const int32_t code = parserState.Inp.code;
        if (open <= 0 && (stop.has(code) || code == TOK_END || stopsAt())) return;
        open += bracketsOf(parserState.Inp.code);
        ReadIn();
    }
}
void passOverTo(const TokenSet& stop) {
    passOverTo(stop, [] { return false; });
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

/// Words with which arguments of the macros OPERATION and ERROR begin (X.219).
constexpr std::string_view argumentWords[] = {"ARGUMENT", "PARAMETER", "RESULT", "ERRORS",
                                              "LINKED"};
bool beginsArgument(const Token& token) {
    return std::ranges::find(argumentWords, nameOf(token)) != std::end(argumentWords);
}

/// T ::= MACRO SYNTAX ..., T ::= MACRO WORD "text" ..., T ::= MACRO WORD name ..., T ::= MACRO WORD
/// Name Name ...: where no macro is meant an assignment begins at WORD.
bool isMacroType() {
    if (parserState.Inp.code != TOK_TYPEID || lookAhead(1).code != TOK_ASSIGN ||
        lookAhead(2).code != TOK_TYPEID)
        return false;
    if (cMP->macros.contains(nameOf(lookAhead(2)))) return true;
    if (lookAhead(3).code == TOK_SYNTAX) return true;
    if (lookAhead(3).code != TOK_TYPEID || lookAhead(4).code == TOK_ASSIGN) return false;
    if (beginsArgument(lookAhead(3))) return true;
    const int32_t argument = lookAhead(4).code;
    const int32_t behind = lookAhead(5).code;
    if (argument == TOK_TYPEID)
        return behind == TOK_TYPEID || behind == TOK_VALUEID || isReservedWord(behind);
    return argument == TOK_CSTRING || (argument == TOK_VALUEID && behind != TOK_DOT);
}

/// An assignment begins at the current token: what a macro without SYNTAX leaves of its type ends.
bool isNextAssignment() {
    const int32_t code = parserState.Inp.code;
    if (code != TOK_TYPEID && code != TOK_VALUEID) return false;
    const int32_t second = lookAhead(1).code;
    const int32_t third = lookAhead(2).code;
    if (code == TOK_TYPEID) {
        if (second == TOK_ASSIGN || isMacroDefinition()) return true;
        return second == TOK_TYPEID && third == TOK_ASSIGN && lookAhead(3).code == TOK_LBRACE;
    }
    if (second == TOK_TYPEID) {
        const std::string_view name = nameOf(lookAhead(1));
        if (cMP->macros.contains(name)) return true;
        if (third == TOK_TYPEID) // v OPERATION ARGUMENT ..., but not: v Type RESULT ...
            return beginsArgument(lookAhead(2)) &&
                   (name.ends_with("OPERATION") || name.ends_with("ERROR"));
        return third == TOK_ASSIGN || (third == TOK_DOT && lookAhead(4).code == TOK_ASSIGN);
    }
    return beginsType(second) && (third == TOK_ASSIGN || lookAhead(3).code == TOK_ASSIGN);
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

/// Kind of the value behind `::=`: a number is an INTEGER, braces may be an OBJECT IDENTIFIER. That
/// of a reference is not known yet.
TypeCode kindOfValue() {
    switch (parserState.Inp.code) {
    case TOK_NUMBER:
    case TOK_MINUS: return TYP_INTEGER;
    case TOK_LBRACE: return TYP_OBJID;
    case TOK_VALUEID: return lookAhead(1).code == TOK_COLON ? TYP_NONE : TYP_OBJID;
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
    const VNodeNr head = newValueHead(name, false);
    noteMacro(macro, kind == TYP_INTEGER ? VNodeNr{} : head, true);
    const TNodeNr type = newTypeNode();
    setTypeCode(kind);
    if (atValue(head)) vNode.govType = type.nr;
    assignedValue(head);
}

/// name `::=` MACRO ... [SYNTAX Type]
void macroType() {
    const Token name = parserState.Inp;
    ReadIn();
    noteMacro(lookAhead(1), {}, true);
    ReadIn();
    ReadIn();
    passOverTo({TOK_SYNTAX, TOK_ASSIGN}, isNextAssignment);
    if (parserState.Inp.code == TOK_END || isNextAssignment()) {
        recordError(cMP, ERR_WARNING, Msg::MacroTypeLeftOut, name.line, nameOf(name));
        cMP->macros.emplace(nameOf(name));
        return;
    }
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
    if (buildsTree())
        cMP->macroUses.push_back({macro.stri(), macro.line, value, {}, byNotation, false});
}

void noteMacroType(const Token& macro, TNodeNr type) {
    if (buildsTree()) cMP->macroUses.push_back({macro.stri(), macro.line, {}, type, false, false});
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

bool isEncodingReference(std::string_view name) {
    return std::ranges::find(encodingReferences, name) != std::end(encodingReferences);
}

void encodingPrefixes() {
    while (parserState.Inp.code == TOK_LBRACKET && lookAhead(1).code == TOK_TYPEID) {
        const std::string_view reference = nameOf(lookAhead(1));
        if (lookAhead(2).code == TOK_COLON) {
            if (reference == "TAG") return;
            if (buildsTree() && !isEncodingReference(reference))
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
