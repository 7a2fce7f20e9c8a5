// Value fields: how a back end represents the values of a type. A value field is the pair vfKind
// and sizeOpt; sizeOpt comes in as the size that options ask for and goes out as the size code
// chosen.

#include <algorithm>
#include <climits>
#include <string>

#include "check/check_cache.h"
#include "check/orvonum.h"
#include "check/orvonum_end.h"
#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "solve/p5actpar.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// Size codes of integers, lengths, presence masks and selectors.
enum SizeCode : uint8_t {
    SIZE_NONE = 0,
    SIZE_U8 = 2,
    SIZE_U16 = 3,
    SIZE_U32 = 4,
    SIZE_U64 = 5,
    SIZE_S8 = 6,
    SIZE_S16 = 7,
    SIZE_S32 = 8,
    SIZE_S64 = 9,
    SIZE_R32 = 10,
    SIZE_R64 = 11,
    SIZE_R128 = 12,
};
enum ValueFieldKind : uint8_t {
    VFK_BOOLEAN = 1,
    VFK_ARRAY = 16,   // fixed-size string with a 32-bit length
    VFK_DYNAMIC = 20, // dynamic string with a 32-bit length
    VFK_SEGMENTED = 21,
    VFK_FRAME = 22,
    VFK_NULL = 23,
    VFK_STRUCTURE = 24,
    VFK_ANY_FUNCTIONS = 25,
    VFK_EMB_PDV = 26,
    VFK_OBJID = 27,
    VFK_TIME = 28,
    VFK_EXTERNAL_1990 = 29,
    VFK_EXTERNAL_1994 = 30,
    VFK_OPEN = 31,
    VFK_DYNAMIC_BMP = 35,
};
/// setNumberType chooses the length member of a string or list.
constexpr uint8_t lengthMember = 32;

struct ValueField {
    uint8_t kind = 0;
    uint8_t size = SIZE_NONE;
};

const OptionBlock& options() {
    return typeModule()->options;
}
bool generates(uint32_t bit) {
    return (options().cGeneration & bit) != 0;
}

/// Both endpoints as numbers, excluded finite ones made inclusive.
struct Range {
    int64_t lower = INT64_MIN;
    int64_t upper = INT64_MAX;
    bool isLowerMin = true;  // there is no lower end
    bool isUpperMax = true;  // there is no upper end
    bool isUnsigned = false; // within 64 bits without sign alone
    bool isBeyond = false;   // not within 64 bits, where there are ends
    [[nodiscard]] bool hasMin() const { return isLowerMin; }
    [[nodiscard]] bool hasMax() const { return isUpperMax; }
};
Range rangeOf(const Endpoint& lower, const Endpoint& upper) {
    Range range;
    range.isLowerMin = lower.value.isInfinite;
    range.isUpperMax = upper.value.isInfinite;
    Integer least = integerOf(lower.module, lower.value.val);
    Integer most = integerOf(upper.module, upper.value.val);
    if (!range.hasMin() && (lower.flags & SUBF_LOWER) == 0) least = least.next();
    if (!range.hasMax() && (upper.flags & SUBF_UPPER) == 0) most = most.previous();
    range.lower = least.nearest();
    range.upper = most.nearest();
    const bool isBeyond = !least.beyond().empty() || !most.beyond().empty();
    uint64_t word = 0;
    range.isUnsigned = isBeyond && !range.hasMin() && !range.hasMax() && least.isUnsigned64(word) &&
                       most.isUnsigned64(word);
    range.isBeyond = isBeyond && !range.isUnsigned;
    return range;
}

uint8_t unsignedCode(uint8_t kind, uint8_t opt, const Range& range) {
    if (kind == TYP_ENUM && opt == SIZE_U64) return SIZE_U32;
    if (kind != lengthMember && ((range.upper > UINT32_MAX && !range.hasMax()) || opt == SIZE_U64))
        return SIZE_U64;
    if (range.upper <= UINT8_MAX && opt != SIZE_U16) return SIZE_U8;
    if (range.upper <= UINT16_MAX && opt != SIZE_U32) return SIZE_U16;
    return SIZE_U32;
}

bool fits32(int64_t number) {
    return number >= INT32_MIN && number <= INT32_MAX;
}

