// One line per field: name, number, meaning. Links are printed with the kind and name of the record
// that they lead to, so that the text can be searched in either direction.

#include "stxdump.h"

namespace stxdump {

using stx::Field;
using stx::Form;
using stx::Kind;
using stx::Link;
using stx::Sense;
using stx::Target;
using stx::Tree;

namespace {

constexpr size_t nameWidth = 16;

std::string padded(std::string text, size_t width) {
    if (text.size() < width) text.resize(width, ' ');
    return text;
}

std::string wideText(const Tree& tree, Kind kind, uint32_t nr) {
    std::string text = "\"";
    const std::span<const uint8_t> bytes = tree.bytes(kind, nr);
    const size_t unit = stx::recordSize[kind];
    for (size_t at = 0; at + unit < bytes.size(); at += unit) {
        uint32_t code = 0;
        for (size_t byte = unit; byte > 0; --byte) code = code << 8 | bytes[at + byte - 1];
        if (code >= 32 && code < 127 && code != '"' && code != '\\') {
            text += static_cast<char>(code);
            continue;
        }
        text += unit == 2 ? "\\u" : "\\U";
        for (size_t shift = 8 * unit; shift > 0; shift -= 4)
            text += "0123456789abcdef"[code >> (shift - 4) & 15];
    }
    return text + '"';
}

std::string stringText(const Tree& tree, Kind kind, uint32_t nr) {
    if (nr == 0 || nr > tree.count(kind)) return "(not in the file)";
    return kind == stx::STRI8 ? stx::quoted(tree.text(nr)) : wideText(tree, kind, nr);
}

std::string mention(std::string text) {
    if (text.size() > longestMention) text.replace(longestMention, std::string::npos, "...");
    return text;
}

std::string linkText(const Tree& tree, const Link& link) {
    switch (link.target) {
    case Target::None: return "";
    case Target::Formal: return "formal parameter " + std::to_string(link.nr);
    case Target::Deferred: return "not parsed";
    case Target::String:
        return std::string(stx::kindNames[link.kind]) + ' ' + std::to_string(link.nr) + ' ' +
               mention(stringText(tree, link.kind, link.nr));
    case Target::Record: break;
    }
    std::string text = std::string(stx::kindNames[link.kind]) + ' ' + std::to_string(link.nr);
    std::string_view name;
    if (link.module == 1)
        name = recordName(tree, link.kind, link.nr);
    else
        text += " of module " + std::string(recordName(tree, stx::MNODE, link.module));
    if (!name.empty()) text += ' ' + std::string(name);
    return text;
}

std::string payloadText(const Tree& tree, uint32_t nr, const Field& field) {
    const stx::VNode node = tree.vNode(nr);
    switch (node.valCode) {
    case stx::TYP_BOOLEAN: return node.boole ? "TRUE" : "FALSE";
    case stx::TYP_INTEGER:
    case stx::TYP_ENUM: return stx::integerText(tree, node);
    case stx::TYP_REAL:
        return "mantissa " + std::to_string(node.number) + ", base " + std::to_string(node.base) +
               ", exponent " + std::to_string(node.exponent) +
               (node.base != -1     ? ""
                : node.number == -2 ? " (PLUS-INFINITY)"
                : node.number == -1 ? " (MINUS-INFINITY)"
                : node.number == -3 ? " (NOT-A-NUMBER)"
                : node.number == -4 ? " (minus zero)"
                                    : " (zero)");
    default: break;
    }
    const Link link = tree.linkOf(stx::VNODE, nr, field);
    if (link.target != Target::String) return "";
    return "length " + std::to_string(node.striLen) + ", " + linkText(tree, link);
}

std::string wordsText(const stx::MNode& node, const Field& field) {
    std::string text;
    if (field.width == sizeof node.recCount) {
        for (const uint32_t count : node.recCount) text += std::to_string(count) + ' ';
    } else {
        for (const uint32_t word : node.modWords) text += std::to_string(word) + ' ';
        text += ' ' + stx::bitNames(stx::moduleOptionNames, node.modWords[0]);
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

/// Number and meaning; "" where the field says none and `all` is not wanted.
std::string fieldText(const Tree& tree, Kind kind, uint32_t nr, const Field& field, bool all) {
    switch (field.form) {
    case Form::Stamp: return stampText(tree.mNode(nr).modTimeStamp);
    case Form::Words: return wordsText(tree.mNode(nr), field);
    case Form::Value: return payloadText(tree, nr, field);
    case Form::Unused: return "";
    case Form::Unsigned:
    case Form::Signed:
    case Form::Wide: break;
    }
    int64_t value = 0;
    if (!tree.number(kind, nr, field, value)) return "";
    if (field.form == Form::Wide) { // of a type alone
        const stx::TNode node = tree.tNode(nr);
        const bool isLower = std::string_view(field.name) == "lowerBound";
        return stx::boundText(value, isLower ? node.lowerForm() : node.upperForm());
    }
    std::string meaning;
    switch (field.sense) {
    case Sense::Plain: break;
    case Sense::Code:
    case Sense::Names: meaning = stx::codeName(field.names(), value); break;
    case Sense::Bits: meaning = stx::bitNames(field.names(), value); break;
    case Sense::String:
    case Sense::Link:
        meaning = linkText(tree, tree.linkOf(kind, nr, field));
        if (meaning.empty() && value != 0) meaning = stx::codeName(field.names(), value);
        break;
    }
    const bool silent = meaning.empty() ? value == 0 : meaning == "none" || meaning == "not given";
    if (silent && !all) return "";
    return meaning.empty() ? std::to_string(value) : std::to_string(value) + "  " + meaning;
}

void dumpRecord(const Tree& tree, Kind kind, uint32_t nr, bool all, Sink& out) {
    std::string text = std::string(stx::kindNames[kind]) + ' ' + std::to_string(nr);
    const std::string_view name = recordName(tree, kind, nr);
    if (!name.empty()) text += "  " + std::string(name);
    text += '\n';
    for (const Field& field : stx::fieldsOf(kind)) {
        const std::string value = fieldText(tree, kind, nr, field, all);
        if (!value.empty()) text += "    " + padded(field.name, nameWidth) + value + '\n';
    }
    out.add(text);
}

} // namespace

std::string_view recordName(const Tree& tree, Kind kind, uint32_t nr) {
    switch (kind) {
    case stx::MNODE: return cut(tree.text(tree.mNode(nr).modName));
    case stx::TNODE: return cut(tree.text(tree.tNode(nr).name));
    case stx::VNODE: return cut(tree.text(tree.vNode(nr).name));
    case stx::SUB: return cut(tree.text(tree.subRec(nr).name));
    case stx::TAG:
    case stx::TED:
    case stx::SNODE:
    case stx::STRI8:
    case stx::STRI16:
    case stx::STRI32: break;
    }
    return {};
}

std::string stampText(const stx::TimeStamp& stamp) {
    const auto two = [](int64_t number) {
        std::string text = std::to_string(number);
        return text.size() < 2 ? '0' + text : text;
    };
    return "version " + std::to_string(stamp.version / 100) + '.' + two(stamp.version % 100) +
           ", " + two(stamp.date % 100) + '.' + two(stamp.date / 100 % 100) + '.' +
           std::to_string(stamp.date / 10000) + ' ' + std::to_string(stamp.time / 10000) + ':' +
           two(stamp.time / 100 % 100) + '.' + two(stamp.time % 100);
}

void dumpText(const Tree& tree, bool all, Sink& out) {
    out.add(tree.path() + ": module " + std::string(cut(tree.moduleName())) + '\n');
    for (const Kind kind :
         {stx::MNODE, stx::TNODE, stx::VNODE, stx::TAG, stx::SUB, stx::TED, stx::SNODE})
        for (uint32_t nr = 1; nr <= tree.count(kind); ++nr) {
            if (nr == 1) out.add("\n");
            dumpRecord(tree, kind, nr, all, out);
        }
    for (const Kind kind : {stx::STRI8, stx::STRI16, stx::STRI32})
        for (uint32_t nr = 1; nr <= tree.count(kind); ++nr) {
            if (nr == 1) out.add("\n");
            out.add(std::string(stx::kindNames[kind]) + ' ' + std::to_string(nr) + "  " +
                    stringText(tree, kind, nr) + '\n');
        }
}

} // namespace stxdump
