// Recursion of types.
//
// Only a type on a cycle of the graph "leads to its resolved type and to that one's components" can
// be reached from itself. The cycles (strongly connected components) are found once, without
// recursion. For a component on a cycle a search, depth first and in order, looks for something
// that ends the recursion before it comes back to the component. It stays among the types on the
// same cycles: a way that leaves them does not come back, so all that matters of it is whether
// anything on it ends recursion, which is noted.

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "check/check_cache.h"
#include "check/orvonum_end.h"
#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/flat.h"

namespace orvo {

namespace {

TypeNotes& notesOf(TNodeRef type) {
    return checkCacheOf(type.module).types;
}

/// The type that the record resolves to, current afterwards.
TNodeRef resolve(TNodeRef type) {
    readRec(type);
    skipTypes(true);
    return currentRec<KIND_TNODE>();
}

/// The components of a type, one after the other; those of extension addition groups in place.
class Components {
  public:
    explicit Components(TNodeRef type) : module_(type.module), root_(type.module) {
        readRec(type);
        const bool has = isStructured(tNode.typeCode) && tNode.typeCode != TYP_SELECTION;
        if (has) next_ = tNode.ref;
        left_ = nextRec<KIND_TNODE>(module_).nr;
    }
    /// The next component, current afterwards; none behind the last.
    TNodeRef next() {
        while (left_-- != 0) {
            if (next_ == 0) {
                if (afterGroup_ == 0) return {};
                next_ = std::exchange(afterGroup_, 0);
            }
            const TNodeRef component{module_, TNodeNr{next_}};
            readRec(component);
            next_ = tNode.next;
            if (tNode.typeCode == TYP_EXTADDGRP)
                afterGroup_ = std::exchange(next_, tNode.ref);
            else if (tNode.typeCode == TYP_EXTENSION_MARKER)
                root_.passMarker();
            else
                return component;
        }
        return {};
    }
    /// The component that was given last is no extension addition.
    [[nodiscard]] bool inRoot() const { return root_.isRoot(); }

  private:
    ModuleRec* module_;
    uint32_t next_ = 0;
    uint32_t afterGroup_ = 0;
    uint32_t left_ = 0;
    RootOfList root_;
};

/// What a record leads to: the type it resolves to or, when it is that itself, its components.
void addSuccessorsOf(TNodeRef type, std::vector<TNodeRef>& successors) {
    const TNodeRef resolved = resolve(type);
    if (resolved != type) {
        successors.push_back(resolved);
        return;
    }
    Components list(type);
    for (TNodeRef component = list.next(); component; component = list.next())
        successors.push_back(component);
}

// ---- cycles -------------------------------------------------------------------------------------

/// Strongly connected components by Tarjan's algorithm with a stack of its own.
class CycleFinder {
  public:
    void run(TNodeRef start) {
        for (const uint64_t key : marked_) marks_.erase(key); // the table keeps its memory
        marked_.clear();
        enter(start);
        while (!frames_.empty()) {
            Frame& top = frames_.back();
            if (top.at == successors_.size())
                leave();
            else
                follow(successors_[top.at++]);
        }
    }

  private:
    struct Frame {
        TNodeRef type;
        size_t first; // of its successors, which are the last ones while it is the last frame
        size_t at;
        bool toItself = false;
    };
    struct Mark {
        uint32_t index;
        uint32_t low;
    };

