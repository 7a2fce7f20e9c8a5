// Instantiation of parameterized definitions (X.683 clause 9): the actual parameter list of a
// reference becomes value records of the referring module, the definition is copied in its own
// module, and the copy is solved while the instantiation is on top of the stack.
//
// The stack is a chain of records of kind 13. A record that an instantiation produced carries the
// number of its entry (actParRec), from which the chain can be taken up again later.

#include "solve/solve_par.h"

#include <bit>

#include "diag/orvoerr_fatal.h"
#include "solve/p5actpar.h"
#include "solve/solve_cur.h"
#include "solve/solve_exp.h"
#include "solve/solve_pass3.h"
#include "solve/solve_val.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/values.h"
#include "util/guard.h"

namespace orvo {

ParState parState;

namespace {

/// How deep instances nest: more is an explosion, not a protocol.
constexpr uint32_t maxInstanceDepth = 200;
/// A reference with this many instances below it, at more levels than a doubling within
/// maxInstances can have, doubles with each level, and would only take its time to get there.
constexpr uint32_t manyInstances = 100000, levelsOfMaxInstances = std::bit_width(maxInstances);

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

/// The assignment is being instantiated already, inside its own instantiation. `depth`: the entries
/// of the stack, `outermost`: the last of them.
bool isOnStack(const ModuleRec* defModule, int32_t definition, uint32_t& depth,
               uint32_t& outermost) {
    for (uint32_t handle = parState.aplStack; handle != 0; handle = aplAt(handle).below) {
        ++depth;
        outermost = handle;
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
    uint32_t depth = 0, outermost = 0;
    if (isOnStack(defModule, reference.definition, depth, outermost))
        return reference.definition < 0 ? Msg::RecursiveValueReference
                                        : Msg::RecursiveTypeReference;
    const bool doubles =
        depth > levelsOfMaxInstances && ++parState.entries[outermost - 1].below > manyInstances;
    if (depth >= maxInstanceDepth || parState.entries.size() >= parState.mostInstances || doubles)
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

/// The type that stands for a formal parameter in an instance, as far as nothing is said on the
/// way; none when the parameter is no type.
TNodeRef actualType(uint32_t handle, uint32_t position) {
    const ANode instance = aplAt(handle);
    ModuleRec* const module = run.modules[instance.instModule - 1].get();
    readRec(module, VNodeNr{instance.firstActual + position - 1});
    if (vNode.valCode != TYP_OPEN || vNode.refMod != REF_FORMAL || vNode.ref == 0) return {};
    readRec(module, TNodeNr{vNode.ref});
    const auto isBare = [] {
        return tNode.typeCode == TYP_SYNONYM && tNode.constraint == 0 && tNode.tags == 0 &&
               tNode.syntax == 0 && tNode.ref != 0;
    };
    for (size_t left = maxLinks; isBare() && left != 0; --left) {
        ModuleRec* const next = refModule(typeModule(), tNode.refMod);
        if (next == nullptr) break;
        readRec(next, TNodeNr{tNode.ref});
    }
    return currentRec<KIND_TNODE>();
}

/// The text `{a, {B}}`, within the instance `own`, gives each formal parameter what it stands for
/// in the instance `outer`, which may be the same one. Only types are followed from one to the
/// other.
bool handsFormalsOn(DNodeNr text, STabNr formals, uint32_t own, uint32_t outer) {
    readRec(cMP, text);
    const STabNr ownFormals{dNode.formals};
    TokNr at{dNode.first};
    const auto take = [&at](int32_t code) {
        if (!at || tokenAt(at).code != code) return false;
        at = TokNr{tokenAt(at).next};
        return true;
    };
    if (!take(TOK_LBRACE)) return false;
    uint32_t position = 0;
    for (STabNr formal = formals; formal; formal = STabNr{symAt(formal).next}) {
        const bool isType = (symAt(formal).flags & SYM_TYPE_PARAMETER) != 0;
        const bool isSet = symAt(formal).name > 0 && !isType;
        if (++position != 1 && !take(TOK_COMMA)) return false;
        if (isSet && !take(TOK_LBRACE)) return false;
        if (!at) return false;
        int32_t refMod = REF_UNRESOLVED;
        int32_t name = tokenAt(at).stri();
        if (!take(symAt(formal).name < 0 ? TOK_VALUEID : TOK_TYPEID)) return false;
        if (!handleDefined(ownFormals, refMod, name)) return false;
        const auto place = static_cast<uint32_t>(name);
        const bool isSame = own == outer && ownFormals == formals && place == position;
        if (!isSame && !(isType && actualType(own, place) == actualType(outer, position)))
            return false;
        if (isSet && !take(TOK_RBRACE)) return false;
    }
    return take(TOK_RBRACE);
}

/// The current type, part of an instance, refers to the definition of that instance or of one
/// around it with the parameters of that one: it refers to the instance itself. Older notation
/// refuses the recursion.
bool referToOuterInstance() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const TNode reference = tNode;
    const uint32_t own = aplOfInstance(self.module, reference.actParRec);
    const ModuleRec* const target = getModPtr(self.module, static_cast<uint32_t>(reference.refMod));
    if (own == 0 || target == nullptr || !newNotation(self.module)) return false;
    const auto definition = static_cast<int32_t>(reference.ref);
    uint32_t outer = own;
    while (outer != 0 &&
           (aplAt(outer).defModule != target->handle || aplAt(outer).definition != definition))
        outer = aplAt(outer).below;
    if (outer == 0) return false;
    const KeepRec<KIND_VNODE> keep;
    const CurrentModule inModule(self.module);
    const STabNr symbol =
        findSymbTabRecByNr(parState.entries[outer - 1].module, REF_OWN, definition);
    const bool isSame =
        handsFormalsOn(deferredText(reference.syntax), STabNr{symAt(symbol).formals}, own, outer);
    readRec(self);
    if (!isSame) return false;
    makePending(self.module, self.nr);
    tNode.ref = parState.entries[outer - 1].head;
    tNode.syntax = 0;
    writeRec(self);
    return true;
}

} // namespace

void parseTNodeActuals() {
    if (tNode.typeCode != TYP_SYNONYM || !isDeferred(tNode.syntax)) return;
    if (tNode.actParRec != 0 && referToOuterInstance()) return;
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
