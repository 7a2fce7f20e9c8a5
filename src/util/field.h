#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

namespace orvo {

/// How the bytes of a field are to be read; the width comes from `size`.
enum class FieldKind : uint8_t { Unsigned, Signed, Bytes };

/// One field of a record as it lies in memory and in the tree file.
struct Field {
    uint16_t given;  // offset that the format prescribes
    uint16_t offset; // offset that the compiler gave
    uint16_t size;   // bytes
    FieldKind kind;
    uint8_t word; // bytes of one little-endian unit (arrays and structs of words: their word)
    const char* name;
};

template <typename T> constexpr FieldKind fieldKind() {
    if constexpr (std::is_signed_v<T>)
        return FieldKind::Signed;
    else if constexpr (std::is_unsigned_v<T>)
        return FieldKind::Unsigned;
    else
        return FieldKind::Bytes;
}

/// Width of the units that are byte-swapped on a big-endian host: the integer itself, the element
/// of an array, the words of a struct (all structs inside records are made of 32-bit or smaller
/// words whose alignment is the word).
template <typename T> constexpr uint8_t fieldWord() {
    if constexpr (std::is_array_v<T>)
        return fieldWord<std::remove_extent_t<T>>();
    else
        return static_cast<uint8_t>(alignof(T));
}

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage)
#define FIELD(off, Rec, member)                                                                    \
    ::orvo::Field {                                                                                \
        off, offsetof(Rec, member), sizeof(Rec::member),                                           \
            ::orvo::fieldKind<decltype(Rec::member)>(),                                            \
            ::orvo::fieldWord<decltype(Rec::member)>(), #member                                    \
    }

/// True when the fields lie where the format prescribes, follow one another without gap or overlap
/// and fill the record of `size` bytes.
template <typename Rec, size_t N> constexpr bool isLayout(const Field (&fields)[N], size_t size) {
    if (!std::is_trivially_copyable_v<Rec> || sizeof(Rec) != size) return false;
    size_t at = 0;
    for (const Field& field : fields) {
        if (field.given != field.offset || field.offset != at) return false;
        at += field.size;
    }
    return at == size;
}

} // namespace orvo
