// Every record has an owner: the definition from which it is reached without following a reference,
// and a path from there. A link to a record that another path owns shows as that path. Instances of
// parameterized definitions have no owner, they are shown where a reference leads to them; so are
// records that only a governor reaches.
//
// Left out: numbers of records, strings and instances, lines, module references, the order of
// definitions and of DEFAULT values in their lists.

#include "meta_dump.h"

#include <algorithm>
#include <tuple>

namespace orvo::meta {

namespace {

using namespace stx;

struct Rec {
    const Tree* tree;
    Kind kind;
    uint32_t nr;
    friend auto operator<=>(const Rec&, const Rec&) = default;
};

struct Walk {
    Trees& trees;
    std::map<Rec, std::string> owners;
    std::map<const Tree*, std::vector<std::pair<std::string, Rec>>> heads; // by name
    std::map<Rec, std::string> open; // records without owner that are being shown
    const Tree* tree = nullptr;      // the one that is shown
    Shown* shown = nullptr;
    std::vector<std::string>* lines = nullptr;
    size_t nesting = 0;
};

constexpr size_t maxLines = 200'000, maxNesting = 2'000;

std::string nameOf(const Rec& rec) {
    switch (rec.kind) {
    case TNODE: return std::string(rec.tree->text(rec.tree->tNode(rec.nr).name));
    case VNODE: return std::string(rec.tree->text(rec.tree->vNode(rec.nr).name));
    case SUB: return std::string(rec.tree->text(rec.tree->subRec(rec.nr).name));
    default: return "";
    }
}

bool isHead(const Rec& rec) {
    if (rec.kind == TNODE) return rec.tree->tNode(rec.nr).role() == TCS_HEADER;
    return rec.kind == VNODE && rec.tree->vNode(rec.nr).valStatus == VST_HEADER;
}

bool isInstance(const Rec& rec) {
    if (rec.kind == TNODE) return rec.tree->tNode(rec.nr).compStatus < 0;
    return rec.tree->vNode(rec.nr).actParRec != 0;
}

/// Path of the record behind `next`: the list, then the entry's name or position.
std::string nextPath(const std::string& path, const Rec& target) {
    const size_t open = path.rfind('[');
    const std::string base = path.substr(0, open == std::string::npos ? path.size() : open);
    std::string label = nameOf(target);
    if (label.empty()) {
        int position = 0;
        if (open != std::string::npos) {
            const std::string old = path.substr(open + 1);
            const size_t hash = old.rfind('#');
            if (hash != std::string::npos) position = std::atoi(old.c_str() + hash + 1);
        }
        label = "#" + std::to_string(position + 1);
    }
    return base + "[" + label + "]";
}

std::string pathOf(const std::string& path, const Field& field, const Rec& target) {
    if (std::string_view(field.name) == "next") return nextPath(path, target);
    std::string result = path + "." + field.name;
    const std::string label = nameOf(target);
    if (!label.empty()) result += "[" + label + "]";
    return result;
}

/// The field leads from part to part of one definition, not to what a name stands for.
bool isStructural(const Rec& rec, const Field& field) {
    const std::string_view name = field.name;
    if (name == "next") {
        if (rec.kind == VNODE && rec.tree->vNode(rec.nr).valStatus == VST_DEFAULT) return false;
        return !isHead(rec) && !(rec.kind == SNODE && rec.tree->sNode(rec.nr).next < 0);
    }
    if (rec.kind == TNODE) return name != "ref" || rec.tree->tNode(rec.nr).typeCode != TYP_SYNONYM;
    if (rec.kind == VNODE) {
        if (name == "govType") return false;
        const VNode value = rec.tree->vNode(rec.nr); // of a field's set: the set is the object's
        const bool isSetByName = value.valCode == TYP_OPEN && value.refMod > 0;
        return name != "ref" || (value.valCode != TYP_SYNONYM && !isSetByName);
    }
    if (rec.kind == SUB) return name != "typeNr";
    if (rec.kind == SNODE) return rec.tree->sNode(rec.nr).token == TOK_LBRACKET;
    return true;
}

bool isSkippedNext(const Rec& rec, const Field& field) {
    if (std::string_view(field.name) != "next") return false;
    if (rec.kind == VNODE && rec.tree->vNode(rec.nr).valStatus == VST_DEFAULT) return true;
    return isHead(rec);
}

void claim(Walk& walk, const Rec& rec, const std::string& path) {
    for (const Field& field : fieldsOf(rec.kind)) {
        const Link link = rec.tree->linkOf(rec.kind, rec.nr, field);
        if (link.target != Target::Record || link.module != 1 || link.kind == MNODE ||
            link.kind == TED || !isStructural(rec, field))
            continue;
        const Rec target{rec.tree, link.kind, link.nr};
        if (isHead(target)) continue;
        const std::string at = pathOf(path, field, target);
        if (walk.owners.try_emplace(target, at).second) claim(walk, target, at);
    }
}

void claimTree(Walk& walk, const Tree* tree) {
    const auto [at, isNew] = walk.heads.try_emplace(tree);
    if (!isNew) return;
    auto& heads = at->second;
    for (const uint32_t nr : typeAssignments(*tree)) heads.push_back({"", {tree, TNODE, nr}});
    for (const uint32_t nr : valueAssignments(*tree)) heads.push_back({"", {tree, VNODE, nr}});
    std::erase_if(heads, [](const auto& head) { return isInstance(head.second); });
    for (auto& [name, rec] : heads) name = nameOf(rec);
    std::ranges::sort(heads);
    for (const auto& [name, rec] : heads) walk.owners[rec] = name;
    for (const auto& [name, rec] : heads) claim(walk, rec, name);
}

std::string hexOf(std::span<const uint8_t> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

void note(Walk& walk, const Rec& rec) {
    if (walk.shown != nullptr && rec.tree == walk.tree) walk.shown->insert({rec.kind, rec.nr});
}

void show(Walk& walk, const Rec& rec, const std::string& path);

void follow(Walk& walk, const Rec& target, const std::string& at, const std::string& line) {
    const auto owner = walk.owners.find(target);
    if (owner != walk.owners.end()) {
        if (owner->second == at)
            show(walk, target, at);
        else
            walk.lines->push_back(line + "-> " + owner->second);
        return;
    }
    const auto [entry, isNew] = walk.open.try_emplace(target, at);
    if (!isNew) {
        walk.lines->push_back(line + "-> " + entry->second);
        return;
    }
    show(walk, target, at);
    walk.open.erase(target);
}

std::string textOfString(Walk& walk, const Tree& tree, const Link& link) {
    note(walk, {&tree, link.kind, link.nr});
    if (link.kind == STRI8) return tree.hasText(link.nr) ? quoted(tree.text(link.nr)) : "(none)";
    return hexOf(tree.bytes(link.kind, link.nr));
}

void showOptions(Walk& walk, const Rec& rec, const std::string& path) {
    for (const uint32_t nr : options(*rec.tree, rec.kind, rec.nr)) {
        const TedRec ted = rec.tree->tedRec(nr);
        note(walk, {rec.tree, TED, nr});
        walk.lines->push_back(
            path + ".option=" + std::to_string(ted.tedKind) + " " +
            (rec.tree->hasText(ted.text) ? quoted(rec.tree->text(ted.text)) : "(none)"));
    }
}

void showValue(Walk& walk, const Rec& rec, const std::string& path, const Link& link) {
    const std::span<const uint8_t> bytes = rec.tree->bytes(VNODE, rec.nr).subspan(56, 12);
    if (link.target != Target::String) {
        walk.lines->push_back(path + ".val=" + hexOf(bytes));
        return;
    }
    const uint8_t kind = rec.tree->vNode(rec.nr).valCode;
    if (kind == TYP_INTEGER || kind == TYP_ENUM) { // too large: exact as a text at the end
        walk.lines->push_back(path + ".val=" + hexOf(bytes.first(8)) + " " +
                              textOfString(walk, *rec.tree, link));
        return;
    }
    // the joined arcs of an object identifier may be in the file or not
    const bool hasText = kind != TYP_OBJID && kind != TYP_RELOID;
    walk.lines->push_back(path + ".val=" + hexOf(bytes.first(4)) + hexOf(bytes.subspan(8)) +
                          (hasText ? " " + textOfString(walk, *rec.tree, link) : ""));
}

void showField(Walk& walk, const Rec& rec, const Field& field, const std::string& path) {
    const std::string_view name = field.name;
    if (name == "line" || isSkippedNext(rec, field)) return;
    const std::string line = path + "." + field.name + "=";
    const Link link = rec.tree->linkOf(rec.kind, rec.nr, field);
    if (field.form == Form::Value) return showValue(walk, rec, path, link);
    int64_t value = 0;
    if (!rec.tree->number(rec.kind, rec.nr, field, value)) {
        walk.lines->push_back(
            line + hexOf(rec.tree->bytes(rec.kind, rec.nr).subspan(field.offset, field.width)));
        return;
    }
    if (name == "tedFirst") return showOptions(walk, rec, path);
    if (name == "tedLast") return;
    if (name == "actParRec") {
        if (value != 0) walk.lines->push_back(line + "instance");
        return;
    }
    switch (link.target) {
    case Target::None:
        if (value != 0) walk.lines->push_back(line + std::to_string(value));
        return;
    case Target::String:
        walk.lines->push_back(line + (value < 0 ? "-" : "") + textOfString(walk, *rec.tree, link));
        return;
    case Target::Formal: walk.lines->push_back(line + "formal " + std::to_string(link.nr)); return;
    case Target::Deferred: walk.lines->push_back(line + "deferred"); return;
    case Target::Record: break;
    }
    if (link.kind == MNODE) {
        walk.lines->push_back(line + "module");
        return;
    }
    std::string error;
    const Tree* tree = walk.trees.module(*rec.tree, link.module, error);
    if (tree == nullptr) {
        walk.lines->push_back(line + "unreachable");
        return;
    }
    claimTree(walk, tree);
    const Rec target{tree, link.kind, link.nr};
    if (link.nr > tree->count(link.kind)) {
        walk.lines->push_back(line + "out of range");
        return;
    }
    if (name == "next" && value < 0) { // the end of an optional group
        walk.lines->push_back(line + "end of group");
        return;
    }
    follow(walk, target, pathOf(path, field, target), line);
}

void show(Walk& walk, const Rec& rec, const std::string& path) {
    if (walk.lines->size() > maxLines || walk.nesting > maxNesting) {
        walk.lines->push_back(path + " (cut)");
        return;
    }
    ++walk.nesting;
    note(walk, rec);
    // the entries behind this one come last, so that the parts of an entry stand together
    const Field* next = nullptr;
    for (const Field& field : fieldsOf(rec.kind)) {
        if (std::string_view(field.name) == "next")
            next = &field;
        else
            showField(walk, rec, field, path);
    }
    if (next != nullptr) showField(walk, rec, *next, path);
    --walk.nesting;
}

} // namespace

bool addDump(Dump& dump, Trees& trees, const std::string& path, std::string& error, Shown* shown) {
    const Tree* tree = trees.open(path, error, stx::Unchecked::accept);
    if (tree == nullptr) return false;
    Walk walk{trees, {}, {}, {}, tree, shown};
    claimTree(walk, tree);
    const std::vector<std::pair<std::string, Rec>> heads = walk.heads[tree];
    for (const auto& [name, rec] : heads) {
        walk.lines = &dump[name];
        show(walk, rec, name);
    }
    const MNode self = tree->mNode(1);
    note(walk, {tree, MNODE, 1});
    std::vector<std::string>& own = dump["(module)"];
    std::string words = "automaticTags=" + std::to_string(self.automaticTags);
    for (const uint32_t word : std::span(self.modWords).first(5))
        words += " " + std::to_string(word);
    // the last word counts the types marked ENTRY, of all modules together always as many
    std::vector<std::string>& entries = dump["(entries)"];
    entries = {std::to_string(self.modWords[5] + (entries.empty() ? 0 : std::stoull(entries[0])))};
    if (std::ranges::find(own, words) == own.end()) own.push_back(words);
    return true;
}

} // namespace orvo::meta
