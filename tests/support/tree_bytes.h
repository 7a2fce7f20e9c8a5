#pragma once

// Tree files made by hand: records of the compiler's own layouts, written out byte by byte.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tree/orvodef.h"

namespace orvo {

struct TreeBytes {
    std::vector<MNode> modules = std::vector<MNode>(1);
    std::vector<TNode> types;
    std::vector<VNode> values;
    std::vector<TagRec> tags;
    std::vector<SubRec> subs;
    std::vector<TedRec> options;
    std::vector<SNode> syntax;
    std::vector<std::string> strings;
    std::vector<std::u16string> strings16;
    std::vector<std::u32string> strings32;

    /// Number of a string, added when new.
    uint32_t text(std::string_view wanted) {
        for (size_t at = 0; at < strings.size(); ++at)
            if (strings[at] == wanted) return static_cast<uint32_t>(at + 1);
        strings.emplace_back(wanted);
        return static_cast<uint32_t>(strings.size());
    }
    /// A new record; its number is the size of the list then.
    TNode& type(std::string_view name, TypeCode code, int32_t role = TCS_MANDATORY) {
        TNode node = {};
        if (!name.empty()) node.name = static_cast<int32_t>(text(name));
        node.typeCode = code;
        node.compStatus = role;
        if (role == TCS_HEADER) node.checkState = CHECK_DONE;
        node.lenForm = node.skipOpt = 255;
        node.lowerBound = i64of(INT64_MIN);
        node.upperBound = i64of(INT64_MAX);
        types.push_back(node);
        return types.back();
    }
    VNode& value(std::string_view name, TypeCode code, int32_t status = VST_PLAIN) {
        VNode node = {};
        if (!name.empty()) node.name = static_cast<int32_t>(text(name));
        node.valCode = code;
        node.valStatus = status;
        if (status == VST_HEADER) node.checkState = CHECK_DONE;
        values.push_back(node);
        return values.back();
    }

    std::vector<uint8_t> bytes() {
        MNode& self = modules[0];
        const size_t counts[] = {modules.size(),   types.size(),    values.size(), tags.size(),
                                 subs.size(),      options.size(),  syntax.size(), strings.size(),
                                 strings16.size(), strings32.size()};
        for (size_t kind = 0; kind < 10; ++kind)
            self.recCount[kind] = static_cast<uint32_t>(counts[kind]);
        std::vector<uint8_t> out;
        addRecords(out, modules, mNodeFields);
        addRecords(out, types, tNodeFields);
        addRecords(out, values, vNodeFields);
        addRecords(out, tags, tagRecFields);
        addRecords(out, subs, subRecFields);
        addRecords(out, options, tedRecFields);
        addRecords(out, syntax, sNodeFields);
        for (const std::string& text : strings) addText(out, text, 1);
        for (const std::u16string& text : strings16) addText(out, text, 2);
        for (const std::u32string& text : strings32) addText(out, text, 4);
        return out;
    }

  private:
    static void addWord(std::vector<uint8_t>& out, uint32_t word, size_t bytes) {
        for (size_t at = 0; at < bytes; ++at) out.push_back(static_cast<uint8_t>(word >> 8 * at));
    }
    template <typename Text>
    static void addText(std::vector<uint8_t>& out, const Text& text, size_t unit) {
        addWord(out, static_cast<uint32_t>(text.size() + 1), 2);
        for (const auto ch : text) addWord(out, static_cast<uint32_t>(ch), unit);
        addWord(out, 0, unit);
    }
    template <typename Rec> static void addRecords(std::vector<uint8_t>& out,
                                                   const std::vector<Rec>& records,
                                                   std::span<const Field> fields) {
        for (const Rec& rec : records) {
            const auto* from = reinterpret_cast<const uint8_t*>(&rec);
            for (const Field& field : fields)
                for (size_t word = 0; word < field.size; word += field.word)
                    addHostWord(out, from + field.offset + word, field.word);
        }
    }
    /// A word of the host's byte order, low byte first.
    static void addHostWord(std::vector<uint8_t>& out, const uint8_t* from, size_t bytes) {
        const uint16_t probe = 1;
        const bool low = *reinterpret_cast<const uint8_t*>(&probe) == 1;
        for (size_t at = 0; at < bytes; ++at) out.push_back(from[low ? at : bytes - 1 - at]);
    }
};

} // namespace orvo