uint8_t signedCode(uint8_t kind, uint8_t opt, const Range& range) {
    const bool fits = (range.hasMin() && range.hasMax()) ||
                      (range.hasMin() && fits32(range.upper)) ||
                      (fits32(range.lower) && range.hasMax());
    if (kind == TYP_ENUM && opt == SIZE_S64) return SIZE_S32;
    if (!fits && (range.lower < INT32_MIN || range.upper > INT32_MAX)) return SIZE_S64;
    if (opt == SIZE_U64 || opt == SIZE_S64) return SIZE_S64;
    if (range.lower < INT16_MIN || range.upper > INT16_MAX || opt == SIZE_S32) return SIZE_S32;
    if (range.lower >= INT8_MIN && range.upper <= INT8_MAX && opt != SIZE_S16) return SIZE_S8;
    return SIZE_S16;
}

uint8_t realCode(uint8_t opt, const Endpoint& lower, const Endpoint& upper) {
    if (opt == SIZE_R128) return SIZE_R128;
    const bool finite =
        !testInfinity(lower, false, TYP_REAL) && !testInfinity(upper, true, TYP_REAL);
    if (opt == SIZE_R64 || !finite || !options().hasRealLim) return SIZE_R64;
    RealVal minimum = options().realLim;
    minimum.mantissa = i64of(-i64native(minimum.mantissa));
    const bool within = compareReal(lower.value.val.real, minimum) >= 0 &&
                        compareReal(upper.value.val.real, options().realLim) <= 0;
    return within ? SIZE_R32 : SIZE_R64;
}

/// The code for numbers of a range; `field.size` comes in as the size asked for.
void setNumberType(ValueField& field, const Endpoint& lower, const Endpoint& upper, uint8_t kind) {
    uint8_t code = SIZE_NONE;
    if (kind == TYP_REAL) {
        code = realCode(field.size, lower, upper);
    } else {
        Range range = rangeOf(lower, upper);
        if (kind != lengthMember && range.isUnsigned) {
            field = {SIZE_U64, SIZE_U64};
            return;
        }
        if (kind != lengthMember && range.isBeyond) range = {};
        if (kind != lengthMember || field.size != SIZE_NONE || range.lower != range.upper) {
            const bool isUnsigned =
                range.lower >= 0 && field.size >= SIZE_U8 && field.size <= SIZE_U64;
            code = isUnsigned ? unsignedCode(kind, field.size, range)
                              : signedCode(kind, field.size, range);
        }
    }
    field = {code, code};
}

void setNumberVF(ValueField& field) {
    if (tNode.typeCode == TYP_REAL && generates(CGEN_OLD | CGEN_REAL)) {
        field = {SIZE_R64, SIZE_R64};
        return;
    }
    Endpoint lower;
    Endpoint upper;
    if (!getEndpoint(lower, false) || !getEndpoint(upper, true)) return;
    setNumberType(field, lower, upper, tNode.typeCode);
}

/// Inside an instance the line is one of who instantiated.
ModuleRec* moduleForErrors() {
    return actErrModPtr(typeModule(), tNode.actParRec);
}
void warn(Msg code, std::string_view detail) {
    recordTNodeError(moduleForErrors(), ERR_WARNING, code, detail);
}

/// SIZE-LIMIT= fits between the size endpoints of a type whose size varies.
bool isSizeLimitOK(const Range& sizes) {
    const int64_t limit = tNode.sizeLimit;
    const std::string option = "SIZE-LIMIT=" + std::to_string(limit);
    if (sizes.lower == sizes.upper) {
        warn(Msg::OptionsIgnored, std::string("SIZE-LIMIT used with a fixed size ") +
                                      typeArr[tNode.typeCode].asnName + " type.");
        return false;
    }
    if (sizes.upper < limit) {
        warn(Msg::OptionsIgnored,
             option + " is greater than upper endpoint (" + std::to_string(sizes.upper) + ")");
        return false;
    }
    if (sizes.lower > limit) {
        warn(Msg::OptionsIgnored,
             option + " is less than lower endpoint (" + std::to_string(sizes.lower) + ")");
        return false;
    }
    return true;
}

