#pragma once

// Modules that a module names: headers, IMPORTS clauses, external references, references on demand.

#include <cstdint>
#include <string_view>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

/// The header of the current module was read: sets its name, time stamp, parse state and prefixes,
/// evaluates its global options and takes number 1 of the module records for the module itself.
/// `name`: string number; `hasObjId`: a definitive identifier follows, whose value is the next
/// record.
void handleModuleId(int32_t name, bool hasObjId, uint32_t line, uint32_t& optFlags);

/// Module record for the name of a module that the current one refers to, created as needed.
ModuleRec* nameToModPtr(std::string_view name);

/// One `... FROM module` clause of the current module; takes over the symbols of the pending list.
void handleImports(SymTab& symbolList, int32_t moduleName, bool hasAssignedId, uint32_t line);

/// An external reference `Module.name` of the current module. `moduleRef` holds the string number
/// of the module name and becomes the reference number.
void handleExtRef(int32_t& moduleRef, int32_t name, uint32_t line);

/// Number by which `module` refers to `target`: 1 for itself; a reference is made when there is
/// none.
uint32_t handleImplImports(ModuleRec* module, ModuleRec* target);
/// The same without making one: 0 when there is none. For pass 5, when the module nodes of the tree
/// are written and a new number would lead nowhere.
uint32_t findImplImport(ModuleRec* module, ModuleRec* target);
/// Takes back the references with numbers from `number` on (made during a trial parse that failed).
void dropModRefsFrom(ModuleRec* module, uint32_t number);

/// Can be imported from: it has a syntax tree and exports something.
bool isExporter(const ModuleRec* module);
/// Lets the symbols that the current module exports but does not define be those that it imports
/// (X.680 (02/2021) 13.12).
void settleImportedExports();
/// The symbols of a reference count as known: its module has no definitions to look at.
void markUnread(ModRef& ref);
/// Makes a reference lead to no module: what it names cannot be used.
void dropTarget(ModuleRec* module, ModRef& ref);
/// Makes a reference lead to another module.
void changeTarget(ModuleRec* module, ModRef& ref, ModuleRec* target);
/// Marks the imported symbols of a reference that the current module's own table has too.
void loadImpSymbols(ModRef& ref);
/// Gives the symbols of a reference their definitions from the referenced module's exports.
void defineImpSymbols(ModRef& ref);

} // namespace orvo
