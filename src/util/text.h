#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace orvo {

/// The number in decimal, filled up on the left to at least `width` characters.
inline std::string padLeft(int64_t number, size_t width, char fill = ' ') {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), fill);
    return digits;
}

/// The texts one behind the other.
template <typename... Texts> std::string concat(const Texts&... texts) {
    std::string all;
    all.reserve((std::string_view(texts).size() + ... + 0U));
    (all.append(std::string_view(texts)), ...);
    return all;
}

/// Writes the text as it stands.
inline void put(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

} // namespace orvo
