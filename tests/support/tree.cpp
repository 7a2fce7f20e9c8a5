#include "support/tree.h"

#include <gtest/gtest.h>

namespace orvo::test {
namespace {

constexpr const char* none = "(none)";

const stx::Tree emptyTree;

void append(std::string& text, std::string_view word) {
    if (!text.empty()) text += ' ';
    text += word;
}

/// One step of a path from a type that is not a reference.
uint32_t step(const stx::Tree& tree, uint32_t nr, std::string_view name) {
    if (name == "*") {
        const std::vector<uint32_t> list = stx::components(tree, nr);
        return list.empty() ? 0 : list[0];
    }
    if (!name.starts_with('@')) return stx::findComponent(tree, nr, name);
    const std::vector<uint32_t> list = stx::components(tree, nr, true);
    const size_t place = std::stoul(std::string(name.substr(1)));
    return place == 0 || place > list.size() ? 0 : list[place - 1];
}

std::string entries(const stx::Tree& tree, uint32_t nr) {
    std::string text;
    for (const uint32_t entry : stx::components(tree, nr, true)) {
        const stx::TNode node = tree.tNode(entry);
        if (node.typeCode == stx::TYP_EXTENSION_MARKER)
            append(text, "...");
        else if (node.typeCode == stx::TYP_EXTADDGRP)
            append(text, "[[ " + entries(tree, entry) + " ]]");
        else if (node.role() == stx::TCS_COMPOF)
            append(text, "COMPONENTS-OF");
        else
            append(text, node.name == 0 ? "*" : tree.text(node.name));
    }
    return text;
}

} // namespace

TreeFacts::TreeFacts(const RunResult& run, const std::string& prefix)
    : dir_(run.dir), trees_(std::make_shared<stx::Trees>()), tree_(&emptyTree) {
    std::string error = "the run has no directory";
    if (!dir_)
        ADD_FAILURE() << error;
    else if (const stx::Tree* tree = trees_->open((dir_->path() / (prefix + ".stx")).string(),
                                                  error, stx::Unchecked::accept))
        tree_ = tree;
    else
        ADD_FAILURE() << error << '\n' << run.out << run.err;
}

stx::TypeRef TreeFacts::type(std::string_view path) const {
    const size_t end = path.find('.');
    stx::TypeRef at{tree_, stx::findType(*tree_, path.substr(0, end))};
    std::string_view rest = end == std::string_view::npos ? "" : path.substr(end + 1);
    std::string error;
    while (at && !rest.empty()) {
        at = stx::skipTypes(*trees_, at, true, error);
        const std::string_view name = rest.substr(0, rest.find('.'));
        at.nr = step(*at.tree, at.nr, name);
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    }
    if (!at) ADD_FAILURE() << "there is no " << path << ' ' << error;
    return at;
}

stx::ValueRef TreeFacts::value(std::string_view name) const {
    const stx::ValueRef at{tree_, stx::findValue(*tree_, name)};
    if (!at) ADD_FAILURE() << "there is no " << name;
    return at;
}

std::string TreeFacts::types() const {
    std::string text;
    for (const uint32_t nr : stx::typeAssignments(*tree_))
        append(text, tree_->text(tree_->tNode(nr).name));
    return text;
}

std::string TreeFacts::values() const {
    std::string text;
    for (const uint32_t nr : stx::valueAssignments(*tree_))
        append(text, tree_->text(tree_->vNode(nr).name));
    return text;
}

std::string TreeFacts::kind(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    const std::string text = stx::typeText(*trees_, at);
    return text.empty() ? stx::typeTable[at.node().typeCode].name : text;
}

std::string TreeFacts::actualKind(std::string_view path) const {
    std::string error;
    const stx::TypeRef at = stx::skipTypes(*trees_, type(path), true, error);
    if (!error.empty()) return error;
    return at ? std::string(stx::asnName(at.node().typeCode)) : none;
}

std::string TreeFacts::tags(std::string_view path) const {
    const stx::TypeRef at = type(path);
    return at ? stx::tagListText(*trees_, at) : none;
}

std::string TreeFacts::finalTags(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    std::string error;
    int64_t automatic = -1;
    if (const size_t dot = path.rfind('.'); dot != std::string_view::npos) {
        const stx::TypeRef parent = stx::skipTypes(*trees_, type(path.substr(0, dot)), true, error);
        for (const stx::Component& entry : stx::allComponents(*trees_, parent, error))
            if (entry.type == at) automatic = entry.automaticTag;
    }
    const stx::FinalTags final = stx::finalTags(*trees_, at, automatic, error);
    std::string text;
    for (const stx::Tag& tag : final.tags) append(text, stx::tagText(tag));
    if (final.open) append(text, "...");
    return error.empty() ? text : error;
}

std::string TreeFacts::bounds(std::string_view path) const {
    const stx::TypeRef at = type(path);
    return at ? stx::boundsText(at.node()) : none;
}

std::string TreeFacts::valueField(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    const stx::TNode node = at.node();
    return '(' + std::to_string(node.vfKind) + ", " + std::to_string(node.sizeOpt) + ')';
}

std::string TreeFacts::flags(std::string_view path) const {
    const stx::TypeRef at = type(path);
    return at ? stx::bitNames(stx::checkFlagNames, at.node().checkFlags) : none;
}

std::string TreeFacts::optFlags(std::string_view path) const {
    const stx::TypeRef at = type(path);
    return at ? stx::bitNames(stx::optFlagNames, at.node().optFlags) : none;
}

std::string TreeFacts::constraint(std::string_view path) const {
    const stx::TypeRef at = type(path);
    return at ? stx::constraintText(*trees_, *at.tree, stx::constraintOf(*at.tree, at.nr)) : none;
}

std::string TreeFacts::presence(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    const stx::TNode node = at.node();
    if (node.role() == stx::TCS_COMPOF) return "COMPONENTS OF";
    if (node.role() != stx::TCS_OPTIONAL) return "";
    if (node.defaultVal == 0) return "OPTIONAL";
    return "DEFAULT " + stx::valueText(*trees_, {at.tree, node.defaultVal});
}

std::string TreeFacts::components(std::string_view path) const {
    std::string error;
    const stx::TypeRef at = stx::skipTypes(*trees_, type(path), true, error);
    return at ? entries(*at.tree, at.nr) : none;
}

std::string TreeFacts::named(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    std::string text;
    for (const uint32_t nr : stx::namedValues(*at.tree, at.nr)) {
        const stx::VNode node = at.tree->vNode(nr);
        if (node.valCode == stx::TYP_EXTENSION_MARKER)
            append(text, "...");
        else
            append(text, std::string(at.tree->text(node.name)) + '(' +
                             stx::valueText(*trees_, {at.tree, nr}) + ')');
    }
    return text;
}

std::string TreeFacts::options(std::string_view path) const {
    const stx::TypeRef at = type(path);
    if (!at) return none;
    std::string text;
    for (const uint32_t nr : stx::options(*at.tree, stx::TNODE, at.nr))
        append(text, at.tree->text(at.tree->tedRec(nr).text));
    return text;
}

std::string TreeFacts::valueText(std::string_view name) const {
    const stx::ValueRef at = value(name);
    return at ? stx::valueText(*trees_, at) : none;
}

} // namespace orvo::test
