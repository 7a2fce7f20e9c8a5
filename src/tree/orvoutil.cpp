// Invariant: once a node list is indexed, its index counts exactly the records that are on it.

#include "tree/orvoutil.h"

#include <algorithm>

#include "diag/orvoerr_fatal.h"
#include "tree/orvorec.h"
#include "tree/orvoutil_mem.h"
#include "util/ascii.h"

namespace orvo {
namespace {

struct DynaState {
    GenericCache<DynaNode> cache;
};
DynaState dynaState;

void pushNode(NodeList& list, const NodeRef& node) {
    list.nodes.push_back(node);
    if (list.indexed) ++list.index[node];
}

NodeRef popNode(NodeList& list) {
    if (list.nodes.empty()) fatalError(Fatal::Internal);
    const NodeRef node = list.nodes.back();
    list.nodes.pop_back();
    if (list.indexed) {
        const auto at = list.index.find(node);
        if (--at->second == 0) list.index.erase(at);
    }
    return node;
}

RecKind recKindOf(NodeListKind kind) {
    return kind == NODES_TYPE ? KIND_TNODE : kind == NODES_VALUE ? KIND_VNODE : KIND_SUB;
}

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The current record of the list's kind.
NodeRef currentNode(NodeListKind kind) {
    const RecPlace place = currentPlace(recKindOf(kind));
    return {place.module, place.nr};
}

bool containsNode(NodeList& list, const NodeRef& node) {
    if (!list.indexed) {
        for (const NodeRef& known : list.nodes) ++list.index[known];
        list.indexed = true;
    }
    return list.index.contains(node);
}

} // namespace

void addFstNode(NodeList& list) {
    pushNode(list, currentNode(list.kind));
}

bool pushNodeUnique(NodeList& list) {
    const NodeRef node = currentNode(list.kind);
    if (containsNode(list, node)) return false;
    pushNode(list, node);
    return true;
}

void delFstNode(NodeList& list) {
    popNode(list);
}

void mvFstNode(NodeList& to, NodeList& from) {
    pushNode(to, popNode(from));
}

void deleteNodes(NodeList& list) {
    list.nodes.clear();
    list.index.clear();
}

bool outerEnclStru(const NodeList& list) {
    if (list.nodes.empty() || list.kind == NODES_SUB) return false;
    readRecKind(list.nodes.front().module, recKindOf(list.kind), list.nodes.front().nr);
    return true;
}

bool innerEnclStru(const NodeList& list) {
    if (list.nodes.empty() || list.kind == NODES_SUB) return false;
    auto at = list.nodes.rbegin();
    if (*at == currentNode(list.kind)) ++at;
    if (at == list.nodes.rend()) return false;
    readRecKind(at->module, recKindOf(list.kind), at->nr);
    return true;
}

DynaNode* insDynaNode(DynaNode*& head, DynaNode*& tail) {
    DynaNode* node = genericCacheAlloc(dynaState.cache);
    const NodeRef current = currentNode(NODES_TYPE);
    node->module = current.module;
    node->nr = current.nr;
    node->mode = 5;
    node->value = -1;
    (tail != nullptr ? tail->next : head) = node;
    tail = node;
    return node;
}

void delDynaNodes(DynaNode*& head, DynaNode*& tail) {
    for (DynaNode* node = head; node != nullptr;) {
        if (node->head != nullptr) { // the children take their turn before the siblings
            node->tail->next = node->next;
            node->next = node->head;
        }
        DynaNode* next = node->next;
        genericCacheFree(node, dynaState.cache);
        node = next;
    }
    head = nullptr;
    tail = nullptr;
}

int strCaseComp(std::string_view a, std::string_view b) {
    return strnCaseComp(a, b, std::max(a.size(), b.size()));
}

int strnCaseComp(std::string_view a, std::string_view b, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        const int left = i < a.size() ? static_cast<unsigned char>(toUpper(a[i])) : 0;
        const int right = i < b.size() ? static_cast<unsigned char>(toUpper(b[i])) : 0;
        if (left != right) return left - right;
        if (i >= a.size()) return 0;
    }
    return 0;
}

std::string strLower(std::string text) {
    std::ranges::transform(text, text.begin(), toLower);
    return text;
}

std::string strUpper(std::string text) {
    std::ranges::transform(text, text.begin(), toUpper);
    return text;
}

std::string convertHyphens(std::string text) {
    std::ranges::replace(text, '-', '_');
    return text;
}

std::string convertUnderscores(std::string text) {
    std::ranges::replace(text, '_', '-');
    return text;
}

std::string str2prefix(std::string_view name) {
    constexpr size_t prefixLength = 5;
    return convertUnderscores(strLower(std::string(name.substr(0, prefixLength))));
}

std::string_view remSpaces(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

namespace {

template <typename Index, typename Key> ModRef* lookUp(const Index& index, const Key& key) {
    const auto at = index.find(key);
    return at == index.end() ? nullptr : at->second;
}

} // namespace

ModRef* matchingNr(const ModRefList& list, uint32_t number) {
    return number < list.byNumber.size() ? list.byNumber[number] : nullptr;
}

ModRef* matchingName(const ModRefList& list, std::string_view name) {
    return lookUp(list.byName, std::string(name));
}

ModRef* matchingPtr(const ModRefList& list, const ModuleRec* module) {
    return lookUp(list.byModule, module);
}

} // namespace orvo
