// Values against constraints. An operator reports after its operands, so that a failure reads from
// the inside out; operands that are only tried are checked without messages. The character or the
// size that an inner constraint is about is a value without a record.

#include <algorithm>
#include <limits>
#include <string>

#include "check/check_cache.h"
#include "check/orvonum_end.h"
#include "check/orvostri.h"
#include "check/orvotime.h"
#include "check/p5val_int.h"
#include "parser/iso8824.h"
#include "tree/orvoutil_cmp.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// Unions of more operands are looked up.
constexpr uint32_t longUnion = 16;

bool failConstr(const ValueErrors& errors, const CheckedValue& value, uint8_t subKind) {
    return failValue(errors, value, valueOutOfConstraint(subName(subKind)));
}

/// Tells the records apart that values stand at.
uint64_t placeOf(const CheckedValue& value) {
    return value.at ? keyOf(value.at) : value.id;
}

SubRef currentSub() {
    return currentRec<KIND_SUB>();
}
ValueErrors silent(const ValueErrors& errors) {
    return {errors.module, false};
}

SubRef operandsOf(SubRef sub) {
    return {sub.module, SubNr{subRec.left}};
}

// ---- operators ----------------------------------------------------------------------------------

/// Equality of such values is decided by all of the value, so equal values have equal hashes.
bool isSimple(uint8_t kind) {
    switch (kind) {
    case TYP_BOOLEAN:
    case TYP_INTEGER:
    case TYP_ENUM:
    case TYP_REAL:
    case TYP_OBJID:
    case TYP_RELOID: return true;
    default: return is(kind, TypeClass::Text) || is(kind, TypeClass::Quoted);
    }
}

const UnionIndex& unionIndexOf(SubRef self) {
    const auto [note, isNew] = checkCacheOf(self.module).unions.try_emplace(self.nr.nr);
    if (!isNew) return note->second;
    UnionIndex& index = note->second;
    readRec(self);
    forEachOperand(operandsOf(self), [&](SubRef operand) {
        if (subRec.subKind != SUB_SINGLE_VALUE || subRec.left == 0) {
            index.others.push_back(operand.nr);
            return true;
        }
        const CheckedValue value = checkedValue({operand.module, VNodeNr{subRec.left}});
        index.values[hashOfValue(value.module, value.rec)].push_back(operand.nr);
        return true;
    });
    return index;
}

bool meetsOneOf(const ValueErrors& errors, const CheckedValue& value, ModuleRec* module,
                const std::vector<SubNr>& operands) {
    return std::ranges::any_of(operands, [&](SubNr operand) {
        readRec(module, operand);
        return checkAgainstSub(errors, value);
    });
}

bool isLong(SubRef self) {
    uint32_t count = 0;
    forEachOperand(operandsOf(self), [&](SubRef) { return ++count <= longUnion; });
    readRec(self);
    return count > longUnion;
}

bool valUnion(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef self = currentSub();
    const ValueErrors tried = silent(errors);
    if (!value.isCharacter && isSimple(value.rec.valCode) && isLong(self)) {
        const UnionIndex& index = unionIndexOf(self);
        const auto same = index.values.find(hashOfValue(value.module, value.rec));
        if (same != index.values.end() && meetsOneOf(tried, value, self.module, same->second))
            return true;
        return meetsOneOf(tried, value, self.module, index.others);
    }
    bool met = false;
    readRec(self);
    forEachOperand(operandsOf(self), [&](SubRef) {
        met = checkAgainstSub(tried, value);
        return !met;
    });
    return met;
}

/// Every operand of an intersection or series; the first that is not met ends it.
bool valAll(const ValueErrors& errors, const CheckedValue& value) {
    bool met = true;
    forEachOperand(operandsOf(currentSub()), [&](SubRef) {
        met = checkAgainstSub(errors, value);
        return met;
    });
    return met;
}

bool valExcept(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef first = operandsOf(currentSub());
    if (!first) return false;
    readRec(first);
    const SubRef second{first.module, SubNr{subRec.next}};
    if (!checkAgainstSub(errors, value)) return false;
    if (!second) return true;
    readRec(second);
    return !checkAgainstSub(silent(errors), value);
}

