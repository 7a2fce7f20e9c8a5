#include "stxnotation.h"

#include <algorithm>

#include "stxvalues.h"

namespace stx {
namespace {

constexpr size_t maxText = 16'000'000;
constexpr size_t charsPerStep = 64;
constexpr int maxNesting = 500;

struct Writer {
    Trees& trees;
    const ValueStyle& style;
    std::string out{};
    std::string error{};
    int depth = 0;
    uint64_t steps = 0;
};

void write(Writer& writer, ValueRef value);

void fail(Writer& writer, ValueRef value, const char* what) {
    if (writer.error.empty())
        writer.error = value.tree->path() + ": vNode " + std::to_string(value.nr) + what;
}

std::string typeOrSet(Writer& writer, TypeRef type, bool set) {
    if (writer.style.type) return writer.style.type(type, set);
    if (!set) return asn1Name(typeText(writer.trees, type));
    const std::string text =
        constraintText(writer.trees, *type.tree, constraintOf(*type.tree, type.nr));
    if (text.empty()) return asn1Name(typeText(writer.trees, type));
    const std::string inside = text.substr(1, text.size() - 2);
    return inside.find('"') == std::string::npos ? asn1Name(inside) : inside;
}

Link refOf(ValueRef value) {
    return value.tree->linkOf(VNODE, value.nr, fieldNamed(VNODE, "ref"));
}

bool isArcs(uint8_t code) {
    return code == TYP_OBJID || code == TYP_RELOID;
}

bool isClassCode(uint8_t code) {
    return code >= TYP_CLASS && code <= TYP_ABSTR_STX;
}

/// The record is an item of an enumeration or a named bit, which has no other notation than its
/// name.
bool isIdentifier(Writer& writer, ValueRef value) {
    const VNode node = value.node();
    if (node.valStatus == VST_NAMED_BIT) return true;
    if (node.valStatus != VST_NAMED_NUMBER) return false;
    std::string error;
    const Link governor = value.tree->linkOf(VNODE, value.nr, fieldNamed(VNODE, "govType"));
    const TypeRef type = typeOf(writer.trees, *value.tree, governor, error);
    return skipTypes(writer.trees, type, true, error).node().typeCode == TYP_ENUM;
}

void writeReference(Writer& writer, ValueRef value) {
    std::string error;
    const Link link = refOf(value);
    const ValueRef target = valueOf(writer.trees, *value.tree, link, error);
    if (!target) {
        if (error.empty()) return fail(writer, value, " is not resolved");
        if (writer.error.empty()) writer.error = error;
        return;
    }
    const VNode node = target.node();
    const bool identifier = isIdentifier(writer, target);
    const bool named = node.name != 0 && node.valStatus != VST_ACTUAL;
    if (!identifier && (!named || writer.style.naming == Naming::Followed))
        return write(writer, target);
    if (link.module > 1 && !identifier && node.valStatus != VST_NAMED_NUMBER)
        writer.out += asn1Name(target.tree->moduleName()) + '.';
    writer.out += asn1Name(target.tree->text(node.name));
    bool first = true;
    for (const uint32_t nr : listFrom(*value.tree, VNODE, value.node().deferred)) {
        writer.out += first ? " {" : ", "; // actual parameters
        first = false;
        write(writer, {value.tree, nr});
    }
    if (!first) writer.out += '}';
}

/// "object.&field"
void writeFromObject(Writer& writer, ValueRef value) {
    if (writer.style.naming == Naming::Followed) {
        const Result<ValueRef> end = valueBehind(writer.trees, value);
        if (!end)
            writer.error = end.error;
        else if (*end == value)
            fail(writer, value, " is not resolved");
        else
            write(writer, *end);
        return;
    }
    write(writer, {value.tree, value.node().ref});
    for (const uint32_t nr : listFrom(*value.tree, SNODE, value.node().deferred)) {
        const Link link = value.tree->linkOf(SNODE, nr, fieldNamed(SNODE, "value"));
        std::string error;
        std::string_view name;
        if (link.target == Target::String) {
            name = value.tree->text(link.nr);
        } else if (link.kind == TNODE) {
            const TypeRef field = typeOf(writer.trees, *value.tree, link, error);
            if (field) name = field.tree->text(field.node().name);
        } else {
            const ValueRef setting = valueOf(writer.trees, *value.tree, link, error);
            if (setting) name = setting.tree->text(setting.node().name);
        }
        if (name.empty()) fail(writer, value, ": a field has no name");
        writer.out += ".&" + asn1Name(name);
    }
}

void writeReal(Writer& writer, ValueRef value) {
    const Result<Real> real = realOf(writer.trees, value);
    if (!real) {
        writer.error = real.error;
        return;
    }
    switch (real->kind) {
    case Real::Kind::PlusInfinity: writer.out += "PLUS-INFINITY"; return;
    case Real::Kind::MinusInfinity: writer.out += "MINUS-INFINITY"; return;
    case Real::Kind::NotANumber: writer.out += "NOT-A-NUMBER"; return;
    case Real::Kind::MinusZero: writer.out += "-0"; return;
    case Real::Kind::Finite: break;
    }
    if (real->mantissa == Integer(0)) {
        writer.out += '0';
        return;
    }
    writer.out += "{mantissa " + real->mantissa.text() + ", base " + std::to_string(real->base) +
                  ", exponent " + std::to_string(real->exponent) + '}';
}

/// A character that stands in quotes; others as a tuple (of IA5String) or a quadruple.
bool isPlain(uint8_t code, char32_t character) {
    if (character >= 32 && character < 127) return true;
    return code != TYP_IA5STR && code != TYP_UTF8STR && code != TYP_BMPSTR && code != TYP_UNISTR;
}

void addPlain(std::string& out, char32_t character, bool utf8) {
    if (character == '"') out += '"';
    if (character < 128 || !utf8) {
        out += static_cast<char>(character);
        return;
    }
    out += static_cast<char>(0xC0 | character >> 6); // of 8 bits
    out += static_cast<char>(0x80 | (character & 0x3F));
}

std::string special(uint8_t code, char32_t character) {
    const auto part = [&](int shift) { return std::to_string(character >> shift & 0xFF); };
    if (code == TYP_IA5STR)
        return '{' + std::to_string(character >> 4) + ',' + std::to_string(character & 15) + '}';
    return '{' + part(24) + ',' + part(16) + ',' + part(8) + ',' + part(0) + '}';
}

void writeString(Writer& writer, ValueRef value) {
    const Result<std::u32string> text = charactersOf(writer.trees, value);
    if (!text) {
        writer.error = text.error;
        return;
    }
    const uint8_t code = value.node().valCode;
    const bool utf8 = value.tree->mNode(1).standard() == 2;
    std::string out;
    bool quoted = false, pieces = false;
    for (const char32_t character : *text) {
        const bool plain = isPlain(code, character);
        if (quoted && !plain) out += '"';
        if (quoted != plain || !plain) {
            pieces |= !out.empty();
            out += out.empty() ? "" : ", ";
            if (plain) out += '"';
        }
        quoted = plain;
        if (plain)
            addPlain(out, character, utf8);
        else
            out += special(code, character);
    }
    if (quoted) out += '"';
    writer.out += out.empty() ? "\"\"" : pieces ? '{' + out + '}' : out;
}

/// Arcs one behind the other: "{iso standard(0) d 5}".
void writeArcs(Writer& writer, ValueRef value) {
    if (writer.style.naming == Naming::Followed) {
        const Result<std::vector<Integer>> arcs = oidOf(writer.trees, value);
        if (!arcs) writer.error = arcs.error;
        writer.out += '{';
        for (const Integer& arc : *arcs)
            writer.out += (writer.out.back() == '{' ? "" : " ") + arc.text();
        writer.out += '}';
        return;
    }
    writer.out += '{';
    bool first = true;
    for (const uint32_t nr : componentValues(*value.tree, value.nr)) {
        writer.out += first ? "" : " ";
        first = false;
        const std::string_view name = value.tree->text(value.tree->vNode(nr).name);
        if (!name.empty()) writer.out += asn1Name(name) + '(';
        write(writer, {value.tree, nr});
        if (!name.empty()) writer.out += ')';
    }
    writer.out += '}';
}

void writeList(Writer& writer, ValueRef value) {
    const bool object = isClassCode(value.node().valCode);
    writer.out += '{';
    bool first = true;
    for (const uint32_t nr : componentValues(*value.tree, value.nr)) {
        if (!writer.error.empty()) return;
        writer.out += first ? "" : ", ";
        first = false;
        const std::string_view name = value.tree->text(value.tree->vNode(nr).name);
        if (!name.empty()) writer.out += (object ? "&" : "") + asn1Name(name) + ' ';
        write(writer, {value.tree, nr});
    }
    writer.out += '}';
}

/// A type or a set; a value behind its type.
void writeOpen(Writer& writer, ValueRef value) {
    const Link link = refOf(value);
    std::string error;
    if (link.target == Target::Record && link.kind == TNODE) {
        const TypeRef type = typeOf(writer.trees, *value.tree, link, error);
        const bool set = (value.node().vflags & VF_SET) != 0;
        if (type && set) writer.out += '{';
        if (type) writer.out += typeOrSet(writer, type, set);
        if (type && set) writer.out += '}';
        if (!type && writer.error.empty()) writer.error = error;
        return;
    }
    const Result<OpenValue> open = openValueOf(writer.trees, value);
    if (!open) {
        writer.error = open.error;
        return;
    }
    writer.out += typeOrSet(writer, open->type, false) + " : ";
    write(writer, open->value);
}

/// The item that has the number, where the value is not a reference to it.
void writeItem(Writer& writer, ValueRef value) {
    std::string error;
    const Link governor = value.tree->linkOf(VNODE, value.nr, fieldNamed(VNODE, "govType"));
    const TypeRef type =
        skipTypes(writer.trees, typeOf(writer.trees, *value.tree, governor, error), true, error);
    if (type)
        for (const uint32_t nr : namedValues(*type.tree, type.nr)) {
            const VNode item = type.tree->vNode(nr);
            if (item.valCode == TYP_EXTENSION_MARKER || item.number != value.node().number)
                continue;
            writer.out += asn1Name(type.tree->text(item.name));
            return;
        }
    writer.out += integerText(*value.tree, value.node());
}

void writeContents(Writer& writer, ValueRef value, const VNode& node) {
    writer.out += "CONTAINING ";
    write(writer, {value.tree, node.ref});
}

void writeKind(Writer& writer, ValueRef value) {
    const Tree& tree = *value.tree;
    const VNode node = value.node();
    switch (node.valCode) {
    case TYP_SYNONYM: return writeReference(writer, value);
    case TYP_FIELDLIST: return writeFromObject(writer, value);
    case TYP_BOOLEAN: writer.out += node.boole ? "TRUE" : "FALSE"; return;
    case TYP_INTEGER: writer.out += integerText(tree, node); return;
    case TYP_ENUM: return writeItem(writer, value);
    case TYP_REAL: return writeReal(writer, value);
    case TYP_NULL: writer.out += "NULL"; return;
    case TYP_OPEN:
    case TYP_ANY: return writeOpen(writer, value);
    case TYP_CHOICE: {
        const std::vector<uint32_t> chosen = componentValues(tree, value.nr);
        if (chosen.empty()) return fail(writer, value, " has no alternative");
        writer.out += asn1Name(tree.text(tree.vNode(chosen[0]).name)) + " : ";
        return write(writer, {&tree, chosen[0]});
    }
    case TYP_BITSTR:
    case TYP_OCTSTR:
        if ((node.vflags & VF_CONTENTS) != 0) return writeContents(writer, value, node);
        if (node.ref != 0 || node.stri == 0) return writeList(writer, value);
        writer.out +=
            '\'' + std::string(tree.text(node.stri)) + (node.valCode == TYP_BITSTR ? "'B" : "'H");
        return;
    default: break;
    }
    const bool text = node.valCode < typeCount && typeTable[node.valCode].stringValue;
    if (isArcs(node.valCode)) return writeArcs(writer, value);
    if (text && (node.ref == 0 || writer.style.naming == Naming::Followed))
        return writeString(writer, value);
    writeList(writer, value);
}

void write(Writer& writer, ValueRef value) {
    if (!writer.error.empty()) return;
    if (!value) {
        writer.error = "a value is missing";
        return;
    }
    if (value.node().refMod == REF_DEFERRED) return fail(writer, value, " is not parsed");
    if (++writer.depth > maxNesting) fail(writer, value, " is nested too deep");
    // the length counts too: a name may be long, and be written for every record
    const uint64_t steps = std::max<uint64_t>(++writer.steps, writer.out.size() / charsPerStep);
    if (writer.out.size() > maxText || !writer.trees.spendBeyond(steps))
        fail(writer, value, ": the text is too long");
    if (writer.error.empty()) writeKind(writer, value);
    --writer.depth;
}

} // namespace

std::string asn1Name(std::string_view stored) {
    std::string name(stored);
    std::ranges::replace(name, '_', '-');
    return name;
}

Result<std::string> valueText(Trees& trees, ValueRef value, const ValueStyle& style) {
    Writer writer{trees, style};
    write(writer, value);
    if (writer.error.empty()) return {std::move(writer.out), ""};
    return failure<std::string>(writer.error);
}

} // namespace stx
