#include "tree/orvoutil.h"

#include <gtest/gtest.h>

#include "support/store.h"

namespace orvo {
namespace {

using Lists = StoreTest;

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

} // namespace
} // namespace orvo
