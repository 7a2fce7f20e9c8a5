#include "stxvalues.h"

#include <algorithm>

// A value that is made of others may share them, and a damaged file may share them at every level,
// so that what they make up doubles with each: the parts that are put together are counted.

namespace stx {
namespace {

constexpr int maxNesting = 200;
/// Characters of one string, and those of which nothing is counted as work.
constexpr size_t maxCharacters = 16'000'000, freeCharacters = 1'000'000;
/// A named bit beyond this is no position in a string that anyone holds.
constexpr uint64_t maxBits = 4'000'000;

std::string at(ValueRef value) {
    if (!value) return "no value";
    return value.tree->path() + ": vNode " + std::to_string(value.nr);
}

template <typename T> Result<T> wrongKind(ValueRef value, const char* wanted) {
    const VNode node = value.node();
    if (node.refMod == REF_DEFERRED) return failure<T>(at(value) + " is not parsed");
    const bool open = node.valCode == TYP_SYNONYM || node.valCode == TYP_FIELDLIST;
    return failure<T>(at(value) + (open ? " is not resolved" : std::string(" is no ") + wanted));
}

bool isText(uint8_t code) {
    return code < typeCount && typeTable[code].stringValue && code != TYP_BITSTR &&
           code != TYP_OCTSTR && code != TYP_OBJID && code != TYP_RELOID;
}

void addBit(Bits& bits, bool set) {
    if (bits.count % 8 == 0) bits.bytes.push_back(0);
    if (set) bits.bytes.back() |= static_cast<uint8_t>(0x80 >> bits.count % 8);
    ++bits.count;
}

/// The digits of a literal; -1 for one that is none.
int digitOf(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

/// '...'B and '...'H; false where a digit is none.
bool literalBits(const Tree& tree, const VNode& node, Bits& bits) {
    const int width = node.valCode == TYP_BITSTR ? 1 : 4;
    for (const char digit : tree.text(node.stri)) {
        const int value = digitOf(digit);
        if (value < 0 || value >> width != 0) return false;
        for (int bit = width; bit-- > 0;) addBit(bits, (value >> bit & 1) != 0);
    }
    return true;
}

Result<Bits> namedBits(Trees& trees, ValueRef value) {
    Bits bits;
    for (const uint32_t nr : componentValues(*value.tree, value.nr)) {
        const Result<Integer> position = integerOf(trees, {value.tree, nr});
        if (!position) return failure<Bits>(position.error);
        const std::optional<uint64_t> place = position->unsigned64();
        if (!place || *place >= maxBits)
            return failure<Bits>(at({value.tree, nr}) + " is no position of a bit");
        if (*place >= bits.count) {
            bits.count = *place + 1;
            bits.bytes.resize(static_cast<size_t>(*place / 8 + 1));
        }
        bits.bytes[static_cast<size_t>(*place / 8)] |= static_cast<uint8_t>(0x80 >> *place % 8);
    }
    return {bits, ""};
}

struct Collection {
    Trees& trees;
    std::string error;
    uint64_t parts = 0;
    /// One part more; false: there are too many, or they nest too deep.
    bool enter(ValueRef value, int depth) {
        if (trees.spendBeyond(++parts) && depth <= maxNesting) return true;
        error = at(value) + " has too many parts";
        return false;
    }
};

void addCharacters(std::u32string& text, const Tree& tree, const VNode& node) {
    const size_t start = text.size();
    if (node.valCode == TYP_BMPSTR) {
        for (const char16_t unit : tree.text16(node.stri)) text += unit;
    } else if (node.valCode == TYP_UNISTR) {
        text += tree.text32(node.stri);
    } else {
        const bool utf8 = node.valCode == TYP_UTF8STR || node.valCode == TYP_OIDIRI ||
                          node.valCode == TYP_RELOIDIRI;
        const std::string_view bytes = tree.text(node.stri);
        for (size_t place = 0; place < bytes.size();) {
            uint32_t code = 0;
            if (!utf8 || !decodeUtf8(bytes, place, code))
                code = static_cast<unsigned char>(bytes[place++]);
            text += static_cast<char32_t>(code);
        }
    }
    // The character 0 ends a string of the tree; the length tells that it was there.
    if (text.size() == start && node.stri != 0 && node.striLen == 1) text += U'\0';
}

void collectText(Collection& run, ValueRef value, std::u32string& text, int depth) {
    const Result<ValueRef> end = valueBehind(run.trees, value);
    if (!end) {
        run.error = end.error;
        return;
    }
    if (!run.enter(*end, depth)) return;
    const VNode node = end->node();
    if (!isText(node.valCode)) {
        run.error = wrongKind<bool>(*end, "character string").error;
        return;
    }
    const size_t start = text.size();
    if (node.ref == 0) addCharacters(text, *end->tree, node);
    const size_t added = text.size() - start;
    const bool tooMuch = text.size() > freeCharacters && !run.trees.spend(added / 64);
    if (text.size() > maxCharacters || tooMuch) run.error = at(value) + " has too many parts";
    for (const uint32_t nr : componentValues(*end->tree, end->nr)) {
        if (!run.error.empty()) return;
        collectText(run, {end->tree, nr}, text, depth + 1);
    }
}

void collectArcs(Collection& run, ValueRef value, std::vector<Integer>& arcs, int depth) {
    const Result<ValueRef> end = valueBehind(run.trees, value);
    if (!end) {
        run.error = end.error;
        return;
    }
    if (!run.enter(*end, depth)) return;
    const VNode node = end->node();
    if (node.valCode == TYP_INTEGER || node.valCode == TYP_ENUM) {
        const Result<Integer> arc = integerOf(run.trees, *end);
        if (arc) arcs.push_back(*arc);
        run.error = arc.error;
        return;
    }
    if (node.valCode != TYP_OBJID && node.valCode != TYP_RELOID) {
        run.error = wrongKind<bool>(*end, "arc").error;
        return;
    }
    for (const uint32_t nr : componentValues(*end->tree, end->nr)) {
        if (!run.error.empty()) return;
        collectArcs(run, {end->tree, nr}, arcs, depth + 1);
    }
}

void addUtf8(std::string& out, char32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = 0xFFFD;
    if (code < 0x80) {
        out += static_cast<char>(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr unsigned lead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(lead[more] | code >> 6 * more);
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6)
        out += static_cast<char>(0x80 | (code >> shift & 0x3F));
}

} // namespace

Result<ValueRef> valueBehind(Trees& trees, ValueRef value) {
    if (!value) return failure<ValueRef>(at(value));
    std::string error;
    const ValueRef end = skipValues(trees, value, error);
    return {end, error};
}

Result<Integer> integerOf(Trees& trees, ValueRef value) {
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<Integer>(end.error);
    const VNode node = end->node();
    if (node.valCode != TYP_INTEGER && node.valCode != TYP_ENUM)
        return wrongKind<Integer>(*end, "INTEGER");
    Integer number(node.number);
    if (node.exact != 0 && !Integer::parse(end->tree->text(node.exact), number))
        return failure<Integer>(at(*end) + ": the exact number is no decimal");
    return {number, ""};
}

Result<bool> boolOf(Trees& trees, ValueRef value) {
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<bool>(end.error);
    if (end->node().valCode != TYP_BOOLEAN) return wrongKind<bool>(*end, "BOOLEAN");
    return {end->node().boole, ""};
}

Result<Bits> bitsOf(Trees& trees, ValueRef value) {
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<Bits>(end.error);
    const VNode node = end->node();
    if (node.valCode != TYP_BITSTR && node.valCode != TYP_OCTSTR)
        return wrongKind<Bits>(*end, "BIT STRING");
    if ((node.vflags & VF_CONTENTS) != 0)
        return failure<Bits>(at(*end) + " is given by what it contains");
    if (node.ref != 0) return namedBits(trees, *end);
    Bits bits;
    if (!literalBits(*end->tree, node, bits)) return failure<Bits>(at(*end) + ": a digit is wrong");
    return {bits, ""};
}

Result<std::vector<uint8_t>> bytesOf(Trees& trees, ValueRef value) {
    Result<Bits> bits = bitsOf(trees, value);
    return {std::move(bits.value.bytes), std::move(bits.error)};
}

Result<std::u32string> charactersOf(Trees& trees, ValueRef value) {
    Collection run{trees, {}};
    Result<std::u32string> text;
    collectText(run, value, text.value, 0);
    if (!run.error.empty()) return failure<std::u32string>(run.error);
    return text;
}

Result<std::string> stringOf(Trees& trees, ValueRef value) {
    const Result<std::u32string> text = charactersOf(trees, value);
    std::string out;
    for (const char32_t code : text.value) addUtf8(out, code);
    return {out, text.error};
}

Result<std::vector<Integer>> oidOf(Trees& trees, ValueRef value) {
    using List = std::vector<Integer>;
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<List>(end.error);
    const uint8_t code = end->node().valCode;
    if (code != TYP_OBJID && code != TYP_RELOID) return wrongKind<List>(*end, "OBJECT IDENTIFIER");
    Collection run{trees, {}};
    List arcs;
    collectArcs(run, *end, arcs, 0);
    if (!run.error.empty()) return failure<List>(run.error);
    return {arcs, ""};
}

Result<Real> realOf(Trees& trees, ValueRef value) {
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<Real>(end.error);
    const VNode node = end->node();
    if (node.valCode == TYP_INTEGER && node.number == 0) return {Real(), ""}; // 0 of a REAL
    if (node.valCode != TYP_REAL) return wrongKind<Real>(*end, "REAL");
    Real real{Real::Kind::Finite, Integer(node.number), node.base, node.exponent};
    if (node.base != -1) return {real, ""};
    real = Real();
    switch (node.number) {
    case 0: break;
    case -1: real.kind = Real::Kind::MinusInfinity; break;
    case -2: real.kind = Real::Kind::PlusInfinity; break;
    case -3: real.kind = Real::Kind::NotANumber; break;
    case -4: real.kind = Real::Kind::MinusZero; break;
    default: return failure<Real>(at(*end) + " is no REAL");
    }
    return {real, ""};
}

namespace {

/// What `make` makes of each component value of what a value stands for, if it is of such a kind.
template <typename Part, typename Make> Result<std::vector<Part>>
partsOf(Trees& trees, ValueRef value, bool (*isKind)(uint8_t code), const char* kind, Make&& make) {
    using List = std::vector<Part>;
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<List>(end.error);
    if (!isKind(end->node().valCode)) return wrongKind<List>(*end, kind);
    List list;
    for (const uint32_t nr : componentValues(*end->tree, end->nr))
        list.push_back(make(ValueRef{end->tree, nr}));
    return {list, ""};
}

bool isList(uint8_t code) {
    return code == TYP_SEQOF || code == TYP_SETOF;
}
bool isStructure(uint8_t code) {
    return code == TYP_SEQ || code == TYP_SET || code == TYP_CHOICE || code == TYP_EMB_PDV ||
           code == TYP_CHASTR || code == TYP_EXTERNAL_1990 || code == TYP_EXTERNAL_1994 ||
           code == TYP_INSTANCE_OF || (code >= TYP_CLASS && code <= TYP_ABSTR_STX);
}

} // namespace

Result<std::vector<ValueRef>> elementsOf(Trees& trees, ValueRef value) {
    return partsOf<ValueRef>(trees, value, isList, "list", [](ValueRef part) { return part; });
}

Result<std::vector<Member>> membersOf(Trees& trees, ValueRef value) {
    return partsOf<Member>(trees, value, isStructure, "structure", [](ValueRef part) {
        return Member{part.tree->text(part.node().name), part};
    });
}

Result<OpenValue> openValueOf(Trees& trees, ValueRef value) {
    const Result<ValueRef> end = valueBehind(trees, value);
    if (!end) return failure<OpenValue>(end.error);
    const VNode node = end->node();
    const bool open = (node.valCode == TYP_OPEN && node.refMod == 0) || node.valCode == TYP_ANY;
    if (!open) return wrongKind<OpenValue>(*end, "value of an open type");
    const std::vector<uint32_t> inner = componentValues(*end->tree, end->nr);
    if (inner.empty()) return failure<OpenValue>(at(*end) + " holds no value");
    std::string error;
    const Link governor = end->tree->linkOf(VNODE, inner[0], fieldNamed(VNODE, "govType"));
    const TypeRef type = typeOf(trees, *end->tree, governor, error);
    return {{type, {end->tree, inner[0]}}, error};
}

} // namespace stx
