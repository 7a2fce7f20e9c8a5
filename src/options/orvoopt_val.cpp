// Invariant: a validator that returns false has not touched its result.

#include "options/orvoopt_val.h"

#include <algorithm>
#include <charconv>

#include "util/ascii.h"

namespace orvo {
namespace {

/// Digits without leading zero that give a number up to `max`.
bool plainNumber(std::string_view text, int32_t max, int32_t& value) {
    if (text.empty() || !std::ranges::all_of(text, isDigit)) return false;
    if (text[0] == '0' && text.size() > 1) return false;
    int32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
        return false;
    if (number > max) return false;
    value = number;
    return true;
}

/// A size option text and its size code (0 automatic, 6..9 signed sizes, 10..12 reals).
struct SizeName {
    std::string_view text;
    uint8_t code;
};
constexpr SizeName intSizes[] = {{"8", 6}, {"16", 7}, {"32", 8}, {"64", 9}};
constexpr SizeName realSizes[] = {{"0", 0}, {"32", 10}, {"64", 11}, {"128", 12}};
/// Unsigned size codes are 2..5.
constexpr uint8_t signedToUnsigned = 4;

} // namespace

bool equalNoCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, toUpper, toUpper);
}
bool startsNoCase(std::string_view text, std::string_view prefix) {
    return equalNoCase(text.substr(0, prefix.size()), prefix);
}

bool byteOptionOK(std::string_view text, int32_t min, int32_t max, std::span<const ValueName> names,
                  uint8_t& value) {
    constexpr size_t maxDigits = 3;
    int32_t number = -1;
    if (text.size() > maxDigits || !plainNumber(text, UINT8_MAX, number)) {
        const auto named = std::ranges::find_if(
            names, [text](const ValueName& row) { return equalNoCase(row.name, text); });
        if (named == names.end()) return false;
        number = named->value;
    }
    if (number < min || number > max) return false;
    value = static_cast<uint8_t>(number);
    return true;
}

bool int32OptionOK(std::string_view text, int32_t min, int32_t max, int32_t& value) {
    int32_t number = 0;
    if (!plainNumber(text, max, number) || number < min) return false;
    value = number;
    return true;
}

bool booleOptionOK(std::string_view text, bool& value) {
    const bool yes = text == "1" || equalNoCase(text, "YES") || equalNoCase(text, "TRUE");
    const bool no = text == "0" || equalNoCase(text, "NO") || equalNoCase(text, "FALSE");
    if (yes || no) value = yes;
    return yes || no;
}

bool intSizeOptionOK(std::string_view text, bool unsignedSizes, uint8_t& size) {
    if (text == "0" || equalNoCase(text, "OPTIMIZE")) {
        size = 0;
        return true;
    }
    const bool isUnsigned = unsignedSizes && !text.empty() && toUpper(text[0]) == 'U';
    if (isUnsigned) text.remove_prefix(1);
    const auto* row = std::ranges::find(intSizes, text, &SizeName::text);
    if (row == std::end(intSizes)) return false;
    size = isUnsigned ? static_cast<uint8_t>(row->code - signedToUnsigned) : row->code;
    return true;
}

bool realSizeOptionOK(std::string_view text, uint8_t& size) {
    const auto* row = std::ranges::find(realSizes, text, &SizeName::text);
    if (row == std::end(realSizes)) return false;
    size = row->code;
    return true;
}

bool bitVector8OptionOK(std::string_view text, uint8_t& bits) {
    uint32_t vector = 0;
    for (const char c : text) {
        if (c < '0' || c > '7') return false;
        vector |= 1U << (c - '0');
    }
    if (text.empty()) return false;
    bits = static_cast<uint8_t>(vector);
    return true;
}

bool realLimOptionOK(std::string_view text, RealVal& value) {
    constexpr std::string_view base = ",10,";
    const size_t middle = text.find(base);
    if (middle == std::string_view::npos || !text.starts_with('{') || !text.ends_with('}'))
        return false;
    const size_t behind = middle + base.size();
    int32_t mantissa = 0;
    int32_t exponent = 0;
    if (!plainNumber(text.substr(1, middle - 1), INT32_MAX, mantissa) ||
        !plainNumber(text.substr(behind, text.size() - behind - 1), INT16_MAX, exponent))
        return false;
    if (mantissa == 0)
        value = {{}, -1, 0}; // the special value zero
    else
        value = {i64of(mantissa), 10, static_cast<int16_t>(exponent)};
    return true;
}

bool standardVersionOptionOK(std::string_view text, uint16_t& version) {
    if (text != "1990" && text != "1994" && text != "2021") return false;
    version = text == "1990" ? 1990 : text == "1994" ? 1994 : 2021;
    return true;
}

bool directoryOptionOK(std::string_view text, std::string& directory) {
    if (text.empty() || !std::ranges::all_of(text, isPrintable)) return false;
    directory = text;
    if (!directory.ends_with('/')) directory += '/';
    return true;
}

} // namespace orvo
