// Invariants: option comments belong to the current module, and the node they describe is the one
// in its buffer. An option that is rejected leaves the node as it was.

#include "options/orvoopt_loc.h"

#include <algorithm>
#include <charconv>

#include "driver/orvofil_fix.h"
#include "options/orvoopt_val.h"
#include "tree/orvorec.h"
#include "util/ascii.h"

namespace orvo {
namespace {

// ---- the node -----------------------------------------------------------------------------------

constexpr uint8_t entryGiven = 1U << 6; // bits of entryFlags
constexpr uint8_t entryEncode = 1U << 2;
constexpr uint8_t entryDecode = 1U << 3;
constexpr uint8_t entryAsk = 1U << 4;
constexpr uint8_t entryPrint = 1U << 5;

constexpr uint32_t kindBit(uint32_t kind) {
    return 1U << kind;
}
bool isHead() {
    return magnitude(tNode.compStatus) == TCS_HEADER;
}
bool isString() {
    return is(tNode.typeCode, TypeClass::LengthOption) && !is(tNode.typeCode, TypeClass::List);
}
bool isList() {
    return is(tNode.typeCode, TypeClass::List);
}
void setFlag(uint32_t flag, bool on) {
    if (on)
        tNode.optFlags |= flag;
    else
        tNode.optFlags &= ~flag;
}

/// Marks the node as an entry of the kinds; functions are wanted as far as the module's masks
/// reach.
void markEntry(uint32_t kinds) {
    const OptionBlock& block = cMP->options;
    uint32_t flags = tNode.entryFlags | entryGiven;
    if ((block.encf & kinds) != 0) flags |= entryEncode;
    if ((block.decf & kinds) != 0) flags |= entryDecode;
    if ((block.askf & kinds) != 0) flags |= entryAsk;
    if ((block.prif & kinds) != 0) flags |= entryPrint;
    tNode.optFlags |= OPTF_ENTRY;
    tNode.entryFlags = static_cast<uint8_t>(flags);
    tNode.entryKinds = static_cast<uint8_t>(kinds);
}

// ---- the table ----------------------------------------------------------------------------------

bool anyType() {
    return true;
}
template <uint8_t... codes> bool typeIs() {
    return ((tNode.typeCode == codes) || ...);
}
bool isStringOrList() {
    return is(tNode.typeCode, TypeClass::LengthOption);
}
bool sizeOK(std::string_view value) {
    return intSizeOptionOK(value, false, tNode.sizeOpt);
}
bool unsignedSizeOK(std::string_view value) {
    return intSizeOptionOK(value, true, tNode.sizeOpt);
}
bool realSizeOK(std::string_view value) {
    return realSizeOptionOK(value, tNode.sizeOpt);
}
template <uint32_t flag> bool flagOK(std::string_view value) {
    bool on = false;
    if (!booleOptionOK(value, on)) return false;
    setFlag(flag, on);
    return true;
}
bool anyOK(std::string_view) {
    tNode.optFlags |= OPTF_ANY;
    return true;
}

// clang-format off
constexpr LocOption locOptionTable[] = {
    {"DEFINITELEN=", anyType, definitelenOK, "all types", "indefinite|no|definite|yes|0|1", "Form of lengths; only when the global DEFINITELEN= leaves it to the types"},
    {"SKIP=", anyType, skipOK, "all types", "ignore|error|0|1", "The item is skipped, silently or with an error"},
    {"NEAR=", anyType, nearOK, "components", "YES|NO|TRUE|FALSE|1|0", "Near pointer to the component"},
    {"EXTENSIONS=", typeIs<TYP_SEQ, TYP_SET, TYP_CHOICE>, extensionsOK, "SEQUENCE, SET, CHOICE", "SKIP|SAVE|0|1", "Unknown extensions are skipped or saved"},
    {"PLMBOOLE=", typeIs<TYP_BOOLEAN>, flagOK<OPTF_PLMBOOLE>, "BOOLEAN", "YES|NO|TRUE|FALSE|1|0", "As the global PLMBOOLE="},
    {"INT=", typeIs<TYP_INTEGER, TYP_ENUM>, unsignedSizeOK, "INTEGER, ENUMERATED", "0|OPTIMIZE|8|16|32|64|U8|U16|U32|U64", "Bits of the values"},
    {"REAL=", typeIs<TYP_REAL>, realSizeOK, "REAL", "0|32|64|128", "Bits of the values"},
    {"N=", isStringOrList, sizeOK, "strings, SEQUENCE OF, SET OF", "0|OPTIMIZE|8|16|32|64", "Bits of the length"},
    {"SIZE-LIMIT=", isStringOrList, sizeLimitOK, "strings, SEQUENCE OF, SET OF", "<n>|<n>:ignore|<n>:error", "Largest size that is supported, below SEGSTRLIM= or SEGLISTLIM=; what becomes of larger ones"},
    {"COMPMASK=", typeIs<TYP_SEQ, TYP_SET, TYP_CLASS>, sizeOK, "SEQUENCE, SET, CLASS", "0|OPTIMIZE|8|16|32|64", "Bits of the component mask"},
    {"ASNHC=", typeIs<TYP_SEQ, TYP_SET>, flagOK<OPTF_ASNHC>, "SEQUENCE, SET", "YES|NO|TRUE|FALSE|1|0", "As the directive ASNHC"},
    {"CHOICE=", typeIs<TYP_CHOICE>, sizeOK, "CHOICE", "0|OPTIMIZE|8|16|32|64", "Bits of the selector"},
    {"ANY=", typeIs<TYP_ANY>, anyOK, "ANY", "<Type>:<value>", "Type of the contents when the value given classifies them"},
};
// clang-format on

/// Naming options of components and fields, and of what assignments define.
bool namingAllowed(FixKind kind) {
    switch (kind) {
    case FIX_COMPONENT:
    case FIX_FIELD: return !isHead() && tNode.name != 0;
    case FIX_TYPE:
    case FIX_CLASS:
    case FIX_VALUE_SET:
    case FIX_OBJECT_SET: return isHead();
    case FIX_VALUE:
    case FIX_OBJECT:
    case FIX_VALUE2: break;
    }
    return false;
}

/// An option split into its name with the "=" and its value; without a "=" all is name.
struct NameValue {
    std::string_view name, value;
};
NameValue splitOption(std::string_view text) {
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos) return {text, {}};
    return {text.substr(0, equals + 1), text.substr(equals + 1)};
}

bool entryOptionOK(std::string_view name, std::string_view value) {
    if (!getFixOpt(nullptr, name, value)) return false;
    evalEntryOption(value);
    if (cMP->options.asnhc) tNode.optFlags |= OPTF_ASNHC;
    return true;
}

/// Stores a range in a node and hands it back empty.
void takeRange(OptRange& range, uint32_t& first, uint32_t& last) {
    if (range.first >= 0 && range.last > 0) {
        first = static_cast<uint32_t>(std::max(range.first, 1));
        last = static_cast<uint32_t>(range.last);
    }
    range = {};
}

void rejectRecord(TedNr nr, uint32_t& rejected) {
    rejected |= kindBit(tedRec.tedKind);
    tedRec.tedKind = TED_REJECTED;
    writeRec(cMP, nr);
}

// ---- directives ---------------------------------------------------------------------------------

/// Sets the bit of the first of the kinds that was seen.
bool takeFirst(uint32_t seen, std::initializer_list<uint8_t> kinds) {
    for (const uint8_t kind : kinds) {
        if ((seen & kindBit(kind)) == 0) continue;
        tNode.optFlags |= kindBit(kind);
        return true;
    }
    return false;
}

void takeHeadDirectives(uint32_t seen) {
    constexpr uint32_t allKinds = 0xFF;
    if ((seen & kindBit(TED_ENTRY)) != 0) markEntry(allKinds);
    if ((tNode.optFlags & OPTF_ENTRY) != 0) ++cMP->options.entryCount;
    if (tNode.typeCode != TYP_SYNONYM && (seen & kindBit(TED_SKIP)) != 0) setSkipOption();
}

void takeComponentDirectives(uint32_t seen) {
    if ((seen & kindBit(TED_SKIP)) != 0)
        setSkipOption();
    else
        takeFirst(seen, {TED_ASNH, TED_PTR});
}

void takeTypeDirectives(uint32_t seen) {
    if (isString())
        takeFirst(seen, {TED_FRAME, TED_SEG, TED_DYN});
    else if (isList())
        takeFirst(seen, {TED_FRAME, TED_SEG, TED_DYN, TED_DYNARR});
    else if (typeIs<TYP_SEQ, TYP_SET, TYP_CHOICE>() && tNode.ref != 0)
        takeFirst(seen, {TED_ASNHC});
    else if (tNode.typeCode == TYP_ANY)
        takeFirst(seen, {TED_FRAME});
}

} // namespace