bool valAllExcept(const ValueErrors& errors, const CheckedValue& value) {
    bool met = false;
    forEachOperand(operandsOf(currentSub()), [&](SubRef) {
        met = checkAgainstSub(silent(errors), value);
        return !met;
    });
    return !met;
}

// ---- elements -----------------------------------------------------------------------------------

/// The value lies on the inner side of an endpoint, or there is none on that side.
bool isInside(const CheckedValue& value, const Endpoint& end, bool upper) {
    const uint8_t kind = value.rec.valCode;
    const bool isText = is(kind, TypeClass::StringGroup);
    if (isText ? !sharesCharacters(subModule(), kind, end.value.valCode)
               : end.value.valCode != kind)
        return false;
    if (end.value.isInfinite) return true;
    const bool isMinOrMax = upper ? subRec.right == 0 : subRec.left == 0;
    const bool isIncluded = (subRec.subFlags & (upper ? SUBF_UPPER : SUBF_LOWER)) != 0;
    const VNode bound = end.value.asValue();
    int order = isText ? compareCharacters(value.module, value.rec, end.module, bound)
                       : compareValue(value.module, value.rec, end.module, bound);
    if (upper) order = -order;
    return order > 0 || (order == 0 && isIncluded && (end.flags != 0 || isMinOrMax));
}

/// The time lies on the inner side of an end that is of its form.
bool isTimeInside(const TimeVal& time, uint32_t end, bool upper) {
    if (end == 0) return true;
    const CheckedValue other = checkedValue({subModule(), VNodeNr{end}});
    TimeVal bound;
    if (!readTime(plainText(other.module, other.rec), bound) || !bound.isComparable) return true;
    if (!isSameForm(time, bound)) return false;
    const bool isIncluded = (subRec.subFlags & (upper ? SUBF_UPPER : SUBF_LOWER)) != 0;
    if (time.parts == bound.parts) return isIncluded;
    return (time.parts < bound.parts) == upper;
}

bool valTimeRange(const CheckedValue& value) {
    const SubRec range = subRec;
    TimeVal time;
    if (!readTime(plainText(value.module, value.rec), time)) return true; // reported by its form
    return isTimeInside(time, range.left, false) && isTimeInside(time, range.right, true);
}

bool valSettings(const CheckedValue& value) {
    if (subRec.left == 0 || !is(value.rec.valCode, TypeClass::Time)) return true;
    const CheckedValue text = checkedValue({subModule(), VNodeNr{subRec.left}});
    TimeSettings settings;
    std::string_view fault;
    TimeVal time;
    return !readTimeSettings(plainText(text.module, text.rec), settings, fault) ||
           !readTime(plainText(value.module, value.rec), time) || hasSettings(time, settings);
}

bool valRange(const CheckedValue& value) {
    if (is(value.rec.valCode, TypeClass::Time)) return valTimeRange(value);
    for (const bool upper : {false, true}) {
        Endpoint end;
        if (!getRangeEndpoint(end, upper) || !isInside(value, end, upper)) return false;
    }
    return true;
}

bool valPermittedAlphabet(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef inner = operandsOf(currentSub());
    if (!inner || !is(value.rec.valCode, TypeClass::StringGroup)) return false;
    for (const char32_t character : distinctChars(value.module, value.rec)) {
        CheckedValue part = partOf(value, value.rec.valCode);
        // An alphabet inside an alphabet is about the same character again.
        if (value.isCharacter) part.id = value.id;
        part.isCharacter = true;
        part.rec.val.str.striLen = 1;
        part.rec.val.str.stri = scratchStri;
        tempChar[0] = static_cast<char>(character);
        tempChar16[0] = static_cast<char16_t>(character);
        tempChar32[0] = character;
        readRec(inner);
        if (!checkAgainstSub(errors, part)) return false;
    }
    return true;
}

