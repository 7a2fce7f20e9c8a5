// Real values: mantissa times a power of the base. Older notation compares them as doubles. A
// double cannot hold every mantissa, and a power beyond its range counts as the infinity of the
// sign, so that a finite value is never beyond PLUS-INFINITY. Today's notation compares them
// exactly: as the product of an odd number that 5 does not divide and powers of 2 and 5.

#include "check/orvonum.h"

#include <algorithm>
#include <compare>
#include <functional>
#include <limits>

#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

constexpr int16_t specialBase = -1;

int sign(std::strong_ordering order) {
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}
constexpr double largest = std::numeric_limits<double>::max();

int16_t clamped16(int64_t value, int16_t least, int16_t most) {
    return static_cast<int16_t>(std::clamp<int64_t>(value, least, most));
}

/// The three INTEGER values of a list; false for any other list.
bool readTriple(ModuleRec* module, VNodeNr first, int64_t (&numbers)[3]) {
    const KeepRec<KIND_VNODE> keep;
    VNodeNr nr = first;
    for (int64_t& number : numbers) {
        if (!nr) return false;
        readRec(module, nr);
        nr = {vNode.next};
        skipValues(false);
        if (vNode.valCode != TYP_INTEGER) return false;
        number = i64native(vNode.val.number);
    }
    return !nr;
}

} // namespace

Integer integerOf(ModuleRec* module, const ValUnion& val) {
    const int64_t nearest = i64native(val.integer.number);
    if (val.integer.text == 0) return Integer(nearest);
    return Integer::of(nearest, getStri(module, int64_t{val.integer.text}));
}

void setInteger(ValUnion& val, ModuleRec* module, const Integer& number) {
    val.integer.number = i64of(number.nearest());
    val.integer.text = number.beyond().empty() ? 0 : putStri(module, number.beyond()).nr;
}

void setInteger(ValUnion& val, const Token& token, bool isNegative) {
    Integer number(i64native(token.value));
    if (token.text != 0) number = Integer::of(getStri(cMP, int64_t{token.text}));
    if (isNegative) number = number.negated();
    setInteger(val, cMP, number);
}

int compareIntegers(ModuleRec* modA, const ValUnion& a, ModuleRec* modB, const ValUnion& b) {
    const auto text = [](ModuleRec* module, uint32_t stri) {
        return stri == 0 ? std::string_view() : getStri(module, int64_t{stri});
    };
    return sign(compareIntegers(i64native(a.integer.number), text(modA, a.integer.text),
                                i64native(b.integer.number), text(modB, b.integer.text)));
}

void makeRealVal(RealVal& real, I64 mantissa, int16_t base, int16_t exponent) {
    real = {mantissa, base, exponent};
}

void makeSpecialRealVal(RealVal& real, int32_t code) {
    real = {i64of(code), specialBase, 0};
}

bool isSpecialRealVal(const RealVal& real) {
    return real.base == specialBase;
}

int32_t getSpecialRealVal(const RealVal& real) {
    const int64_t code = i64native(real.mantissa);
    const bool fits = code >= std::numeric_limits<int32_t>::min() && code <= noSpecialReal;
    return fits ? static_cast<int32_t>(code) : noSpecialReal;
}

bool realOfValue(ModuleRec* module, const VNode& value, RealVal& real) {
    switch (value.valCode) {
    case TYP_REAL: real = value.val.real; return true;
    case TYP_INTEGER: makeSpecialRealVal(real, REAL_ZERO); return true;
    case TYP_SEQ: {
        int64_t numbers[3] = {};
        if (!readTriple(module, VNodeNr{value.ref}, numbers) || numbers[1] < 0) return false;
        makeRealVal(real, i64of(numbers[0]), clamped16(numbers[1], 0, 32767),
                    clamped16(numbers[2], -32767, 32767));
        return true;
    }
    default: return false;
    }
}

bool getRealVal(RealVal& real) {
    return realOfValue(valueModule(), VNode{vNode}, real);
}

double retRealVal(const RealVal& real) {
    if (isSpecialRealVal(real)) {
        switch (getSpecialRealVal(real)) {
        case REAL_MINUS_INFINITY: return -largest;
        case REAL_PLUS_INFINITY: return largest;
        default: return 0.0;
        }
    }
    double value = static_cast<double>(i64native(real.mantissa));
    const double base = real.base;
    if (base == 0.0 && real.exponent < 0) return 0.0;
    for (int left = real.exponent; left > 0 && value != 0.0; --left) {
        value *= base;
        if (value > largest || value < -largest) break;
    }
    for (int left = real.exponent; left < 0 && value != 0.0; ++left) value /= base;
    return std::clamp(value, -largest, largest);
}

