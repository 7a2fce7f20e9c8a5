#pragma once

// Numbers, classes and texts of the diagnostics.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Numbers of the messages. Those of the families (syntax errors of values, invalid values,
/// constraints, token expected) are given by the functions that follow; they stand in the tables of
/// the types and of the constraints.
enum class Msg : int32_t {
    None = 0,
    SyntaxError = 10,
    TooManyCharacters = 21,
    NameTooLong = 22,
    TooManyDigits = 25,
    TagNumberRange = 412,
    TagNumberInUse = 413,
    ImplicitChoice = 414,
    ImplicitAny = 415,
    ImplicitOpen = 416,
    NonDistinctTag = 417,
#define MESSAGE(nr, name, classes, text) name = nr,
#include "diag/messages.def"
};

struct MessageText {
    Msg code;
    std::string_view classes;
    std::string_view text;
};
inline constexpr MessageText errorList[] = {
#define MESSAGE(nr, name, classes, text) {Msg::name, classes, text},
#include "diag/messages.def"
};

enum ErrClass : int32_t { ERR_NONE = 0, ERR_WARNING = 1, ERR_SEMANTIC = 2, ERR_SYNTAX = 3 };
inline constexpr const char* errClassNames[] = {"No error", "Warning", "Error", "Syntax error"};

/// "%s value syntax" of a type code, for example 201 "INTEGER value syntax".
constexpr Msg valueSyntax(uint8_t typeCode) {
    return static_cast<Msg>(typeArr[typeCode].valueSyntax);
}
/// "Invalid %s value" of a type code.
constexpr Msg invalidValue(uint8_t typeCode) {
    return static_cast<Msg>(typeArr[typeCode].invalid);
}
/// "Invalid %s constraint(s)".
constexpr Msg invalidConstraint(SubName name) {
    return static_cast<Msg>(subNameArr[name].invalid);
}
/// "Value out of %s constraint(s)".
constexpr Msg valueOutOfConstraint(SubName name) {
    return static_cast<Msg>(subNameArr[name].outOf);
}
/// "'%s' expected" of a token code.
constexpr Msg tokenExpected(int tokenCode) {
    return static_cast<Msg>(500 + tokenCode);
}
/// A lexical error number (20..26) as a message.
constexpr Msg lexicalError(int number) {
    return static_cast<Msg>(number);
}

/// One recorded diagnostic.
struct ErrRec {
    int32_t errClass = ERR_NONE;
    Msg code = Msg::None;
    int32_t line = 0; // 0 = before the first line
    bool hasDetail = false;
    std::string detail;
    std::array<std::string, 7> pieces; // Msg::SyntaxError: token, message, five context names
    int32_t tagClass = 0;              // Msg::TagNumberInUse, Msg::NonDistinctTag
    int32_t tagNr = 0;
};
/// Diagnostics of a module beyond this number are counted, not kept. As many as syntax errors: a
/// fault that is in everything fills no memory.
inline constexpr int maxRecordedErrors = 500;

} // namespace orvo
