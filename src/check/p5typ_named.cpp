// Named numbers, named bits and enumeration items (X.680 (07/2002) clauses 18, 19 and 21).

#include <algorithm>
#include <climits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "check/orvonum.h"
#include "check/p5typ_int.h"
#include "check/p5val.h"
#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

enum class EntrySort { Numbered, Valueless, Marker };

EntrySort entrySort(std::string_view fault) {
    switch (vNode.valCode) {
    case TYP_INTEGER:
    case TYP_BITSTR:
    case TYP_SYNONYM: return EntrySort::Numbered;
    case TYP_ENUM: return EntrySort::Valueless;
    case TYP_EXTENSION_MARKER: return EntrySort::Marker;
    default: fatalError(Fatal::Internal, fault);
    }
}

/// A named list, and whom errors are charged to.
struct NamedList {
    ModuleRec* errors = nullptr;
    ModuleRec* module = nullptr;
    VNodeNr first;
    bool isBitString = false;
};
/// That of the current type.
NamedList namedList(ModuleRec* errors) {
    return {errors, typeModule(), VNodeNr{tNode.namedVals}, tNode.typeCode == TYP_BITSTR};
}

/// Calls fn for each entry, which is the current value record.
template <typename Fn> void forEachEntry(const NamedList& list, Fn&& fn) {
    for ([[maybe_unused]] const VNodeNr nr : chain(list.module, list.first)) fn();
}

void report(const NamedList& list, Msg code) {
    const std::string_view name =
        vNode.name == 0 ? std::string_view() : getStri(list.module, vNode.name);
    recordError(list.errors, ERR_SEMANTIC, code, vNode.line, name);
}

/// The number of the current entry; false when it leads to no INTEGER.
bool numberOf(Integer& number) {
    const KeepRec<KIND_VNODE> keep;
    if (vNode.valCode == TYP_SYNONYM) {
        skipValues(true);
        if (!isIntegerVNode()) return false;
    }
    number = integerOf(valueModule(), vNode.val);
    return true;
}

/// A number, or a value that leads to one; no bit has a negative number.
void signedNumOrDefVal(const NamedList& list) {
    Integer number;
    if (numberOf(number) && !(list.isBitString && number.nearest() < 0)) return;
    report(list, invalidValue(TYP_INTEGER));
}

/// Counts on from a number; in older notation 64 bits are the end.
Integer counted(const NamedList& list, const Integer& number) {
    const bool isEnd = number.nearest() == INT64_MAX && !newNotation(list.module);
    return isEnd ? number : number.next();
}

/// The numbers that a scan for a collision covers, so far. Counting up from a number leads to the
/// first free one behind it; what was counted over is noted, so that it is not counted again.
class Numbers {
  public:
    explicit Numbers(const NamedList& list) : list_(list) {}
    void addCurrent() {
        Integer number;
        if (entrySort("Unexpected named number category.") == EntrySort::Numbered &&
            numberOf(number))
            add(number);
    }
    void add(const Integer& number) {
        const Integer next = counted(list_, number);
        if (next != number) next_.try_emplace(number, next);
    }
    [[nodiscard]] Integer firstFreeFrom(Integer number) {
        Integer free = number;
        for (auto at = next_.find(free); at != next_.end(); at = next_.find(free))
            free = at->second;
        for (auto at = next_.find(number); at != next_.end(); at = next_.find(number)) {
            number = std::exchange(at->second, free);
        }
        return free;
    }

  private:
    const NamedList& list_;
    // used number -> a number up to the next free one
    std::unordered_map<Integer, Integer, IntegerHash> next_;
};

/// Gives the current item the first number from the counter on that no other one has; false when
/// none is left.
bool numberItem(const NamedList& list, Numbers& numbers, Integer& counter) {
    const Integer free = numbers.firstFreeFrom(counter);
    const Integer last(INT32_MAX); // of older notation
    const bool isLeft = newNotation(list.module) || free == counter || free <= last;
    counter = isLeft ? free : std::max(counter, last);
    vNode.valCode = TYP_INTEGER;
    setInteger(vNode.val, list.module, counter);
    list.module->stringsAdded |= !counter.beyond().empty();
    writeCurrent<KIND_VNODE>();
    numbers.add(counter);
    counter = counted(list, counter);
    return isLeft;
}

