// The same facts as the text, with every field of every record. Strings hold arbitrary bytes: those
// that are UTF-8 are decoded, of all others every byte counts as the character of that code; "hex"
// beside a text that is not plain ASCII gives the bytes themselves.

#include "stxdump.h"

#include <string>

namespace stxdump {

using stx::Field;
using stx::Form;
using stx::Kind;
using stx::Link;
using stx::Sense;
using stx::Target;
using stx::Tree;

namespace {

constexpr uint32_t replacement = 0xFFFD;

std::string hexDigits(uint32_t code, size_t digits) {
    std::string text;
    for (size_t shift = 4 * digits; shift > 0; shift -= 4)
        text += "0123456789abcdef"[code >> (shift - 4) & 15];
    return text;
}

/// Appends a character of a JSON string; everything outside printable ASCII is escaped.
void addChar(std::string& out, uint32_t code) {
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = replacement;
    if (code == '"' || code == '\\') out += '\\';
    if (code >= 32 && code < 127) {
        out += static_cast<char>(code);
    } else if (code < 0x10000) {
        out += "\\u" + hexDigits(code, 4);
    } else {
        out += "\\u" + hexDigits(0xD800 + ((code - 0x10000) >> 10), 4);
        out += "\\u" + hexDigits(0xDC00 + ((code - 0x10000) & 0x3FF), 4);
    }
}

bool isUtf8(std::string_view text) {
    uint32_t code = 0;
    for (size_t at = 0; at < text.size();)
        if (!stx::decodeUtf8(text, at, code)) return false;
    return true;
}

std::string jsonText(std::string_view text) {
    std::string out = "\"";
    if (isUtf8(text)) {
        uint32_t code = 0;
        for (size_t at = 0; at < text.size() && stx::decodeUtf8(text, at, code);)
            addChar(out, code);
    } else {
        for (const char byte : text) addChar(out, static_cast<unsigned char>(byte));
    }
    return out + '"';
}

std::string jsonWide(std::u32string_view text) {
    std::string out = "\"";
    for (const char32_t code : text) addChar(out, code);
    return out + '"';
}

/// Surrogate pairs joined; one that stands alone stays and is replaced later.
std::u32string joined(std::u16string_view text) {
    std::u32string out;
    for (size_t at = 0; at < text.size(); ++at) {
        const char32_t code = text[at];
        const char32_t low = at + 1 < text.size() ? text[at + 1] : U'\0';
        if (code < 0xD800 || code >= 0xDC00 || low < 0xDC00 || low >= 0xE000) {
            out += code;
            continue;
        }
        out += static_cast<char32_t>(0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00));
        ++at;
    }
    return out;
}

/// The text of a string, null when the file does not hold it.
std::string stringJson(const Tree& tree, Kind kind, uint32_t nr) {
    if (nr == 0 || nr > tree.count(kind)) return "null";
    if (kind == stx::STRI8) return jsonText(tree.text(nr));
    return jsonWide(kind == stx::STRI16 ? joined(tree.text16(nr)) : tree.text32(nr));
}

std::string linkJson(const Tree& tree, int64_t value, const Link& link) {
    std::string out = "{\"value\":" + std::to_string(value);
    switch (link.target) {
    case Target::None: break;
    case Target::Formal: out += ",\"formalParameter\":" + std::to_string(link.nr); break;
    case Target::Deferred: out += ",\"notParsed\":true"; break;
    case Target::String:
        out += ",\"kind\":\"" + std::string(stx::kindNames[link.kind]) + '"';
        if (tree.bytes(link.kind, link.nr).size() <= longestMention)
            out += ",\"text\":" + stringJson(tree, link.kind, link.nr);
        break;
    case Target::Record: {
        out += ",\"kind\":\"" + std::string(stx::kindNames[link.kind]) +
               "\",\"nr\":" + std::to_string(link.nr);
        std::string_view name;
        if (link.module == 1)
            name = recordName(tree, link.kind, link.nr);
        else
            out += ",\"module\":" + std::to_string(link.module) +
                   ",\"moduleName\":" + jsonText(recordName(tree, stx::MNODE, link.module));
        if (!name.empty()) out += ",\"name\":" + jsonText(name);
        break;
    }
    }
    return out + '}';
}

std::string payloadJson(const Tree& tree, uint32_t nr, const Field& field) {
    const stx::VNode node = tree.vNode(nr);
    switch (node.valCode) {
    case stx::TYP_BOOLEAN: return node.boole ? "{\"boole\":true}" : "{\"boole\":false}";
    case stx::TYP_INTEGER:
    case stx::TYP_ENUM: {
        const std::string exact =
            node.exact == 0
                ? ""
                : ",\"exact\":" + linkJson(tree, node.exact, tree.linkOf(stx::VNODE, nr, field));
        return "{\"number\":" + std::to_string(node.number) + exact + '}';
    }
    case stx::TYP_REAL:
        return "{\"mantissa\":" + std::to_string(node.number) +
               ",\"base\":" + std::to_string(node.base) +
               ",\"exponent\":" + std::to_string(node.exponent) + '}';
    default: break;
    }
    const Link link = tree.linkOf(stx::VNODE, nr, field);
    if (link.target != Target::String) return "null";
    return "{\"striLen\":" + std::to_string(node.striLen) +
           ",\"stri\":" + linkJson(tree, node.stri, link) + '}';
}

template <typename Words> std::string wordsJson(const Words& words) {
    std::string out = "[";
    for (const uint32_t word : words) out += (out.size() > 1 ? "," : "") + std::to_string(word);
    return out + ']';
}

std::string bitsJson(const Field& field, int64_t value) {
    std::string out = "{\"bits\":" + std::to_string(value) + ",\"names\":[";
    bool first = true;
    for (const stx::CodeName& row : field.names()) {
        if ((value & row.code) == 0) continue;
        out += (first ? "\"" : ",\"") + std::string(row.name) + '"';
        first = false;
    }
    return out + "]}";
}

std::string fieldJson(const Tree& tree, Kind kind, uint32_t nr, const Field& field) {
    if (field.form == Form::Stamp) {
        const stx::TimeStamp stamp = tree.mNode(nr).modTimeStamp;
        return "{\"version\":" + std::to_string(stamp.version) +
               ",\"version2\":" + std::to_string(stamp.version2) +
               ",\"date\":" + std::to_string(stamp.date) +
               ",\"time\":" + std::to_string(stamp.time) + '}';
    }
    if (field.form == Form::Words) {
        const stx::MNode node = tree.mNode(nr);
        return field.width == sizeof node.recCount ? wordsJson(node.recCount)
                                                   : wordsJson(node.modWords);
    }
    if (field.form == Form::Value) return payloadJson(tree, nr, field);
    int64_t value = 0;
    if (!tree.number(kind, nr, field, value)) return "null";
    switch (field.sense) {
    case Sense::Plain: break;
    case Sense::Code:
    case Sense::Names: {
        const std::string_view name = stx::codeName(field.names(), value);
        return "{\"code\":" + std::to_string(value) +
               ",\"name\":" + (name.empty() ? "null" : jsonText(name)) + '}';
    }
    case Sense::Bits: return bitsJson(field, value);
    case Sense::String:
    case Sense::Link: return linkJson(tree, value, tree.linkOf(kind, nr, field));
    }
    return std::to_string(value);
}

void dumpRecords(const Tree& tree, Kind kind, Sink& out) {
    for (uint32_t nr = 1; nr <= tree.count(kind); ++nr) {
        std::string text = nr == 1 ? "\n{\"nr\":" : ",\n{\"nr\":";
        text += std::to_string(nr);
        for (const Field& field : stx::fieldsOf(kind))
            if (field.form != Form::Unused)
                text += ",\"" + std::string(field.name) + "\":" + fieldJson(tree, kind, nr, field);
        out.add(text + '}');
    }
}

void dumpStrings(const Tree& tree, Kind kind, Sink& out) {
    for (uint32_t nr = 1; nr <= tree.count(kind); ++nr) {
        std::string text = nr == 1 ? "\n{\"nr\":" : ",\n{\"nr\":";
        text += std::to_string(nr) + ",\"text\":" + stringJson(tree, kind, nr);
        const std::span<const uint8_t> bytes = tree.bytes(kind, nr);
        const std::span<const uint8_t> chars = bytes.first(bytes.size() - stx::recordSize[kind]);
        bool plain = kind == stx::STRI8;
        for (const uint8_t byte : chars) plain = plain && byte >= 32 && byte < 127;
        if (!plain) {
            text += ",\"hex\":\"";
            for (const uint8_t byte : chars) text += hexDigits(byte, 2);
            text += '"';
        }
        out.add(text + '}');
    }
}

} // namespace

void dumpJson(const Tree& tree, Sink& out) {
    out.add("{\"file\":" + jsonText(tree.path()) + ",\n\"module\":" + jsonText(tree.moduleName()) +
            ",\n\"counts\":{");
    for (int kind = 0; kind < stx::kindCount; ++kind)
        out.add((kind > 0 ? ",\"" : "\"") + std::string(stx::kindNames[kind]) +
                "\":" + std::to_string(tree.count(static_cast<Kind>(kind))));
    out.add("}");
    for (int kind = 0; kind < stx::kindCount; ++kind) {
        out.add(",\n\"" + std::string(stx::kindNames[kind]) + "\":[");
        if (kind < stx::STRI8)
            dumpRecords(tree, static_cast<Kind>(kind), out);
        else
            dumpStrings(tree, static_cast<Kind>(kind), out);
        out.add("]");
    }
    out.add("}\n");
}

} // namespace stxdump
