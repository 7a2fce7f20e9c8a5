// The form of values that have a form of their own: enumeration items, named bits, open type
// values, characters, times, IRIs.

#include <algorithm>
#include <string_view>

#include "check/check_cache.h"
#include "check/orvostri.h"
#include "check/orvotime.h"
#include "check/p5typ.h"
#include "check/p5val_int.h"
#include "tree/orvoutil_find.h"
#include "util/ascii.h"
#include "util/guard.h"
#include "util/utf8.h"

namespace orvo {

namespace {

/// What the items of the current enumeration stand for; an item may be numbered by a defined value.
const std::set<std::pair<ModuleRec*, uint32_t>>& itemsOfEnum() {
    const KeepRec<KIND_VNODE> keep;
    ModuleRec* module = typeModule();
    const auto [note, isNew] = checkCacheOf(module).enumItems.try_emplace(tNode.namedVals);
    if (!isNew) return note->second;
    for ([[maybe_unused]] const VNodeNr nr : chain(module, VNodeNr{tNode.namedVals})) {
        if (vNode.valCode == TYP_EXTENSION_MARKER) continue;
        skipValues(false);
        const VNodeRef item = currentRec<KIND_VNODE>();
        note->second.insert({item.module, item.nr.nr});
    }
    return note->second;
}

} // namespace

bool checkEnumVal(const ValueErrors& errors, const CheckedValue& value) {
    if (itemsOfEnum().contains({value.module, value.nr.nr})) return true;
    return failValue(errors, value, invalidValue(TYP_ENUM));
}

bool checkBitStriVal(const ValueErrors& errors, const CheckedValue& value) {
    if (tNode.namedVals == 0) return true;
    const KeepRec<KIND_VNODE> keep;
    readRec(value.module, value.nr);
    if (static_cast<int64_t>(getAnyStringLength()) <= highestNamedBit() + 1) return true;
    return failValue(errors, value, invalidValue(TYP_BITSTR));
}

namespace {

/// The type setting resolves to a type, which is checked with it.
bool isTypeThere(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    readRec(value.module, value.nr);
    if (!readTypeSetting()) return false;
    if (checksParts(errors, value)) static_cast<void>(checkTNode());
    skipTypes(true);
    return !is(tNode.typeCode, TypeClass::Reference);
}

/// A value written as Type : value, or CONTAINING value, holds that value, which is checked with
/// it. Relations in its type begin there, as that type is no part of another.
bool checkInner(const ValueErrors& errors, const CheckedValue& value) {
    if (value.rec.refMod != REF_UNRESOLVED || value.rec.ref == 0) return true;
    return !checksParts(errors, value) ||
           checkRecord(errors, {value.module, VNodeNr{value.rec.ref}}, true);
}

} // namespace

bool checkContents(const ValueErrors& errors, const CheckedValue& value) {
    if (!holdsContents(value.rec) || checkInner(errors, value)) return true;
    return failValue(errors, value, invalidValue(tNode.typeCode));
}

bool checkOpenTypeVal(const ValueErrors& errors, const CheckedValue& value) {
    const bool isOpen = value.rec.valCode == TYP_OPEN || value.rec.valCode == TYP_ANY;
    const bool isSetting = value.rec.refMod == REF_FORMAL;
    const bool ok = isSetting ? value.rec.ref != 0 && isTypeThere(errors, value)
                              : value.rec.refMod >= 0 && (!isOpen || checkInner(errors, value));
    return ok || failValue(errors, value, invalidValue(TYP_OPEN));
}

bool checkCharacters(const ValueErrors& errors, const CheckedValue& value) {
    constexpr std::u32string_view numeric = U"0123456789 ";
    constexpr std::u32string_view printable =
        U"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 '()+,-./:=?";
    const std::u32string_view alphabet = tNode.typeCode == TYP_NUMSTR ? numeric : printable;
    const std::u32string chars = distinctChars(value.module, value.rec);
    if (chars.find_first_not_of(alphabet) == std::u32string::npos) return true;
    return failValue(errors, value, valueOutOfConstraint(SUBNAME_PERMITTED_ALPHABET));
}

bool checkWidth(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    const bool isLiteral = value.rec.valCode == kind && value.rec.ref == 0;
    if (isLiteral || !is(kind, TypeClass::StringGroup) || !newNotation(value.module)) return true;
    const char32_t largest = largestCharacter(kind);
    for (const char32_t character : distinctChars(value.module, value.rec))
        if (character > largest) return failValue(errors, value, Msg::CharacterOutsideOfType);
    return true;
}

// ---- times --------------------------------------------------------------------------------------
// GeneralizedTime and UTCTime (X.680 (07/2002) clauses 42 and 43), read from left to right.

namespace {

/// What is left of a text.
struct TimeText {
    std::string_view rest;

