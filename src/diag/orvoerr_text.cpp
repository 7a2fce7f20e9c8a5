// One formatter per family of codes; the first that knows a code makes its text. Families come
// before the table, so a code that stands in both reads as its family says.

#include "diag/orvoerr_text.h"

#include <algorithm>

#include "lex/orvotok.h"
#include "tree/orvodef.h"
#include "util/text.h"

namespace orvo {
namespace {

/// ASN.1 name of a type code; null outside the table and for types without one.
const char* asnNameOf(int typeCode) {
    return typeCode >= 0 && typeCode < typeCount ? typeArr[typeCode].asnName : nullptr;
}

bool isIn(int code, int first, int last) {
    return code >= first && code <= last;
}

bool printValueSyntaxError(int code, std::string& text) {
    const int typeCode = code - 200;
    if (!isIn(code, 200, 239) || asnNameOf(typeCode) == nullptr) return false;
    switch (code) {
    case 236: text = "Object syntax"; break;
    case 237: text = "TYPE-IDENTIFIER object syntax"; break;
    case 238: text = "ABSTRACT-SYNTAX object syntax"; break;
    default: text = concat(asnNameOf(typeCode), " value syntax");
    }
    return true;
}

bool printInvalidConstraintError(int code, std::string& text) {
    if (!isIn(code, 300, 317)) return false;
    text = concat("Invalid ", subNameArr[code - 300], code == 315 ? "" : " constraint(s)");
    return true;
}

bool printValueOutOfConstraintError(int code, std::string& text) {
    if (!isIn(code, 320, 335)) return false;
    text = concat("Value out of ", subNameArr[code - 320], " constraint(s)");
    return true;
}

bool printInvalidValueError(int code, std::string& text) {
    if (!isIn(code, 340, 378) || asnNameOf(code - 340) == nullptr) return false;
    text = concat("Invalid ", asnNameOf(code - 340), " value");
    return true;
}

bool printImplicitTaggingNotAllowedError(Msg code, std::string& text) {
    std::string_view what;
    if (code == Msg::ImplicitChoice)
        what = "CHOICE";
    else if (code == Msg::ImplicitAny)
        what = "ANY";
    else if (code == Msg::ImplicitOpen)
        what = "Open type";
    else
        return false;
    text = concat(what, " may not be tagged with IMPLICIT");
    return true;
}

bool printTokenExpectedError(int code, std::string& text) {
    if (!isIn(code, 500, 700)) return false;
    text = concat("'", tokenName(code - 500), "' expected");
    return true;
}

bool printTooManyDigitsError(Msg code, std::string& text) {
    if (code != Msg::TooManyDigits) return false;
    text = concat("More than ", std::to_string(maxNumberDigits), " digits in");
    return true;
}

bool printTooManyCharactersError(Msg code, std::string& text) {
    if (code != Msg::TooManyCharacters && code != Msg::NameTooLong) return false;
    const size_t limit = code == Msg::NameTooLong ? maxIdentifierLength : maxStringLength;
    text = concat("More than ", std::to_string(limit), " characters in");
    return true;
}

/// The token and what is wrong with it stand on the first line, the context on the second.
void printSyntaxError(const ErrRec& record, std::string& text) {
    for (size_t at = 0; at < record.pieces.size(); ++at)
        if (!record.pieces[at].empty()) text += concat(record.pieces[at], at == 1 ? "\n" : " ");
    text += "\n";
}

bool printInvalidTagNumberError(Msg code, std::string& text) {
    if (code != Msg::TagNumberRange) return false;
    text = concat("Tag number shall be INTEGER and in range 0..", std::to_string(maxTagNr));
    return true;
}

bool printTagNumberInUseError(const ErrRec& record, std::string& text) {
    if (record.code != Msg::TagNumberInUse) return false;
    text = concat(record.tagClass == TAG_APPLICATION ? "APPLICATION" : "PRIVATE",
                  " number already in use: ", std::to_string(record.tagNr));
    return true;
}

bool printNonDistinctTagError(const ErrRec& record, std::string& text) {
    if (record.code != Msg::NonDistinctTag) return false;
    text = "Non-distinct tag: ";
    switch (record.tagClass) {
    case TAG_UNIVERSAL: text += "[UNIVERSAL "; break;
    case TAG_APPLICATION: text += "[APPLICATION "; break;
    case TAG_CONTEXT: text += "["; break;
    case TAG_PRIVATE: text += "[PRIVATE "; break;
    default: break;
    }
    text += concat(std::to_string(record.tagNr), "]");
    return true;
}

void printOtherError(Msg code, std::string& text) {
    const auto* row = std::ranges::find(errorList, code, &MessageText::code);
    if (row != std::end(errorList))
        text = row->text;
    else
        text = concat("Error code ", std::to_string(static_cast<int>(code)));
}

void printExtraErrorInfo(const ErrRec& record, std::string& text) {
    if (record.code == Msg::TagNumberInUse || record.code == Msg::NonDistinctTag) return;
    if (record.hasDetail) text += concat(": ", record.detail);
}

} // namespace

std::string messageText(const ErrRec& record) {
    const int code = static_cast<int>(record.code);
    std::string text;
    if (record.code == Msg::SyntaxError) {
        printSyntaxError(record, text);
        return text;
    }
    if (record.code == Msg::None && record.hasDetail) return record.detail + "\n"; // text alone
    const bool known =
        printValueSyntaxError(code, text) || printInvalidConstraintError(code, text) ||
        printValueOutOfConstraintError(code, text) || printInvalidValueError(code, text) ||
        printImplicitTaggingNotAllowedError(record.code, text) ||
        printTokenExpectedError(code, text) || printTooManyDigitsError(record.code, text) ||
        printTooManyCharactersError(record.code, text) ||
        printInvalidTagNumberError(record.code, text) || printTagNumberInUseError(record, text) ||
        printNonDistinctTagError(record, text);
    if (!known) printOtherError(record.code, text);
    printExtraErrorInfo(record, text);
    return text + "\n";
}

std::string printError(const ErrRec& record, size_t& textStart) {
    std::string line = concat(" ", record.errClass == ERR_SYNTAX ? "***" : " **", " ",
                              record.errClass == ERR_WARNING ? "WARNING " : "ERROR on", " line ",
                              padLeft(record.line, 3), " : ");
    textStart = line.size();
    return line + messageText(record);
}

} // namespace orvo
