#include "util/utf8.h"

#include <algorithm>

namespace orvo {

namespace {

constexpr uint32_t byteAt(std::string_view text, size_t at) {
    return static_cast<unsigned char>(text[at]);
}

/// Bytes that the first one announces; 0 for one that begins no character.
size_t announced(uint32_t first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// The character of so many bytes.
char32_t decode(std::string_view text, size_t length) {
    constexpr uint32_t payload[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t character = byteAt(text, 0) & payload[length];
    for (size_t at = 1; at < length; ++at) character = character << 6 | (byteAt(text, at) & 0x3F);
    return character;
}

} // namespace

size_t utf8Length(std::string_view text) {
    const size_t length = text.empty() ? 0 : announced(byteAt(text, 0));
    if (length < 2 || text.size() < length) return length < 2 ? length : 0;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    if (!std::ranges::all_of(text.substr(1, length - 1), continues)) return 0;
    const char32_t character = decode(text, length);
    const bool isShort = length == 3 ? character >= 0x800 : length == 2 || character >= 0x10000;
    return isShort && isUnicode(character) ? length : 0;
}

std::u32string fromUtf8(std::string_view text) {
    std::u32string characters;
    while (!text.empty()) {
        const size_t length = utf8Length(text);
        characters += length == 0 ? char32_t{byteAt(text, 0)} : decode(text, length);
        text.remove_prefix(std::max(length, size_t{1}));
    }
    return characters;
}

void appendUtf8(std::string& text, char32_t character) {
    const auto put = [&text](uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) return put(character);
    if (character < 0x800) {
        put(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        put(0x80 | (character >> 6 & 0x3F));
    } else {
        put(0xF0 | character >> 18);
        put(0x80 | (character >> 12 & 0x3F));
        put(0x80 | (character >> 6 & 0x3F));
    }
    put(0x80 | (character & 0x3F));
}

} // namespace orvo
