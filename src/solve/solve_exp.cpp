// Copies of parameterized definitions. A copy gets the next number of its kind, its parts follow
// it, and a link to a sibling becomes the number that the sibling's copy will get. What the text
// still defers (constraints, defaults, actual parameters) is shared with the definition: the text
// is replayed again for each copy.

#include "solve/solve_exp.h"

#include <vector>

#include "solve/solve_cur.h"
#include "solve/solve_par.h"
#include "symtab/orvosym.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {

namespace {

/// The copy takes its line and instance number from the instantiation.
template <typename Node> void markInstance(Node& node) {
    if (const InstContext* instance = instContext()) {
        node.line = instance->line;
        node.actParRec = instance->instance;
    }
}

/// Stores a finished copy and makes it current.
void storeCopy(TNodeNr nr, const TNode& copy) {
    flushRecs(-1);
    readRec(cMP, nr);
    tNode = copy;
    writeRec(cMP, nr);
}
void storeCopy(VNodeNr nr, const VNode& copy) {
    flushRecs(KIND_VNODE);
    readRec(cMP, nr);
    vNode = copy;
    writeRec(cMP, nr);
}

/// A copy of the current record, not finished.
TNodeNr beginTypeCopy(TNode& copy) {
    copy = tNode;
    const TNodeNr nr = newRec<KIND_TNODE>();
    tNode = copy;
    return nr;
}
VNodeNr beginValueCopy(VNode& copy) {
    copy = vNode;
    const VNodeNr nr = newRec<KIND_VNODE>();
    vNode = copy;
    return nr;
}

void actualiseType(TNode& copy) {
    if (copy.typeCode == TYP_SYNONYM) {
        if (copy.refMod == REF_FORMAL && newNotation()) copy.nodeFlags |= NF_DUMMY;
        changeFormalTypeRefToActualRef(copy.refMod, copy.ref);
    }
    markInstance(copy);
}
void actualiseValue(VNode& copy) {
    if (copy.valCode == TYP_SYNONYM) changeFormalValueRefToActualRef(copy.refMod, copy.ref);
    markInstance(copy);
}

/// The actual parameter record `actual` of the instantiating module is governed by the type record
/// that comes next in the current one.
void governActual(ModuleRec* module, VNodeNr actual) {
    const TNodeNr governor = nextRec<KIND_TNODE>(cMP);
    readRec(module, actual);
    vNode.govType = governor.nr;
    vNode.govTypeMod = handleImplImports(module, cMP);
    writeRec(module, actual);
    if (vNode.valCode != TYP_OPEN || (vNode.vflags & VF_SET) == 0) return;
    const TNodeNr set{vNode.ref};
    readRec(module, set);
    tNode.ref = governor.nr;
    writeRec(module, set);
}

/// Copies the formal parameters from `formal` on; each copy governs the actual parameter in its
/// place.
void expandForParList(TNodeNr formal) {
    const ANode top = parState.aplStack != 0 ? aplAt(parState.aplStack) : ANode{};
    ModuleRec* const module = top.instModule != 0 ? run.modules[top.instModule - 1].get() : nullptr;
    VNodeNr actual{top.firstActual};
    flushRecs(-1);
    while (formal) {
        if (module != nullptr && actual) {
            governActual(module, actual);
            actual = VNodeNr{vNode.next};
        }
        readRec(cMP, formal);
        const TNodeNr next{tNode.next};
        expandType(TNodeNr{});
        formal = next;
    }
}

void expandTypeFormalParamList(TNode& copy) {
    const TNodeNr formals{copy.formals};
    copy.compStatus = -copy.compStatus;
    copy.next = 0;
    copy.formals = nextRec<KIND_TNODE>(cMP).nr;
    expandForParList(formals);
}

/// Copies a value that a type record points at.
uint32_t expandValueAt(uint32_t nr) {
    readRec(cMP, VNodeNr{nr});
    return expandValue().nr;
}

void expandTypeTagList(TNode& copy) {
    uint32_t tag = copy.tags;
    copy.tags = nextRec<KIND_TAG>(cMP).nr;
    flushRecs(KIND_TAG);
    std::vector<TagRec> tags;
    for (; tag != 0; tag = tagRec.next) {
        readRec(cMP, TagNr{tag});
        tags.push_back(tagRec);
    }
    for (TagRec& each : tags) {
        if (each.tagNr < 0) each.tagNr = minus(expandValueAt(magnitude(each.tagNr)));
        addTagRec(each);
    }
    flushTagRec();
}

/// Copies named numbers, named bits or items into a scope of their own. A name that the definition
/// has twice was reported there.
void expandNamedNumbers(TNodeNr type, TNode& copy) {
    const STabNr scope = updateSymbTab(0, 0, copy.line);
    SymTab names;
    uint32_t value = copy.namedVals;
    copy.namedVals = nextRec<KIND_VNODE>(cMP).nr;
    while (value != 0) {
        readRec(cMP, VNodeNr{value});
        value = vNode.next;
        VNode item;
        const VNodeNr nr = beginValueCopy(item);
        item.govType = type.nr;
        item.next = value != 0 ? nextRec<KIND_VNODE>(cMP).nr : 0;
        actualiseValue(item);
        storeCopy(nr, item);
        if (item.valCode != TYP_EXTENSION_MARKER && !names.byName.contains(item.name))
            handleSymbol(names, item.name, SYM_VALUE_NODE, item.line);
    }
    symAt(scope).formals = names.first.nr;
}

/// Copies a list of components; they belong to `parent`.
void expandTypeCompList(TNodeNr parent, TNode& copy) {
    if (copy.ref == 0) return;
    TNodeNr component{copy.ref};
    copy.ref = nextRec<KIND_TNODE>(cMP).nr;
    while (component) {
        readRec(cMP, component);
        component = TNodeNr{tNode.next};
        expandType(parent);
    }
}

/// Copies the type that a selection, or a field of a class, is taken from.
void expandTypeChild(TNode& copy) {
    if (copy.ref == 0) return;
    readRec(cMP, TNodeNr{copy.ref});
    copy.ref = nextRec<KIND_TNODE>(cMP).nr;
    expandType(TNodeNr{});
}

/// Copies a chain of names (of a selection, of ANY DEFINED BY, of fields).
void expandActualParamList(TNode& copy) {
    if (copy.syntax <= 0) return;
    auto entry = static_cast<uint32_t>(copy.syntax);
    copy.syntax = static_cast<int32_t>(nextRec<KIND_SNODE>(cMP).nr);
    while (entry != 0) {
        readRec(cMP, SNodeNr{entry});
        const SNode original = sNode;
        entry = original.next > 0 ? static_cast<uint32_t>(original.next) : 0;
        addSyntaxArc(original.line);
        const uint32_t line = sNode.line;
        sNode = original;
        sNode.line = line;
        sNode.next = entry != 0 ? static_cast<int32_t>(nextRec<KIND_SNODE>(cMP).nr) : 0;
    }
    flushRecs(KIND_SNODE);
}

/// Copies the reference to the object that information is taken from.
void expandInfoFromObject(TNode& copy) {
    if (copy.ref != 0) copy.ref = expandValueAt(copy.ref);
}

void expandNamedType(TNodeNr parent, TNode& copy) {
    expandActualParamList(copy);
    if ((copy.nodeFlags & NF_VARIABLE) != 0)
        copy.ref = parent.nr;
    else if (copy.refMod == REF_OBJECT)
        expandInfoFromObject(copy);
    else if (copy.typeCode != TYP_ANY)
        expandTypeChild(copy);
}

/// Copies the DEFAULT value to the end of the module's chain of such values.
void expandDefaultValue(TNodeNr type, TNode& copy) {
    readRec(cMP, VNodeNr{copy.defaultVal});
    VNode value = vNode;
    const VNodeNr nr = addValDefArc(type, value.line);
    value.govType = type.nr;
    value.govTypeMod = REF_OWN;
    value.next = 0;
    actualiseValue(value);
    copy.defaultVal = nr.nr;
    if (value.valCode == TYP_OPEN && value.refMod == REF_FORMAL && value.ref != 0) {
        readRec(cMP, TNodeNr{value.ref});
        value.ref = expandType(TNodeNr{}).nr;
    }
    storeCopy(nr, value);
}

/// The parts that the kind of a type has.
void expandParts(TNodeNr nr, TNodeNr parent, TNode& copy) {
    switch (copy.typeCode) {
    case TYP_INTEGER:
    case TYP_ENUM:
    case TYP_BITSTR:
        if (copy.namedVals != 0) expandNamedNumbers(nr, copy);
        break;
    case TYP_SEQ:
    case TYP_SEQOF:
    case TYP_SET:
    case TYP_SETOF:
    case TYP_CHOICE:
    case TYP_INSTANCE_OF:
    case TYP_CLASS:
    case TYP_EXTADDGRP: expandTypeCompList(nr, copy); break;
    case TYP_ANY:
    case TYP_SELECTION:
    case TYP_FIELDLIST: expandNamedType(parent, copy); break;
    default: break;
    }
}

} // namespace

