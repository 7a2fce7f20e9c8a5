#pragma once

// Codes of the syntax tree file, and the tables of their names.

#include <cstdint>
#include <span>

namespace stx {

/// How a bound of INTEGER or ENUMERATED is to be read.
enum BoundForm : uint8_t {
    BOUND_PLAIN = 0,    // signed; the smallest number is MIN, the largest MAX
    BOUND_SIGNED = 1,   // signed, and neither MIN nor MAX
    BOUND_UNSIGNED = 2, // 64 bits without sign
    BOUND_BEYOND = 3,   // beyond either: -2^63 signed, or 2^64 - 1 without sign
};

enum Kind : uint8_t {
    MNODE = 0,
    TNODE = 1,
    VNODE = 2,
    TAG = 3,
    SUB = 4,
    TED = 5,
    SNODE = 6,
    STRI8 = 7,
    STRI16 = 8,
    STRI32 = 9,
};
inline constexpr int kindCount = 10;
/// Bytes of a record; for strings of a character.
inline constexpr uint32_t recordSize[kindCount] = {112, 116, 76, 16, 36, 8, 20, 1, 2, 4};
inline constexpr const char* kindNames[kindCount] = {"mNode",    "tNode",   "vNode", "tagRec",
                                                     "subRec",   "tedRec",  "sNode", "string",
                                                     "string16", "string32"};

enum TypeCode : uint8_t {
    TYP_BOOLEAN = 0,
    TYP_INTEGER = 1,
    TYP_ENUM = 2,
    TYP_REAL = 3,
    TYP_BITSTR = 4,
    TYP_OCTSTR = 5,
    TYP_NULL = 6,
    TYP_SEQ = 7,
    TYP_SEQOF = 8,
    TYP_SET = 9,
    TYP_SETOF = 10,
    TYP_CHOICE = 11,
    TYP_ANY = 12,
    TYP_EMB_PDV = 13,
    TYP_OBJID = 14,
    TYP_NUMSTR = 15,
    TYP_PRISTR = 16,
    TYP_TELSTR = 17,
    TYP_VIDSTR = 18,
    TYP_VISSTR = 19,
    TYP_IA5STR = 20,
    TYP_GRASTR = 21,
    TYP_GENSTR = 22,
    TYP_BMPSTR = 23,
    TYP_UNISTR = 24,
    TYP_CHASTR = 25,
    TYP_GENTIME = 26,
    TYP_UTCTIME = 27,
    TYP_EXTERNAL_1990 = 28,
    TYP_EXTERNAL_1994 = 29,
    TYP_OBJDESCR = 30,
    TYP_INSTANCE_OF = 31,
    TYP_SYNONYM = 32,
    TYP_EXTENSION_MARKER = 33,
    TYP_SELECTION = 34,
    TYP_FIELDLIST = 35,
    TYP_OPEN = 36,
    TYP_CLASS = 37,
    TYP_TYPE_ID = 38,
    TYP_ABSTR_STX = 39,
    TYP_EXTADDGRP = 40,
    TYP_NONE = 41,
    // of X.680 (02/2021)
    TYP_UTF8STR = 42,
    TYP_RELOID = 43,
    TYP_OIDIRI = 44,
    TYP_RELOIDIRI = 45,
    TYP_TIME = 46,
    TYP_DATE = 47,
    TYP_TIMEOFDAY = 48,
    TYP_DATETIME = 49,
    TYP_DURATION = 50,
};
inline constexpr int typeCount = 51;

enum CompStatus : int32_t {
    TCS_MANDATORY = 0,
    TCS_OPTIONAL = 1, // with defaultVal: DEFAULT
    TCS_COMPOF = 2,
    TCS_CHOICE = 3,
    TCS_MULTIPLE = 4,
    TCS_HEADER = 5,
    TCS_FORMAL = 6,
    TCS_EXTADDGRP = 7,
};
enum SubKind : uint8_t {
    SUB_UNION = 1,
    SUB_INTERSECTION = 2,
    SUB_SERIAL = 3,
    SUB_EXCEPT = 4,
    SUB_ALL_EXCEPT = 5,
    SUB_RANGE = 10,
    SUB_PERMITTED_ALPHABET = 11,
    SUB_SIZE = 12,
    SUB_SINGLE_VALUE = 13,
    SUB_CONTAINED_SUBTYPE = 14,
    SUB_WITH_COMPONENT = 15,
    SUB_WITH_COMPONENTS = 16,
    SUB_TABLE = 17,
    SUB_USER_DEFINED = 19,
    SUB_EXCEPTION = 20,
    SUB_OPEN_TYPE = 21,
    SUB_EXTENSION_MARKER = 22,
    SUB_CONTENTS = 24,
    SUB_PATTERN = 25,
    SUB_SETTINGS = 26,
};
enum SubFlags : uint8_t {
    SUBF_EXCEPTION = 1,
    SUBF_FULL = 2,
    SUBF_PRESENT = 4,
    SUBF_ABSENT = 8,
    SUBF_OPTIONAL = 16,
    SUBF_LOWER = 32,
    SUBF_UPPER = 64,
};
enum TagClass : int32_t {
    TAG_UNIVERSAL = 0,
    TAG_APPLICATION = 1,
    TAG_CONTEXT = 2,
    TAG_PRIVATE = 3
};
enum TagMode : int32_t { TAGMODE_IMPLICIT = 0, TAGMODE_EXPLICIT = 1, TAGMODE_OPEN = 2 };
/// Which versions of a referenced module are meant (WITH SUCCESSORS, WITH DESCENDANTS).
enum Selection : uint8_t { SELECT_ONE = 0, SELECT_SUCCESSORS = 1, SELECT_DESCENDANTS = 2 };
enum RefMod : int32_t {
    REF_UNRESOLVED = 0,
    REF_OWN = 1,
    REF_FORMAL = -1,
    REF_OBJECT = -2,
    REF_DEFERRED = -12,
};
enum ValStatus : int32_t {
    VST_NAMED_NUMBER = 0,
    VST_NAMED_BIT = 1,
    VST_HEADER = 2,
    VST_DEFAULT = 3,
    VST_ACTUAL = 4,
    VST_PLAIN = 100,
};
enum ValueFlags : uint8_t {
    VF_ASSIGNMENT = 1,
    VF_SET = 2,
    VF_TED2 = 4,
    VF_TED3 = 8,
    VF_VARIABLE = 16,
    VF_CONTENTS = 32,
};
enum NodeFlags : uint32_t {
    NF_ASSIGNMENT = 2,
    NF_SET = 8,
    NF_VARIABLE = 32,
    NF_IGNORABLE_CHECKED = 64,
    NF_DUMMY = 128,
};
enum CheckFlags : uint16_t {
    CF_OPTIONALS = 0x0001,
    CF_LIST_OF_LISTS = 0x0002,
    CF_LIST_OF_REPR_LISTS = 0x0004,
    CF_INDETERMINATE_TAG = 0x0008,
    CF_UNIQUE = 0x0010,
    CF_RECURSIVE = 0x0020,
    CF_MANDATORY = 0x0040,
    CF_EXTENSIBLE = 0x0080,
    CF_AUTOMATIC_TAGS = 0x0100,
    CF_IGNORABLE = 0x0800,
};
/// Tokens of syntax list entries that readers must tell apart; the other codes are literal words.
enum Token : uint8_t {
    TOK_COMMA = 91,
    TOK_DOT = 92,
    TOK_LBRACKET = 98,
    TOK_AT = 105,
    TOK_NUMBER = 120,
    TOK_VALUEID = 121,
    TOK_TYPEID = 122,
    TOK_TYPEFIELDID = 126,
    TOK_VALUEFIELDID = 127,
    TOK_COMPONENTID = 128,
};

struct CodeName {
    int64_t code; // of bits the bit's value
    const char* name;
};
struct TypeRow {
    const char* name;    // TYP_...
    const char* asnName; // "" where there is none
    int32_t tag;         // universal tag number; negative: no tag of its own
    bool structured;     // `ref` of a TNode is its first component
    bool stringValue;    // `val` of a VNode is a string
    bool valueList;      // `ref` of a VNode is the first of the values that it is made of
    bool bounded;        // `lowerBound` and `upperBound` of a TNode say something
};
extern const TypeRow typeTable[typeCount];

extern const std::span<const CodeName> typeNames, compStatusNames, subKindNames, subFlagNames,
    tagClassNames, tagModeNames, refModNames, valStatusNames, valueFlagNames, nodeFlagNames,
    checkFlagNames, checkStateNames, optFlagNames, tedKindNames, vfKindNames, sizeNames, tokenNames,
    entryFlagNames, exportsNames, importsNames, selectionNames, formNames, skipNames,
    moduleOptionNames, cGenerationNames, standardNames;

} // namespace stx
