#include "stxreader.h"

#include <algorithm>
#include <limits>

// Values, constraints and tags in ASN.1 notation, for dumps, messages and tests. Names of
// references are printed, what they refer to is not, so the text of a sound record is as long as
// its source. A damaged file can share parts so that the text would double with every level: it is
// cut at `maxText`.

namespace stx {
namespace {

constexpr size_t maxText = 8192;
constexpr int maxDepth = 100;

struct Writer {
    Trees& trees;
    std::string out;
    int depth = 0;
    bool full() const { return out.size() > maxText || depth > maxDepth; }
};
/// Counts a level of nesting as long as it lives.
struct Level {
    int& depth;
    explicit Level(int& counter) : depth(counter) { ++depth; }
    ~Level() { --depth; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;
};

void writeType(Writer& writer, TypeRef type);
void writeValue(Writer& writer, ValueRef value);
void writeSub(Writer& writer, const Tree& tree, uint32_t nr);

/// What a value or type is called in the file that refers to it.
std::string refName(Trees& trees, const Tree& from, const Link& link) {
    if (link.target == Target::Formal) return "(formal parameter " + std::to_string(link.nr) + ')';
    if (link.target == Target::String) return std::string(from.text(link.nr));
    if (link.target != Target::Record) return "(none)";
    std::string error;
    std::string text;
    if (link.module != 1) text = std::string(from.text(from.mNode(link.module).modName)) + '.';
    const Tree* tree = trees.module(from, link.module, error);
    std::string_view name;
    if (tree != nullptr && link.nr <= tree->count(link.kind))
        name =
            tree->text(link.kind == TNODE ? tree->tNode(link.nr).name : tree->vNode(link.nr).name);
    if (name.empty()) return text + '#' + std::to_string(link.nr);
    return text + std::string(name);
}

Link refOf(const Tree& tree, Kind kind, uint32_t nr) {
    return tree.linkOf(kind, nr, fieldNamed(kind, "ref"));
}

/// The name that an entry was written with, whether it has been solved or not.
std::string syntaxName(Trees& trees, const Tree& tree, uint32_t nr) {
    const std::string name =
        refName(trees, tree, tree.linkOf(SNODE, nr, fieldNamed(SNODE, "value")));
    return name.substr(name.rfind('.') + 1);
}

/// ".&a.&b": names of a chain, as far as they are still there.
std::string fieldChain(Trees& trees, const Tree& tree, int64_t first) {
    std::string text;
    for (const uint32_t nr : listFrom(tree, SNODE, first)) {
        text += ".&";
        text += syntaxName(trees, tree, nr);
    }
    return text;
}

void writeReal(Writer& writer, const VNode& node) {
    if (node.base == -1) {
        writer.out += node.number == -2   ? "PLUS-INFINITY"
                      : node.number == -1 ? "MINUS-INFINITY"
                      : node.number == -3 ? "NOT-A-NUMBER"
                      : node.number == -4 ? "-0"
                                          : "0";
        return;
    }
    writer.out += "{mantissa " + std::to_string(node.number) + ", base " +
                  std::to_string(node.base) + ", exponent " + std::to_string(node.exponent) + '}';
}

void appendHex(std::string& out, uint32_t code, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        out += "0123456789abcdef"[code >> shift & 15];
}

void writeChar(Writer& writer, uint32_t code) {
    if (code >= 32 && code < 127 && code != '"' && code != '\\') {
        writer.out += static_cast<char>(code);
        return;
    }
    writer.out += code > 0xFFFF ? "\\U" : "\\u";
    appendHex(writer.out, code, code > 0xFFFF ? 8 : 4);
}

template <typename Text> void writeWide(Writer& writer, const Text& text) {
    writer.out += '"';
    for (const auto unit : text) {
        if (writer.full()) return;
        writeChar(writer, static_cast<uint32_t>(unit));
    }
    writer.out += '"';
}

/// The characters of UTF-8; bytes that are none as \xhh.
void writeUtf8(Writer& writer, std::string_view text) {
    writer.out += '"';
    for (size_t at = 0; at < text.size() && !writer.full();) {
        uint32_t code = 0;
        if (decodeUtf8(text, at, code)) {
            writeChar(writer, code);
            continue;
        }
        writer.out += "\\x";
        appendHex(writer.out, static_cast<unsigned char>(text[at++]), 2);
    }
    writer.out += '"';
}

void writeString(Writer& writer, const Tree& tree, const VNode& node) {
    switch (node.valCode) {
    case TYP_BITSTR: writer.out += '\'' + std::string(tree.text(node.stri)) + "'B"; break;
    case TYP_OCTSTR: writer.out += '\'' + std::string(tree.text(node.stri)) + "'H"; break;
    case TYP_BMPSTR: writeWide(writer, tree.text16(node.stri)); break;
    case TYP_UNISTR: writeWide(writer, tree.text32(node.stri)); break;
    case TYP_UTF8STR:
    case TYP_OIDIRI:
    case TYP_RELOIDIRI: writeUtf8(writer, tree.text(node.stri)); break;
    default: writer.out += quoted(tree.text(node.stri)); break;
    }
}

bool isArcs(uint8_t valCode) {
    return valCode == TYP_OBJID || valCode == TYP_RELOID;
}

/// Values in braces: with their names, separated by commas; arcs by blanks.
void writeList(Writer& writer, ValueRef value) {
    const bool arcs = isArcs(value.node().valCode);
    writer.out += '{';
    bool first = true;
    for (const uint32_t nr : componentValues(*value.tree, value.nr)) {
        if (writer.full()) break;
        if (!first) writer.out += arcs ? " " : ", ";
        first = false;
        const VNode node = value.tree->vNode(nr);
        const std::string_view name = value.tree->text(node.name);
        if (arcs && !name.empty()) {
            writer.out += std::string(name) + '(';
            writeValue(writer, {value.tree, nr});
            writer.out += ')';
            continue;
        }
        if (!name.empty()) writer.out += std::string(name) + ' ';
        writeValue(writer, {value.tree, nr});
    }
    writer.out += '}';
}

/// "P {5, BOOLEAN}": a reference by name; one to a nameless type (an actual parameter) by that
/// type.
void writeSynonym(Writer& writer, TypeRef type) {
    const Link link = refOf(*type.tree, TNODE, type.nr);
    std::string error;
    const TypeRef target = typeOf(writer.trees, *type.tree, link, error);
    if (target && target.node().name == 0) return writeType(writer, target);
    writer.out += refName(writer.trees, *type.tree, link);
    bool first = true;
    for (const uint32_t nr : listFrom(*type.tree, VNODE, type.node().syntax)) {
        if (writer.full()) return;
        writer.out += first ? " {" : ", ";
        first = false;
        writeValue(writer, {type.tree, nr});
    }
    if (!first) writer.out += '}';
}

/// "C.&id" and "object.&Type"; within a class "&Type".
void writeFieldType(Writer& writer, TypeRef type) {
    const Tree& tree = *type.tree;
    const TNode node = type.node();
    const std::string chain = fieldChain(writer.trees, tree, node.syntax);
    if ((node.nodeFlags & NF_VARIABLE) != 0) {
        writer.out += chain.empty() ? chain : chain.substr(1);
        return;
    }
    const Link link = refOf(tree, TNODE, type.nr);
    if (link.target == Target::Record && link.kind == VNODE) {
        writeValue(writer, {&tree, link.nr});
    } else {
        std::string error;
        const TypeRef base = typeOf(writer.trees, tree, link, error);
        const bool named = !base || base.node().name != 0;
        if (named)
            writer.out += refName(writer.trees, tree, link);
        else
            writeType(writer, base);
    }
    writer.out += chain;
}

void writeType(Writer& writer, TypeRef type) {
    const Level level(writer.depth);
    if (writer.full()) {
        writer.out += "...";
        return;
    }
    const TNode node = type.node();
    if (!type)
        writer.out += "(none)";
    else if (node.typeCode == TYP_SYNONYM)
        return writeSynonym(writer, type);
    else if (node.typeCode == TYP_FIELDLIST)
        return writeFieldType(writer, type);
    else
        writer.out += asnName(node.typeCode);
    if (type && node.typeCode == TYP_ANY && node.syntax > 0)
        writer.out += " DEFINED BY " +
                      syntaxName(writer.trees, *type.tree, static_cast<uint32_t>(node.syntax));
}

/// A type setting, an object set, or a value behind its type.
void writeOpen(Writer& writer, ValueRef value) {
    std::string error;
    const Link link = refOf(*value.tree, VNODE, value.nr);
    if (link.kind != TNODE) {
        const std::vector<uint32_t> inner = componentValues(*value.tree, value.nr);
        if (inner.empty()) return;
        const Link gov = value.tree->linkOf(VNODE, inner[0], fieldNamed(VNODE, "govType"));
        writeType(writer, typeOf(writer.trees, *value.tree, gov, error));
        writer.out += " : ";
        return writeValue(writer, {value.tree, inner[0]});
    }
    const TypeRef type = typeOf(writer.trees, *value.tree, link, error);
    const uint32_t set = type ? constraintOf(*type.tree, type.nr) : 0;
    if ((value.node().vflags & VF_SET) == 0 || set == 0 || value.tree != type.tree) {
        writeType(writer, type);
        return;
    }
    writer.out += '{';
    writeSub(writer, *type.tree, set);
    writer.out += '}';
}

/// A reference by name; one to a nameless value by that value.
void writeReference(Writer& writer, ValueRef value) {
    const Link link = refOf(*value.tree, VNODE, value.nr);
    std::string error;
    const ValueRef target = valueOf(writer.trees, *value.tree, link, error);
    if (target && target.node().name == 0) return writeValue(writer, target);
    writer.out += refName(writer.trees, *value.tree, link);
}

void writeMarker(Writer& writer, const Tree& tree, uint32_t exception) {
    writer.out += "...";
    if (exception == 0) return;
    writer.out += " !";
    writeValue(writer, {&tree, exception});
}

void writeValue(Writer& writer, ValueRef value) {
    const Level level(writer.depth);
    if (!value) return;
    if (writer.full()) {
        writer.out += "...";
        return;
    }
    const Tree& tree = *value.tree;
    const VNode node = value.node();
    if (node.refMod == REF_DEFERRED) {
        writer.out += "(not parsed)";
        return;
    }
    switch (node.valCode) {
    case TYP_SYNONYM: return writeReference(writer, value);
    case TYP_FIELDLIST:
        writer.out += refName(writer.trees, tree, refOf(tree, VNODE, node.ref)) +
                      fieldChain(writer.trees, tree, node.deferred);
        return;
    case TYP_BOOLEAN: writer.out += node.boole ? "TRUE" : "FALSE"; return;
    case TYP_INTEGER:
    case TYP_ENUM: writer.out += integerText(tree, node); return;
    case TYP_REAL: writeReal(writer, node); return;
    case TYP_NULL: writer.out += "NULL"; return;
    case TYP_OPEN:
    case TYP_ANY: writeOpen(writer, value); return;
    case TYP_EXTENSION_MARKER: return writeMarker(writer, tree, exceptionOf(tree, VNODE, value.nr));
    case TYP_CHOICE: {
        const std::vector<uint32_t> chosen = componentValues(tree, value.nr);
        if (chosen.empty()) return;
        writer.out += std::string(tree.text(tree.vNode(chosen[0]).name)) + " : ";
        return writeValue(writer, {&tree, chosen[0]});
    }
    default: break;
    }
    if ((node.vflags & VF_CONTENTS) != 0) {
        writer.out += "CONTAINING ";
        return writeValue(writer, {&tree, node.ref});
    }
    const Link string = tree.linkOf(VNODE, value.nr, fieldNamed(VNODE, "val"));
    if (string.target == Target::String && !isArcs(node.valCode) && node.ref == 0)
        return writeString(writer, tree, node);
    writeList(writer, value);
}

void writeOperands(Writer& writer, const Tree& tree, uint32_t nr, std::string_view between) {
    const auto isOperator = [&](uint32_t sub) {
        const uint8_t kind = tree.subRec(sub).subKind;
        return kind >= SUB_UNION && kind <= SUB_ALL_EXCEPT && kind != SUB_SERIAL;
    };
    bool first = true;
    for (const uint32_t operand : operands(tree, nr)) {
        if (writer.full()) return;
        const uint8_t kind = tree.subRec(operand).subKind;
        const bool nested = isOperator(nr) && isOperator(operand);
        if (!first) writer.out += kind == SUB_EXTENSION_MARKER ? ", " : between;
        first = false;
        if (nested) writer.out += '(';
        writeSub(writer, tree, operand);
        if (nested) writer.out += ')';
    }
}

void writeBound(Writer& writer, const Tree& tree, int64_t nr, const char* none) {
    if (nr == 0)
        writer.out += none;
    else
        writeValue(writer, {&tree, static_cast<uint32_t>(nr)});
}

void writeRange(Writer& writer, const Tree& tree, const SubRec& sub) {
    writeBound(writer, tree, sub.left, "MIN");
    if (sub.left != 0 && (sub.subFlags & SUBF_LOWER) == 0) writer.out += '<';
    writer.out += "..";
    if (sub.right != 0 && (sub.subFlags & SUBF_UPPER) == 0) writer.out += '<';
    writeBound(writer, tree, sub.right, "MAX");
}

void writeInner(Writer& writer, const Tree& tree, uint32_t nr, const SubRec& parent) {
    writer.out += (parent.subFlags & SUBF_FULL) != 0 ? "WITH COMPONENTS {" : "WITH COMPONENTS {...";
    bool first = (parent.subFlags & SUBF_FULL) != 0;
    for (const uint32_t entry : operands(tree, nr)) {
        if (writer.full()) return;
        const SubRec sub = tree.subRec(entry);
        if (!first) writer.out += ", ";
        first = false;
        writer.out += tree.text(sub.name);
        if (sub.subKind != SUB_EXCEPTION) {
            writer.out += " (";
            writeSub(writer, tree, entry);
            writer.out += ')';
        }
        if ((sub.subFlags & SUBF_PRESENT) != 0) writer.out += " PRESENT";
        if ((sub.subFlags & SUBF_ABSENT) != 0) writer.out += " ABSENT";
        if ((sub.subFlags & SUBF_OPTIONAL) != 0) writer.out += " OPTIONAL";
    }
    writer.out += '}';
}

/// An object set and, in braces, the components that select from it: "{@a.b,@..c}".
void writeTable(Writer& writer, const Tree& tree, uint32_t nr) {
    writeValue(writer, {&tree, tree.subRec(nr).left});
    std::string list;
    for (const Relation& relation : relations(tree, nr)) {
        if (list.size() > maxText) break;
        list += (list.empty() ? "@" : ",@") + std::string(relation.dots, '.');
        for (size_t at = 0; at < relation.steps.size(); ++at)
            list += (at == 0 ? "" : ".") + syntaxName(writer.trees, tree, relation.steps[at]);
    }
    if (!list.empty()) writer.out += " {" + list + '}';
}

/// "CONTAINING T ENCODED BY v", either part of it alone.
void writeContents(Writer& writer, const Tree& tree, const SubRec& sub) {
    if (sub.left != 0 || sub.right == 0) writer.out += "CONTAINING";
    if (sub.left != 0) writer.out += ' ';
    writeValue(writer, {&tree, sub.left});
    if (sub.right == 0) return;
    writer.out += sub.left != 0 ? " ENCODED BY " : "ENCODED BY ";
    writeValue(writer, {&tree, static_cast<uint32_t>(sub.right)});
}

void writeEnclosed(Writer& writer, const Tree& tree, uint32_t nr, const char* word) {
    writer.out += word;
    writer.out += " (";
    writeOperands(writer, tree, nr, " | ");
    writer.out += ')';
}

void writeSub(Writer& writer, const Tree& tree, uint32_t nr) {
    const Level level(writer.depth);
    if (writer.full()) {
        writer.out += "...";
        return;
    }
    const SubRec sub = tree.subRec(nr);
    switch (sub.subKind) {
    case SUB_UNION: writeOperands(writer, tree, nr, " | "); break;
    case SUB_INTERSECTION: writeOperands(writer, tree, nr, " ^ "); break;
    case SUB_SERIAL: writeOperands(writer, tree, nr, ")("); break;
    case SUB_EXCEPT: writeOperands(writer, tree, nr, " EXCEPT "); break;
    case SUB_ALL_EXCEPT:
        writer.out += "ALL EXCEPT ";
        writeOperands(writer, tree, nr, " ");
        break;
    case SUB_RANGE: writeRange(writer, tree, sub); break;
    case SUB_PERMITTED_ALPHABET: writeEnclosed(writer, tree, nr, "FROM"); break;
    case SUB_SIZE: writeEnclosed(writer, tree, nr, "SIZE"); break;
    case SUB_WITH_COMPONENT: writeEnclosed(writer, tree, nr, "WITH COMPONENT"); break;
    case SUB_WITH_COMPONENTS: writeInner(writer, tree, nr, sub); break;
    case SUB_CONTAINED_SUBTYPE:
    case SUB_SINGLE_VALUE:
    case SUB_OPEN_TYPE: writeValue(writer, {&tree, sub.left}); break;
    case SUB_TABLE: writeTable(writer, tree, nr); break;
    case SUB_USER_DEFINED: writer.out += "CONSTRAINED BY {}"; break;
    case SUB_EXTENSION_MARKER: writer.out += "..."; break;
    case SUB_CONTENTS: writeContents(writer, tree, sub); break;
    case SUB_PATTERN:
    case SUB_SETTINGS:
        writer.out += sub.subKind == SUB_PATTERN ? "PATTERN " : "SETTINGS ";
        writeValue(writer, {&tree, sub.left});
        break;
    default: break;
    }
    if ((sub.subFlags & SUBF_EXCEPTION) == 0) return;
    writer.out += " !";
    writeValue(writer, {&tree, sub.third});
}

std::string finished(Writer& writer) {
    if (writer.out.size() > maxText) writer.out.replace(maxText, std::string::npos, " ...");
    return std::move(writer.out);
}

} // namespace

std::string tagText(const Tag& tag) {
    std::string text = "[";
    if (tag.tagClass != TAG_CONTEXT)
        text += std::string(codeName(tagClassNames, tag.tagClass)) + ' ';
    return text + (tag.number < 0 ? "?" : std::to_string(tag.number)) + ']';
}

std::string tagListText(Trees& trees, TypeRef type) {
    std::string text;
    if (!type) return text;
    for (const uint32_t nr : tagList(*type.tree, type.nr)) {
        const TagRec tag = type.tree->tagRec(nr);
        if (!text.empty()) text += ' ';
        text += tagText({tag.tagClass, tagNumber(trees, *type.tree, tag)});
        if (tag.tagMode == TAGMODE_IMPLICIT) text += " IMPLICIT";
        if (tag.tagMode == TAGMODE_EXPLICIT) text += " EXPLICIT";
    }
    return text;
}

std::string boundText(int64_t bound, uint8_t form) {
    constexpr int64_t least = std::numeric_limits<int64_t>::min();
    if (form == BOUND_PLAIN && bound == least) return "MIN";
    if (form == BOUND_PLAIN && bound == std::numeric_limits<int64_t>::max()) return "MAX";
    if (form == BOUND_BEYOND && bound == least) return '<' + std::to_string(bound);
    const std::string sign(form == BOUND_BEYOND ? ">" : "");
    return form < BOUND_UNSIGNED ? std::to_string(bound)
                                 : sign + std::to_string(static_cast<uint64_t>(bound));
}

std::string boundsText(const TNode& type) {
    return boundText(type.lowerBound, type.lowerForm()) + ".." +
           boundText(type.upperBound, type.upperForm());
}

std::string integerText(const Tree& tree, const VNode& value) {
    return value.exact == 0 ? std::to_string(value.number) : std::string(tree.text(value.exact));
}

std::string typeText(Trees& trees, TypeRef type) {
    Writer writer{trees, {}};
    writeType(writer, type);
    return finished(writer);
}

std::string valueText(Trees& trees, ValueRef value) {
    Writer writer{trees, {}};
    writeValue(writer, value);
    return finished(writer);
}

std::string constraintText(Trees& trees, const Tree& tree, uint32_t subNr) {
    Writer writer{trees, {}};
    if (subNr == 0 || subNr > tree.count(SUB)) return {};
    writer.out += '(';
    writeSub(writer, tree, subNr);
    writer.out += ')';
    return finished(writer);
}

std::string groupText(const TNode& group) {
    return group.sizeLimit == 0 ? "[[" : "[[ " + std::to_string(group.sizeLimit) + ':';
}

std::string markerText(Trees& trees, const Tree& tree, Kind kind, uint32_t nr) {
    Writer writer{trees, {}};
    writeMarker(writer, tree, exceptionOf(tree, kind, nr));
    return finished(writer);
}

std::string_view asnName(uint8_t typeCode) {
    return typeCode < typeCount ? typeTable[typeCode].asnName : "";
}

bool decodeUtf8(std::string_view text, size_t& at, uint32_t& code) {
    const auto byte = [&](size_t place) { return static_cast<unsigned char>(text[place]); };
    const uint32_t first = byte(at);
    const size_t more = first < 0x80   ? 0
                        : first < 0xC2 ? 9
                        : first < 0xE0 ? 1
                        : first < 0xF0 ? 2
                                       : 3;
    if (first > 0xF4 || more > 3 || at + more >= text.size()) return false;
    code = more == 0 ? first : first & (0x3FU >> more);
    for (size_t place = 1; place <= more; ++place) {
        if ((byte(at + place) & 0xC0) != 0x80) return false;
        code = code << 6 | (byte(at + place) & 0x3F);
    }
    constexpr uint32_t least[] = {0, 0x80, 0x800, 0x10000};
    if (code < least[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return false;
    at += more + 1;
    return true;
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (code >= 32 && code < 127) {
            if (code == '"' || code == '\\') out += '\\';
            out += byte;
        } else {
            out += "\\x";
            appendHex(out, code, 2);
        }
    }
    return out + '"';
}

} // namespace stx
