// Following names: of alternatives, of class fields, of object settings; look-ups of components.
//
// Invariants: an entry of a name chain whose module field is set is solved: the field refers to the
// module of the record found, the value field holds its number, negated for a value. A list is
// prepared when the references of all its COMPONENTS OF entries, and of the lists that they
// include, have been followed.

#include "solve/solve_ref.h"

#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_pass3.h"
#include "solve/solve_ref_int.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_find.h"
#include "tree/values.h"

namespace orvo {

namespace {

using SNodeRef = RecRef<KIND_SNODE>;

/// Notes what an entry stands for: `found`, negated for a value, of a module.
void solveEntry(SNodeRef entry, ModuleRec* module, int32_t found) {
    SnapShot trial(entry);
    const uint32_t number = handleImplImports(entry.module, module);
    readRec(entry);
    sNode.module = number;
    sNode.value = found;
    writeRec(entry);
    trial.keep();
}

/// The class that the current type stands for, if it is one.
bool readClass() {
    if (tNode.typeCode == TYP_TYPE_ID || tNode.typeCode == TYP_ABSTR_STX) {
        readRec(run.iso8824MP, TNodeNr{tNode.typeCode});
        skipTypes(true);
    }
    return tNode.typeCode == TYP_CLASS;
}

/// Solves one entry from the current type.
Msg solveTypeEntry(SNodeRef entry, uint8_t kind, std::string_view& text) {
    text = getStri(entry.module, sNode.value);
    const Msg wrong = kind == TYP_CHOICE ? Msg::InvalidSelectionType : Msg::InvalidClassFieldType;
    skipTypes(true);
    if (meetsUnreadType()) return wrong;
    if (kind == TYP_CHOICE ? tNode.typeCode != TYP_CHOICE : !readClass()) return wrong;
    if (!findTypeCompId(kind, typeModule(), TNodeNr{tNode.ref}, text)) return wrong;
    const TNodeRef found = currentRec<KIND_TNODE>();
    solveEntry(entry, found.module, static_cast<int32_t>(found.nr.nr));
    return Msg::None;
}

} // namespace

Msg solveTypeFPtr(VisitList& visited, ModuleRec* module, SNodeNr first, uint8_t kind,
                  std::string_view& text) {
    const KeepRec<KIND_SNODE> keep;
    uint32_t left = nextRec<KIND_SNODE>(module).nr;
    for (SNodeNr nr = first; nr && left-- != 0;) {
        if (!findActType(visited)) return Msg::RecursiveTypeReference;
        readRec(module, nr);
        const SNodeNr next = nextInChain<KIND_SNODE>();
        if (sNode.module == 0) {
            const Msg code = solveTypeEntry({module, nr}, kind, text);
            if (code != Msg::None) return code;
        } else {
            ModuleRec* const found = refModule(module, signedWord(sNode.module));
            if (found == nullptr || sNode.value <= 0) return Msg::DefinedTypeSyntax;
            readRec(found, TNodeNr{magnitude(sNode.value)});
        }
        nr = next;
    }
    return Msg::None;
}

// ---- settings of objects ------------------------------------------------------------------------

bool isTypeSetting() {
    return vNode.valCode == TYP_OPEN && vNode.refMod == REF_FORMAL && vNode.ref != 0;
}

namespace {

/// The class of the object that is the current value.
bool readClassOfObject() {
    ModuleRec* const module = refModule(valueModule(), signedWord(vNode.govTypeMod));
    if (module == nullptr || vNode.govType == 0) return false;
    readRec(module, TNodeNr{vNode.govType});
    findActType();
    skipTypes(true);
    return !meetsUnreadType() && readClass();
}

/// An empty object set for the optional field that is the current type.
void addEmptySet() {
    const TNodeRef field = currentRec<KIND_TNODE>();
    const int32_t name = tNode.name;
    const uint32_t line = tNode.line;
    const CurrentModule inModule(field.module);
    const InstanceStack outside(field.module, 0);
    addValArc(nullptr, line);
    vNode.name = name;
    vNode.govTypeMod = REF_OWN;
    vNode.govType = field.nr.nr;
    const VNodeRef setting = currentRec<KIND_VNODE>();
    setValSetNode(REF_OWN, field.nr, 0);
    flushRecs(-1);
    readRec(setting);
}

/// A DEFAULT value that nobody has prepared yet, the current value.
void prepareDefault() {
    if (vNode.valStatus != VST_DEFAULT || vNode.refMod != REF_DEFERRED) return;
    const VNodeRef value = currentRec<KIND_VNODE>();
    const KeepRec<KIND_TNODE> keepType;
    const CurrentModule inModule(value.module);
    const InstanceStack ofRecord(value.module, vNode.actParRec);
    readRec(value.module, TNodeNr{vNode.govType});
    readRec(value);
    parseDefaultPassOne();
    readRec(value);
}

/// Solves one entry from the current value.
Msg solveValueEntry(SNodeRef entry, std::string_view& text) {
    text = getStri(entry.module, sNode.value);
    skipValues(true);
    if (meetsUnreadValue() || !isClassCode(vNode.valCode)) return Msg::InvalidInformationFromObject;
    SnapShot trial(entry);
    ModuleRec* const module = valueModule();
    const VNodeRef object = currentRec<KIND_VNODE>();
    if (!findValueCompId(TYP_CLASS, module, VNodeNr{vNode.ref}, text)) {
        readRec(object);
        if (!readClassOfObject()) return Msg::InvalidInformationFromObject;
        const Msg code = solveMissingFieldValue(currentRec<KIND_TNODE>(), text, text);
        if (code != Msg::None) return code;
    }
    const VNodeRef found = currentRec<KIND_VNODE>();
    solveEntry(entry, found.module, minus(found.nr.nr));
    trial.keep();
    return Msg::None;
}

} // namespace

Msg solveMissingFieldValue(TNodeRef classType, std::string_view name, std::string_view& text) {
    text = name;
    readRec(classType);
    if (!findTypeCompId(TYP_CLASS, classType.module, TNodeNr{tNode.ref}, name))
        return Msg::InvalidInformationFromObject;
    ModuleRec* const module = typeModule();
    if (tNode.defaultVal != 0) {
        readRec(module, VNodeNr{tNode.defaultVal});
        return Msg::None;
    }
    const bool optional = magnitude(tNode.compStatus) == TCS_OPTIONAL;
    if (!optional || !isObjSetTNode()) return Msg::InvalidInformationFromObject;
    addEmptySet();
    return Msg::None;
}

Msg solveValueFPtr(VisitList& visited, ModuleRec* module, SNodeNr first, std::string_view& text,
                   SNodeNr& next) {
    const KeepRec<KIND_SNODE> keep;
    const KeepRec<KIND_TNODE> keepType;
    next = first;
    uint32_t left = nextRec<KIND_SNODE>(module).nr;
    while (next && left-- != 0) {
        if (!findActValue(visited)) return Msg::RecursiveValueReference;
        const SNodeRef entry{module, next};
        readRec(entry);
        next = nextInChain<KIND_SNODE>();
        if (sNode.module == 0) {
            const Msg code = solveValueEntry(entry, text);
            if (code != Msg::None) return code;
        } else {
            ModuleRec* const found = refModule(module, signedWord(sNode.module));
            if (found == nullptr || sNode.value >= 0) return Msg::InvalidInformationFromObject;
            readRec(found, VNodeNr{magnitude(sNode.value)});
        }
        prepareDefault();
        if (isTypeSetting()) return Msg::None;
    }
    return Msg::None;
}

// ---- look-ups -----------------------------------------------------------------------------------

namespace {

/// A list whose COMPONENTS OF entries are still to be looked at.
using Lists = std::vector<TNodeRef>;

void noteList(Lists& lists, TNodeRef first) {
    if (first.nr && first.module->preparedLists.insert(first.nr.nr).second) lists.push_back(first);
}

/// The current component: what it brings in is to be prepared too.
void prepareComponent(Lists& lists) {
    ModuleRec* const module = typeModule();
    if (tNode.typeCode == TYP_EXTADDGRP) {
        noteList(lists, {module, TNodeNr{tNode.ref}});
    } else if (magnitude(tNode.compStatus) == TCS_COMPOF) {
        findActType();
        skipTypes(false);
        if (tNode.typeCode == TYP_SEQ || tNode.typeCode == TYP_SET)
            noteList(lists, {typeModule(), TNodeNr{tNode.ref}});
    }
}

/// Follows the references of what the list includes, once per list.
void prepareList(ModuleRec* module, TNodeNr first) {
    Lists lists;
    noteList(lists, {module, first});
    while (!lists.empty()) {
        const TNodeRef list = lists.back();
        lists.pop_back();
        forEachTNodeByMod(list.module, list.nr, [&] { prepareComponent(lists); });
    }
}

/// Any component may be among those that COMPONENTS OF a name without definition brings in.
void meetUnreadComponents(ModuleRec* module, TNodeNr first) {
    std::set<uint64_t> seen;
    Lists lists = {{module, first}};
    while (!lists.empty()) {
        const TNodeRef list = lists.back();
        lists.pop_back();
        if (!list.nr || !seen.insert(keyOf(list.module, list.nr.nr)).second) continue;
        forEachTNodeByMod(list.module, list.nr, [&] {
            ModuleRec* const owner = typeModule();
            if (tNode.typeCode == TYP_EXTADDGRP) {
                lists.push_back({owner, TNodeNr{tNode.ref}});
            } else if (magnitude(tNode.compStatus) == TCS_COMPOF) {
                skipTypes(false);
                if (!meetsUnreadType() && (tNode.typeCode == TYP_SEQ || tNode.typeCode == TYP_SET))
                    lists.push_back({typeModule(), TNodeNr{tNode.ref}});
            }
        });
    }
}

} // namespace

bool findTypeCompId(uint8_t kind, ModuleRec* module, TNodeNr first, std::string_view name) {
    if (kind != TYP_CLASS) prepareList(module, first);
    if (findTypeCompById(module, first, name)) return true;
    if (run.keepGoing && kind != TYP_CLASS) meetUnreadComponents(module, first);
    return false;
}

bool findValueCompId(uint8_t /*kind*/, ModuleRec* module, VNodeNr first, std::string_view name) {
    return findValueCompById(module, first, name);
}

void forgetFoundComps(ModuleRec* module) {
    std::set<uint32_t>& lists = module->preparedLists;
    lists.erase(lists.lower_bound(module->nextRecNr[KIND_TNODE]), lists.end());
}

} // namespace orvo
