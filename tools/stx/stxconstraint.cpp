#include "stxconstraint.h"

#include <algorithm>
#include <map>

#include "stxvalues.h"

// Strings are constrained in two ways at once, in length and in characters. A set of them is a list
// of boxes, each a set of sizes and a set of characters: "SIZE (1..4) ^ FROM ("ab") | SIZE (9)" is
// two. What INTEGER and ENUMERATED have are boxes whose characters are all there are.
//
// Sets of a type are worked out once and kept by type, from the end of a chain of references on, so
// that a module of nothing but references, each with a constraint, is walked once. Types that
// include others twice, and those again, would double without that.

namespace stx {
namespace {

/// Constraints and included types within one another.
constexpr int maxNesting = 400;
/// Boxes of one set: unions of sizes and alphabets, intersected with others, multiply.
constexpr size_t maxBoxes = 64;

enum class Group : uint8_t {
    Integer,
    Enumeration,
    Sized,  // BIT STRING, OCTET STRING, lists
    Known,  // strings of a known multiplier (X.691 (02/2021) 3.7.16)
    String, // others
    None,
};

struct Box {
    Ranges numbers; // values, sizes, numbers of items
    Ranges chars;
};
using Boxes = std::vector<Box>;

struct Set {
    Boxes root, whole;
    bool extensible = false;
    bool visible = true; // false: it says nothing; root and whole are everything then
};

} // namespace

struct ConstraintMemo {
    struct Entry {
        Set set;
        std::string error;
        bool running = false;
    };
    std::map<std::pair<const Tree*, uint32_t>, Entry> sets[2]; // by view
};

namespace {

Group groupOf(uint8_t code) {
    switch (code) {
    case TYP_INTEGER: return Group::Integer;
    case TYP_ENUM: return Group::Enumeration;
    case TYP_BITSTR:
    case TYP_OCTSTR:
    case TYP_SEQOF:
    case TYP_SETOF: return Group::Sized;
    case TYP_NUMSTR:
    case TYP_PRISTR:
    case TYP_VISSTR:
    case TYP_IA5STR:
    case TYP_BMPSTR:
    case TYP_UNISTR: return Group::Known;
    case TYP_TELSTR:
    case TYP_VIDSTR:
    case TYP_GRASTR:
    case TYP_GENSTR:
    case TYP_OBJDESCR:
    case TYP_UTF8STR: return Group::String;
    default: return Group::None;
    }
}

Ranges charsOfText(std::u32string_view text) {
    Ranges set;
    for (const char32_t code : text) set.push_back({Integer(code), Integer(code)});
    return asSet(std::move(set));
}

/// The characters of a kind of string.
Ranges baseAlphabet(uint8_t code) {
    switch (code) {
    case TYP_NUMSTR: return charsOfText(U" 0123456789");
    case TYP_PRISTR:
        return unionOf(charsOfText(U" '()+,-./:=?"), asSet({{Integer('0'), Integer('9')},
                                                            {Integer('A'), Integer('Z')},
                                                            {Integer('a'), Integer('z')}}));
    case TYP_VISSTR: return rangeOf(Integer(32), Integer(126));
    case TYP_IA5STR: return rangeOf(Integer(0), Integer(127));
    case TYP_BMPSTR: return rangeOf(Integer(0), Integer(0xFFFF));
    case TYP_UNISTR: return rangeOf(Integer(0), Integer(0xFFFFFFFF));
    case TYP_UTF8STR: return rangeOf(Integer(0), Integer(0x10FFFF));
    default: return rangeOf(Integer(0), Integer(255));
    }
}

Ranges anySize() {
    return rangeOf(Integer(0), std::nullopt);
}

Set everything(bool visible) {
    const Boxes all = {{allIntegers(), allIntegers()}};
    return {all, all, false, visible};
}

Set numbersOnly(const Ranges& numbers) {
    const Boxes boxes = {{numbers, allIntegers()}};
    return {boxes, boxes, false, true};
}

struct Work {
    Trees& trees;
    View view;
    std::string error; // the first one
    int depth = 0;
};
/// Gives back the depth that was entered.
struct Level {
    int& depth;
    explicit Level(int& counter) : depth(++counter) {}
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
    ~Level() { --depth; }
};

/// False when it was too much.
bool spend(Work& work, uint64_t steps) {
    if (work.error.empty() && !work.trees.spend(steps))
        work.error = "the constraints take more work than the files are worth";
    return work.error.empty();
}

size_t weight(const Box& box) {
    return 1 + box.numbers.size() + box.chars.size();
}

/// What is left of a box of strings without characters is the empty string.
void addBox(Work& work, Boxes& boxes, Box box) {
    if (box.chars.empty()) box.numbers = intersectionOf(box.numbers, rangeOf(0, 0));
    if (box.numbers.empty()) return;
    for (Box& other : boxes) {
        if (!spend(work, weight(other) + weight(box))) return;
        if (other.chars == box.chars) {
            other.numbers = unionOf(other.numbers, box.numbers);
            return;
        }
        if (other.numbers == box.numbers) {
            other.chars = unionOf(other.chars, box.chars);
            return;
        }
    }
    boxes.push_back(std::move(box));
    if (boxes.size() > maxBoxes && work.error.empty())
        work.error = "unions of sizes and alphabets are intersected too often";
}

Boxes united(Work& work, Boxes a, const Boxes& b) {
    for (const Box& box : b) addBox(work, a, box);
    return a;
}

Boxes intersected(Work& work, const Boxes& a, const Boxes& b) {
    Boxes boxes;
    for (const Box& left : a)
        for (const Box& right : b) {
            if (!spend(work, weight(left) + weight(right))) return {};
            addBox(work, boxes,
                   {intersectionOf(left.numbers, right.numbers),
                    intersectionOf(left.chars, right.chars)});
        }
    return boxes;
}

/// What is in none of the boxes. A string is outside of a box when its size is, or when one of its
/// characters is: others of it may be any.
Boxes complement(Work& work, const Boxes& a) {
    Boxes rest = {{allIntegers(), allIntegers()}};
    for (const Box& box : a) {
        Boxes outside;
        addBox(work, outside, {complementOf(box.numbers), allIntegers()});
        if (!complementOf(box.chars).empty())
            addBox(work, outside, {rangeOf(1, std::nullopt), allIntegers()});
        rest = intersected(work, rest, outside);
    }
    return rest;
}

Ranges numbersOf(const Boxes& boxes) {
    Ranges set;
    for (const Box& box : boxes) set = unionOf(set, box.numbers);
    return set;
}

/// Characters that a string can hold, so of boxes that allow more than the empty one.
Ranges charsOf(const Boxes& boxes) {
    Ranges set;
    for (const Box& box : boxes)
        if (!intersectionOf(box.numbers, rangeOf(1, std::nullopt)).empty())
            set = unionOf(set, box.chars);
    return set;
}

size_t weight(const Set& set) {
    size_t sum = 1;
    for (const Boxes* boxes : {&set.root, &set.whole})
        for (const Box& box : *boxes) sum += weight(box);
    return sum;
}

/// What is being constrained.
enum class Subject : uint8_t { Values, Sizes, Characters };

struct Place {
    Group group;
    Subject subject;
    const Tree& tree;
    Boxes parent; // what is left of the type without this constraint
    uint8_t code; // of the type at the end
    bool named;   // BIT STRING with named bits: zeros at the end are no part of its values
};

Set evaluate(Work& work, const Place& place, uint32_t nr);
Set setOf(Work& work, TypeRef type);

void fail(Work& work, const Tree& tree, Kind kind, uint32_t nr, const std::string& what) {
    if (work.error.empty())
        work.error = tree.path() + ": " + kindNames[kind] + ' ' + std::to_string(nr) + what;
}

/// The number of an INTEGER, the code of a character.
std::optional<Integer> pointOf(Work& work, const Place& place, ValueRef value) {
    if (place.subject != Subject::Characters) {
        Result<Integer> number = integerOf(work.trees, value);
        if (number) return number.value;
        if (work.error.empty()) work.error = number.error;
        return std::nullopt;
    }
    const Result<std::u32string> text = charactersOf(work.trees, value);
    if (text && text->size() == 1) return Integer((*text)[0]);
    if (work.error.empty())
        work.error = text ? value.tree->path() + ": vNode " + std::to_string(value.nr) +
                                " is not one character"
                          : text.error;
    return std::nullopt;
}

Set rangeSet(Work& work, const Place& place, const SubRec& sub) {
    // bounds of REAL and the like say nothing here
    const bool numbers = place.group == Group::Integer || place.subject == Subject::Sizes;
    if (!numbers && place.subject != Subject::Characters) return everything(false);
    Range range;
    const Ranges inParent =
        place.subject == Subject::Characters ? charsOf(place.parent) : numbersOf(place.parent);
    range.lower = sub.left != 0 ? pointOf(work, place, {&place.tree, sub.left}) : lowerOf(inParent);
    const auto right = static_cast<uint32_t>(sub.right);
    range.upper = right != 0 ? pointOf(work, place, {&place.tree, right}) : upperOf(inParent);
    if ((sub.subFlags & SUBF_LOWER) == 0 && range.lower) range.lower = range.lower->next();
    if ((sub.subFlags & SUBF_UPPER) == 0 && range.upper) range.upper = range.upper->previous();
    const Ranges set = asSet({range});
    if (place.subject != Subject::Characters) return numbersOnly(set);
    const Boxes boxes = {{allIntegers(), set}};
    return {boxes, boxes, false, true};
}

/// A single value: a number, the characters of an alphabet, a string as a whole.
Set singleSet(Work& work, const Place& place, ValueRef value) {
    if (place.subject == Subject::Characters) {
        const Result<std::u32string> text = charactersOf(work.trees, value);
        if (!text && work.error.empty()) work.error = text.error;
        const Boxes boxes = {{allIntegers(), charsOfText(text.value)}};
        return {boxes, boxes, false, true};
    }
    if (place.group == Group::Integer || place.subject == Subject::Sizes ||
        place.group == Group::Enumeration) {
        const std::optional<Integer> number = pointOf(work, place, value);
        return numbersOnly(number ? rangeOf(*number, *number) : Ranges());
    }
    if (work.view == View::Per) return everything(false);
    const auto sized = [](uint64_t size) {
        const Integer number(static_cast<int64_t>(size));
        return numbersOnly(rangeOf(number, number));
    };
    switch (place.group) {
    case Group::Known:
    case Group::String: {
        const Result<std::u32string> text = charactersOf(work.trees, value);
        if (!text && work.error.empty()) work.error = text.error;
        Set set = sized(text->size());
        set.root[0].chars = set.whole[0].chars = charsOfText(text.value);
        return set;
    }
    case Group::Sized: {
        if (place.code == TYP_SEQOF || place.code == TYP_SETOF) {
            const Result<std::vector<ValueRef>> list = elementsOf(work.trees, value);
            return list ? sized(list->size()) : everything(false);
        }
        const Result<Bits> bits = bitsOf(work.trees, value);
        if (!bits || place.named) return everything(false); // given by its contents
        return sized(place.code == TYP_BITSTR ? bits->count : bits->bytes.size());
    }
    default: return everything(false);
    }
}

/// A type that is included: the root of what it is constrained to.
Set includedSet(Work& work, const Place& place, ValueRef holder) {
    const Link link = holder.tree->linkOf(VNODE, holder.nr, fieldNamed(VNODE, "ref"));
    std::string error;
    const TypeRef type = typeOf(work.trees, *holder.tree, link, error);
    if (!type) {
        if (!error.empty() && work.error.empty()) work.error = error;
        return everything(false);
    }
    Set set = setOf(work, type);
    set.whole = set.root;
    set.extensible = false;
    if (place.subject == Subject::Characters) {
        const Boxes boxes = {{allIntegers(), charsOf(set.root)}};
        set = {boxes, boxes, false, set.visible};
    }
    if (place.group == Group::Integer || place.subject == Subject::Sizes) set.visible = true;
    return set;
}

/// Operands up to a marker are the root, those behind it additions.
Set unionSet(Work& work, const Place& place, uint32_t nr) {
    Set set{{}, {}, false, true};
    bool additions = false;
    for (const uint32_t operand : operands(place.tree, nr)) {
        if (place.tree.subRec(operand).subKind == SUB_EXTENSION_MARKER) {
            additions = set.extensible = true;
            continue;
        }
        const Set part = evaluate(work, place, operand);
        set.whole = united(work, std::move(set.whole), part.whole);
        if (additions) continue;
        set.root = united(work, std::move(set.root), part.root);
        set.extensible |= part.extensible;
        set.visible &= part.visible;
    }
    if (!set.visible) return everything(false);
    return set;
}

/// All operands; those that are not visible leave it to the others.
Set intersectionSet(Work& work, const Place& place, uint32_t nr) {
    Set set = everything(false);
    for (const uint32_t operand : operands(place.tree, nr)) {
        const Set part = evaluate(work, place, operand);
        if (!part.visible) continue;
        set.root = intersected(work, set.root, part.root);
        set.whole = intersected(work, set.whole, part.whole);
        set.extensible |= part.extensible;
        set.visible = true;
    }
    return set;
}

/// One constraint behind another: it takes from the root of what was there, and says alone whether
/// the result is extensible.
void applyNext(Work& work, Set& set, const Set& next) {
    if (!next.visible) return;
    set.whole = intersected(work, set.root, next.whole);
    set.root = intersected(work, set.root, next.root);
    set.extensible = next.extensible;
    set.visible = true;
}

Set serialSet(Work& work, const Place& place, uint32_t nr) {
    Set set = everything(false);
    Place inside = place;
    for (const uint32_t operand : operands(place.tree, nr)) {
        applyNext(work, set, evaluate(work, inside, operand));
        inside.parent = intersected(work, place.parent, set.root);
    }
    return set;
}

Set exceptSet(Work& work, const Place& place, uint32_t nr, bool all) {
    const std::vector<uint32_t> parts = operands(place.tree, nr);
    Set set = everything(true);
    if (!all && !parts.empty()) set = evaluate(work, place, parts[0]);
    const size_t at = all ? 0 : 1;
    if (work.view == View::Per || at >= parts.size()) return set;
    const Set without = evaluate(work, place, parts[at]);
    if (!without.visible) return set; // nobody knows what it takes away
    const bool single = place.tree.subRec(parts[at]).subKind == SUB_SINGLE_VALUE;
    const bool whole = place.subject == Subject::Values &&
                       (place.group == Group::Known || place.group == Group::String ||
                        place.group == Group::Sized);
    if (single && whole) return set; // one string of many
    const Boxes rest = place.subject == Subject::Characters
                           ? Boxes{{allIntegers(), complementOf(charsOf(without.root))}}
                           : complement(work, without.root);
    set.root = intersected(work, set.root, rest);
    set.whole = intersected(work, set.whole, rest);
    return set;
}

/// SIZE and FROM: the inner constraint is about a number, or about characters.
Set innerSet(Work& work, const Place& place, uint32_t nr, Subject subject) {
    const std::vector<uint32_t> inside = operands(place.tree, nr);
    if (inside.empty()) return everything(false);
    Place within = place;
    within.subject = subject;
    if (subject == Subject::Sizes)
        within.parent = {{intersectionOf(numbersOf(place.parent), anySize()), allIntegers()}};
    const Set inner = evaluate(work, within, inside[0]);
    if (work.view == View::Per && subject == Subject::Characters && inner.extensible)
        return everything(false);
    return inner;
}

Set evaluate(Work& work, const Place& place, uint32_t nr) {
    const Level level(work.depth);
    if (work.depth > maxNesting)
        fail(work, place.tree, SUB, nr, ": the constraints are nested too deep");
    if (!spend(work, 1)) return everything(false);
    const SubRec sub = place.tree.subRec(nr);
    Set set = everything(false);
    switch (sub.subKind) {
    case SUB_UNION: set = unionSet(work, place, nr); break;
    case SUB_INTERSECTION: set = intersectionSet(work, place, nr); break;
    case SUB_SERIAL: set = serialSet(work, place, nr); break;
    case SUB_EXCEPT: set = exceptSet(work, place, nr, false); break;
    case SUB_ALL_EXCEPT: set = exceptSet(work, place, nr, true); break;
    case SUB_RANGE: set = rangeSet(work, place, sub); break;
    case SUB_SINGLE_VALUE: set = singleSet(work, place, {&place.tree, sub.left}); break;
    case SUB_CONTAINED_SUBTYPE: set = includedSet(work, place, {&place.tree, sub.left}); break;
    case SUB_SIZE: set = innerSet(work, place, nr, Subject::Sizes); break;
    case SUB_PERMITTED_ALPHABET: set = innerSet(work, place, nr, Subject::Characters); break;
    // of values that it knows nothing of, a subtype constraint of the full view ends extensibility
    case SUB_PATTERN:
    case SUB_WITH_COMPONENT:
    case SUB_WITH_COMPONENTS:
    case SUB_SETTINGS: set.visible = work.view == View::Full; break;
    default: break;
    }
    return set;
}

/// The set without any constraint.
Set baseSet(uint8_t code) {
    switch (groupOf(code)) {
    case Group::Known:
    case Group::String: {
        const Boxes boxes = {{anySize(), baseAlphabet(code)}};
        return {boxes, boxes, false, false};
    }
    case Group::Sized: {
        const Boxes boxes = {{anySize(), allIntegers()}};
        return {boxes, boxes, false, false};
    }
    default: return everything(false);
    }
}

ConstraintMemo& memoOf(Trees& trees) {
    if (!trees.constraints) trees.constraints = std::make_shared<ConstraintMemo>();
    return *trees.constraints;
}

/// Adds the constraint of one type of a chain to what those behind it leave.
void constrain(Work& work, TypeRef type, uint8_t code, bool named, Set& set) {
    const TNode node = type.node();
    if (node.constraint < 0) fail(work, *type.tree, TNODE, type.nr, ": a constraint is not parsed");
    const Group group = groupOf(code);
    const bool hidden =
        group == Group::None || group == Group::Enumeration || group == Group::String;
    if (node.constraint <= 0 || (work.view == View::Per && hidden)) return;
    const Place place{group, Subject::Values, *type.tree, set.root, code, named};
    applyNext(work, set, evaluate(work, place, static_cast<uint32_t>(node.constraint)));
}

/// From the type inwards to the first one whose set is known; outwards again with the constraints.
Set setOf(Work& work, TypeRef type) {
    auto& memo = memoOf(work.trees).sets[work.view == View::Full ? 1 : 0];
    std::string error;
    const TNode end = skipTypes(work.trees, type, true, error).node(); // settles that it ends
    Set set = baseSet(end.typeCode);
    std::vector<TypeRef> chain;
    for (TypeRef at = type; at && error.empty(); at = nextType(work.trees, at, true, error)) {
        const auto known = memo.find({at.tree, at.nr});
        if (known == memo.end()) {
            chain.push_back(at);
            continue;
        }
        if (known->second.running) fail(work, *at.tree, TNODE, at.nr, ": the type includes itself");
        error = known->second.error;
        set = known->second.set;
        break;
    }
    if (!error.empty() && work.error.empty()) work.error = error;
    for (size_t at = chain.size(); at-- > 0 && work.error.empty();) {
        const TypeRef link = chain[at];
        memo[{link.tree, link.nr}].running = true;
        constrain(work, link, end.typeCode, end.namedVals != 0, set);
        spend(work, weight(set));
        memo[{link.tree, link.nr}] = {set, work.error, false};
    }
    return set;
}

/// The type at the end of a chain and the set of the type; an error where it has none.
struct Found {
    uint8_t code = TYP_NONE;
    TypeRef end;
    Set set;
};
Result<Found> find(Trees& trees, TypeRef type, View view) {
    if (!type) return failure<Found>("no type");
    const std::string name = type.tree->path() + ": tNode " + std::to_string(type.nr);
    if (type.node().isParameterized()) return failure<Found>(name + " is parameterized");
    std::string error;
    const TypeRef end = skipTypes(trees, type, true, error);
    if (!error.empty()) return failure<Found>(error);
    Work work{trees, view, {}};
    Found found{end.node().typeCode, end, setOf(work, type)};
    return {std::move(found), work.error};
}

Result<Effective> noSuch(TypeRef type, const char* what) {
    return failure<Effective>(type.tree->path() + ": tNode " + std::to_string(type.nr) +
                              " has no " + what);
}

template <typename Part>
Result<Effective> part(const Found& found, const Ranges& base, Part partOf) {
    Effective result{partOf(found.set.root), partOf(found.set.whole), found.set.extensible, false};
    result.constrained = result.root != base;
    return {result, ""};
}

} // namespace

Result<Effective> effectiveBounds(Trees& trees, TypeRef type, View view) {
    const Result<Found> found = find(trees, type, view);
    if (!found) return failure<Effective>(found.error);
    if (found->code != TYP_INTEGER) return noSuch(type, "values of an INTEGER");
    return part(*found, allIntegers(), numbersOf);
}

Result<Effective> effectiveSize(Trees& trees, TypeRef type, View view) {
    const Result<Found> found = find(trees, type, view);
    if (!found) return failure<Effective>(found.error);
    const Group group = groupOf(found->code);
    if (group != Group::Sized && group != Group::Known && group != Group::String)
        return noSuch(type, "size");
    return part(*found, anySize(), numbersOf);
}

Result<Effective> effectiveAlphabet(Trees& trees, TypeRef type, View view) {
    const Result<Found> found = find(trees, type, view);
    if (!found) return failure<Effective>(found.error);
    const Group group = groupOf(found->code);
    if (group != Group::Known && group != Group::String) return noSuch(type, "alphabet");
    return part(*found, baseAlphabet(found->code), charsOf);
}

Result<Items> effectiveItems(Trees& trees, TypeRef type, View view) {
    const Result<Found> found = find(trees, type, view);
    if (!found) return failure<Items>(found.error);
    if (found->code != TYP_ENUM) return failure<Items>(noSuch(type, "items").error);
    const Set& set = found->set;
    const Ranges root = numbersOf(set.root), whole = numbersOf(set.whole);
    Items items;
    bool additions = false;
    for (const uint32_t nr : namedValues(*found->end.tree, found->end.nr)) {
        const ValueRef value{found->end.tree, nr};
        if (value.node().valCode == TYP_EXTENSION_MARKER) {
            additions = true;
            continue;
        }
        const Result<Integer> number = integerOf(trees, value);
        if (!number) return failure<Items>(number.error);
        const Item item{value.tree->text(value.node().name), *number, value};
        // behind a constraint with "...", what is of its root is of the root
        if (contains(root, *number) && !(additions && !set.visible))
            items.root.push_back(item);
        else if (contains(whole, *number))
            items.additions.push_back(item);
    }
    std::ranges::sort(items.root, {}, &Item::number);
    items.extensible = set.visible ? set.extensible : additions;
    return {items, ""};
}

std::string effectiveText(Trees& trees, TypeRef type) {
    const Result<Found> found = find(trees, type, View::Full);
    const Group group = groupOf(found->code);
    if (!found || group == Group::None) return "";
    Ranges set = numbersOf(found->set.whole);
    if (group == Group::Enumeration) {
        const Result<Items> items = effectiveItems(trees, type, View::Full);
        set.clear();
        for (const std::vector<Item>* list : {&items->root, &items->additions})
            for (const Item& item : *list) set.push_back({item.number, item.number});
        set = asSet(std::move(set));
    }
    if (set.empty()) return "";
    const std::optional<Integer> lower = lowerOf(set), upper = upperOf(set);
    return (lower ? lower->text() : "MIN") + ".." + (upper ? upper->text() : "MAX");
}

} // namespace stx
