// Whether `op OPERATION ::= 5` uses a macro or an ordinary type tells only the module that defines
// OPERATION, which may not have been read when the value is.

#include "solve/solve_macro.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "diag/orvoerr.h"
#include "lex/orvotok.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"

namespace orvo {
namespace {

enum class Meaning : uint8_t { ImportedMacro, OwnMacro, Imported, Undefined, Other };

/// What a name of the current module means. Imported is one that leads to no definition that can be
/// looked at.
Meaning meaningOf(int32_t name) {
    const std::string_view text = getStri(cMP, name);
    if (cMP->macros.contains(text)) return Meaning::OwnMacro;
    Meaning meaning = Meaning::Undefined;
    const ModuleRec* module = cMP;
    for (size_t left = run.modules.size(); left != 0; --left) { // imports may go round
        const auto own = static_cast<int32_t>(findStri(module, text).nr);
        const STabNr symbol = own == 0 ? STabNr{} : findSymbol(module->symTab, own);
        if (symbol && symAt(symbol).node != 0) return Meaning::Other;
        const auto found = module->modRefs.imported.find(own);
        if (own == 0 || found == module->modRefs.imported.end()) break;
        meaning = Meaning::Imported;
        module = found->second.front().first->module;
        if (module == nullptr || !isExporter(module)) break;
        if (module->macros.contains(text)) return Meaning::ImportedMacro;
    }
    return meaning;
}

/// The first token of the text of the current value record.
const Token& firstToken() {
    readRec(cMP, deferredText(vNode));
    return tokenAt(TokNr{dNode.first});
}

bool isOfObjId(int32_t code) {
    switch (code) {
    case TOK_LBRACE:
    case TOK_RBRACE:
    case TOK_LPAREN:
    case TOK_RPAREN:
    case TOK_DOT:
    case TOK_NUMBER:
    case TOK_VALUEID:
    case TOK_TYPEID:
    case TOK_MODULEID:
    case TOK_COMPONENTID: return true;
    default: return false;
    }
}

/// The text of the current deferred range may be that of an object identifier.
bool isObjIdText() {
    if (dNode.count == 2) return false; // { }
    for (TokNr at{dNode.first}; isOfObjId(tokenAt(at).code); at = TokNr{tokenAt(at).next})
        if (at.nr == dNode.last) return true;
    return false;
}

/// The current type record becomes one of the kind, without a reference.
void makeType(TNodeNr type, uint8_t kind) {
    tNode.refMod = REF_UNRESOLVED;
    tNode.ref = 0;
    setTypeNode(kind);
    writeRec(cMP, type);
}

/// Gives the value of a use, whose type is a macro, its own. False when its text tells none.
bool governByText(MacroUse& use) {
    readRec(cMP, use.value);
    const int32_t first = firstToken().code;
    const bool isNumber = first == TOK_NUMBER || first == TOK_MINUS;
    const bool isReference = first == TOK_VALUEID || first == TOK_MODULEID;
    const bool isObjId = (isReference || first == TOK_LBRACE) && isObjIdText();
    use.byReference = isReference && isObjId;
    const TNodeNr type{vNode.govType};
    readRec(cMP, type);
    makeType(type, isNumber ? TYP_INTEGER : isObjId ? TYP_OBJID : TYP_NULL);
    return isNumber || isObjId;
}

/// What is left out is a name that leads nowhere.
void leaveOutName(Msg code, uint32_t line, int32_t name, int32_t node) {
    recordError(cMP, ERR_WARNING, code, line, getStri(cMP, name));
    cMP->macros.emplace(getStri(cMP, name));
    clearSymbolNode(cMP->symTab, name, node);
}

/// Takes the heads `gone`, in ascending order, off a chain of assignments. Each becomes a NULL that
/// nothing leads to.
template <RecKind K>
void leaveOut(const std::vector<RecNr<K>>& gone, RecNr<K>& first, RecNr<K>& last, Msg code) {
    if (gone.empty()) return;
    auto& record = bufferRec<K>();
    std::vector<RecNr<K>> kept;
    for (const RecNr<K> nr : chain(cMP, first))
        if (!std::ranges::binary_search(gone, nr.nr, {}, &RecNr<K>::nr)) kept.push_back(nr);
    first = kept.empty() ? RecNr<K>{} : kept.front();
    last = kept.empty() ? RecNr<K>{} : kept.back();
    for (size_t i = 0; i < kept.size(); ++i) {
        readRec(cMP, kept[i]);
        record.next = i + 1 < kept.size() ? kept[i + 1].nr : 0;
        writeRec(cMP, kept[i]);
    }
    for (const RecNr<K> nr : gone) {
        readRec(cMP, nr);
        leaveOutName(code, record.line, record.name,
                     K == KIND_VNODE ? minus(nr.nr) : static_cast<int32_t>(nr.nr));
        const uint32_t line = record.line;
        record = {};
        record.line = line;
        if constexpr (K == KIND_VNODE)
            record.valCode = TYP_NULL;
        else
            setTypeNode(TYP_NULL);
        writeRec(cMP, nr);
    }
}

/// A use by notation, which no type has, of a name that is no macro.
void reportNoMacro(const MacroUse& use, Meaning meaning) {
    int32_t moduleRef = REF_UNRESOLVED;
    int32_t name = use.macro;
    int32_t actuals = 0;
    if (meaning == Meaning::Undefined)
        chkIfSymbolDef(moduleRef, name, actuals, use.line);
    else
        recordError(cMP, ERR_SEMANTIC, Msg::MacroExpected, use.line, getStri(cMP, use.macro));
}

// ---- values by reference ------------------------------------------------------------------------

/// A use in the module that it stands in.
struct UseRef {
    ModuleRec* module = nullptr;
    MacroUse* use = nullptr;
};

/// A symbol of the current module that a value names; `moduleRef` becomes its module.
STabNr symbolNamed(int32_t& moduleRef, int32_t name) {
    if (moduleRef == REF_UNRESOLVED) return findSymbTabRec(moduleRef, name);
    if (moduleRef == REF_OWN) return findSymbol(cMP->symTab, name);
    const ModRef* const ref = matchingNr(cMP->modRefs, static_cast<uint32_t>(moduleRef));
    return ref != nullptr ? findSymbol(ref->symbols, name) : STabNr{};
}

/// The value that the text of a use refers to; none when it is not found.
VNodeRef targetOf(const UseRef& at) {
    const CurrentModule inModule(at.module);
    readRec(cMP, at.use->value);
    const Token* token = &firstToken();
    int32_t moduleRef = REF_UNRESOLVED;
    if (token->code == TOK_MODULEID) { // Module.value
        moduleRef = token->stri();
        token = &tokenAt(TokNr{tokenAt(TokNr{token->next}).next});
    }
    if (token->code != TOK_VALUEID) return {};
    const STabNr symbol = symbolNamed(moduleRef, token->stri());
    if (!symbol || symAt(symbol).node >= 0) return {};
    return {refModule(cMP, moduleRef), VNodeNr{magnitude(symAt(symbol).node)}};
}

/// The use that defines a value; none when no macro does.
UseRef useOf(VNodeRef value) {
    auto& uses = value.module->macroUses;
    const auto at = std::ranges::lower_bound(uses, value.nr.nr, {},
                                             [](const MacroUse& use) { return use.value.nr; });
    return {value.module, at != uses.end() && at->value == value.nr ? &*at : nullptr};
}

/// The type of a value, as another value can be given it: a kind, or the definition that it names.
struct Governor {
    uint8_t kind = TYP_OBJID;
    TNodeRef definition;
};

/// A kind whose records need no parts.
bool isPlain(uint8_t kind) {
    return (kind <= TYP_NULL && kind != TYP_ENUM) || kind == TYP_RELOID;
}

Governor governorOf(VNodeRef value) {
    readRec(value);
    ModuleRec* const module = getModPtr(value.module, vNode.govTypeMod);
    if (module == nullptr || vNode.govType == 0) return {};
    readRec(module, TNodeNr{vNode.govType});
    if (isPlain(tNode.typeCode)) return {tNode.typeCode, {}};
    if (tNode.typeCode != TYP_SYNONYM) return {};
    ModuleRec* const target = refModule(module, tNode.refMod);
    if (target == nullptr || tNode.ref == 0 || tNode.syntax != 0) return {};
    return {TYP_SYNONYM, {target, TNodeNr{tNode.ref}}};
}

void govern(const UseRef& at, const Governor& governor) {
    const CurrentModule inModule(at.module);
    readRec(cMP, at.use->value);
    const TNodeNr type{vNode.govType};
    readRec(cMP, type);
    makeType(type, governor.kind);
    if (!governor.definition) return;
    tNode.refMod = static_cast<int32_t>(handleImplImports(cMP, governor.definition.module));
    tNode.ref = governor.definition.nr.nr;
    writeRec(cMP, type);
}

/// Follows the references from a use to a value that is none. Values that refer to one another stay
/// what they are: that is reported when they are read.
void governByReference(UseRef at) {
    std::vector<UseRef> way;
    VNodeRef target;
    while (at.use != nullptr && std::exchange(at.use->byReference, false)) {
        way.push_back(at);
        target = targetOf(at);
        if (!target) return;
        at = useOf(target);
    }
    if (way.empty()) return;
    const Governor governor = governorOf(target);
    for (const UseRef& passed : way) govern(passed, governor);
}

} // namespace

void settleMacroTypes() {
    std::vector<TNodeNr> leftOut;
    for (const MacroUse& use : cMP->macroUses) {
        if (!use.type) continue;
        const Meaning meaning = meaningOf(use.macro);
        if (meaning != Meaning::OwnMacro && meaning != Meaning::ImportedMacro) continue;
        leftOut.push_back(use.type);
    }
    leaveOut(leftOut, cMP->firstTypeHead, cMP->lastTypeHead, Msg::MacroTypeLeftOut);
}

void settleMacros() {
    std::vector<MacroUse> settled;
    std::vector<VNodeNr> leftOut;
    for (MacroUse& use : cMP->macroUses) {
        const Meaning meaning = meaningOf(use.macro);
        if (meaning == Meaning::Undefined || meaning == Meaning::Other) {
            if (use.byNotation) reportNoMacro(use, meaning);
            continue;
        }
        if (meaning == Meaning::Imported && !use.byNotation) continue;
        if (meaning != Meaning::OwnMacro) {
            recordOnce(cMP, Msg::MacroUsed, use.line, getStri(cMP, use.macro));
            cMP->macros.emplace(getStri(cMP, use.macro));
        }
        if (!use.value) continue;
        if (governByText(use))
            settled.push_back(use);
        else
            leftOut.push_back(use.value);
    }
    cMP->macroUses = std::move(settled);
    leaveOut(leftOut, cMP->firstValueHead, cMP->lastValueHead, Msg::MacroValueLeftOut);
}

void governMacroReferences() {
    for (MacroUse& use : cMP->macroUses) governByReference({cMP, &use});
}

} // namespace orvo
