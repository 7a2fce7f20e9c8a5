#include "tree/orvoutil.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/store.h"
#include "tree/orvoutil_mem.h"
#include "tree/orvoutil_wstr.h"

namespace orvo {
namespace {

using Lists = StoreTest;
using ListsDeathTest = StoreTest;

TEST_F(Lists, UniqueNodesArePushedOnce) {
    NodeList list{.kind = NODES_VALUE};
    const VNodeNr first = newRec<KIND_VNODE>();
    addFstNode(list);
    EXPECT_FALSE(pushNodeUnique(list));
    newRec<KIND_VNODE>();
    EXPECT_TRUE(pushNodeUnique(list));
    addFstNode(list); // on it twice now
    delFstNode(list);
    EXPECT_FALSE(pushNodeUnique(list));
    delFstNode(list);
    EXPECT_TRUE(pushNodeUnique(list));
    changeCMP(&b);
    newRec<KIND_VNODE>();
    EXPECT_TRUE(pushNodeUnique(list)); // the same number in another module
    NodeList other{.kind = NODES_VALUE};
    mvFstNode(other, list);
    EXPECT_EQ(other.nodes.back(), (NodeRef{&b, 1}));
    EXPECT_FALSE(containsNode(list, {&b, 1}));
    EXPECT_TRUE(containsNode(list, {&a, first.nr}));
    deleteNodes(list);
    EXPECT_FALSE(containsNode(list, {&a, first.nr}));
}

TEST(Names, ComparisonIgnoresCaseUpToTheGivenLength) {
    EXPECT_EQ(strCaseComp("aBc", "AbC"), 0);
    EXPECT_LT(strCaseComp("ab", "ABC"), 0);
    EXPECT_GT(strCaseComp("B", "a"), 0);
    EXPECT_EQ(strnCaseComp("PREFIX=x", "prefix=", 7), 0);
    EXPECT_NE(strnCaseComp("pre", "prefix=", 7), 0);
    EXPECT_EQ(strnCaseComp("pre", "PRE", 7), 0);
    EXPECT_EQ(strnCaseComp("a", "b", 0), 0);
}

} // namespace
} // namespace orvo
