#include "stxdump.h"

#include <algorithm>
#include <array>

namespace stxdump {

using stx::Tree;
using stx::Trees;
using stx::TypeRef;

namespace {

constexpr size_t widest = 32; // columns are not padded further: one long name does not move all

void addLine(std::string& out, std::string_view label, std::string_view text) {
    if (text.empty()) return;
    out += "    ";
    out += label;
    out.append(label.size() < 12 ? 12 - label.size() : 1, ' ');
    out += text;
    out += '\n';
}

/// Rows of texts, their columns aligned.
template <size_t N> std::string table(const std::vector<std::array<std::string, N>>& rows) {
    std::array<size_t, N> width = {};
    for (const auto& row : rows)
        for (size_t at = 0; at < N; ++at)
            width[at] = std::max(width[at], std::min(row[at].size(), widest));
    std::string out;
    for (const auto& row : rows) {
        out += "        ";
        for (size_t at = 0; at < N; ++at) {
            out += row[at];
            if (width[at] > 0) out.append(2 + width[at] - std::min(row[at].size(), width[at]), ' ');
        }
        while (out.back() == ' ') out.pop_back();
        out += '\n';
    }
    return out;
}

std::string moduleLine(const Tree& tree, uint32_t nr) {
    const stx::MNode node = tree.mNode(nr);
    std::string text = std::to_string(nr) + ' ' + std::string(cut(tree.text(node.modName)));
    if (node.stxName != 0) text += " (" + std::string(cut(tree.text(node.stxName))) + ".stx)";
    if (node.importsState >> 4 == 1) text += ", by external reference";
    if (node.importsState >> 4 == 2) text += ", by IMPORTS";
    if (node.selection != stx::SELECT_ONE)
        text += ", WITH " + std::string(stx::codeName(stx::selectionNames, node.selection));
    return text;
}

std::string countsText(const Tree& tree) {
    std::string text;
    for (int kind = 0; kind < stx::kindCount; ++kind) {
        if (!text.empty()) text += ", ";
        text += std::string(stx::kindNames[kind]) + ' ' +
                std::to_string(tree.count(static_cast<stx::Kind>(kind)));
    }
    return text;
}

/// What there is to be said of a type beyond kind, tags and bounds.
std::string notes(const stx::TNode& node) {
    std::string text;
    const auto add = [&text](std::string_view note) {
        if (!text.empty()) text += ", ";
        text += note;
    };
    if (node.typeCode == stx::TYP_CHOICE || node.typeCode == stx::TYP_SEQ ||
        node.typeCode == stx::TYP_SET || node.typeCode == stx::TYP_CLASS)
        add(std::to_string(node.fieldSize) + (node.fieldSize == 1 ? " entry" : " entries"));
    if ((node.nodeFlags & stx::NF_SET) != 0 || node.name < 0) add("set");
    if (node.isParameterized()) add("parameterized");
    const std::string flags = stx::bitNames(stx::checkFlagNames, node.checkFlags);
    if (!flags.empty()) add(flags);
    return text;
}

std::array<std::string, 5> typeRow(Trees& trees, TypeRef type) {
    const stx::TNode node = type.node();
    std::array<std::string, 5> row = {std::string(cut(type.tree->text(node.name))),
                                      kindText(trees, type), "", "", notes(node)};
    if (node.isParameterized() || isClass(trees, type)) return row;
    std::string error;
    row[2] = tagsText(stx::finalTags(trees, type, -1, error));
    row[3] = stx::effectiveText(trees, type);
    return row;
}

} // namespace

std::string tagsText(const stx::FinalTags& tags) {
    std::string text;
    for (const stx::Tag& tag : tags.tags) text += (text.empty() ? "" : " ") + stx::tagText(tag);
    if (tags.open) text += text.empty() ? "..." : " ...";
    return text;
}

std::string kindText(Trees& trees, TypeRef type) {
    const stx::TNode node = type.node();
    std::string text = stx::typeText(trees, type);
    if (text.empty()) text = stx::codeName(stx::typeNames, node.typeCode);
    const bool reference = node.typeCode == stx::TYP_SYNONYM ||
                           node.typeCode == stx::TYP_FIELDLIST ||
                           node.typeCode == stx::TYP_SELECTION;
    if (!reference) return text;
    std::string error;
    const TypeRef end = stx::skipTypes(trees, type, true, error);
    if (!error.empty()) return text + " (" + error + ')';
    if (end == type) return text;
    const std::string last = stx::typeText(trees, end);
    if (!last.empty() && last != text) text += " = " + last;
    return text;
}

bool isClass(Trees& trees, TypeRef type) {
    std::string error;
    const uint8_t code = stx::skipTypes(trees, type, true, error).node().typeCode;
    return code >= stx::TYP_CLASS && code <= stx::TYP_ABSTR_STX;
}

void dumpSummary(Trees& trees, const Tree& tree, Sink& out) {
    const stx::MNode self = tree.mNode(1);
    std::string text = tree.path() + ": module " + std::string(tree.moduleName()) + '\n';
    addLine(text, "written", stampText(self.modTimeStamp));
    addLine(text, "source",
            std::string(tree.text(self.srcDir)) + std::string(tree.text(self.srcFile)));
    if (self.modOid != 0) addLine(text, "identifier", stx::valueText(trees, {&tree, self.modOid}));
    if (self.automaticTags != 0) addLine(text, "tags", "AUTOMATIC");
    addLine(text, "standard", stx::codeName(stx::standardNames, self.standard()));
    addLine(text, "exports", stx::codeName(stx::exportsNames, self.exportsState));
    addLine(text, "options", stx::bitNames(stx::moduleOptionNames, self.modWords[0]));
    addLine(text, "records", countsText(tree));
    for (uint32_t nr = 2; nr <= tree.count(stx::MNODE); ++nr)
        addLine(text, nr == 2 ? "modules" : "", moduleLine(tree, nr));
    out.add(text);

    std::vector<std::array<std::string, 5>> types;
    for (const uint32_t nr : stx::typeAssignments(tree))
        types.push_back(typeRow(trees, {&tree, nr}));
    out.add("    types       " + std::to_string(types.size()) + '\n');
    out.add(table(types));

    std::vector<std::array<std::string, 3>> values;
    for (const uint32_t nr : stx::valueAssignments(tree)) {
        const stx::VNode node = tree.vNode(nr);
        std::string error;
        const stx::Link gov = tree.linkOf(stx::VNODE, nr, stx::fieldNamed(stx::VNODE, "govType"));
        const TypeRef type = stx::typeOf(trees, tree, gov, error);
        values.push_back({std::string(cut(tree.text(node.name))),
                          type ? stx::typeText(trees, type) : std::string(),
                          stx::valueText(trees, {&tree, nr})});
    }
    out.add("    values      " + std::to_string(values.size()) + '\n');
    out.add(table(values));
}

} // namespace stxdump
