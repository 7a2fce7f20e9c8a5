#pragma once

// Numbers of value records: integers of any size, real values.

#include <cstdint>
#include <string_view>

#include "lex/i64.h"
#include "tree/orvodef.h"
#include "tree/orvomod.h"
#include "util/integer.h"

namespace orvo {

/// The integer in a value of a module.
[[nodiscard]] Integer integerOf(ModuleRec* module, const ValUnion& val);
void setInteger(ValUnion& val, ModuleRec* module, const Integer& number);
/// The number of a token of the current module into a value of it.
void setInteger(ValUnion& val, const Token& token, bool isNegative);
/// -1, 0 or 1.
[[nodiscard]] int compareIntegers(ModuleRec* modA, const ValUnion& a, ModuleRec* modB,
                                  const ValUnion& b);

/// Codes of the special real values, held in the mantissa under base -1.
enum SpecialReal : int32_t {
    REAL_ZERO = 0,
    REAL_MINUS_INFINITY = -1,
    REAL_PLUS_INFINITY = -2,
    REAL_NOT_A_NUMBER = -3, // in no order with others
    REAL_MINUS_ZERO = -4,
};
/// What getSpecialRealVal gives for a mantissa that is no code.
inline constexpr int32_t noSpecialReal = 2147483647;

void makeRealVal(RealVal& real, I64 mantissa, int16_t base, int16_t exponent);
void makeSpecialRealVal(RealVal& real, int32_t code);
[[nodiscard]] bool isSpecialRealVal(const RealVal& real);
/// The code of a special value; noSpecialReal when the mantissa does not fit in 32 bits.
int32_t getSpecialRealVal(const RealVal& real);
/// The real that the current value gives: a stored real, the literal 0, or three INTEGER values
/// { mantissa, base, exponent }. False when it gives none. Preserving.
[[nodiscard]] bool getRealVal(RealVal& real);
/// The same of a given value.
[[nodiscard]] bool realOfValue(ModuleRec* module, const VNode& value, RealVal& real);
/// As a double: the infinities are the largest doubles; exact for the mantissas and powers that a
/// double holds exactly.
double retRealVal(const RealVal& real);
/// -1, 0 or 1; exact in runs with a module of today's notation, else as doubles compare.
[[nodiscard]] int compareReal(const RealVal& a, const RealVal& b);
/// The same for reals that compare as equal.
[[nodiscard]] uint64_t hashOfReal(const RealVal& real);
/// Sets the real that a number or real number, such as 2.50E-3, is written as: in base 10, its
/// mantissa without trailing zeros.
enum class RealText : uint8_t { Exact, LongMantissa, LongExponent };
[[nodiscard]] RealText realOfText(std::string_view text, bool isNegative, RealVal& real);

} // namespace orvo
