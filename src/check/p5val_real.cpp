// REAL values against the components of their associated type (X.680 (02/2021) 21.5). A value has
// many triples of mantissa, base and exponent: it meets the constraint when one of them does. A
// value in decimal notation stands for one of base 2 where the type asks for that (21.6).

#include <optional>

#include "check/orvonum.h"
#include "check/orvonum_end.h"
#include "check/p5val_int.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// A triple; what is not given is not asked for.
struct RealParts {
    std::optional<int64_t> mantissa, base, exponent;
};

std::optional<int64_t> partNamed(const RealParts& parts, std::string_view name) {
    return name == "mantissa" ? parts.mantissa : name == "base" ? parts.base : parts.exponent;
}

bool meetsEntries(const CheckedValue& value, const RealParts& parts, SubRef first) {
    bool met = true;
    forEachOperand(first, [&](SubRef entry) {
        const SubRec sub = subRec;
        ModuleRec* const owner = refModule(entry.module, static_cast<int32_t>(sub.typeMod));
        if (sub.subKind == SUB_EXCEPTION || sub.name == 0 || owner == nullptr) return true;
        const auto number = partNamed(parts, getStri(entry.module, int64_t{sub.name}));
        if (!number) return true;
        CheckedValue part = partOf(value, TYP_INTEGER);
        part.rec.val.number = i64of(*number);
        readRec(owner, TNodeNr{sub.typeNr});
        readRec(entry);
        met = checkAgainstSub({value.module, false}, part);
        return met;
    });
    return met;
}

/// False, and the number as it was, when the product has more than 64 bits.
bool multiply(int64_t& number, int64_t factor) {
    if (number > INT64_MAX / factor || number < INT64_MIN / factor) return false;
    number *= factor;
    return true;
}

/// Any of the triples of a number that is not 0, in one base.
bool meetsInBase(const CheckedValue& value, int64_t mantissa, int64_t base, int64_t exponent,
                 SubRef first) {
    for (; mantissa % base == 0; ++exponent) mantissa /= base;
    while (!meetsEntries(value, {mantissa, base, exponent}, first)) {
        if (!multiply(mantissa, base)) return false;
        --exponent;
    }
    return true;
}

/// The same of a number of base 10 in base 2; of one that base 2 does not have exactly its base.
bool meetsInBinary(const CheckedValue& value, int64_t mantissa, int64_t exponent, SubRef first) {
    int64_t fives = exponent;
    for (; fives < 0 && mantissa % 5 == 0; ++fives) mantissa /= 5;
    while (fives > 0 && multiply(mantissa, 5)) --fives;
    return fives == 0 ? meetsInBase(value, mantissa, 2, exponent, first)
                      : meetsEntries(value, {{}, 2, {}}, first);
}

} // namespace

bool realMeetsEntries(const CheckedValue& value, SubRef first) {
    const RealVal real = value.rec.val.real;
    if (isSpecialRealVal(real)) // zero is 0 in either base; the others have no components
        return getSpecialRealVal(real) != REAL_ZERO || meetsEntries(value, {0, {}, {}}, first);
    const int64_t mantissa = i64native(real.mantissa);
    if (mantissa == 0 || (real.base != 2 && real.base != 10)) return true;
    return meetsInBase(value, mantissa, real.base, real.exponent, first) ||
           (real.base == 10 && meetsInBinary(value, mantissa, real.exponent, first));
}

} // namespace orvo
