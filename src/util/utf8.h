#pragma once

// UTF-8 as ISO/IEC 10646 defines it: no longer forms than needed, no surrogates, up to U+10FFFF.

#include <cstdint>
#include <string>
#include <string_view>

namespace orvo {

/// What UTF-8 can hold.
constexpr bool isUnicode(char32_t character) {
    return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}
/// Bytes of the character at the beginning of the text; 0 when there is none, or it is no UTF-8.
[[nodiscard]] size_t utf8Length(std::string_view text);
/// The characters of a text, bytes that are no UTF-8 as characters of their value.
[[nodiscard]] std::u32string fromUtf8(std::string_view text);
void appendUtf8(std::string& text, char32_t character);

} // namespace orvo
