#include "stxcomponents.h"

#include <algorithm>
#include <map>
#include <set>

// The types of modules as a generator of code goes through them: which there are, in which order
// they can be declared, which are messages, what they are called.

namespace stx {
namespace {

struct Less {
    bool operator()(const TypeRef& a, const TypeRef& b) const {
        return std::pair(a.tree, a.nr) < std::pair(b.tree, b.nr);
    }
};

bool isObjectLike(Trees& trees, TypeRef type) {
    std::string error;
    const uint8_t code = skipTypes(trees, type, true, error).node().typeCode;
    return code >= TYP_CLASS && code <= TYP_ABSTR_STX;
}

/// What a type is made of and, last, what it refers to.
std::vector<TypeRef> successors(Trees& trees, TypeRef type, std::string& error) {
    std::vector<TypeRef> list;
    const uint8_t code = type.node().typeCode;
    if (code == TYP_CLASS || code == TYP_INSTANCE_OF) return list;
    if (code != TYP_SELECTION)
        for (const uint32_t nr : components(*type.tree, type.nr)) list.push_back({type.tree, nr});
    const TypeRef next = nextType(trees, type, true, error);
    if (next) list.push_back(next);
    return list;
}

/// Depth first (Tarjan's strongly connected components), without recursion: every node of the
/// types is a vertex, so that a circle through nodes without a name is one too.
struct Search {
    Trees& trees;
    std::string error{};
    struct Vertex {
        uint32_t order = 0, low = 0;
        bool open = false;
    };
    struct Frame {
        TypeRef type;
        std::vector<TypeRef> next;
        size_t at = 0;
    };
    std::map<TypeRef, Vertex, Less> seen{};
    std::vector<TypeRef> stack{};
    std::vector<Frame> path{};
    uint32_t count = 0;
};

void enter(Search& search, TypeRef type) {
    search.seen[type] = {++search.count, search.count, true};
    search.stack.push_back(type);
    search.path.push_back({type, successors(search.trees, type, search.error)});
}

/// The vertices of the component that is complete with the last frame of the path; empty: it is
/// not.
std::vector<TypeRef> leave(Search& search) {
    const Search::Frame frame = std::move(search.path.back());
    search.path.pop_back();
    const Search::Vertex vertex = search.seen[frame.type];
    std::vector<TypeRef> members;
    if (!search.path.empty()) {
        Search::Vertex& outer = search.seen[search.path.back().type];
        outer.low = std::min(outer.low, vertex.low);
    }
    if (vertex.low != vertex.order) return members;
    TypeRef member;
    do {
        member = search.stack.back();
        search.stack.pop_back();
        search.seen[member].open = false;
        members.push_back(member);
    } while (member != frame.type);
    return members;
}

/// Goes on to a vertex that is new; false when the frame is done.
bool advance(Search& search) {
    Search::Frame& frame = search.path.back();
    while (frame.at < frame.next.size()) {
        const TypeRef to = frame.next[frame.at++];
        const auto known = search.seen.find(to);
        if (known == search.seen.end()) {
            enter(search, to);
            return true;
        }
        if (!known->second.open) continue;
        Search::Vertex& vertex = search.seen[frame.type];
        vertex.low = std::min(vertex.low, known->second.order);
    }
    return false;
}

constexpr const char* reservedWords[] = {"EOF",
                                         "FALSE",
                                         "NULL",
                                         "TRUE",
                                         "_Alignas",
                                         "_Alignof",
                                         "_Atomic",
                                         "_Bool",
                                         "_Complex",
                                         "_Generic",
                                         "_Imaginary",
                                         "_Noreturn",
                                         "_Static_assert",
                                         "_Thread_local",
                                         "alignas",
                                         "alignof",
                                         "and",
                                         "and_eq",
                                         "asm",
                                         "assert",
                                         "auto",
                                         "bitand",
                                         "bitor",
                                         "bool",
                                         "break",
                                         "case",
                                         "catch",
                                         "char",
                                         "char16_t",
                                         "char32_t",
                                         "char8_t",
                                         "class",
                                         "co_await",
                                         "co_return",
                                         "co_yield",
                                         "compl",
                                         "concept",
                                         "const",
                                         "const_cast",
                                         "consteval",
                                         "constexpr",
                                         "constinit",
                                         "continue",
                                         "decltype",
                                         "default",
                                         "delete",
                                         "do",
                                         "double",
                                         "dynamic_cast",
                                         "else",
                                         "enum",
                                         "errno",
                                         "explicit",
                                         "export",
                                         "extern",
                                         "false",
                                         "float",
                                         "for",
                                         "friend",
                                         "goto",
                                         "if",
                                         "inline",
                                         "int",
                                         "long",
                                         "mutable",
                                         "namespace",
                                         "new",
                                         "noexcept",
                                         "not",
                                         "not_eq",
                                         "nullptr",
                                         "offsetof",
                                         "operator",
                                         "or",
                                         "or_eq",
                                         "private",
                                         "protected",
                                         "public",
                                         "register",
                                         "reinterpret_cast",
                                         "requires",
                                         "restrict",
                                         "return",
                                         "short",
                                         "signed",
                                         "sizeof",
                                         "static",
                                         "static_assert",
                                         "static_cast",
                                         "stderr",
                                         "stdin",
                                         "stdout",
                                         "struct",
                                         "switch",
                                         "template",
                                         "this",
                                         "thread_local",
                                         "throw",
                                         "true",
                                         "try",
                                         "typedef",
                                         "typeid",
                                         "typename",
                                         "typeof",
                                         "union",
                                         "unsigned",
                                         "using",
                                         "va_arg",
                                         "va_end",
                                         "va_list",
                                         "va_start",
                                         "virtual",
                                         "void",
                                         "volatile",
                                         "wchar_t",
                                         "while",
                                         "xor",
                                         "xor_eq"};
static_assert(std::ranges::is_sorted(reservedWords, {},
                                     [](const char* word) { return std::string_view(word); }));

/// Numbers behind the second and further ones of a name, passing over those that are taken.
void makeUnique(std::vector<std::string>& names) {
    std::set<std::string> wanted(names.begin(), names.end()), taken;
    std::map<std::string, uint32_t> last;
    for (std::string& name : names) {
        if (taken.insert(name).second) continue;
        std::string next;
        uint32_t& number = last.try_emplace(name, 1).first->second;
        do next = name + '_' + std::to_string(++number);
        while (wanted.contains(next) || taken.contains(next));
        name = next;
        taken.insert(name);
    }
}

} // namespace

std::vector<TypeRef> definedTypes(Trees& trees, const Tree& tree) {
    std::vector<TypeRef> list;
    for (const uint32_t nr : typeAssignments(tree))
        if (!tree.tNode(nr).isParameterized() && !isObjectLike(trees, {&tree, nr}))
            list.push_back({&tree, nr});
    for (uint32_t nr = 1; nr <= tree.count(TNODE); ++nr)
        if (tree.tNode(nr).compStatus == -TCS_HEADER && !isObjectLike(trees, {&tree, nr}))
            list.push_back({&tree, nr});
    return list;
}

Result<std::vector<Declaration>> declarationOrder(Trees& trees, const std::vector<TypeRef>& types) {
    const std::set<TypeRef, Less> wanted(types.begin(), types.end());
    std::vector<Declaration> list;
    uint32_t circles = 0;
    Search search{trees};
    for (const TypeRef& start : types) {
        if (!start || search.seen.contains(start)) continue;
        enter(search, start);
        while (!search.path.empty()) {
            if (advance(search)) continue;
            std::vector<TypeRef> members = leave(search);
            if (members.empty()) continue;
            const bool circle = members.size() > 1;
            if (circle) ++circles;
            std::ranges::reverse(members); // as they were entered
            for (const TypeRef& member : members)
                if (wanted.contains(member)) list.push_back({member, circle ? circles : 0});
        }
    }
    if (!search.error.empty()) return failure<std::vector<Declaration>>(search.error);
    return {list, ""};
}

PduTypes pduTypes(Trees& trees, const std::vector<TypeRef>& types) {
    std::map<TypeRef, TypeRef, Less> heads; // the type that a node is part of
    std::set<const Tree*> files;
    for (const TypeRef& type : types) {
        files.insert(type.tree);
        std::vector<TypeRef> open = {type};
        while (!open.empty()) {
            const TypeRef node = open.back();
            open.pop_back();
            if (!heads.try_emplace(node, type).second) continue;
            for (const uint32_t nr : components(*node.tree, node.nr))
                open.push_back({node.tree, nr});
        }
    }
    std::set<TypeRef, Less> referred;
    for (const Tree* tree : files)
        for (uint32_t nr = 1; nr <= tree->count(TNODE); ++nr) {
            std::string error;
            const TypeRef node{tree, nr}, to = nextType(trees, node, true, error);
            const auto head = heads.find(node);
            if (to && (head == heads.end() || head->second != to)) referred.insert(to);
        }
    PduTypes pdus;
    for (const TypeRef& type : types) {
        if ((type.node().entryFlags & 0x40) != 0)
            pdus.entries.push_back(type);
        else if (!referred.contains(type))
            pdus.unreferred.push_back(type);
    }
    return pdus;
}

std::string cName(std::string_view stored) {
    std::string name(stored);
    if (std::ranges::binary_search(reservedWords, name, std::less<>())) name += '_';
    return name;
}

std::vector<std::string> cNames(const std::vector<TypeRef>& types) {
    std::map<std::string_view, std::set<const Tree*>> users;
    for (const TypeRef& type : types) users[type.tree->text(type.node().name)].insert(type.tree);
    std::vector<std::string> names;
    for (const TypeRef& type : types) {
        const std::string_view name = type.tree->text(type.node().name);
        names.push_back(users[name].size() > 1
                            ? std::string(type.tree->moduleName()) + '_' + std::string(name)
                            : cName(name));
    }
    makeUnique(names);
    return names;
}

std::vector<std::string> cNames(const Structure& structure) {
    std::vector<std::string> names;
    for (const Part& part : structure.parts) {
        const TypeRef type = part.component.type;
        names.push_back(cName(type.tree->text(type.node().name)));
    }
    makeUnique(names);
    return names;
}

} // namespace stx
