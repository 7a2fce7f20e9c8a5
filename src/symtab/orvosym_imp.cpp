// Modules that a module names.
//
// Invariants: references are numbered in the order in which they are made, so numbers ascend along
// the list. At most one reference of a module leads to a module record, and the index by target
// leads to it.

#include "symtab/orvosym_imp.h"

#include <algorithm>
#include <utility>

#include "diag/orvoerr.h"
#include "driver/orvofil.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt_glb.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"

namespace orvo {

namespace {

/// A new reference of the current module with the next number.
ModRef* newModRef(ModuleRec* module, std::string_view name, ModuleRec* target) {
    touchModule(module);
    return createPicRec(module->modRefs, name, target, module->nextRecNr[KIND_MNODE]++);
}

/// A reference by a name that the current module has none of. One to a module that it cannot refer
/// to a second time, or that its own file holds, is reported and leads nowhere; when the run goes
/// on it is reported as soon as it is known whether there is such a file at all.
ModRef* newNamedRef(std::string_view name, uint32_t line, uint8_t state) {
    ModuleRec* const module = nameToModPtr(name);
    const bool distinct = module != cMP && !cMP->modRefs.byModule.contains(module);
    ModRef* const ref = newModRef(cMP, name, distinct ? module : nullptr);
    ref->state = state;
    ref->line = line;
    if (distinct) return ref;
    ref->dropped = module;
    if (!run.keepGoing || module == cMP)
        recordError(cMP, ERR_SEMANTIC, Msg::CheckFilePrefixes, line, name);
    return ref;
}

/// The reference that an IMPORTS clause fills.
ModRef* modRefOfClause(std::string_view name, uint32_t line) {
    ModRef* const known = matchingName(cMP->modRefs, name);
    if (known != nullptr && known->state == 1) return known;
    if (known != nullptr && known->module != nullptr && isLenient(cMP)) {
        recordOnce(cMP, Msg::ModuleImportedTwice, line, name);
        return known;
    }
    if (known != nullptr || name == cMP->moduleName) {
        recordError(cMP, ERR_SEMANTIC, Msg::ChangeModuleName, line, name);
        return newModRef(cMP, name, nullptr);
    }
    return newNamedRef(name, line, 2);
}

/// Enters the symbols that a clause has brought into the index of imported names, where the
/// references of a name stand in the order of the list.
void indexImported(ModRef& ref) {
    for (STabNr nr = ref.symbols.first; nr; nr = STabNr{symAt(nr).next}) {
        if ((symAt(nr).flags & SYM_IMPORTED) == 0) continue;
        auto& places = cMP->modRefs.imported[symAt(nr).name];
        if (std::ranges::find(places, nr, [](const auto& place) { return place.second; }) !=
            places.end())
            continue; // a clause that is joined with an earlier one
        auto at = places.end();
        while (at != places.begin() && std::prev(at)->first->number > ref.number) --at;
        places.insert(at, {&ref, nr});
    }
}

/// A definition that its module does not export may be imported all the same.
bool isReadOn(STabNr symbol, int32_t name, uint32_t line) {
    if (!isLenient(cMP) || symAt(symbol).node == 0) return false;
    recordOnce(cMP, Msg::ImportedNotExported, line, getStri(cMP, name));
    return true;
}

/// The symbol of the exporting module that an importing name leads to; 0 = none.
STabNr exportedSymbol(ModuleRec* exporter, int32_t name, uint32_t line) {
    const auto number = static_cast<int32_t>(findStri(exporter, getStri(cMP, name)).nr);
    if (number == 0) return {};
    const STabNr found = findSymbol(exporter->symTab, name < 0 ? -number : number);
    if (!found || exporter->exportsState == 0) return found;
    return (symAt(found).flags & SYM_EXPORTED) != 0 || isReadOn(found, name, line) ? found
                                                                                   : STabNr{};
}

} // namespace

void handleModuleId(int32_t name, bool hasObjId, uint32_t line, uint32_t& optFlags) {
    const std::string_view text = getStri(cMP, name);
    cMP->moduleName = text;
    cMP->timeStamp = run.timeStamp;
    cMP->parseState = PARSE_OK;
    checkGlobalOptions(cMP, optFlags, cMP->options.range, line);
    if (cMP->filePrefix.empty()) {
        cMP->filePrefix = str2prefix(text);
        cMP->generationPrefix = cMP->filePrefix;
    }
    ++cMP->nextRecNr[KIND_MNODE]; // record 1 is the module itself
    if (hasObjId) cMP->objIdValueNr = nextRec<KIND_VNODE>(cMP);
}

ModuleRec* nameToModPtr(std::string_view name) {
    if (ModuleRec* const mapped = mappedModule(cMP->options, name)) return mapped;
    const std::string prefix = str2prefix(name);
    return findOrCreateModRec(prefix, prefix, name);
}

void handleImports(SymTab& symbolList, int32_t moduleName, bool hasAssignedId, uint32_t line) {
    ModRef* const ref = modRefOfClause(getStri(cMP, moduleName), line);
    const bool isJoined = ref->state == 2; // with an earlier clause
    ref->state = 2;
    ref->line = line;
    if (isJoined) removeNamesOf(symbolList, ref->symbols);
    catSymTab(ref->symbols, symbolList, SYM_IMPORTED);
    indexImported(*ref);
    if (hasAssignedId && !ref->value) ref->value = nextRec<KIND_VNODE>(cMP);
}

void handleExtRef(int32_t& moduleRef, int32_t name, uint32_t line) {
    const std::string_view moduleName = getStri(cMP, moduleRef);
    SymTab* list = &cMP->symTab;
    moduleRef = REF_OWN;
    if (moduleName != cMP->moduleName) {
        ModRef* ref = matchingName(cMP->modRefs, moduleName);
        if (ref == nullptr) ref = newNamedRef(moduleName, line, 1);
        moduleRef = static_cast<int32_t>(ref->number);
        list = &ref->symbols;
    }
    if (findSymbol(*list, name)) return;
    SymTab entered;
    handleSymbol(entered, name, 0, line);
    catSymTab(*list, entered, 0);
}

void settleImportedExports() {
    SymTab handedOn;
    for (STabNr nr = cMP->symTab.first; nr; nr = STabNr{symAt(nr).next}) {
        const STabRec& symbol = symAt(nr);
        const auto found = cMP->modRefs.imported.find(symbol.name);
        if (symbol.node != 0 || (symbol.flags & SYM_EXPORTED) == 0 ||
            found == cMP->modRefs.imported.end())
            continue;
        symAt(found->second.front().second).flags |= SYM_EXPORTED;
        handedOn.byName.try_emplace(symbol.name, nr);
    }
    if (!handedOn.byName.empty()) removeNamesOf(cMP->symTab, handedOn);
}

uint32_t findImplImport(ModuleRec* module, ModuleRec* target) {
    if (target == module) return REF_OWN;
    const auto found = module->modRefs.byModule.find(target);
    return found != module->modRefs.byModule.end() ? found->second->number : 0;
}

uint32_t handleImplImports(ModuleRec* module, ModuleRec* target) {
    const uint32_t known = findImplImport(module, target);
    if (known != 0) return known;
    return newModRef(module, target->moduleName, target)->number;
}

void dropModRefsFrom(ModuleRec* module, uint32_t number) {
    const auto& refs = module->modRefs.refs;
    size_t keep = refs.size();
    while (keep != 0 && refs[keep - 1]->number >= number) --keep;
    if (keep != refs.size()) dropPicRecs(module->modRefs, keep);
}

bool isExporter(const ModuleRec* module) {
    return module->parseState != PARSE_ERROR && (module->exportsState != 1 || isLenient(cMP));
}

void markUnread(ModRef& ref) {
    for (STabNr nr = ref.symbols.first; nr; nr = STabNr{symAt(nr).next}) symAt(nr).unread = 1;
}

void dropTarget(ModuleRec* module, ModRef& ref) {
    const auto found = module->modRefs.byModule.find(ref.module);
    if (found != module->modRefs.byModule.end() && found->second == &ref)
        module->modRefs.byModule.erase(found);
    ref.dropped = std::exchange(ref.module, nullptr);
}

void changeTarget(ModuleRec* module, ModRef& ref, ModuleRec* target) {
    dropTarget(module, ref);
    ref.module = target;
    module->modRefs.byModule.try_emplace(target, &ref);
}

void loadImpSymbols(ModRef& ref) {
    for (STabNr nr = ref.symbols.first; nr; nr = STabNr{symAt(nr).next}) {
        STabRec& symbol = symAt(nr);
        if ((symbol.flags & SYM_IMPORTED) != 0 && findSymbol(cMP->symTab, symbol.name))
            symbol.flags |= SYM_ALSO_LOCAL;
    }
}

namespace {

/// A definition with its module. One that cannot be looked at has none.
struct Definition {
    ModuleRec* module = nullptr;
    STabNr symbol;
    bool unread = false;
};

/// The module exports what it imports under a name: all of it without a list, else what the list
/// names (X.680 (02/2021) 13.12).
bool reexports(ModuleRec* module, int32_t number, int32_t name, uint32_t line) {
    if (module->exportsState == 0) return true;
    const STabNr imported = module->modRefs.imported.at(number).front().second;
    if ((symAt(imported).flags & SYM_EXPORTED) != 0) return true;
    if (!isLenient(cMP)) return false;
    recordOnce(cMP, Msg::ImportedNotExported, line, getStri(cMP, name));
    return true;
}

/// The definition that a name of the current module leads to through modules that import it.
Definition reexportedDefinition(ModuleRec* exporter, int32_t name, uint32_t line) {
    for (size_t left = run.modules.size(); left != 0; --left) { // imports may go round
        const auto own = static_cast<int32_t>(findStri(exporter, getStri(cMP, name)).nr);
        const int32_t number = name < 0 ? -own : own;
        const auto found = exporter->modRefs.imported.find(number);
        if (own == 0 || found == exporter->modRefs.imported.end() ||
            !reexports(exporter, number, name, line))
            return {};
        const auto& [ref, imported] = found->second.front();
        if (symAt(imported).unread != 0) return {nullptr, {}, true};
        exporter = ref->module;
        if (exporter == nullptr || !isExporter(exporter)) return {};
        const STabNr symbol = exportedSymbol(exporter, name, line);
        if (symbol && symAt(symbol).node != 0) return {exporter, symbol};
    }
    return {};
}

/// An imported symbol and its definition differ in braces. With notation of today they may be left
/// out, but stand nowhere else than behind names with parameters (X.683 9.1).
void reportBraces(const STabRec& symbol, bool missing) {
    const std::string_view name = getStri(cMP, symbol.name);
    if (missing && newNotation()) return;
    if (isLenient(cMP))
        recordOnce(cMP, Msg::BracesWithoutParameters, symbol.line, name);
    else
        recordError(cMP, ERR_SEMANTIC, missing ? Msg::BracesExpected : Msg::BracesNotAllowed,
                    symbol.line, name);
}

/// Gives a symbol the parameters of its definition in another module.
void takeHeader(STabRec& symbol, const STabRec& definition) {
    const uint8_t braces = definition.flags & SYM_PARAMETERIZED;
    const bool differs = (symbol.flags & SYM_PARAMETERIZED) != braces;
    if ((symbol.flags & SYM_IMPORTED) != 0 && differs) reportBraces(symbol, braces != 0);
    symbol.formals = definition.formals;
    symbol.flags = static_cast<uint8_t>((symbol.flags & ~SYM_PARAMETERIZED) | braces);
}

/// Lets an imported symbol lead to the module that defines it.
void defineReexported(const ModRef& ref, STabNr nr) {
    STabRec& symbol = symAt(nr);
    const Definition definition = reexportedDefinition(ref.module, symbol.name, symbol.line);
    symbol.unread = definition.unread ? 1 : 0;
    if (definition.module == nullptr || definition.module == cMP) return;
    static_cast<void>(handleImplImports(cMP, definition.module));
    ModRef* const target = cMP->modRefs.byModule.find(definition.module)->second;
    const STabRec& defined = symAt(definition.symbol);
    setSymbolNode(target->symbols, nr, defined.node);
    takeHeader(symbol, defined);
    for (auto& [from, imported] : cMP->modRefs.imported[symbol.name])
        if (imported == nr) from = target;
}

} // namespace

void defineImpSymbols(ModRef& ref) {
    for (STabNr nr = ref.symbols.first; nr; nr = STabNr{symAt(nr).next}) {
        STabRec& symbol = symAt(nr);
        const STabNr exported = exportedSymbol(ref.module, symbol.name, symbol.line);
        if (!exported || symAt(exported).node == 0) {
            if (newNotation()) defineReexported(ref, nr);
            if (!exported || newNotation()) continue;
        }
        const STabRec& definition = symAt(exported);
        setSymbolNode(ref.symbols, nr, definition.node);
        takeHeader(symbol, definition);
    }
}

} // namespace orvo
