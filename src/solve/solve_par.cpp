// Instantiation of parameterized definitions (X.683 clause 9): the actual parameter list of a
// reference becomes value records of the referring module, the definition is copied in its own
// module, and the copy is solved while the instantiation is on top of the stack.
//
// The stack is a chain of records of kind 13. A record that an instantiation produced carries the
// number of its entry (actParRec), from which the chain can be taken up again later.

#include "solve/solve_par.h"

#include "diag/orvoerr_fatal.h"
#include "solve/p5actpar.h"
#include "solve/solve_cur.h"
#include "solve/solve_exp.h"
#include "solve/solve_pass3.h"
#include "solve/solve_val.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {

ParState parState;

namespace {

/// Instances of a run, and how deep they nest: more is an explosion, not a protocol.
constexpr size_t maxInstances = 1000000;
constexpr uint32_t maxInstanceDepth = 200;

} // namespace

ANode aplAt(uint32_t handle) {
    const AplEntry& entry = parState.entries[handle - 1];
    return *static_cast<const ANode*>(findRPos(entry.module, KIND_ANODE, entry.nr.nr));
}

uint32_t aplOfInstance(ModuleRec* module, uint32_t instance) {
    if (instance == 0) return 0;
    const auto found = parState.byInstance.find(keyOf(module, instance));
    return found == parState.byInstance.end() ? 0 : found->second;
}

ModuleRec* outermostInstantiator(uint32_t handle) {
    return handle == 0 ? nullptr : parState.entries[handle - 1].outermost;
}

void setAplStack(uint32_t handle) {
    parState.aplStack = handle;
    if (handle == 0) {
        instState.top = nullptr;
        return;
    }
    const ANode top = aplAt(handle);
    parState.context = {top.line, top.instance};
    instState.top = &parState.context;
}

