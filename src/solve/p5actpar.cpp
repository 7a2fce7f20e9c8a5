// Search of an instance for the actual parameters it was made with.
//
// A parameter is used when the record that stands for it is reached from the instance: the type
// record of a type, the value record of a value, the constraint record of a set. Every record is
// entered once in a search, so that recursion and shared definitions cost nothing.

#include "solve/p5actpar.h"

#include <string>
#include <unordered_set>
#include <vector>

#include "diag/orvoerr.h"
#include "solve/p5actpar_err.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "util/guard.h"
#include "util/text.h"

namespace orvo {

namespace {

enum class ActParList { Type = 1, Value = 3, Set = 5 };

/// One actual parameter and the record that stands for it in the instantiating module.
struct ActPar {
    ActParList list = ActParList::Value;
    uint32_t position = 0;
    int32_t name = 0;
    ModuleRec* module = nullptr;
    uint32_t record = 0;
};

/// A search for one parameter; the visited records are keyed by module and number.
struct Search {
    ActPar wanted;
    std::unordered_set<uint64_t> types, values;
    uint32_t depth = 0;
};
/// Definitions nested deeper than this are not searched; the parameter then counts as used.
constexpr uint32_t maxSearchDepth = 2000;

uint64_t keyOf(const ModuleRec* module, uint32_t nr) {
    return uint64_t{module->handle} << 32 | nr;
}

bool actParInTypNode(Search& search, TNodeRef type);
bool actParInValNode(Search& search, VNodeRef value);
bool actParInSub(Search& search, ModuleRec* module, uint32_t sub);

bool actParIsThisTNode(const Search& search, TNodeRef type, const TNode& node) {
    const ActPar& wanted = search.wanted;
    if (wanted.module != type.module) return false;
    if (wanted.list == ActParList::Type) return wanted.record == type.nr.nr;
    return wanted.list == ActParList::Set && node.constraint > 0 &&
           wanted.record == static_cast<uint32_t>(node.constraint);
}
bool actParIsThisVNode(const Search& search, VNodeRef value) {
    const ActPar& wanted = search.wanted;
    return wanted.list == ActParList::Value && wanted.module == value.module &&
           wanted.record == value.nr.nr;
}

/// Components, alternatives, the element, or what a reference leads to.
bool actParInTypCompList(Search& search, ModuleRec* module, uint32_t first) {
    uint32_t left = module == nullptr ? 0 : nextRec<KIND_TNODE>(module).nr;
    for (uint32_t nr = first; nr != 0 && left-- != 0;) {
        const TNodeRef component{module, TNodeNr{nr}};
        readRec(component);
        const bool last = magnitude(tNode.compStatus) == TCS_HEADER;
        nr = tNode.next;
        if (actParInTypNode(search, component)) return true;
        if (last) return false;
    }
    return false;
}

bool actParInValCompList(Search& search, ModuleRec* module, uint32_t first) {
    uint32_t left = module == nullptr ? 0 : nextRec<KIND_VNODE>(module).nr;
    for (uint32_t nr = first; nr != 0 && left-- != 0;) {
        const VNodeRef component{module, VNodeNr{nr}};
        readRec(component);
        const bool last = vNode.valStatus == VST_HEADER || vNode.valStatus == VST_ACTUAL;
        nr = vNode.next;
        if (actParInValNode(search, component)) return true;
        if (last) return false;
    }
    return false;
}

/// What a chain of field names leads to: the type it ends in, or the object it starts from.
bool actParInFieldListTNode(Search& search, TNodeRef type, const TNode& node) {
    if (node.refMod == REF_OBJECT) {
        if (actParInValNode(search, {type.module, VNodeNr{node.ref}})) return true;
    } else if (actParInTypCompList(search, type.module, node.ref)) {
        return true;
    }
    readRec(type);
    skipFieldList();
    return actParInTypNode(search, currentRec<KIND_TNODE>());
}

bool actParInTypDefVal(Search& search, ModuleRec* module, const TNode& node) {
    return node.defaultVal != 0 && actParInValNode(search, {module, VNodeNr{node.defaultVal}});
}

/// The defined values that give tag numbers.
bool actParInTags(Search& search, ModuleRec* module, uint32_t tag) {
    while (tag != 0) {
        readRec(module, TagNr{tag});
        tag = tagRec.next;
        if (tagRec.tagNr < 0 && actParInValNode(search, {module, VNodeNr{magnitude(tagRec.tagNr)}}))
            return true;
    }
    return false;
}

bool isListOfTypes(uint8_t kind) {
    return kind == TYP_SYNONYM || isStructured(kind);
}

bool actParInTypNode(Search& search, TNodeRef type) {
    if (!type.nr || type.module == nullptr ||
        !search.types.insert(keyOf(type.module, type.nr.nr)).second)
        return false;
    const Depth depth(search.depth, maxSearchDepth);
    if (depth.tooDeep()) return true;
    readRec(type);
    const TNode node = tNode;
    if (actParIsThisTNode(search, type, node)) return true;
    if (node.typeCode == TYP_FIELDLIST && node.syntax != 0) {
        if (actParInFieldListTNode(search, type, node)) return true;
    } else if (isListOfTypes(node.typeCode)) {
        ModuleRec* const module = node.typeCode == TYP_SYNONYM
                                      ? getModPtr(type.module, static_cast<uint32_t>(node.refMod))
                                      : type.module;
        if (actParInTypCompList(search, module, node.ref)) return true;
    }
    return actParInTags(search, type.module, node.tags) ||
           actParInValCompList(search, type.module, node.namedVals) ||
           actParInTypDefVal(search, type.module, node) ||
           (node.constraint > 0 &&
            actParInSub(search, type.module, static_cast<uint32_t>(node.constraint)));
}

bool actParInValNode(Search& search, VNodeRef value) {
    if (!value.nr || value.module == nullptr ||
        !search.values.insert(keyOf(value.module, value.nr.nr)).second)
        return false;
    const Depth depth(search.depth, maxSearchDepth);
    if (depth.tooDeep()) return true;
    if (actParIsThisVNode(search, value)) return true;
    readRec(value);
    const VNode node = vNode;
    if (node.refMod == REF_FORMAL)
        return actParInTypNode(search, {value.module, TNodeNr{node.ref}});
    if (node.refMod == REF_DEFERRED) return false;
    const bool isReference = node.valCode == TYP_SYNONYM && node.refMod > 0;
    ModuleRec* const module =
        isReference ? getModPtr(value.module, static_cast<uint32_t>(node.refMod)) : value.module;
    return actParInValCompList(search, module, node.ref);
}

/// A list of operands, each one in the constraint's module.
bool subUnion_Intersection_etc_etc(Search& search, ModuleRec* module, uint32_t sub) {
    uint32_t left = nextRec<KIND_SUB>(module).nr;
    while (sub != 0 && left-- != 0) {
        readRec(module, SubNr{sub});
        const uint32_t next = subRec.next;
        if (actParInSub(search, module, sub)) return true;
        sub = next;
    }
    return false;
}

bool subValues(Search& search, ModuleRec* module, uint32_t a, uint32_t b) {
    return actParInValNode(search, {module, VNodeNr{a}}) ||
           actParInValNode(search, {module, VNodeNr{b}});
}

bool actParInSub(Search& search, ModuleRec* module, uint32_t nr) {
    const Depth depth(search.depth, maxSearchDepth);
    if (depth.tooDeep()) return true;
    readRec(module, SubNr{nr});
    const SubRec sub = subRec;
    if ((sub.subFlags & SUBF_EXCEPTION) != 0 && subValues(search, module, sub.third, 0))
        return true;
    switch (sub.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_SERIAL:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT:
    case SUB_WITH_COMPONENTS: return subUnion_Intersection_etc_etc(search, module, sub.left);
    case SUB_PERMITTED_ALPHABET:
    case SUB_SIZE:
    case SUB_WITH_COMPONENT: return sub.left != 0 && actParInSub(search, module, sub.left);
    case SUB_RANGE: return subValues(search, module, sub.left, sub.right);
    case SUB_SINGLE_VALUE:
    case SUB_CONTAINED_SUBTYPE:
    case SUB_TABLE:
    case SUB_OPEN_TYPE: return subValues(search, module, sub.left, 0);
    case SUB_USER_DEFINED: return actParInValCompList(search, module, sub.left);
    default: return false;
    }
}

/// The actual parameters from record `first` of a module on: the types, the values and the sets.
std::vector<ActPar> actualParams(ModuleRec* module, uint32_t first) {
    std::vector<ActPar> lists[3];
    uint32_t position = 0;
    uint32_t left = nextRec<KIND_VNODE>(module).nr;
    for (uint32_t nr = first; nr != 0 && left-- != 0; nr = vNode.next) {
        readRec(module, VNodeNr{nr});
        ActPar entry{ActParList::Value, ++position, vNode.name, module, nr};
        if (vNode.refMod != REF_FORMAL) {
            lists[1].push_back(entry);
        } else if ((vNode.vflags & VF_SET) == 0) {
            entry.list = ActParList::Type;
            entry.record = vNode.ref;
            lists[0].push_back(entry);
        } else {
            readRec(module, TNodeNr{vNode.ref});
            entry.list = ActParList::Set;
            entry.record = tNode.constraint > 0 ? static_cast<uint32_t>(tNode.constraint) : 0;
            lists[2].push_back(entry);
        }
    }
    std::vector<ActPar> all = std::move(lists[0]);
    all.insert(all.end(), lists[1].begin(), lists[1].end());
    all.insert(all.end(), lists[2].begin(), lists[2].end());
    return all;
}

std::string getActParId(const ActPar& par) {
    std::string text = concat("(", std::to_string(par.position), ")");
    if (par.name != 0) text.append(" ").append(getStri(par.module, par.name));
    return text;
}

/// Reports what of the parameters from `first` on `used` does not find.
template <typename Used> bool reportUnused(ModuleRec* errors, ModuleRec* module, uint32_t first,
                                           uint32_t line, Used&& used) {
    bool ok = true;
    for (const ActPar& par : actualParams(module, first)) {
        Search search{par, {}, {}, 0};
        if (par.record == 0 || used(search)) continue;
        recordError(errors, ERR_SEMANTIC, Msg::UnusedActualParameters, line, getActParId(par));
        ok = false;
    }
    return ok;
}

} // namespace

bool checkTNodeActuals(ModuleRec* module) {
    if (!isInstantiatedTNode() || tNode.syntax <= 0 || tNode.refMod <= 0 || tNode.ref == 0)
        return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    ModuleRec* const own = recState.currTPtr[KIND_TNODE];
    const TNode node = tNode;
    const TNodeRef instance{getModPtr(own, static_cast<uint32_t>(node.refMod)), TNodeNr{node.ref}};
    return reportUnused(actErrModPtr(module, node.actParRec), own,
                        static_cast<uint32_t>(node.syntax), node.line,
                        [&](Search& search) { return actParInTypNode(search, instance); });
}

bool checkVNodeActuals(ModuleRec* module) {
    if (vNode.valCode != TYP_SYNONYM || vNode.deferred <= 0 || vNode.refMod <= 0 || vNode.ref == 0)
        return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    ModuleRec* const own = recState.currTPtr[KIND_VNODE];
    const VNode node = vNode;
    const VNodeRef instance{getModPtr(own, static_cast<uint32_t>(node.refMod)), VNodeNr{node.ref}};
    (void)reportUnused(actErrModPtr(module, node.actParRec), own,
                       static_cast<uint32_t>(node.deferred), node.line,
                       [&](Search& search) { return actParInValNode(search, instance); });
    return true;
}

} // namespace orvo