/// Elements of a list, else the length of the string.
uint64_t sizeOf(const CheckedValue& value) {
    if (!value.nr) return makeRestrCharStriSeg(value.module, value.rec, nullptr);
    readRec(value.module, value.nr);
    if (!is(vNode.valCode, TypeClass::List)) return getAnyStringLength();
    uint32_t count = 0;
    for (VNodeNr nr{vNode.ref}; nr && count < value.module->nextRecNr[KIND_VNODE]; ++count) {
        readRec(value.module, nr);
        nr = {vNode.next};
    }
    return count;
}

/// Zero bits may be added to a value of a type with named bits until it is long enough (X.680
/// (02/2021) 22.7). The type is the current one.
uint64_t leastBits() {
    const KeepRec<KIND_TNODE> keep;
    Endpoint lower;
    if (!getSizeEndpoint(lower, false)) return 0;
    skipTypes(true);
    const bool isNamed = tNode.typeCode == TYP_BITSTR && tNode.namedVals != 0;
    const int64_t least = i64native(lower.value.val.number);
    return isNamed && least > 0 ? static_cast<uint64_t>(least) : 0;
}

bool valSizeConstr(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef inner = operandsOf(currentSub());
    if (!inner) return false;
    if (holdsContents(value.rec)) return true; // its encoding is not known
    uint64_t least = 0;
    if (newNotation(inner.module)) {
        const KeepRec<KIND_SUB> keep;
        least = leastBits();
    }
    CheckedValue size = partOf(value, TYP_INTEGER);
    constexpr uint64_t most = std::numeric_limits<int64_t>::max();
    const uint64_t length = std::max(sizeOf(value), least);
    size.rec.val.number = i64of(static_cast<int64_t>(std::min(length, most)));
    readRec(inner);
    ModuleRec* owner = refModule(inner.module, static_cast<int32_t>(subRec.typeMod));
    if (owner == nullptr || subRec.typeNr == 0) return false;
    readRec(owner, TNodeNr{subRec.typeNr});
    return checkAgainstSub(errors, size);
}

/// Characters of a single value inside FROM; where the module allows it, four hexadecimal digits
/// are one character.
const std::u32string& alphabetOf(SubRef sub, const CheckedValue& operand) {
    const auto [note, isNew] = checkCacheOf(sub.module).alphabets.try_emplace(sub.nr.nr);
    if (!isNew) return note->second;
    std::u32string& chars = note->second;
    if (operand.rec.valCode == TYP_OCTSTR) {
        const std::string bits = convBitString(TYP_BITSTR, operand.module, operand.rec);
        if (bits.size() == 16) chars = static_cast<char32_t>(std::stoul(bits, nullptr, 2));
    } else {
        chars = distinctChars(operand.module, operand.rec);
        std::ranges::sort(chars);
    }
    return chars;
}

bool isInAlphabet(SubRef sub, const CheckedValue& character, const CheckedValue& operand) {
    const uint8_t kind = operand.rec.valCode;
    if (kind != TYP_OCTSTR && !sharesCharacters(sub.module, character.rec.valCode, kind))
        return false;
    std::u32string one = distinctChars(character.module, character.rec);
    return one.size() == 1 && std::ranges::binary_search(alphabetOf(sub, operand), one[0]);
}

bool equalBits(const CheckedValue& a, const CheckedValue& b) {
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return equalStrings(tNode.typeCode, a.module, a.rec, b.module, b.rec);
}

bool valSingleValue(const CheckedValue& value) {
    const SubRef sub = currentSub();
    if (subRec.left == 0) return false;
    CheckedValue operand = checkedValue({sub.module, VNodeNr{subRec.left}});
    if (operand.id == value.id) return true;
    if (value.isCharacter) return isInAlphabet(sub, value, operand);
    const uint8_t kind = value.rec.valCode;
    if (is(kind, TypeClass::Bits) && is(operand.rec.valCode, TypeClass::Bits))
        return holdsContents(value.rec) != holdsContents(operand.rec) || equalBits(value, operand);
    if (is(kind, TypeClass::StringGroup))
        return sharesCharacters(sub.module, kind, operand.rec.valCode) &&
               compareCharacters(value.module, value.rec, operand.module, operand.rec) == 0;
    if (is(kind, TypeClass::Time) && is(operand.rec.valCode, TypeClass::Time))
        operand.rec.valCode = kind;
    return kind == operand.rec.valCode &&
           compareValue(value.module, value.rec, operand.module, operand.rec) == 0;
}

