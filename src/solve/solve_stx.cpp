// Information objects (X.681 (07/2002) clauses 10 and 11): the walk of the class's WITH SYNTAX list
// along the tokens of the object, the default syntax, and the setting of fields.
//
// A setting is a value record named after its field; the object's `ref` leads to the first one.
// Texts of settings are delimited while the object is read and parsed when it is complete, since
// the type of a setting may be given by another one of the same object.

#include "solve/solve_stx.h"

#include <unordered_map>

#include "diag/orvoerr_fatal.h"
#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "solve/solve_ref.h"
#include "solve/solve_val_int.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/orvoutil.h"
#include "tree/orvoutil_find.h"
#include "tree/types.h"
#include "tree/values.h"
#include "util/flat.h"

namespace orvo {

namespace {

enum class FieldSort { Type, Set, Value };

/// The sort of the field in `tNode`.
FieldSort fieldSort() {
    if (isValFieldTNode()) return FieldSort::Value;
    return isSetTNode() ? FieldSort::Set : FieldSort::Type;
}

bool beginsType(int32_t code) {
    return code == TOK_MARKER || code == TOK_NULL || code == TOK_TYPEID;
}
bool beginsValue(int32_t code) {
    return isOneTokenValue(code) || code == TOK_MARKER || code == TOK_LBRACE || code == TOK_MINUS ||
           code == TOK_MODULEID || code == TOK_VALUEID;
}

/// The field in `tNode` may be a string, and its value is given by what it contains.
bool containedValueFollows() {
    if (curCode() != TOK_CONTAINING || !newNotation()) return false;
    if (isVariabTypeFieldTNode()) return true;
    const KeepRec<KIND_TNODE> keep;
    skipTypes(true);
    return is(tNode.typeCode, TypeClass::Bits);
}

/// The class of an object: the module of its records and its first field.
struct ObjectClass {
    ModuleRec* module = nullptr;
    TNodeNr firstField;
};

bool isField(const SNode& entry) {
    return entry.token == TOK_TYPEFIELDID || entry.token == TOK_VALUEFIELDID;
}

/// The token at the cursor can begin what a field reference stands for; the field is in `tNode`
/// then.
bool fieldMatches(const ObjectClass& objectClass, std::string_view name, Cause& cause) {
    if (!findTypeCompId(TYP_CLASS, objectClass.module, objectClass.firstField, name)) {
        cause.set(Msg::FieldNameExpected, name);
        return false;
    }
    switch (fieldSort()) {
    case FieldSort::Type:
        if (beginsType(curCode())) return true;
        cause.set(tokenExpected(TOK_TYPEID), name);
        return false;
    case FieldSort::Set:
        if (curCode() == TOK_LBRACE) return true;
        cause.set(tokenExpected(TOK_LBRACE), name);
        return false;
    case FieldSort::Value:
        if (beginsValue(curCode()) || containedValueFollows()) return true;
        cause.set(tokenExpected(TOK_VALUEID), name);
        return false;
    }
    return false;
}

/// The word stands at the cursor, be it reserved in the notation of the object.
bool isWord(std::string_view word) {
    return (curCode() == TOK_TYPEID || isLaterWord(curCode())) && curTokenText() == word;
}

/// The token at the cursor is a word that may stand behind the optional group `group`.
bool wordFollows(const ObjectClass& objectClass, SNodeNr group) {
    readRec(objectClass.module, group);
    for (int32_t nr = sNode.next; nr != 0; nr = sNode.next) {
        readRec(objectClass.module, SNodeNr{magnitude(nr)});
        if (nr < 0) continue; // the end of a group around it: on behind that
        const SNode entry = sNode;
        while (sNode.token == TOK_LBRACKET && sNode.value > 0)
            readRec(objectClass.module, SNodeNr{static_cast<uint32_t>(sNode.value)});
        if (sNode.token == TOK_TYPEID && isWord(getStri(objectClass.module, sNode.value)))
            return true;
        if (entry.token != TOK_LBRACKET) return false;
        sNode = entry;
    }
    return false;
}

/// The token at the cursor can begin the syntax entry `nr`. A group that cannot begin is no error:
/// the cause stays empty.
bool tokenMatches(const ObjectClass& objectClass, SNodeNr nr, Cause& cause) {
    readRec(objectClass.module, nr);
    bool inGroup = false;
    while (sNode.token == TOK_LBRACKET) {
        inGroup = true;
        if (sNode.value <= 0) return false;
        readRec(objectClass.module, SNodeNr{static_cast<uint32_t>(sNode.value)});
    }
    const SNode entry = sNode;
    Cause mismatch;
    bool ok = curCode() == entry.token;
    if (entry.token == TOK_TYPEID) {
        const std::string_view word = getStri(objectClass.module, entry.value);
        ok = isWord(word);
        mismatch.set(Msg::LiteralExpected, word);
    } else if (isField(entry)) {
        ok = fieldMatches(objectClass, getStri(objectClass.module, entry.value), mismatch);
    } else {
        mismatch.set(tokenExpected(entry.token));
    }
    // A group that begins with a type is left out where the word behind it comes first.
    if (ok && inGroup && entry.token == TOK_TYPEFIELDID && newNotation() && curCode() == TOK_TYPEID)
        ok = !wordFollows(objectClass, nr);
    if (!ok && !inGroup) cause = mismatch;
    readRec(objectClass.module, nr);
    return ok;
}

/// Copies a chain of field names into the current module; a name that was solved already is taken
/// from the record it led to. Returns the first entry.
SNodeNr dupFieldList(ModuleRec* module, SNodeNr first) {
    if (!first) fatalError(Fatal::Internal, "Empty field list.");
    const SNodeNr copy = nextRec<KIND_SNODE>(cMP);
    for (SNodeNr nr = first; nr;) {
        readRec(module, nr);
        SNode entry = sNode;
        const bool more = entry.next > 0;
        nr = SNodeNr{more ? static_cast<uint32_t>(entry.next) : 0};
        int32_t name = entry.value;
        ModuleRec* nameModule = module;
        if (entry.module != 0) {
            nameModule = getModPtr(module, entry.module);
            const KeepRec<KIND_TNODE> keep;
            readRec(nameModule, TNodeNr{magnitude(entry.value)});
            name = tNode.name;
        }
        const uint32_t number = putStri(cMP, getStri(nameModule, name)).nr;
        addSyntaxArc(curToken().line);
        sNode.token = entry.token;
        sNode.value = name < 0 ? minus(number) : static_cast<int32_t>(number);
        sNode.next = more ? static_cast<int32_t>(nextRec<KIND_SNODE>(cMP).nr) : 0;
    }
    flushRecs(KIND_SNODE);
    return copy;
}

/// A value whose type another field gives: the setting refers to a new deferred value.
bool parseVariableTypeValueField(VNodeRef setting, TNodeNr type, Cause& cause) {
    setValNode(TYP_SYNONYM);
    vNode.refMod = REF_OWN;
    vNode.ref = nextRec<KIND_VNODE>(cMP).nr;
    const uint32_t line = vNode.line;
    addValArc(instContext(), line);
    vNode.govTypeMod = REF_OWN;
    vNode.govType = type.nr;
    vNode.refMod = REF_DEFERRED;
    vNode.ref = minusWord(nextRec<KIND_DNODE>(cMP).nr);
    flushRecs(KIND_VNODE);
    readRec(setting);
    return deferValue(cause);
}

bool parseVariableTypeSetField(TNodeNr type, Cause& cause) {
    if (curCode() != TOK_LBRACE) {
        cause.set(tokenExpected(TOK_LBRACE));
        return false;
    }
    setValSetNode(REF_OWN, type, minus(nextRec<KIND_DNODE>(cMP).nr));
    return deferValue(cause);
}

/// The setting in `vNode` of a field, in `tNode`, whose type another field of the same object
/// gives.
bool parseVarSettingPassOne(VNodeNr object, Cause& cause) {
    const VNodeRef setting = currentRec<KIND_VNODE>();
    ModuleRec* const module = typeModule();
    if (tNode.syntax <= 0) {
        meetsUnreadType();
        cause.set(Msg::InvalidGoverningTypeClass, getStri(cMP, vNode.name));
        return false;
    }
    const bool isSet = isSetTNode();
    const SNodeNr chain = dupFieldList(module, SNodeNr{static_cast<uint32_t>(tNode.syntax)});
    makePending(setting.module, setting.nr);
    vNode.vflags |= VF_VARIABLE;
    const TNodeNr type = addTypeArc(instContext(), vNode.line);
    setTypeNode(TYP_FIELDLIST);
    tNode.refMod = REF_OBJECT;
    tNode.ref = object.nr;
    tNode.syntax = static_cast<int32_t>(chain.nr);
    flushRecs(KIND_TNODE);
    vNode.govTypeMod = REF_OWN;
    vNode.govType = type.nr;
    if (isSet) return parseVariableTypeSetField(type, cause);
    return parseVariableTypeValueField(setting, type, cause);
}

/// The setting of the field in `tNode`, whose text begins at the cursor, into a new record of the
/// line.
bool parseFieldSetting(ValueList& settings, VNodeNr object, uint32_t line, Cause& cause) {
    const TNodeRef field = currentRec<KIND_TNODE>();
    const uint32_t name = putStri(cMP, getStri(field.module, tNode.name)).nr;
    settings.append(line);
    vNode.name = tNode.name < 0 ? minus(name) : static_cast<int32_t>(name);
    if (isVariabTypeTNode()) return parseVarSettingPassOne(object, cause);
    const bool isType = fieldSort() == FieldSort::Type;
    const int32_t sign = tNode.name < 0 ? -1 : 1;
    return parseSettingPassOne(isType, sign, handleImplImports(cMP, field.module), field.nr, cause);
}

/// The object is complete: parses what its settings defer.
bool finishObject(VNodeRef object) {
    flushRecs(KIND_VNODE);
    readRec(object);
    if (vNode.ref != 0) parseSettingPassTwo(VNodeNr{vNode.ref});
    readRec(object);
    return true;
}

/// Walks the syntax list of the class along the tokens; the cursor ends on the token behind.
bool parseSyntaxList(const ObjectClass& objectClass, int32_t first, VNodeNr object, Cause& cause) {
    ValueList settings;
    for (int32_t nr = first; nr != 0;) {
        if (nr < 0) {
            readRec(objectClass.module, SNodeNr{magnitude(nr)});
            nr = sNode.next;
            continue;
        }
        const bool matches = tokenMatches(objectClass, SNodeNr{static_cast<uint32_t>(nr)}, cause);
        const SNode entry = sNode;
        if (entry.token == TOK_LBRACKET) {
            nr = matches ? entry.value : entry.next;
            continue;
        }
        if (!matches) return false;
        if (isField(entry) && !parseFieldSetting(settings, object, curToken().line, cause))
            return false;
        if (!advance()) break;
        nr = entry.next;
    }
    return true;
}

} // namespace

bool parseDefinedStx(Cause& cause) {
    const VNodeRef object = currentRec<KIND_VNODE>();
    const ObjectClass objectClass{typeModule(), TNodeNr{tNode.ref}};
    const auto first = static_cast<int32_t>(tNode.syntaxList);
    if (curCode() != TOK_LBRACE) {
        cause.set(tokenExpected(TOK_LBRACE));
        return false;
    }
    if (!advance() || !parseSyntaxList(objectClass, first, object.nr, cause)) return false;
    if (curCode() != TOK_RBRACE) {
        cause.set(tokenExpected(TOK_RBRACE));
        return false;
    }
    return finishObject(object);
}

bool parseDefaultStx(Cause& cause) {
    const VNodeRef object = currentRec<KIND_VNODE>();
    const ObjectClass objectClass{typeModule(), TNodeNr{tNode.ref}};
    if (curCode() != TOK_LBRACE) {
        cause.set(tokenExpected(TOK_LBRACE));
        return false;
    }
    ValueList settings;
    if (nextCode() == TOK_RBRACE) return advance();
    do {
        if (!advance()) return false;
        const bool named = curCode() == TOK_TYPEFIELDID || curCode() == TOK_VALUEFIELDID;
        if (!named || !findTypeCompId(TYP_CLASS, objectClass.module, objectClass.firstField,
                                      curTokenText())) {
            cause.set(Msg::FieldNameExpected, curTokenText());
            return false;
        }
        const uint32_t line = curToken().line; // what is wrong with a setting stands at its name
        if (!advance() || !parseFieldSetting(settings, object.nr, line, cause)) return false;
    } while (advance() && curCode() == TOK_COMMA);
    if (curCode() != TOK_RBRACE) {
        cause.set(tokenExpected(TOK_RBRACE));
        return false;
    }
    return finishObject(object);
}

// ---- object sets that fields of objects give ----------------------------------------------------

namespace {

/// The types that gave object sets, by module and number of the setting.
struct StxState {
    FlatMap<uint64_t, TNodeNr> fieldLists;
};
StxState stxState;

/// Number by which the current module refers to `module`; 0 when it does not.
uint32_t getModNrOfSet(ModuleRec* module) {
    if (module == cMP) return REF_OWN;
    const ModRef* ref = matchingPtr(cMP->modRefs, module);
    return ref != nullptr ? ref->number : 0;
}

/// Follows the information from an object in `tNode` to the set it stands for; false when it is
/// none.
bool readFieldListSet() {
    if (tNode.typeCode != TYP_FIELDLIST || tNode.refMod != REF_OBJECT || tNode.syntax <= 0)
        return false;
    if (!skipFieldList()) return false;
    uint32_t left = nextRec<KIND_TNODE>(typeModule()).nr;
    while (!isSetTNode() && tNode.typeCode == TYP_SYNONYM && tNode.ref != 0 && left-- != 0) {
        ModuleRec* const module = refModule(typeModule(), tNode.refMod);
        if (module == nullptr) return false;
        readRec(module, TNodeNr{tNode.ref});
    }
    // With notation of today a way through sets stays: its end is a field, the objects are many.
    return isSetTNode() && (tNode.constraint != 0 || !newNotation());
}

} // namespace

bool isFieldListObjSet() {
    const KeepRec<KIND_TNODE> keep;
    return readFieldListSet() && isObjSetTNode();
}

void setFieldListObjSet() {
    const KeepRec<KIND_TNODE> keep;
    if (!readFieldListSet()) return;
    const TNodeRef set = currentRec<KIND_TNODE>();
    const uint32_t module = getModNrOfSet(set.module);
    if (module == 0) return;
    stxState.fieldLists[keyOf(currentRec<KIND_VNODE>())] = TNodeNr{vNode.ref};
    vNode.refMod = static_cast<int32_t>(module);
    vNode.ref = set.nr.nr;
}

TNodeNr givenByFieldList(VNodeRef setting) {
    const auto found = stxState.fieldLists.find(keyOf(setting));
    return found == stxState.fieldLists.end() ? TNodeNr{} : found->second;
}

} // namespace orvo
