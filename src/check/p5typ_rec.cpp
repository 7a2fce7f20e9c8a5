// Recursion of types.
//
// Only a type on a cycle of the graph "leads to its resolved type and to that one's components" can
// be reached from itself. The cycles (strongly connected components) are found once, without
// recursion; the search that decides whether the recursion can end is made for the types on them
// alone.

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "check/orvonum_end.h"
#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

uint64_t keyOf(const TNodeRef& type) {
    return uint64_t{type.module->handle} << 32 | type.nr.nr;
}

struct RecursionState {
    std::unordered_map<uint64_t, bool> onCycle; // of every type whose component is complete
};
RecursionState recursionState;

/// The type that the record resolves to, current afterwards.
TNodeRef resolve(TNodeRef type) {
    readRec(type);
    skipTypes(true);
    return currentRec<KIND_TNODE>();
}

/// The components of a structured type, else none.
std::vector<TNodeRef> componentsOf(TNodeRef type) {
    std::vector<TNodeRef> components;
    readRec(type);
    if (!isStructured(tNode.typeCode) || tNode.typeCode == TYP_SELECTION) return components;
    uint32_t left = nextRec<KIND_TNODE>(type.module).nr;
    for (uint32_t nr = tNode.ref; nr != 0 && left-- != 0;) {
        components.push_back({type.module, TNodeNr{nr}});
        readRec(components.back());
        nr = tNode.next;
    }
    return components;
}

/// What a record leads to: the type it resolves to or, when it is that itself, its components.
std::vector<TNodeRef> successorsOf(TNodeRef type) {
    const TNodeRef resolved = resolve(type);
    if (resolved != type) return {resolved};
    return componentsOf(type);
}

/// Strongly connected components by Tarjan's algorithm with a stack of its own.
class CycleFinder {
  public:
    void run(TNodeRef start) {
        enter(start);
        while (!frames_.empty()) {
            Frame& top = frames_.back();
            if (top.at == top.successors.size())
                leave();
            else
                follow(top.successors[top.at++]);
        }
    }

  private:
    struct Frame {
        uint64_t key;
        std::vector<TNodeRef> successors;
        size_t at = 0;
        bool toItself = false;
    };
    struct Mark {
        uint32_t index;
        uint32_t low;
    };

    void enter(TNodeRef type) {
        const uint64_t key = keyOf(type);
        const auto index = static_cast<uint32_t>(marks_.size());
        marks_[key] = {index, index};
        open_.push_back(key);
        frames_.push_back({key, successorsOf(type), 0, false});
    }
    void follow(TNodeRef type) {
        const uint64_t key = keyOf(type);
        Frame& top = frames_.back();
        if (key == top.key) top.toItself = true;
        if (recursionState.onCycle.contains(key)) return;
        const auto mark = marks_.find(key);
        if (mark == marks_.end())
            enter(type);
        else
            marks_[top.key].low = std::min(marks_[top.key].low, mark->second.index);
    }
    void leave() {
        const Frame frame = std::move(frames_.back());
        frames_.pop_back();
        const Mark mark = marks_[frame.key];
        if (!frames_.empty()) {
            uint32_t& low = marks_[frames_.back().key].low;
            low = std::min(low, mark.low);
        }
        if (mark.low != mark.index) return;
        const bool single = open_.back() == frame.key;
        for (bool more = true; more;) {
            const uint64_t key = open_.back();
            open_.pop_back();
            recursionState.onCycle[key] = !single || frame.toItself;
            more = key != frame.key;
        }
    }

    std::unordered_map<uint64_t, Mark> marks_;
    std::vector<uint64_t> open_;
    std::vector<Frame> frames_;
};

bool isOnCycle(TNodeRef type) {
    const auto known = recursionState.onCycle.find(keyOf(type));
    if (known != recursionState.onCycle.end()) return known->second;
    CycleFinder().run(type);
    return recursionState.onCycle[keyOf(type)];
}

