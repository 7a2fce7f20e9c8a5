#pragma once

// Records for tests that need no source: made in the current module and written at once.

#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "tree/orvorec.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {

inline int32_t nameOf(std::string_view name) {
    return name.empty() ? 0 : minus(putStri(cMP, name).nr);
}

/// A type record; `change` fills in what the test is about.
template <typename Fn> TNodeNr newType(uint8_t code, Fn&& change) {
    const TNodeNr nr = addTypeArc(nullptr, 1);
    tNode.typeCode = code;
    tNode.checkState = CHECK_SOLVED;
    change();
    writeCurrent<KIND_TNODE>();
    return nr;
}
inline TNodeNr newType(uint8_t code) {
    return newType(code, [] {});
}
/// A reference to a type of the same module, or of the module of a reference number.
inline TNodeNr newTypeRef(TNodeNr target, int32_t refMod = REF_OWN, int32_t constraint = 0) {
    return newType(TYP_SYNONYM, [&] {
        tNode.refMod = refMod;
        tNode.ref = target.nr;
        tNode.constraint = constraint;
    });
}

template <typename Fn> VNodeNr newValue(uint8_t code, Fn&& change) {
    const VNodeNr nr = addValArc(nullptr, 1);
    vNode.valCode = code;
    vNode.checkState = CHECK_SOLVED;
    change();
    writeCurrent<KIND_VNODE>();
    return nr;
}
inline VNodeNr newNumber(int64_t number, uint8_t code = TYP_INTEGER) {
    return newValue(code, [&] { vNode.val.number = i64of(number); });
}
inline VNodeNr newValueRef(VNodeNr target, int32_t refMod = REF_OWN) {
    return newValue(TYP_SYNONYM, [&] {
        vNode.refMod = refMod;
        vNode.ref = target.nr;
    });
}
inline VNodeNr newString(uint8_t code, std::string_view text) {
    return newValue(code, [&] {
        vNode.val.str.striLen = static_cast<uint16_t>(text.size());
        vNode.val.str.stri = text.empty() ? 0 : putStri(cMP, text).nr;
    });
}
/// A value with components or elements.
inline VNodeNr newStru(uint8_t code, VNodeNr first) {
    return newValue(code, [&] { vNode.ref = first.nr; });
}

/// Chains records in order and returns the first.
inline VNodeNr chain(std::initializer_list<VNodeNr> values) {
    VNodeNr next;
    for (const VNodeNr* at = values.end(); at != values.begin();) {
        readRec(cMP, *--at);
        vNode.next = next.nr;
        writeCurrent<KIND_VNODE>();
        next = *at;
    }
    return next;
}
inline TNodeNr chain(std::initializer_list<TNodeNr> types) {
    TNodeNr next;
    for (const TNodeNr* at = types.end(); at != types.begin();) {
        readRec(cMP, *--at);
        tNode.next = next.nr;
        writeCurrent<KIND_TNODE>();
        next = *at;
    }
    return next;
}
/// Names a value as a component and gives it its governing type.
inline VNodeNr component(VNodeNr value, std::string_view name, TNodeNr type) {
    readRec(cMP, value);
    vNode.name = nameOf(name);
    vNode.govTypeMod = REF_OWN;
    vNode.govType = type.nr;
    writeCurrent<KIND_VNODE>();
    return value;
}

template <typename Fn> SubNr newSub(uint8_t kind, Fn&& change) {
    const SubNr nr = addSubArc(REF_OWN, TNodeNr{1}, 1);
    subRec.subKind = kind;
    change();
    writeCurrent<KIND_SUB>();
    return nr;
}
/// An operator or a SIZE over operands, which are chained.
inline SubNr newSub(uint8_t kind, std::initializer_list<SubNr> operands) {
    SubNr next;
    for (const SubNr* at = operands.end(); at != operands.begin();) {
        readRec(cMP, *--at);
        subRec.next = next.nr;
        writeCurrent<KIND_SUB>();
        next = *at;
    }
    return newSub(kind, [&] { subRec.left = next.nr; });
}

/// Makes `target` module 2 of `module`.
inline void addModRef(ModuleRec& module, ModuleRec& target) {
    ModRef& ref = *module.modRefs.refs.emplace_back(std::make_unique<ModRef>());
    ref.number = 2;
    ref.module = &target;
    module.modRefs.modRefFirst = module.modRefs.modRefLast = &ref;
    module.modRefs.byNumber[2] = module.modRefs.byModule[&target] = &ref;
}

} // namespace orvo