namespace {

/// A value record of the current module at a number that was reserved for it.
void addReservedValue(VNodeNr nr, uint32_t line) {
    newRecAt(nr);
    vNode.valCode = TYP_NONE;
    vNode.valStatus = VST_ACTUAL;
    const InstContext* instance = instContext();
    vNode.line = instance != nullptr ? instance->line : line;
    vNode.actParRec = instance != nullptr ? instance->instance : 0;
}

/// The actual parameter for one formal, at the cursor, into the record `nr`.
bool parseActual(ModuleRec* defModule, const STabRec& formal, VNodeNr nr, Cause& cause) {
    addReservedValue(nr, curToken().line);
    const int32_t name = static_cast<int32_t>(putStri(cMP, getStri(defModule, formal.name)).nr);
    vNode.name = formal.name < 0 ? -name : name;
    const bool isType = (formal.flags & SYM_TYPE_PARAMETER) != 0;
    const uint32_t govMod = handleImplImports(cMP, defModule);
    const TNodeNr governor{magnitude(formal.node)};
    if (!isType && formal.name > 0 && parseFaultySetPassOne(govMod, governor)) return true;
    return parseSettingPassOne(isType, formal.name < 0 ? -1 : 1, govMod, governor, cause);
}

uint32_t countFormals(STabNr formals) {
    uint32_t count = 0;
    for (STabNr nr = formals; nr; nr = STabNr{symAt(nr).next}) ++count;
    return count;
}

/// `{` actual {`,` actual} `}` for the formals of an assignment of `defModule`. The actual for
/// position p gets the number `first` + p - 1.
bool parseActParList(ModuleRec* defModule, STabNr formals, VNodeNr& first, Cause& cause) {
    first = nextRec<KIND_VNODE>(cMP);
    cMP->nextRecNr[KIND_VNODE] += countFormals(formals);
    if (curCode() != TOK_LBRACE) return false;
    VNodeNr nr = first;
    for (STabNr formal = formals; formal;) {
        if (!advance() || !parseActual(defModule, symAt(formal), nr, cause)) return false;
        static_cast<void>(advance());
        formal = STabNr{symAt(formal).next};
        if (!formal) break;
        if (curCode() != TOK_COMMA) return false;
        makePending(cMP, nr);
        vNode.next = ++nr.nr;
    }
    flushRecs(KIND_VNODE);
    if (curCode() == TOK_RBRACE) return true;
    cause.set(tokenExpected(TOK_RBRACE), "Missing end of actual parameter list");
    return false;
}

/// The assignment is being instantiated already, inside its own instantiation.
bool isOnStack(const ModuleRec* defModule, int32_t definition, uint32_t& depth) {
    for (uint32_t handle = parState.aplStack; handle != 0; handle = aplAt(handle).below) {
        ++depth;
        if (aplAt(handle).defModule == defModule->handle && aplAt(handle).definition == definition)
            return true;
    }
    return false;
}

/// A reference to be instantiated. `definition`: the assignment's TNode, or minus its VNode.
struct Reference {
    int32_t refMod = 0;
    int32_t definition = 0;
    DNodeNr actuals;
    uint32_t line = 0;
};

/// Parses the actual parameters of a reference of the current module and pushes the instantiation.
Msg pushApl(const Reference& reference, Cause& cause) {
    ModuleRec* const defModule = getModPtr(cMP, static_cast<uint32_t>(reference.refMod));
    uint32_t depth = 0;
    if (isOnStack(defModule, reference.definition, depth))
        return reference.definition < 0 ? Msg::RecursiveValueReference
                                        : Msg::RecursiveTypeReference;
    if (depth >= maxInstanceDepth || parState.entries.size() >= maxInstances)
        fatalError(Fatal::NoSpace, "Too many instances of parameterized definitions.");
    const STabNr symbol = findSymbTabRecByNr(defModule, REF_OWN, reference.definition);
    VNodeNr firstActual;
    {
        const ReplayCursor replay(cMP, reference.actuals);
        if (!parseActParList(defModule, STabNr{symAt(symbol).formals}, firstActual, cause))
            return Msg::InvalidActualParameterList;
    }
    touchModule(defModule);
    const ANodeNr nr{defModule->nextRecNr[KIND_ANODE]++};
    flushRecs(KIND_ANODE);
    aNode = {cMP->handle,          handleImplImports(defModule, cMP),
             firstActual.nr,       reference.line,
             defModule->handle,    static_cast<uint32_t>(reference.refMod),
             reference.definition, nr.nr,
             parState.aplStack};
    writeRec(defModule, nr);
    ModuleRec* const outer = outermostInstantiator(parState.aplStack);
    parState.entries.push_back({defModule, nr, outer != nullptr ? outer : cMP});
    const auto handle = static_cast<uint32_t>(parState.entries.size());
    parState.byInstance[keyOf(defModule, nr.nr)] = handle;
    setAplStack(handle);
    return Msg::None;
}

/// Takes the top entry off and solves what its actual parameters are, in the instantiating module.
void popApl() {
    const VNodeNr firstActual{aplAt(parState.aplStack).firstActual};
    setAplStack(aplAt(parState.aplStack).below);
    if (recExists(cMP, KIND_VNODE, firstActual.nr)) parseSettingPassTwo(firstActual);
}

/// Makes the current record of kind K, a reference of which `reference` tells what is written,
/// refer to a new instance; it is current again afterwards. `refer` sets what the record refers to:
/// module reference, record and first actual parameter. `expand` makes the copy in the defining
/// module.
template <RecKind K, typename Refer, typename Expand>
void instantiate(const Reference& reference, Refer refer, Expand expand) {
    const RecRef<K> self = currentRec<K>();
    SnapShot trial(self);
    const CurrentModule inReferring(self.module);
    const Restore cursor(inp);
    Cause cause;
    const Msg code = pushApl(reference, cause);
    if (code != Msg::None) {
        recordError2(code, cause, reference.line);
        trial.restore();
        makePending(self.module, self.nr);
        refer(REF_UNRESOLVED, 0, 0);
        writeRec(self);
        return;
    }
    ModuleRec* const defModule = parState.entries[parState.aplStack - 1].module;
    parState.entries[parState.aplStack - 1].head = nextRec<K>(defModule).nr;
    makePending(self.module, self.nr);
    refer(reference.refMod, nextRec<K>(defModule).nr,
          static_cast<int32_t>(aplAt(parState.aplStack).firstActual));
    writeRec(self);
    {
        const CurrentModule inDefining(defModule);
        expand();
    }
    popApl();
    trial.keep();
    readRec(self);
}

/// Copies the type assignment `definition` of the current module and solves the copy.
void expandAndParseParameterizedType(TNodeNr definition) {
    readRec(cMP, definition);
    expandType(TNodeNr{});
    parseTNode();
}

/// Copies the value assignment `definition` of the current module and parses the copy's text. A
/// governor that mentions formal parameters is copied too.
void expandAndParseParameterizedValue(VNodeNr definition) {
    readRec(cMP, definition);
    TNodeNr governor{vNode.govType};
    const VNodeNr copy = expandValue();
    if (dependsOnFormals(governor)) {
        readRec(cMP, governor);
        governor = expandType(TNodeNr{});
        makePending(cMP, copy);
        vNode.govType = governor.nr;
        writeRec(cMP, copy);
        parseTNode();
    }
    readRec(cMP, governor);
    readRec(cMP, copy);
    parseVNode();
}

} // namespace

