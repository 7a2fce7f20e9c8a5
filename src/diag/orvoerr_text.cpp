// One formatter per family of codes; the first that knows a code makes its text. The table of the
// messages comes first: a code that also stands in a table of types is worded there.

#include "diag/orvoerr_text.h"

#include <algorithm>

#include "lex/orvotok.h"
#include "tree/orvodef.h"
#include "util/text.h"

namespace orvo {
namespace {


bool isIn(int code, int first, int last) {
    return code >= first && code <= last;
}

/// The row of a table that names a message in a column; null without one. 0 stands for none.
template <typename Row, size_t size>
const Row* rowOf(const Row (&table)[size], int code, int16_t Row::*column) {
    const Row* row = std::ranges::find(table, code, column);
    return code == 0 || row == std::end(table) ? nullptr : row;
}

/// A number of a column is worded by the table of messages, or else by its row alone.
constexpr bool isWordedOnce(int code) {
    const auto sameAs = [code](const auto& number) { return number == code; };
    const auto rows = std::ranges::count_if(typeArr, sameAs, &TypeRow::valueSyntax) +
                      std::ranges::count_if(typeArr, sameAs, &TypeRow::invalid) +
                      std::ranges::count_if(subNameArr, sameAs, &SubNameRow::invalid) +
                      std::ranges::count_if(subNameArr, sameAs, &SubNameRow::outOf);
    return rows == 1 || code == 0 ||
           std::ranges::count(errorList, static_cast<Msg>(code), &MessageText::code) == 1;
}
static_assert(std::ranges::all_of(typeArr, isWordedOnce, &TypeRow::valueSyntax));
static_assert(std::ranges::all_of(typeArr, isWordedOnce, &TypeRow::invalid));
static_assert(std::ranges::all_of(subNameArr, isWordedOnce, &SubNameRow::invalid));
static_assert(std::ranges::all_of(subNameArr, isWordedOnce, &SubNameRow::outOf));

bool printTableError(Msg code, std::string& text) {
    const MessageText* row = std::ranges::find(errorList, code, &MessageText::code);
    if (row == std::end(errorList)) return false;
    text = row->text;
    return true;
}

bool printValueSyntaxError(int code, std::string& text) {
    constexpr int abstractSyntaxValue = 239; // has a text, though the table gives it to no type
    const TypeRow* row = code == abstractSyntaxValue ? &typeArr[TYP_ABSTR_STX]
                                                     : rowOf(typeArr, code, &TypeRow::valueSyntax);
    if (row == nullptr) return false;
    const bool isObject = is(row->code, TypeClass::Class) && code != abstractSyntaxValue;
    if (row->code == TYP_CLASS)
        text = "Object syntax";
    else
        text = concat(row->asnName, isObject ? " object syntax" : " value syntax");
    return true;
}

bool printInvalidConstraintError(int code, std::string& text) {
    const SubNameRow* row = rowOf(subNameArr, code, &SubNameRow::invalid);
    if (row == nullptr) return false;
    text = concat("Invalid ", row->name, row->kind == SUB_EXCEPTION ? "" : " constraint(s)");
    return true;
}

bool printValueOutOfConstraintError(int code, std::string& text) {
    const SubNameRow* row = rowOf(subNameArr, code, &SubNameRow::outOf);
    if (row == nullptr) return false;
    text = concat("Value out of ", row->name, " constraint(s)");
    return true;
}

bool printInvalidValueError(int code, std::string& text) {
    const TypeRow* row = rowOf(typeArr, code, &TypeRow::invalid);
    if (row == nullptr) return false;
    text = concat("Invalid ", row->asnName, " value");
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
    text = "Non-distinct tag";
    if (record.hasDetail) return true; // tags that are not known
    text += ": ";
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
    text = concat("Error code ", std::to_string(static_cast<int>(code)));
}

void printExtraErrorInfo(const ErrRec& record, std::string& text) {
    if (record.code == Msg::TagNumberInUse) return;
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
        printTableError(record.code, text) || printValueSyntaxError(code, text) ||
        printInvalidConstraintError(code, text) || printValueOutOfConstraintError(code, text) ||
        printInvalidValueError(code, text) ||
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