    Mark& markOf(TNodeRef type) { return marks_[keyOf(type)]; }
    void enter(TNodeRef type) {
        const auto index = static_cast<uint32_t>(marks_.size());
        markOf(type) = {index, index};
        marked_.push_back(keyOf(type));
        open_.push_back(type);
        const size_t first = successors_.size();
        addSuccessorsOf(type, successors_);
        frames_.push_back({type, first, first});
    }
    void follow(TNodeRef type) {
        Frame& top = frames_.back();
        if (type == top.type) top.toItself = true;
        if (notesOf(type).cycles.find(type.nr.nr) != nullptr) return;
        const auto mark = marks_.find(keyOf(type));
        if (mark == marks_.end()) return enter(type);
        Mark& own = markOf(top.type);
        own.low = std::min(own.low, mark->second.index);
    }
    void leave() {
        const Frame frame = frames_.back();
        frames_.pop_back();
        successors_.resize(frame.first);
        const Mark mark = markOf(frame.type);
        if (!frames_.empty()) {
            Mark& above = markOf(frames_.back().type);
            above.low = std::min(above.low, mark.low);
        }
        if (mark.low == mark.index) close(frame);
    }
    /// The types from the frame's on are a component.
    void close(const Frame& frame) {
        const bool onCycle = open_.back() != frame.type || frame.toItself;
        const uint32_t number = ++p5State.typeCycles;
        for (bool more = true; more;) {
            const TNodeRef type = open_.back();
            open_.pop_back();
            notesOf(type).cycles.set(type.nr.nr, {onCycle, number});
            more = type != frame.type;
        }
    }

