// Instances of parameterized definitions: the search for the actual parameters they were made with,
// and the attribution of errors, as what is wrong inside one is the affair of who instantiated.
//
// A parameter is used when the record that stands for it is reached from the instance: the type
// record of a type, the value record of a value, the constraint record of a set. One walk over the
// instance notes all it reaches. Every record is entered once, and the walk does not go on from
// records outside instances: the records of a parameter list are known to the copies alone, so the
// cost is the size of the instance, whatever it refers to.

#include "solve/p5actpar.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "diag/orvoerr.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_stx.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/rec_notes.h"
#include "util/text.h"

namespace orvo {

namespace {

enum class ActParList { Type = 1, Value = 3, Set = 5 };

/// One actual parameter and the record that stands for it in the instantiating module.
struct ActPar {
    ActParList list = ActParList::Value;
    uint32_t position = 0;
    int32_t name = 0;
    uint32_t record = 0;
};

/// What a walk has reached, and what it has still to look at.
struct Search {
    RecVisits types, values, sets;
    std::vector<TNodeRef> typNodeStack;
    std::vector<VNodeRef> valNodeStack;
    std::vector<SubRef> setNodeStack;
};

// ---- what is to be looked at --------------------------------------------------------------------

void enterType(Search& search, ModuleRec* module, uint32_t nr) {
    if (module == nullptr || nr == 0 || !search.types.enter(module, nr)) return;
    search.typNodeStack.push_back({module, TNodeNr{nr}});
}

void enterValue(Search& search, ModuleRec* module, uint32_t nr) {
    if (module == nullptr || nr == 0 || !search.values.enter(module, nr)) return;
    search.valNodeStack.push_back({module, VNodeNr{nr}});
}

void enterSub(Search& search, ModuleRec* module, uint32_t nr) {
    if (nr != 0) search.setNodeStack.push_back({module, SubNr{nr}});
}

/// Components, alternatives, the element, or what a reference leads to.
void actParInTypCompList(Search& search, ModuleRec* module, uint32_t first) {
    if (module == nullptr) return;
    for (const TNodeNr nr : chain(module, TNodeNr{first})) {
        const bool last = magnitude(tNode.compStatus) == TCS_HEADER;
        enterType(search, module, nr.nr);
        if (last) return;
    }
}

void actParInValCompList(Search& search, ModuleRec* module, uint32_t first) {
    if (module == nullptr) return;
    for (const VNodeNr nr : chain(module, VNodeNr{first})) {
        const bool last = vNode.valStatus == VST_HEADER || vNode.valStatus == VST_ACTUAL;
        enterValue(search, module, nr.nr);
        if (last) return;
    }
}

// ---- type records -------------------------------------------------------------------------------

/// Information from an object or a field of a class: what the chain of field names starts from, and
/// what it ends in.
void actParInFieldListTNode(Search& search, TNodeRef type, const TNode& node) {
    if (node.refMod == REF_OBJECT)
        enterValue(search, type.module, node.ref);
    else
        actParInTypCompList(search, type.module, node.ref);
    readRec(type);
    if (!skipFieldList()) return;
    const TNodeRef end = currentRec<KIND_TNODE>();
    enterType(search, end.module, end.nr.nr);
}

/// The defined values that give tag numbers.
void actParInTags(Search& search, ModuleRec* module, uint32_t tag) {
    while (tag != 0) {
        readRec(module, TagNr{tag});
        tag = tagRec.next;
        if (tagRec.tagNr < 0) enterValue(search, module, magnitude(tagRec.tagNr));
    }
}

/// The DEFAULT: a value, or the type of a set.
void actParInTypDefVal(Search& search, ModuleRec* module, const TNode& node) {
    enterValue(search, module, node.defaultVal);
}

/// A parameter of the instance may be what governs another one. Older editions did not have that
/// counted.
void actParInGovernors(Search& search, ModuleRec* module, uint32_t formals) {
    if (newNotation(module)) actParInTypCompList(search, module, formals);
}

void actParInTypConstr(Search& search, ModuleRec* module, const TNode& node) {
    if (node.constraint > 0) enterSub(search, module, static_cast<uint32_t>(node.constraint));
}

void actParInTypNode(Search& search, TNodeRef type) {
    readRec(type);
    const TNode node = tNode;
    if (node.constraint > 0) search.sets.enter(type.module, magnitude(node.constraint));
    if (node.actParRec == 0) return;
    if (node.typeCode == TYP_FIELDLIST && node.syntax != 0)
        actParInFieldListTNode(search, type, node);
    else if (node.typeCode == TYP_SYNONYM)
        actParInTypCompList(search, refModule(type.module, node.refMod), node.ref);
    else if (isStructured(node.typeCode))
        actParInTypCompList(search, type.module, node.ref);
    actParInGovernors(search, type.module, node.formals);
    actParInTags(search, type.module, node.tags);
    actParInValCompList(search, type.module, node.namedVals);
    actParInTypDefVal(search, type.module, node);
    actParInTypConstr(search, type.module, node);
}

// ---- value records ------------------------------------------------------------------------------

/// A type or set setting. One that was found to be a set of objects refers to that set, no longer
/// to the information from an object which gave it.
void actParInSetting(Search& search, VNodeRef setting, const VNode& node) {
    if (node.refMod == REF_FORMAL)
        enterType(search, setting.module, node.ref);
    else
        enterType(search, setting.module, givenByFieldList(setting).nr);
}

/// Information from an object: the object, and the value at the end of the chain.
void actParInFieldListVNode(Search& search, VNodeRef value, const VNode& node) {
    enterValue(search, value.module, node.ref);
    readRec(value);
    skipValues(true);
    const VNodeRef end = currentRec<KIND_VNODE>();
    enterValue(search, end.module, end.nr.nr);
}

/// Type : value holds the value, whose governor may be a parameter. Older editions did not have
/// that counted.
void actParInTypedValue(Search& search, ModuleRec* module, const VNode& node) {
    if (!newNotation(module) || node.ref == 0) return;
    readRec(module, VNodeNr{node.ref});
    enterType(search, refModule(module, signedWord(vNode.govTypeMod)), vNode.govType);
}

void actParInValNode(Search& search, VNodeRef value) {
    readRec(value);
    const VNode node = vNode;
    if (node.actParRec == 0 || node.refMod == REF_DEFERRED) return;
    if (node.valCode == TYP_OPEN && node.refMod == REF_UNRESOLVED)
        actParInTypedValue(search, value.module, node);
    if (node.valCode == TYP_OPEN && node.refMod != REF_UNRESOLVED)
        actParInSetting(search, value, node);
    else if (node.valCode == TYP_FIELDLIST && node.deferred != 0)
        actParInFieldListVNode(search, value, node);
    else if (node.valCode == TYP_SYNONYM && node.refMod != REF_UNRESOLVED)
        actParInValCompList(search, refModule(value.module, node.refMod), node.ref);
    else
        actParInValCompList(search, value.module, node.ref);
}

// ---- constraint records -------------------------------------------------------------------------

/// A list of operands.
void subUnion_Intersection_etc_etc(Search& search, ModuleRec* module, uint32_t first) {
    for (const SubNr nr : chain(module, SubNr{first})) enterSub(search, module, nr.nr);
}

/// The parameters of a user-defined constraint.
void actParInUserDefined(Search& search, ModuleRec* module, uint32_t first) {
    actParInValCompList(search, module, first);
    if (!newNotation(module)) return;
    for ([[maybe_unused]] const VNodeNr nr : chain(module, VNodeNr{first}))
        enterType(search, refModule(module, signedWord(vNode.govTypeMod)), vNode.govType);
}

void actParInSub(Search& search, SubRef nr) {
    readRec(nr);
    const SubRec sub = subRec;
    if ((sub.subFlags & SUBF_EXCEPTION) != 0) enterValue(search, nr.module, sub.third);
    switch (sub.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_SERIAL:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT:
    case SUB_WITH_COMPONENTS: subUnion_Intersection_etc_etc(search, nr.module, sub.left); break;
    case SUB_PERMITTED_ALPHABET:
    case SUB_SIZE:
    case SUB_WITH_COMPONENT: enterSub(search, nr.module, sub.left); break;
    case SUB_CONTENTS:
    case SUB_RANGE:
        enterValue(search, nr.module, sub.left);
        enterValue(search, nr.module, sub.right);
        break;
    case SUB_SINGLE_VALUE:
    case SUB_CONTAINED_SUBTYPE:
    case SUB_TABLE:
    case SUB_PATTERN:
    case SUB_SETTINGS:
    case SUB_OPEN_TYPE: enterValue(search, nr.module, sub.left); break;
    case SUB_USER_DEFINED: actParInUserDefined(search, nr.module, sub.left); break;
    default: break;
    }
}

// ---- the search ---------------------------------------------------------------------------------

/// One for all instances: its marks and stacks keep their memory.
Search& beginSearch() {
    static Search search;
    for (RecVisits* visits : {&search.types, &search.values, &search.sets}) visits->begin();
    return search;
}

template <typename Ref> Ref pop(std::vector<Ref>& stack) {
    const Ref top = stack.back();
    stack.pop_back();
    return top;
}

/// Looks at all that is reached from what was entered.
void searchInstance(Search& search) {
    for (;;) {
        if (!search.typNodeStack.empty())
            actParInTypNode(search, pop(search.typNodeStack));
        else if (!search.valNodeStack.empty())
            actParInValNode(search, pop(search.valNodeStack));
        else if (!search.setNodeStack.empty())
            actParInSub(search, pop(search.setNodeStack));
        else
            return;
    }
}

bool actParIsThisTNode(const Search& search, const ModuleRec* module, const ActPar& par) {
    const auto& reached = par.list == ActParList::Set ? search.sets : search.types;
    return reached.entered(module, par.record);
}
bool actParIsThisVNode(const Search& search, const ModuleRec* module, const ActPar& par) {
    return search.values.entered(module, par.record);
}

/// A set whose notation was wrong has no record, and is not reported again.
bool isUsed(const Search& search, const ModuleRec* module, const ActPar& par) {
    if (par.record == 0) return true;
    return par.list == ActParList::Value ? actParIsThisVNode(search, module, par)
                                         : actParIsThisTNode(search, module, par);
}

/// The actual parameter in the current value record.
ActPar actParOf(ModuleRec* module, uint32_t nr, uint32_t position) {
    ActPar par{ActParList::Value, position, vNode.name, nr};
    if (vNode.refMod != REF_FORMAL) return par;
    par.list = (vNode.vflags & VF_SET) != 0 ? ActParList::Set : ActParList::Type;
    par.record = vNode.ref;
    if (par.list == ActParList::Type) return par;
    readRec(module, TNodeNr{vNode.ref});
    par.record = tNode.constraint > 0 ? static_cast<uint32_t>(tNode.constraint) : 0;
    return par;
}

/// The actual parameters from record `first` of a module on: the types, then the values, then the
/// sets.
std::vector<ActPar> initActParList(ModuleRec* module, uint32_t first) {
    std::vector<ActPar> list;
    for (const VNodeNr nr : chain(module, VNodeNr{first}))
        list.push_back(actParOf(module, nr.nr, static_cast<uint32_t>(list.size()) + 1));
    std::ranges::stable_sort(list, {}, &ActPar::list);
    return list;
}

std::string getActParId(ModuleRec* module, const ActPar& par) {
    std::string text = concat("(", std::to_string(par.position), ")");
    if (par.name != 0) text.append(" ").append(getStri(module, par.name));
    return text;
}

/// A reference with actual parameters, the first of which is the record `actuals` of `module`.
struct Instantiation {
    ModuleRec* module = nullptr;
    uint32_t instance = 0; // that the reference itself belongs to
    uint32_t actuals = 0;
    uint32_t line = 0;
};

/// Reports what the search has not reached. X.683 (02/2021) 8 does not ask that a dummy reference
/// is used: published modules hand on what some of their definitions leave alone.
bool reportUnused(const Search& search, const Instantiation& by) {
    bool ok = true;
    ModuleRec* const errors = actErrModPtr(by.module, by.instance);
    const ErrClass errClass = newNotation(by.module) ? ERR_WARNING : ERR_SEMANTIC;
    for (const ActPar& par : initActParList(by.module, by.actuals)) {
        if (isUsed(search, by.module, par)) continue;
        recordError(errors, errClass, Msg::UnusedActualParameters, by.line,
                    getActParId(by.module, par));
        ok = errClass == ERR_WARNING;
    }
    return ok;
}

} // namespace

bool checkTNodeActuals() {
    if (!isInstantiatedTNode() || tNode.syntax <= 0 || tNode.refMod <= 0 || tNode.ref == 0)
        return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    ModuleRec* const own = typeModule();
    const Instantiation by{own, tNode.actParRec, static_cast<uint32_t>(tNode.syntax), tNode.line};
    Search& search = beginSearch();
    enterType(search, refModule(own, tNode.refMod), tNode.ref);
    searchInstance(search);
    return reportUnused(search, by);
}

bool checkVNodeActuals() {
    if (vNode.valCode != TYP_SYNONYM || vNode.deferred <= 0 || vNode.refMod <= 0 || vNode.ref == 0)
        return true;
    const KeepRec<KIND_TNODE> keepType;
    const KeepRec<KIND_VNODE> keepValue;
    const KeepRec<KIND_SUB> keepSub;
    ModuleRec* const own = valueModule();
    const Instantiation by{own, vNode.actParRec, static_cast<uint32_t>(vNode.deferred), vNode.line};
    Search& search = beginSearch();
    const VNodeRef instance{refModule(own, vNode.refMod), VNodeNr{vNode.ref}};
    enterValue(search, instance.module, instance.nr.nr);
    readRec(instance);
    // A governor that depends on the parameters was copied with the value.
    enterType(search, refModule(instance.module, signedWord(vNode.govTypeMod)), vNode.govType);
    actParInGovernors(search, instance.module, vNode.formals);
    searchInstance(search);
    static_cast<void>(reportUnused(search, by));
    return true;
}

// ---- whom errors are charged to -----------------------------------------------------------------

ModuleRec* actErrModPtr(ModuleRec* module, uint32_t instance) {
    ModuleRec* const outermost =
        outermostInstantiator(instance != 0 ? aplOfInstance(module, instance) : 0);
    return outermost != nullptr ? outermost : module;
}

ModuleRec* actErrModPtr() {
    ModuleRec* const outermost = outermostInstantiator(parState.aplStack);
    return outermost != nullptr ? outermost : cMP;
}

void recordError2(Msg code, const Cause& cause, uint32_t line, std::string_view detail) {
    if (unreadState.met) return;
    ModuleRec* const module = actErrModPtr();
    if (cause.code != Msg::None) {
        recordError(module, ERR_SEMANTIC, cause.code, line,
                    cause.hasText ? std::string_view(cause.text) : std::string_view());
    }
    recordError(module, ERR_SEMANTIC, code, line, detail);
}

bool tolerate(Msg code, uint32_t line, std::string_view detail) {
    ModuleRec* const module = actErrModPtr();
    if (!isLenient(module)) return false;
    const InstContext* instance = instContext();
    recordOnce(module, code, instance != nullptr ? instance->line : line, detail);
    return true;
}

void resolveUse(int32_t& moduleRef, int32_t& name, int32_t& hasActuals, uint32_t line,
                uint32_t useLine) {
    const InstContext* instance = instContext();
    if (instance == nullptr) {
        chkIfSymbolDef(moduleRef, name, hasActuals, line);
        return;
    }
    const ErrPlace blamed{actErrModPtr(), instance->line};
    chkIfSymbolDef(moduleRef, name, hasActuals, useLine, &blamed);
}

} // namespace orvo
