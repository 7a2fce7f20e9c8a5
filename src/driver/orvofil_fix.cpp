// Invariants: the entries of a list of referenced modules and the per-identifier naming records
// never move, so pointers to them stay valid as long as the list. Each index holds the first entry
// of its key. Identifiers are indexed with "_" for "-", as the names of the tree have it.

#include "driver/orvofil_fix.h"

#include <algorithm>

#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "util/ascii.h"
#include "util/text.h"

namespace orvo {

// ---- referenced modules -------------------------------------------------------------------------

ModRef* createPicRec(ModRefList& list, std::string_view name, ModuleRec* target, uint32_t number) {
    ModRef* ref = list.refs.emplace_back(std::make_unique<ModRef>()).get();
    ref->name = name;
    ref->module = target;
    ref->number = number;
    (list.modRefLast != nullptr ? list.modRefLast->next : list.modRefFirst) = ref;
    list.modRefLast = ref;
    list.byName.try_emplace(ref->name, ref);
    if (target != nullptr) list.byModule.try_emplace(target, ref);
    if (number >= list.byNumber.size()) list.byNumber.resize(number + size_t{1});
    if (number != 0 && list.byNumber[number] == nullptr) list.byNumber[number] = ref;
    return ref;
}

namespace {

/// Removes a key from an index if it leads to the entry that goes away.
template <typename Map, typename Key> void forget(Map& map, const Key& key, const ModRef* ref) {
    const auto found = map.find(key);
    if (found != map.end() && found->second == ref) map.erase(found);
}

} // namespace

void dropPicRecs(ModRefList& list, size_t keep) {
    while (list.refs.size() > keep) {
        const ModRef* ref = list.refs.back().get();
        forget(list.byName, ref->name, ref);
        forget(list.byModule, ref->module, ref);
        if (list.byNumber[ref->number] == ref) list.byNumber[ref->number] = nullptr;
        list.refs.pop_back();
    }
    list.modRefLast = list.refs.empty() ? nullptr : list.refs.back().get();
    (list.modRefLast != nullptr ? list.modRefLast->next : list.modRefFirst) = nullptr;
}

// ---- option records -----------------------------------------------------------------------------

void optionToUpper(std::string& text) {
    for (size_t at = 1; at < text.size() && text[at] != '='; ++at) text[at] = toUpper(text[at]);
}

namespace {

/// String number of an option text. The name is converted before the text becomes a string: those
/// of a module are shared with its names and values, which keep their spelling.
StriNr putOption(uint8_t kind, std::string_view text) {
    const std::string_view name = text.substr(0, text.find('='));
    if (kind == TED_REJECTED || std::ranges::none_of(name, isLower)) return putStri(cMP, text);
    std::string converted(text);
    optionToUpper(converted);
    return putStri(cMP, converted);
}

} // namespace

TedNr addTedRec(OptRange& range, uint8_t kind, std::string_view text) {
    const StriNr stri = putOption(kind, text);
    const TedNr nr = newRec<KIND_TED>();
    tedRec.tedKind = kind;
    tedRec.text = stri.nr;
    writeRec(cMP, nr);
    if (range.first < 0 || range.last == 0) range.first = static_cast<int32_t>(nr.nr);
    range.last = static_cast<int32_t>(nr.nr);
    return nr;
}

std::string_view tedText(ModuleRec* module) {
    const std::string_view text = getStri(module, tedRec.text);
    return text.substr(text.empty() ? 0 : 1);
}

// ---- naming options -----------------------------------------------------------------------------

namespace {

constexpr size_t subOptionLength = 5;

bool isSubOption(std::string_view text) {
    return std::ranges::find(nameSubOptions, text.substr(0, subOptionLength)) !=
           std::end(nameSubOptions);
}

/// The identifier of a naming option: types, classes and sets begin with an upper-case letter,
/// values, objects and components with a lower-case one; fields are written without their "&".
bool namingIdentOK(FixKind kind, std::string_view ident) {
    if (ident.empty() || spanOfName(ident, "-") != ident.size()) return false;
    switch (kind) {
    case FIX_TYPE:
    case FIX_CLASS:
    case FIX_VALUE_SET:
    case FIX_OBJECT_SET: return isUpper(ident[0]);
    case FIX_VALUE:
    case FIX_OBJECT:
    case FIX_COMPONENT:
    case FIX_VALUE2: return isLower(ident[0]);
    case FIX_FIELD: break;
    }
    return true;
}

/// [H] L|U, or nothing.
bool conversionOK(std::string_view value) {
    if (value.empty()) return true;
    if (toUpper(value[0]) == 'H') value.remove_prefix(1);
    return value.size() == 1 && (toUpper(value[0]) == 'L' || toUpper(value[0]) == 'U');
}

/// The per-identifier record of an identifier, made when there is none.
FixRec& recordForIdent(FixList& list, std::string_view ident) {
    const auto [place, isNew] = list.byIdent.try_emplace(convertHyphens(std::string(ident)));
    if (!isNew) return *place->second;
    FixRec* record = list.records.emplace_back(std::make_unique<FixRec>()).get();
    place->second = record;
    record->fixIdent = concat(ident, ":");
    record->fixIdentLen = static_cast<uint32_t>(ident.size());
    (list.last != nullptr ? list.last->fixNext : list.head.fixNext) = record;
    list.last = record;
    return *record;
}

} // namespace

const NameOptPref* findNameOption(std::string_view text) {
    for (const NameOptPref& row : nameOptPref)
        if (text.starts_with(row.prefix) && isSubOption(text.substr(row.prefix.size())))
            return &row;
    return nullptr;
}

bool parseNamingOption(std::string_view text, size_t& suboption) {
    const NameOptPref* row = findNameOption(text);
    if (row == nullptr) return false;
    suboption = row->prefix.size();
    std::string_view value = text.substr(suboption + subOptionLength);
    if (const size_t colon = value.find(':'); colon != std::string_view::npos) {
        if (!namingIdentOK(row->kind, value.substr(0, colon))) return false;
        value.remove_prefix(colon + 1);
    }
    if (text[suboption] == 'C') return conversionOK(value);
    return spanOfName(value, "-_") == value.size();
}

bool parseEntryOption(std::string_view value, std::string_view& entryValue,
                      std::string_view& rest) {
    const auto isWord = [value](std::string_view word) {
        return std::ranges::equal(value.substr(0, 3), word, {}, toUpper);
    };
    size_t length = std::min(value.find_first_not_of("01234567"), value.size());
    if (length == 0 && (isWord("SDU") || isWord("PDU"))) length = 3;
    if (length == 0) return false;
    std::string_view behind = value.substr(length);
    if (!behind.empty()) {
        if (behind[0] != ':' || spanOfName(behind.substr(1), "_-") != behind.size() - 1)
            return false;
        behind.remove_prefix(1);
    }
    entryValue = value.substr(0, length);
    rest = behind;
    return true;
}

bool splitFixOptionIntoParts(std::string_view value, std::string_view& ident,
                             std::string_view& rest) {
    const size_t colon = value.find(':');
    if (colon == std::string_view::npos) {
        ident = {};
        rest = value;
        return true;
    }
    ident = value.substr(0, colon);
    rest = value.substr(colon + 1);
    return !ident.empty() && spanOfName(ident, "-") == ident.size();
}

bool getFixOpt(FixList* list, std::string_view optionName, std::string_view value) {
    std::string_view ident;
    std::string_view rest = value;
    if (list != nullptr && !splitFixOptionIntoParts(value, ident, rest)) return false;

    const bool isEntry = optionName == "ENTRY=";
    std::string_view entryValue;
    std::string_view entryName;
    size_t suboption = 0;
    if (isEntry ? !parseEntryOption(rest, entryValue, entryName)
                : !parseNamingOption(concat(optionName, value), suboption))
        return false;
    if (list == nullptr) return true;

    FixRec& record = ident.empty() ? list->head : recordForIdent(*list, ident);
    if (isEntry)
        updateEntryOption(record, entryValue, entryName);
    else
        updateNamingOption(record, optionName.substr(suboption), rest);
    return true;
}

void updateNamingOption(FixRec& record, std::string_view suboption, std::string_view value) {
    switch (suboption.empty() ? '\0' : suboption[0]) {
    case 'C': record.fixConv = value; break;
    case 'N': record.fixName = value; break;
    case 'P': record.fixPref = value; break;
    case 'S': record.fixSuff = value; break;
    default: break;
    }
}

void updateEntryOption(FixRec& record, std::string_view entryValue, std::string_view rest) {
    record.fixConv = entryValue;
    record.fixName = rest;
}

// ---- look-up ------------------------------------------------------------------------------------

size_t compareNames(std::string_view a, std::string_view b) {
    const auto plain = [](char c) { return c == '-' ? '_' : c; };
    size_t same = 0;
    while (same < a.size() && same < b.size() && plain(a[same]) == plain(b[same])) ++same;
    return same;
}

const FixRec* findGlbFixRecByName(const FixList& list, std::string_view name) {
    const auto found = list.byIdent.find(convertHyphens(std::string(name)));
    return found == list.byIdent.end() ? nullptr : found->second;
}

const FixRec* findFixRecByEntryTypeName(const FixList& list, std::string_view name) {
    if (const FixRec* own = findGlbFixRecByName(list, name)) return own;
    return list.head.fixConv.empty() ? nullptr : &list.head;
}

FixList& fixRecForKind(OptionBlock& block, FixKind kind) {
    return block.naming[kind == FIX_VALUE2 ? FIX_VALUE : kind];
}
const FixList& fixRecForKind(const OptionBlock& block, FixKind kind) {
    return block.naming[kind == FIX_VALUE2 ? FIX_VALUE : kind];
}

// ---- the name of an item ------------------------------------------------------------------------

namespace {

bool isValueKind(FixKind kind) {
    return kind == FIX_VALUE || kind == FIX_OBJECT || kind == FIX_VALUE2;
}
/// Module of the node that the kind applies to.
ModuleRec* moduleForKind(FixKind kind) {
    return isValueKind(kind) ? valueModule() : typeModule();
}

/// Overrides the record by the node's own option comments of the kind.
void applyComments(FixRec& record, FixKind kind, OptRange range) {
    ModuleRec* module = moduleForKind(kind);
    const auto* row = std::ranges::find(nameOptPref, kind, &NameOptPref::kind);
    KeepRec<KIND_TED> keep;
    forEachTedRec(range, [&](TedNr nr) {
        readRec(module, nr);
        if (tedRec.tedKind != TED_OPTION) return;
        const std::string_view option = tedText(module);
        if (!option.starts_with(row->prefix)) return;
        const std::string_view suboption = option.substr(row->prefix.size());
        if (!isSubOption(suboption)) return;
        // A comment stands at its item: an identifier in front of the text says nothing more.
        std::string_view value = suboption.substr(subOptionLength);
        if (const size_t colon = value.find(':'); colon != std::string_view::npos)
            value.remove_prefix(colon + 1);
        updateNamingOption(record, suboption, value);
    });
}

/// Appends one part of a name, converted; `before` is the character in front of it.
void appendConverted(std::string& buffer, std::string_view part, bool split, char letters,
                     char& before) {
    for (const char c : part) {
        if (isUpper(c) && split && (isLower(before) || isDigit(before))) buffer += '_';
        if (letters == 'L')
            buffer += c == '-' ? '_' : toLower(c);
        else if (letters == 'U')
            buffer += c == '-' ? '_' : toUpper(c);
        else
            buffer += c == '-' ? '_' : c;
        before = c;
    }
}

} // namespace

void getTedRecAndCompIdByKind(FixKind kind, OptRange& range, std::string_view& ident) {
    const bool isValue = isValueKind(kind);
    const int32_t name = isValue ? vNode.name : tNode.name;
    ident = name == 0 ? std::string_view() : getStri(moduleForKind(kind), name);
    range = {};
    if (isValue ? (vNode.vflags & VF_TED3) == 0 : (tNode.optFlags & (1U << TED_OPTION)) == 0)
        return;
    range.first = static_cast<int32_t>(isValue ? vNode.tedFirst : tNode.tedFirst);
    range.last = static_cast<int32_t>(isValue ? vNode.tedLast : tNode.tedLast);
}

void getFixRec(FixRec& out, FixKind kind) {
    out = {};
    OptRange range;
    std::string_view ident;
    getTedRecAndCompIdByKind(kind, range, ident);
    if (ident.empty()) return;

    const OptionBlock& block = moduleForKind(kind)->options;
    const FixList& list = fixRecForKind(block, kind);
    copyFixRec(out, list.head);
    if (const FixRec* own = findGlbFixRecByName(list, ident)) copyFixRec(out, *own);
    initFixRec(out, ident, block.nameLen);
    applyComments(out, kind, range);
    if (out.fixPref.empty() && out.fixName.empty() && out.fixSuff.empty() && out.fixConv.empty())
        return;
    if (out.fixName.empty()) out.fixName = ident;
    out.fixIdentLen = static_cast<uint32_t>(std::min<size_t>(out.fixName.size(), block.nameLen));
}

void initFixRec(FixRec& record, std::string_view ident, uint32_t limit) {
    record.fixIdent = ident;
    record.fixIdentLen = static_cast<uint32_t>(std::min<size_t>(ident.size(), limit));
    record.fixNext = nullptr;
}

void copyFixRec(FixRec& to, const FixRec& from) {
    if (!from.fixPref.empty()) to.fixPref = from.fixPref;
    if (!from.fixName.empty()) to.fixName = from.fixName;
    if (!from.fixSuff.empty()) to.fixSuff = from.fixSuff;
    if (!from.fixConv.empty()) to.fixConv = from.fixConv;
}

void pFixRec(std::string& buffer, const FixRec& record) {
    std::string_view conversion = record.fixConv;
    const bool split = !conversion.empty() && toUpper(conversion[0]) == 'H';
    if (split) conversion.remove_prefix(1);
    const char letters = conversion.empty() ? '\0' : toUpper(conversion[0]);
    char before = '\0';
    appendConverted(buffer, record.fixPref, split, letters, before);
    appendConverted(buffer, std::string_view(record.fixName).substr(0, record.fixIdentLen), split,
                    letters, before);
    appendConverted(buffer, record.fixSuff, split, letters, before);
}

void printFixRec(std::string& buffer, std::string_view before, const FixRec& record,
                 std::string_view after) {
    buffer += before;
    if (record.fixName.empty())
        buffer += std::string_view(record.fixIdent).substr(0, record.fixIdentLen);
    else
        pFixRec(buffer, record);
    buffer += after;
}

size_t countFixRec(const FixRec& record) {
    std::string name;
    printFixRec(name, "", record, "");
    return name.size();
}

bool compareFixRec(const FixRec& a, const FixRec& b) {
    std::string nameA;
    std::string nameB;
    printFixRec(nameA, "", a, "");
    printFixRec(nameB, "", b, "");
    return nameA != nameB;
}

} // namespace orvo
