#pragma once

// The symbol tables: what each module defines, exports, imports and uses. Symbols and their uses
// live in an arena for the whole run; lists, deferred texts and tables hold handles.

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

enum SymFlags : uint8_t {
    SYM_EXPORTED = 1,
    SYM_IMPORTED = 2,
    SYM_ALSO_LOCAL = 4,      // imported, but defined in the module too: the local definition wins
    SYM_PARAMETERIZED = 8,   // the name is followed by "{"
    SYM_FORMAL = 16,         // formal parameter (dummy reference)
    SYM_TYPE_PARAMETER = 32, // formal parameter without governor
    SYM_FORMAL_USED = 64,    // the assignment's body mentions the formal parameter
    SYM_VALUE_NODE = 128,    // handleSymbol: the symbol stands for the current value record
};

/// The symbol of a handle (asserted to be valid). The reference stays valid for the whole run.
STabRec& symAt(STabNr nr);
/// The use of a handle.
InstRec& instAt(InstNr nr);
/// Forgets all symbols and uses (tests, fuzzing); the modules' tables must go with them.
void resetSymbols();

/// A new symbol that no list holds yet. `name`: string number, negated for a value reference.
STabNr createSymbTabRec(int32_t name, uint8_t flags, uint32_t line);

/// Appends a symbol to a pending list. With SYM_FORMAL it stands for the current type record, with
/// SYM_VALUE_NODE for the current value record (negated). A name that the list has already is
/// reported; with SYM_EXPORTED or SYM_IMPORTED (a symbol of EXPORTS or IMPORTS) it is then not
/// added.
void handleSymbol(SymTab& list, int32_t name, uint8_t flags, uint32_t line);

/// Takes the symbols whose names another list has off a table or pending list.
void removeNamesOf(SymTab& table, const SymTab& other);
/// Moves a pending list to the end of a table, adding `flag` to each symbol. Symbols of the table
/// that have the name of one of them are removed. `src` is empty afterwards.
void catSymTab(SymTab& dest, SymTab& src, uint8_t flag);

/// Symbol of a new definition of the current module, whose node will be the next type record (name
/// positive), or the next value record (negated name). Name 0: the anonymous symbol that holds the
/// named numbers, named bits or enumeration items which begin at the next value record. Reports
/// Msg::SymbolAlreadyDefined, and braces that EXPORTS lacks or has too much.
STabNr updateSymbTab(int32_t name, uint8_t flags, uint32_t line);

/// Resolves a formal parameter: when the list that begins at `formals` has `name`, `moduleRef`
/// becomes REF_FORMAL and `name` the position from 1.
[[nodiscard]] bool handleDefined(STabNr formals, int32_t& moduleRef, int32_t& name);
/// The formal parameter (or named number) at a position from 1; 0 when the list is shorter.
STabNr formalAt(STabNr formals, uint32_t position);

/// Gives a symbol of a table its definition.
void setSymbolNode(SymTab& table, STabNr symbol, int32_t node);
/// Takes its definition, `node`, back from the symbol of a name.
void clearSymbolNode(SymTab& table, int32_t name, int32_t node);

/// Looks a name up in the current module's own table, then among the imported symbols of references
/// other than `moduleRef`. A `moduleRef` of 0 is set to where the symbol was found; 0 = not found.
STabNr findSymbTabRec(int32_t& moduleRef, int32_t name);
/// The first symbol of a table with that name; 0 = none.
STabNr findSymbol(const SymTab& table, int32_t name);
/// Symbol whose definition is `node` (value records negated) in the own table of `module`
/// (moduleRef 1) or in the list of its reference `moduleRef`. Fatal 13 when there is none.
STabNr findSymbTabRecByNr(ModuleRec* module, int32_t moduleRef, int32_t node);

/// Where an error is listed.
struct ErrPlace {
    ModuleRec* module = nullptr;
    uint32_t line = 0;
};
/// Resolves a use of `name` in the current module: `moduleRef` 0 looks everywhere, 1 in the own
/// table, others in that reference's list. `name` becomes the number of the defining record, 0 when
/// there is none or when braces and the actual parameter mark `hasActuals` disagree (reported);
/// then `moduleRef` and `hasActuals` become 0 too. For a symbol of a module without definitions to
/// look at `moduleRef` becomes REF_UNREAD. An undefined name gets a symbol, which the listing
/// reports. `line` is that of the use; errors go to `blamed` where that is given.
void chkIfSymbolDef(int32_t& moduleRef, int32_t& name, int32_t& hasActuals, uint32_t line,
                    const ErrPlace* blamed = nullptr);

/// Records a use of a symbol.
void addInst(STabNr symbol, uint32_t line);
/// Puts the lines of the uses of a symbol into `lines`, ascending.
void findUses(STabNr symbol, std::vector<uint32_t>& lines);

/// Position from 0 of the extension marker among the items of the current ENUMERATED type, or -1.
/// The current records stay as they are.
int32_t findEnumExtMarkIdx();
/// Resolves an identifier used as a value of a type with named numbers, named bits or enumeration
/// items: `moduleRef` becomes the reference to the type's module as seen from the current one,
/// `name` the number of the item's value record. `name` is a string number of the current module.
/// The type is current afterwards.
[[nodiscard]] bool handleNamed(TNodeRef type, int32_t& moduleRef, int32_t& name);

} // namespace orvo
