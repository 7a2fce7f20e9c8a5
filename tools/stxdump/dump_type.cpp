// One definition with everything it is made of. A type that several references lead to is shown at
// the first of them, so that recursive types end and the output stays as long as the definitions;
// the depth of nesting is limited for files that no compiler wrote.

#include "stxdump.h"

#include "stx/stxnotation.h"
#include "stx/stxobjects.h"

#include <algorithm>
#include <set>

namespace stxdump {

using stx::Tree;
using stx::Trees;
using stx::TypeRef;

namespace {

constexpr int maxNesting = 600;
/// Settings of objects are shown with references followed while they are no longer.
constexpr size_t maxValue = 200;

struct Walk {
    Trees& trees;
    Sink& out;
    std::string error; // the first file that is damaged or of another run
    std::set<std::pair<const Tree*, uint32_t>> shown;
    int depth = 0;
};

void showType(Walk& walk, TypeRef type, int64_t automaticTag);

std::string indent(const Walk& walk) {
    return std::string(4 * static_cast<size_t>(walk.depth), ' ');
}

void addPart(std::string& line, std::string_view part) {
    if (!part.empty()) line += "  " + std::string(part);
}

/// A missing file is told in place; one that is there and unusable fails the dump.
void note(Walk& walk, const std::string& error) {
    const bool missing = error.ends_with("no such file") || error.ends_with("has no tree file");
    if (!error.empty() && !missing && walk.error.empty()) walk.error = error;
}

std::string presence(Walk& walk, const Tree& tree, const stx::TNode& node) {
    if (node.role() != stx::TCS_OPTIONAL) return "";
    if (node.defaultVal == 0) return "OPTIONAL";
    return "DEFAULT " + stx::valueText(walk.trees, {&tree, node.defaultVal});
}

std::string namedText(Walk& walk, TypeRef type) {
    std::string text;
    for (const uint32_t nr : stx::namedValues(*type.tree, type.nr)) {
        const stx::VNode node = type.tree->vNode(nr);
        text += text.empty() ? "" : ", ";
        if (node.valCode == stx::TYP_EXTENSION_MARKER) {
            text += stx::markerText(walk.trees, *type.tree, stx::VNODE, nr);
            continue;
        }
        text += std::string(cut(type.tree->text(node.name))) + '(' +
                stx::valueText(walk.trees, {type.tree, nr}) + ')';
    }
    return text.empty() ? text : '{' + text + '}';
}

std::string optionsText(TypeRef type) {
    std::string text;
    for (const uint32_t nr : stx::options(*type.tree, stx::TNODE, type.nr)) {
        if (text.size() > longestMention) break;
        text += (text.empty() ? "" : " ");
        text += cut(type.tree->text(type.tree->tedRec(nr).text));
    }
    return text.empty() ? text : "--" + text + "--";
}

/// Name, kind, tags, constraint, bounds, presence and what else distinguishes a node.
std::string typeLine(Walk& walk, TypeRef type, int64_t automaticTag) {
    const stx::TNode node = type.node();
    const std::string_view name = cut(type.tree->text(node.name));
    std::string line(name.empty() ? "*" : name);
    if (node.role() == stx::TCS_HEADER)
        line = std::string(cut(type.tree->moduleName())) + '.' + std::string(name);
    addPart(line, kindText(walk.trees, type));
    std::string error;
    if (node.isParameterized()) {
        addPart(line, "parameterized");
    } else if (!isClass(walk.trees, type)) {
        addPart(line, tagsText(stx::finalTags(walk.trees, type, automaticTag, error)));
        addPart(line, stx::constraintText(walk.trees, *type.tree,
                                          stx::constraintOf(*type.tree, type.nr)));
        addPart(line, stx::effectiveText(walk.trees, type));
    }
    note(walk, error);
    addPart(line, namedText(walk, type));
    addPart(line, presence(walk, *type.tree, node));
    addPart(line, stx::bitNames(stx::checkFlagNames, node.checkFlags));
    if (node.actParRec != 0) addPart(line, "instance " + std::to_string(node.actParRec));
    addPart(line, optionsText(type));
    return line;
}

/// The components as they take part in the structure, in the order of the text.
struct Cursor {
    const std::vector<stx::Component>& list;
    size_t at = 0;
};

/// An entry; COMPONENTS OF with what it brings in below, whose tags are those it has here.
void showEntry(Walk& walk, TypeRef entry, Cursor& cursor) {
    size_t members = 1;
    const bool included = entry.node().role() == stx::TCS_COMPOF;
    if (included) {
        std::string error;
        const TypeRef from = stx::skipTypes(walk.trees, entry, false, error);
        const std::vector<stx::Component> inside = stx::allComponents(walk.trees, from, error);
        note(walk, error);
        members =
            static_cast<size_t>(std::ranges::count(inside, false, &stx::Component::extension));
        walk.out.add(indent(walk) + "COMPONENTS OF  " + kindText(walk.trees, entry) + '\n');
        ++walk.depth;
    }
    for (; members > 0 && cursor.at < cursor.list.size(); --members, ++cursor.at)
        showType(walk, cursor.list[cursor.at].type, cursor.list[cursor.at].automaticTag);
    if (included) --walk.depth;
}

void showComponents(Walk& walk, TypeRef type) {
    std::string error;
    const std::vector<stx::Component> list = stx::allComponents(walk.trees, type, error);
    note(walk, error);
    Cursor cursor{list};
    for (const uint32_t nr : stx::components(*type.tree, type.nr, true)) {
        const stx::TNode node = type.tree->tNode(nr);
        if (node.typeCode == stx::TYP_EXTENSION_MARKER) {
            walk.out.add(indent(walk) + stx::markerText(walk.trees, *type.tree, stx::TNODE, nr) +
                         '\n');
            continue;
        }
        const bool group = node.typeCode == stx::TYP_EXTADDGRP;
        if (group) walk.out.add(indent(walk) + stx::groupText(node) + '\n');
        const std::vector<uint32_t> entries =
            group ? stx::components(*type.tree, nr) : std::vector<uint32_t>{nr};
        for (const uint32_t entry : entries) showEntry(walk, {type.tree, entry}, cursor);
        if (group) walk.out.add(indent(walk) + "]]\n");
    }
}

/// "&id 1": a field of an object with what it is set to; "" for one that is not.
std::string settingText(Walk& walk, const stx::Setting& setting) {
    if (setting.origin == stx::Setting::Origin::Absent) return "";
    const std::string name = '&' + std::string(cut(setting.name)) + ' ';
    if (setting.value) {
        const stx::ValueStyle style{stx::Naming::Followed, nullptr};
        const stx::Result<std::string> text = stx::valueText(walk.trees, setting.value, style);
        return name + (text && text->size() < maxValue ? *text
                                                       : stx::valueText(walk.trees, setting.value));
    }
    const TypeRef type = setting.type;
    if (setting.kind == stx::FieldKind::Type || !type)
        return name + stx::typeText(walk.trees, type);
    const uint32_t constraint = stx::constraintOf(*type.tree, type.nr);
    if (constraint == 0) return name + stx::typeText(walk.trees, type);
    const std::string set = stx::constraintText(walk.trees, *type.tree, constraint);
    return name + '{' + set.substr(1, set.size() - 2) + '}';
}

void showObject(Walk& walk, TypeRef set, stx::ValueRef object) {
    const stx::Result<stx::Settings> fields = stx::settings(walk.trees, object);
    note(walk, fields.error);
    const std::string_view name = cut(object.tree->text(object.node().name));
    std::string line;
    if (!name.empty() && object.tree != set.tree)
        line = std::string(cut(object.tree->moduleName())) + '.';
    line += name.empty() ? "*" : name;
    line += "  {";
    bool first = true;
    for (const stx::Setting& setting : fields->fields) {
        const std::string text = settingText(walk, setting);
        if (text.empty()) continue;
        line += (first ? "" : ", ") + text;
        first = false;
    }
    walk.out.add(indent(walk) + line + "}\n");
}

/// The objects of a set with all their fields; false where the type is no set of objects.
bool showObjects(Walk& walk, TypeRef type) {
    if ((type.node().nodeFlags & stx::NF_SET) == 0 || type.node().name <= 0 ||
        !isClass(walk.trees, type) || type.node().role() != stx::TCS_HEADER)
        return false;
    const stx::Result<stx::ObjectSet> set = stx::objectsOf(walk.trees, type);
    if (!set) {
        note(walk, set.error);
        walk.out.add(indent(walk) + '(' + set.error + ")\n");
        return true;
    }
    for (size_t nr = 0; nr < set->objects.size(); ++nr) {
        if (nr == set->rootCount) walk.out.add(indent(walk) + "...\n");
        showObject(walk, type, set->objects[nr]);
    }
    if (set->extensible && set->objects.size() == set->rootCount)
        walk.out.add(indent(walk) + "...\n");
    return true;
}

/// What stands below a node: its components, or the definition that it refers to.
void showInside(Walk& walk, TypeRef type) {
    if (walk.depth > maxNesting) {
        walk.out.add(indent(walk) + "...\n");
        return;
    }
    if (!type.node().isParameterized() && showObjects(walk, type)) return;
    std::string error;
    const uint8_t code = type.node().typeCode;
    if (code < stx::typeCount && stx::typeTable[code].structured && code != stx::TYP_SELECTION)
        return showComponents(walk, type);
    const TypeRef next = stx::nextType(walk.trees, type, true, error);
    note(walk, error); // the line above tells it
    if (next) showType(walk, next, -1);
}

void showType(Walk& walk, TypeRef type, int64_t automaticTag) {
    const std::string line = indent(walk) + typeLine(walk, type, automaticTag);
    if (!walk.shown.insert({type.tree, type.nr}).second) {
        walk.out.add(line + "  (see above)\n");
        return;
    }
    walk.out.add(line + '\n');
    ++walk.depth;
    showInside(walk, type);
    --walk.depth;
}

} // namespace

bool dumpType(Trees& trees, TypeRef type, Sink& out, std::string& error) {
    Walk walk{trees, out, {}, {}};
    showType(walk, type, -1);
    error = walk.error;
    return error.empty();
}

void dumpValue(Trees& trees, stx::ValueRef value, Sink& out) {
    const stx::VNode node = value.node();
    std::string error;
    const stx::Link gov =
        value.tree->linkOf(stx::VNODE, value.nr, stx::fieldNamed(stx::VNODE, "govType"));
    const TypeRef type = stx::typeOf(trees, *value.tree, gov, error);
    std::string line =
        std::string(value.tree->moduleName()) + '.' + std::string(value.tree->text(node.name));
    if (type) line += "  " + kindText(trees, type);
    out.add(line + " ::= " + stx::valueText(trees, value) + '\n');
}

} // namespace stxdump