namespace {

/// The text at the cursor's place, `{a, {B}}`, hands the formal parameters on as they are, sets in
/// braces of their own.
bool handsFormalsOn(DNodeNr text, STabNr formals) {
    readRec(cMP, text);
    if (dNode.formals != formals.nr) return false;
    TokNr at{dNode.first};
    const auto take = [&at](int32_t code) {
        if (!at || tokenAt(at).code != code) return false;
        at = TokNr{tokenAt(at).next};
        return true;
    };
    if (!take(TOK_LBRACE)) return false;
    for (STabNr formal = formals; formal; formal = STabNr{symAt(formal).next}) {
        const int32_t name = symAt(formal).name;
        const bool isSet = name > 0 && (symAt(formal).flags & SYM_TYPE_PARAMETER) == 0;
        if (formal != formals && !take(TOK_COMMA)) return false;
        if (isSet && !take(TOK_LBRACE)) return false;
        if (!at || tokenAt(at).stri() != name) return false;
        if (!take(name < 0 ? TOK_VALUEID : TOK_TYPEID)) return false;
        if (isSet && !take(TOK_RBRACE)) return false;
    }
    return take(TOK_RBRACE);
}

/// The current type refers to the definition whose instance it is part of, with the parameters of
/// that instance: it refers to the instance. Older notation refuses the recursion.
bool referToOwnInstance() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const uint32_t handle = aplOfInstance(self.module, tNode.actParRec);
    if (handle == 0 || !newNotation(self.module)) return false;
    const ANode own = aplAt(handle);
    const ModuleRec* const target = getModPtr(self.module, static_cast<uint32_t>(tNode.refMod));
    if (target != self.module || own.defModule != target->handle ||
        own.definition != static_cast<int32_t>(tNode.ref))
        return false;
    const STabNr symbol = findSymbTabRecByNr(self.module, REF_OWN, own.definition);
    const CurrentModule inModule(self.module);
    if (!handsFormalsOn(deferredText(tNode.syntax), STabNr{symAt(symbol).formals})) return false;
    makePending(self.module, self.nr);
    tNode.ref = parState.entries[handle - 1].head;
    tNode.syntax = 0;
    writeRec(self);
    return true;
}

} // namespace

void parseTNodeActuals() {
    if (tNode.typeCode != TYP_SYNONYM || !isDeferred(tNode.syntax)) return;
    if (tNode.actParRec != 0 && referToOwnInstance()) return;
    const TNodeNr definition{tNode.ref};
    instantiate<KIND_TNODE>(
        {tNode.refMod, static_cast<int32_t>(tNode.ref), deferredText(tNode.syntax), tNode.line},
        [](int32_t refMod, uint32_t ref, int32_t actuals) {
            tNode.refMod = refMod;
            tNode.ref = ref;
            tNode.syntax = actuals;
        },
        [=] { expandAndParseParameterizedType(definition); });
}

void parseVNodeActuals() {
    if (vNode.valCode != TYP_SYNONYM || !isDeferred(vNode.deferred)) return;
    const KeepRec<KIND_TNODE> keepType;
    const VNodeNr definition{vNode.ref};
    instantiate<KIND_VNODE>(
        {vNode.refMod, minus(vNode.ref), deferredText(vNode.deferred), vNode.line},
        [](int32_t refMod, uint32_t ref, int32_t actuals) {
            vNode.refMod = refMod;
            vNode.ref = ref;
            vNode.deferred = actuals;
        },
        [=] { expandAndParseParameterizedValue(definition); });
}

} // namespace orvo