    /// Takes the digits at the front, at most `most` of them.
    std::string_view digits(size_t most) {
        size_t count = 0;
        while (count < most && count < rest.size() && isDigit(rest[count])) ++count;
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }
    bool take(std::string_view characters) {
        if (rest.empty() || characters.find(rest.front()) == std::string_view::npos) return false;
        rest.remove_prefix(1);
        return true;
    }
};

int twoDigits(std::string_view text, size_t at) {
    return (text[at] - '0') * 10 + (text[at + 1] - '0');
}

bool isDate(TimeText& text, bool generalized) {
    const size_t length = generalized ? 8 : 6;
    const std::string_view date = text.digits(length);
    if (date.size() != length) return false;
    const int month = twoDigits(date, length - 4);
    const int day = twoDigits(date, length - 2);
    return month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

/// hh, hhmm or hhmmss with a fraction; UTCTime has minutes and no fraction.
bool isTime(TimeText& text, bool generalized) {
    const std::string_view time = text.digits(6);
    if (time.size() != 6 && time.size() != 4 && !(generalized && time.size() == 2)) return false;
    if (twoDigits(time, 0) > 23) return false;
    if (time.size() >= 4 && twoDigits(time, 2) > 59) return false;
    if (time.size() < 6) return true;
    if (twoDigits(time, 4) > 59) return false;
    if (!generalized || !text.take(".,")) return true;
    return !text.digits(text.rest.size()).empty();
}

bool isZone(TimeText& text, bool generalized) {
    if (text.rest.empty()) return generalized;
    if (text.take("Z")) return true;
    if (!text.take("+-")) return false;
    const size_t length = text.digits(4).size();
    return length == 4 || (generalized && length == 2);
}

} // namespace

bool checkTimeVal(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    const bool generalized = kind == TYP_GENTIME;
    const uint8_t code = value.rec.valCode;
    const bool isLiteral = is(code, TypeClass::Narrow) && value.rec.ref == 0;
    TimeText text;
    if (isLiteral) text.rest = plainText(value.module, value.rec);
    const bool ok = isLiteral && isDate(text, generalized) && isTime(text, generalized) &&
                    isZone(text, generalized) && text.rest.empty();
    return ok || failValue(errors, value, invalidValue(kind));
}

bool checkTimeForm(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    TimeVal time;
    const bool ok = is(value.rec.valCode, TypeClass::Time) && value.rec.ref == 0 &&
                    readTime(plainText(value.module, value.rec), time) &&
                    hasSettings(time, settingsOfType(kind));
    return ok || failValue(errors, value, invalidValue(kind));
}

// ---- IRIs ---------------------------------------------------------------------------------------

bool checkIri(const ValueErrors& errors, const CheckedValue& value) {
    const uint8_t kind = tNode.typeCode;
    const std::u32string text = fromUtf8(plainText(value.module, value.rec));
    return isIri(text, kind == TYP_RELOIDIRI) || failValue(errors, value, invalidValue(kind));
}

} // namespace orvo
