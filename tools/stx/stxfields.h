#pragma once

// Internal to the library: the fields of every record, and how their bytes are read. One table per
// kind serves the decoding of records, the checks, the links and the dumpers.

#include <algorithm>

#include "stxreader.h"

namespace stx {

inline uint32_t u16At(const uint8_t* p) {
    return p[0] | static_cast<uint32_t>(p[1]) << 8;
}
inline uint32_t u32At(const uint8_t* p) {
    return u16At(p) | u16At(p + 2) << 16;
}
inline int32_t i32At(const uint8_t* p) {
    return static_cast<int32_t>(u32At(p));
}
inline int16_t i16At(const uint8_t* p) {
    return static_cast<int16_t>(u16At(p));
}
/// High word first.
inline int64_t i64At(const uint8_t* p) {
    return static_cast<int64_t>(static_cast<uint64_t>(u32At(p)) << 32 | u32At(p + 4));
}

namespace layout {

using F = Form;
using S = Sense;
using To = Leads;

// clang-format off
inline constexpr Field mNodeFields[] = {
    {"modTimeStamp",   0, 12, F::Stamp,    S::Plain,  To::Nowhere,     nullptr},
    {"modName",       12,  4, F::Unsigned, S::String, To::Nowhere,     nullptr},
    {"stxName",       16,  4, F::Unsigned, S::String, To::Nowhere,     nullptr},
    {"firstTypeAss",  20,  4, F::Unsigned, S::Link,   To::ListedType,  nullptr},
    {"firstValAss",   24,  4, F::Unsigned, S::Link,   To::ListedValue, nullptr},
    {"firstDefVal",   28,  4, F::Unsigned, S::Link,   To::ListedValue, nullptr},
    {"modOid",        32,  4, F::Unsigned, S::Link,   To::Value,       nullptr},
    {"recCount",      36, 40, F::Words,    S::Plain,  To::Nowhere,     nullptr},
    {"exportsState",  76,  1, F::Unsigned, S::Names,  To::Nowhere,     &exportsNames},
    {"importsState",  77,  1, F::Unsigned, S::Names,  To::Nowhere,     &importsNames},
    {"automaticTags", 78,  1, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"selection",     79,  1, F::Unsigned, S::Names,  To::Nowhere,     &selectionNames},
    {"srcDir",        80,  4, F::Unsigned, S::String, To::Nowhere,     nullptr},
    {"srcFile",       84,  4, F::Unsigned, S::String, To::Nowhere,     nullptr},
    {"modWords",      88, 24, F::Words,    S::Plain,  To::Nowhere,     nullptr},
};
inline constexpr Field tNodeFields[] = {
    {"name",            0, 4, F::Signed,   S::String, To::Nowhere,     nullptr},
    {"actParRec",       4, 4, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"line",            8, 4, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"compStatus",     12, 4, F::Signed,   S::Code,   To::Nowhere,     &compStatusNames},
    {"defaultVal",     16, 4, F::Unsigned, S::Link,   To::Value,       nullptr},
    {"next",           20, 4, F::Unsigned, S::Link,   To::Type,        nullptr},
    {"constraint",     24, 4, F::Signed,   S::Link,   To::Constraint,  nullptr},
    {"tags",           28, 4, F::Unsigned, S::Link,   To::Tag,         nullptr},
    {"optFlags",       32, 4, F::Unsigned, S::Bits,   To::Nowhere,     &optFlagNames},
    {"nodeFlags",      36, 4, F::Unsigned, S::Bits,   To::Nowhere,     &nodeFlagNames},
    {"tedFirst",       40, 4, F::Unsigned, S::Link,   To::FirstOption, nullptr},
    {"tedLast",        44, 4, F::Unsigned, S::Link,   To::LastOption,  nullptr},
    {"checkState",     48, 2, F::Signed,   S::Names,  To::Nowhere,     &checkStateNames},
    {"typeCode",       50, 1, F::Unsigned, S::Code,   To::Nowhere,     &typeNames},
    {"vfKind",         51, 1, F::Unsigned, S::Names,  To::Nowhere,     &vfKindNames},
    {"sizeOpt",        52, 1, F::Unsigned, S::Names,  To::Nowhere,     &sizeNames},
    {"boundForms",     53, 1, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"checkFlags",     54, 2, F::Unsigned, S::Bits,   To::Nowhere,     &checkFlagNames},
    {"entryFlags",     56, 1, F::Unsigned, S::Bits,   To::Nowhere,     &entryFlagNames},
    {"entryKinds",     57, 1, F::Unsigned, S::Bits,   To::Nowhere,     nullptr},
    {"unused58",       58, 2, F::Unused,   S::Plain,  To::Nowhere,     nullptr},
    {"lenForm",        60, 1, F::Unsigned, S::Names,  To::Nowhere,     &formNames},
    {"skipOpt",        61, 1, F::Unsigned, S::Names,  To::Nowhere,     &skipNames},
    {"unused62",       62, 2, F::Unused,   S::Plain,  To::Nowhere,     nullptr},
    {"sizeLimit",      64, 4, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"sizeLimitSkip",  68, 1, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"unused69",       69, 3, F::Unused,   S::Plain,  To::Nowhere,     nullptr},
    {"fieldSize",      72, 2, F::Signed,   S::Plain,  To::Nowhere,     nullptr},
    {"unused74",       74, 2, F::Unused,   S::Plain,  To::Nowhere,     nullptr},
    {"refMod",         76, 4, F::Signed,   S::Link,   To::Module,      &refModNames},
    {"ref",            80, 4, F::Unsigned, S::Link,   To::TypeRef,     nullptr},
    {"namedVals",      84, 4, F::Unsigned, S::Link,   To::Value,       nullptr},
    {"syntaxList",     88, 4, F::Unsigned, S::Link,   To::Syntax,      nullptr},
    {"formals",        92, 4, F::Unsigned, S::Link,   To::Type,        nullptr},
    {"syntax",         96, 4, F::Signed,   S::Link,   To::Actuals,     nullptr},
    {"lowerBound",    100, 8, F::Wide,     S::Plain,  To::Nowhere,     nullptr},
    {"upperBound",    108, 8, F::Wide,     S::Plain,  To::Nowhere,     nullptr},
};
inline constexpr Field vNodeFields[] = {
    {"name",        0,  4, F::Signed,   S::String, To::Nowhere,      nullptr},
    {"valStatus",   4,  4, F::Signed,   S::Names,  To::Nowhere,      &valStatusNames},
    {"vflags",      8,  1, F::Unsigned, S::Bits,   To::Nowhere,      &valueFlagNames},
    {"unused9",     9,  3, F::Unused,   S::Plain,  To::Nowhere,      nullptr},
    {"actParRec",  12,  4, F::Unsigned, S::Plain,  To::Nowhere,      nullptr},
    {"line",       16,  4, F::Unsigned, S::Plain,  To::Nowhere,      nullptr},
    {"unused20",   20,  4, F::Unused,   S::Plain,  To::Nowhere,      nullptr},
    {"govType",    24,  4, F::Unsigned, S::Link,   To::Governor,     nullptr},
    {"govTypeMod", 28,  4, F::Unsigned, S::Link,   To::Module,       nullptr},
    {"next",       32,  4, F::Unsigned, S::Link,   To::Value,        nullptr},
    {"checkState", 36,  2, F::Unsigned, S::Names,  To::Nowhere,      &checkStateNames},
    {"valCode",    38,  1, F::Unsigned, S::Code,   To::Nowhere,      &typeNames},
    {"unused39",   39,  1, F::Unused,   S::Plain,  To::Nowhere,      nullptr},
    {"refMod",     40,  4, F::Signed,   S::Link,   To::Module,       &refModNames},
    {"ref",        44,  4, F::Unsigned, S::Link,   To::ValueRef,     nullptr},
    {"tedFirst",   48,  4, F::Unsigned, S::Link,   To::FirstOption,  nullptr},
    {"tedLast",    52,  4, F::Unsigned, S::Link,   To::LastOption,   nullptr},
    {"val",        56, 12, F::Value,    S::Link,   To::ValueText,    nullptr},
    {"formals",    68,  4, F::Unsigned, S::Link,   To::Type,         nullptr},
    {"deferred",   72,  4, F::Signed,   S::Link,   To::ValueActuals, nullptr},
};
inline constexpr Field tagRecFields[] = {
    {"tagClass",  0, 4, F::Signed,   S::Code,   To::Nowhere,   &tagClassNames},
    {"tagMode",   4, 4, F::Signed,   S::Code,   To::Nowhere,   &tagModeNames},
    {"tagNr",     8, 4, F::Signed,   S::Link,   To::TagNumber, nullptr},
    {"next",     12, 4, F::Unsigned, S::Link,   To::Tag,       nullptr},
};
inline constexpr Field subRecFields[] = {
    {"name",      0, 4, F::Unsigned, S::String, To::Nowhere,      nullptr},
    {"subKind",   4, 1, F::Unsigned, S::Code,   To::Nowhere,      &subKindNames},
    {"subFlags",  5, 1, F::Unsigned, S::Bits,   To::Nowhere,      &subFlagNames},
    {"unused6",   6, 2, F::Unused,   S::Plain,  To::Nowhere,      nullptr},
    {"typeMod",   8, 4, F::Unsigned, S::Link,   To::Module,       nullptr},
    {"typeNr",   12, 4, F::Unsigned, S::Link,   To::Constrained,  nullptr},
    {"line",     16, 4, F::Unsigned, S::Plain,  To::Nowhere,      nullptr},
    {"next",     20, 4, F::Unsigned, S::Link,   To::Constraint,   nullptr},
    {"third",    24, 4, F::Unsigned, S::Link,   To::Value,        nullptr},
    {"left",     28, 4, F::Unsigned, S::Link,   To::LeftOperand,  nullptr},
    {"right",    32, 4, F::Signed,   S::Link,   To::RightOperand, nullptr},
};
inline constexpr Field tedRecFields[] = {
    {"tedKind", 0, 1, F::Unsigned, S::Names,  To::Nowhere, &tedKindNames},
    {"unused1", 1, 3, F::Unused,   S::Plain,  To::Nowhere, nullptr},
    {"text",    4, 4, F::Unsigned, S::Link,   To::Text,    nullptr},
};
inline constexpr Field sNodeFields[] = {
    {"token",    0, 1, F::Unsigned, S::Names,  To::Nowhere,     &tokenNames},
    {"unused1",  1, 3, F::Unused,   S::Plain,  To::Nowhere,     nullptr},
    {"module",   4, 4, F::Unsigned, S::Link,   To::Module,      nullptr},
    {"value",    8, 4, F::Signed,   S::Link,   To::SyntaxValue, nullptr},
    {"line",    12, 4, F::Unsigned, S::Plain,  To::Nowhere,     nullptr},
    {"next",    16, 4, F::Signed,   S::Link,   To::Syntax,      nullptr},
};
// clang-format on

/// No gap, no overlap, and all of the record.
constexpr bool isWhole(std::span<const Field> fields, uint32_t size) {
    uint32_t at = 0;
    for (const Field& field : fields) {
        if (field.offset != at) return false;
        at += field.width;
    }
    return at == size;
}
static_assert(isWhole(mNodeFields, recordSize[MNODE]) && isWhole(tNodeFields, recordSize[TNODE]) &&
              isWhole(vNodeFields, recordSize[VNODE]) && isWhole(tagRecFields, recordSize[TAG]) &&
              isWhole(subRecFields, recordSize[SUB]) && isWhole(tedRecFields, recordSize[TED]) &&
              isWhole(sNodeFields, recordSize[SNODE]));

/// The field of that name; its `name` is null when there is none.
constexpr Field find(std::span<const Field> fields, std::string_view name) {
    for (const Field& field : fields)
        if (name == field.name) return field;
    return {nullptr, 0, 0, Form::Unused, Sense::Plain, Leads::Nowhere, nullptr};
}

/// The name of a field as an argument of a template.
template <size_t size> struct Name {
    char text[size] = {};
    consteval Name(const char (&name)[size]) { std::copy_n(name, size, text); }
};

/// The bytes of a record, read field by field as the table of its kind says.
template <const auto& fields> class Bytes {
  public:
    explicit Bytes(const uint8_t* record) : record_(record) {}
    /// The first byte of the field.
    template <Name name> [[nodiscard]] const uint8_t* at() const {
        constexpr Field field = find(fields, name.text);
        static_assert(field.name != nullptr);
        return record_ + field.offset;
    }
    template <Name name> [[nodiscard]] auto get() const {
        constexpr Field field = find(fields, name.text);
        const uint8_t* p = at<name>();
        if constexpr (field.form == Form::Wide)
            return i64At(p);
        else if constexpr (field.form == Form::Signed && field.width == 2)
            return i16At(p);
        else if constexpr (field.form == Form::Signed)
            return i32At(p);
        else if constexpr (field.width == 1)
            return *p;
        else if constexpr (field.width == 2)
            return static_cast<uint16_t>(u16At(p));
        else
            return u32At(p);
    }

  private:
    const uint8_t* record_;
};

} // namespace layout
} // namespace stx