/// Segmented, dynamic or an array, by directives and limits; what the choice overrides is warned
/// of.
uint8_t representation(const Range& sizes, std::string_view& changedTo) {
    const bool isList = is(tNode.typeCode, TypeClass::List);
    const int64_t segmented = isList ? options().segListLim : options().segStrLim;
    const int64_t dynamic = isList ? options().dynListLim : options().dynStrLim;
    if ((tNode.optFlags & OPTF_SEG) != 0 ||
        (segmented != 0 && !sizes.hasMax() && sizes.upper > segmented)) {
        if ((tNode.optFlags & (OPTF_DYN | OPTF_DYNARR)) != 0) changedTo = "SEG";
        tNode.optFlags &= ~uint32_t{OPTF_DYN | OPTF_DYNARR};
        tNode.optFlags |= OPTF_SEG;
        return VFK_SEGMENTED;
    }
    if ((tNode.optFlags & OPTF_DYN) != 0 || (dynamic != 0 && sizes.upper > dynamic)) {
        if ((tNode.optFlags & OPTF_DYNARR) != 0) changedTo = "DYN";
        tNode.optFlags &= ~uint32_t{OPTF_DYNARR};
        tNode.optFlags |= OPTF_DYN;
        if (isList) return VFK_SEGMENTED;
        return tNode.typeCode == TYP_BMPSTR ? VFK_DYNAMIC_BMP : VFK_DYNAMIC;
    }
    if (!isList) return VFK_ARRAY;
    if (options().dynArrLim != 0 && sizes.upper > options().dynArrLim)
        tNode.optFlags |= OPTF_DYNARR;
    return VFK_STRUCTURE;
}

bool isSizeValid(const Range& sizes) {
    const bool valid =
        (sizes.lower >= 0 || sizes.hasMin()) && sizes.upper >= 0 && sizes.lower <= sizes.upper;
    if (!valid) {
        recordTNodeError(moduleForErrors(), ERR_SEMANTIC, Msg::InvalidSizeConstraint);
        return false;
    }
    if (sizes.upper > UINT32_MAX && !sizes.hasMax())
        warn(Msg::Unimplemented,
             "\n     Support for string/sequence-of types with an explicit size constraint"
             "\n     upper bound larger than MAXUINT32. (4294967295)");
    return true;
}

/// The variant of a string kind for a length code.
uint8_t getNewStringVF(uint8_t kind, uint8_t length) {
    if (length == SIZE_NONE) return static_cast<uint8_t>(kind - 3);
    if (length >= SIZE_U8 && length <= SIZE_U32)
        return static_cast<uint8_t>(kind + length - SIZE_U32);
    return static_cast<uint8_t>(kind + length - SIZE_S32);
}

/// The length size that options ask for; 64 bits count as 32.
uint8_t requestedLength(uint8_t sizeOpt) {
    uint8_t request = sizeOpt != SIZE_NONE ? sizeOpt : options().listSize;
    if (request == SIZE_S64) request = SIZE_S32;
    if (!generates(CGEN_SIGNED_CONTROL) && request >= SIZE_S8 && request <= SIZE_S32)
        request = static_cast<uint8_t>(request - SIZE_S8 + SIZE_U8);
    return request == SIZE_U64 ? static_cast<uint8_t>(SIZE_U32) : request;
}

void setStringOrListVF(ValueField& field) {
    if ((tNode.optFlags & OPTF_FRAME) != 0) {
        field = {VFK_FRAME, SIZE_S32};
        return;
    }
    Endpoint lower;
    Endpoint upper;
    if (!getEndpoint(lower, false) || !getEndpoint(upper, true)) return;
    if (tNode.sizeLimit != 0) {
        if (isSizeLimitOK(rangeOf(lower, upper))) {
            upper = {};
            upper.value.val.number = i64of(tNode.sizeLimit);
            upper.flags = SUBF_UPPER;
        } else {
            tNode.sizeLimit = 0;
        }
    }
    const Range sizes = rangeOf(lower, upper);
    std::string_view changedTo;
    const uint8_t kind = representation(sizes, changedTo);
    ValueField length;
    length.size =
        generates(CGEN_SIGNED_CONTROL) || sizes.lower == sizes.upper ? SIZE_NONE : SIZE_U8;
    setNumberType(length, lower, upper, lengthMember);
    if (!isSizeValid(sizes)) return;
    const uint8_t request = requestedLength(field.size);
    if (kind == VFK_SEGMENTED) {
        field = {kind, SIZE_S32};
    } else {
        const uint8_t size = std::max(length.size, request);
        field = {kind == VFK_STRUCTURE ? kind : getNewStringVF(kind, size), size};
    }
    if (!changedTo.empty()) warn(Msg::OptionChanged, changedTo);
}

