// ANY and its classifier, and options of types whose validity depends on other types.

#include <string>
#include <utility>

#include "check/p5typ_int.h"
#include "diag/orvoerr.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt_loc.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

bool isComponent() {
    const uint32_t role = magnitude(tNode.compStatus);
    return role == TCS_MANDATORY || role == TCS_OPTIONAL;
}

bool isIdentifying(uint8_t kind) {
    return kind == TYP_INTEGER || kind == TYP_OBJID;
}

/// The current CHOICE has only alternatives that identify.
bool hasIdentifyingAlternatives() {
    const KeepRec<KIND_TNODE> keep;
    return forEachComponent(typeModule(), TNodeNr{tNode.ref}, [] {
        if (tNode.typeCode == TYP_EXTENSION_MARKER) return true;
        skipTypes(true);
        return isIdentifying(tNode.typeCode);
    });
}

/// The classifier in `tNode` identifies a type; a finding stands at the ANY.
bool checkClassifyingComp(ModuleRec* module, uint32_t line) {
    skipTypes(true);
    if (isIdentifying(tNode.typeCode)) return true;
    const bool isChoice = tNode.typeCode == TYP_CHOICE;
    if (isChoice && hasIdentifyingAlternatives()) return true;
    const bool isError = isChoice || run.strict_standard;
    recordError(module, isError ? ERR_SEMANTIC : ERR_WARNING, Msg::InvalidAnyClassifier, line);
    return !isError;
}

/// Stores the classifier in the identifier's record. One in a module without a number there (a
/// structure included through a third module) stays a name: the module nodes are made by now.
void resolveClassifier(ModuleRec* module, SNodeNr identifier, TNodeRef classifier) {
    const uint32_t number = findImplImport(module, classifier.module);
    if (number == 0) return;
    const KeepRec<KIND_SNODE> keep;
    readRec(module, identifier);
    sNode.module = number;
    sNode.value = static_cast<int32_t>(classifier.nr.nr);
    writeRec(module, identifier);
}

/// The name that DEFINED BY gives.
std::string_view classifierName(ModuleRec* module, SNodeNr identifier) {
    const KeepRec<KIND_SNODE> keep;
    readRec(module, identifier);
    return getStri(module, sNode.value);
}

/// Looks for the component that classifies the current ANY in the structure that encloses it;
/// COMPONENTS OF and extension addition groups are searched in place. `before`: it stands before
/// the ANY. The component becomes current.
bool findClassifyingComp(std::string_view name, bool& before) {
    const TNodeRef any = currentRec<KIND_TNODE>();
    if (!innerEnclStru()) return false;
    ModuleRec* const module = typeModule();
    const TNodeNr first{tNode.ref};
    uint32_t anyPosition = 0;
    before = !findTypeCompByNr(module, first, any, anyPosition);
    uint32_t position = 0;
    if (!findTypeCompById(module, first, name, &position)) return false;
    before = before || position < anyPosition;
    return true;
}

/// DEFINED BY in a component of the structure that encloses it; the governor of a value has none.
bool checkDefinedBy(ModuleRec* module) {
    if (!isEnclosed()) return false;
    const KeepRec<KIND_TNODE> keep;
    const TNodeRef any = currentRec<KIND_TNODE>();
    const uint32_t line = tNode.line;
    const SNodeNr identifier{static_cast<uint32_t>(tNode.syntax)};
    bool before = false;
    if (!findClassifyingComp(classifierName(any.module, identifier), before)) {
        recordError(module, ERR_SEMANTIC, Msg::ClassifierForAnyNotFound, line);
        return false;
    }
    if (!before) recordError(module, ERR_SEMANTIC, Msg::ClassifierAndAnyInReverseOrder, line);
    resolveClassifier(any.module, identifier, currentRec<KIND_TNODE>());
    return checkClassifyingComp(module, line) && before;
}

/// The current record stands in a SEQUENCE or SET; a class field, or the governor of a value, does
/// not.
bool isInStructure() {
    const KeepRec<KIND_TNODE> keep;
    return isComponent() && innerEnclStru() &&
           (tNode.typeCode == TYP_SEQ || tNode.typeCode == TYP_SET);
}

} // namespace

bool checkAnyType(ModuleRec* module) {
    if (tNode.syntax <= 0) {
        if (isInStructure())
            recordTNodeError(module, ERR_WARNING, Msg::AnyWithoutDefinedByIsDeprecated);
        return true;
    }
    if (!isComponent()) {
        recordTNodeError(module, ERR_SEMANTIC, Msg::AnyDefinedByAllowedOnlyWithinSequenceSet);
        return false;
    }
    return checkDefinedBy(module);
}