    FlatMap<uint64_t, Mark> marks_;
    std::vector<uint64_t> marked_;
    std::vector<TNodeRef> open_;
    std::vector<Frame> frames_;
    std::vector<TNodeRef> successors_; // of the frames, one behind the other
};

CycleNote cycleOf(TNodeRef type) {
    const auto& cycles = notesOf(type).cycles;
    if (const CycleNote* known = cycles.find(type.nr.nr)) return *known;
    static CycleFinder finder; // one for all: its lists keep their memory
    finder.run(type);
    return *cycles.find(type.nr.nr);
}

// ---- what ends a recursion ----------------------------------------------------------------------

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

/// An alternative ends the recursion unless its CHOICE has no other one.
bool checkAllowedRecursionForAlternative(TNodeRef choice) {
    Components alternatives(choice);
    return alternatives.next() && alternatives.next();
}

/// A lower size bound admits the empty list.
bool admitsNone(const Endpoint& lower) {
    if (testInfinity(lower, false, TYP_INTEGER)) return true; // MIN is 0 for sizes
    return i64native(lower.value.val.number) <= ((lower.flags & SUBF_LOWER) == 0 ? -1 : 0);
}

/// A list ends the recursion when its size constraint admits the empty list.
bool checkAllowedRecursionForElement(TNodeRef list) {
    readRec(list);
    const KeepRec<KIND_SUB> keep;
    uint32_t left = nextRec<KIND_SUB>(list.module).nr;
    if (tNode.constraint <= 0 ||
        !hasSizeConstraint(list.module, static_cast<uint32_t>(tNode.constraint), left))
        return false;
    Endpoint lower;
    return getEndpoint(lower, false) && admitsNone(lower);
}

/// A visited component, of the type `parent`, decides whether the recursion may be.
bool checkAllowedRecursion(TNodeRef component, TNodeRef parent) {
    readRec(component);
    switch (magnitude(tNode.compStatus)) {
    case TCS_OPTIONAL: return true;
    case TCS_CHOICE: return checkAllowedRecursionForAlternative(parent);
    case TCS_MULTIPLE: return checkAllowedRecursionForElement(parent);
    default: return false;
    }
}

/// A type on the way of a search, with the components that are still to be looked at.
struct Level {
    explicit Level(TNodeRef resolved) : type(resolved), components(resolved) {}
    TNodeRef type;
    Components components;
};

/// Something on the ways on from a component ends recursion; noted for the types that were looked
/// at. A type on a cycle may lead to what is found through one that the walk has not left yet: only
/// when nothing is found it is noted.
bool leadsToEnd(TNodeRef component) {
    const TNodeRef start = resolve(component);
    std::vector<Level> levels;
    std::vector<TNodeRef> left; // types on cycles
    const auto enter = [&](TNodeRef type) {
        const auto [note, isNew] = notesOf(type).leadsToEnd.try_emplace(type.nr.nr, false);
        if (isNew) levels.emplace_back(type);
        return note->second;
    };
    bool found = enter(start);
    while (!found && !levels.empty()) {
        const TNodeRef parent = levels.back().type;
        const TNodeRef next = levels.back().components.next();
        if (next) {
            found = checkAllowedRecursion(next, parent) || enter(resolve(next));
            continue;
        }
        if (cycleOf(parent).onCycle) left.push_back(parent);
        levels.pop_back();
    }
    if (!found) return false;
    for (const TNodeRef& type : left) notesOf(type).leadsToEnd.erase(type.nr.nr);
    for (const Level& level : levels) notesOf(level.type).leadsToEnd[level.type.nr.nr] = true;
    return true;
}

/// The search for a way back to one component.
struct RecursionSearch {
    TNodeRef target;
    uint32_t cycle = 0;               // the strongly connected component of the target
    FlatSet<uint64_t> recursionStack; // what the search has entered
};

/// The first way on from a type on a cycle: through the first component that stays on the cycle,
/// and so on. True when something on it ends the recursion; it then cannot come back to the type
/// before. False when it comes back to itself: other ways have to be tried. Noted for all types on
/// the way.
bool firstWayEnds(TNodeRef start, uint32_t cycle) {
    std::vector<TNodeRef> way;
    const auto step = [&](TNodeRef& type, bool& ends) {
        Components components(type);
        for (TNodeRef next = components.next(); next; next = components.next()) {
            const bool stays = cycleOf(next).component == cycle;
            ends = checkAllowedRecursion(next, type) || (!stays && leadsToEnd(next));
            if (ends) return false;
            if (!stays) continue;
            type = resolve(next);
            return true;
        }
        return false;
    };
    bool ends = false;
    for (TNodeRef type = start;;) {
        const auto [note, isNew] = notesOf(type).firstWayEnds.try_emplace(type.nr.nr, false);
        if (!isNew) {
            ends = note->second;
            break;
        }
        way.push_back(type);
        if (!step(type, ends)) break;
    }
    for (const TNodeRef& type : way) notesOf(type).firstWayEnds[type.nr.nr] = ends;
    return ends;
}

/// Depth first over what the components of a type lead to, in order; true when something ends the
/// recursion before the target is reached.
bool findRecursion(RecursionSearch& search, TNodeRef start) {
    std::vector<Level> levels;
    levels.emplace_back(start);
    while (!levels.empty()) {
        const TNodeRef parent = levels.back().type;
        const TNodeRef component = levels.back().components.next();
        if (!component) {
            levels.pop_back();
            continue;
        }
        if (checkAllowedRecursion(component, parent)) return true;
        if (component == search.target) return false;
        if (!search.recursionStack.insert(keyOf(component)).second) continue;
        if (cycleOf(component).component != search.cycle) {
            if (leadsToEnd(component)) return true;
            continue;
        }
        const TNodeRef resolved = resolve(component);
        if (resolved == search.target) return false;
        if (resolved == component || search.recursionStack.insert(keyOf(resolved)).second)
            levels.emplace_back(resolved);
    }
    return false;
}

/// Something ends the recursion of the component, which is on a cycle.
bool recursionAllowed(TNodeRef component, uint32_t cycle) {
    const TNodeRef resolved = resolve(component);
    if (firstWayEnds(resolved, cycle)) return true;
    RecursionSearch search{component, cycle, {keyOf(component), keyOf(resolved)}};
    return findRecursion(search, resolved);
}

// ---- types without a value ----------------------------------------------------------------------
// Today's notation forbids recursion only where a type has no finite value: what is needed for a
// value of it, the components of its root that are not optional, one alternative, or the element of
// a list that is not empty, needs such a value again. All records that a start leads to are looked
// at together: those without needs have values, and then those whose needs have.

/// A record among those that are looked at.
struct ValueNeeds {
    TNodeRef record;
    bool any = false;                           // one of the needs is enough
    std::vector<std::pair<size_t, bool>> parts; // places of records; needed for a value or not
    std::vector<size_t> users;                  // those that need it
    size_t missing = 0;                         // needs without a value, as far as known
    bool hasValue = false;
    bool isReference = false; // it answers for no part of what it refers to
};

class ValueSearch {
  public:
    void run(TNodeRef start) {
        static_cast<void>(placeOf(start));
        for (size_t at = 0; at < records_.size(); ++at) findParts(at);
        for (size_t at = 0; at < records_.size(); ++at)
            if (records_[at].hasValue) ready_.push_back(at);
        while (!ready_.empty()) {
            const size_t at = ready_.back();
            ready_.pop_back();
            for (const size_t user : records_[at].users) met(user);
        }
        for (const ValueNeeds& needs : records_) note(needs);
    }