/// Numbers the items that have none: those of the root among all numbered ones of the root, those
/// behind the marker among the items before them (X.680 (07/2002) 19.3 and 19.6). Returns the items
/// for which no number was left.
std::vector<VNodeNr> valuelessEnum(const NamedList& list) {
    std::vector<VNodeNr> numberless;
    Numbers numbers(list);
    bool inRoot = true;
    forEachEntry(list, [&] {
        inRoot &= vNode.valCode != TYP_EXTENSION_MARKER;
        if (inRoot) numbers.addCurrent();
    });
    Integer counter;
    inRoot = true;
    forEachEntry(list, [&] {
        const EntrySort sort = entrySort("Unexpected named number category.");
        if (sort == EntrySort::Marker) {
            inRoot = false;
        } else if (sort == EntrySort::Valueless) {
            const VNodeNr item = currentRec<KIND_VNODE>().nr;
            if (!numberItem(list, numbers, counter)) numberless.push_back(item);
        } else if (!inRoot) {
            numbers.addCurrent();
            Integer number;
            if (numberOf(number)) counter = counted(list, number);
        }
    });
    return numberless;
}

void checkDuplicateValue(const NamedList& list) {
    std::unordered_set<Integer, IntegerHash> seen;
    forEachEntry(list, [&] {
        Integer number;
        if (entrySort("Unexpected named number category.") != EntrySort::Numbered ||
            !numberOf(number))
            return;
        if (!seen.insert(number).second) report(list, Msg::NonDistinctValueInNamedNumberBitList);
    });
}

/// Behind the extension marker values do not decrease.
void checkExtensionOrder(const NamedList& list) {
    bool inRoot = true;
    Integer largest = Integer(INT32_MIN); // all that older notation counts with
    bool isFirst = newNotation(list.module);
    forEachEntry(list, [&] {
        Integer number;
        if (vNode.valCode == TYP_EXTENSION_MARKER) {
            inRoot = false;
        } else if (!inRoot && numberOf(number)) {
            if (!isFirst && number < largest)
                report(list, Msg::NonAscendingValueInExtensionAddition);
            largest = isFirst ? number : std::max(largest, number);
            isFirst = false;
        }
    });
}

/// The exception behind the marker, the current value, is a value of its type.
void checkException(const NamedList& list) {
    if (vNode.ref == 0) return;
    const uint32_t line = vNode.line;
    const KeepRec<KIND_VNODE> keep;
    readRec(list.module, VNodeNr{vNode.ref});
    if (!checkVNode(list.errors, true, true))
        recordError(list.errors, ERR_SEMANTIC, Msg::InvalidExceptionValue, line);
}

} // namespace

std::vector<VNodeNr> numberItems() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const KeepRec<KIND_VNODE> keepValue;
    const NamedList list = namedList(nullptr);
    bool valueless = false;
    forEachEntry(list, [&] {
        valueless |= entrySort("Unrecognized named number category.") == EntrySort::Valueless;
    });
    std::vector<VNodeNr> numberless;
    if (valueless) numberless = valuelessEnum(list);
    readRec(self);
    return numberless;
}

void checkNamedList(ModuleRec* module, const std::vector<VNodeNr>& numberless) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const KeepRec<KIND_VNODE> keepValue;
    const NamedList list = namedList(module);
    bool extensible = false;
    forEachEntry(list, [&] {
        vNode.govTypeMod = REF_OWN;
        writeCurrent<KIND_VNODE>();
        if (vNode.valCode != TYP_EXTENSION_MARKER) return signedNumOrDefVal(list);
        extensible = true;
        checkException(list);
    });
    readRec(self);
    for (const VNodeNr item : numberless) {
        readRec(self.module, item);
        report(list, invalidValue(TYP_INTEGER));
    }
    checkDuplicateValue(list);
    if (extensible) checkExtensionOrder(list);
    readRec(self);
    if (!extensible) return;
    tNode.checkFlags |= CF_EXTENSIBLE;
    writeRec(self);
}

} // namespace orvo