std::span<const LocOption> locOptions() {
    return locOptionTable;
}

// ---- values -------------------------------------------------------------------------------------

void evalEntryOption(std::string_view value) {
    uint32_t kinds = 0;
    if (startsNoCase(value, "SDU"))
        kinds = 2;
    else if (startsNoCase(value, "PDU"))
        kinds = 4;
    else
        for (const char c : value.substr(0, value.find(':')))
            if (c >= '0' && c <= '7') kinds |= kindBit(static_cast<uint32_t>(c - '0'));
    markEntry(kinds);
}

bool definitelenOK(std::string_view value) {
    constexpr uint8_t leftToTypes = 2; // the global values from which types may choose
    return cMP->options.defLen >= leftToTypes &&
           byteOptionOK(value, 0, 1, locDefLenVal, tNode.lenForm);
}

bool skipOK(std::string_view value) {
    if (!byteOptionOK(value, 0, 1, allowedSkipOptionValues, tNode.skipOpt)) return false;
    tNode.optFlags |= OPTF_SKIP;
    return true;
}

void setSkipOption() {
    tNode.skipOpt = 0;
    tNode.optFlags |= OPTF_SKIP;
}

bool sizeLimitOK(std::string_view value) {
    const std::string_view digits = value.substr(0, value.find(':'));
    int32_t size = 0;
    if (digits.empty() || !std::ranges::all_of(digits, isDigit) ||
        std::from_chars(digits.data(), digits.data() + digits.size(), size).ec != std::errc())
        return false;
    const int32_t limit = isList() ? cMP->options.segListLim : cMP->options.segStrLim;
    if (size < 1 || (limit != 0 && size >= limit)) return false;
    uint8_t skip = 0; // also when an earlier limit of the type said otherwise
    if (digits.size() < value.size() &&
        !byteOptionOK(value.substr(digits.size() + 1), 0, 1, allowedSkipOptionValues, skip))
        return false;
    tNode.sizeLimit = static_cast<uint32_t>(size);
    tNode.sizeLimitSkip = skip;
    return true;
}