  private:
    size_t placeOf(TNodeRef record) {
        const auto [note, isNew] = places_.try_emplace(keyOf(record), records_.size());
        if (isNew) records_.emplace_back().record = record;
        return note->second;
    }
    void addPart(size_t user, TNodeRef part, bool needed) {
        const size_t place = placeOf(part);
        records_[user].parts.emplace_back(place, needed);
        if (!needed) return;
        records_[place].users.push_back(user);
        ++records_[user].missing;
    }
    void findParts(size_t at) {
        const TNodeRef record = records_[at].record;
        readRec(record);
        const bool filled = neverEmpty();
        const TNodeRef type = resolve(record);
        const bool isList = is(tNode.typeCode, TypeClass::List);
        const bool isChoice = tNode.typeCode == TYP_CHOICE;
        if (type != record) addPart(at, type, !isList);
        if (type == record || (isList && filled)) {
            Components components(type);
            for (TNodeRef part = components.next(); part; part = components.next()) {
                const bool mandatory =
                    components.inRoot() && magnitude(tNode.compStatus) != TCS_OPTIONAL;
                addPart(at, part, isList ? filled : isChoice || mandatory);
            }
        }
        ValueNeeds& needs = records_[at];
        needs.any = isChoice && type == record;
        needs.isReference = type != record;
        needs.hasValue = needs.missing == 0;
    }
    /// The current type, if a list, has no empty value.
    static bool neverEmpty() {
        Endpoint lower;
        const KeepRec<KIND_SUB> keep;
        return getSizeEndpoint(lower, false) && !admitsNone(lower);
    }
    void met(size_t user) {
        ValueNeeds& needs = records_[user];
        --needs.missing;
        if (needs.hasValue || (needs.missing != 0 && !needs.any)) return;
        needs.hasValue = true;
        ready_.push_back(user);
    }
    /// The parts that keep a record from having a value.
    void note(const ValueNeeds& needs) {
        notesOf(needs.record).hasNoValue.try_emplace(needs.record.nr.nr, false);
        if (needs.hasValue || needs.isReference) return;
        for (const auto& [place, needed] : needs.parts) {
            const ValueNeeds& part = records_[place];
            if (needed && !part.hasValue) notesOf(part.record).hasNoValue[part.record.nr.nr] = true;
        }
    }

    FlatMap<uint64_t, size_t> places_;
    std::vector<ValueNeeds> records_;
    std::vector<size_t> ready_;
};

/// The component, which is on a cycle, keeps what it is part of from having a value.
bool preventsValues(TNodeRef component) {
    const auto& notes = notesOf(component).hasNoValue;
    if (!notes.contains(component.nr.nr)) ValueSearch().run(component);
    return notes.find(component.nr.nr)->second;
}

/// RECURSION= asks for a finding at each type assignment on a cycle, whether it may be or not.
void reportTypeRecursion() {
    ModuleRec* const own = typeModule();
    const bool isAssignment =
        magnitude(tNode.compStatus) == TCS_HEADER && tNode.name != 0 && tNode.actParRec == 0;
    if (!isAssignment || own->options.recursion == 0) return;
    const ErrClass errClass = own->options.recursion == 1 ? ERR_WARNING : ERR_SEMANTIC;
    recordTNodeError(own, errClass, Msg::RecursionInType, tNodeName());
}

} // namespace

void markRecursion(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const CycleNote cycle = cycleOf(self);
    bool allowed = true;
    if (cycle.onCycle) {
        readRec(self);
        tNode.checkFlags |= CF_RECURSIVE;
        writeRec(self);
        allowed = magnitude(tNode.compStatus) == TCS_HEADER ||
                  (newNotation(self.module) ? !preventsValues(self)
                                            : recursionAllowed(self, cycle.component));
    }
    readRec(self);
    if (cycle.onCycle) reportTypeRecursion();
    if (!allowed) recordTNodeError(module, ERR_SEMANTIC, Msg::RecursiveTypeReference, tNodeName());
}

} // namespace orvo