RealText realOfText(std::string_view text, bool isNegative, RealVal& real) {
    std::string digits;
    int64_t exponent = 0;
    const size_t mark = text.find_first_of("eE");
    const std::string_view number = text.substr(0, mark);
    const size_t point = number.find('.');
    digits = number.substr(0, point);
    if (point != number.npos) {
        digits += number.substr(point + 1);
        exponent = -static_cast<int64_t>(number.size() - point - 1);
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty()) {
        makeSpecialRealVal(real, isNegative ? REAL_MINUS_ZERO : REAL_ZERO);
        return RealText::Exact;
    }
    const size_t kept = digits.find_last_not_of('0') + 1;
    exponent += static_cast<int64_t>(digits.size() - kept);
    digits.resize(kept);
    if (mark != text.npos) {
        std::string_view written = text.substr(mark + 1);
        const bool isDown = written.starts_with('-');
        if (isDown || written.starts_with('+')) written.remove_prefix(1);
        written.remove_prefix(std::min(written.find_first_not_of('0'), written.size()));
        constexpr size_t longest = 9; // digits of what may still come into range
        if (written.size() > longest) return RealText::LongExponent;
        const int64_t power = written.empty() ? 0 : std::stoll(std::string(written));
        exponent += isDown ? -power : power;
    }
    if (isNegative) digits.insert(0, "-");
    I64 mantissa;
    if (!i64strtosint64(digits, mantissa)) return RealText::LongMantissa;
    if (exponent < INT16_MIN || exponent > INT16_MAX) return RealText::LongExponent;
    makeRealVal(real, mantissa, 10, static_cast<int16_t>(exponent));
    return RealText::Exact;
}

namespace {

/// What is no number lies beyond all numbers; minus zero lies just below zero.
int rankOfSpecial(const RealVal& real) {
    if (!isSpecialRealVal(real)) return 0;
    const int32_t code = getSpecialRealVal(real);
    return code == REAL_NOT_A_NUMBER ? 1 : code == REAL_MINUS_ZERO ? -1 : 0;
}

/// -1 and 1 for the infinities.
int endOf(const RealVal& real) {
    if (!isSpecialRealVal(real)) return 0;
    const int32_t code = getSpecialRealVal(real);
    return code == REAL_PLUS_INFINITY ? 1 : code == REAL_MINUS_INFINITY ? -1 : 0;
}

/// A finite real of base 2 or 10.
struct ScaledReal {
    int64_t number = 0;
    int32_t two = 0, five = 0;
};
bool scaledReal(const RealVal& real, ScaledReal& scaled) {
    if (isSpecialRealVal(real)) return endOf(real) == 0; // the zeros; what is no number has a rank
    if (real.base != 2 && real.base != 10) return false;
    scaled.number = i64native(real.mantissa);
    if (scaled.number == 0) return true;
    scaled.two = real.exponent;
    scaled.five = real.base == 10 ? real.exponent : 0;
    for (; scaled.number % 2 == 0; ++scaled.two) scaled.number /= 2;
    for (; scaled.number % 5 == 0; ++scaled.five) scaled.number /= 5;
    return true;
}

int compareFinite(const RealVal& a, const RealVal& b) {
    ScaledReal left, right;
    if (run.anyNewNotation && scaledReal(a, left) && scaledReal(b, right))
        return sign(
            compareScaled(left.number, left.two, left.five, right.number, right.two, right.five));
    const double valueA = retRealVal(a), valueB = retRealVal(b);
    return valueA < valueB ? -1 : valueA > valueB ? 1 : 0;
}

} // namespace

int compareReal(const RealVal& a, const RealVal& b) {
    const int rankA = rankOfSpecial(a), rankB = rankOfSpecial(b);
    if (rankA == 1 || rankB == 1) return rankA == rankB ? 0 : rankA == 1 ? 1 : -1;
    if (run.anyNewNotation && endOf(a) != endOf(b)) return endOf(a) < endOf(b) ? -1 : 1;
    const int order = compareFinite(a, b);
    return order != 0 ? order : rankA - rankB;
}

uint64_t hashOfReal(const RealVal& real) {
    ScaledReal scaled;
    if (!run.anyNewNotation || !scaledReal(real, scaled))
        return std::hash<double>{}(retRealVal(real));
    const auto powers =
        static_cast<uint64_t>(scaled.two) << 32 ^ static_cast<uint32_t>(scaled.five);
    return std::hash<int64_t>{}(scaled.number) ^ powers * 0x9E3779B97F4A7C15ULL;
}

} // namespace orvo
