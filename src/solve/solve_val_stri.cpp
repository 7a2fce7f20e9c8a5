// Character string values: literals, lists of strings, and single characters by quadruple or tuple.

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "check/orvostri.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_val.h"
#include "solve/solve_val_int.h"
#include "tree/orvorec.h"
#include "tree/values.h"
#include "util/utf8.h"

namespace orvo {

namespace {

void setString(uint8_t kind, size_t length, uint32_t stri) {
    setValNode(static_cast<TypeCode>(kind));
    vNode.val.str.striLen = static_cast<uint16_t>(length);
    vNode.val.str.stri = stri;
}

/// The literal at the cursor; BMPString and UniversalString widen each byte to a character.
void parseCString(uint8_t kind) {
    const int32_t stri = curToken().stri();
    const std::string_view text = getStri(cMP, stri);
    if (kind == TYP_BMPSTR) {
        std::u16string wide;
        for (const char c : text) wide.push_back(static_cast<unsigned char>(c));
        setString(kind, text.size(), putStri16(cMP, wide).nr);
    } else if (kind == TYP_UNISTR) {
        std::u32string wide;
        for (const char c : text) wide.push_back(static_cast<unsigned char>(c));
        setString(kind, text.size(), putStri32(cMP, wide).nr);
    } else {
        setString(kind, text.size(), static_cast<uint32_t>(stri));
    }
}

/// The literal at the cursor, whose characters are UTF-8; false for one that the kind does not
/// have.
bool parseUtf8String(uint8_t kind) {
    const int32_t stri = curToken().stri();
    const std::u32string text = fromUtf8(getStri(cMP, stri));
    const char32_t largest = largestCharacter(kind);
    if (std::ranges::any_of(text, [largest](char32_t c) { return c > largest; })) return false;
    if (kind == TYP_UTF8STR || is(kind, TypeClass::Quoted)) {
        setString(kind, text.size(), static_cast<uint32_t>(stri));
    } else if (kind == TYP_UNISTR) {
        setString(kind, text.size(), putStri32(cMP, text).nr);
    } else if (kind == TYP_BMPSTR) {
        setString(kind, text.size(), putStri16(cMP, std::u16string(text.begin(), text.end())).nr);
    } else {
        std::string narrow;
        for (const char32_t c : text) narrow += static_cast<char>(c);
        setString(kind, text.size(), putStri(cMP, narrow).nr);
    }
    return true;
}

/// The cstring at the cursor, read as the module that it stands in has it.
bool parseLiteral(uint8_t kind, Cause& cause) {
    if (!newNotation()) {
        parseCString(kind);
        return true;
    }
    if (parseUtf8String(kind)) return true;
    cause.set(Msg::CharacterOutsideOfType);
    return false;
}

/// The value becomes the string of one character given by two or four numbers; false for a number
/// that the width of the kind does not admit.
bool setCharacter(uint8_t kind, std::span<const uint32_t> numbers) {
    if (numbers.size() == 2 && kind == TYP_IA5STR) {
        if (numbers[0] > 7 || numbers[1] > 15) return false;
        const std::string text(1, static_cast<char>(16 * numbers[0] + numbers[1]));
        setString(kind, 1, putStri(cMP, text).nr);
        return true;
    }
    if (numbers.size() == 2 && kind == TYP_UTF8STR) return false; // tuples are IA5String's
    if (newNotation() && numbers.size() == 4 && numbers[0] > 127) return false; // groups end there
    const bool isWide = kind == TYP_UNISTR || kind == TYP_UTF8STR;
    const size_t significant = isWide ? 4 : kind == TYP_BMPSTR ? 2 : 1;
    uint32_t character = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        if (numbers[i] != 0 && i + significant < numbers.size()) return false;
        character = character << 8 | numbers[i];
    }
    if (kind == TYP_UTF8STR) {
        const auto scalar = static_cast<char32_t>(character);
        if (!isUnicode(scalar)) return false;
        std::string text;
        appendUtf8(text, scalar);
        setString(kind, 1, putStri(cMP, text).nr);
    } else if (kind == TYP_UNISTR)
        setString(kind, 1, putStri32(cMP, std::u32string(1, static_cast<char32_t>(character))).nr);
    else if (kind == TYP_BMPSTR)
        setString(kind, 1, putStri16(cMP, std::u16string(1, static_cast<char16_t>(character))).nr);
    else
        setString(kind, 1, putStri(cMP, std::string(1, static_cast<char>(character))).nr);
    return true;
}

/// `{ group, plane, row, cell }` or `{ column, row }` (X.680 (07/2002) 37.8); the cursor is on `{`.
bool parseQuadrupleTuple(uint8_t kind, Cause& cause) {
    std::array<uint32_t, 4> numbers = {};
    size_t count = 0;
    bool ok = true;
    do {
        if (!advance() || curCode() != TOK_NUMBER || count == numbers.size()) {
            cause.set(Msg::InvalidQuadrupleTuple);
            return false;
        }
        const int64_t number = i64native(curToken().value);
        ok = ok && number >= 0 && number <= 255;
        numbers[count++] = static_cast<uint32_t>(number);
    } while (advance() && curCode() == TOK_COMMA);
    if (curCode() != TOK_RBRACE) {
        cause.set(tokenExpected(TOK_RBRACE));
        return false;
    }
    if (ok && (count == 2 || count == 4) && setCharacter(kind, std::span(numbers).first(count)))
        return true;
    cause.set(Msg::InvalidQuadrupleTuple);
    return false;
}

/// Since 2002 a list has quadruples and tuples, too (X.680 (02/2021) 41.8).
bool parseStringElement(uint8_t kind, Cause& cause) {
    if (curCode() == TOK_CSTRING) return parseLiteral(kind, cause);
    if (newNotation() && curCode() == TOK_LBRACE) return parseQuadrupleTuple(kind, cause);
    if (!definedValueFollows()) return false;
    if (parseDefinedValue(false, cause) == Msg::None) return true;
    cause.set(Msg::DefinedValueSyntax);
    return false;
}

bool parseStringList(uint8_t kind, Cause& cause) {
    ValueList elements;
    do {
        if (!advance()) return false;
        elements.append(curToken().line);
        if (!parseStringElement(kind, cause)) return false;
    } while (advance() && curCode() == TOK_COMMA);
    if (curCode() == TOK_RBRACE) return true;
    cause.set(tokenExpected(TOK_RBRACE));
    return false;
}

} // namespace

bool parseTextValue(uint8_t kind, Cause& cause) {
    return curCode() == TOK_CSTRING && parseLiteral(kind, cause);
}

bool parseCharStringValue(uint8_t kind, Cause& cause) {
    if (curCode() == TOK_CSTRING) return parseLiteral(kind, cause);
    if (curCode() != TOK_LBRACE) return false;
    if (nextCode() == TOK_NUMBER) return parseQuadrupleTuple(kind, cause);
    return parseStringList(kind, cause);
}

} // namespace orvo
