// Values of GeneralizedTime and UTCTime (X.680 (07/2002) clauses 42 and 43), read from left to
// right.

#include <string_view>

#include "check/p5val_int.h"
#include "util/ascii.h"

namespace orvo {

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
    if (isLiteral && value.rec.val.str.striLen != 0)
        text.rest = getStri(value.module, int64_t{value.rec.val.str.stri});
    const bool ok = isLiteral && isDate(text, generalized) && isTime(text, generalized) &&
                    isZone(text, generalized) && text.rest.empty();
    return ok || failValue(errors, value, invalidValue(kind));
}

} // namespace orvo
