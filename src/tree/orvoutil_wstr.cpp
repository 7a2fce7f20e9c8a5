#include "tree/orvoutil_wstr.h"

namespace orvo {
namespace {

template <typename Char> std::basic_string_view<Char> upToNul(std::basic_string_view<Char> text) {
    return text.substr(0, text.find(Char{}));
}

template <typename Char>
std::basic_string_view<Char> fromFirst(std::basic_string_view<Char> text, Char character) {
    const std::basic_string_view<Char> whole = upToNul(text);
    const size_t at = whole.find(character);
    return at == whole.npos ? std::basic_string_view<Char>() : whole.substr(at);
}

} // namespace

size_t strlen16(std::u16string_view text) {
    return upToNul(text).size();
}
size_t strlen32(std::u32string_view text) {
    return upToNul(text).size();
}

void strcpy16(std::u16string& dest, std::u16string_view text) {
    dest = upToNul(text);
}
void strcpy32(std::u32string& dest, std::u32string_view text) {
    dest = upToNul(text);
}
void strcat16(std::u16string& dest, std::u16string_view text) {
    dest += upToNul(text);
}
void strcat32(std::u32string& dest, std::u32string_view text) {
    dest += upToNul(text);
}

std::u16string_view strchr16(std::u16string_view text, char16_t character) {
    return fromFirst(text, character);
}
std::u32string_view strchr32(std::u32string_view text, char32_t character) {
    return fromFirst(text, character);
}

int strcmp16(std::u16string_view a, std::u16string_view b) {
    for (size_t i = 0;; ++i) {
        const int left = i < a.size() ? a[i] : 0, right = i < b.size() ? b[i] : 0;
        if (left != right || left == 0) return left - right;
    }
}

int strcmp32(std::u32string_view a, std::u32string_view b) {
    return upToNul(a) == upToNul(b) ? 0 : 1;
}

} // namespace orvo