void setStructureVF(ValueField& field) {
    field.kind = VFK_STRUCTURE;
    if (tNode.typeCode == TYP_SEQ && (tNode.checkFlags & CF_OPTIONALS) == 0) return;
    const uint8_t mask = options().compMaskSize;
    uint8_t code = SIZE_S32;
    if (tNode.fieldSize < 9 && mask != SIZE_S16 && mask != SIZE_S32)
        code = SIZE_S8;
    else if (tNode.fieldSize < 17 && mask != SIZE_S32)
        code = SIZE_S16;
    field.size = std::max(field.size, code);
}

void setChoiceVF(ValueField& field) {
    const uint8_t selector = options().choiceSize;
    uint8_t code = SIZE_S8;
    if (selector == SIZE_S32)
        code = SIZE_S32;
    else if (tNode.fieldSize >= 128 || selector == SIZE_S16)
        code = SIZE_S16;
    field = {VFK_STRUCTURE, std::max(field.size, code)};
}

void setAnyVF(ValueField& field) {
    const uint8_t category = options().definitionCategory;
    const bool framed = (category >= 1 && category <= 4) || (tNode.optFlags & OPTF_FRAME) != 0;
    field = {generates(CGEN_ANY_FUNCTIONS) && !framed ? VFK_ANY_FUNCTIONS : VFK_FRAME, SIZE_NONE};
}

/// The value field of the type that a reference resolves to. That may lie behind a selection type,
/// an object or a class, and is settled first. While it is being checked, which only recursion
/// meets, it has none yet: the reference gets it together with the type.
void setReferenceVF(ValueField& field) {
    const TNodeRef reference = currentRec<KIND_TNODE>();
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    static_cast<void>(checkTNode()); // its faults are its own
    field = {tNode.vfKind, tNode.sizeOpt};
    const TNodeRef type = currentRec<KIND_TNODE>();
    if (tNode.checkState == CHECK_RUNNING)
        checkCacheOf(type.module).types.waiting[type.nr.nr].push_back(reference);
}

void serveWaitingReferences(TNodeRef type, ValueField field) {
    auto& waiting = checkCacheOf(type.module).types.waiting;
    const auto found = waiting.find(type.nr.nr);
    if (found == waiting.end()) return;
    for (const TNodeRef& reference : found->second) {
        readRec(reference);
        tNode.vfKind = field.kind;
        tNode.sizeOpt = field.size;
        writeRec(reference);
    }
    waiting.erase(found);
}

void setVFByKind(ValueField& field) {
    switch (tNode.typeCode) {
    case TYP_BOOLEAN: field = {VFK_BOOLEAN, SIZE_NONE}; break;
    case TYP_INTEGER:
    case TYP_ENUM:
    case TYP_REAL: setNumberVF(field); break;
    case TYP_NULL: field = {VFK_NULL, SIZE_NONE}; break;
    case TYP_SEQ:
    case TYP_SET: setStructureVF(field); break;
    case TYP_CHOICE: setChoiceVF(field); break;
    case TYP_ANY: setAnyVF(field); break;
    case TYP_EMB_PDV: field = {VFK_EMB_PDV, SIZE_NONE}; break;
    case TYP_OBJID: field = {VFK_OBJID, SIZE_NONE}; break;
    case TYP_GENTIME:
    case TYP_UTCTIME: field = {VFK_TIME, SIZE_NONE}; break;
    case TYP_EXTERNAL_1990: field = {VFK_EXTERNAL_1990, SIZE_NONE}; break;
    case TYP_EXTERNAL_1994: field = {VFK_EXTERNAL_1994, SIZE_NONE}; break;
    case TYP_SYNONYM: setReferenceVF(field); break;
    case TYP_OPEN:
        field = {(tNode.optFlags & OPTF_FRAME) != 0 ? VFK_FRAME : VFK_OPEN, SIZE_NONE};
        break;
    default:
        if (is(tNode.typeCode, TypeClass::Sized))
            setStringOrListVF(field);
        else
            field = {VFK_STRUCTURE, SIZE_NONE};
        break;
    }
}

} // namespace

void setTypeVF() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    ValueField field{tNode.vfKind, tNode.sizeOpt};
    makePending(self.module, self.nr);
    setVFByKind(field);
    tNode.vfKind = field.kind;
    tNode.sizeOpt = field.size;
    writeRec(self);
    serveWaitingReferences(self, field);
    readRec(self);
}

} // namespace orvo
