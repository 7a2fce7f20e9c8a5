// Table constraints and component relations (X.682 (07/2002) clause 10).

#include "check/p5set.h"
#include "check/p5sub_int.h"
#include "check/p5typ.h"
#include "diag/orvoerr.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_find.h"

namespace orvo {

namespace {

/// The current type takes its values from a column of a table.
bool isTableColumn() {
    if (isObjClassFieldTypeTNode()) return true;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(false);
    return tNode.typeCode == TYP_INSTANCE_OF;
}

/// The object set in the setting `set`; what is wrong in it is the affair of who wrote it.
bool checkTable(VNodeNr set) {
    const KeepConstrained keep;
    bool ok = readTypeSetting({subModule(), set});
    if (ok && isTypeDefinition()) {
        static_cast<void>(checkTNode());
    } else if (ok && tNode.constraint > 0) {
        readRec(typeModule(), SubNr{static_cast<uint32_t>(tNode.constraint)});
        ok = chkSubRec(moduleForTypeErrors(), ParentType::None);
        if (ok && newNotation(typeModule())) ok = checkUnique(moduleForTypeErrors());
    }
    return ok;
}

/// A table constraint is the constraint, or one of a series.
bool isAtInSub(ModuleRec* module, int32_t constraint) {
    if (constraint <= 0) return false;
    const KeepRec<KIND_SUB> keep;
    readRec(module, SubNr{static_cast<uint32_t>(constraint)});
    if (subRec.subKind == SUB_TABLE) return true;
    if (subRec.subKind != SUB_SERIAL) return false;
    for ([[maybe_unused]] const SubNr nr : chain(module, SubNr{subRec.left}))
        if (subRec.subKind == SUB_TABLE) return true;
    return false;
}

/// One step from the structure in `tNode` to a component, or to the element of a list.
bool solveAtCompId(int32_t token, std::string_view name) {
    ModuleRec* const module = typeModule();
    const uint8_t kind = tNode.typeCode;
    const TNodeNr first{tNode.ref};
    if (!first) return false;
    if (token == TOK_NUMBER) {
        if (!is(kind, TypeClass::List)) return false;
        readRec(module, first);
        return true;
    }
    if (!is(kind, TypeClass::Members)) return false;
    return findTypeCompById(module, first, name);
}

/// The name or number that a step was written with, also after an earlier solution.
std::string_view stepName(ModuleRec* module, const SNode& step) {
    if (step.module == 0) return getStri(module, step.value);
    const KeepRec<KIND_TNODE> keep;
    ModuleRec* const owner = getModPtr(module, step.module);
    readRec(owner, TNodeNr{magnitude(step.value)});
    return tNode.name == 0 ? std::string_view() : getStri(owner, tNode.name);
}

/// From the current type to the structure that a reference of so many dots begins at: the outermost
/// for none, else as many structures around it. `named`: lists do not count (X.682 (02/2021) 10).
bool readEnclosingStructure(uint32_t dots, bool named) {
    if (dots == 0) return outerEnclStru();
    while (dots != 0) {
        if (!innerEnclStru()) return false;
        if (!named || !is(tNode.typeCode, TypeClass::List)) --dots;
    }
    return true;
}

/// One reference: `entry` is its "@"; moved to the entry behind it.
bool solveReference(ModuleRec* errors, ModuleRec* module, TNodeRef under, SNodeNr& entry) {
    readRec(module, entry);
    entry = SNodeNr{static_cast<uint32_t>(sNode.next)};
    uint32_t dots = 0;
    for (; entry; ++dots) {
        readRec(module, entry);
        if (sNode.token != TOK_DOT) break;
        entry = SNodeNr{static_cast<uint32_t>(sNode.next)};
    }
    const bool isElement = sNode.token == TOK_NUMBER;
    readRec(under);
    bool ok = readEnclosingStructure(dots, newNotation(module) && !isElement);
    while (entry) {
        readRec(module, entry);
        if (sNode.token == TOK_AT) break;
        const SNode step = sNode;
        const SNodeNr nr = entry;
        entry = SNodeNr{static_cast<uint32_t>(step.next)};
        if (!ok) continue;
        skipTypes(true);
        ok = solveAtCompId(step.token, stepName(module, step));
        if (!ok) continue;
        const TNodeRef component = currentRec<KIND_TNODE>();
        readRec(module, nr);
        // A number is still needed where values are checked; a step into a module without a
        // reference keeps its name.
        const bool isNumber = step.token == TOK_NUMBER;
        if (const uint32_t number = isNumber ? 0 : findImplImport(module, component.module)) {
            sNode.module = number;
            sNode.value = static_cast<int32_t>(component.nr.nr);
            writeRec(module, nr);
        }
        const bool last = !entry || (readRec(module, entry), sNode.token == TOK_AT);
        if (!last || isAtInSub(component.module, tNode.constraint)) continue;
        const std::string_view name =
            tNode.name == 0 ? std::string_view() : getStri(component.module, tNode.name);
        recordSubRecError(errors, Msg::InvalidReferencedComponent, name);
        ok = false;
    }
    return ok;
}

/// All references of a component relation; `list` is its first entry.
bool solveAt(ModuleRec* errors, SNodeNr list) {
    const TNodeRef type = currentRec<KIND_TNODE>();
    ModuleRec* const module = subModule();
    const KeepConstrained keep;
    const KeepRec<KIND_SNODE> keepEntry;
    bool ok = true;
    while (list) {
        const bool solved = solveReference(errors, module, type, list);
        if (!solved) recordSubRecError(errors, invalidConstraint(SUBNAME_COMPONENT_RELATION));
        ok &= solved;
    }
    return ok;
}

} // namespace

bool subTableConstr(ModuleRec* module) {
    const SubRef self = currentRec<KIND_SUB>();
    if (!isTableColumn()) {
        recordSubRecError(module, invalidConstraint(SUBNAME_TABLE),
                          "Table constraint can be associated only with an ObjectClassFieldType.");
        return false;
    }
    bool ok = checkTable(VNodeNr{subRec.left});
    if (!ok)
        recordSubRecError(module, invalidConstraint(SUBNAME_TABLE),
                          "The ObjectSet in the table constraint is invalid.");
    const int32_t relation = signedWord(subRec.right);
    if (relation < 0) {
        const bool solved = solveAt(module, SNodeNr{magnitude(relation)});
        subRec.right = solved ? magnitude(relation) : 0;
        writeRec(self);
        ok &= solved;
    }
    return ok;
}

} // namespace orvo
