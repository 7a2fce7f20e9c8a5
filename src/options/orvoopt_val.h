#pragma once

// Validators of option values. Each tells whether the text is valid and, if so, gives its value; an
// invalid text leaves the value alone.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tree/orvomod.h"

namespace orvo {

/// A named value of an option; names are compared without regard to case.
struct ValueName {
    std::string_view name;
    uint8_t value;
};
inline constexpr ValueName yesNoVal[] = {{"NO", 0}, {"YES", 1}};
inline constexpr ValueName ignoreWarningErrorVal[] = {{"IGNORE", 0}, {"WARNING", 1}, {"ERROR", 2}};
inline constexpr ValueName glbDefLenVal[] = {{"indefinite", 0},
                                             {"no", 0},
                                             {"definite", 1},
                                             {"yes", 1},
                                             {"definite-indefinitecomps", 2},
                                             {"definite-definitecomps", 3}};
inline constexpr ValueName extensionsVal[] = {{"SKIP", 0}, {"SAVE", 1}};
inline constexpr ValueName defCatVal[] = {{"STAND-ALONE", 0},
                                          {"TANVO-SERVICE", 1},
                                          {"TANVO-PROTOCOL", 2},
                                          {"TANVO-IOS", 3},
                                          {"OTHER", 255}};
inline constexpr ValueName generateVal[] = {
    {"none", 0}, {"entries", 1}, {"visibles", 2}, {"entries-and-visibles", 3}};
inline constexpr ValueName setnVal[] = {
    {"none", 0}, {"named-numbers", 1}, {"named-numbers-and-bits", 2}};
inline constexpr ValueName genMnemonics[] = {{"none", 0}, {"combined", 1}, {"separate", 2}};
inline constexpr ValueName locDefLenVal[] = {
    {"indefinite", 0}, {"no", 0}, {"definite", 1}, {"yes", 1}};
inline constexpr ValueName allowedSkipOptionValues[] = {{"ignore", 0}, {"error", 1}};

/// Comparison without regard to the case of ASCII letters.
bool equalNoCase(std::string_view a, std::string_view b);
bool startsNoCase(std::string_view text, std::string_view prefix);

/// A number of at most three digits without leading zero, or one of the names; min..max.
[[nodiscard]] bool byteOptionOK(std::string_view text, int32_t min, int32_t max,
                                std::span<const ValueName> names, uint8_t& value);
/// Decimal digits without leading zero; min..max.
[[nodiscard]] bool int32OptionOK(std::string_view text, int32_t min, int32_t max, int32_t& value);
/// "1", "YES", "TRUE", "0", "NO", "FALSE".
[[nodiscard]] bool booleOptionOK(std::string_view text, bool& value);
/// "0", "OPTIMIZE", "8", "16", "32", "64" and, where unsigned sizes are allowed, "U8" to "U64": a
/// size code.
[[nodiscard]] bool intSizeOptionOK(std::string_view text, bool unsignedSizes, uint8_t& size);
/// "0", "32", "64", "128": a size code.
[[nodiscard]] bool realSizeOptionOK(std::string_view text, uint8_t& size);
/// One or more digits 0..7; each sets the bit of its number.
[[nodiscard]] bool bitVector8OptionOK(std::string_view text, uint8_t& bits);
/// "{m,10,e}" with m in 0..2147483647 and e in 0..32767.
[[nodiscard]] bool realLimOptionOK(std::string_view text, RealVal& value);
/// 1990 or 1994.
[[nodiscard]] bool standardVersionOptionOK(std::string_view text, uint16_t& version);
/// A non-empty text without non-printable characters; gets a "/" at its end when it has none.
[[nodiscard]] bool directoryOptionOK(std::string_view text, std::string& directory);

} // namespace orvo
