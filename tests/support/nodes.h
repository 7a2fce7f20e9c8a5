#pragma once

// Records for tests that need no source: made in the current module and written at once.

#include <initializer_list>
#include <string_view>

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
inline TNodeNr newTypeRef(TNodeNr target) {
    return newType(TYP_SYNONYM, [&] {
        tNode.refMod = REF_OWN;
        tNode.ref = target.nr;
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
inline VNodeNr newNumber(int64_t number) {
    return newValue(TYP_INTEGER, [&] { vNode.val.number = i64of(number); });
}
inline VNodeNr newValueRef(VNodeNr target) {
    return newValue(TYP_SYNONYM, [&] {
        vNode.refMod = REF_OWN;
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
/// Names a value as a component and gives it its governing type.
inline VNodeNr component(VNodeNr value, std::string_view name, TNodeNr type) {
    readRec(cMP, value);
    vNode.name = nameOf(name);
    vNode.govTypeMod = REF_OWN;
    vNode.govType = type.nr;
    writeCurrent<KIND_VNODE>();
    return value;
}

} // namespace orvo
