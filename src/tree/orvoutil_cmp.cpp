// Comparison of values. Structured values are compared with a stack of their own instead of
// recursion, since values refer to one another as deep as there are values. A pair of lists that
// was compared before is not compared again, so values that refer twice to the next level cost one
// pair per level; a pair that is met inside its own comparison is a cycle and changes nothing.

#include "tree/orvoutil_cmp.h"

#include <bit>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "check/orvonum.h"
#include "check/orvostri.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"

namespace orvo {

namespace {

/// As deep as values are written. References nest deeper, but each level searches for a match of
/// its elements.
constexpr uint32_t maxSetOfNesting = 500;

/// Two lists of component values or elements.
using ListPair = std::tuple<ModuleRec*, uint32_t, ModuleRec*, uint32_t, uint8_t>;

struct Comparison {
    std::set<ListPair> seen;         // in the conjunction that is being decided
    std::map<ListPair, bool> setOfs; // verdicts about SET OF values
    uint32_t depth = 0;              // SET OF inside SET OF
};

/// Lists that are compared entry by entry.
struct OpenPair {
    uint8_t kind;
    VNodeRef a;
    VNodeRef b;
    VNodeRef firstB;
    uint32_t left; // entries it may still have: a broken chain must not be endless
};

bool isStru(uint8_t kind) {
    return is(kind, TypeClass::Members) || is(kind, TypeClass::Associated) ||
           kind == TYP_INSTANCE_OF;
}
bool isList(uint8_t kind) {
    return is(kind, TypeClass::List);
}

/// An entry of a list with the value that it stands for.
struct Entry {
    VNode own;                   // the record on the list: its name, governing type and successor
    VNode value;                 // references followed
    ModuleRec* module = nullptr; // of the value
};
Entry readEntry(VNodeRef at) {
    readRec(at);
    Entry entry{vNode, {}, nullptr};
    skipValues(true);
    entry.value = vNode;
    entry.module = valueModule();
    return entry;
}

TNodeRef actualType(ModuleRec* module, const VNode& value) {
    ModuleRec* typeModule = refModule(module, static_cast<int32_t>(value.govTypeMod));
    if (typeModule == nullptr || value.govType == 0) return {};
    readRec(typeModule, TNodeNr{value.govType});
    skipTypes(true);
    return currentRec<KIND_TNODE>();
}

bool sameType(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (modA == modB && a.govType == b.govType && a.govTypeMod == b.govTypeMod) return true;
    return actualType(modA, a) == actualType(modB, b);
}

int orderOf(int64_t a, int64_t b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

int compareNumbers(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    const auto isNumber = [](uint8_t code) { return code == TYP_INTEGER || code == TYP_ENUM; };
    if (!isNumber(b.valCode)) return -1;
    return compareIntegers(modA, a.val, modB, b.val);
}

int compareRealVals(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    RealVal left;
    RealVal right;
    if (!realOfValue(modA, a, left) || !realOfValue(modB, b, right)) return -1;
    return compareReal(left, right);
}

int compareBooleans(const VNode& a, const VNode& b) {
    if (b.valCode != TYP_BOOLEAN) return -1;
    return orderOf(a.val.boole != 0 ? 1 : 0, b.val.boole != 0 ? 1 : 0);
}

/// Values without components or elements.
int compareSimple(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    switch (a.valCode) {
    case TYP_BOOLEAN: return compareBooleans(a, b);
    case TYP_INTEGER:
    case TYP_ENUM: return compareNumbers(modA, a, modB, b);
    case TYP_REAL: return compareRealVals(modA, a, modB, b);
    case TYP_BITSTR:
    case TYP_OCTSTR:
    case TYP_TELSTR:
    case TYP_VIDSTR:
    case TYP_GRASTR:
    case TYP_GENSTR:
    case TYP_GENTIME:
    case TYP_UTCTIME:
    case TYP_OBJDESCR: return equalStrings(a.valCode, modA, a, modB, b) ? 0 : 1;
    case TYP_NULL: return b.valCode == TYP_NULL ? 0 : -1;
    case TYP_ANY:
        recordError(modA, ERR_WARNING, Msg::None, a.line,
                    "Comparison of two ANY values not yet implemented, sorry.");
        return -1;
    case TYP_OBJID:
    case TYP_RELOID: return compareObjIdVal(modA, a, modB, b);
    case TYP_NUMSTR:
    case TYP_PRISTR:
    case TYP_VISSTR:
    case TYP_IA5STR:
    case TYP_BMPSTR:
    case TYP_UNISTR:
    case TYP_UTF8STR: return compareStrings(modA, a, modB, b);
    default:
        if (!is(a.valCode, TypeClass::Quoted)) return -1;
        return compareStrings(modA, a, modB, b);
    }
}

uint32_t lengthOfList(VNodeRef first) {
    uint32_t length = 0;
    const uint32_t most = first.module->nextRecNr[KIND_VNODE];
    for (VNodeNr nr = first.nr; nr && length < most; ++length) {
        readRec(first.module, nr);
        nr = {vNode.next};
    }
    return length;
}

bool equalLists(Comparison& state, uint8_t kind, VNodeRef a, VNodeRef b);

bool equalEntries(Comparison& state, const VNodeRef atA, const Entry& a, VNodeRef atB,
                  const Entry& b);

/// Hashes of lists by their first entry and the depth at which they are met.
struct Hashing {
    std::map<std::tuple<ModuleRec*, uint32_t, uint32_t>, uint64_t> lists;
};
uint64_t hashAt(Hashing& state, ModuleRec* module, const VNode& value, uint32_t depth);

/// The elements of a SET OF value that are still to be matched, by hash and in order.
struct Unmatched {
    std::vector<VNodeRef> elements;
    std::vector<char> matched;
    std::unordered_map<uint64_t, std::vector<size_t>> byHash; // later elements first
    Hashing hashing;
};
Unmatched unmatchedOf(VNodeRef first) {
    Unmatched set;
    const uint32_t length = lengthOfList(first);
    VNodeRef at = first;
    for (uint32_t i = 0; i < length; ++i) {
        set.elements.push_back(at);
        readRec(at);
        at.nr = {vNode.next};
    }
    set.matched.resize(length);
    for (size_t i = length; i-- != 0;) {
        const Entry entry = readEntry(set.elements[i]);
        set.byHash[hashAt(set.hashing, entry.module, entry.value, 0)].push_back(i);
    }
    return set;
}

/// Matches one element with an equal one: among those of its hash first, which are nearly always
/// the only ones, then among all.
bool matchElement(Comparison& state, VNodeRef at, Unmatched& set) {
    const Entry entry = readEntry(at);
    const auto matches = [&](size_t i) {
        if (set.matched[i] != 0) return false;
        const Entry other = readEntry(set.elements[i]);
        Comparison inner; // a conjunction of its own, which may fail without harm
        inner.setOfs.swap(state.setOfs);
        inner.depth = state.depth;
        const bool equal = equalEntries(inner, at, entry, set.elements[i], other);
        state.setOfs.swap(inner.setOfs);
        set.matched[i] = equal ? 1 : 0;
        return equal;
    };
    std::vector<size_t>& likely = set.byHash[hashAt(set.hashing, entry.module, entry.value, 0)];
    for (size_t i = likely.size(); i-- != 0;) {
        if (!matches(likely[i])) continue;
        likely.erase(likely.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    for (size_t i = 0; i < set.elements.size(); ++i)
        if (matches(i)) return true;
    return false;
}

bool equalSetOfs(Comparison& state, VNodeRef a, VNodeRef b) {
    const Depth nesting(state.depth, maxSetOfNesting);
    if (nesting.tooDeep()) fatalError(Fatal::NoSpace, "SET OF values nested too deeply.");
    const auto [verdict, isNew] =
        state.setOfs.try_emplace({a.module, a.nr.nr, b.module, b.nr.nr, TYP_SETOF}, true);
    if (!isNew) return verdict->second;
    Unmatched set = unmatchedOf(b);
    bool equal = true;
    for (VNodeRef at = a; equal && at;) {
        readRec(at);
        const VNodeNr next{vNode.next};
        equal = matchElement(state, at, set);
        at.nr = next;
    }
    state.setOfs[{a.module, a.nr.nr, b.module, b.nr.nr, TYP_SETOF}] = equal;
    return equal;
}

/// Puts the two values' lists on the stack, unless they decide themselves. False: they differ.
bool openPair(Comparison& state, std::vector<OpenPair>& open, VNodeRef a, VNodeRef b,
              uint8_t kind) {
    if (isList(kind) && lengthOfList(a) != lengthOfList(b)) return false;
    if (!a || !b) return true;
    if (kind == TYP_SETOF) return equalSetOfs(state, a, b);
    if (state.seen.insert({a.module, a.nr.nr, b.module, b.nr.nr, kind}).second)
        open.push_back({kind, a, b, b, a.module->nextRecNr[KIND_VNODE]});
    return true;
}

/// Compares two entries whose types are the same; lists are put on the stack.
bool equalOrOpen(Comparison& state, std::vector<OpenPair>& open, const Entry& a, const Entry& b) {
    if (!isStru(a.value.valCode) && !isList(a.value.valCode))
        return compareSimple(a.module, a.value, b.module, b.value) == 0;
    if (a.value.valCode != b.value.valCode) return false;
    return openPair(state, open, {a.module, VNodeNr{a.value.ref}}, {b.module, VNodeNr{b.value.ref}},
                    a.value.valCode);
}

/// The entry of the second list that stands against the current one of the first: that of the same
/// name in a SET, else the next. False when a SET has none.
bool readCounterpart(const OpenPair& pair, const Entry& a, VNodeRef& at) {
    if (pair.kind != TYP_SET) {
        at = pair.b;
        return true;
    }
    if (a.own.name == 0) return false;
    if (!findValueCompById(pair.firstB.module, pair.firstB.nr, getStri(pair.a.module, a.own.name)))
        return false;
    at = currentRec<KIND_VNODE>();
    return true;
}

/// Decides what is on the stack.
bool equalOpenPairs(Comparison& state, std::vector<OpenPair>& open) {
    while (!open.empty()) {
        OpenPair& pair = open.back();
        if (!pair.a || !pair.b || pair.left-- == 0) {
            open.pop_back();
            continue;
        }
        const VNodeRef atA = pair.a;
        const Entry a = readEntry(atA);
        VNodeRef atB;
        if (!readCounterpart(pair, a, atB)) return false;
        const Entry b = readEntry(atB);
        pair.a.nr = {a.own.next};
        if (pair.kind != TYP_SET) pair.b.nr = {b.own.next};
        if (!sameType(atA.module, a.own, atB.module, b.own)) return false;
        if (!equalOrOpen(state, open, a, b)) return false;
    }
    return true;
}

bool equalEntries(Comparison& state, VNodeRef atA, const Entry& a, VNodeRef atB, const Entry& b) {
    if (!sameType(atA.module, a.own, atB.module, b.own)) return false;
    std::vector<OpenPair> open;
    return equalOrOpen(state, open, a, b) && equalOpenPairs(state, open);
}

bool equalLists(Comparison& state, uint8_t kind, VNodeRef a, VNodeRef b) {
    std::vector<OpenPair> open;
    return openPair(state, open, a, b, kind) && equalOpenPairs(state, open);
}

int compareLists(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    Comparison state;
    return equalLists(state, kind, {modA, VNodeNr{a.ref}}, {modB, VNodeNr{b.ref}}) ? 0 : -1;
}

// ---- object identifiers -------------------------------------------------------------------------

/// Arcs in decimal, joined by commas.
struct Arcs {
    std::string text;
    size_t count = 0;
    bool valid = true;
};

/// Adds the arcs of the component at `at`, which begins the value (`isFirst`) or not, and goes on
/// to the next one. The lists of the values that components refer to are opened behind it.
void addArcs(Arcs& arcs, std::vector<VNodeRef>& open, bool isFirst) {
    const Entry component = readEntry(open.back());
    open.back().nr = {component.own.next};
    if (!open.back()) open.pop_back();
    const uint8_t code = component.value.valCode;
    if (code == TYP_INTEGER) {
        if (arcs.count++ != 0) arcs.text += ',';
        arcs.text += integerOf(component.module, component.value.val).text();
    } else if (code != TYP_RELOID && (code != TYP_OBJID || !isFirst)) {
        arcs.valid = false;
    } else if (component.value.ref != 0) {
        open.push_back({component.module, VNodeNr{component.value.ref}});
    }
}

} // namespace

std::string textOfObjId(ModuleRec* module, const VNode& value) {
    if (value.val.str.striLen == invalidObjId) return {};
    if (value.val.str.stri != 0) return std::string(getStri(module, int64_t{value.val.str.stri}));
    Arcs arcs;
    std::vector<VNodeRef> open{{module, VNodeNr{value.ref}}};
    const size_t most = maxArcs(module);
    // Every list adds an arc in the end, but one that leads back to itself.
    for (size_t steps = 0; !open.empty() && open.back() && arcs.valid; ++steps) {
        addArcs(arcs, open, arcs.count == 0);
        arcs.valid = arcs.valid && arcs.count <= most && arcs.text.size() <= maxArcsText &&
                     steps <= most * most;
    }
    return arcs.valid ? arcs.text : std::string();
}

namespace {

// ---- hashes -------------------------------------------------------------------------------------

/// What is below these levels does not tell values apart that are alike down to there: they are
/// compared then.
constexpr uint32_t maxHashDepth = 8;

uint64_t mixed(uint64_t hash, uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15ULL;
    return std::rotl(hash, 29);
}

/// The order of a SET and of a SET OF does not count.
bool isUnordered(uint8_t kind) {
    return kind == TYP_SET || kind == TYP_SETOF;
}

uint64_t hashOfText(std::string_view text) {
    return std::hash<std::string_view>{}(text);
}

uint64_t hashOfSimple(ModuleRec* module, const VNode& value) {
    switch (value.valCode) {
    case TYP_BOOLEAN: return value.val.boole != 0 ? 1 : 0;
    case TYP_INTEGER:
    case TYP_ENUM: return IntegerHash{}(integerOf(module, value.val));
    case TYP_REAL: return hashOfReal(value.val.real);
    // The same bits may be written in binary, in hexadecimal and by name.
    case TYP_BITSTR:
    case TYP_OCTSTR: {
        if (holdsContents(value)) return value.valCode;
        std::string bits = convBitString(TYP_BITSTR, module, value);
        bits.erase(bits.find_last_not_of('0') + 1);
        return hashOfText(bits);
    }
    case TYP_OBJID:
    case TYP_RELOID: return hashOfText(textOfObjId(module, value));
    default: {
        RestrCharStri stri;
        makeRestrCharStri(module, value, stri);
        return std::hash<std::u32string>{}(stri.chars);
    }
    }
}

uint64_t hashAt(Hashing& state, ModuleRec* module, const VNode& value, uint32_t depth) {
    if (!isStru(value.valCode) && !isList(value.valCode)) return hashOfSimple(module, value);
    if (value.ref == 0 || depth == maxHashDepth) return value.valCode;
    const auto [note, isNew] = state.lists.try_emplace({module, value.ref, depth}, value.valCode);
    if (!isNew) return note->second;
    uint64_t hash = value.valCode;
    for (const VNodeNr nr : chain(module, VNodeNr{value.ref})) {
        const Entry entry = readEntry({module, nr});
        const uint64_t part = hashAt(state, entry.module, entry.value, depth + 1);
        hash = isUnordered(value.valCode) ? hash + mixed(7, part) : mixed(hash, part);
    }
    state.lists[{module, value.ref, depth}] = hash;
    return hash;
}

} // namespace

int compareObjIdVal(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    if (a.valCode != b.valCode) return -1;
    const KeepRec<KIND_VNODE> keep;
    const std::string text = textOfObjId(modA, a);
    return !text.empty() && text == textOfObjId(modB, b) ? 0 : -1;
}

int compareStruVal(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    return compareLists(kind, modA, a, modB, b);
}
int compareListVal(uint8_t kind, ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    return compareLists(kind, modA, a, modB, b);
}

namespace {

/// The value that a copy of a record stands for.
Entry resolved(ModuleRec* module, const VNode& value) {
    Entry entry{value, value, module};
    if (value.valCode != TYP_SYNONYM && value.valCode != TYP_FIELDLIST) return entry;
    ModuleRec* target = refModule(module, value.refMod);
    if (value.valCode == TYP_FIELDLIST || target == nullptr || value.ref == 0) return entry;
    Entry found = readEntry({target, VNodeNr{value.ref}});
    found.own = value;
    return found;
}

} // namespace

int compareValue(ModuleRec* modA, const VNode& a, ModuleRec* modB, const VNode& b) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const Entry left = resolved(modA, VNode{a});
    const Entry right = resolved(modB, VNode{b});
    const uint8_t kind = left.value.valCode;
    if (!isStru(kind) && !isList(kind))
        return compareSimple(left.module, left.value, right.module, right.value);
    if (kind != right.value.valCode) return -1;
    return compareLists(kind, left.module, left.value, right.module, right.value);
}

uint64_t hashOfValue(ModuleRec* module, const VNode& value) {
    const KeepRec<KIND_VNODE> keep;
    const Entry entry = resolved(module, VNode{value});
    Hashing state;
    return hashAt(state, entry.module, entry.value, 0);
}

} // namespace orvo
