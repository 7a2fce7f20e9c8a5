// Invariant of all constructors: the record they return is the current and pending one of its kind,
// and the one that was pending before has been written.

#include "tree/types.h"

#include "tree/orvorec.h"

namespace orvo {

InstState instState;

namespace {

/// Line of a record that has no context of its own.
uint32_t lineInForce(uint32_t line) {
    return instState.top != nullptr ? instState.top->line : line;
}

/// The representation size that the module's options choose for a type; none for most.
uint8_t defaultSizeOpt(uint8_t code, const OptionBlock& options) {
    switch (code) {
    case TYP_INTEGER:
    case TYP_ENUM: return options.intSize;
    case TYP_REAL: return options.realSize;
    case TYP_SEQ:
    case TYP_SET:
    case TYP_CLASS: return options.compMaskSize;
    case TYP_CHOICE: return options.choiceSize;
    default: return is(code, TypeClass::LengthOption) ? options.listSize : tNode.sizeOpt;
    }
}

} // namespace

TNodeNr addTypeArc(const InstContext* context, uint32_t line) {
    const TNodeNr nr = newRec<KIND_TNODE>();
    tNode.line = context != nullptr ? context->line : line;
    tNode.actParRec = context != nullptr ? context->instance : 0;
    tNode.typeCode = TYP_NONE;
    tNode.lenForm = 255;
    tNode.skipOpt = 255;
    return nr;
}

TNodeNr addTypeHeadArc(int32_t name, uint32_t flags, uint32_t line) {
    const TNodeNr head = nextRec<KIND_TNODE>(cMP);
    if (cMP->lastTypeHead) {
        makePending(cMP, cMP->lastTypeHead);
        tNode.next = head.nr;
    } else {
        cMP->firstTypeHead = head;
    }
    cMP->lastTypeHead = head;
    addTypeArc(nullptr, line); // writes the old tail
    tNode.name = name;
    tNode.compStatus = TCS_HEADER;
    if ((flags & HEAD_EXPORTED) != 0) tNode.nodeFlags |= NF_ASSIGNMENT;
    if ((flags & HEAD_PARAMETERIZED) != 0) tNode.formals = cMP->nextRecNr[KIND_TNODE];
    return head;
}

void setTypeNode(uint8_t code) {
    const OptionBlock& options = cMP->options;
    tNode.typeCode = code;
    if (isStructured(code)) tNode.ref = cMP->nextRecNr[KIND_TNODE];
    if (options.nearPtr && magnitude(tNode.compStatus) != TCS_HEADER) tNode.optFlags |= OPTF_NEAR;
    if (is(code, TypeClass::Members) && options.extensions == 1) tNode.optFlags |= OPTF_EXTENSIONS;
    if (code == TYP_BOOLEAN && options.plmBoole) tNode.optFlags |= OPTF_PLMBOOLE;
    tNode.sizeOpt = defaultSizeOpt(code, options);
}

TagNr addTagRec(const TagRec& tag) {
    const TagRec copy = tag; // may be the buffer itself
    if (hasPending<KIND_TAG>()) tagRec.next = cMP->nextRecNr[KIND_TAG];
    const TagNr nr = newRec<KIND_TAG>();
    tagRec = copy;
    return nr;
}

void flushTagRec() {
    if (!hasPending<KIND_TAG>()) return;
    tagRec.next = 0;
    flushRecs(KIND_TAG);
}

SubNr addSubArc(uint32_t typeMod, TNodeNr typeNr, uint32_t line) {
    const SubNr nr = newRec<KIND_SUB>();
    subRec.line = lineInForce(line);
    subRec.typeMod = typeMod;
    subRec.typeNr = typeNr.nr;
    return nr;
}

SubNr addAndSwap(SubNr nr, uint8_t kind) {
    makePending(cMP, nr);
    const SubRec operand = subRec;
    subRec = {};
    subRec.subKind = kind;
    subRec.line = operand.line;
    subRec.typeMod = operand.typeMod;
    subRec.typeNr = operand.typeNr;
    subRec.left = cMP->nextRecNr[KIND_SUB];
    writeRec(cMP, nr);
    const SubNr moved = newRec<KIND_SUB>();
    subRec = operand;
    return moved;
}

SNodeNr addSyntaxArc(uint32_t line) {
    const SNodeNr nr = newRec<KIND_SNODE>();
    sNode.line = lineInForce(line);
    return nr;
}

} // namespace orvo