bool nearOK(std::string_view value) {
    return !isHead() && flagOK<OPTF_NEAR>(value);
}

bool extensionsOK(std::string_view value) {
    uint8_t save = 0;
    if (!typeIs<TYP_SEQ, TYP_SET, TYP_CHOICE>() || !byteOptionOK(value, 0, 1, extensionsVal, save))
        return false;
    setFlag(OPTF_EXTENSIONS, save != 0);
    return true;
}

bool parseAnyOption(std::string_view value, std::string_view& typeName,
                    std::string_view& valueName) {
    const auto isReference = [](std::string_view name) {
        return !name.empty() && isLetter(name[0]) && spanOfName(name, "-") == name.size() &&
               !name.ends_with('-') && name.find("--") == std::string_view::npos;
    };
    const size_t colon = value.find(':');
    if (colon == std::string_view::npos) return false;
    const std::string_view before = value.substr(0, colon);
    const std::string_view behind = value.substr(colon + 1);
    if (!isReference(before) || !isUpper(before[0]) || !isReference(behind) || !isLower(behind[0]))
        return false;
    typeName = before;
    valueName = behind;
    return true;
}

// ---- types --------------------------------------------------------------------------------------

bool localTypeOptionOK(uint8_t kind, std::string_view text) {
    if (kind == TED_REJECTED) return false;
    const auto [name, value] = splitOption(text);
    if (isHead() && name == "ENTRY=") return entryOptionOK(name, value);
    if (const NameOptPref* naming = findNameOption(text);
        naming != nullptr && namingAllowed(naming->kind))
        return getFixOpt(nullptr, name, value);
    if (value.empty()) return false;
    if (kind != TED_OPTION) return true;
    const auto* row = std::ranges::find(locOptionTable, name, &LocOption::name);
    return row != std::end(locOptionTable) && row->applies() && row->check(value);
}

