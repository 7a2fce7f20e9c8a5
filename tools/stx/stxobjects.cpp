#include "stxobjects.h"

#include <algorithm>
#include <map>
#include <set>

#include "stxvalues.h"

// A set of objects is a type whose constraint is the set: objects are single values, other sets
// are contained. What a set comes to is worked out once, so that sets of sets do not double.

namespace stx {
namespace {

constexpr int maxNesting = 200;

struct Less {
    bool operator()(const ValueRef& a, const ValueRef& b) const {
        return std::pair(a.tree, a.nr) < std::pair(b.tree, b.nr);
    }
};
using Members = std::set<ValueRef, Less>;

/// Objects in the order of the text, each once.
struct List {
    std::vector<ValueRef> order;
    Members known;
    void add(ValueRef object) {
        if (known.insert(object).second) order.push_back(object);
    }
    void keep(const Members& others, bool those) {
        std::erase_if(order, [&](ValueRef object) { return others.contains(object) != those; });
        known = Members(order.begin(), order.end());
    }
};
struct Parts {
    List root, additions;
    bool extensible = false;
};

std::string at(TypeRef type) {
    return type.tree->path() + ": tNode " + std::to_string(type.nr);
}

bool isClassCode(uint8_t code) {
    return code >= TYP_CLASS && code <= TYP_ABSTR_STX;
}

Link refOf(const Tree& tree, Kind kind, uint32_t nr) {
    return tree.linkOf(kind, nr, fieldNamed(kind, "ref"));
}

} // namespace

struct ObjectMemo {
    struct Entry {
        Parts parts;
        std::string error;
        bool running = false;
    };
    std::map<std::pair<const Tree*, uint32_t>, Entry> sets;
};

namespace {

struct Work {
    Trees& trees;
    std::string error;
    int depth = 0;
};

Parts partsOf(Work& work, TypeRef set);
Parts evaluate(Work& work, const Tree& tree, uint32_t nr);

void fail(Work& work, std::string error) {
    if (work.error.empty()) work.error = std::move(error);
}

void addAll(Work& work, List& list, const List& others) {
    if (!work.trees.spend(others.order.size()))
        fail(work, "the sets of objects take too much work");
    if (!work.error.empty()) return;
    for (const ValueRef& object : others.order) list.add(object);
}

Parts objectParts(Work& work, ValueRef value) {
    Parts parts;
    const Result<ValueRef> end = valueBehind(work.trees, value);
    if (!end)
        fail(work, end.error);
    else if (isClassCode(end->node().valCode))
        parts.root.add(*end);
    else
        fail(work, end->tree->path() + ": vNode " + std::to_string(end->nr) + " is no object");
    return parts;
}

/// A set that stands in another one.
Parts containedParts(Work& work, ValueRef holder) {
    std::string error;
    const TypeRef set =
        typeOf(work.trees, *holder.tree, refOf(*holder.tree, VNODE, holder.nr), error);
    if (set) return partsOf(work, set);
    fail(work, error.empty() ? holder.tree->path() + ": vNode " + std::to_string(holder.nr) +
                                   " is not resolved"
                             : error);
    return {};
}

Parts unionParts(Work& work, const Tree& tree, uint32_t nr) {
    Parts parts;
    bool additions = false;
    for (const uint32_t operand : operands(tree, nr)) {
        if (tree.subRec(operand).subKind == SUB_EXTENSION_MARKER) {
            additions = parts.extensible = true;
            continue;
        }
        const Parts part = evaluate(work, tree, operand);
        addAll(work, additions ? parts.additions : parts.root, part.root);
        addAll(work, parts.additions, part.additions);
        parts.extensible |= part.extensible;
    }
    return parts;
}

Members membersOf(const Parts& parts) {
    Members all = parts.root.known;
    all.insert(parts.additions.known.begin(), parts.additions.known.end());
    return all;
}

/// Intersection, serial constraints (`those`), or EXCEPT.
Parts chosenParts(Work& work, const Tree& tree, uint32_t nr, bool those) {
    Parts parts;
    bool first = true;
    for (const uint32_t operand : operands(tree, nr)) {
        const Parts part = evaluate(work, tree, operand);
        if (first) {
            parts = part;
        } else {
            const Members others = membersOf(part);
            if (!work.trees.spend(others.size() + parts.root.order.size()))
                fail(work, "the sets of objects take too much work");
            parts.root.keep(others, those);
            parts.additions.keep(others, those);
            parts.extensible |= those && part.extensible;
        }
        first = false;
    }
    return parts;
}

Parts evaluate(Work& work, const Tree& tree, uint32_t nr) {
    if (work.depth > maxNesting || !work.trees.spend(1))
        fail(work, tree.path() + ": subRec " + std::to_string(nr) +
                       ": the sets are nested too deep, or too many");
    if (!work.error.empty()) return {};
    ++work.depth;
    const SubRec sub = tree.subRec(nr);
    Parts parts;
    switch (sub.subKind) {
    case SUB_UNION: parts = unionParts(work, tree, nr); break;
    case SUB_INTERSECTION:
    case SUB_SERIAL: parts = chosenParts(work, tree, nr, true); break;
    case SUB_EXCEPT: parts = chosenParts(work, tree, nr, false); break;
    case SUB_SINGLE_VALUE: parts = objectParts(work, {&tree, sub.left}); break;
    case SUB_CONTAINED_SUBTYPE: parts = containedParts(work, {&tree, sub.left}); break;
    case SUB_EXTENSION_MARKER: parts.extensible = true; break;
    case SUB_EXCEPTION: break;
    default: fail(work, tree.path() + ": subRec " + std::to_string(nr) + " is no set of objects");
    }
    --work.depth;
    return parts;
}

ObjectMemo& memoOf(Trees& trees) {
    if (!trees.objects) trees.objects = std::make_shared<ObjectMemo>();
    return *trees.objects;
}

/// Along references to the type that holds the set.
TypeRef holderOf(Work& work, TypeRef set) {
    std::string error;
    skipTypes(work.trees, set, true, error); // settles that it ends
    TypeRef holder = set;
    while (holder && error.empty() && holder.node().constraint == 0)
        holder = nextType(work.trees, holder, true, error);
    if (!error.empty()) fail(work, error);
    return holder;
}

Parts partsOf(Work& work, TypeRef set) {
    const TypeRef holder = holderOf(work, set);
    if (!holder) fail(work, at(set) + " is no set of objects");
    if (!work.error.empty()) return {};
    auto [kept, isNew] = memoOf(work.trees).sets.try_emplace({holder.tree, holder.nr});
    ObjectMemo::Entry& entry = kept->second;
    if (entry.running) fail(work, at(holder) + ": the set contains itself");
    if (isNew) {
        entry.running = true;
        const int32_t constraint = holder.node().constraint;
        if (constraint > 0)
            entry.parts = evaluate(work, *holder.tree, static_cast<uint32_t>(constraint));
        else
            fail(work, at(holder) + ": the set is not parsed");
        entry.error = work.error;
        entry.running = false;
    }
    if (!entry.error.empty()) fail(work, entry.error);
    return entry.parts;
}

/// The first table constraint in a constraint, 0 = none.
uint32_t findTable(const Tree& tree, uint32_t nr, int depth) {
    const uint8_t kind = tree.subRec(nr).subKind;
    if (kind == SUB_TABLE) return nr;
    const bool operators = kind >= SUB_UNION && kind <= SUB_EXCEPT;
    if (!operators || depth > maxNesting) return 0;
    for (const uint32_t operand : operands(tree, nr)) {
        const uint32_t found = findTable(tree, operand, depth + 1);
        if (found != 0) return found;
    }
    return 0;
}

RelationPath pathOf(Trees& trees, const Tree& tree, const Relation& relation) {
    RelationPath path;
    path.level = relation.dots;
    for (const uint32_t nr : relation.steps) {
        RelationPath::Step step;
        const Link link = tree.linkOf(SNODE, nr, fieldNamed(SNODE, "value"));
        std::string error;
        step.component = typeOf(trees, tree, link, error);
        if (step.component)
            step.name = step.component.tree->text(step.component.node().name);
        else if (link.target == Target::String)
            step.name = tree.text(link.nr);
        path.steps.push_back(step);
    }
    return path;
}

/// The class that a type comes to, of the built-in ones that of the built-in module.
Result<TypeRef> classOf(Trees& trees, TypeRef type) {
    if (!type) return failure<TypeRef>("no class");
    std::string error;
    TypeRef end = skipTypes(trees, type, true, error);
    const uint8_t code = end.node().typeCode;
    if (error.empty() && !isClassCode(code)) error = at(type) + " is no class";
    if (!error.empty()) return failure<TypeRef>(error);
    if (code == TYP_CLASS) return {end, ""};
    const Tree* tree = trees.open(builtinModule, error);
    const char* name = code == TYP_TYPE_ID ? "TYPE-IDENTIFIER" : "ABSTRACT-SYNTAX";
    if (tree != nullptr) end = skipTypes(trees, {tree, findType(*tree, name)}, true, error);
    return {end, error};
}

FieldKind fieldKind(Trees& trees, TypeRef field) {
    const TNode node = field.node();
    const bool set = (node.nodeFlags & NF_SET) != 0;
    if (node.typeCode == TYP_OPEN && node.name >= 0 && !set) return FieldKind::Type;
    std::string error;
    const bool object = isClassCode(skipTypes(trees, field, true, error).node().typeCode);
    if (object) return set ? FieldKind::ObjectSet : FieldKind::Object;
    return set ? FieldKind::ValueSet : FieldKind::Value;
}

/// Puts what a value record says of a field into the setting.
void apply(Trees& trees, Setting& setting, ValueRef given, std::string& error) {
    if (setting.kind == FieldKind::Value || setting.kind == FieldKind::Object)
        setting.value = given;
    else
        setting.type = typeOf(trees, *given.tree, refOf(*given.tree, VNODE, given.nr), error);
}

std::string wordOf(const Tree& tree, uint32_t nr) {
    const SNode node = tree.sNode(nr);
    if (node.token == TOK_TYPEID) return std::string(tree.text(node.value));
    std::string name(codeName(tokenNames, node.token)); // a reserved word
    if (name.starts_with("TOK_")) name.erase(0, 4);
    std::ranges::replace(name, '_', '-');
    return name;
}

std::vector<SyntaxEntry> syntaxList(const Tree& tree, int64_t first, int depth) {
    std::vector<SyntaxEntry> list;
    for (const uint32_t nr : listFrom(tree, SNODE, first)) {
        const SNode node = tree.sNode(nr);
        SyntaxEntry entry;
        switch (node.token) {
        case TOK_COMMA: entry.kind = SyntaxEntry::Kind::Comma; break;
        case TOK_LBRACKET:
            entry.kind = SyntaxEntry::Kind::Optional;
            if (depth < maxNesting) entry.group = syntaxList(tree, node.value, depth + 1);
            break;
        case TOK_TYPEFIELDID:
        case TOK_VALUEFIELDID:
            entry.kind = SyntaxEntry::Kind::Field;
            entry.text = tree.text(node.value);
            break;
        default: entry.text = wordOf(tree, nr); break;
        }
        list.push_back(std::move(entry));
    }
    return list;
}

SyntaxEntry word(const char* text) {
    return {SyntaxEntry::Kind::Word, text, {}};
}
SyntaxEntry fieldEntry(const char* text) {
    return {SyntaxEntry::Kind::Field, text, {}};
}

} // namespace

Result<Table> tableOf(Trees& trees, TypeRef type) {
    std::string error;
    skipTypes(trees, type, true, error); // settles that it ends
    for (TypeRef link = type; link && error.empty(); link = nextType(trees, link, true, error)) {
        const uint32_t nr = findTable(*link.tree, constraintOf(*link.tree, link.nr), 0);
        if (nr == 0) continue;
        Table table;
        const ValueRef holder{link.tree, link.tree->subRec(nr).left};
        table.set = typeOf(trees, *link.tree, refOf(*link.tree, VNODE, holder.nr), error);
        if (!table.set && error.empty()) error = at(link) + ": the set is not resolved";
        for (const Relation& relation : relations(*link.tree, nr))
            table.relations.push_back(pathOf(trees, *link.tree, relation));
        return {table, error};
    }
    return {{}, error};
}

Result<ObjectSet> objectsOf(Trees& trees, TypeRef set) {
    if (!set) return failure<ObjectSet>("no set of objects");
    const Result<TypeRef> governor = classOf(trees, set);
    if (!governor) return failure<ObjectSet>(governor.error);
    Work work{trees, {}};
    const Parts parts = partsOf(work, set);
    if (!work.error.empty()) return failure<ObjectSet>(work.error);
    List all = parts.root;
    for (const ValueRef& object : parts.additions.order) all.add(object);
    return {
        {*governor, all.order, static_cast<uint32_t>(parts.root.order.size()), parts.extensible},
        ""};
}

Result<std::vector<Setting>> fieldsOfClass(Trees& trees, TypeRef classType) {
    const Result<TypeRef> found = classOf(trees, classType);
    if (!found) return failure<std::vector<Setting>>(found.error);
    std::vector<Setting> fields;
    for (const uint32_t nr : components(*found->tree, found->nr)) {
        Setting setting;
        setting.field = {found->tree, nr};
        setting.name = found->tree->text(setting.field.node().name);
        setting.kind = fieldKind(trees, setting.field);
        fields.push_back(setting);
    }
    return {fields, ""};
}

Result<std::vector<SyntaxEntry>> syntaxOfClass(Trees& trees, TypeRef classType) {
    std::string error;
    const TypeRef end = skipTypes(trees, classType, true, error);
    const uint8_t code = end.node().typeCode;
    if (error.empty() && !isClassCode(code)) error = at(classType) + " is no class";
    if (!error.empty()) return failure<std::vector<SyntaxEntry>>(error);
    const bool builtin = code != TYP_CLASS || end.tree->path() == builtinModule;
    if (!builtin) return {syntaxList(*end.tree, end.node().syntaxList, 0), ""};
    std::vector<SyntaxEntry> list = {fieldEntry("Type"), word("IDENTIFIED"), word("BY"),
                                     fieldEntry("id")}; // X.681 (02/2021) annexes A and B
    if (code == TYP_ABSTR_STX)
        list.push_back({SyntaxEntry::Kind::Optional,
                        "",
                        {word("HAS"), word("PROPERTY"), fieldEntry("property")}});
    return {list, ""};
}

Result<Settings> settings(Trees& trees, ValueRef object) {
    const Result<ValueRef> end = valueBehind(trees, object);
    if (!end) return failure<Settings>(end.error);
    if (!isClassCode(end->node().valCode))
        return failure<Settings>(end->tree->path() + ": vNode " + std::to_string(end->nr) +
                                 " is no object");
    std::string error;
    const Link governor = end->tree->linkOf(VNODE, end->nr, fieldNamed(VNODE, "govType"));
    Settings result;
    result.classType = typeOf(trees, *end->tree, governor, error);
    const Result<std::vector<Setting>> fields = fieldsOfClass(trees, result.classType);
    if (!fields) return failure<Settings>(error.empty() ? fields.error : error);
    result.fields = *fields;
    std::map<std::string_view, ValueRef> given;
    for (const uint32_t nr : componentValues(*end->tree, end->nr))
        given.emplace(end->tree->text(end->tree->vNode(nr).name), ValueRef{end->tree, nr});
    for (Setting& setting : result.fields) {
        const auto found = given.find(setting.name);
        const uint32_t byDefault = setting.field.node().defaultVal;
        if (found != given.end()) {
            setting.origin = Setting::Origin::Given;
            apply(trees, setting, found->second, error);
        } else if (byDefault != 0) {
            setting.origin = Setting::Origin::Default;
            apply(trees, setting, {setting.field.tree, byDefault}, error);
        }
    }
    const Result<std::vector<SyntaxEntry>> syntax = syntaxOfClass(trees, result.classType);
    result.syntax = *syntax;
    return {result, error.empty() ? syntax.error : error};
}

} // namespace stx
