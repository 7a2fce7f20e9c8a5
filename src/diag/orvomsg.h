#pragma once

// Numbers, classes and texts of the diagnostics.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "lex/orvotok.h"
#include "tree/orvodef.h"

namespace orvo {

/// Numbers of the messages. Codes of the families below the table (syntax errors of values, token
/// expected, constraints) are made by the functions that follow.
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
static_assert(std::size(errorList) == 121);

enum ErrClass : int32_t { ERR_NONE = 0, ERR_WARNING = 1, ERR_SEMANTIC = 2, ERR_SYNTAX = 3 };
inline constexpr const char* errClassNames[] = {"No error", "Warning", "Error", "Syntax error"};

/// "%s value syntax" of a type code, for example 201 "INTEGER value syntax".
constexpr Msg valueSyntax(int typeCode) {
    return static_cast<Msg>(200 + typeCode);
}
/// "Invalid %s constraint(s)", by index of subNameArr.
constexpr Msg invalidConstraint(int nameIndex) {
    return static_cast<Msg>(300 + nameIndex);
}
/// "Value out of %s constraint(s)", by index of subNameArr.
constexpr Msg valueOutOfConstraint(int nameIndex) {
    return static_cast<Msg>(320 + nameIndex);
}
/// "Invalid %s value" of a type code.
constexpr Msg invalidValue(int typeCode) {
    return static_cast<Msg>(340 + typeCode);
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
/// Diagnostics beyond this number are counted, not kept.
inline constexpr int maxRecordedErrors = 500;

} // namespace orvo