TNodeNr expandType(TNodeNr parent) {
    TNode copy;
    const TNodeNr nr = beginTypeCopy(copy);
    if (copy.formals != 0) expandTypeFormalParamList(copy);
    if (copy.tags != 0) expandTypeTagList(copy);
    expandParts(nr, parent, copy);
    if (copy.defaultVal != 0) expandDefaultValue(nr, copy);
    if (copy.next != 0) copy.next = nextRec<KIND_TNODE>(cMP).nr;
    actualiseType(copy);
    storeCopy(nr, copy);
    return nr;
}

VNodeNr expandValue() {
    VNode copy;
    const VNodeNr nr = beginValueCopy(copy);
    if (copy.formals != 0) {
        const TNodeNr formals{copy.formals};
        copy.valStatus = 0;
        copy.next = 0;
        copy.formals = nextRec<KIND_TNODE>(cMP).nr;
        expandForParList(formals);
    }
    actualiseValue(copy);
    storeCopy(nr, copy);
    return nr;
}

// ---- governors of parameterized values ----------------------------------------------------------

namespace {

/// A name in the text is one of the formal parameters of its definition.
bool textMentionsFormal(DNodeNr text) {
    const ReplayCursor replay(cMP, text);
    if (inp.formals == 0) return false;
    do {
        int32_t refMod = REF_UNRESOLVED;
        int32_t name = curCode() == TOK_TYPEID || curCode() == TOK_VALUEID ? curToken().stri() : 0;
        if (name != 0 && handleDefined(STabNr{inp.formals}, refMod, name)) return true;
        if (curCode() == TOK_MARKER && dependsOnFormals(TNodeNr{magnitude(curToken().stri())}))
            return true;
    } while (advance());
    return false;
}

bool valueDependsOnFormals(VNodeNr value) {
    readRec(cMP, value);
    const VNode node = vNode;
    if (node.refMod == REF_DEFERRED) return textMentionsFormal(deferredText(node));
    if (node.valCode == TYP_OPEN) return dependsOnFormals(TNodeNr{node.ref});
    if (node.valCode != TYP_SYNONYM) return false;
    return node.refMod == REF_FORMAL ||
           (isDeferred(node.deferred) && textMentionsFormal(deferredText(node.deferred)));
}

/// Components, and named numbers: one of the list mentions a formal parameter.
bool compDependsOnFormals(TNodeNr component) {
    while (component) {
        if (dependsOnFormals(component)) return true;
        readRec(cMP, component);
        component = TNodeNr{tNode.next};
    }
    return false;
}
bool namedDependsOnFormals(VNodeNr item) {
    while (item) {
        if (valueDependsOnFormals(item)) return true;
        readRec(cMP, item);
        item = VNodeNr{vNode.next};
    }
    return false;
}
bool tagDependsOnFormals(TagNr tag) {
    while (tag) {
        readRec(cMP, tag);
        const TagRec rec = tagRec;
        if (rec.tagNr < 0 && valueDependsOnFormals(VNodeNr{magnitude(rec.tagNr)})) return true;
        tag = TagNr{rec.next};
    }
    return false;
}

/// What the kind of a type refers to.
bool partsDependOnFormals(const TNode& node) {
    if (node.typeCode == TYP_SYNONYM)
        return node.refMod == REF_FORMAL ||
               (isDeferred(node.syntax) && textMentionsFormal(deferredText(node.syntax)));
    if (node.refMod == REF_OBJECT) return valueDependsOnFormals(VNodeNr{node.ref});
    const bool hasParts = isStructured(node.typeCode) || node.typeCode == TYP_FIELDLIST;
    return hasParts && (node.nodeFlags & NF_VARIABLE) == 0 &&
           compDependsOnFormals(TNodeNr{node.ref});
}

} // namespace

bool dependsOnFormals(TNodeNr type) {
    readRec(cMP, type);
    const TNode node = tNode;
    return partsDependOnFormals(node) ||
           (isDeferred(node.constraint) && textMentionsFormal(deferredText(node.constraint))) ||
           tagDependsOnFormals(TagNr{node.tags}) ||
           namedDependsOnFormals(VNodeNr{node.namedVals}) ||
           (node.defaultVal != 0 && valueDependsOnFormals(VNodeNr{node.defaultVal}));
}

} // namespace orvo