/// A verdict that was reached before in this check, or the one that `decide` reaches now. What
/// fails is reported at each record that findings stand at.
template <typename Fn> bool rememberedVerdict(const ValueErrors& errors, const CheckedValue& value,
                                              VerdictKey key, Fn&& decide) {
    std::map<VerdictKey, bool>& verdicts = p5ValState.verdicts;
    key.place = placeOf(value);
    key.enclosing = value.enclosing != nullptr ? placeOf(*value.enclosing) : 0;
    key.isReference = value.isReference;
    key.seriesEnd = seriesView.last ? keyOf(seriesView.last) : 0;
    if (errors.report) {
        const auto known = verdicts.find(key);
        if (known != verdicts.end() && known->second) return true;
        key.told = keyOf(value.told);
    }
    const auto [note, isNew] = verdicts.try_emplace(key, false);
    if (!isNew) return note->second;
    const bool ok = decide();
    verdicts[key] = ok;
    key.told = 0;
    verdicts[key] = ok;
    return ok;
}

bool valContainedSubtype(const ValueErrors& errors, const CheckedValue& value) {
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    if (subRec.left == 0) return false;
    readRec(subModule(), VNodeNr{subRec.left});
    if (!readTypeSetting()) return false;
    const TNodeRef type = currentRec<KIND_TNODE>();
    return rememberedVerdict(errors, value, {.against = keyOf(type), .isInner = false},
                             [&] { return checkAgainstType(errors, value, true); });
}

// ---- inner subtypes -----------------------------------------------------------------------------

bool checkElements(const ValueErrors& errors, const CheckedValue& value, SubRef inner) {
    const KeepRec<KIND_VNODE> keep;
    bool met = true;
    for (const VNodeNr nr : chain(value.module, VNodeNr{value.rec.ref})) {
        CheckedValue element = partAt(value, nr);
        element.enclosing = value.enclosing; // where the constraint stands, not in the list
        met &= rememberedVerdict(errors, element, {.against = keyOf(inner), .isInner = true}, [&] {
            readRec(inner);
            return checkAgainstSub(errors, element);
        });
    }
    return met;
}

bool valWithComp(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef inner = operandsOf(currentSub());
    skipTypes(true);
    if (!is(tNode.typeCode, TypeClass::List) || tNode.ref == 0 || !inner) return false;
    readRec(typeModule(), TNodeNr{tNode.ref});
    return checkElements(errors, value, inner);
}

bool hasComponent(const CheckedValue& value, std::string_view name) {
    return findValueCompById(value.module, VNodeNr{value.rec.ref}, name);
}

/// PRESENT and ABSENT are kept. The names of the entries are collected.
bool presencesAreKept(const CheckedValue& value, SubRef first, std::set<std::string_view>& named) {
    bool met = true;
    forEachOperand(first, [&](SubRef entry) {
        if (subRec.name == 0) return true;
        const std::string_view name = getStri(entry.module, int64_t{subRec.name});
        named.insert(name);
        const bool present = hasComponent(value, name);
        if ((subRec.subFlags & SUBF_PRESENT) != 0) met &= present;
        if ((subRec.subFlags & SUBF_ABSENT) != 0) met &= !present;
        return true;
    });
    return met;
}

/// The components that the value has meet the constraints of their entries (X.680 (02/2021) 51.8).
bool componentsMeetEntries(const ValueErrors& errors, const CheckedValue& value, SubRef first) {
    bool met = true;
    forEachOperand(first, [&](SubRef entry) {
        const SubRec sub = subRec;
        ModuleRec* const owner = refModule(entry.module, static_cast<int32_t>(sub.typeMod));
        if (sub.subKind == SUB_EXCEPTION || sub.name == 0 || owner == nullptr) return true;
        if (!findValueCompById(value.module, VNodeNr{value.rec.ref},
                               getStri(entry.module, int64_t{sub.name})))
            return true;
        const CheckedValue part = partAt(value, currentRec<KIND_VNODE>().nr);
        met &= rememberedVerdict(errors, part, {.against = keyOf(entry), .isInner = true}, [&] {
            readRec(owner, TNodeNr{sub.typeNr});
            readRec(entry);
            return checkAgainstSub(errors, part);
        });
        return true;
    });
    return met;
}

