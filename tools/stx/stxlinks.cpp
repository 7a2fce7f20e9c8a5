#include "stxfields.h"

// What the number in a field leads to. The checks, the walks and the dumper all ask here, so that a
// number has one meaning throughout.
//
// The field tables say what a field leads to. Several fields hold numbers of different kinds: the
// sign, the kind of the type or value and `refMod` tell which. Each of these has a function here.

namespace stx {
namespace {

int64_t magnitude(int64_t number) {
    return number < 0 ? -number : number;
}

/// A record number in the file of a module reference; reference 0 counts as the own module.
Link recordLink(Kind kind, int64_t refMod, int64_t nr) {
    if (nr == 0) return {};
    Link link{Target::Record, kind, 1, static_cast<uint32_t>(nr)};
    if (refMod != 0) link.module = static_cast<uint32_t>(refMod);
    return link;
}

/// A number kept as two's complement in an unsigned field.
int64_t asSigned(int64_t word) {
    return static_cast<int32_t>(static_cast<uint32_t>(word));
}

Link deferredLink(int64_t nr) {
    return {Target::Deferred, TNODE, 1, static_cast<uint32_t>(magnitude(nr))};
}

Link ownLink(Kind kind, int64_t nr) {
    return recordLink(kind, 1, nr);
}

Link stringLink(int64_t nr) {
    if (nr == 0) return {};
    return {Target::String, STRI8, 1, static_cast<uint32_t>(magnitude(nr))};
}

Link tedLink(uint32_t first, uint32_t last, bool wantLast) {
    if (last == 0 || last == UINT32_MAX || first == UINT32_MAX) return {};
    return ownLink(TED, wantLast ? last : (first == 0 ? 1 : first));
}

/// The row of a code; that of TYP_NONE for one that no table knows.
const TypeRow& typeRow(uint8_t code) {
    return typeTable[code < typeCount ? code : uint8_t{TYP_NONE}];
}

/// What a type refers to.
Link linkOfTypeRef(const TNode& node) {
    if (node.typeCode == TYP_SYNONYM) {
        if (node.refMod == REF_UNRESOLVED) return stringLink(asSigned(node.ref));
        if (node.refMod < 0) return {Target::Formal, TNODE, 1, node.ref};
        return recordLink(TNODE, node.refMod, node.ref);
    }
    if (node.typeCode == TYP_FIELDLIST) {
        if (node.refMod == REF_OBJECT) return ownLink(VNODE, node.ref);
        if (node.refMod < 0) return {Target::Formal, TNODE, 1, node.ref};
        return recordLink(TNODE, node.refMod, node.ref);
    }
    return typeRow(node.typeCode).structured ? ownLink(TNODE, node.ref) : Link{};
}

/// Actual parameters of a reference: parsed ones are values, others kept as text.
Link linkOfActuals(const TNode& node) {
    if (node.syntax < 0) return deferredLink(node.syntax);
    return ownLink(node.typeCode == TYP_SYNONYM ? VNODE : SNODE, node.syntax);
}

/// The string that is the value, or says it exactly.
Link linkOfValueText(const VNode& node) {
    if (node.valCode == TYP_INTEGER || node.valCode == TYP_ENUM) return stringLink(node.exact);
    if (!typeRow(node.valCode).stringValue || node.refMod == REF_DEFERRED) return {};
    Link link = stringLink(node.stri);
    if (node.valCode == TYP_BMPSTR) link.kind = STRI16;
    if (node.valCode == TYP_UNISTR) link.kind = STRI32;
    link.optional = true; // strings that the last checks added lie above the count
    return link;
}

/// What a value refers to, or the first of its parts.
Link linkOfValueRef(const VNode& node) {
    if (node.refMod == REF_DEFERRED) return deferredLink(asSigned(node.ref));
    if (node.valCode == TYP_SYNONYM) {
        if (node.refMod == REF_UNRESOLVED) return stringLink(asSigned(node.ref));
        if (node.refMod < 0) return {Target::Formal, VNODE, 1, node.ref};
        return recordLink(VNODE, node.refMod, node.ref);
    }
    if (node.valCode == TYP_OPEN) { // a type or a set; else a value behind its type
        if ((node.vflags & VF_SET) != 0 || node.refMod != 0)
            return recordLink(TNODE, node.refMod < 0 ? 1 : node.refMod, node.ref);
        return ownLink(VNODE, node.ref);
    }
    // A marker leads to its exception, a REAL to the values that its components name.
    const bool leads = node.valCode == TYP_EXTENSION_MARKER || node.valCode == TYP_REAL;
    const bool holdsContents = (node.vflags & VF_CONTENTS) != 0;
    if (node.valCode == TYP_FIELDLIST || leads || holdsContents || typeRow(node.valCode).valueList)
        return ownLink(VNODE, node.ref);
    return {};
}

/// Actual parameters of a reference, or the field names behind an object.
Link linkOfValueActuals(const VNode& node) {
    if (node.deferred < 0) return deferredLink(node.deferred);
    if (node.valCode == TYP_SYNONYM) return ownLink(VNODE, node.deferred);
    return node.valCode == TYP_FIELDLIST ? ownLink(SNODE, node.deferred) : Link{};
}

Link linkOfLeft(const SubRec& sub) {
    switch (sub.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_SERIAL:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT:
    case SUB_PERMITTED_ALPHABET:
    case SUB_SIZE:
    case SUB_WITH_COMPONENT:
    case SUB_WITH_COMPONENTS: return ownLink(SUB, sub.left);
    case SUB_RANGE:
    case SUB_SINGLE_VALUE:
    case SUB_CONTAINED_SUBTYPE:
    case SUB_USER_DEFINED:
    case SUB_OPEN_TYPE:
    case SUB_TABLE:
    case SUB_CONTENTS:
    case SUB_PATTERN:
    case SUB_SETTINGS: return ownLink(VNODE, sub.left);
    default: return {};
    }
}

Link linkOfRight(const SubRec& sub) {
    if (sub.subKind == SUB_RANGE || sub.subKind == SUB_CONTENTS) return ownLink(VNODE, sub.right);
    return sub.subKind == SUB_TABLE ? ownLink(SNODE, magnitude(sub.right)) : Link{};
}

/// What an entry of a syntax list says.
Link linkOfSyntaxValue(const SNode& node) {
    if (node.token == TOK_LBRACKET) return ownLink(SNODE, magnitude(node.value));
    if (node.module != 0) // solved: the type (or, negative, the value) that the name stands for
        return recordLink(node.value < 0 ? VNODE : TNODE, node.module, magnitude(node.value));
    if (node.token >= TOK_NUMBER && node.token <= TOK_COMPONENTID) return stringLink(node.value);
    return {};
}

} // namespace

std::span<const Field> fieldsOf(Kind kind) {
    switch (kind) {
    case MNODE: return layout::mNodeFields;
    case TNODE: return layout::tNodeFields;
    case VNODE: return layout::vNodeFields;
    case TAG: return layout::tagRecFields;
    case SUB: return layout::subRecFields;
    case TED: return layout::tedRecFields;
    case SNODE: return layout::sNodeFields;
    case STRI8:
    case STRI16:
    case STRI32: break;
    }
    return {};
}

Field fieldNamed(Kind kind, std::string_view name) {
    return layout::find(fieldsOf(kind), name);
}

Link Tree::linkOf(Kind kind, uint32_t nr, const Field& field) const {
    int64_t value = 0;
    if (field.form != Form::Value && !number(kind, nr, field, value)) return {};
    if (field.sense == Sense::String) return stringLink(value);
    if (value == 0 && field.form != Form::Value) return {};
    switch (field.leads) {
    case Leads::Nowhere: break;
    case Leads::Module: return value > 0 ? ownLink(MNODE, value) : Link{};
    case Leads::Type: return ownLink(TNODE, value);
    case Leads::Value: return ownLink(VNODE, value);
    case Leads::Tag: return ownLink(TAG, value);
    case Leads::Constraint: return value < 0 ? deferredLink(value) : ownLink(SUB, value);
    case Leads::Syntax: return ownLink(SNODE, magnitude(value));
    case Leads::Text: return stringLink(value);
    case Leads::ListedType: return recordLink(TNODE, nr, value);
    case Leads::ListedValue: return recordLink(VNODE, nr, value);
    case Leads::FirstOption:
    case Leads::LastOption: {
        const bool last = field.leads == Leads::LastOption;
        if (kind == VNODE) return tedLink(vNode(nr).tedFirst, vNode(nr).tedLast, last);
        return tedLink(tNode(nr).tedFirst, tNode(nr).tedLast, last);
    }
    case Leads::TypeRef: return linkOfTypeRef(tNode(nr));
    case Leads::Actuals: return linkOfActuals(tNode(nr));
    case Leads::Governor: return recordLink(TNODE, vNode(nr).govTypeMod, value);
    case Leads::ValueRef: return linkOfValueRef(vNode(nr));
    case Leads::ValueText: return linkOfValueText(vNode(nr));
    case Leads::ValueActuals: return linkOfValueActuals(vNode(nr));
    case Leads::TagNumber: return value < 0 ? ownLink(VNODE, -value) : Link{};
    case Leads::Constrained: return recordLink(TNODE, subRec(nr).typeMod, value);
    case Leads::LeftOperand: return linkOfLeft(subRec(nr));
    case Leads::RightOperand: return linkOfRight(subRec(nr));
    case Leads::SyntaxValue: return linkOfSyntaxValue(sNode(nr));
    }
    return {};
}

} // namespace stx
