#pragma once

#include <string_view>

namespace orvo {

// Character classes of ASCII alone: what is a letter must not depend on the locale of the run.

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
constexpr bool isLetter(char c) {
    return isUpper(c) || isLower(c);
}
constexpr bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}
constexpr char toUpper(char c) {
    return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char toLower(char c) {
    return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Number of leading letters, digits and characters of `others`.
constexpr size_t spanOfName(std::string_view text, std::string_view others) {
    size_t length = 0;
    while (length < text.size() && (isLetter(text[length]) || isDigit(text[length]) ||
                                    others.find(text[length]) != std::string_view::npos))
        ++length;
    return length;
}

} // namespace orvo