namespace {

/// The value of an ANY= option identifies: its kind, and whether it is an alternative of a CHOICE
/// value.
bool readClassifyingValue(ModuleRec* module, std::string_view name, uint8_t& kind, bool& inChoice) {
    const KeepRec<KIND_VNODE> keep;
    if (!findValueById(module, name)) return false;
    skipValues(true);
    inChoice = vNode.valCode == TYP_CHOICE;
    if (inChoice && vNode.ref != 0) {
        readRec(valueModule(), VNodeNr{vNode.ref});
        skipValues(true);
    }
    kind = vNode.valCode;
    return isIdentifying(kind);
}

/// The classifier of the current ANY component admits a value of that kind.
bool classifierAdmits(uint8_t kind, bool inChoice) {
    if (tNode.typeCode != TYP_ANY || tNode.syntax <= 0 || !isComponent()) return true;
    const KeepRec<KIND_TNODE> keep;
    const KeepRec<KIND_SNODE> keepEntry;
    ModuleRec* const module = typeModule();
    readRec(module, SNodeNr{static_cast<uint32_t>(tNode.syntax)});
    if (sNode.module == 0) return true;
    readRec(getModPtr(module, sNode.module), TNodeNr{static_cast<uint32_t>(sNode.value)});
    skipTypes(true);
    return tNode.typeCode == (inChoice ? static_cast<uint8_t>(TYP_CHOICE) : kind);
}

bool isEntryType(ModuleRec* module, std::string_view name) {
    const KeepRec<KIND_TNODE> keep;
    return findTypeById(module, name) && (tNode.optFlags & OPTF_ENTRY) != 0;
}

/// What is wrong with the value of an ANY= option; empty when nothing is.
std::string_view anyOptionFault(ModuleRec* module, std::string_view value) {
    std::string_view typeName;
    std::string_view valueName;
    if (!parseAnyOption(value, typeName, valueName)) return "Invalid ANY option value syntax.";
    uint8_t kind = TYP_NONE;
    bool inChoice = false;
    if (!readClassifyingValue(module, convertHyphens(std::string(valueName)), kind, inChoice))
        return "ANY option: Invalid classifying value.";
    if (!classifierAdmits(kind, inChoice)) return "ANY option: Invalid entry type.";
    if (!isEntryType(module, convertHyphens(std::string(typeName))))
        return "ANY option: The entry type does not reside in the same module.";
    return {};
}

/// Gives an instance option records of its own: those it has are its definition's, and the other
/// instances' too.
void separateOptions() {
    const TNodeRef self = currentRec<KIND_TNODE>();
    const CurrentModule inModule(self.module);
    OptRange copies;
    for (uint32_t nr = tNode.tedFirst; nr <= tNode.tedLast; ++nr) {
        readRec(self.module, TedNr{nr});
        addTedRec(copies, tedRec.tedKind, getStri(self.module, StriNr{tedRec.text}));
    }
    tNode.tedFirst = static_cast<uint32_t>(copies.first);
    tNode.tedLast = static_cast<uint32_t>(copies.last);
    writeRec(self);
}

/// Switches an option of the current node off. The tree was counted before.
void disableOption(ModuleRec* own, TedNr record) {
    readRec(own, record);
    const std::string_view text = getStri(own, StriNr{tedRec.text});
    tedRec.text = putStri(own, "?" + std::string(text.substr(1))).nr;
    writeRec(own, record);
    own->stringsAdded = true;
}

void checkAnyDefByOption(ModuleRec* module) {
    constexpr std::string_view option = "$ANY=";
    ModuleRec* const own = typeModule();
    const KeepRec<KIND_TED> keep;
    bool shared = tNode.actParRec != 0;
    for (uint32_t nr = tNode.tedFirst; nr != 0 && nr <= tNode.tedLast; ++nr) {
        readRec(own, TedNr{nr});
        const std::string_view text = getStri(own, StriNr{tedRec.text});
        if (!text.starts_with(option)) continue;
        const std::string_view fault = anyOptionFault(own, text.substr(option.size()));
        if (fault.empty()) continue;
        if (std::exchange(shared, false)) {
            const uint32_t place = nr - tNode.tedFirst;
            separateOptions();
            nr = tNode.tedFirst + place;
        }
        disableOption(own, TedNr{nr});
        recordTNodeError(module, ERR_WARNING, Msg::OptionsIgnored, fault);
    }
}

} // namespace

void checkOptions(ModuleRec* module) {
    const TNodeRef self = currentRec<KIND_TNODE>();
    if ((tNode.optFlags & OPTF_ANY) != 0) checkAnyDefByOption(module);
    if ((tNode.optFlags & OPTF_ENTRY) == 0) return;
    skipTypes(true);
    const bool isClass = isClassCode(tNode.typeCode);
    readRec(self);
    if (!isClass) return;
    recordTNodeError(module, ERR_WARNING, Msg::OptionsIgnored,
                     "An object class can not be marked as an entry.");
    tNode.optFlags &= ~uint32_t{OPTF_ENTRY};
    writeRec(self);
}

} // namespace orvo
