// Definitions, look-up and uses of symbols.
//
// Invariants: a symbol is on one list at most. The indexes of a table lead to the first symbol of a
// key in list order; a symbol of the own table that is not defined yet is the first of its name,
// since a name that the table holds is not entered again without a definition. Uses stand in the
// order in which they were met.

#include "symtab/orvosym.h"

#include <algorithm>
#include <cassert>
#include <new>

#include "diag/orvoerr.h"
#include "diag/orvoerr_fatal.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_mem.h"
#include "util/flat.h"

namespace orvo {

namespace {

/// Records that stay where they are, addressed by number from 1.
template <typename T> struct Arena {
    static constexpr uint32_t pageSize = 512;
    Pool pool;
    std::vector<T*> pages;
    uint32_t used = 0;

    uint32_t add() {
        if (used == maxRecNr) fatalError(Fatal::NoSpace);
        if (used % pageSize == 0) pages.push_back(static_cast<T*>(pool.take(pageSize * sizeof(T))));
        ++used;
        new (&at(used)) T{};
        return used;
    }
    T& at(uint32_t nr) {
        assert(nr != 0 && nr <= used);
        return pages[(nr - 1) / pageSize][(nr - 1) % pageSize];
    }
};

struct Symbol {
    STabRec rec;
    InstNr lastUse;
};

/// Places of the names on a list of formal parameters or named numbers, up to the symbol `last`:
/// such a list may grow behind it.
struct NameIndex {
    FlatMap<int32_t, uint32_t> places; // the first of a name, from 1
    std::vector<STabNr> byPlace;
};

struct SymState {
    Arena<Symbol> symbols;
    Arena<InstRec> uses;
    std::unordered_map<uint32_t, NameIndex> nameIndexes; // by the first symbol of the list
};
SymState symState;

/// Lists up to this length are walked: an index would cost more than it saves.
constexpr uint32_t walkedLength = 8;

NameIndex& nameIndexOf(STabNr first) {
    NameIndex& index = symState.nameIndexes[first.nr];
    STabNr nr = index.byPlace.empty() ? first : STabNr{symAt(index.byPlace.back()).next};
    for (; nr; nr = STabNr{symAt(nr).next}) {
        index.byPlace.push_back(nr);
        index.places.try_emplace(symAt(nr).name, static_cast<uint32_t>(index.byPlace.size()));
    }
    return index;
}

/// Place from 1 of a name on a list of formal parameters or named numbers; 0 = none.
uint32_t placeOf(STabNr first, int32_t name) {
    STabNr nr = first;
    for (uint32_t place = 1; nr && place <= walkedLength; ++place) {
        const STabRec& symbol = symAt(nr);
        if (symbol.name == name) return place;
        nr = STabNr{symbol.next};
    }
    if (!nr) return 0;
    const NameIndex& index = nameIndexOf(first);
    const auto found = index.places.find(name);
    return found == index.places.end() ? 0 : found->second;
}

void append(SymTab& table, STabNr nr) {
    const STabRec& symbol = symAt(nr);
    (table.last ? symAt(table.last).next : table.first.nr) = nr.nr;
    table.last = nr;
    table.byName.try_emplace(symbol.name, nr);
    if (symbol.node != 0) table.byNode.try_emplace(symbol.node, nr);
}

std::string_view nameText(int32_t name) {
    return getStri(cMP, name);
}

/// Notes the significant characters of a name, its number where these are all: false when they are
/// noted already.
bool noteName(SymTab& table, int32_t name) {
    const std::string_view text = nameText(name);
    if (text.size() >= table.prefixLen)
        return table.definedPrefixes.insert(text.substr(0, table.prefixLen)).second;
    const uint32_t nr = magnitude(name);
    if (nr >= table.definedNames.size()) table.definedNames.resize(nr + nr / 2 + size_t{1});
    if (table.definedNames[nr]) return false;
    table.definedNames[nr] = true;
    return true;
}

/// Notes a name as defined. False when a defined name agrees with it in the significant characters.
bool noteDefined(SymTab& table, int32_t name) {
    if (table.prefixLen != cMP->options.nameLen) {
        table.prefixLen = cMP->options.nameLen;
        table.definedNames.clear();
        table.definedPrefixes.clear();
        for (STabNr nr = table.first; nr; nr = STabNr{symAt(nr).next}) {
            const STabRec& symbol = symAt(nr);
            if (symbol.node != 0 && symbol.name != 0)
                static_cast<void>(noteName(table, symbol.name));
        }
    }
    return noteName(table, name);
}

/// A symbol of the own table that was entered before its definition meets it.
void meetDefinition(STabRec& symbol, uint8_t flags, uint32_t line) {
    const uint8_t braces = flags & SYM_PARAMETERIZED;
    const bool differs = (symbol.flags & SYM_PARAMETERIZED) != braces;
    if ((symbol.flags & SYM_EXPORTED) != 0 && differs && (braces == 0 || !newNotation())) {
        recordError(cMP, ERR_SEMANTIC, braces != 0 ? Msg::BracesExpected : Msg::BracesNotAllowed,
                    symbol.line, nameText(symbol.name));
    }
    symbol.flags = static_cast<uint8_t>((symbol.flags & ~SYM_PARAMETERIZED) | braces);
    symbol.line = line;
}

/// The symbol of the named numbers that begin at the next value record.
STabNr anonymousSymbol(uint8_t flags, uint32_t line) {
    SymTab& table = cMP->symTab;
    const int32_t node = minus(nextRec<KIND_VNODE>(cMP).nr);
    const auto found = table.byNode.find(node);
    if (found != table.byNode.end() && symAt(found->second).name == 0) {
        symAt(found->second).line = line;
        return found->second;
    }
    const STabNr nr = createSymbTabRec(0, flags, line);
    append(table, nr);
    setSymbolNode(table, nr, node);
    return nr;
}

/// The list that a module reference of the current module designates; none for a number without
/// one.
const SymTab* tableOf(const ModuleRec* module, int32_t moduleRef) {
    if (moduleRef == REF_OWN) return &module->symTab;
    if (moduleRef < REF_OWN) return nullptr;
    const ModRef* ref = matchingNr(module->modRefs, static_cast<uint32_t>(moduleRef));
    return ref == nullptr ? nullptr : &ref->symbols;
}

/// The symbol that a use names; an undefined one is entered.
STabNr symbolOfUse(int32_t& moduleRef, int32_t name, uint32_t line) {
    if (moduleRef != REF_UNRESOLVED) {
        const SymTab* table = tableOf(cMP, moduleRef);
        return table == nullptr ? STabNr{} : findSymbol(*table, name);
    }
    if (const STabNr found = findSymbTabRec(moduleRef, name)) return found;
    moduleRef = REF_OWN;
    const STabNr entered = createSymbTabRec(name, 0, line);
    append(cMP->symTab, entered);
    return entered;
}

} // namespace

STabRec& symAt(STabNr nr) {
    return symState.symbols.at(nr.nr).rec;
}

InstRec& instAt(InstNr nr) {
    return symState.uses.at(nr.nr);
}

void resetSymbols() {
    symState = {};
}

STabNr createSymbTabRec(int32_t name, uint8_t flags, uint32_t line) {
    const STabNr nr{symState.symbols.add()};
    STabRec& symbol = symAt(nr);
    symbol.name = name;
    symbol.flags = flags;
    symbol.line = line;
    return nr;
}

void handleSymbol(SymTab& list, int32_t name, uint8_t flags, uint32_t line) {
    if (list.byName.contains(name)) {
        if ((flags & (SYM_EXPORTED | SYM_IMPORTED)) != 0 && isLenient(cMP))
            return recordOnce(cMP, Msg::SymbolListedTwice, line, nameText(name));
        recordError(cMP, ERR_SEMANTIC, Msg::SymbolTwiceInSymbolList, line, nameText(name));
        if ((flags & (SYM_EXPORTED | SYM_IMPORTED)) != 0) return;
    }
    const STabNr nr = createSymbTabRec(name, flags, line);
    if ((flags & SYM_FORMAL) != 0)
        symAt(nr).node = static_cast<int32_t>(currentRec<KIND_TNODE>().nr.nr);
    else if ((flags & SYM_VALUE_NODE) != 0)
        symAt(nr).node = minus(currentRec<KIND_VNODE>().nr.nr);
    append(list, nr);
}

void removeNamesOf(SymTab& table, const SymTab& other) {
    SymTab kept;
    for (STabNr nr = table.first; nr;) {
        const STabNr next{symAt(nr).next};
        symAt(nr).next = 0;
        if (!other.byName.contains(symAt(nr).name)) append(kept, nr);
        nr = next;
    }
    kept.definedNames = std::move(table.definedNames);
    kept.definedPrefixes = std::move(table.definedPrefixes);
    kept.prefixLen = table.prefixLen;
    table = std::move(kept);
}

void catSymTab(SymTab& dest, SymTab& src, uint8_t flag) {
    bool common = false;
    for (STabNr nr = src.first; nr; nr = STabNr{symAt(nr).next})
        common = common || dest.byName.contains(symAt(nr).name);
    if (common) removeNamesOf(dest, src);
    for (STabNr nr = src.first; nr;) {
        STabRec& symbol = symAt(nr);
        const STabNr next{symbol.next};
        symbol.next = 0;
        symbol.flags |= flag;
        append(dest, nr);
        nr = next;
    }
    src = {};
}

STabNr updateSymbTab(int32_t name, uint8_t flags, uint32_t line) {
    if (name == 0) return anonymousSymbol(flags, line);
    SymTab& table = cMP->symTab;
    STabNr nr = findSymbol(table, name);
    if (nr && symAt(nr).node == 0)
        meetDefinition(symAt(nr), flags, line);
    else
        nr = {};
    if (!noteDefined(table, name))
        recordError(cMP, ERR_SEMANTIC, Msg::SymbolAlreadyDefined, line, nameText(name));
    if (!nr) {
        nr = createSymbTabRec(name, flags, line);
        append(table, nr);
    }
    setSymbolNode(table, nr,
                  name > 0 ? static_cast<int32_t>(nextRec<KIND_TNODE>(cMP).nr)
                           : minus(nextRec<KIND_VNODE>(cMP).nr));
    return nr;
}

bool handleDefined(STabNr formals, int32_t& moduleRef, int32_t& name) {
    const uint32_t place = placeOf(formals, name);
    if (place == 0) return false;
    symAt(formalAt(formals, place)).flags |= SYM_FORMAL_USED;
    moduleRef = REF_FORMAL;
    name = static_cast<int32_t>(place);
    return true;
}

STabNr formalAt(STabNr formals, uint32_t position) {
    if (position > walkedLength && formals) {
        const NameIndex& index = nameIndexOf(formals);
        return position <= index.byPlace.size() ? index.byPlace[position - 1] : STabNr{};
    }
    STabNr nr = formals;
    for (uint32_t place = 1; nr && place < position; ++place) nr = STabNr{symAt(nr).next};
    return position == 0 ? STabNr{} : nr;
}

STabNr findSymbol(const SymTab& table, int32_t name) {
    const auto found = table.byName.find(name);
    return found == table.byName.end() ? STabNr{} : found->second;
}

STabNr findSymbTabRec(int32_t& moduleRef, int32_t name) {
    if (const STabNr own = findSymbol(cMP->symTab, name)) {
        if (moduleRef == REF_UNRESOLVED) moduleRef = REF_OWN;
        return own;
    }
    const auto found = cMP->modRefs.imported.find(name);
    if (found == cMP->modRefs.imported.end()) return {};
    for (const auto& [ref, symbol] : found->second) {
        const auto number = static_cast<int32_t>(ref->number);
        if (number == moduleRef) continue;
        if (moduleRef != REF_UNRESOLVED) return symbol;
        if ((symAt(symbol).flags & SYM_ALSO_LOCAL) != 0) return {};
        moduleRef = number;
        return symbol;
    }
    return {};
}

STabNr findSymbTabRecByNr(ModuleRec* module, int32_t moduleRef, int32_t node) {
    const SymTab* table = tableOf(module, moduleRef);
    if (table != nullptr) {
        const auto found = table->byNode.find(node);
        if (found != table->byNode.end()) return found->second;
    }
    fatalError(Fatal::Internal, "Corrupted symbol table.");
}

void setSymbolNode(SymTab& table, STabNr symbol, int32_t node) {
    symAt(symbol).node = node;
    table.byNode.try_emplace(node, symbol);
}

void clearSymbolNode(SymTab& table, int32_t name, int32_t node) {
    const STabNr symbol = findSymbol(table, name);
    if (!symbol || symAt(symbol).node != node) return;
    symAt(symbol).node = 0;
    table.byNode.erase(node);
}

void chkIfSymbolDef(int32_t& moduleRef, int32_t& name, int32_t& hasActuals, uint32_t line,
                    const ErrPlace* blamed) {
    const ErrPlace place = blamed != nullptr ? *blamed : ErrPlace{cMP, line};
    const STabNr nr = symbolOfUse(moduleRef, name, line);
    if (!nr) fatalError(Fatal::Internal, "Corrupted symbol table.");
    STabRec& symbol = symAt(nr);
    symbol.needed = 1;
    const std::string_view text = nameText(name);
    name = static_cast<int32_t>(magnitude(symbol.node));
    if (cMP->importsState != 0 && moduleRef > REF_OWN && (symbol.flags & SYM_IMPORTED) == 0)
        recordError(place.module, ERR_SEMANTIC, Msg::SymbolNotInImports, place.line, text);
    const bool parameterized = (symbol.flags & SYM_PARAMETERIZED) != 0;
    if (symbol.unread == 0 && parameterized != (hasActuals != 0)) {
        const Msg code = parameterized ? Msg::BracesExpected : Msg::BracesNotAllowed;
        recordError(place.module, ERR_SEMANTIC, code, place.line, text);
        name = 0;
    }
    if (name == 0) {
        hasActuals = 0;
        moduleRef = symbol.unread != 0 ? REF_UNREAD : REF_UNRESOLVED;
    }
    if (cMP->options.xref) addInst(nr, line);
}

void addInst(STabNr symbol, uint32_t line) {
    const InstNr use{symState.uses.add()};
    instAt(use).line = line;
    Symbol& entry = symState.symbols.at(symbol.nr);
    (entry.lastUse ? instAt(entry.lastUse).next : entry.rec.uses) = use.nr;
    entry.lastUse = use;
}

void findUses(STabNr symbol, std::vector<uint32_t>& lines) {
    lines.clear();
    for (InstNr use{symAt(symbol).uses}; use; use = InstNr{instAt(use).next})
        lines.push_back(instAt(use).line);
    std::sort(lines.begin(), lines.end());
}

int32_t findEnumExtMarkIdx() {
    KeepRec<KIND_VNODE> keep;
    ModuleRec* const module = typeModule();
    const auto count = static_cast<int32_t>(nextRec<KIND_VNODE>(module).nr);
    VNodeNr item{tNode.namedVals};
    for (int32_t place = 0; item && place < count; ++place) {
        readRec(module, item);
        if (vNode.valCode == TYP_EXTENSION_MARKER) return place;
        item = VNodeNr{vNode.next};
    }
    return -1;
}

bool handleNamed(TNodeRef type, int32_t& moduleRef, int32_t& name) {
    readRec(type);
    if (tNode.namedVals == 0) return false;
    int32_t known = name;
    if (type.module != cMP) {
        const auto number = static_cast<int32_t>(findStri(type.module, nameText(name)).nr);
        known = name < 0 ? -number : number;
    }
    const STabNr list = findSymbTabRecByNr(type.module, REF_OWN, minus(tNode.namedVals));
    const STabNr first{symAt(list).formals};
    const uint32_t place = known == 0 ? 0 : placeOf(first, known);
    if (place == 0) return false;
    // The marker has a record of its own, but no place on the list: the item's own number tells.
    name = static_cast<int32_t>(magnitude(symAt(formalAt(first, place)).node));
    moduleRef = static_cast<int32_t>(handleImplImports(cMP, type.module));
    return true;
}

} // namespace orvo