/// The current type becomes the structure whose components are restricted.
void readRestrictedStructure() {
    skipTypes(true);
    static_cast<void>(readAssociatedType(subModule(), tNode.typeCode));
}

bool valWithComps(const ValueErrors& errors, const CheckedValue& value) {
    const SubRef self = currentSub();
    const bool isFull = (subRec.subFlags & SUBF_FULL) != 0;
    std::set<std::string_view> named;
    bool met = presencesAreKept(value, operandsOf(self), named);
    if (newNotation(self.module)) {
        readRec(self);
        const SubRef first = operandsOf(self);
        met &= value.rec.valCode == TYP_REAL ? realMeetsEntries(value, first)
                                             : componentsMeetEntries(errors, value, first);
    }
    // What a type nearer to the value restricts again is not asked for here.
    if (!isFull || value.isRestricted) return met;
    readRestrictedStructure();
    if (tNode.ref == 0) return met;
    for (const FlatEntry& entry : flatComponents(typeModule(), TNodeNr{tNode.ref})) {
        if (entry.repeated || entry.compStatus != TCS_OPTIONAL || named.contains(entry.name))
            continue;
        met &= !hasComponent(value, entry.name);
    }
    return met;
}

/// The constraint by its kind; what reports by itself does not come back here as a failure.
bool meets(const ValueErrors& errors, const CheckedValue& value) {
    switch (subRec.subKind) {
    case SUB_UNION: return valUnion(errors, value);
    case SUB_INTERSECTION:
    case SUB_SERIAL: return valAll(errors, value);
    case SUB_EXCEPT: return valExcept(errors, value);
    case SUB_ALL_EXCEPT: return valAllExcept(errors, value);
    case SUB_RANGE: return valRange(value);
    case SUB_PERMITTED_ALPHABET: return valPermittedAlphabet(errors, value);
    case SUB_SIZE: return valSizeConstr(errors, value);
    case SUB_SINGLE_VALUE: return valSingleValue(value);
    case SUB_CONTAINED_SUBTYPE: return valContainedSubtype(errors, value);
    case SUB_WITH_COMPONENT: return valWithComp(errors, value);
    case SUB_WITH_COMPONENTS: return valWithComps(errors, value);
    case SUB_TABLE: return valTableConstr(errors, value);
    case SUB_CONTENTS: return newNotation(subModule());
    case SUB_OPEN_TYPE: return newNotation(subModule()) && valOpenType(errors, value);
    case SUB_USER_DEFINED:
    case SUB_EXCEPTION:
    case SUB_PATTERN: return true;
    case SUB_SETTINGS: return valSettings(value);
    default: return false;
    }
}

/// Kinds whose failure is reported where it is found, or not at all.
bool reportsItself(uint8_t subKind) {
    return subKind == SUB_CONTAINED_SUBTYPE ||
           (subKind > SUB_WITH_COMPONENTS && subKind != SUB_SETTINGS);
}

} // namespace

bool checkAgainstSub(const ValueErrors& errors, const CheckedValue& value) {
    const ValueNesting nesting;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    const uint8_t kind = subRec.subKind;
    if (meets(errors, value)) return true;
    return !reportsItself(kind) && failConstr(errors, value, kind);
}

bool hasWithComps(SubRef sub) {
    const KeepRec<KIND_SUB> keep;
    readRec(sub);
    if (subRec.subKind == SUB_WITH_COMPONENTS) return true;
    if (subRec.subKind != SUB_SERIAL && subRec.subKind != SUB_INTERSECTION) return false;
    bool found = false;
    forEachOperand(operandsOf(sub), [&](SubRef operand) {
        found = hasWithComps(operand);
        return !found;
    });
    return found;
}

} // namespace orvo