void checkLocalTypeOptions(uint32_t& rejected, OptRange& range) {
    if (isHead() && tNode.name != 0) {
        const FixRec* entry =
            findFixRecByEntryTypeName(cMP->options.entry, getStri(cMP, tNode.name));
        if (entry != nullptr) {
            evalEntryOption(entry->fixConv);
            if (cMP->options.asnhc) tNode.optFlags |= OPTF_ASNHC;
        }
    }
    forEachTedRec(range, [&rejected](TedNr nr) {
        readRec(cMP, nr);
        if (localTypeOptionOK(tedRec.tedKind, tedText(cMP)))
            tNode.optFlags |= kindBit(tedRec.tedKind);
        else
            rejectRecord(nr, rejected);
    });
    takeRange(range, tNode.tedFirst, tNode.tedLast);
}

void patchOpts(TNodeNr node, uint32_t& kindsSeen, OptRange& range) {
    makePending(cMP, node);
    const bool head = isHead();
    if (head && (kindsSeen & kindBit(TED_ENTRY)) != 0 && cMP->options.asnhc)
        tNode.optFlags |= OPTF_ASNHC;
    uint32_t rejected = 0;
    checkLocalTypeOptions(rejected, range);
    if (head)
        takeHeadDirectives(kindsSeen);
    else
        takeComponentDirectives(kindsSeen);
    takeTypeDirectives(kindsSeen);
    kindsSeen = (kindsSeen & ~tNode.optFlags) | rejected;
}

// ---- values of assignments ----------------------------------------------------------------------

namespace {

bool localValueOptionOK(uint8_t kind, std::string_view text) {
    const auto [name, value] = splitOption(text);
    if (kind == TED_BEO) return !value.empty();
    const NameOptPref* naming = findNameOption(text);
    return kind == TED_OPTION && naming != nullptr && naming->kind == FIX_VALUE &&
           getFixOpt(nullptr, name, value);
}

} // namespace

void patchValOpts(VNodeNr node, uint32_t& rejectedKinds, OptRange& range) {
    makePending(cMP, node);
    rejectedKinds &= ~(kindBit(TED_BEO) | kindBit(TED_OPTION));
    forEachTedRec(range, [&rejectedKinds](TedNr nr) {
        readRec(cMP, nr);
        if (localValueOptionOK(tedRec.tedKind, tedText(cMP)))
            vNode.vflags |= tedRec.tedKind == TED_BEO ? VF_TED2 : VF_TED3;
        else
            rejectRecord(nr, rejectedKinds);
    });
    takeRange(range, vNode.tedFirst, vNode.tedLast);
}

} // namespace orvo