/// A SIZE constraint is part of the constraint.
bool hasSizeConstraint(ModuleRec* module, uint32_t sub, uint32_t& left) {
    while (sub != 0 && left != 0) {
        --left;
        readRec(module, SubNr{sub});
        const SubRec node = subRec;
        if (node.subKind == SUB_SIZE) return true;
        const bool isOperator = node.subKind >= SUB_UNION && node.subKind <= SUB_ALL_EXCEPT;
        if (isOperator && hasSizeConstraint(module, node.left, left)) return true;
        sub = node.next;
    }
    return false;
}

/// The search for a way back to one record.
struct RecursionSearch {
    TNodeRef target;
    bool recursionAllowed = false;
    std::unordered_set<uint64_t> recursionStack; // what the search has entered
};

/// An alternative ends the recursion unless its CHOICE has no other one.
bool checkAllowedRecursionForAlternative(const std::vector<TNodeRef>& siblings) {
    uint32_t alternatives = 0;
    for (const TNodeRef& sibling : siblings) {
        readRec(sibling);
        if (tNode.typeCode != TYP_EXTENSION_MARKER) ++alternatives;
    }
    return alternatives > 1;
}

/// A list ends the recursion when its size constraint admits the empty list.
bool checkAllowedRecursionForElement(TNodeRef list) {
    readRec(list);
    uint32_t left = nextRec<KIND_SUB>(list.module).nr;
    if (tNode.constraint <= 0 ||
        !hasSizeConstraint(list.module, static_cast<uint32_t>(tNode.constraint), left))
        return false;
    readRec(list);
    Endpoint lower;
    return getSizeEndpoint(lower, false) && lower.value.val.number == I64{};
}

/// A visited component, of the structure `parent`, decides whether the recursion may be.
bool checkAllowedRecursion(TNodeRef component, TNodeRef parent,
                           const std::vector<TNodeRef>& siblings) {
    readRec(component);
    switch (magnitude(tNode.compStatus)) {
    case TCS_OPTIONAL: return true;
    case TCS_CHOICE: return checkAllowedRecursionForAlternative(siblings);
    case TCS_MULTIPLE: return checkAllowedRecursionForElement(parent);
    default: return false;
    }
}

/// Depth first over what the components of a type lead to, in order; true when the target is
/// reached.
bool findRecursion(RecursionSearch& search, TNodeRef type) {
    struct Level {
        TNodeRef parent;
        std::vector<TNodeRef> components;
        size_t at = 0;
    };
    std::vector<Level> levels;
    levels.push_back({type, componentsOf(type), 0});
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.at == level.components.size()) {
            levels.pop_back();
            continue;
        }
        const TNodeRef component = level.components[level.at++];
        if (!search.recursionAllowed)
            search.recursionAllowed =
                checkAllowedRecursion(component, level.parent, level.components);
        if (component == search.target) return true;
        if (!search.recursionStack.insert(keyOf(component)).second) continue;
        const TNodeRef resolved = resolve(component);
        if (resolved == search.target) return true;
        if (resolved != component && !search.recursionStack.insert(keyOf(resolved)).second)
            continue;
        levels.push_back({resolved, componentsOf(resolved), 0});
    }
    return false;
}

} // namespace

void markRecursion(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    RecursionSearch search{self, false, {keyOf(self)}};
    bool recursive = false;
    if (isOnCycle(self)) {
        const TNodeRef resolved = resolve(self);
        search.recursionStack.insert(keyOf(resolved));
        recursive = findRecursion(search, resolved);
    }
    readRec(self);
    if (!recursive) return;
    tNode.checkFlags |= CF_RECURSIVE;
    writeRec(self);
    if (search.recursionAllowed || magnitude(tNode.compStatus) == TCS_HEADER) return;
    recordTNodeError(module, ERR_SEMANTIC, Msg::RecursiveTypeReference, tNodeName());
}

} // namespace orvo
