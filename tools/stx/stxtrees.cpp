#include "stxreader.h"

#include <filesystem>
#include <system_error>

// References across files. A chain of references may be as long as a module; its end is kept for
// every member, so that a module of nothing but references is walked once. A damaged set of files
// may hold a circle of references: the walk marks what it has entered and reports the circle.

namespace stx {
namespace {

/// The built-in module with the later types.
constexpr const char* laterName = "(ISO8824, 2021)";
/// Types of the built-in module in a run without modules of today's notation.
constexpr uint32_t builtinTypes = 120;
constexpr std::string_view uncheckedText = ": not checked: the run had errors";

/// The last entry of a chain of field names. Every record has a chain of its own, so that all of
/// them together are walked in the length of the file.
uint32_t lastOfChain(const Tree& tree, int64_t first) {
    const std::vector<uint32_t> chain = listFrom(tree, SNODE, first);
    return chain.empty() ? 0 : chain.back();
}

Link linkOf(const Tree& tree, Kind kind, uint32_t nr, const char* field) {
    return tree.linkOf(kind, nr, fieldNamed(kind, field));
}

bool isLink(const Link& link, Kind kind) {
    return link.target == Target::Record && link.kind == kind;
}

/// Trees that lie side by side by accident may bear one stamp, which counts seconds: what a module
/// node says of the other file must be so. Texts, also those of options, were still added when it
/// counted.
bool describes(const MNode& node, const MNode& self) {
    for (const Kind kind : {MNODE, TNODE, VNODE, TAG, SUB, SNODE, STRI16, STRI32})
        if (node.recCount[kind] != self.recCount[kind]) return false;
    return node.recCount[TED] <= self.recCount[TED] &&
           node.recCount[STRI8] <= self.recCount[STRI8] && node.modTimeStamp == self.modTimeStamp &&
           node.firstTypeAss == self.firstTypeAss && node.firstValAss == self.firstValAss &&
           node.firstDefVal == self.firstDefVal;
}

} // namespace

const Tree* Trees::open(const std::string& path, std::string& error, Unchecked unchecked) {
    if (unchecked == Unchecked::accept) acceptsUnchecked_ = true;
    const std::string key = std::filesystem::path(path).lexically_normal().string();
    auto [at, isNew] = files_.try_emplace(key);
    Entry& entry = at->second;
    if (isNew) {
        auto tree = std::make_unique<Tree>();
        const bool builtin = path == builtinModule || path == laterName;
        const bool sound = builtin ? tree->parse(path, builtinTree(path == laterName), entry.error)
                                   : tree->open(path, entry.error);
        if (sound) entry.tree = std::move(tree);
        if (sound)
            for (int kind = 0; kind < kindCount; ++kind)
                records_ += entry.tree->count(static_cast<Kind>(kind));
        entry.usable = sound && (builtin || entry.tree->checked());
    }
    if (!entry.tree)
        error = entry.error;
    else if (!entry.usable && !acceptsUnchecked_)
        error = path + std::string(uncheckedText);
    else
        return entry.tree.get();
    if (refused_.empty() && error.ends_with(uncheckedText)) refused_ = error;
    return nullptr;
}

const Tree* Trees::module(const Tree& from, int64_t refMod, std::string& error) {
    if (refMod == 0 || refMod == 1) return &from;
    if (refMod < 0 || refMod > from.count(MNODE)) {
        error = from.path() + ": there is no module reference " + std::to_string(refMod);
        return nullptr;
    }
    const auto nr = static_cast<uint32_t>(refMod);
    auto at = reached_.find({&from, nr});
    if (at == reached_.end()) {
        Reached reached = reach(from, nr);
        // a tree that was refused as unchecked may be accepted later
        if (reached.error.ends_with(uncheckedText)) return error = reached.error, nullptr;
        at = reached_.emplace(std::pair(&from, nr), std::move(reached)).first;
    }
    if (at->second.tree == nullptr) error = at->second.error;
    return at->second.tree;
}

Trees::Reached Trees::reach(const Tree& from, uint32_t refMod) {
    const MNode other = from.mNode(refMod);
    const std::string name(from.text(other.modName));
    const std::string prefix(from.text(other.stxName));
    if (prefix.empty()) return {nullptr, "module " + name + " has no tree file"};
    const std::filesystem::path path =
        std::filesystem::path(from.path()).parent_path() / (prefix + ".stx");
    std::string cause;
    std::error_code failed;
    if (name == "ISO8824" && !std::filesystem::exists(path, failed))
        return {open(other.recCount[TNODE] > builtinTypes ? laterName : builtinModule, cause), ""};
    const Tree* tree = open(path.string(), cause);
    if (tree == nullptr) return {nullptr, "module " + name + ": " + cause};
    if (tree->moduleName() != name)
        return {nullptr, path.string() + ": holds module " + std::string(tree->moduleName()) +
                             ", not " + name};
    if (!describes(other, tree->mNode(1)))
        return {nullptr, path.string() + ": is of another run than " + from.path()};
    return {tree, ""};
}

bool Trees::spend(uint64_t steps) {
    spent_ += steps;
    return spent_ <= leastSteps + stepsPerRecord * records_;
}

TypeRef typeOf(Trees& trees, const Tree& from, const Link& link, std::string& error) {
    if (!isLink(link, TNODE)) return {};
    const Tree* tree = trees.module(from, link.module, error);
    if (tree == nullptr) return {};
    if (link.nr <= tree->count(TNODE)) return {tree, link.nr};
    error = tree->path() + ": there is no tNode " + std::to_string(link.nr);
    return {};
}

ValueRef valueOf(Trees& trees, const Tree& from, const Link& link, std::string& error) {
    if (!isLink(link, VNODE)) return {};
    const Tree* tree = trees.module(from, link.module, error);
    if (tree == nullptr) return {};
    if (link.nr <= tree->count(VNODE)) return {tree, link.nr};
    error = tree->path() + ": there is no vNode " + std::to_string(link.nr);
    return {};
}

TypeRef nextType(Trees& trees, TypeRef type, bool fields, std::string& error) {
    if (!type) return {};
    const TNode node = type.node();
    if (node.typeCode == TYP_SYNONYM)
        return typeOf(trees, *type.tree, linkOf(*type.tree, TNODE, type.nr, "ref"), error);
    const bool selection = node.typeCode == TYP_SELECTION;
    const bool chain = node.typeCode == TYP_FIELDLIST && (fields || node.refMod == REF_OBJECT);
    if (!selection && !chain) return {};
    const Link end = linkOf(*type.tree, SNODE, lastOfChain(*type.tree, node.syntax), "value");
    if (isLink(end, TNODE)) return typeOf(trees, *type.tree, end, error);
    const ValueRef setting = valueOf(trees, *type.tree, end, error); // of an object: a type
    if (!setting) return {};
    return typeOf(trees, *setting.tree, linkOf(*setting.tree, VNODE, setting.nr, "ref"), error);
}

TypeRef Trees::skip(TypeRef type, Skip how, std::string& error) {
    std::vector<Key> path;
    End end{type, "", false};
    while (end.type) {
        const Key key{end.type.tree, end.type.nr, how};
        auto [at, isNew] = ends_.try_emplace(key, End{{}, "", true});
        if (!isNew) {
            if (at->second.running)
                end.error = end.type.tree->path() + ": tNode " + std::to_string(end.type.nr) +
                            ": the reference leads back to itself";
            else
                end = at->second;
            break;
        }
        path.push_back(key);
        if (how == Skip::Untagged && end.type.node().tags != 0) break;
        const TypeRef next = nextType(*this, end.type, how != Skip::Plain, end.error);
        if (!next) break;
        end.type = next;
    }
    end.running = false;
    for (const Key& key : path) ends_[key] = end;
    if (!end.error.empty()) error = end.error;
    return end.type;
}

TypeRef skipTypes(Trees& trees, TypeRef type, bool fields, std::string& error) {
    return trees.skip(type, fields ? Trees::Skip::Fields : Trees::Skip::Plain, error);
}

ValueRef Trees::skip(ValueRef value, std::string& error) {
    std::vector<ValueRef> path;
    ValueEnd end{value, "", false};
    while (end.value) {
        const ValueRef at = end.value;
        auto [known, isNew] = valueEnds_.try_emplace({at.tree, at.nr}, ValueEnd{{}, "", true});
        if (!isNew) {
            if (known->second.running)
                end.error = at.tree->path() + ": vNode " + std::to_string(at.nr) +
                            ": the reference leads back to itself";
            else
                end = known->second;
            break;
        }
        path.push_back(at);
        const VNode node = at.node();
        Link link;
        if (node.valCode == TYP_SYNONYM) link = linkOf(*at.tree, VNODE, at.nr, "ref");
        if (node.valCode == TYP_FIELDLIST)
            link = linkOf(*at.tree, SNODE, lastOfChain(*at.tree, node.deferred), "value");
        const ValueRef next = valueOf(*this, *at.tree, link, end.error);
        if (!next) break;
        end.value = next;
    }
    end.running = false;
    for (const ValueRef& at : path) valueEnds_[{at.tree, at.nr}] = end;
    if (!end.error.empty()) error = end.error;
    return end.value;
}

ValueRef skipValues(Trees& trees, ValueRef value, std::string& error) {
    return trees.skip(value, error);
}

} // namespace stx
