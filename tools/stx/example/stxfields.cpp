// Lists the components of a structured type: name, type, tags of the encoding, bounds, presence.
// usage: stxfields FILE TYPE

#include <cstdio>

#include "stx/stxconstraint.h"
#include "stx/stxreader.h"

namespace {

std::string line(stx::Trees& trees, const stx::Component& component, std::string& error) {
    const stx::TypeRef type = component.type;
    const stx::TNode node = type.node();
    const stx::TypeRef actual = stx::skipTypes(trees, type, true, error);

    std::string text(type.tree->text(node.name)); // stored with "_" for "-"
    text += ": " + std::string(stx::asnName(actual.node().typeCode));
    const stx::FinalTags tags = stx::finalTags(trees, type, component.automaticTag, error);
    for (const stx::Tag& tag : tags.tags) text += ' ' + stx::tagText(tag);
    const std::string bounds = stx::effectiveText(trees, type);
    if (!bounds.empty()) text += ' ' + bounds;
    if (node.role() == stx::TCS_OPTIONAL)
        text += node.defaultVal == 0
                    ? " OPTIONAL"
                    : " DEFAULT " + stx::valueText(trees, {type.tree, node.defaultVal});
    return component.extension ? text + " (extension)" : text;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    stx::Trees trees; // keeps every file that is opened
    std::string error;
    const stx::Tree* tree = trees.open(argv[1], error);
    const uint32_t nr = tree != nullptr ? stx::findType(*tree, argv[2]) : 0;
    if (nr == 0) {
        std::fprintf(stderr, "%s\n", error.empty() ? "no such type" : error.c_str());
        return 1;
    }
    const stx::TypeRef type = stx::skipTypes(trees, {tree, nr}, true, error);
    for (const stx::Component& component : stx::allComponents(trees, type, error))
        std::printf("%s\n", line(trees, component, error).c_str());
    if (!error.empty()) std::fprintf(stderr, "%s\n", error.c_str()); // a file was missing or stale
    return error.empty() ? 0 : 1;
}
