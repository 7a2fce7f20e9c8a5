#include "stxreader.h"

// The fields of every record, and what the number in a field leads to. The checks, the walks and
// the dumper all ask here, so that a number has one meaning throughout.
//
// Several fields hold numbers of different kinds: the sign, the kind of the type or value and
// `refMod` tell which. `linkOf` settles that for a field of a given record.

namespace stx {
namespace {

using F = Form;
using S = Sense;

// clang-format off
const Field mNodeFields[] = {
    {"modTimeStamp",   0, 12, F::Stamp,    S::Plain,  {}},
    {"modName",       12,  4, F::Unsigned, S::String, {}},
    {"stxName",       16,  4, F::Unsigned, S::String, {}},
    {"firstTypeAss",  20,  4, F::Unsigned, S::Link,   {}},
    {"firstValAss",   24,  4, F::Unsigned, S::Link,   {}},
    {"firstDefVal",   28,  4, F::Unsigned, S::Link,   {}},
    {"modOid",        32,  4, F::Unsigned, S::Link,   {}},
    {"recCount",      36, 40, F::Words,    S::Plain,  {}},
    {"exportsState",  76,  1, F::Unsigned, S::Names,  exportsNames},
    {"importsState",  77,  1, F::Unsigned, S::Names,  importsNames},
    {"automaticTags", 78,  1, F::Unsigned, S::Plain,  {}},
    {"unused79",      79,  1, F::Unused,   S::Plain,  {}},
    {"srcDir",        80,  4, F::Unsigned, S::String, {}},
    {"srcFile",       84,  4, F::Unsigned, S::String, {}},
    {"modWords",      88, 24, F::Words,    S::Plain,  {}},
};
const Field tNodeFields[] = {
    {"name",            0, 4, F::Signed,   S::String, {}},
    {"actParRec",       4, 4, F::Unsigned, S::Plain,  {}},
    {"line",            8, 4, F::Unsigned, S::Plain,  {}},
    {"compStatus",     12, 4, F::Signed,   S::Code,   compStatusNames},
    {"defaultVal",     16, 4, F::Unsigned, S::Link,   {}},
    {"next",           20, 4, F::Unsigned, S::Link,   {}},
    {"constraint",     24, 4, F::Signed,   S::Link,   {}},
    {"tags",           28, 4, F::Unsigned, S::Link,   {}},
    {"optFlags",       32, 4, F::Unsigned, S::Bits,   optFlagNames},
    {"nodeFlags",      36, 4, F::Unsigned, S::Bits,   nodeFlagNames},
    {"tedFirst",       40, 4, F::Unsigned, S::Link,   {}},
    {"tedLast",        44, 4, F::Unsigned, S::Link,   {}},
    {"checkState",     48, 2, F::Signed,   S::Names,  checkStateNames},
    {"typeCode",       50, 1, F::Unsigned, S::Code,   typeNames},
    {"vfKind",         51, 1, F::Unsigned, S::Names,  vfKindNames},
    {"sizeOpt",        52, 1, F::Unsigned, S::Names,  sizeNames},
    {"unused53",       53, 1, F::Unused,   S::Plain,  {}},
    {"checkFlags",     54, 2, F::Unsigned, S::Bits,   checkFlagNames},
    {"entryFlags",     56, 1, F::Unsigned, S::Bits,   entryFlagNames},
    {"entryKinds",     57, 1, F::Unsigned, S::Bits,   {}},
    {"unused58",       58, 2, F::Unused,   S::Plain,  {}},
    {"lenForm",        60, 1, F::Unsigned, S::Names,  formNames},
    {"skipOpt",        61, 1, F::Unsigned, S::Names,  skipNames},
    {"unused62",       62, 2, F::Unused,   S::Plain,  {}},
    {"sizeLimit",      64, 4, F::Unsigned, S::Plain,  {}},
    {"sizeLimitSkip",  68, 1, F::Unsigned, S::Plain,  {}},
    {"unused69",       69, 3, F::Unused,   S::Plain,  {}},
    {"fieldSize",      72, 2, F::Signed,   S::Plain,  {}},
    {"unused74",       74, 2, F::Unused,   S::Plain,  {}},
    {"refMod",         76, 4, F::Signed,   S::Link,   refModNames},
    {"ref",            80, 4, F::Unsigned, S::Link,   {}},
    {"namedVals",      84, 4, F::Unsigned, S::Link,   {}},
    {"syntaxList",     88, 4, F::Unsigned, S::Link,   {}},
    {"formals",        92, 4, F::Unsigned, S::Link,   {}},
    {"syntax",         96, 4, F::Signed,   S::Link,   {}},
    {"lowerBound",    100, 8, F::Wide,     S::Plain,  {}},
    {"upperBound",    108, 8, F::Wide,     S::Plain,  {}},
};
const Field vNodeFields[] = {
    {"name",        0,  4, F::Signed,   S::String, {}},
    {"valStatus",   4,  4, F::Signed,   S::Names,  valStatusNames},
    {"vflags",      8,  1, F::Unsigned, S::Bits,   valueFlagNames},
    {"unused9",     9,  3, F::Unused,   S::Plain,  {}},
    {"actParRec",  12,  4, F::Unsigned, S::Plain,  {}},
    {"line",       16,  4, F::Unsigned, S::Plain,  {}},
    {"unused20",   20,  4, F::Unused,   S::Plain,  {}},
    {"govType",    24,  4, F::Unsigned, S::Link,   {}},
    {"govTypeMod", 28,  4, F::Unsigned, S::Link,   {}},
    {"next",       32,  4, F::Unsigned, S::Link,   {}},
    {"checkState", 36,  2, F::Unsigned, S::Names,  checkStateNames},
    {"valCode",    38,  1, F::Unsigned, S::Code,   typeNames},
    {"unused39",   39,  1, F::Unused,   S::Plain,  {}},
    {"refMod",     40,  4, F::Signed,   S::Link,   refModNames},
    {"ref",        44,  4, F::Unsigned, S::Link,   {}},
    {"tedFirst",   48,  4, F::Unsigned, S::Link,   {}},
    {"tedLast",    52,  4, F::Unsigned, S::Link,   {}},
    {"val",        56, 12, F::Value,    S::Link,   {}},
    {"formals",    68,  4, F::Unsigned, S::Link,   {}},
    {"deferred",   72,  4, F::Signed,   S::Link,   {}},
};
const Field tagRecFields[] = {
    {"tagClass",  0, 4, F::Signed,   S::Code,   tagClassNames},
    {"tagMode",   4, 4, F::Signed,   S::Code,   tagModeNames},
    {"tagNr",     8, 4, F::Signed,   S::Link,   {}},
    {"next",     12, 4, F::Unsigned, S::Link,   {}},
};
const Field subRecFields[] = {
    {"name",      0, 4, F::Unsigned, S::String, {}},
    {"subKind",   4, 1, F::Unsigned, S::Code,   subKindNames},
    {"subFlags",  5, 1, F::Unsigned, S::Bits,   subFlagNames},
    {"unused6",   6, 2, F::Unused,   S::Plain,  {}},
    {"typeMod",   8, 4, F::Unsigned, S::Link,   {}},
    {"typeNr",   12, 4, F::Unsigned, S::Link,   {}},
    {"line",     16, 4, F::Unsigned, S::Plain,  {}},
    {"next",     20, 4, F::Unsigned, S::Link,   {}},
    {"third",    24, 4, F::Unsigned, S::Link,   {}},
    {"left",     28, 4, F::Unsigned, S::Link,   {}},
    {"right",    32, 4, F::Signed,   S::Link,   {}},
};
const Field tedRecFields[] = {
    {"tedKind", 0, 1, F::Unsigned, S::Names, tedKindNames},
    {"unused1", 1, 3, F::Unused,   S::Plain, {}},
    {"text",    4, 4, F::Unsigned, S::Link,  {}},
};
const Field sNodeFields[] = {
    {"token",    0, 1, F::Unsigned, S::Names, tokenNames},
    {"unused1",  1, 3, F::Unused,   S::Plain, {}},
    {"module",   4, 4, F::Unsigned, S::Link,  {}},
    {"value",    8, 4, F::Signed,   S::Link,  {}},
    {"line",    12, 4, F::Unsigned, S::Plain, {}},
    {"next",    16, 4, F::Signed,   S::Link,  {}},
};
// clang-format on

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

bool hasStringValue(uint8_t valCode) {
    return valCode == TYP_BITSTR || valCode == TYP_OCTSTR || valCode == TYP_OBJID ||
           (valCode >= TYP_NUMSTR && valCode <= TYP_UNISTR) || valCode == TYP_GENTIME ||
           valCode == TYP_UTCTIME || valCode == TYP_OBJDESCR;
}

/// The value is made of other values: `ref` is the first of them.
bool hasValueList(uint8_t valCode) {
    return hasStringValue(valCode) || (valCode >= TYP_SEQ && valCode <= TYP_EMB_PDV) ||
           valCode == TYP_CHASTR || valCode == TYP_EXTERNAL_1990 || valCode == TYP_EXTERNAL_1994 ||
           valCode == TYP_INSTANCE_OF || (valCode >= TYP_CLASS && valCode <= TYP_ABSTR_STX);
}

} // namespace

std::span<const Field> fieldsOf(Kind kind) {
    switch (kind) {
    case MNODE: return mNodeFields;
    case TNODE: return tNodeFields;
    case VNODE: return vNodeFields;
    case TAG: return tagRecFields;
    case SUB: return subRecFields;
    case TED: return tedRecFields;
    case SNODE: return sNodeFields;
    case STRI8:
    case STRI16:
    case STRI32: break;
    }
    return {};
}

Field fieldNamed(Kind kind, std::string_view name) {
    for (const Field& field : fieldsOf(kind))
        if (name == field.name) return field;
    return {nullptr, 0, 0, Form::Unused, Sense::Plain, {}};
}

Link Tree::linkOfTNode(uint32_t nr, const Field& field, int64_t value) const {
    const TNode node = tNode(nr);
    switch (field.offset) {
    case 16:
    case 84: return ownLink(VNODE, value);
    case 20:
    case 92: return ownLink(TNODE, value);
    case 24: return value < 0 ? deferredLink(value) : ownLink(SUB, value);
    case 28: return ownLink(TAG, value);
    case 40:
    case 44: return tedLink(node.tedFirst, node.tedLast, field.offset == 44);
    case 76: return value > 0 ? ownLink(MNODE, value) : Link{};
    case 88: return ownLink(SNODE, value);
    case 96: // actual parameters of a reference: parsed ones are values, others kept as text
        if (value < 0) return deferredLink(value);
        return ownLink(node.typeCode == TYP_SYNONYM ? VNODE : SNODE, value);
    default: break;
    }
    if (field.offset != 80 || value == 0) return {};
    if (node.typeCode == TYP_SYNONYM) {
        if (node.refMod == REF_UNRESOLVED) return stringLink(asSigned(value));
        if (node.refMod < 0) return {Target::Formal, TNODE, 1, node.ref};
        return recordLink(TNODE, node.refMod, value);
    }
    if (node.typeCode == TYP_FIELDLIST) {
        if (node.refMod == REF_OBJECT) return ownLink(VNODE, value);
        if (node.refMod < 0) return {Target::Formal, TNODE, 1, node.ref};
        return recordLink(TNODE, node.refMod, value);
    }
    const bool structured = node.typeCode < typeCount && typeTable[node.typeCode].structured;
    return structured ? ownLink(TNODE, value) : Link{};
}

Link Tree::linkOfVNode(uint32_t nr, const Field& field, int64_t value) const {
    const VNode node = vNode(nr);
    switch (field.offset) {
    case 24: return recordLink(TNODE, node.govTypeMod, value);
    case 28: return ownLink(MNODE, value);
    case 32: return ownLink(VNODE, value);
    case 40: return value > 0 ? ownLink(MNODE, value) : Link{};
    case 48:
    case 52: return tedLink(node.tedFirst, node.tedLast, field.offset == 52);
    case 68: return ownLink(TNODE, value);
    case 72:
        if (value < 0) return deferredLink(value);
        if (node.valCode == TYP_SYNONYM) return ownLink(VNODE, value);
        return node.valCode == TYP_FIELDLIST ? ownLink(SNODE, value) : Link{};
    case 56: {
        if (!hasStringValue(node.valCode) || node.refMod == REF_DEFERRED) return {};
        Link link = stringLink(node.stri);
        if (node.valCode == TYP_BMPSTR) link.kind = STRI16;
        if (node.valCode == TYP_UNISTR) link.kind = STRI32;
        link.optional = true; // strings that the last checks added lie above the count
        return link;
    }
    default: break;
    }
    if (field.offset != 44 || value == 0) return {};
    if (node.refMod == REF_DEFERRED) return deferredLink(asSigned(value));
    if (node.valCode == TYP_SYNONYM) {
        if (node.refMod == REF_UNRESOLVED) return stringLink(asSigned(value));
        if (node.refMod < 0) return {Target::Formal, VNODE, 1, node.ref};
        return recordLink(VNODE, node.refMod, value);
    }
    if (node.valCode == TYP_OPEN) { // a type or a set; else a value behind its type
        if ((node.vflags & VF_SET) != 0 || node.refMod != 0)
            return recordLink(TNODE, node.refMod < 0 ? 1 : node.refMod, value);
        return ownLink(VNODE, value);
    }
    if (node.valCode == TYP_FIELDLIST || hasValueList(node.valCode)) return ownLink(VNODE, value);
    return {};
}

Link Tree::linkOfSub(uint32_t nr, const Field& field, int64_t value) const {
    const SubRec sub = subRec(nr);
    switch (field.offset) {
    case 8: return ownLink(MNODE, value);
    case 12: return recordLink(TNODE, sub.typeMod, value);
    case 20: return ownLink(SUB, value);
    case 24: return ownLink(VNODE, value);
    default: break;
    }
    if (field.offset != 28 && field.offset != 32) return {};
    switch (sub.subKind) {
    case SUB_UNION:
    case SUB_INTERSECTION:
    case SUB_SERIAL:
    case SUB_EXCEPT:
    case SUB_ALL_EXCEPT:
    case SUB_PERMITTED_ALPHABET:
    case SUB_SIZE:
    case SUB_WITH_COMPONENT:
    case SUB_WITH_COMPONENTS: return field.offset == 28 ? ownLink(SUB, value) : Link{};
    case SUB_RANGE: return ownLink(VNODE, value);
    case SUB_SINGLE_VALUE:
    case SUB_CONTAINED_SUBTYPE:
    case SUB_USER_DEFINED:
    case SUB_OPEN_TYPE: return field.offset == 28 ? ownLink(VNODE, value) : Link{};
    case SUB_TABLE:
        return field.offset == 28 ? ownLink(VNODE, value) : ownLink(SNODE, magnitude(value));
    default: return {};
    }
}

Link Tree::linkOfSNode(uint32_t nr, const Field& field, int64_t value) const {
    const SNode node = sNode(nr);
    if (field.offset == 4) return ownLink(MNODE, value);
    if (field.offset == 16) return ownLink(SNODE, magnitude(value));
    if (field.offset != 8 || value == 0) return {};
    if (node.token == TOK_LBRACKET) return ownLink(SNODE, magnitude(value));
    if (node.module != 0) // solved: the type (or, negative, the value) that the name stands for
        return recordLink(value < 0 ? VNODE : TNODE, node.module, magnitude(value));
    if (node.token >= TOK_NUMBER && node.token <= TOK_COMPONENTID) return stringLink(value);
    return {};
}

Link Tree::linkOf(Kind kind, uint32_t nr, const Field& field) const {
    int64_t value = 0;
    if (field.form != Form::Value && !number(kind, nr, field, value)) return {};
    if (field.sense == Sense::String) return stringLink(value);
    if (field.sense != Sense::Link || (value == 0 && field.form != Form::Value)) return {};
    switch (kind) {
    case MNODE: {
        if (field.offset == 32) return ownLink(VNODE, value);
        return recordLink(field.offset == 20 ? TNODE : VNODE, nr, value);
    }
    case TNODE: return linkOfTNode(nr, field, value);
    case VNODE: return linkOfVNode(nr, field, value);
    case TAG:
        if (field.offset == 8) return value < 0 ? ownLink(VNODE, -value) : Link{};
        return ownLink(TAG, value);
    case SUB: return linkOfSub(nr, field, value);
    case TED: return stringLink(value);
    case SNODE: return linkOfSNode(nr, field, value);
    case STRI8:
    case STRI16:
    case STRI32: break;
    }
    return {};
}

} // namespace stx
