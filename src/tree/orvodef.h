#pragma once

// The records of the syntax tree: layouts, codes, limits. The layouts of kinds 0 to 9 are the
// format of the tree file, so every offset is binding; kinds 10 to 13 are working records of the
// compiler.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "lex/i64.h"
#include "util/field.h"

namespace orvo {

enum RecKind : uint8_t {
#define KIND(nr, name, Rec, size, inFile) KIND_##name = nr,
#include "tree/kinds.def"
};
inline constexpr int kindCount = 14;
inline constexpr int fileKindCount = 10;

/// Bytes of a record of each kind; for the string kinds of one character.
inline constexpr uint32_t recSize[] = {
#define KIND(nr, name, Rec, size, inFile) size,
#include "tree/kinds.def"
};
static_assert(std::size(recSize) == kindCount);

/// Highest record number of a kind: numbers are negated, in fields of 32 bits, and the last few
/// designate no record, such as that of the scratch character. Memory ends before: as many of the
/// smallest records take 16 GB.
inline constexpr uint32_t maxRecNr = 2147483640;
/// String number of the one-character scratch buffer (getStri, getStri16, getStri32).
inline constexpr uint32_t scratchStri = 0x7FFFFFFA;

/// Number of a record of kind K in its module, from 1; 0 = none.
template <RecKind K> struct RecNr {
    uint32_t nr = 0;
    explicit constexpr operator bool() const { return nr != 0; }
    friend constexpr bool operator==(RecNr, RecNr) = default;
};
using MNodeNr = RecNr<KIND_MNODE>;
using TNodeNr = RecNr<KIND_TNODE>;
using VNodeNr = RecNr<KIND_VNODE>;
using TagNr = RecNr<KIND_TAG>;
using SubNr = RecNr<KIND_SUB>;
using TedNr = RecNr<KIND_TED>;
using SNodeNr = RecNr<KIND_SNODE>;
using StriNr = RecNr<KIND_STRI8>;
using Stri16Nr = RecNr<KIND_STRI16>;
using Stri32Nr = RecNr<KIND_STRI32>;
using STabNr = RecNr<KIND_STAB>; // handle into the arena of symbols (symtab/orvosym)
using InstNr = RecNr<KIND_INST>; // handle into the arena of uses (symtab/orvosym)
using DNodeNr = RecNr<KIND_DNODE>;
using ANodeNr = RecNr<KIND_ANODE>;

struct ModuleRec;
/// A record together with its module, for numbers that leave their module.
template <RecKind K> struct RecRef {
    ModuleRec* module = nullptr;
    RecNr<K> nr;
    explicit constexpr operator bool() const { return bool(nr); }
    friend constexpr bool operator==(const RecRef&, const RecRef&) = default;
};
using TNodeRef = RecRef<KIND_TNODE>;
using VNodeRef = RecRef<KIND_VNODE>;
using SubRef = RecRef<KIND_SUB>;

// ---- codes --------------------------------------------------------------------------------------

enum TypeCode : uint8_t {
#define TYPE(code, sym, name, asnName, tag, classes, syntax, invalid) TYP_##sym = code,
#include "tree/types.def"
};
/// What several kinds of types have in common, by its letter in the table.
enum class TypeClass : char {
    Associated = 'a',
    Bits = 'b',
    Characters = 'c',
    Enclosing = 'e',
    StringGroup = 'g',
    Time = 'i',
    Class = 'k',
    List = 'l',
    Members = 'm',
    Narrow = 'n',
    LengthOption = 'o',
    Quoted = 'q',
    Reference = 'r',
    Structured = 's',
    Text = 't',
    LikeType = 'u',
    Sized = 'z',
};
constexpr uint32_t classBit(char letter) {
    return 1U << (letter - 'a');
}
consteval uint32_t classMask(std::string_view letters) {
    uint32_t mask = 0;
    for (const char letter : letters) mask |= classBit(letter);
    return mask;
}
struct TypeRow {
    const char* name;    // TYP_...
    const char* asnName; // nullptr: none
    int32_t tag;         // universal tag number or a negative pseudo tag
    TypeCode code;
    uint32_t classes;    // a bit for each letter
    int16_t valueSyntax; // message "%s value syntax"
    int16_t invalid;     // message "Invalid %s value"
};
inline constexpr TypeRow typeArr[] = {
#define TYPE(code, sym, name, asnName, tag, classes, syntax, invalid)                              \
    {name, asnName, tag, static_cast<TypeCode>(code), classMask(classes), syntax, invalid},
#include "tree/types.def"
};
inline constexpr int typeCount = 51;
static_assert(std::size(typeArr) == typeCount);
static_assert([] {
    for (int code = 0; code < typeCount; ++code)
        if (typeArr[code].code != code) return false;
    return true;
}());
/// The type code has the property; false for codes outside of the table.
constexpr bool is(uint8_t code, TypeClass property) {
    return code < typeCount && (typeArr[code].classes & classBit(static_cast<char>(property))) != 0;
}
/// valCode of an endpoint that cannot be obtained, in memory only. No decision hangs on it: whether
/// there is an endpoint is what the functions return, so a type code of this number is no clash.
inline constexpr uint8_t noEndpoint = '*';

enum CompStatus : int32_t {
    TCS_MANDATORY = 0,
    TCS_OPTIONAL = 1, // also a component with DEFAULT; then defaultVal is set
    TCS_COMPOF = 2,
    TCS_CHOICE = 3,
    TCS_MULTIPLE = 4, // the element of SEQUENCE OF and SET OF
    TCS_HEADER = 5,
    TCS_FORMAL = 6,
    TCS_EXTADDGRP = 7,
};
inline constexpr const char* compStatusArr[] = {
    "TCS_MANDATORY", "TCS_OPTIONAL", "TCS_COMPOF", "TCS_CHOICE",
    "TCS_MULTIPLE",  "TCS_HEADER",   "TCS_FORMAL", ""};

enum SubKind : uint8_t {
    SUB_NONE = 0,
#define SUBKIND(kind, sym, name, invalid, outOf) SUB_##sym = kind,
#define SUBNAME(sym, name, invalid, outOf)
#include "tree/subs.def"
};
enum SubFlags : uint8_t {
    SUBF_EXCEPTION = 1, // the exception value is in `third`
    SUBF_FULL = 2,      // WITH COMPONENTS without leading "..."
    SUBF_PRESENT = 4,
    SUBF_ABSENT = 8,
    SUBF_OPTIONAL = 16,
    SUBF_LOWER = 32, // the lower bound of a range is included
    SUBF_UPPER = 64, // the upper bound is included
};
/// Names of constraints in messages: those of the kinds, and names that no kind has.
enum SubName : uint8_t {
#define SUBKIND(kind, sym, name, invalid, outOf) SUBNAME_##sym,
#define SUBNAME(sym, name, invalid, outOf) SUBNAME_##sym,
#include "tree/subs.def"
};
struct SubNameRow {
    uint8_t kind; // SUB_NONE: a name only
    const char* name;
    int16_t invalid; // message "Invalid %s constraint(s)"
    int16_t outOf;   // message "Value out of %s constraint(s)"
};
inline constexpr SubNameRow subNameArr[] = {
#define SUBKIND(kind, sym, name, invalid, outOf) {SUB_##sym, name, invalid, outOf},
#define SUBNAME(sym, name, invalid, outOf) {SUB_NONE, name, invalid, outOf},
#include "tree/subs.def"
};
/// The name of a kind; the number of names for what is no kind.
constexpr SubName subName(uint8_t kind) {
    const auto row = std::ranges::find_if(
        subNameArr, [&](const SubNameRow& r) { return kind != SUB_NONE && r.kind == kind; });
    return static_cast<SubName>(row - std::ranges::begin(subNameArr));
}
constexpr bool isSubKind(uint8_t kind) {
    return subName(kind) < std::size(subNameArr);
}
static_assert(subName(SUB_UNION) == SUBNAME_UNION && subName(SUB_CONTENTS) == SUBNAME_CONTENTS &&
              !isSubKind(SUB_NONE) && !isSubKind(18));

enum TagClass : int32_t {
    TAG_UNIVERSAL = 0,
    TAG_APPLICATION = 1,
    TAG_CONTEXT = 2,
    TAG_PRIVATE = 3
};
enum TagMode : int32_t { TAGMODE_IMPLICIT = 0, TAGMODE_EXPLICIT = 1, TAGMODE_OPEN = 2 };
inline constexpr int32_t maxTagNr = 2097151; // 21 bits: three octets of an identifier
/// What the parser stores for a tag number out of range; the tag checks reject it.
inline constexpr int32_t badTagNr = 0x200000;

/// Special values of refMod. 1 is the own module, 2 and up are module references.
enum RefMod : int32_t {
    REF_UNRESOLVED = 0, // ref holds the string number of the name
    REF_OWN = 1,
    REF_FORMAL = -1,    // a formal parameter; ref is its position from 1
    REF_OBJECT = -2,    // information from an object
    REF_UNREAD = -3,    // a symbol of a module that has no definitions to look at; ref is 0
    REF_DEFERRED = -12, // values: ref is minus the DNode of the text
};

enum ValStatus : int32_t {
    VST_NAMED_NUMBER = 0, // also enumeration items and their extension marker
    VST_NAMED_BIT = 1,
    VST_HEADER = 2,
    VST_DEFAULT = 3,
    VST_ACTUAL = 4,
    VST_ROOT_ARC = 5, // 5..8: well-known object identifier names, by level
    VST_LETTER_ARC = 8,
    VST_PLAIN = 100,
};
enum ValueFlags : uint8_t {
    VF_ASSIGNMENT = 1,
    VF_SET = 2, // value set (bit 1)
    VF_TED2 = 4,
    VF_TED3 = 8,
    VF_VARIABLE = 16,
    VF_CONTENTS = 32, // BIT STRING, OCTET STRING: `ref` is the value that is contained
};
enum NodeFlags : uint32_t {
    NF_ASSIGNMENT = 2,
    NF_SET = 8,
    NF_VARIABLE = 32,
    NF_IGNORABLE_CHECKED = 64,
    NF_DUMMY = 128, // in an instance: the type was written as a dummy reference
};
enum CheckState : uint16_t { CHECK_NEW = 0, CHECK_SOLVED = 1, CHECK_RUNNING = 2, CHECK_DONE = 3 };
enum CheckFlags : uint16_t {
    CF_OPTIONALS = 0x0001, // an OPTIONAL or DEFAULT component or an extension marker
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

/// How a bound is to be read.
enum BoundForm : uint8_t {
    BOUND_PLAIN = 0,    // signed; the smallest number is MIN, the largest MAX
    BOUND_SIGNED = 1,   // signed, and neither MIN nor MAX
    BOUND_UNSIGNED = 2, // 64 bits without sign
    BOUND_BEYOND = 3,   // beyond either: -2^63 signed, or 2^64 - 1 without sign
};
inline constexpr unsigned upperBoundShift = 2;

/// Kinds of option comments (tedKind); bit k of optFlags stands for kind k.
enum TedKind : uint8_t {
    TED_REJECTED = 0,
    TED_CODE = 1,
    TED_BEO = 2,
    TED_OPTION = 3,
    TED_ENTRY = 4,
    TED_SKIP = 5,
    TED_ASNH = 6,
    TED_PTR = 7,
    TED_ASNHC = 8,
    TED_FRAME = 10,
    TED_SEG = 11,
    TED_DYN = 12,
    TED_DYNARR = 13,
};
enum OptFlags : uint32_t {
    OPTF_ENTRY = 1U << 4,
    OPTF_SKIP = 1U << 5,
    OPTF_ASNH = 1U << 6,
    OPTF_PTR = 1U << 7,
    OPTF_ASNHC = 1U << 8,
    OPTF_FRAME = 1U << 10,
    OPTF_SEG = 1U << 11,
    OPTF_DYN = 1U << 12,
    OPTF_DYNARR = 1U << 13,
    OPTF_PLMBOOLE = 1U << 14,
    OPTF_NEAR = 1U << 15,
    OPTF_ANY = 1U << 16,
    OPTF_EXTENSIONS = 1U << 17,
};

// ---- records ------------------------------------------------------------------------------------

struct TimeStamp {
    uint16_t version; // times 100
    uint16_t stxVersion;
    int32_t date; // YYYYMMDD
    int32_t time; // HHMMSS
};
static_assert(sizeof(TimeStamp) == 12);

struct MNode { // one per module that the module refers to; record 1 is the module itself
    TimeStamp modTimeStamp;
    uint32_t modName;      // string number
    uint32_t stxName;      // string number of the generation prefix; 0 in record 1
    uint32_t firstTypeAss; // TNode
    uint32_t firstValAss;  // VNode
    uint32_t firstDefVal;  // VNode
    uint32_t modOid;       // VNode
    uint32_t recCount[10];
    uint8_t exportsState; // 0 no EXPORTS, 1 "EXPORTS ;", 2 a list
    uint8_t importsState; // low nibble likewise; high nibble 1 external reference, 2 IMPORTS
    uint8_t automaticTags;
    uint8_t selection; // of versions of a referenced module: 1 SUCCESSORS, 2 DESCENDANTS
    uint32_t srcDir;   // string number
    uint32_t srcFile;  // string number
    uint32_t modWords[6];
};
inline constexpr Field mNodeFields[] = {
    FIELD(0, MNode, modTimeStamp),  FIELD(12, MNode, modName),       FIELD(16, MNode, stxName),
    FIELD(20, MNode, firstTypeAss), FIELD(24, MNode, firstValAss),   FIELD(28, MNode, firstDefVal),
    FIELD(32, MNode, modOid),       FIELD(36, MNode, recCount),      FIELD(76, MNode, exportsState),
    FIELD(77, MNode, importsState), FIELD(78, MNode, automaticTags), FIELD(79, MNode, selection),
    FIELD(80, MNode, srcDir),       FIELD(84, MNode, srcFile),       FIELD(88, MNode, modWords)};

struct TNode {          // a type, component, field, formal parameter or type assignment head
    int32_t name;       // string number; negative = a value set, or a value field of a class
    uint32_t actParRec; // ANode of the instantiation that produced this node
    uint32_t line;
    int32_t compStatus;  // TCS_*; its absolute value counts
    uint32_t defaultVal; // VNode
    uint32_t next;       // TNode
    int32_t constraint;  // SubRec; negative = minus the DNode of the text
    uint32_t tags;       // TagRec
    uint32_t optFlags;   // OPTF_*
    uint32_t nodeFlags;  // NF_*
    uint32_t tedFirst;
    uint32_t tedLast;
    int16_t checkState; // CHECK_*
    uint8_t typeCode;   // TYP_*
    uint8_t vfKind;
    uint8_t sizeOpt;
    uint8_t boundForms;  // BOUND_* of the lower bound, and shifted by upperBoundShift the upper
    uint16_t checkFlags; // CF_*
    uint8_t entryFlags;
    uint8_t entryKinds;
    uint8_t unused58[2];
    uint8_t lenForm; // 255 = not given
    uint8_t skipOpt; // 255 = not given
    uint8_t unused62[2];
    uint32_t sizeLimit;
    uint8_t sizeLimitSkip;
    uint8_t unused69[3];
    int16_t fieldSize;
    uint8_t unused74[2];
    int32_t refMod; // REF_* or a module reference
    uint32_t ref;
    uint32_t namedVals;  // VNode
    uint32_t syntaxList; // SNode
    uint32_t formals;    // TNode
    int32_t syntax;      // SNode, or minus the DNode of the actual parameters
    I64 lowerBound;
    I64 upperBound;
};
inline constexpr Field tNodeFields[] = {
    FIELD(0, TNode, name),        FIELD(4, TNode, actParRec),      FIELD(8, TNode, line),
    FIELD(12, TNode, compStatus), FIELD(16, TNode, defaultVal),    FIELD(20, TNode, next),
    FIELD(24, TNode, constraint), FIELD(28, TNode, tags),          FIELD(32, TNode, optFlags),
    FIELD(36, TNode, nodeFlags),  FIELD(40, TNode, tedFirst),      FIELD(44, TNode, tedLast),
    FIELD(48, TNode, checkState), FIELD(50, TNode, typeCode),      FIELD(51, TNode, vfKind),
    FIELD(52, TNode, sizeOpt),    FIELD(53, TNode, boundForms),    FIELD(54, TNode, checkFlags),
    FIELD(56, TNode, entryFlags), FIELD(57, TNode, entryKinds),    FIELD(58, TNode, unused58),
    FIELD(60, TNode, lenForm),    FIELD(61, TNode, skipOpt),       FIELD(62, TNode, unused62),
    FIELD(64, TNode, sizeLimit),  FIELD(68, TNode, sizeLimitSkip), FIELD(69, TNode, unused69),
    FIELD(72, TNode, fieldSize),  FIELD(74, TNode, unused74),      FIELD(76, TNode, refMod),
    FIELD(80, TNode, ref),        FIELD(84, TNode, namedVals),     FIELD(88, TNode, syntaxList),
    FIELD(92, TNode, formals),    FIELD(96, TNode, syntax),        FIELD(100, TNode, lowerBound),
    FIELD(108, TNode, upperBound)};

struct RealVal {  // mantissa times base to the power exponent
    I64 mantissa; // base -1: code of a special value (0 zero, -1 and -2 the infinities)
    int16_t base;
    int16_t exponent;
};
struct IntVal {
    I64 number;    // the nearest one of 64 bits
    uint32_t text; // string number of the exact decimal text; 0 when `number` is exact
};
struct StriVal {
    uint16_t striLen; // characters; for binary and hexadecimal strings digits
    uint16_t unused2;
    uint32_t stri; // string number in the cache of the value's width
    uint32_t unused8;
};
union ValUnion {
    uint32_t words[3];
    uint8_t boole;  // 1 TRUE, 0 FALSE
    I64 number;     // that of `integer` alone, for whom numbers beyond 64 bits are all too large
    IntVal integer; // INTEGER, ENUMERATED, object identifier components
    RealVal real;
    StriVal str;
    constexpr ValUnion() : words{} {} // clears all of it
};
static_assert(sizeof(ValUnion) == 12);

struct VNode { // a value, named number, component value, DEFAULT value or value assignment head
    int32_t name;
    int32_t valStatus; // VST_*, or minus a negative high word
    uint8_t vflags;    // VF_*
    uint8_t unused9[3];
    uint32_t actParRec;
    uint32_t line;
    uint32_t unused20;
    uint32_t govType; // TNode
    uint32_t govTypeMod;
    uint32_t next;
    uint16_t checkState;
    uint8_t valCode; // TYP_*
    uint8_t unused39;
    int32_t refMod;
    uint32_t ref; // REF_DEFERRED: minus the DNode, as two's complement
    uint32_t tedFirst;
    uint32_t tedLast;
    ValUnion val;
    uint32_t formals; // TNode
    int32_t deferred; // minus a DNode; TYP_FIELDLIST: SNode
};
inline constexpr Field vNodeFields[] = {
    FIELD(0, VNode, name),      FIELD(4, VNode, valStatus),   FIELD(8, VNode, vflags),
    FIELD(9, VNode, unused9),   FIELD(12, VNode, actParRec),  FIELD(16, VNode, line),
    FIELD(20, VNode, unused20), FIELD(24, VNode, govType),    FIELD(28, VNode, govTypeMod),
    FIELD(32, VNode, next),     FIELD(36, VNode, checkState), FIELD(38, VNode, valCode),
    FIELD(39, VNode, unused39), FIELD(40, VNode, refMod),     FIELD(44, VNode, ref),
    FIELD(48, VNode, tedFirst), FIELD(52, VNode, tedLast),    FIELD(56, VNode, val),
    FIELD(68, VNode, formals),  FIELD(72, VNode, deferred)};

struct TagRec {       // one tag of a type; the outermost tag stands first
    int32_t tagClass; // TAG_*
    int32_t tagMode;  // TAGMODE_*; undecided until the tag checks have run
    int32_t tagNr;    // 0..2097151, or minus the VNode that gives the number
    uint32_t next;    // TagRec, 0 = last
};
inline constexpr Field tagRecFields[] = {FIELD(0, TagRec, tagClass), FIELD(4, TagRec, tagMode),
                                         FIELD(8, TagRec, tagNr), FIELD(12, TagRec, next)};

struct SubRec {       // one node of a constraint tree
    uint32_t name;    // component identifier of a WITH COMPONENTS entry
    uint8_t subKind;  // SUB_*
    uint8_t subFlags; // SUBF_*
    uint8_t unused6[2];
    uint32_t typeMod;
    uint32_t typeNr; // the constrained TNode
    uint32_t line;
    uint32_t next;
    uint32_t third; // VNode of the exception value
    uint32_t left;  // SubRec or VNode, by kind
    uint32_t right; // VNode; table constraint: minus an SNode, as two's complement
};
inline constexpr Field subRecFields[] = {
    FIELD(0, SubRec, name),    FIELD(4, SubRec, subKind), FIELD(5, SubRec, subFlags),
    FIELD(6, SubRec, unused6), FIELD(8, SubRec, typeMod), FIELD(12, SubRec, typeNr),
    FIELD(16, SubRec, line),   FIELD(20, SubRec, next),   FIELD(24, SubRec, third),
    FIELD(28, SubRec, left),   FIELD(32, SubRec, right)};

struct TedRec {      // one option
    uint8_t tedKind; // TED_*
    uint8_t unused1[3];
    uint32_t text; // string number of the whole text, lead-in character included
};
inline constexpr Field tedRecFields[] = {FIELD(0, TedRec, tedKind), FIELD(1, TedRec, unused1),
                                         FIELD(4, TedRec, text)};

struct SNode { // an entry of a WITH SYNTAX list, of a field name chain or of an at-notation list
    uint8_t token; // TOK_*
    uint8_t unused1[3];
    uint32_t module;
    int32_t value;
    uint32_t line;
    int32_t next; // negative: minus the "[" entry of the group that ends here
};
inline constexpr Field sNodeFields[] = {FIELD(0, SNode, token),  FIELD(1, SNode, unused1),
                                        FIELD(4, SNode, module), FIELD(8, SNode, value),
                                        FIELD(12, SNode, line),  FIELD(16, SNode, next)};

struct STabRec {    // a symbol
    int32_t name;   // string number; negated for a value reference
    int32_t node;   // TNode head, or minus the VNode head; 0 = undefined
    uint8_t flags;  // SYM_*
    uint8_t unread; // 1: of a module without definitions to look at; counts as known
    uint8_t needed; // 1: a definition was looked for
    uint8_t unused11;
    uint32_t line;
    uint32_t uses;    // InstNr
    uint32_t formals; // STabNr
    uint32_t next;    // STabNr
};
inline constexpr Field sTabRecFields[] = {FIELD(0, STabRec, name),     FIELD(4, STabRec, node),
                                          FIELD(8, STabRec, flags),    FIELD(9, STabRec, unread),
                                          FIELD(10, STabRec, needed),  FIELD(11, STabRec, unused11),
                                          FIELD(12, STabRec, line),    FIELD(16, STabRec, uses),
                                          FIELD(20, STabRec, formals), FIELD(24, STabRec, next)};

struct InstRec { // a use of a symbol
    uint32_t line;
    uint32_t next; // InstNr
};
inline constexpr Field instRecFields[] = {FIELD(0, InstRec, line), FIELD(4, InstRec, next)};

struct DNode {      // a deferred token range; the replay cursor `inp` has the same form
    uint16_t count; // tokens, saturating at 65534; 65535 = no range is being collected (pass 1)
    uint16_t unused2;
    uint32_t formals; // STabNr: first formal parameter in force, 0 = none
    uint32_t first;   // TokNr; in the cursor the current token
    uint32_t last;    // TokNr
};
inline constexpr Field dNodeFields[] = {FIELD(0, DNode, count), FIELD(2, DNode, unused2),
                                        FIELD(4, DNode, formals), FIELD(8, DNode, first),
                                        FIELD(12, DNode, last)};
/// Count of that many tokens or more: it is for information, the range ends with its last token.
inline constexpr uint16_t maxDeferredTokens = 65534;
inline constexpr DNode noRange = {65535, 0, 0, 0, 0};

struct ANode {              // an instantiation of a parameterized definition
    uint32_t instModule;    // handle of the instantiating module (ModuleRec::handle)
    uint32_t instModuleRef; // by which the defining module refers to it
    uint32_t firstActual;   // VNode in the instantiating module
    uint32_t line;          // of the instantiating reference
    uint32_t defModule;     // handle of the defining module
    uint32_t refMod;        // module reference of the instantiating reference
    int32_t definition;     // TNode, or minus the VNode
    uint32_t instance;      // the entry's own number in the defining module
    uint32_t below;         // handle of the entry below on the stack, 0 = none
};
inline constexpr Field aNodeFields[] = {
    FIELD(0, ANode, instModule),  FIELD(4, ANode, instModuleRef), FIELD(8, ANode, firstActual),
    FIELD(12, ANode, line),       FIELD(16, ANode, defModule),    FIELD(20, ANode, refMod),
    FIELD(24, ANode, definition), FIELD(28, ANode, instance),     FIELD(32, ANode, below)};

static_assert(isLayout<MNode>(mNodeFields, 112));
static_assert(isLayout<TNode>(tNodeFields, 116));
static_assert(isLayout<VNode>(vNodeFields, 76));
static_assert(isLayout<TagRec>(tagRecFields, 16));
static_assert(isLayout<SubRec>(subRecFields, 36));
static_assert(isLayout<TedRec>(tedRecFields, 8));
static_assert(isLayout<SNode>(sNodeFields, 20));
static_assert(isLayout<STabRec>(sTabRecFields, 28));
static_assert(isLayout<InstRec>(instRecFields, 8));
static_assert(isLayout<DNode>(dNodeFields, 16));
static_assert(isLayout<ANode>(aNodeFields, 36));

/// Field table of a record kind; empty for the string kinds.
constexpr std::span<const Field> fieldsOf(RecKind kind) {
    switch (kind) {
    case KIND_MNODE: return mNodeFields;
    case KIND_TNODE: return tNodeFields;
    case KIND_VNODE: return vNodeFields;
    case KIND_TAG: return tagRecFields;
    case KIND_SUB: return subRecFields;
    case KIND_TED: return tedRecFields;
    case KIND_SNODE: return sNodeFields;
    case KIND_STAB: return sTabRecFields;
    case KIND_INST: return instRecFields;
    case KIND_DNODE: return dNodeFields;
    case KIND_ANODE: return aNodeFields;
    case KIND_STRI8:
    case KIND_STRI16:
    case KIND_STRI32: break;
    }
    return {};
}

// ---- fields that hold two kinds of number, told apart by sign -----------------------------------

/// Minus a record number, and back. Goes through 64 bits: the negation of a word never overflows.
constexpr int32_t minus(uint32_t nr) {
    return static_cast<int32_t>(-static_cast<int64_t>(nr));
}
constexpr uint32_t magnitude(int32_t word) {
    const int64_t wide = word;
    return static_cast<uint32_t>(wide < 0 ? -wide : wide);
}
/// True when the word is minus the number of a deferred text.
constexpr bool isDeferred(int32_t word) {
    return word < 0;
}
constexpr DNodeNr deferredText(int32_t word) {
    return DNodeNr{word < 0 ? magnitude(word) : 0};
}
/// VNode::ref and SubRec::right hold minus a number as an unsigned word.
constexpr uint32_t minusWord(uint32_t nr) {
    return static_cast<uint32_t>(minus(nr));
}
constexpr int32_t signedWord(uint32_t word) {
    return static_cast<int32_t>(word);
}
/// The deferred text of a value whose refMod is REF_DEFERRED.
constexpr DNodeNr deferredText(const VNode& value) {
    return deferredText(signedWord(value.ref));
}
/// A value of BIT STRING or OCTET STRING that is given by what it contains: its bits depend on the
/// encoding rules.
constexpr bool holdsContents(const VNode& value) {
    return (value.vflags & VF_CONTENTS) != 0;
}
/// String number of a name that may be negated as a mark.
constexpr StriNr nameStri(int32_t name) {
    return StriNr{magnitude(name)};
}
/// Structured type code: its record's `ref` is its first component.
constexpr bool isStructured(uint8_t code) {
    return is(code, TypeClass::Structured);
}

} // namespace orvo
