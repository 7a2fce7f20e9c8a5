#pragma once

// Stacks of record references, lists of components, names, and look-ups among module references.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tree/orvodef.h"
#include "tree/orvomod.h"

namespace orvo {

// ---- node lists ---------------------------------------------------------------------------------

/// What a node list refers to.
enum NodeListKind : uint8_t { NODES_TYPE = 1, NODES_VALUE = 3, NODES_SUB = 5 };

struct NodeRef {
    ModuleRec* module = nullptr;
    uint32_t nr = 0;
    friend bool operator==(const NodeRef&, const NodeRef&) = default;
};
struct NodeRefHash {
    size_t operator()(const NodeRef& ref) const {
        return std::hash<const void*>()(ref.module) * 31 + ref.nr;
    }
};

/// A stack of record references. The index counts how often each is on it and is built by the first
/// search; only the functions below add and take.
struct NodeList {
    NodeListKind kind = NODES_TYPE;
    std::vector<NodeRef> nodes = {}; // the bottom first
    std::unordered_map<NodeRef, uint32_t, NodeRefHash> index = {};
    bool indexed = false;
};

/// Pushes the current record of the list's kind.
void addFstNode(NodeList& list);
/// Pushes it unless it is on the stack already; true when pushed.
bool pushNodeUnique(NodeList& list);
/// Pops the top; fatal 13 when the stack is empty.
void delFstNode(NodeList& list);
/// Moves the top of `from` to the top of `to`; fatal 13 when `from` is empty.
void mvFstNode(NodeList& to, NodeList& from);
void deleteNodes(NodeList& list);
/// Reads the bottom record, the outermost enclosing type or value. False, and nothing is read, for
/// an empty list and a list of constraints.
[[nodiscard]] bool outerEnclStru(const NodeList& list);
/// Reads the record that encloses the current one: the top, or the one below it when the current
/// record itself is the top. False, and nothing is read, when there is none.
[[nodiscard]] bool innerEnclStru(const NodeList& list);

// ---- dyna nodes ---------------------------------------------------------------------------------

/// An entry of a tree of components. insDynaNode fills in the record; the rest is its user's.
struct DynaNode {
    ModuleRec* module;
    uint32_t nr;   // TNode
    int32_t mode;  // 5 at first
    int32_t value; // -1 at first
    int32_t name;
    int32_t compStatus;
    int32_t tagClass;
    int32_t tagNr;
    DynaNode* next;        // sibling
    DynaNode *head, *tail; // children
};
/// Appends an entry for the current TNode to a list and returns it.
DynaNode* insDynaNode(DynaNode*& head, DynaNode*& tail);
/// Recycles all entries of a list with their children; the list is empty afterwards.
void delDynaNodes(DynaNode*& head, DynaNode*& tail);

// ---- names --------------------------------------------------------------------------------------

/// Comparison in upper case (ASCII): negative, 0 or positive; the second form looks at the first n
/// characters only.
[[nodiscard]] int strCaseComp(std::string_view a, std::string_view b);
[[nodiscard]] int strnCaseComp(std::string_view a, std::string_view b, size_t n);
/// The text in lower or upper case (ASCII).
std::string strLower(std::string text);
std::string strUpper(std::string text);
/// The text with "_" for "-", and the other way.
std::string convertHyphens(std::string text);
std::string convertUnderscores(std::string text);
/// Default file prefix of a module name: five characters in lower case, "_" as "-".
std::string str2prefix(std::string_view name);
/// The text without white space at its ends.
[[nodiscard]] std::string_view remSpaces(std::string_view text);

// ---- module references --------------------------------------------------------------------------

/// The first reference with a number, a name, or to a module; null when there is none.
[[nodiscard]] ModRef* matchingNr(const ModRefList& list, uint32_t number);
[[nodiscard]] ModRef* matchingName(const ModRefList& list, std::string_view name);
[[nodiscard]] ModRef* matchingPtr(const ModRefList& list, const ModuleRec* module);

} // namespace orvo
