#pragma once

// Strings of 16- and 32-bit characters. Texts end at their first NUL.

#include <cstddef>
#include <string>
#include <string_view>

namespace orvo {

/// Characters before the terminator.
size_t strlen16(std::u16string_view text);
size_t strlen32(std::u32string_view text);
/// Makes `dest` a copy of the text; appends the text to `dest`.
void strcpy16(std::u16string& dest, std::u16string_view text);
void strcpy32(std::u32string& dest, std::u32string_view text);
void strcat16(std::u16string& dest, std::u16string_view text);
void strcat32(std::u32string& dest, std::u32string_view text);
/// The text from the first such character on; data() is null when there is none.
std::u16string_view strchr16(std::u16string_view text, char16_t character);
std::u32string_view strchr32(std::u32string_view text, char32_t character);
/// Difference of the first characters that differ, the terminator counting as 0; 0 when equal.
[[nodiscard]] int strcmp16(std::u16string_view a, std::u16string_view b);
/// 0 when equal, 1 otherwise.
[[nodiscard]] int strcmp32(std::u32string_view a, std::u32string_view b);

} // namespace orvo
