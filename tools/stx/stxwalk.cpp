#include "stxreader.h"

// Lists inside one file. Validation has made sure that they end; groups nest only as deep as there
// are records, and the functions here open one level at a time or keep their own stack.

namespace stx {
namespace {

/// checkState of a record that the last checks have settled.
constexpr int stateChecked = 3;

uint32_t nextOf(const Tree& tree, Kind kind, uint32_t nr) {
    switch (kind) {
    case TNODE: return tree.tNode(nr).next;
    case VNODE: return tree.vNode(nr).next;
    case TAG: return tree.tagRec(nr).next;
    case SUB: return tree.subRec(nr).next;
    case SNODE: {
        const int32_t next = tree.sNode(nr).next;
        return next > 0 ? static_cast<uint32_t>(next) : 0;
    }
    case MNODE:
    case TED:
    case STRI8:
    case STRI16:
    case STRI32: break;
    }
    return 0;
}

/// Number of the link when it leads to a record of the kind in the same file, else 0.
uint32_t ownTarget(const Tree& tree, Kind from, uint32_t nr, const char* field, Kind to) {
    const Link link = tree.linkOf(from, nr, fieldNamed(from, field));
    const bool own = link.target == Target::Record && link.module == 1 && link.kind == to;
    return own ? link.nr : 0;
}

/// Names are stored with "_" for "-".
bool sameName(std::string_view stored, std::string_view asked) {
    if (stored.size() != asked.size()) return false;
    for (size_t at = 0; at < asked.size(); ++at)
        if (stored[at] != (asked[at] == '-' ? '_' : asked[at])) return false;
    return true;
}

template <typename Numbers>
uint32_t findName(const Tree& tree, Kind kind, const Numbers& list, std::string_view name) {
    if (name.empty()) return 0;
    for (const uint32_t nr : list)
        if (sameName(tree.text(kind == TNODE ? tree.tNode(nr).name : tree.vNode(nr).name), name))
            return nr;
    return 0;
}

} // namespace

std::vector<uint32_t> listFrom(const Tree& tree, Kind kind, int64_t first) {
    std::vector<uint32_t> list;
    if (first <= 0 || first > tree.count(kind)) return list;
    for (auto nr = static_cast<uint32_t>(first); nr != 0; nr = nextOf(tree, kind, nr)) {
        if (list.size() == tree.count(kind)) break;
        list.push_back(nr);
    }
    return list;
}

std::vector<uint32_t> typeAssignments(const Tree& tree) {
    return listFrom(tree, TNODE, tree.mNode(1).firstTypeAss);
}

std::vector<uint32_t> valueAssignments(const Tree& tree) {
    return listFrom(tree, VNODE, tree.mNode(1).firstValAss);
}

std::vector<uint32_t> components(const Tree& tree, uint32_t typeNr, bool groups) {
    const uint8_t code = tree.tNode(typeNr).typeCode;
    if (code >= typeCount || !typeTable[code].structured) return {};
    std::vector<uint32_t> list;
    std::vector<uint32_t> after; // where the list goes on behind the groups that are open
    uint32_t nr = ownTarget(tree, TNODE, typeNr, "ref", TNODE);
    while (nr != 0 || !after.empty()) {
        if (nr == 0) {
            nr = after.back();
            after.pop_back();
            continue;
        }
        const TNode node = tree.tNode(nr);
        if (node.typeCode == TYP_EXTADDGRP && !groups) {
            after.push_back(node.next);
            nr = ownTarget(tree, TNODE, nr, "ref", TNODE);
            continue;
        }
        if (list.size() == tree.count(TNODE)) break;
        list.push_back(nr);
        nr = node.next;
    }
    return list;
}

std::vector<uint32_t> tagList(const Tree& tree, uint32_t typeNr) {
    return listFrom(tree, TAG, tree.tNode(typeNr).tags);
}

std::vector<uint32_t> namedValues(const Tree& tree, uint32_t typeNr) {
    return listFrom(tree, VNODE, tree.tNode(typeNr).namedVals);
}

std::vector<uint32_t> componentValues(const Tree& tree, uint32_t valueNr) {
    const uint8_t code = tree.vNode(valueNr).valCode;
    if (code == TYP_SYNONYM || code == TYP_FIELDLIST) return {};
    return listFrom(tree, VNODE, ownTarget(tree, VNODE, valueNr, "ref", VNODE));
}

uint32_t constraintOf(const Tree& tree, uint32_t typeNr) {
    const int32_t first = tree.tNode(typeNr).constraint;
    return first > 0 ? static_cast<uint32_t>(first) : 0;
}

std::vector<uint32_t> operands(const Tree& tree, uint32_t subNr) {
    return listFrom(tree, SUB, ownTarget(tree, SUB, subNr, "left", SUB));
}

uint32_t exceptionOf(const Tree& tree, Kind kind, uint32_t nr) {
    if (kind == VNODE)
        return tree.vNode(nr).valCode == TYP_EXTENSION_MARKER
                   ? ownTarget(tree, VNODE, nr, "ref", VNODE)
                   : 0;
    if (kind == TNODE) {
        if (tree.tNode(nr).typeCode != TYP_EXTENSION_MARKER) return 0;
        nr = constraintOf(tree, nr);
    }
    const SubRec sub = tree.subRec(nr);
    const bool given = (sub.subFlags & SUBF_EXCEPTION) != 0 || sub.subKind == SUB_EXCEPTION;
    return given ? sub.third : 0;
}

std::vector<Relation> relations(const Tree& tree, uint32_t subNr) {
    std::vector<Relation> list;
    const SubRec sub = tree.subRec(subNr);
    if (sub.subKind != SUB_TABLE) return list;
    const int64_t first = sub.right; // negative until the references are solved
    for (const uint32_t nr : listFrom(tree, SNODE, first < 0 ? -first : first)) {
        const uint8_t token = tree.sNode(nr).token;
        if (token == TOK_AT || list.empty()) list.emplace_back();
        if (token == TOK_DOT)
            ++list.back().dots;
        else if (token != TOK_AT)
            list.back().steps.push_back(nr);
    }
    return list;
}

std::vector<uint32_t> options(const Tree& tree, Kind kind, uint32_t nr) {
    std::vector<uint32_t> list;
    const uint32_t first = ownTarget(tree, kind, nr, "tedFirst", TED);
    const uint32_t last = ownTarget(tree, kind, nr, "tedLast", TED);
    const bool fromFirst = first == 0 && last != 0; // 0 stands for the first record here
    for (uint32_t ted = fromFirst ? 1 : first; ted != 0 && ted <= last; ++ted) list.push_back(ted);
    return list;
}

bool Tree::checked() const {
    for (const uint32_t nr : typeAssignments(*this)) {
        const TNode head = tNode(nr);
        if (head.checkState != stateChecked && !head.isParameterized()) return false;
    }
    for (const uint32_t nr : valueAssignments(*this)) {
        const VNode head = vNode(nr);
        if (head.checkState != stateChecked && head.formals == 0) return false;
    }
    return true;
}

uint32_t findType(const Tree& tree, std::string_view name) {
    return findName(tree, TNODE, typeAssignments(tree), name);
}

uint32_t findValue(const Tree& tree, std::string_view name) {
    return findName(tree, VNODE, valueAssignments(tree), name);
}

uint32_t findComponent(const Tree& tree, uint32_t typeNr, std::string_view name) {
    return findName(tree, TNODE, components(tree, typeNr), name);
}

} // namespace stx
