#include "tree/values.h"

#include "tree/orvorec.h"

namespace orvo {
namespace {

/// Appends the VNode that comes next to one of the module's chains; the old tail is left pending,
/// so that addValArc writes it.
VNodeNr appendToChain(VNodeNr& first, VNodeNr& last) {
    const VNodeNr next = nextRec<KIND_VNODE>(cMP);
    if (last) {
        makePending(cMP, last);
        vNode.next = next.nr;
    } else {
        first = next;
    }
    last = next;
    return next;
}

} // namespace

VNodeNr addValArc(const InstContext* context, uint32_t line) {
    const VNodeNr nr = newRec<KIND_VNODE>();
    vNode.line = context != nullptr ? context->line : line;
    vNode.actParRec = context != nullptr ? context->instance : 0;
    vNode.valStatus = VST_PLAIN;
    vNode.valCode = TYP_NONE;
    return nr;
}

VNodeNr addValHeadArc(int32_t name, uint32_t flags, TNodeNr govType, uint32_t line) {
    const VNodeNr head = appendToChain(cMP->firstValueHead, cMP->lastValueHead);
    addValArc(nullptr, line);
    vNode.name = name;
    vNode.valStatus = VST_HEADER;
    vNode.govType = govType.nr;
    vNode.govTypeMod = REF_OWN;
    if ((flags & HEAD_EXPORTED) != 0) vNode.vflags |= VF_ASSIGNMENT;
    if ((flags & HEAD_PARAMETERIZED) != 0) vNode.formals = cMP->nextRecNr[KIND_TNODE];
    return head;
}

VNodeNr addValDefArc(TNodeNr govType, uint32_t line) {
    const VNodeNr value = appendToChain(cMP->firstDefVal, cMP->lastDefVal);
    addValArc(nullptr, line);
    vNode.valStatus = VST_DEFAULT;
    vNode.govType = govType.nr;
    vNode.govTypeMod = REF_OWN;
    return value;
}

void setValNode(uint8_t code) {
    vNode.valCode = code;
    if (isStructured(code)) vNode.ref = cMP->nextRecNr[KIND_VNODE];
}

} // namespace orvo
